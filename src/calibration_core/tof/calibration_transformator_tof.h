// The first time-of-flight models: the square-root law without a mass
// shift, t = c0 + sqrt(a1 * m) (+ c2 * m), with the constants of
// ICalibrationConstantsFunctionalTOF1 and the digitizer line of the physical
// constants. Both inverses are closed: usableMassRange is
// monotonicMassRange, (0, +infinity) for the linear model with a positive
// slope; both throw std::runtime_error for m0 < 0.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_
#define KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_

#include "calibration_core/tof/square_root_model.h"

namespace lumo {
namespace calibration {
namespace Transformation {

KORA_MODEL(CalibrationTransformatorTOFLinear, SquareRootModel, RMLinear<SquareRoot>, 1);
KORA_MODEL(CalibrationTransformatorTOFQuadratic, SquareRootModel, RMQuadratic<SquareRoot>, 2);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_
