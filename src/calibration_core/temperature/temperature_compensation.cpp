#include "calibration_core/temperature/temperature_compensation.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "calibration_core/factory/calibration_transformator_factory.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"
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
  const boost::shared_ptr<const ICalibrationTransformatorZRK> zrk =
      boost::dynamic_pointer_cast<const ICalibrationTransformatorZRK>(transformator);
  const boost::shared_ptr<const ICalibrationTransformator> base =
      zrk ? zrk->GetBaseTransformator() : transformator;
  const Transformation::ICalibrationTransformatorFactory& factory =
      Transformation::transformatorFactory();
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
      if (!zrk) return factory.createTransformator(compensated, base->GetPhysicalConstants());
      // The clone's base is its own model: the correction stays as it is.
      const ICalibrationTransformatorZRKPtr copy = cloneAs(zrk);
      copy->GetBaseTransformator()->SetFunctionalConstants(compensated);
      return copy;
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
