#include "calibration_core/ftms/ftms_index_checker.h"

#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

void FTMSIndexChecker::UpdatePhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) {
  ICalibrationConstantsPhysicalFTMSPtr ftms =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalFTMS>(constants);
  if (!ftms) {
    LUMO_THROW(std::logic_error(
        "lumo::calibration::Transformation::FTMSIndexChecker::UpdatePhysicalConstants("
        "ICalibrationConstantsPhysicalPtr physConsts): This function can only be used with "
        "ICalibrationConstantsPhysicalFTMSPtr objects."));
  }
  size = static_cast<double>(ftms->GetSize());
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
