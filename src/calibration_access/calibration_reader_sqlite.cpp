#include "calibration_access/calibration_reader_sqlite.h"

#include "calibration_access/calibration_reader_sqlite_impl.h"

namespace lumo {
namespace io {
namespace calibration {

CalibrationReaderSqlite::CalibrationReaderSqlite(const boost::filesystem::path& analysisDirectory,
                                                 const CalibrationStateSelector& selector)
    : impl(new CalibrationReaderSqliteImpl(analysisDirectory, selector)) {}

CalibrationReaderSqlite::~CalibrationReaderSqlite() = default;

std::unique_ptr<lumo::calibration::kora::ITransformator> CalibrationReaderSqlite::getMobTrafo(
    int64_t frameId) {
  return impl->getMobTrafo(frameId);
}

boost::shared_ptr<lumo::calibration::ICalibrationTransformator> CalibrationReaderSqlite::getMzTrafo(
    const int64_t frameId) {
  return impl->getMzTrafo(frameId);
}

boost::shared_ptr<lumo::calibration::ICalibrationTransformator> CalibrationReaderSqlite::getMzTrafo(
    int64_t frameId, bool negative, double T1, double T2, bool attachTemperatures) {
  return impl->getMzTrafo(frameId, negative, T1, T2, attachTemperatures);
}

bool CalibrationReaderSqlite::hasFrameCalibrators() const { return impl->hasFrameCalibrators(); }

std::string CalibrationReaderSqlite::getCalibrationStateKey() const {
  return impl->getCalibrationStateKey();
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
