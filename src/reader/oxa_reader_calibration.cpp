// The calibration source of an open analysis: the choice, made once at the
// end of opening, between a recalibration state of calibration.sqlite and the
// instrument calibration of analysis.oxa, and the transformators that the
// chosen source gives per frame.
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <stdexcept>
#include <string>

#include "calibration_access/calibration_reader_sqlite.h"
#include "calibration_access/oxa_calibration_reader_impl.h"
#include "logging/log_stream.h"
#include "reader/oxa_reader.h"
#include "reader/oxa_reader_impl.h"
#include "sql/cppsqlite3.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace fs = boost::filesystem;
using lumo::logging::Level;
using lumo::logging::LogStream;

namespace {

// Gives `selector` the facts its completeness test needs: the number of
// frames, the polarities present ("+" positive, any other text negative) and
// that every frame has a mobility calibration.
void setAnalysisInfo(CppSQLite3DB& db, CalibrationStateSelector& selector) {
  CppSQLite3Query count = db.execQuery("SELECT COUNT(*) FROM Frames");
  if (count.eof()) LUMO_THROW(std::runtime_error("Unexpectly missing frame information!"));
  const int64_t frames = count.getIntField(0);
  CppSQLite3Query polarities = db.execQuery("SELECT DISTINCT Polarity FROM Frames");
  if (polarities.eof())
    LUMO_THROW(std::runtime_error("Unexpectly missing frame polarity information!"));
  bool hasPositive = false, hasNegative = false;
  for (; !polarities.eof(); polarities.nextRow()) {
    const char* polarity = polarities.getStringField(0, "");
    if (std::string(polarity) == "+")
      hasPositive = true;
    else
      hasNegative = true;
  }
  selector.setAnalysisInfo(frames, hasPositive, hasNegative, true);
}

}  // namespace

void OxaReaderImpl::chooseCalibrationSource(const fs::path& dir,
                                            boost::optional<CalibrationStateSelector> selector) {
  if (selector) {
    const fs::path path = dir / "calibration.sqlite";
    if (!fs::exists(path)) {
      LogStream(logger, Level::WARN) << "Requested recalibration file " << path
                                     << " does not exists. Fallback to instrument calibration "
                                        "from oxa.";
    } else {
      if (selector->needsAnalysisInfo()) setAnalysisInfo(*db, *selector);
      try {
        recalibrationReader.reset(
            new lumo::io::calibration::CalibrationReaderSqlite(dir, *selector));
      } catch (const std::exception&) {
        // A store that cannot be read leaves the instrument calibration.
      }
      if (recalibrationReader) {
        LogStream(logger, Level::DEBUG) << "Reading data using calibration state "
                                        << recalibrationReader->getCalibrationStateKey();
        return;
      }
    }
  }
  analysisCalibrationReader.reset(new lumo::io::kora_calibration::OxaCalibrationReaderImpl(db));
  LogStream(logger, Level::DEBUG) << "Reading data using instrument calibration";
}

boost::shared_ptr<lumo::calibration::ICalibrationTransformator> OxaReaderImpl::getMzTrafo(
    int64_t frame_id, bool flag) {
  if (!recalibrationReader) return analysisCalibrationReader->getMzTrafo(frame_id, true);
  if (!flag && recalibrationReader->hasFrameCalibrators())
    return recalibrationReader->getMzTrafo(frame_id);

  CppSQLite3Query q =
      db->execQuery("SELECT Polarity, T1, T2 FROM Frames WHERE Id=" + std::to_string(frame_id));
  if (q.eof()) {
    LUMO_THROW(std::invalid_argument((boost::format("Frame %d does not exist.") % frame_id).str()));
  }
  const bool negative = std::string(q.getStringField(0, "")) == "-";
  return recalibrationReader->getMzTrafo(frame_id, negative, q.getFloatField(1, 0.0),
                                         q.getFloatField(2, 0.0), flag);
}

std::unique_ptr<lumo::calibration::kora::ITransformator> OxaReaderImpl::getMobTrafo(
    int64_t frame_id) {
  if (recalibrationReader) return recalibrationReader->getMobTrafo(frame_id);
  return analysisCalibrationReader->getMobTrafo(frame_id);
}

boost::shared_ptr<lumo::calibration::ICalibrationTransformator> OxaReader::getMzTrafo(
    int64_t frame_id, bool flag) {
  return impl->getMzTrafo(frame_id, flag);
}

std::unique_ptr<lumo::calibration::kora::ITransformator> OxaReader::getMobTrafo(int64_t frame_id) {
  return impl->getMobTrafo(frame_id);
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
