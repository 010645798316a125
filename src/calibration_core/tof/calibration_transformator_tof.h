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

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"
#include "calibration_core/utilities/monotonic_range.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorTOFLinear final
    : public detail::ClosedSquareRootLaw<
          Transformator<CalibrationTransformatorTOFLinear, RMLinear<SquareRoot>, RILinear,
                        ConstantsSettingNoAction>,
          1>,
      public detail::FixedFunctionalDegree<1> {
  KORA_MODEL_NAME_AND_CONSTRUCTORS(CalibrationTransformatorTOFLinear, ClosedSquareRootLaw);
};

class CalibrationTransformatorTOFQuadratic final
    : public detail::ClosedSquareRootLaw<
          Transformator<CalibrationTransformatorTOFQuadratic, RMQuadratic<SquareRoot>, RILinear,
                        ConstantsSettingNoAction>,
          2>,
      public detail::FixedFunctionalDegree<2> {
  KORA_MODEL_NAME_AND_CONSTRUCTORS(CalibrationTransformatorTOFQuadratic, ClosedSquareRootLaw);
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_
