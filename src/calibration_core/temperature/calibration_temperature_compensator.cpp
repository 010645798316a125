#include "calibration_core/temperature/calibration_temperature_compensator.h"

#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "calibration_core/temperature/temperature_compensation_constants.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace TemperatureCompensation {

namespace {

ICalibrationConstantsFunctionalTemperatureCompensationPtr temperatureConstantsOf(
    const ICalibrationTransformator& transformator) {
  return boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
      transformator.GetFunctionalConstants());
}

}  // namespace

CalibrationTemperatureCompensator::CalibrationTemperatureCompensator(
    const ICalibrationTransformatorPtr& reference, const std::vector<double>& referenceTemperatures,
    const std::vector<double>& temperatureFactors)
    : reference_(reference),
      referenceTemperatures_(referenceTemperatures),
      temperatureFactors_(temperatureFactors) {}

ICalibrationTransformatorPtr CalibrationTemperatureCompensator::GetCompensatedTransformator(
    const ICalibrationTransformatorPtr& measured) const {
  if (!measured || !reference_) return ICalibrationTransformatorPtr();
  const ICalibrationConstantsFunctionalTemperatureCompensationPtr measuredConstants =
      temperatureConstantsOf(*measured);
  if (!measuredConstants) return cloneAs(reference_);
  const std::vector<double> temperatures = measuredConstants->GetTemperatures();
  const ICalibrationConstantsPhysicalPtr physical = measured->GetPhysicalConstants();

  const ICalibrationTransformatorPtr compensated = cloneAs(reference_);
  compensated->SetPhysicalConstants(physical);
  const ICalibrationConstantsFunctionalTemperatureCompensationPtr adapted =
      temperatureConstantsOf(*compensated);
  const ICalibrationConstantsFunctionalTemperatureCompensationPtr reference =
      temperatureConstantsOf(*reference_);
  if (!adapted || !reference) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationTemperatureCompensator::GetCompensatedTransformator: the reference "
        "transformator's constants carry no temperatures"));
  }
  adapted->SetTemperatures(temperatures);
  adapted->AdaptToReference(reference, referenceTemperatures_, temperatureFactors_);
  compensated->SetFunctionalConstants(adapted);
  return compensated;
}

}  // namespace TemperatureCompensation
}  // namespace calibration
}  // namespace lumo
