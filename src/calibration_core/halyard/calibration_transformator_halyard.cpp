#include "calibration_core/halyard/calibration_transformator_halyard.h"

namespace lumo {
namespace calibration {
namespace Transformation {

CalibrationTransformatorHalyardLinear::CalibrationTransformatorHalyardLinear(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(1) {}

CalibrationTransformatorHalyardQuadratic::CalibrationTransformatorHalyardQuadratic(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(2) {}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
