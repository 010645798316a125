// The TOF2 linear and quadratic models: the square-root law in the shifted
// variable w = sqrt(m + dm),
//   linear:    t = c0 + signedSqrt(a1 * (m + dm))
//   quadratic: t = c0 + signedSqrt(a1 * (m + dm)) + c2 * (m + dm)
// with the constants of ICalibrationConstantsFunctionalTOF2. Below t = c0
// the laws continue as their mirror image, so RawToMass is odd around
// (-dm, c0).
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_
#define KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_

#include <utility>
#include <vigra/polynomial.hxx>

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorTOF2Linear final
    : public Transformator<CalibrationTransformatorTOF2Linear, RMShift<RMLinear<SquareRoot>>,
                           RILinear, ConstantsSettingNoAction>,
      public TransformatorFunctionalDegree {
 public:
  // Throws std::invalid_argument for constants of a wrong kind.
  CalibrationTransformatorTOF2Linear(
      const ICalibrationConstantsFunctionalPtr& functionalConstants,
      const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset = 0.0,
      const IMeasurementModeInfoPtr& info = IMeasurementModeInfoPtr());

  static const char* ClassName() { return "CalibrationTransformatorTOF2Linear"; }

  // (-dm, +infinity) for a positive slope. Throws std::runtime_error for
  // m0 + dm < 0.
  std::pair<double, double> monotonicMassRange(double m0) const override;
  // monotonicMassRange(m0): the inverse is closed.
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override;
};

class CalibrationTransformatorTOF2Quadratic final
    : public Transformator<CalibrationTransformatorTOF2Quadratic, RMShift<RMQuadratic<SquareRoot>>,
                           RILinear, ConstantsSettingNoAction>,
      public TransformatorFunctionalDegree {
 public:
  CalibrationTransformatorTOF2Quadratic(
      const ICalibrationConstantsFunctionalPtr& functionalConstants,
      const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset = 0.0,
      const IMeasurementModeInfoPtr& info = IMeasurementModeInfoPtr());

  static const char* ClassName() { return "CalibrationTransformatorTOF2Quadratic"; }

  // Up to the vertex of the parabola in w for c2 < 0.
  std::pair<double, double> monotonicMassRange(double m0) const override;
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override;
};

// The polynomial in w of TOF2 constants up to `order` (1 to 3): c0, the
// slope sqrt(a1), c2, c3, with epsilon 1e-14; and the mass shift in `dm`.
// Throws std::invalid_argument when `constants` is not
// ICalibrationConstantsFunctionalTOF2.
vigra::Polynomial<double> tof2Polynomial(const ICalibrationConstantsFunctionalPtr& constants,
                                         unsigned int order, double* dm);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_H_
