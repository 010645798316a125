// Raw-to-index policies. A raw-to-index policy provides, all const but the
// updates and SetIndexOffset:
//   double       IndexToRaw(std::int32_t index)
//   double       DIndexToRaw(double dindex)
//   std::int32_t RawToIndex(double raw)
//   double       RawToDIndex(double raw)
//   void         UpdatePhysicalConstants(ICalibrationConstantsPhysicalPtr)
//   double       GetIndexOffset()
//   void         SetIndexOffset(double)
// Its numbers are copies: a conversion reads no constants object.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_INDEX_POLICIES_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_INDEX_POLICIES_H_

#include <boost/pointer_cast.hpp>
#include <cstdint>

#include "calibration_core/constants/physical_constants.h"
#include "calibration_core/transformation/policy_errors.h"

namespace lumo {
namespace calibration {
namespace Transformation {

// The straight line raw = (dindex + indexOffset) * a1 + a0, with a0 and a1
// from ICalibrationConstantsPhysicalLinear.
class RILinear {
 public:
  RILinear() : a0(0.0), a1(1.0), indexOffset(0.0) {}

  double IndexToRaw(std::int32_t index) const {
    return (static_cast<double>(index) + indexOffset) * a1 + a0;
  }
  double DIndexToRaw(double dindex) const { return (indexOffset + dindex) * a1 + a0; }
  double RawToDIndex(double raw) const { return (raw - a0) / a1 - indexOffset; }
  // The truncation of dindex + 0.5 toward zero: the nearest index for
  // positive positions only (-0.7 gives 0, -1.7 gives -1, 2.5 gives 3).
  // REQUIRES: the position fits an int32.
  std::int32_t RawToIndex(double raw) const {
    return static_cast<std::int32_t>((raw - a0) / a1 - indexOffset + 0.5);
  }

  // Reads a0 and a1 afresh. Throws std::invalid_argument when `constants`
  // is not ICalibrationConstantsPhysicalLinear; the policy is then unchanged.
  void UpdatePhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) {
    ICalibrationConstantsPhysicalLinearPtr linear =
        boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalLinear>(constants);
    if (!linear) throwWrongPhysicalConstants();
    const double newA0 = linear->GetA0();
    const double newA1 = linear->GetA1();
    a0 = newA0;
    a1 = newA1;
  }

  double GetIndexOffset() const { return indexOffset; }
  void SetIndexOffset(double offset) { indexOffset = offset; }

  double a0;
  double a1;
  double indexOffset;
};

// RI with every index clamped by Checker, which provides
//   double limit(double dindex) const
//   void   UpdatePhysicalConstants(const ICalibrationConstantsPhysicalPtr&)
// The limit applies to the incoming index of IndexToRaw and DIndexToRaw, to
// the result of RawToDIndex, and in RawToIndex to the position before it is
// rounded. RI's update runs first, then Checker's; a failure of either
// leaves the caller to discard the half-updated copy (the Transformator
// updates a copy and swaps it in).
template <class RI, class Checker>
class IndexCheck {
 public:
  double IndexToRaw(std::int32_t index) const {
    return ri.DIndexToRaw(checker.limit(static_cast<double>(index)));
  }
  double DIndexToRaw(double dindex) const { return ri.DIndexToRaw(checker.limit(dindex)); }
  double RawToDIndex(double raw) const { return checker.limit(ri.RawToDIndex(raw)); }
  // REQUIRES: raw is not NaN.
  std::int32_t RawToIndex(double raw) const {
    return static_cast<std::int32_t>(checker.limit(ri.RawToDIndex(raw)) + 0.5);
  }

  void UpdatePhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) {
    ri.UpdatePhysicalConstants(constants);
    checker.UpdatePhysicalConstants(constants);
  }

  double GetIndexOffset() const { return ri.GetIndexOffset(); }
  void SetIndexOffset(double offset) { ri.SetIndexOffset(offset); }

  RI ri;
  Checker checker;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_INDEX_POLICIES_H_
