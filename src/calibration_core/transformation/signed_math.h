// The signed square root and signed square of the square-root laws: a value
// below the origin is mirrored, so the laws stay odd around it.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_SIGNED_MATH_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_SIGNED_MATH_H_

#include <cmath>

namespace lumo {
namespace calibration {

// -sqrt(-x) below 0, else sqrt(x).
inline double signedSqrt(double x) { return x < 0 ? -std::sqrt(-x) : std::sqrt(x); }

// x * x, negated below 0.
inline double signedSquare(double x) {
  const double s = x * x;
  return x < 0 ? -s : s;
}

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_SIGNED_MATH_H_
