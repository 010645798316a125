// CAkima: piecewise Hermite cubics through given knots, values and slopes,
// optionally kept from overshooting an interval's end values. The slopes are
// data; nothing here derives them from the points.
//
// Thread-safety: stateless; every operation may run on several threads.
#ifndef KORA_MATH_SPLINES_AKIMA_H_
#define KORA_MATH_SPLINES_AKIMA_H_

#include <vector>

namespace lumo {
namespace math {

class CAkima {
 public:
  // `constraint`: 0 none; > 0 keeps y from falling below the lower end value
  // of its interval; < 0 keeps y from rising above the higher end value. A
  // clipped y has dy = 0.
  //
  // With n knots: n == 0 gives y = dy = 0; n == 1 gives values[0] and 0;
  // n == 2 is the straight line through the first knot with the first
  // slope, for every x; for n >= 3, x outside the knots gives the nearer end
  // value and dy = 0, and inside the Hermite cubic of its interval.
  // Throws std::invalid_argument "CalcInterpolation failed because y.size()
  // <values.size()>!= x.size() <knots.size()>" when the two differ.
  // REQUIRES: knots ascending; slopes.size() >= knots.size() (n >= 2).
  void CalcInterpolation(double x, double& y, double& dy, const std::vector<double>& knots,
                         const std::vector<double>& values, const std::vector<double>& slopes,
                         int constraint) const;

  // The point form for every x; y and dy are resized to x.size(). For n >= 3
  // the interval found for one point is where the search for the next
  // starts, so ascending x costs one bisection in all. The point forms
  // differ in one place: an x of exactly 0.0 more than one interval below
  // the previous point's interval is evaluated on the interval one step
  // down (the cubic extrapolated), not on its own.
  // Throws as the point form.
  void CalcInterpolation(const std::vector<double>& x, std::vector<double>& y,
                         std::vector<double>& dy, const std::vector<double>& knots,
                         const std::vector<double>& values, const std::vector<double>& slopes,
                         int constraint) const;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_SPLINES_AKIMA_H_
