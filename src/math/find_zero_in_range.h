// findZeroInRange: a zero of a function on an interval by Brent's method
// (bisection, secant and inverse quadratic interpolation).
#ifndef KORA_MATH_FIND_ZERO_IN_RANGE_H_
#define KORA_MATH_FIND_ZERO_IN_RANGE_H_

#include <cmath>

namespace lumo {
namespace math {

namespace detail {
[[noreturn]] void throwNegativeTolerance();
[[noreturn]] void throwEmptyInterval();
}  // namespace detail

// A point of [a, b] at which `function` changes sign (or is zero), to within
// 2 * DBL_EPSILON * |x| + tol / 2. The signs of f(a) and f(b) are not
// checked: without a change of sign the result is some point of the search.
// Stops after `maxIterations` steps and returns the current best point; no
// error is raised then. `iterations`, if not null, receives the number of
// steps taken.
// Throws std::runtime_error for tol < 0 or b <= a.
template <class Function>
double findZeroInRange(double a, double b, Function function, double tol, int maxIterations,
                       int* iterations) {
  int localCounter = 0;
  int& counter = iterations ? *iterations : localCounter;
  counter = 0;
  if (tol < 0) detail::throwNegativeTolerance();
  if (b <= a) detail::throwEmptyInterval();

  double fa = function(a);
  double fb = function(b);
  double c = a;
  double fc = fa;
  while (counter < maxIterations) {
    const double previousStep = b - a;
    if (std::fabs(fc) < std::fabs(fb)) {
      a = b;
      b = c;
      c = a;
      fa = fb;
      fb = fc;
      fc = fa;
    }
    const double actualTol = std::fabs(b) * 4.440892098500626e-16 + tol * 0.5;
    double newStep = (c - b) * 0.5;
    if (std::fabs(newStep) <= actualTol || fb == 0.0) return b;

    if (std::fabs(previousStep) >= actualTol && std::fabs(fb) < std::fabs(fa)) {
      const double cb = c - b;
      const double s = fb / fa;
      double p;
      double q;
      if (a == c) {
        p = cb * s;
        q = 1.0 - s;
      } else {
        q = fa / fc;
        const double r = fb / fc;
        p = s * (cb * q * (q - r) - (b - a) * (r - 1.0));
        q = (q - 1.0) * (r - 1.0) * (s - 1.0);
      }
      if (p > 0) {
        q = -q;
      } else {
        p = -p;
      }
      if (p < 0.75 * cb * q - std::fabs(actualTol * q) * 0.5 &&
          p < std::fabs(previousStep * q * 0.5)) {
        newStep = p / q;
      }
    }
    if (std::fabs(newStep) < actualTol) newStep = newStep > 0 ? actualTol : -actualTol;

    a = b;
    fa = fb;
    b = b + newStep;
    fb = function(b);
    if ((fb > 0 && fc > 0) || (fb < 0 && fc < 0)) {
      c = a;
      fc = fa;
    }
    ++counter;
  }
  return b;
}

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_FIND_ZERO_IN_RANGE_H_
