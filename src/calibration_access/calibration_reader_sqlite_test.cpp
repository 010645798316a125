#include "calibration_access/calibration_reader_sqlite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "calibration_access/corrupt_data_error.h"
#include "calibration_access/reader_test_log.h"
#include "calibration_access/test_calibration_law.h"
#include "calibration_core/temperature/temperature_compensation_constants.h"
#include "sql/cppsqlite3.h"
#include "testing/temp_dir.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::countLines;
using kora_testing::expectTofLaw;
using kora_testing::expectZrkLaw;
using kora_testing::kTofCoefficients;
using kora_testing::kZrkCoefficients;
using kora_testing::readerTestLog;
using kora_testing::TempDir;
using kora_testing::thrownText;
using lumo::calibration::ICalibrationConstantsFunctionalTemperatureCompensation;
using lumo::calibration::ICalibrationTransformatorPtr;
using lumo::io::calibration::CalibrationReaderSqlite;
using lumo::io::calibration::CalibrationStateSelector;

const char kLogger[] = "io.calibration.CalibrationReaderSqliteImpl: ";

std::vector<double> temperaturesOf(const ICalibrationTransformatorPtr& t) {
  const auto c =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
          t->GetFunctionalConstants());
  return c ? c->GetTemperatures() : std::vector<double>();
}

CalibrationStateSelector byKey(const std::string& key) {
  return CalibrationStateSelector(key, true, boost::none, false);
}

// A calibration.sqlite in a temporary analysis directory, written with plain
// SQL: the schema of the store and one state "k1" (Id 1) with the digitizer
// of the tests and no calibrations.
class RecalibrationStore : public ::testing::Test {
 protected:
  void SetUp() override {
    db.open((dir / "calibration.sqlite").string());
    exec("CREATE TABLE GlobalMetadata (Key TEXT, Value)");
    exec(
        "INSERT INTO GlobalMetadata VALUES ('SchemaType', 'CALIBRATION_SQLITE'), "
        "('SchemaVersionMajor', '1'), ('SchemaVersionMinor', '0')");
    exec(
        "CREATE TABLE CalibrationState (Id INTEGER PRIMARY KEY, Key TEXT, Source TEXT, "
        "HasFrameCalibrators INTEGER, PositiveReferenceCalibratorId INTEGER, "
        "NegativeReferenceCalibratorId INTEGER)");
    exec(
        "CREATE TABLE RefMzCalibration (Id, ModelType, CalibrationState, T1, T2, dC1, dC2, C0, "
        "C1, C2, C3, C4, C5, C6, C7)");
    std::string cs;
    for (int i = 0; i < 16; ++i) cs += ", C" + std::to_string(i);
    exec("CREATE TABLE FrameMzCalibration (Id, ModelType, CalibrationState" + cs + ")");
    exec(
        "CREATE TABLE FrameMzCalibrationMapping (CalibrationState INTEGER, FrameId INTEGER, "
        "FrameMzCalibrationId INTEGER)");
    exec(
        "CREATE TABLE KoraCalibration (Id, ModelType, CalibrationState, C0, C1, C2, C3, C4, C5, "
        "C6, C7, C8, C9)");
    exec(
        "CREATE TABLE KoraCalibrationMapping (CalibrationState INTEGER, FrameId INTEGER, "
        "KoraCalibrationId INTEGER)");
    exec("CREATE TABLE DigitizerConstants (CalibrationState, DigitizerTimebase, DigitizerDelay)");
    state(1, "k1", 0, "NULL", "NULL");
  }
  void exec(const std::string& sql) { db.execDML(sql.c_str()); }
  void state(int id, const std::string& key, int frameCalibrators, const std::string& positive,
             const std::string& negative, bool digitizer = true) {
    const std::string i = std::to_string(id);
    exec("INSERT INTO CalibrationState VALUES (" + i + ", '" + key + "', 'lab', " +
         std::to_string(frameCalibrators) + ", " + positive + ", " + negative + ")");
    if (digitizer) exec("INSERT INTO DigitizerConstants VALUES (" + i + ", 0.25, 20000.0)");
  }
  // A FrameMzCalibration row of state 1 with the coefficient cells `cells`,
  // mapped from `frames`.
  void frameCalibration(int id, int model, const std::string& cells,
                        const std::vector<int>& frames) {
    insertRow("FrameMzCalibration", id, model, {}, cells);
    for (int f : frames)
      exec("INSERT INTO FrameMzCalibrationMapping VALUES (1, " + std::to_string(f) + ", " +
           std::to_string(id) + ")");
  }
  // A RefMzCalibration row of state 1: T1, T2, dC1, dC2, C0 ... in `cells`.
  void referenceCalibration(int id, int model, const std::string& cells) {
    insertRow("RefMzCalibration", id, model, {"T1", "T2", "dC1", "dC2"}, cells);
  }
  // A row of state 1 of `table`: the cells of `named`, then C0, C1, ...
  void insertRow(const std::string& table, int id, int model, std::vector<std::string> named,
                 const std::string& cells) {
    const size_t n = static_cast<size_t>(std::count(cells.begin(), cells.end(), ',')) + 1;
    for (size_t c = 0; named.size() < n; ++c) named.push_back("C" + std::to_string(c));
    std::string names;
    for (size_t c = 0; c < n; ++c) names += ", " + named[c];
    exec("INSERT INTO " + table + " (Id, ModelType, CalibrationState" + names + ") VALUES (" +
         std::to_string(id) + ", " + std::to_string(model) + ", 1, " + cells + ")");
  }
  void references(const std::string& positive, const std::string& negative) {
    exec("UPDATE CalibrationState SET PositiveReferenceCalibratorId=" + positive +
         ", NegativeReferenceCalibratorId=" + negative + " WHERE Id=1");
  }
  std::unique_ptr<CalibrationReaderSqlite> open(const std::string& key = "k1") {
    return std::unique_ptr<CalibrationReaderSqlite>(
        new CalibrationReaderSqlite(dir.path(), byKey(key)));
  }
  std::string openingFailure(const boost::filesystem::path& path,
                             const CalibrationStateSelector& selector) {
    return thrownText<std::runtime_error>([&] { CalibrationReaderSqlite(path, selector); });
  }

  TempDir dir;
  CppSQLite3DB db;
};

// --- Opening ------------------------------------------------------------------

TEST_F(RecalibrationStore, OpeningChecksDirectoryFileAndSchemaInThisOrder) {
  EXPECT_EQ("Specified analysis directory does not exist",
            openingFailure(dir / "none", byKey("k1")));
  EXPECT_EQ("Specified path is not a directory",
            openingFailure(dir / "calibration.sqlite", byKey("k1")));
  TempDir empty;
  EXPECT_EQ((empty / "calibration.sqlite").string() + " doesn't exist",
            openingFailure(empty.path(), byKey("k1")));

  exec("UPDATE GlobalMetadata SET Value='CALIBRATION_OTHER' WHERE Key='SchemaType'");
  const size_t before = readerTestLog().size();
  EXPECT_EQ("Schema type 'CALIBRATION_OTHER' not supported",
            openingFailure(dir.path(), byKey("x")));
  EXPECT_EQ(1u, countLines(readerTestLog().substr(before),
                           std::string("[ERROR] ") + kLogger +
                               "Schema type 'CALIBRATION_OTHER' not supported\n"));
  exec("UPDATE GlobalMetadata SET Value='CALIBRATION_SQLITE' WHERE Key='SchemaType'");

  EXPECT_EQ("No matching calibration state found, reason Calibration state [x] does not exist",
            openingFailure(dir.path(), byKey("x")));
  CalibrationStateSelector noInfo;
  EXPECT_EQ(
      "No matching calibration state found, reason Failed to set Analysis Info frame count "
      "before calling getUUID",
      openingFailure(dir.path(), noInfo));
}

TEST_F(RecalibrationStore, MajorSchemaVersionMustBeBelowTwo) {
  exec("UPDATE GlobalMetadata SET Value='2' WHERE Key='SchemaVersionMajor'");
  EXPECT_EQ("calibration schema version 2.0 not supported.",
            openingFailure(dir.path(), byKey("k1")));
  exec("UPDATE GlobalMetadata SET Value='1' WHERE Key='SchemaVersionMajor'");
  exec("UPDATE GlobalMetadata SET Value='99' WHERE Key='SchemaVersionMinor'");
  EXPECT_EQ("k1", open()->getCalibrationStateKey());
}

TEST_F(RecalibrationStore, OpeningNamesTheStateAndAMissingDigitizer) {
  state(2, "k2", 1, "NULL", "NULL", false);
  const size_t before = readerTestLog().size();
  auto reader = open("k2");
  EXPECT_EQ("k2", reader->getCalibrationStateKey());
  EXPECT_TRUE(reader->hasFrameCalibrators());
  const std::string log = readerTestLog().substr(before);
  std::ostringstream quoted;
  quoted << dir.path();
  EXPECT_EQ(1u, countLines(log, std::string("[DEBUG] ") + kLogger + "Using calibration state k2 " +
                                    "for analysis " + quoted.str() + "\n"));
  EXPECT_EQ(1u, countLines(log, std::string("[INFO ] ") + kLogger +
                                    "No digitizer constants in calibration state k2\n"));
}

TEST_F(RecalibrationStore, DefaultSelectorTakesTheLatestCompleteState) {
  // State 2 has a reference for positive frames only; state 3 for both, but
  // maps frame 2 to no mobility calibration.
  state(2, "k2", 0, "1", "NULL");
  state(3, "k3", 0, "1", "1");
  exec("INSERT INTO KoraCalibrationMapping VALUES (2, 1, 1), (2, 2, 1), (3, 1, 1)");
  CalibrationStateSelector selector;
  selector.setAnalysisInfo(2, true, false, true);
  CalibrationReaderSqlite reader(dir.path(), selector);
  EXPECT_EQ("k2", reader.getCalibrationStateKey());
  EXPECT_FALSE(reader.hasFrameCalibrators());
  selector.setAnalysisInfo(2, true, true, true);
  EXPECT_EQ(
      "No matching calibration state found, reason Found no complete latest calibration state",
      openingFailure(dir.path(), selector));
}

// --- Frame calibrators ----------------------------------------------------------

TEST_F(RecalibrationStore, FrameModelsConvert) {
  exec("UPDATE CalibrationState SET HasFrameCalibrators=1");
  frameCalibration(11, 1, kTofCoefficients, {1});
  frameCalibration(12, 2, kZrkCoefficients, {2});
  frameCalibration(13, 3, "0.5, 1.01, 2e-5, 50.0, 20.0", {3});
  frameCalibration(14, 4, "4, 5e7, 1e5, 10000.0, 90000.0, 1024", {4});
  frameCalibration(15, 5, "1, 2e6, 5e7, 1e5, 10000.0, 90000.0, 1024", {5});
  auto reader = open();
  expectTofLaw(reader->getMzTrafo(1), 1.0);
  expectZrkLaw(reader->getMzTrafo(2), 1.0);
  // Ion trap: raw mass r = 50 + index / 20, mass = 2e-5 r^2 + 1.01 r + 0.5.
  const double r = 50.0 + 1000.0 / 20.0;
  EXPECT_NEAR(2e-5 * r * r + 1.01 * r + 0.5, reader->getMzTrafo(3)->DIndexToMass(1000.0), 1e-9);
  // FTMS: frequency f = 10000 + index * 90000 / 1024; m = beta / f, or
  // f = alpha / m^2 + beta / m.
  const double f = 10000.0 + 100.0 * (90000.0 / 1024.0);
  EXPECT_NEAR(5e7 / f, reader->getMzTrafo(4)->DIndexToMass(100.0), 1e-9 * (5e7 / f));
  const double m = 1500.0;
  const double index = (2e6 / (m * m) + 5e7 / m - 10000.0) / (90000.0 / 1024.0);
  EXPECT_NEAR(m, reader->getMzTrafo(5)->DIndexToMass(index), 1e-9 * m);
}

TEST_F(RecalibrationStore, FrameTransformatorIsNotCompensatedOnlyGivenTheTemperatures) {
  exec("UPDATE CalibrationState SET HasFrameCalibrators=1");
  frameCalibration(11, 1, kTofCoefficients, {1});
  auto reader = open();
  const ICalibrationTransformatorPtr attached = reader->getMzTrafo(1, true, 40.0, 50.0, true);
  expectTofLaw(attached, 1.0);
  EXPECT_EQ(std::vector<double>({40.0, 50.0}), temperaturesOf(attached));
  EXPECT_EQ(std::vector<double>(), temperaturesOf(reader->getMzTrafo(1, true, 40.0, 50.0, false)));
}

TEST_F(RecalibrationStore, FrameLookupFailures) {
  exec("UPDATE CalibrationState SET HasFrameCalibrators=1");
  frameCalibration(11, 1, kTofCoefficients, {1});
  frameCalibration(16, 6, kTofCoefficients, {6});
  exec("INSERT INTO FrameMzCalibrationMapping VALUES (1, 2, 42)");
  auto reader = open();
  EXPECT_EQ("No m/z trafo for id [7] available",
            thrownText<std::runtime_error>([&] { reader->getMzTrafo(7); }));
  EXPECT_EQ("No m/z trafo for id [42] available",
            thrownText<std::runtime_error>([&] { reader->getMzTrafo(2); }));
  EXPECT_EQ("Unknown m / z calibration model 6",
            thrownText<std::invalid_argument>([&] { reader->getMzTrafo(6); }));
  // The mapping statement is reset after each failure.
  expectTofLaw(reader->getMzTrafo(1), 1.0);
}

TEST_F(RecalibrationStore, StateWithoutFrameCalibratorsHasNoFrameTransformator) {
  frameCalibration(11, 1, kTofCoefficients, {1});
  EXPECT_EQ("No frame m/z trafos available",
            thrownText<std::runtime_error>([&] { open()->getMzTrafo(1); }));
}

TEST_F(RecalibrationStore, TofModelsNeedTheDigitizerOnlyWhenLoaded) {
  state(2, "k2", 1, "1", "NULL", false);
  exec(
      "INSERT INTO FrameMzCalibration (Id, ModelType, CalibrationState, C0) VALUES (1, 1, 2, 1.0), "
      "(2, 2, 2, 1.0)");
  exec("INSERT INTO FrameMzCalibrationMapping VALUES (2, 1, 1), (2, 2, 2)");
  exec("INSERT INTO RefMzCalibration (Id, ModelType, CalibrationState) VALUES (1, 2, 2)");
  auto reader = open("k2");
  EXPECT_EQ("Missing digitizer constants, unable to load tof m/z transformators",
            thrownText<std::runtime_error>([&] { reader->getMzTrafo(1); }));
  EXPECT_EQ("Missing digitizer constants, unable to load tof zrk m/z transformators",
            thrownText<std::runtime_error>([&] { reader->getMzTrafo(2); }));
  exec("UPDATE CalibrationState SET HasFrameCalibrators=0 WHERE Id=2");
  auto referenceReader = open("k2");
  EXPECT_EQ("Missing digitizer constants, unable to load tof m/z transformators",
            thrownText<std::runtime_error>(
                [&] { referenceReader->getMzTrafo(1, false, 25.0, 25.0, true); }));
}

// --- Reference calibrators ------------------------------------------------------

TEST_F(RecalibrationStore, ReferenceIsCompensatedForTheFrameTemperatures) {
  // s = 1 + ((20 - 21) * 10 + (30 - 33) * 100) / 1e6.
  referenceCalibration(1, 1, std::string("20.0, 30.0, 10.0, 100.0, ") + kTofCoefficients);
  references("1", "NULL");
  auto reader = open();
  const size_t before = readerTestLog().size();
  const ICalibrationTransformatorPtr t = reader->getMzTrafo(5, false, 21.0, 33.0, true);
  expectTofLaw(t, 0.99969);
  EXPECT_EQ(std::vector<double>({21.0, 33.0}), temperaturesOf(t));
  EXPECT_EQ(0u, countLines(readerTestLog().substr(before), "Not performing"));
  ASSERT_TRUE(t->GetMeasurementModeInfo());
  EXPECT_EQ(0, t->GetMeasurementModeInfo()->GetPolarity());
  EXPECT_EQ(2, t->GetMeasurementModeInfo()->GetAcquisitionMode());
}

TEST_F(RecalibrationStore, ReferenceWithZeroCoefficientsIsSharedAndKeepsTheLastTemperatures) {
  referenceCalibration(1, 1, std::string("20.0, 30.0, 0.0, -0.0, ") + kTofCoefficients);
  references("NULL", "1");
  auto reader = open();
  const size_t before = readerTestLog().size();
  const ICalibrationTransformatorPtr first = reader->getMzTrafo(1, true, 26.0, 31.0, true);
  expectTofLaw(first, 1.0);
  EXPECT_EQ(std::vector<double>({26.0, 31.0}), temperaturesOf(first));
  EXPECT_EQ(1, first->GetMeasurementModeInfo()->GetPolarity());
  const ICalibrationTransformatorPtr second = reader->getMzTrafo(2, true, 27.0, 32.0, false);
  EXPECT_EQ(first.get(), second.get());
  EXPECT_EQ(std::vector<double>({27.0, 32.0}), temperaturesOf(first));
  EXPECT_EQ(2u, countLines(readerTestLog().substr(before),
                           std::string("[TRACE] ") + kLogger +
                               "Not performing temperature compensation, as coefficients are "
                               "0.0\n"));
}

TEST_F(RecalibrationStore, MissingReferenceFailsOnlyForItsPolarity) {
  referenceCalibration(1, 1, std::string("20.0, 30.0, 0.0, 0.0, ") + kTofCoefficients);
  references("1", "NULL");
  auto reader = open();
  EXPECT_EQ("no reference calibration available for negative polarity",
            thrownText<std::runtime_error>([&] { reader->getMzTrafo(1, true, 25.0, 25.0, true); }));
  expectTofLaw(reader->getMzTrafo(1, false, 25.0, 25.0, true), 1.0);
  references("99", "NULL");
  EXPECT_EQ("No m/z trafo for id [99] available", thrownText<std::runtime_error>([&] {
              open()->getMzTrafo(1, false, 25.0, 25.0, true);
            }));
  references("NULL", "NULL");
  EXPECT_EQ(
      "no reference calibration available for positive polarity",
      thrownText<std::runtime_error>([&] { open()->getMzTrafo(1, false, 25.0, 25.0, true); }));
}

TEST_F(RecalibrationStore, IonTrapReferenceTakesItsNumbersFromTheTemperatureColumns) {
  // T1 .. dC2, C0 hold c0, c1, c2, begin raw mass, measurements per raw mass.
  referenceCalibration(1, 3, "0.5, 1.01, 2e-5, 50.0, 20.0");
  references("1", "NULL");
  auto reader = open();
  const ICalibrationTransformatorPtr t = reader->getMzTrafo(1, false, 40.0, 50.0, true);
  const double r = 50.0 + 1000.0 / 20.0;
  EXPECT_NEAR(2e-5 * r * r + 1.01 * r + 0.5, t->DIndexToMass(1000.0), 1e-9);
}

TEST_F(RecalibrationStore, FtmsReferenceIsRefusedAtEveryCall) {
  referenceCalibration(1, 4, "0.0, 0.0, 0.0, 0.0, 4");
  referenceCalibration(2, 5, "0.0, 0.0, 0.0, 0.0, 1");
  references("1", "2");
  auto reader = open();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ("FTMS04 as reference trafo is not supported.", thrownText<std::runtime_error>([&] {
                reader->getMzTrafo(1, false, 25.0, 25.0, true);
              }));
    EXPECT_EQ("FTMS1356 as reference trafo is not supported.", thrownText<std::runtime_error>([&] {
                reader->getMzTrafo(1, true, 25.0, 25.0, true);
              }));
  }
}

// --- Mobility -------------------------------------------------------------------

TEST_F(RecalibrationStore, MobilityOfAFrame) {
  state(2, "k2", 0, "NULL", "NULL");
  exec(
      "INSERT INTO KoraCalibration VALUES (5, 2, 1, 0, 100, 200.0, 100.0, 0.0, 1, 0.0, 125.0, "
      "50.0, 210.0), (5, 2, 2, 0, 100, -200.0, -100.0, 0.0, 1, 0.0, 125.0, 50.0, 210.0), (6, 3, "
      "1, 0, 100, 200.0, 100.0, 0.0, 1, 0.0, 125.0, 50.0, 210.0)");
  exec("INSERT INTO KoraCalibrationMapping VALUES (1, 1, 5), (2, 1, 5), (1, 2, 8), (1, 3, 6)");
  auto reader = open();
  auto t = reader->getMobTrafo(1);
  ASSERT_TRUE(t);
  EXPECT_DOUBLE_EQ(150.0, t->scanNumToVoltage(50.0));
  EXPECT_DOUBLE_EQ(150.0 / 125.0, t->scanNumToOneOverK0(50.0));
  EXPECT_EQ("No mobility trafo for id [8] available",
            thrownText<std::runtime_error>([&] { reader->getMobTrafo(2); }));
  EXPECT_EQ("Unknown KORA calibration model 3",
            thrownText<lumo::io::calibration::CorruptDataError>([&] { reader->getMobTrafo(3); }));
  EXPECT_EQ("Missing KoraCalibrator mapping for Frame [4]",
            thrownText<std::runtime_error>([&] { reader->getMobTrafo(4); }));
  EXPECT_DOUBLE_EQ(-150.0, open("k2")->getMobTrafo(1)->scanNumToVoltage(50.0));
}

}  // namespace
