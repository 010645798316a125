// The ion-trap (Halyard) models: the mass is a polynomial of the raw axis,
//   linear:     m = A * t + c0                    (A = c1)
//   quadratic:  m = ((t * t) * c2 + c1 * t) + c0
// so mass from raw is the cheap direction. The raw axis is the raw mass:
// t = (index + offset) / measurementsPerRawMass + beginRawMass.
// The quadratic model's mass-to-raw direction is odd around (c0, 0) (see
// RMQuadratic<NoSquareRoot>) and fails for c2 < 0 far enough from c0.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_HALYARD_CALIBRATION_TRANSFORMATOR_HALYARD_H_
#define KORA_CALIBRATION_CORE_HALYARD_CALIBRATION_TRANSFORMATOR_HALYARD_H_

#include "calibration_core/transformation/digitizer_line_model.h"

namespace lumo {
namespace calibration {
namespace Transformation {

KORA_MODEL(CalibrationTransformatorHalyardLinear, DigitizerLineModel,
           RMInverse<RMLinear<NoSquareRoot>>, 1);
KORA_MODEL(CalibrationTransformatorHalyardQuadratic, DigitizerLineModel,
           RMInverse<RMQuadratic<NoSquareRoot>>, 2);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_HALYARD_CALIBRATION_TRANSFORMATOR_HALYARD_H_
