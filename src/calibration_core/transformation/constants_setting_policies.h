// Constants-setting policies: stateless hooks that a Transformator runs on
// every SetFunctionalConstants and SetPhysicalConstants, after the new
// constants are in place and before the conversion policies read them.
// A constants-setting policy provides
//   void AdjustConstants(const ICalibrationConstantsFunctionalPtr& functional,
//                        const ICalibrationConstantsPhysicalPtr& physical) const
// and may change the objects it is given (both are the model's own clones;
// either may be empty).
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_CONSTANTS_SETTING_POLICIES_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_CONSTANTS_SETTING_POLICIES_H_

#include <boost/pointer_cast.hpp>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/constants/physical_constants.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class ConstantsSettingNoAction {
 public:
  void AdjustConstants(const ICalibrationConstantsFunctionalPtr&,
                       const ICalibrationConstantsPhysicalPtr&) const {}
};

// Copies the raw mode and then the calibration mode of the functional FTMS
// constants into the physical FTMS constants. Does nothing without physical
// constants or when either object is not of the FTMS family.
class ConstantsSettingAdjustForFTMS {
 public:
  void AdjustConstants(const ICalibrationConstantsFunctionalPtr& functional,
                       const ICalibrationConstantsPhysicalPtr& physical) const {
    if (!physical) return;
    ICalibrationConstantsFunctionalFTMSPtr f =
        boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalFTMS>(functional);
    ICalibrationConstantsPhysicalFTMSPtr p =
        boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalFTMS>(physical);
    if (!f || !p) return;
    p->SetFtmsRawMode(f->GetFtmsRawMode());
    p->SetCalibMode(f->GetCalibMode());
  }
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_CONSTANTS_SETTING_POLICIES_H_
