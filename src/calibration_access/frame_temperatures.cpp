#include "calibration_access/frame_temperatures.h"

#include <vector>

#include "calibration_core/temperature/calibration_temperature_compensator.h"
#include "calibration_core/temperature/temperature_compensation_constants.h"
#include "logging/log_stream.h"

namespace lumo {
namespace io {
namespace calibration {
namespace detail {

using lumo::calibration::ICalibrationConstantsFunctionalTemperatureCompensation;
using lumo::calibration::ICalibrationTransformatorPtr;
using lumo::logging::Level;
using lumo::logging::LogStream;

ICalibrationTransformatorPtr applyFrameTemperatures(
    const ICalibrationTransformatorPtr& transformator,
    const details::MzCalibTemperatureInfo& reference, double T1, double T2,
    const lumo::logging::Logger& logger, const char* noCompensationLine, bool* loggedLine) {
  if (loggedLine) *loggedLine = false;
  const auto constants =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
          transformator->GetFunctionalConstants());
  if (!constants) return transformator;

  if (reference.dC1 == 0.0 && reference.dC2 == 0.0) {
    LogStream(logger, Level::TRACE) << noCompensationLine;
    if (loggedLine) *loggedLine = true;
    constants->SetTemperatures({T1, T2});
    constants->SetCompensationMode(3);  // SetTemperatures made it 2
    transformator->SetFunctionalConstants(constants);
    return transformator;
  }

  lumo::calibration::TemperatureCompensation::CalibrationTemperatureCompensator compensator;
  compensator.SetReferenceTransformator(transformator);
  compensator.SetTemperatureFactors({reference.dC1, reference.dC2});
  compensator.SetReferenceTemperatures({reference.T1, reference.T2});
  constants->SetTemperatures({T1, T2});
  transformator->SetFunctionalConstants(constants);
  return compensator.GetCompensatedTransformator(transformator);
}

}  // namespace detail
}  // namespace calibration
}  // namespace io
}  // namespace lumo
