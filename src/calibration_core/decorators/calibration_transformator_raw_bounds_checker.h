// CalibrationTransformatorRawBoundsChecker: keeps the raw axis of the
// wrapped model inside [lower, upper]. Raw values it returns are clamped;
// raw values it is given are clamped before they reach the wrapped model,
// except by the two scalar raw-to-index forms (RawToIndex, RawToDIndex),
// which forward unclamped while their batch forms clamp. Every conversion
// that neither takes nor gives a raw value is forwarded.
//
// Thread-safety: as TransformatorDecorator.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_RAW_BOUNDS_CHECKER_H_
#define KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_RAW_BOUNDS_CHECKER_H_

#include <cstdint>
#include <vector>

#include "calibration_core/decorators/bounds_checker.h"
#include "calibration_core/decorators/bounds_checker_interfaces.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorRawBoundsChecker final
    : public BoundsChecker<CalibrationTransformatorRawBoundsChecker,
                           ICalibrationTransformatorRawBoundsChecker> {
 public:
  // Wraps a clone of `base`. REQUIRES: `base` is not empty.
  CalibrationTransformatorRawBoundsChecker(const ICalibrationTransformatorPtr& base, double lower,
                                           double upper);

  static const char* ClassName() { return "CalibrationTransformatorRawBoundsChecker"; }
  static const char* BoundsLabel() { return "raw bounds: ["; }

  // Results clamped.
  void MassToRaw(std::vector<double>& values) const override;
  void MassToRaw(const std::vector<double>& masses, std::vector<double>& raws) const override;
  double MassToRaw(double mass) const override;
  void IndexToRaw(const std::vector<std::int32_t>& indexes,
                  std::vector<double>& raws) const override;
  double IndexToRaw(std::int32_t index) const override;
  void DIndexToRaw(std::vector<double>& values) const override;
  void DIndexToRaw(const std::vector<double>& dindexes, std::vector<double>& raws) const override;
  double DIndexToRaw(double dindex) const override;

  // Inputs clamped first. The in-place forms clamp the caller's vector; the
  // out-of-place forms clamp a copy and leave the caller's source alone.
  void RawToMass(std::vector<double>& values) const override;
  void RawToMass(const std::vector<double>& raws, std::vector<double>& masses) const override;
  double RawToMass(double raw) const override;
  void RawToIndex(const std::vector<double>& raws,
                  std::vector<std::int32_t>& indexes) const override;
  void RawToDIndex(std::vector<double>& values) const override;
  void RawToDIndex(const std::vector<double>& raws, std::vector<double>& dindexes) const override;
  // The scalar forms of these two: forwarded, unclamped.
  using BoundsChecker::RawToDIndex;
  using BoundsChecker::RawToIndex;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_RAW_BOUNDS_CHECKER_H_
