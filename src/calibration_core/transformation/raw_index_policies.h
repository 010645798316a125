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

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_INDEX_POLICIES_H_
