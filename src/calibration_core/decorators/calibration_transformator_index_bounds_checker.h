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
  // (base, lower, upper): wraps a clone of `base`. REQUIRES: `base` is not
  // empty.
  using BoundsChecker::BoundsChecker;

  static const char* ClassName() { return "CalibrationTransformatorIndexBoundsChecker"; }
  static const char* BoundsLabel() { return "index bounds: ["; }

  // Results clamped.
  KORA_CLAMPED_RESULT(MassToDIndex);
  KORA_CLAMPED_RESULT_BATCH(MassToIndex, double, std::int32_t);
  // The wrapped model's dindex, clamped, plus 0.5, truncated toward zero.
  std::int32_t MassToIndex(double mass) const override;
  KORA_CLAMPED_RESULT(RawToDIndex);
  KORA_CLAMPED_RESULT_BATCH(RawToIndex, double, std::int32_t);
  KORA_CLAMPED_RESULT_SCALAR(RawToIndex, double, std::int32_t);

  // DIndexToRaw of the wrapped model at the index; the batch form forwards.
  double IndexToRaw(std::int32_t index) const override;
  using BoundsChecker::IndexToRaw;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_INDEX_BOUNDS_CHECKER_H_
