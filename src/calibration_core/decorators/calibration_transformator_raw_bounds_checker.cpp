#include "calibration_core/decorators/calibration_transformator_raw_bounds_checker.h"

namespace lumo {
namespace calibration {
namespace Transformation {

CalibrationTransformatorRawBoundsChecker::CalibrationTransformatorRawBoundsChecker(
    const ICalibrationTransformatorPtr& base, double lower, double upper)
    : BoundsChecker(base, lower, upper) {}

void CalibrationTransformatorRawBoundsChecker::MassToRaw(std::vector<double>& values) const {
  base()->MassToRaw(values);
  clamp(values);
}

void CalibrationTransformatorRawBoundsChecker::MassToRaw(const std::vector<double>& masses,
                                                         std::vector<double>& raws) const {
  base()->MassToRaw(masses, raws);
  clamp(raws);
}

double CalibrationTransformatorRawBoundsChecker::MassToRaw(double mass) const {
  return clamp(base()->MassToRaw(mass));
}

void CalibrationTransformatorRawBoundsChecker::IndexToRaw(const std::vector<std::int32_t>& indexes,
                                                          std::vector<double>& raws) const {
  base()->IndexToRaw(indexes, raws);
  clamp(raws);
}

double CalibrationTransformatorRawBoundsChecker::IndexToRaw(std::int32_t index) const {
  return clamp(base()->IndexToRaw(index));
}

void CalibrationTransformatorRawBoundsChecker::DIndexToRaw(std::vector<double>& values) const {
  base()->DIndexToRaw(values);
  clamp(values);
}

void CalibrationTransformatorRawBoundsChecker::DIndexToRaw(const std::vector<double>& dindexes,
                                                           std::vector<double>& raws) const {
  base()->DIndexToRaw(dindexes, raws);
  clamp(raws);
}

double CalibrationTransformatorRawBoundsChecker::DIndexToRaw(double dindex) const {
  return clamp(base()->DIndexToRaw(dindex));
}

void CalibrationTransformatorRawBoundsChecker::RawToMass(std::vector<double>& values) const {
  clamp(values);
  base()->RawToMass(values);
}

void CalibrationTransformatorRawBoundsChecker::RawToMass(const std::vector<double>& raws,
                                                         std::vector<double>& masses) const {
  base()->RawToMass(clamped(raws), masses);
}

double CalibrationTransformatorRawBoundsChecker::RawToMass(double raw) const {
  return base()->RawToMass(clamp(raw));
}

void CalibrationTransformatorRawBoundsChecker::RawToIndex(
    const std::vector<double>& raws, std::vector<std::int32_t>& indexes) const {
  base()->RawToIndex(clamped(raws), indexes);
}

void CalibrationTransformatorRawBoundsChecker::RawToDIndex(std::vector<double>& values) const {
  clamp(values);
  base()->RawToDIndex(values);
}

void CalibrationTransformatorRawBoundsChecker::RawToDIndex(const std::vector<double>& raws,
                                                           std::vector<double>& dindexes) const {
  base()->RawToDIndex(clamped(raws), dindexes);
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
