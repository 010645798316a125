#include "calibration_core/tof2/calibration_transformator_tof2.h"

#include <boost/pointer_cast.hpp>
#include <cassert>
#include <cmath>
#include <stdexcept>

#include "calibration_core/utilities/monotonic_range.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

vigra::Polynomial<double> tof2Polynomial(const ICalibrationConstantsFunctionalPtr& constants,
                                         unsigned int order, double* dm) {
  assert(order >= 1 && order <= 3);
  ICalibrationConstantsFunctionalTOF2Ptr tof2 =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(constants);
  if (!tof2) {
    LUMO_THROW(
        std::invalid_argument("CalibrationTransformatorTOF2: funConsts is not of type "
                              "ICalibrationConstantsFunctionalTOF2."));
  }
  vigra::Polynomial<double> polynomial(order, 1e-14);
  polynomial[0] = tof2->GetC0();
  polynomial[1] = std::sqrt(tof2->GetA1());
  if (order >= 2) polynomial[2] = tof2->GetC2();
  if (order >= 3) polynomial[3] = tof2->GetC3();
  *dm = tof2->GetDm();
  return polynomial;
}

CalibrationTransformatorTOF2Linear::CalibrationTransformatorTOF2Linear(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(1) {}

std::pair<double, double> CalibrationTransformatorTOF2Linear::monotonicMassRange(double m0) const {
  double dm = 0.0;
  const vigra::Polynomial<double> polynomial = tof2Polynomial(GetFunctionalConstants(), 1, &dm);
  return monotonicPolyShiftedSqrtRange(polynomial, m0, dm);
}

std::pair<double, double> CalibrationTransformatorTOF2Linear::usableMassRange(
    double m0, double maxRoundTripError) const {
  return monotonicMassRange(m0);
}

CalibrationTransformatorTOF2Quadratic::CalibrationTransformatorTOF2Quadratic(
    const ICalibrationConstantsFunctionalPtr& functionalConstants,
    const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset,
    const IMeasurementModeInfoPtr& info)
    : Transformator(functionalConstants, physicalConstants, indexOffset, info),
      TransformatorFunctionalDegree(2) {}

std::pair<double, double> CalibrationTransformatorTOF2Quadratic::monotonicMassRange(
    double m0) const {
  double dm = 0.0;
  const vigra::Polynomial<double> polynomial = tof2Polynomial(GetFunctionalConstants(), 2, &dm);
  return monotonicPolyShiftedSqrtRange(polynomial, m0, dm);
}

std::pair<double, double> CalibrationTransformatorTOF2Quadratic::usableMassRange(
    double m0, double maxRoundTripError) const {
  return monotonicMassRange(m0);
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
