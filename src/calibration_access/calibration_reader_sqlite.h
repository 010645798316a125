// The reader of one calibration state of calibration.sqlite, the store of
// later recalibrations beside an analysis. The state is chosen once, at
// opening, by a CalibrationStateSelector; from then on every answer is of
// that state: per-frame m/z transformators when the state has them, else the
// reference transformator of the frame's polarity compensated for the
// frame's temperatures, and mobility transformators.
//
// Thread-compatible: one thread at a time (the connection and the frame
// mapping statement are unprotected); the two reference transformators are
// built once each, under std::call_once.
#ifndef KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_H_
#define KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_H_

#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include "calibration_access/calibration_state_selector.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "mobility/transformation.h"

namespace lumo {
namespace io {
namespace calibration {

class CalibrationReaderSqliteImpl;

class CalibrationReaderSqlite : boost::noncopyable {
 public:
  // Opens <analysisDirectory>/calibration.sqlite and picks the state of
  // `selector`, whose analysis info must be set when it needs it. Each
  // failure is logged at ERROR and thrown as std::runtime_error:
  //   "Specified analysis directory does not exist"
  //   "Specified path is not a directory"
  //   "<file> doesn't exist"
  //   "Schema type '<type>' not supported"
  //   "No matching calibration state found, reason <selector's text>"
  //   "Requested calibration state <key> does not exist"
  //   "calibration schema version <major>.<minor> not supported." (major >= 2)
  // and failures of the SQL layer pass through.
  CalibrationReaderSqlite(const boost::filesystem::path& analysisDirectory,
                          const CalibrationStateSelector& selector);
  ~CalibrationReaderSqlite();

  // The mobility transformator of the frame, never empty. Throws
  // std::runtime_error "Missing KoraCalibrator mapping for Frame [<id>]",
  // "No mobility trafo for id [<calibration id>] available", CorruptDataError
  // "Unknown KORA calibration model <n>".
  std::unique_ptr<lumo::calibration::kora::ITransformator> getMobTrafo(int64_t frameId);

  // The frame's own m/z transformator, never empty. Throws
  // std::runtime_error "No frame m/z trafos available" when the state has
  // none, "No m/z trafo for id [<id>] available" for a frame without mapping
  // or a mapping to a missing row, "Missing digitizer constants, unable to
  // load tof [zrk ]m/z transformators", std::invalid_argument "Unknown m / z
  // calibration model <n>".
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> getMzTrafo(const int64_t frameId);

  // The m/z transformator for a frame of polarity `negative` measured at
  // temperatures T1, T2. With frame calibrators: the frame's own, with the
  // temperatures attached (not compensated) when `attachTemperatures`. Else
  // the polarity's reference transformator compensated for T1, T2 (only
  // recorded when its coefficients are both 0.0). Throws as the one-argument
  // form, or std::runtime_error "no reference calibration available for
  // positive|negative polarity", "FTMS04 as reference trafo is not
  // supported." and its FTMS1356 twin.
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> getMzTrafo(
      int64_t frameId, bool negative, double T1, double T2, bool attachTemperatures);

  bool hasFrameCalibrators() const;
  // The Key of the chosen state.
  std::string getCalibrationStateKey() const;

 private:
  std::unique_ptr<CalibrationReaderSqliteImpl> impl;
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_H_
