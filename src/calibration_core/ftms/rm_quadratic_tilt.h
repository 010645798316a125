// RMQuadraticTilt: the raw-to-mass policy of the second-degree FTMS model,
// stated in the variable x (the reciprocal mass once RMReciprocal wraps it):
//   MassToRaw(x) = (x * x) * a + (b * x + c)
// RawToMass(t) solves the parabola for x on its rising branch
// (b + 2 a x > 0) and, past the vertex where no real root exists (below it
// for a > 0, above it for a < 0), continues it by the parabola
// point-mirrored at the vertex, so the solved direction stays rising and
// single-valued for every t.
// Numbers: c and b from ICalibrationConstantsFunctionalComputationLinear
// (GetC0, GetA1), a from ICalibrationConstantsFunctionalComputationQuadratic
// (GetC2). A conversion reads only these copies and allocates nothing.
#ifndef KORA_CALIBRATION_CORE_FTMS_RM_QUADRATIC_TILT_H_
#define KORA_CALIBRATION_CORE_FTMS_RM_QUADRATIC_TILT_H_

#include <cmath>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/transformation/computation_cast.h"

namespace lumo {
namespace calibration {
namespace detail {

// The root of b * x + n = 0 for the degenerate parabola (a = 0).
// Throws std::runtime_error with location and stack trace:
// "Case b*x + c with negative slope." for b < 0, "Polynomial is constant."
// for b = 0.
double solveFlippedContinuedQuadraticEquationDegenerate(double b, double n);

}  // namespace detail

namespace Transformation {

class RMQuadraticTilt {
 public:
  RMQuadraticTilt() : c(0.0), b(1.0), a(0.0) {}

  double MassToRaw(double x) const { return (x * x) * a + (b * x + c); }

  double RawToMass(double raw) const {
    const double n = c - raw;
    if (a == 0.0)
      return calibration::detail::solveFlippedContinuedQuadraticEquationDegenerate(b, n);
    const double s = b * b;
    const double D = s - (a * 4.0) * n;
    if (D >= 0) {
      const double r = std::sqrt(D);
      if (b >= 0) return n / ((r + b) * -0.5);
      return ((b - r) * -0.5) / a;
    }
    // Past the vertex (or NaN, which propagates).
    const double r = std::sqrt(-D);
    if (b > 0) return -(((-b - r) * -0.5) / a);
    return (n - s / (a + a)) / ((r - b) * -0.5);
  }

  // Throws std::invalid_argument when `constants` is not
  // ICalibrationConstantsFunctionalComputationQuadratic.
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    detail::readQuadraticLaw<ICalibrationConstantsFunctionalComputationQuadratic>(
        constants, "RMQuadraticTilt", "ICalibrationConstantsFunctionalComputationQuadratic", c, b,
        a);
  }

  double c;
  double b;
  double a;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_FTMS_RM_QUADRATIC_TILT_H_
