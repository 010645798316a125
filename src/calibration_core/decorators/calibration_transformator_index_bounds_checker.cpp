#include "calibration_core/decorators/calibration_transformator_index_bounds_checker.h"

namespace lumo {
namespace calibration {
namespace Transformation {

CalibrationTransformatorIndexBoundsChecker::CalibrationTransformatorIndexBoundsChecker(
    const ICalibrationTransformatorPtr& base, double lower, double upper)
    : BoundsChecker(base, lower, upper) {}

void CalibrationTransformatorIndexBoundsChecker::MassToDIndex(std::vector<double>& values) const {
  base()->MassToDIndex(values);
  clamp(values);
}

void CalibrationTransformatorIndexBoundsChecker::MassToDIndex(const std::vector<double>& masses,
                                                              std::vector<double>& dindexes) const {
  base()->MassToDIndex(masses, dindexes);
  clamp(dindexes);
}

double CalibrationTransformatorIndexBoundsChecker::MassToDIndex(double mass) const {
  return clamp(base()->MassToDIndex(mass));
}

void CalibrationTransformatorIndexBoundsChecker::MassToIndex(
    const std::vector<double>& masses, std::vector<std::int32_t>& indexes) const {
  base()->MassToIndex(masses, indexes);
  clamp(indexes);
}

std::int32_t CalibrationTransformatorIndexBoundsChecker::MassToIndex(double mass) const {
  return static_cast<std::int32_t>(clamp(base()->MassToDIndex(mass)) + 0.5);
}

void CalibrationTransformatorIndexBoundsChecker::RawToDIndex(std::vector<double>& values) const {
  base()->RawToDIndex(values);
  clamp(values);
}

void CalibrationTransformatorIndexBoundsChecker::RawToDIndex(const std::vector<double>& raws,
                                                             std::vector<double>& dindexes) const {
  base()->RawToDIndex(raws, dindexes);
  clamp(dindexes);
}

double CalibrationTransformatorIndexBoundsChecker::RawToDIndex(double raw) const {
  return clamp(base()->RawToDIndex(raw));
}

void CalibrationTransformatorIndexBoundsChecker::RawToIndex(
    const std::vector<double>& raws, std::vector<std::int32_t>& indexes) const {
  base()->RawToIndex(raws, indexes);
  clamp(indexes);
}

std::int32_t CalibrationTransformatorIndexBoundsChecker::RawToIndex(double raw) const {
  return clamp(base()->RawToIndex(raw));
}

double CalibrationTransformatorIndexBoundsChecker::IndexToRaw(std::int32_t index) const {
  return base()->DIndexToRaw(static_cast<double>(index));
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
