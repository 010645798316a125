// The first time-of-flight models: the square-root law without a mass
// shift, t = c0 + sqrt(a1 * m) (+ c2 * m), with the constants of
// ICalibrationConstantsFunctionalTOF1 and the digitizer line of the physical
// constants.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_
#define KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_

#include <utility>

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorTOFLinear final
    : public Transformator<CalibrationTransformatorTOFLinear, RMLinear<SquareRoot>, RILinear,
                           ConstantsSettingNoAction>,
      public TransformatorFunctionalDegree {
 public:
  // Throws std::invalid_argument for constants of a wrong kind.
  CalibrationTransformatorTOFLinear(
      const ICalibrationConstantsFunctionalPtr& functionalConstants,
      const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset = 0.0,
      const IMeasurementModeInfoPtr& info = IMeasurementModeInfoPtr());

  static const char* ClassName() { return "CalibrationTransformatorTOFLinear"; }

  // (0, +infinity) for a positive slope: the law has no critical point.
  // Throws std::runtime_error for m0 < 0.
  std::pair<double, double> monotonicMassRange(double m0) const override;
  // monotonicMassRange(m0): the inverse is closed.
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override;
};

class CalibrationTransformatorTOFQuadratic final
    : public Transformator<CalibrationTransformatorTOFQuadratic, RMQuadratic<SquareRoot>, RILinear,
                           ConstantsSettingNoAction>,
      public TransformatorFunctionalDegree {
 public:
  CalibrationTransformatorTOFQuadratic(
      const ICalibrationConstantsFunctionalPtr& functionalConstants,
      const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset = 0.0,
      const IMeasurementModeInfoPtr& info = IMeasurementModeInfoPtr());

  static const char* ClassName() { return "CalibrationTransformatorTOFQuadratic"; }

  std::pair<double, double> monotonicMassRange(double m0) const override;
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_CALIBRATION_TRANSFORMATOR_TOF_H_
