// RMCubic<SquareRoot>: the raw-to-mass policy of the cubic square-root law
//   t = k0 + k1 w + k2 w^2 + k3 w^3,   w = signedSqrt(m), k1 = signedSqrt(a1).
// MassToRaw is the polynomial. RawToMass has no cheap closed form: it takes
// the stable root of the quadratic part and refines it by a fixed number of
// steps (one proportional correction, two simplified Newton steps), with no
// loop and no convergence test. Where the cubic term bends the law away from
// its quadratic part the result drifts; usableMassRange of the model says
// where it can be trusted.
#ifndef KORA_CALIBRATION_CORE_TOF2_RM_CUBIC_H_
#define KORA_CALIBRATION_CORE_TOF2_RM_CUBIC_H_

#include <cmath>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/transformation/computation_cast.h"
#include "calibration_core/transformation/policy_errors.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/signed_math.h"

namespace lumo {
namespace calibration {
namespace Transformation {

template <class Tag>
class RMCubic;

template <>
class RMCubic<SquareRoot> {
 public:
  RMCubic() : k0(0.0), k2(0.0), k3(0.0), sign(1.0), k1(1.0), D0(1.0) {}

  double MassToRaw(double mass) const {
    const double w = signedSqrt(mass);
    return ((k3 * w + k2) * w + k1) * w + k0;
  }

  // Throws std::logic_error (kComplexSolutionText) where the quadratic
  // estimate has a negative discriminant.
  double RawToMass(double raw) const {
    const double n = k0 - raw;
    const double d = k0 > raw ? D0 - (raw - k0) * 4.0 * k2 : D0 - n * 4.0 * k2;
    if (d < 0) throwComplexSolution();
    double y = n / ((std::sqrt(d) * sign + k1) * -0.5);
    if (y > 0 && k3 != 0.0) {
      double w = signedSqrt(y * y);
      const double p = ((k3 * w + k2) * w + k1) * w + k0;
      // 20.0 floors the time so that the ratio stays sane for tiny p; a NaN
      // p is floored too.
      y = (y * raw) / (p > 20.0 ? p : 20.0);
      const double slope = (3.0 * y * k3 + (k2 + k2)) * y + k1;
      w = signedSqrt(signedSquare(y));
      double f = ((k3 * w + k2) * w + k1) * w + k0 - raw;
      y = y - f / slope;
      w = signedSqrt(signedSquare(y));
      f = ((k3 * w + k2) * w + k1) * w + k0 - raw;
      y = y - f / slope;
    }
    return signedSquare(y);
  }

  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    double a1;
    k3 = detail::readQuadraticLaw<ICalibrationConstantsFunctionalComputationCubic>(
             constants, "RMCubic", "ICalibrationConstantsFunctionalComputationCubic", k0, a1, k2)
             ->GetC3();
    // A NaN a1 gives sign +1.0; every conversion is NaN then whatever the sign.
    detail::squareRootLawRoot(a1, sign, k1, D0);
  }

  double k0;
  double k2;
  double k3;
  double sign;
  double k1;
  double D0;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF2_RM_CUBIC_H_
