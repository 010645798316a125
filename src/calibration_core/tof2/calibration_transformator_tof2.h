// The TOF2 linear and quadratic models: the square-root law in the shifted
// variable w = sqrt(m + dm),
//   linear:    t = c0 + signedSqrt(a1 * (m + dm))
//   quadratic: t = c0 + signedSqrt(a1 * (m + dm)) + c2 * (m + dm)
// with the constants of ICalibrationConstantsFunctionalTOF2. Below t = c0
// the laws continue as their mirror image, so RawToMass is odd around
// (-dm, c0). Both inverses are closed: usableMassRange is
// monotonicMassRange, (-dm, +infinity) for the linear model with a positive
// slope and up to the vertex of the parabola in w for c2 < 0; both throw
// std::runtime_error for m0 + dm < 0.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_
#define KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_

#include "calibration_core/tof/square_root_model.h"

namespace lumo {
namespace calibration {
namespace Transformation {

KORA_MODEL(CalibrationTransformatorTOF2Linear, SquareRootModel, RMShift<RMLinear<SquareRoot>>, 1);
KORA_MODEL(CalibrationTransformatorTOF2Quadratic, SquareRootModel, RMShift<RMQuadratic<SquareRoot>>,
           2);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_
