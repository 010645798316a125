#include "calibration_core/tof/calibration_transformator_tof.h"

#include <boost/pointer_cast.hpp>
#include <cmath>
#include <stdexcept>

#include "calibration_core/utilities/monotonic_range.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace {

// The square-root-law polynomial c0 + slope * w (+ c2 * w^2) of the model's
// constants, slope being the plain square root of the slope term.
vigra::Polynomial<double> tof1Polynomial(const ICalibrationConstantsFunctionalPtr& constants,
                                         bool quadratic) {
  ICalibrationConstantsFunctionalTOF1Ptr tof1 =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(constants);
  if (!tof1) {
    LUMO_THROW(
        std::invalid_argument("CalibrationTransformatorTOF: funConsts is not of type "
                              "ICalibrationConstantsFunctionalTOF1."));
  }
  vigra::Polynomial<double> polynomial(quadratic ? 2u : 1u, 1e-14);
  polynomial[0] = tof1->GetC0();
  polynomial[1] = std::sqrt(tof1->GetA1());
  if (quadratic) polynomial[2] = tof1->GetC2();
  return polynomial;
}

}  // namespace

CalibrationTransformatorTOFLinear::CalibrationTransformatorTOFLinear(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(1) {}

std::pair<double, double> CalibrationTransformatorTOFLinear::monotonicMassRange(double m0) const {
  return monotonicPolyShiftedSqrtRange(tof1Polynomial(GetFunctionalConstants(), false), m0, 0.0);
}

std::pair<double, double> CalibrationTransformatorTOFLinear::usableMassRange(
    double m0, double maxRoundTripError) const {
  return monotonicMassRange(m0);
}

CalibrationTransformatorTOFQuadratic::CalibrationTransformatorTOFQuadratic(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(2) {}

std::pair<double, double> CalibrationTransformatorTOFQuadratic::monotonicMassRange(
    double m0) const {
  return monotonicPolyShiftedSqrtRange(tof1Polynomial(GetFunctionalConstants(), true), m0, 0.0);
}

std::pair<double, double> CalibrationTransformatorTOFQuadratic::usableMassRange(
    double m0, double maxRoundTripError) const {
  return monotonicMassRange(m0);
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
