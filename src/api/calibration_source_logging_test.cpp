// Which calibration an analysis opened with use_recalibrated_state reads, as
// its log tells: a missing calibration.sqlite is one WARN line, a broken one
// falls back without a word, a usable one names its state. This program
// configures the library's logging through the document hook (linked with
// -rdynamic): root DEBUG into a rolling file in a temporary directory.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <sstream>
#include <string>

#include "api/conversion_test_support.h"
#include "koradata.h"
#include "tools/analysis_writer.h"
#include "tools/calibration_store.h"
#include "tools/data_generator.h"

namespace {

namespace fs = boost::filesystem;

const fs::path& logDirectory() {
  static const fs::path dir = fs::temp_directory_path() / fs::unique_path("kora-source-%%%%%%%%");
  return dir;
}

std::string logText() {
  std::ifstream in((logDirectory() / "source.log").string());
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

size_t count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// The log written while `dir` is opened with `flag` and closed again.
std::string openingLog(const fs::path& dir, uint32_t flag) {
  const size_t before = logText().size();
  { kora_testing::OpenAnalysis a(dir.string(), flag); }
  return logText().substr(before);
}

// Two positive frames of the sample calibration; with a store whose only
// state has a reference calibration for them, when `store` is set.
fs::path writeAnalysis(const std::string& name,
                       const lumo::writer::CalibrationStoreSpec* store = nullptr) {
  lumo::writer::AnalysisSpec spec = lumo::writer::AnalysisSpec::make(3, 2);
  for (int i = 0; i < 2; ++i) spec.addFrame(std::vector<lumo::writer::Scan>(1));
  lumo::writer::addSampleCalibration(spec, 100);
  if (store) spec.calibrationStore = store->tables();
  const fs::path dir = logDirectory() / name;
  lumo::writer::writeAnalysis(spec, dir);
  return dir;
}

lumo::writer::CalibrationStoreSpec soundStore() {
  lumo::writer::CalibrationStoreSpec store = lumo::writer::CalibrationStoreSpec::make();
  store.addState("3f2b-key", "recalibration")
      .addReference(false, 1, {}, lumo::writer::tofModel({2000, 400, 0, 0, 0}))
      .addMobilityCalibration(1, lumo::writer::MobilityRamp(), lumo::writer::frameIds(2));
  return store;
}

const char kInstrument[] =
    "[DEBUG] lumo.io.kora.OxaReaderImpl: Reading data using instrument calibration\n";
const char kWarn[] = "[WARN ] lumo.io.kora.OxaReaderImpl: Requested recalibration file ";

class CalibrationSource : public ::testing::Test {
 protected:
  static void TearDownTestSuite() { fs::remove_all(logDirectory()); }
};

TEST_F(CalibrationSource, MissingStoreIsOneWarningThenTheInstrumentCalibration) {
  // Quotes and ampersands in the path are escaped with an ampersand.
  const fs::path dir = writeAnalysis("with \"quote\" & ampersand");
  const std::string log = openingLog(dir, 1);
  EXPECT_EQ(1u, count(log, kWarn)) << log;
  const std::string escaped = (logDirectory() / "with &\"quote&\" && ampersand").string();
  EXPECT_NE(std::string::npos,
            log.find(std::string(kWarn) + "\"" + escaped +
                     "/calibration.sqlite\" does not exists. Fallback to instrument calibration "
                     "from oxa.\n"))
      << log;
  EXPECT_EQ(1u, count(log, kInstrument)) << log;
}

TEST_F(CalibrationSource, BrokenStoreFallsBackWithoutAWarning) {
  lumo::writer::CalibrationStoreSpec store = soundStore();
  store.metadata.set("SchemaType", "SOMETHING_ELSE");
  const fs::path dir = writeAnalysis("broken", &store);
  const std::string log = openingLog(dir, 1);
  EXPECT_EQ(0u, count(log, "[WARN ]")) << log;
  EXPECT_EQ(1u, count(log, kInstrument)) << log;
  EXPECT_EQ(0u, count(log, "Reading data using calibration state")) << log;
}

TEST_F(CalibrationSource, UsableStoreNamesItsStateAndFlagZeroIgnoresIt) {
  const lumo::writer::CalibrationStoreSpec store = soundStore();
  const fs::path dir = writeAnalysis("sound", &store);
  const std::string log = openingLog(dir, 1);
  EXPECT_EQ(1u, count(log,
                      "[DEBUG] lumo.io.kora.OxaReaderImpl: Reading data using calibration "
                      "state 3f2b-key\n"))
      << log;
  EXPECT_EQ(0u, count(log, kInstrument)) << log;
  EXPECT_EQ(1u, count(openingLog(dir, 0), kInstrument));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf(std::string* out) {
  *out = "<lumo-logconf><sink name='file' class='lumo.logging.RollingFileSink'><file-path>" +
         (logDirectory() / "source.log").string() +
         "</file-path></sink><root level='DEBUG'><sink ref='file'/></root></lumo-logconf>";
}
