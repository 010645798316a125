// LinearlyContinuedFunction: a strictly monotonic function on [x0, x1],
// continued outside it by its tangents at x0 and x1, so that every argument
// has a finite image and the inverse exists everywhere.
//
// F is a function object type, usually a reference type, that provides
//   double operator()(double x) const   the function on (x0, x1),
//   double inverse(double y) const      its inverse on (f(x0), f(x1)).
// The continued function holds F as given: with a reference type, the
// referenced object must outlive it.
//
// Invariants: x0 < x1; slope0 and slope1 are non-zero with the same sign.
// The ends x0 and x1 themselves belong to the straight parts.
//
// Thread-safety: immutable after construction; safe for concurrent reads if
// F's operations are.
#ifndef KORA_MATH_LINEARLY_CONTINUED_FUNCTION_H_
#define KORA_MATH_LINEARLY_CONTINUED_FUNCTION_H_

#include <stdexcept>
#include <type_traits>
#include <utility>

#include "sys/throw.h"

namespace lumo {
namespace math {

template <class F>
class LinearlyContinuedFunction {
  using Function = std::remove_reference_t<F>;

 public:
  // Evaluates y0 = f(x0) and y1 = f(x1) through `function`.
  // Throws std::invalid_argument unless x0 < x1 and slope0 * slope1 > 0.
  LinearlyContinuedFunction(F function, double x0, double x1, double slope0, double slope1)
      : function_(std::forward<F>(function)),
        x0_(x0),
        y0_(0.0),
        slope0_(slope0),
        x1_(x1),
        y1_(0.0),
        slope1_(slope1) {
    // Checked here, where F is complete even when it owns this object.
    static_assert(
        std::is_convertible<decltype(std::declval<const Function&>()(0.0)), double>::value,
        "F must be callable as double(double) const");
    static_assert(
        std::is_convertible<decltype(std::declval<const Function&>().inverse(0.0)), double>::value,
        "F must provide double inverse(double) const");

    if (x0 >= x1) LUMO_THROW(std::invalid_argument("x1 must be > x0."));
    if (0.0 >= slope0 * slope1) {
      LUMO_THROW(std::invalid_argument("slopes must be non-zero and have same sign."));
    }
    y0_ = function_(x0);
    y1_ = function_(x1);
  }

  double operator()(double x) const {
    if (x0_ >= x) return (x - x0_) * slope0_ + y0_;
    if (x >= x1_) return (x - x1_) * slope1_ + y1_;
    return function_(x);
  }

  // Works for a rising and for a falling function.
  double inverse(double y) const {
    if ((slope0_ >= 0.0 && y0_ >= y) || (0.0 >= slope0_ && y >= y0_)) {
      return (y - y0_) / slope0_ + x0_;
    }
    if ((slope1_ >= 0.0 && y >= y1_) || (0.0 >= slope1_ && y1_ >= y)) {
      return (y - y1_) / slope1_ + x1_;
    }
    return function_.inverse(y);
  }

  double x0() const { return x0_; }
  double y0() const { return y0_; }
  double slope0() const { return slope0_; }
  double x1() const { return x1_; }
  double y1() const { return y1_; }
  double slope1() const { return slope1_; }

 private:
  F function_;
  double x0_;
  double y0_;
  double slope0_;
  double x1_;
  double y1_;
  double slope1_;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_LINEARLY_CONTINUED_FUNCTION_H_
