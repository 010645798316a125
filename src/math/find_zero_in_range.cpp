#include "math/find_zero_in_range.h"

#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace math {
namespace detail {

void throwNegativeTolerance() { LUMO_THROW(std::runtime_error("findZeroInRange(): tol < 0.")); }

void throwEmptyInterval() { LUMO_THROW(std::runtime_error("findZeroInRange(): b <= a.")); }

}  // namespace detail
}  // namespace math
}  // namespace lumo
