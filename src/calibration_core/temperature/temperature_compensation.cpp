#include "calibration_core/temperature/temperature_compensation.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "calibration_core/factory/calibration_transformator_factory.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {

boost::shared_ptr<ICalibrationTransformator> addTemperatureCompensationInfo(
    const boost::shared_ptr<const ICalibrationTransformator>& transformator,
    const TemperatureCompensationInfo& info) {
  if (boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
          transformator->GetFunctionalConstants())) {
    LUMO_THROW(std::runtime_error("Already contains temp-comp info."));
  }
  const boost::shared_ptr<const ICalibrationTransformator> base = transformator;
  const bool zrk = false;
  const Transformation::ICalibrationTransformatorFactory& factory =
      Transformation::CalibrationTransformatorFactory::Instance();
  switch (base->GetCalibrationType()) {
    case kCalibrationTypeTOF:
    case kCalibrationTypeTOFTemperatureCompensation: {
      const ICalibrationConstantsFunctionalTOF1Ptr tof1 =
          boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(
              base->GetFunctionalConstants());
      const ICalibrationConstantsFunctionalPtr compensated =
          boost::make_shared<Constants::CalibrationConstantsFunctionalTOF1TemperatureCompensation>(
              tof1->GetC0(), tof1->GetC1(), tof1->GetC2(), info.temperatures, info.factors,
              info.strategy);
      return factory.createTransformator(compensated, base->GetPhysicalConstants());
    }
    case kCalibrationTypeTOF2:
    case kCalibrationTypeTOF2TemperatureCompensation: {
      if (zrk) LUMO_THROW(std::runtime_error("TOF2+ZRK not supported."));
      const ICalibrationConstantsFunctionalTOF2Ptr tof2 =
          boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(
              base->GetFunctionalConstants());
      const ICalibrationConstantsFunctionalPtr compensated =
          boost::make_shared<Constants::CalibrationConstantsFunctionalTOF2TemperatureCompensation>(
              tof2->GetC0(), tof2->GetC1(), tof2->GetC2(), tof2->GetC3(), tof2->GetC4(),
              info.temperatures, info.factors, info.strategy);
      return factory.createTransformator(compensated, base->GetPhysicalConstants());
    }
    default:
      LUMO_THROW(std::runtime_error("Non-supported strategy."));
  }
}

}  // namespace calibration
}  // namespace lumo
