// The last step of both calibration readers: a transformator whose
// functional constants carry the temperature coefficients of its calibration
// is given the temperatures at which a frame was measured.
#ifndef KORA_CALIBRATION_ACCESS_FRAME_TEMPERATURES_H_
#define KORA_CALIBRATION_ACCESS_FRAME_TEMPERATURES_H_

#include <boost/shared_ptr.hpp>

#include "calibration_core/transformation/calibration_transformator.h"
#include "logging/logger.h"

namespace lumo {
namespace io {
namespace calibration {
namespace details {

// The reference temperatures and temperature coefficients (ppm per degree)
// of one m/z calibration.
struct MzCalibTemperatureInfo {
  double T1 = 0.0;
  double T2 = 0.0;
  double dC1 = 0.0;
  double dC2 = 0.0;
};

}  // namespace details

namespace detail {

// Sets (T1, T2) as the measured temperatures of `transformator`'s functional
// constants and stores them back into `transformator`, which is changed.
// When both coefficients of `reference` are exactly 0.0 (-0.0 counts), logs
// `noCompensationLine` at TRACE, marks the constants as needing no
// adaptation (mode 3) and returns `transformator` itself. Otherwise returns
// a new transformator: `transformator` adapted from the reference
// temperatures to (T1, T2). Constants that carry no temperatures (models
// other than TOF) are left alone and `transformator` is returned as it is.
// `*loggedLine`, when given, tells whether the line was logged.
boost::shared_ptr<lumo::calibration::ICalibrationTransformator> applyFrameTemperatures(
    const boost::shared_ptr<lumo::calibration::ICalibrationTransformator>& transformator,
    const details::MzCalibTemperatureInfo& reference, double T1, double T2,
    const lumo::logging::Logger& logger, const char* noCompensationLine,
    bool* loggedLine = nullptr);

}  // namespace detail
}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_FRAME_TEMPERATURES_H_
