#include "math/splines/akima.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <stdexcept>

#include "math/splines/knot_search.h"
#include "sys/throw.h"

namespace lumo {
namespace math {

namespace {

void checkSizes(const std::vector<double>& knots, const std::vector<double>& values) {
  if (knots.size() != values.size()) {
    std::ostringstream text;
    text << "CalcInterpolation failed because y.size() " << values.size() << "!= x.size() "
         << knots.size();
    LUMO_THROW(std::invalid_argument(text.str()));
  }
}

// Clips (y, dy) to the end values y0, y1 as `constraint` asks.
void constrain(double y0, double y1, int constraint, double& y, double& dy) {
  if (constraint > 0) {
    const double lo = std::min(y0, y1);
    if (lo > y) {
      y = lo;
      dy = 0.0;
    }
  } else if (constraint < 0) {
    const double hi = std::max(y0, y1);
    if (y > hi) {
      y = hi;
      dy = 0.0;
    }
  }
}

// The Hermite cubic of the interval [knots[lo], knots[hi]] at x, constrained.
void hermite(double x, std::size_t lo, std::size_t hi, const std::vector<double>& knots,
             const std::vector<double>& values, const std::vector<double>& slopes, int constraint,
             double& y, double& dy) {
  const double h = knots[hi] - knots[lo];
  const double t = x - knots[lo];
  const double y0 = values[lo];
  const double y1 = values[hi];
  const double s0 = slopes[lo];
  const double s1 = slopes[hi];
  const double m = (y1 - y0) / h;
  const double c2 = (3 * m - 2 * s0 - s1) / h;
  const double c3 = (s0 + s1 - 2 * m) / h / h;
  y = y0 + s0 * t + c2 * t * t + c3 * t * t * t;
  dy = s0 + 2 * c2 * t + 3 * c3 * t * t;
  constrain(y0, y1, constraint, y, dy);
}

// Outside the knots (n >= 3): the nearer end value, flat. False inside.
bool outside(double x, const std::vector<double>& knots, const std::vector<double>& values,
             double& y, double& dy) {
  if (x < knots.front()) {
    y = values.front();
  } else if (x > knots.back()) {
    y = values.back();
  } else {
    return false;
  }
  dy = 0.0;
  return true;
}

}  // namespace

void CAkima::CalcInterpolation(double x, double& y, double& dy, const std::vector<double>& knots,
                               const std::vector<double>& values, const std::vector<double>& slopes,
                               int constraint) const {
  checkSizes(knots, values);
  const std::size_t n = knots.size();
  if (n == 0) {
    y = 0.0;
    dy = 0.0;
  } else if (n == 1) {
    y = values[0];
    dy = 0.0;
  } else if (n == 2) {
    dy = slopes[0];
    y = values[0] + (x - knots[0]) * slopes[0];
    constrain(values[0], values[1], constraint, y, dy);
  } else if (!outside(x, knots, values, y, dy)) {
    std::size_t i = 1;
    while (i < n - 1 && !(knots[i] > x)) ++i;
    hermite(x, i - 1, i, knots, values, slopes, constraint, y, dy);
  }
}

void CAkima::CalcInterpolation(const std::vector<double>& x, std::vector<double>& y,
                               std::vector<double>& dy, const std::vector<double>& knots,
                               const std::vector<double>& values, const std::vector<double>& slopes,
                               int constraint) const {
  checkSizes(knots, values);
  y.resize(x.size());
  dy.resize(x.size());
  if (knots.size() <= 2) {
    for (std::size_t i = 0; i < x.size(); ++i) {
      CalcInterpolation(x[i], y[i], dy[i], knots, values, slopes, constraint);
    }
    return;
  }
  if (x.empty()) return;
  std::size_t lo = 0;
  std::size_t hi = 0;
  detail::bisectKnots(knots, x[0], lo, hi);
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (outside(x[i], knots, values, y[i], dy[i])) continue;
    detail::stepKnotsUp(knots, x[i], lo, hi);
    detail::stepKnotsDown(knots, x[i], lo, hi);
    hermite(x[i], lo, hi, knots, values, slopes, constraint, y[i], dy[i]);
  }
}

}  // namespace math
}  // namespace lumo
