// The cubic spline through knots and values with given second derivatives
// at the knots (the natural form of a precomputed spline).
//
// There is no end test: x outside the knots is extrapolated with the cubic
// of the first or last interval.
//
// Thread-safety: stateless; every function may run on several threads.
#ifndef KORA_MATH_SPLINES_CUBIC_SPLINE_H_
#define KORA_MATH_SPLINES_CUBIC_SPLINE_H_

#include <vector>

namespace lumo {
namespace math {

// The spline's value at x. False, with y = 0.0, when knots is empty or
// values differs from it in length. Equal neighbouring knots divide by zero.
// REQUIRES: knots ascending; secondDerivatives.size() == knots.size().
bool CubicSplineInterpolation(double x, double& y, const std::vector<double>& knots,
                              const std::vector<double>& values,
                              const std::vector<double>& secondDerivatives);

// The values at every x; y is resized to x.size(). One bisection for the
// first point, then the interval only steps upwards: for ascending x it is
// the point form, while a point lying below the interval of the point
// before is extrapolated from that interval. False, with every y 0.0, when
// any input is empty or values differs from knots in length.
bool CubicSplineInterpolation(const std::vector<double>& x, std::vector<double>& y,
                              const std::vector<double>& knots, const std::vector<double>& values,
                              const std::vector<double>& secondDerivatives);

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_SPLINES_CUBIC_SPLINE_H_
