// The linear model: a purely linear mass axis, m = A * t + c0, with the
// raw axis t = (index + offset) * a1 + a0 of ICalibrationConstantsPhysicalLinear.
// A = 0 makes MassToRaw an infinity or NaN, not a failure.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_
#define KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_

#include "calibration_core/transformation/digitizer_line_model.h"

namespace lumo {
namespace calibration {
namespace Transformation {

KORA_MODEL(CalibrationTransformatorLinear, DigitizerLineModel, RMInverse<RMLinear<NoSquareRoot>>,
           1);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_
