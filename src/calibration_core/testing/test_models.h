// Helpers of the calibration core tests: models built from plain numbers,
// and the text of an expected exception.
#ifndef KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_
#define KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_

#include <boost/make_shared.hpp>
#include <string>

#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "testing/thrown_text.h"

namespace lumo {
namespace calibration {
namespace testing {

// Digitizer of the tests: 0.5 time units per sample, delay 1000.
inline ICalibrationConstantsPhysicalPtr digitizer(double timeBase = 0.5, double delay = 1000.0) {
  return boost::make_shared<Constants::CalibrationConstantsPhysicalTOF>(timeBase, delay);
}

inline ICalibrationConstantsFunctionalPtr tof1(double c0, double c1, double c2) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalTOF1>(c0, c1, c2);
}

inline ICalibrationConstantsFunctionalPtr tof2(double c0, double c1, double c2, double c3,
                                               double dm) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalTOF2>(c0, c1, c2, c3, dm);
}

template <class Model>
boost::shared_ptr<Model> model(const ICalibrationConstantsFunctionalPtr& functional,
                               const ICalibrationConstantsPhysicalPtr& physical = digitizer(),
                               double indexOffset = 0.0) {
  return boost::make_shared<Model>(functional, physical, indexOffset);
}

using kora_testing::thrownText;

}  // namespace testing
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_
