// addTemperatureCompensationInfo: a transformator whose functional constants
// carry the temperatures, factors and strategy of a frame, so that a
// CalibrationTemperatureCompensator can adapt a reference to it.
#ifndef KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_H_
#define KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_H_

#include <boost/shared_ptr.hpp>

#include "calibration_core/temperature/temperature_compensation_constants.h"
#include "calibration_core/transformation/calibration_transformator.h"

namespace lumo {
namespace calibration {

// A new transformator with the conversions of `transformator` and TOF1 or
// TOF2 constants that carry `info`; `transformator` is left unchanged.
// Without a ZRK correction the model is the one the factory chooses for the
// new constants (with the physical constants of `transformator`; the index
// offset and the measurement mode info are not carried). Around a ZRK
// correction of a TOF1 model the correction is kept and its model gets the
// new constants.
// Throws std::runtime_error: "Already contains temp-comp info." when the
// constants carry temperatures already, "TOF2+ZRK not supported." and
// "Non-supported strategy." for a model of another family than TOF1, TOF2.
boost::shared_ptr<ICalibrationTransformator> addTemperatureCompensationInfo(
    const boost::shared_ptr<const ICalibrationTransformator>& transformator,
    const TemperatureCompensationInfo& info);

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_H_
