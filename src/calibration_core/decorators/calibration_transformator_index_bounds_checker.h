// CalibrationTransformatorIndexBoundsChecker: keeps the indexes that the
// wrapped model hands out inside [lower, upper] (in samples). Whole indexes
// are clamped to the bounds truncated toward zero. The direction from an
// index to anything else is not clamped: the interval guards what the
// caller receives, not what it sends.
//
// Thread-safety: as TransformatorDecorator.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_INDEX_BOUNDS_CHECKER_H_
#define KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_INDEX_BOUNDS_CHECKER_H_

#include <cstdint>
#include <vector>

#include "calibration_core/decorators/bounds_checker.h"
#include "calibration_core/decorators/bounds_checker_interfaces.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorIndexBoundsChecker final
    : public BoundsChecker<CalibrationTransformatorIndexBoundsChecker,
                           ICalibrationTransformatorIndexBoundsChecker> {
 public:
  // Wraps a clone of `base`. REQUIRES: `base` is not empty.
  CalibrationTransformatorIndexBoundsChecker(const ICalibrationTransformatorPtr& base, double lower,
                                             double upper);

  static const char* ClassName() { return "CalibrationTransformatorIndexBoundsChecker"; }
  static const char* BoundsLabel() { return "index bounds: ["; }

  // Results clamped.
  void MassToDIndex(std::vector<double>& values) const override;
  void MassToDIndex(const std::vector<double>& masses,
                    std::vector<double>& dindexes) const override;
  double MassToDIndex(double mass) const override;
  void MassToIndex(const std::vector<double>& masses,
                   std::vector<std::int32_t>& indexes) const override;
  // The wrapped model's dindex, clamped, plus 0.5, truncated toward zero.
  std::int32_t MassToIndex(double mass) const override;
  void RawToDIndex(std::vector<double>& values) const override;
  void RawToDIndex(const std::vector<double>& raws, std::vector<double>& dindexes) const override;
  double RawToDIndex(double raw) const override;
  void RawToIndex(const std::vector<double>& raws,
                  std::vector<std::int32_t>& indexes) const override;
  std::int32_t RawToIndex(double raw) const override;

  // DIndexToRaw of the wrapped model at the index; the batch form forwards.
  double IndexToRaw(std::int32_t index) const override;
  using BoundsChecker::IndexToRaw;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_INDEX_BOUNDS_CHECKER_H_
