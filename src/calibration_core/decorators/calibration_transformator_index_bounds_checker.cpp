#include "calibration_core/decorators/calibration_transformator_index_bounds_checker.h"

namespace lumo {
namespace calibration {
namespace Transformation {

std::int32_t CalibrationTransformatorIndexBoundsChecker::MassToIndex(double mass) const {
  return static_cast<std::int32_t>(clamp(base()->MassToDIndex(mass)) + 0.5);
}

double CalibrationTransformatorIndexBoundsChecker::IndexToRaw(std::int32_t index) const {
  return base()->DIndexToRaw(static_cast<double>(index));
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
