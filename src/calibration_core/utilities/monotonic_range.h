// The rising mass range of a square-root law: a polynomial in
// w = sqrt(m + dm) that rises around w0 = sqrt(m0 + dm) rises, as a function
// of the mass, on the interval this function returns.
#ifndef KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_
#define KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_

#include <utility>
#include <vigra/polynomial.hxx>

#include "calibration_core/constants/functional_constants.h"

namespace lumo {
namespace calibration {

// The widest mass interval (lo, hi) around m0 on which `polynomial`, a
// polynomial in w = sqrt(m + dm), rises. A bound without a critical point
// is infinite; the lower bound is never below -dm (w = 0).
// Throws std::runtime_error ("Mass->time mapping not defined for specified
// value of 'm0'") unless m0 + dm >= 0, and what the range search throws
// (a polynomial falling at w0).
std::pair<double, double> monotonicPolyShiftedSqrtRange(const vigra::Polynomial<double>& polynomial,
                                                        double m0, double dm);

// The polynomial in w of time-of-flight constants up to `order` (1 to 3),
// with epsilon 1e-14: c0, the slope sqrt(a1) (the plain root: a negative a1
// gives NaN), c2, c3; and the mass shift in `dm`. TOF2 constants give c3 and
// dm, TOF1 constants neither (0.0). Throws std::invalid_argument for
// constants of neither family.
vigra::Polynomial<double> squareRootLawPolynomial(
    const ICalibrationConstantsFunctionalPtr& constants, unsigned int order, double* dm);

namespace Transformation {
namespace detail {

// The range functions of a model with a square-root law of `kOrder` and a
// closed inverse: monotonicMassRange is that of its polynomial, and
// usableMassRange the same, the closed inverse having no error of its own
// (maxRoundTripError is ignored).
template <class Base, unsigned int kOrder>
class ClosedSquareRootLaw : public Base {
 public:
  using Base::Base;

  // Throws std::runtime_error for m0 + dm < 0.
  std::pair<double, double> monotonicMassRange(double m0) const override {
    double dm = 0.0;
    const vigra::Polynomial<double> polynomial =
        squareRootLawPolynomial(this->GetFunctionalConstants(), kOrder, &dm);
    return monotonicPolyShiftedSqrtRange(polynomial, m0, dm);
  }
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override {
    return monotonicMassRange(m0);
  }
};

}  // namespace detail
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_
