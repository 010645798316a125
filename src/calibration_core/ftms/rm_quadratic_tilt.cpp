#include "calibration_core/ftms/rm_quadratic_tilt.h"

#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace detail {

double solveFlippedContinuedQuadraticEquationDegenerate(double b, double n) {
  if (b > 0) return -(n / b);
  if (b < 0) LUMO_THROW(std::runtime_error("Case b*x + c with negative slope."));
  LUMO_THROW(std::runtime_error("Polynomial is constant."));
}

}  // namespace detail
}  // namespace calibration
}  // namespace lumo
