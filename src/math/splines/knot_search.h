// The interval search over ascending knots shared by the spline evaluations.
//
// An interval is the pair (lo, hi = lo + 1) of knot indices. The vector
// forms of the splines keep one interval across the points they evaluate:
// one bisection for the first point, then, for ascending points, at most one
// step per point.
//
// REQUIRES (all functions): knots.size() >= 2. Knots are not checked for
// order; with unordered knots the search ends in some interval.
#ifndef KORA_MATH_SPLINES_KNOT_SEARCH_H_
#define KORA_MATH_SPLINES_KNOT_SEARCH_H_

#include <cassert>
#include <cstddef>
#include <vector>

namespace lumo {
namespace math {
namespace detail {

// The interval with knots[lo] <= x < knots[hi] by bisection over all knots.
// x below the first knot gives (0, 1); x at or above the last knot gives
// (n - 2, n - 1).
inline void bisectKnots(const std::vector<double>& knots, double x, std::size_t& lo,
                        std::size_t& hi) {
  assert(knots.size() >= 2);
  lo = 0;
  hi = knots.size() - 1;
  while (hi - lo > 1) {
    const std::size_t mid = (hi + lo) / 2;
    if (knots[mid] > x) {
      hi = mid;
    } else {
      lo = mid;
    }
  }
}

// For x above the interval: one step up, and a new bisection if x is still
// above it and the interval is not the last. An interval that is already
// the last one stays (x is then extrapolated from it).
inline void stepKnotsUp(const std::vector<double>& knots, double x, std::size_t& lo,
                        std::size_t& hi) {
  const std::size_t last = knots.size() - 1;
  if (x > knots[hi] && hi < last) {
    ++lo;
    ++hi;
    if (x > knots[hi] && hi != last) bisectKnots(knots, x, lo, hi);
  }
}

// For x below the interval: one step down, and a new bisection if x is still
// below it, except at x == 0.0 exactly, where the stepped-down interval
// stands even though x lies below it.
inline void stepKnotsDown(const std::vector<double>& knots, double x, std::size_t& lo,
                          std::size_t& hi) {
  if (knots[lo] > x && lo > 0) {
    --lo;
    --hi;
    if (knots[lo] > x && x != 0.0) bisectKnots(knots, x, lo, hi);
  }
}

}  // namespace detail
}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_SPLINES_KNOT_SEARCH_H_
