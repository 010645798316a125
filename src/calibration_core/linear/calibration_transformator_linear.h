// The linear model: a purely linear mass axis, m = A * t + c0, with the
// raw axis t = (index + offset) * a1 + a0 of ICalibrationConstantsPhysicalLinear.
// A = 0 makes MassToRaw an infinity or NaN, not a failure.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_
#define KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorLinear final
    : public Transformator<CalibrationTransformatorLinear, RMInverse<RMLinear<NoSquareRoot>>,
                           RILinear, ConstantsSettingNoAction>,
      public detail::FixedFunctionalDegree<1> {
  KORA_MODEL_NAME_AND_CONSTRUCTORS(CalibrationTransformatorLinear, Transformator);
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_LINEAR_CALIBRATION_TRANSFORMATOR_LINEAR_H_
