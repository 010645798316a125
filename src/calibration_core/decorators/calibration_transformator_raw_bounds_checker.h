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
  // (base, lower, upper): wraps a clone of `base`. REQUIRES: `base` is not
  // empty.
  using BoundsChecker::BoundsChecker;

  static const char* ClassName() { return "CalibrationTransformatorRawBoundsChecker"; }
  static const char* BoundsLabel() { return "raw bounds: ["; }

  // Results clamped.
  KORA_CLAMPED_RESULT(MassToRaw);
  KORA_CLAMPED_RESULT_BATCH(IndexToRaw, std::int32_t, double);
  KORA_CLAMPED_RESULT_SCALAR(IndexToRaw, std::int32_t, double);
  KORA_CLAMPED_RESULT(DIndexToRaw);

  // Inputs clamped first. The in-place forms clamp the caller's vector; the
  // out-of-place forms clamp a copy and leave the caller's source alone.
  KORA_CLAMPED_INPUT_IN_PLACE(RawToMass);
  KORA_CLAMPED_INPUT_BATCH(RawToMass, double);
  double RawToMass(double raw) const override { return base()->RawToMass(clamp(raw)); }
  KORA_CLAMPED_INPUT_BATCH(RawToIndex, std::int32_t);
  KORA_CLAMPED_INPUT_IN_PLACE(RawToDIndex);
  KORA_CLAMPED_INPUT_BATCH(RawToDIndex, double);
  // The scalar forms of these two: forwarded, unclamped.
  using BoundsChecker::RawToDIndex;
  using BoundsChecker::RawToIndex;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_RAW_BOUNDS_CHECKER_H_
