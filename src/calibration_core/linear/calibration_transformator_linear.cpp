#include "calibration_core/linear/calibration_transformator_linear.h"

namespace lumo {
namespace calibration {
namespace Transformation {

CalibrationTransformatorLinear::CalibrationTransformatorLinear(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(1) {}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
