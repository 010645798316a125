#include "calibration_core/ftms/calibration_transformator_ftms.h"

namespace lumo {
namespace calibration {
namespace Transformation {

CalibrationTransformatorFTMS04::CalibrationTransformatorFTMS04(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info) {}

CalibrationTransformatorFTMS15::CalibrationTransformatorFTMS15(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info) {}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
