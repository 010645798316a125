#include "math/splines/cubic_spline.h"

#include <cassert>
#include <cstddef>

#include "math/splines/knot_search.h"

namespace lumo {
namespace math {

namespace {

double cubicOnInterval(double x, std::size_t lo, std::size_t hi, const std::vector<double>& knots,
                       const std::vector<double>& values, const std::vector<double>& d2) {
  const double h = knots[hi] - knots[lo];
  const double a = (knots[hi] - x) / h;
  const double b = (x - knots[lo]) / h;
  return a * values[lo] + b * values[hi] +
         ((a * a * a - a) * d2[lo] + (b * b * b - b) * d2[hi]) * (h * h) / 6.0;
}

// The interval of x; a single knot is an interval of width zero.
void findInterval(const std::vector<double>& knots, double x, std::size_t& lo, std::size_t& hi) {
  if (knots.size() == 1) {
    lo = hi = 0;
  } else {
    detail::bisectKnots(knots, x, lo, hi);
  }
}

}  // namespace

bool CubicSplineInterpolation(double x, double& y, const std::vector<double>& knots,
                              const std::vector<double>& values,
                              const std::vector<double>& secondDerivatives) {
  y = 0.0;
  if (knots.empty() || values.size() != knots.size()) return false;
  assert(secondDerivatives.size() == knots.size());
  std::size_t lo = 0;
  std::size_t hi = 0;
  findInterval(knots, x, lo, hi);
  y = cubicOnInterval(x, lo, hi, knots, values, secondDerivatives);
  return true;
}

bool CubicSplineInterpolation(const std::vector<double>& x, std::vector<double>& y,
                              const std::vector<double>& knots, const std::vector<double>& values,
                              const std::vector<double>& secondDerivatives) {
  y.assign(x.size(), 0.0);
  if (x.empty() || knots.empty() || values.empty() || secondDerivatives.empty() ||
      values.size() != knots.size()) {
    return false;
  }
  assert(secondDerivatives.size() == knots.size());
  std::size_t lo = 0;
  std::size_t hi = 0;
  findInterval(knots, x[0], lo, hi);
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (knots.size() > 1) detail::stepKnotsUp(knots, x[i], lo, hi);
    y[i] = cubicOnInterval(x[i], lo, hi, knots, values, secondDerivatives);
  }
  return true;
}

}  // namespace math
}  // namespace lumo
