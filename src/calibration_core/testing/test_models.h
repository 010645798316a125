// Helpers of the calibration core tests: models built from plain numbers,
// and the text of an expected exception.
#ifndef KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_
#define KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_

#include <omp.h>

#include <boost/make_shared.hpp>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "calibration_core/constants/calibration_constants_functional_other.h"
#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "testing/thrown_text.h"

namespace lumo {
namespace calibration {
namespace testing {

// The texts of a conversion's failures: the model's own, and that of a
// parallel batch loop.
const char* const kComplex =
    "complex valued solution in computation due to invalid calibration constants/value range";
const char* const kFailed = "Transformation failed, most likely due to bad calibration constants.";

const double kInf = std::numeric_limits<double>::infinity();

typedef std::vector<double> Doubles;
typedef std::vector<std::int32_t> Ints;

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

// m = ((t * t) * c2 + c1 * t) + c0.
inline ICalibrationConstantsFunctionalPtr halyard(double c0, double c1, double c2) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalHalyard>(c0, c1, c2);
}

// Raw mass t = index / measurementsPerRawMass + beginRawMass.
inline ICalibrationConstantsPhysicalPtr rawMassAxis(double beginRawMass,
                                                    double measurementsPerRawMass) {
  return boost::make_shared<Constants::CalibrationConstantsPhysicalHalyard>(beginRawMass,
                                                                            measurementsPerRawMass);
}

// m = c1 * t + c0.
inline ICalibrationConstantsFunctionalPtr linear(double c0, double c1) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalLinear>(c0, c1);
}

// t = a1 * index + a0.
inline ICalibrationConstantsPhysicalPtr line(double a0, double a1) {
  return boost::make_shared<Constants::CalibrationConstantsPhysicalLinear>(a0, a1);
}

// t = beta / m, raw mode and calibration mode 4.
inline ICalibrationConstantsFunctionalPtr ftms04(double beta) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(beta, 0.0);
}

// t = alpha / m^2 + beta / m, raw mode and calibration mode 1.
inline ICalibrationConstantsFunctionalPtr ftms1356(double alpha, double beta) {
  return boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS1356>(alpha, beta, 0.0);
}

// The transient of the tests: 1024 points, t = index + 1000.
inline ICalibrationConstantsPhysicalPtr transient(int calibMode = 0, int ftmsRawMode = 0) {
  return boost::make_shared<Constants::CalibrationConstantsPhysicalFTMS>(1000.0, 1024.0, 1024,
                                                                         calibMode, ftmsRawMode);
}

template <class Model>
boost::shared_ptr<Model> model(const ICalibrationConstantsFunctionalPtr& functional,
                               const ICalibrationConstantsPhysicalPtr& physical = digitizer(),
                               double indexOffset = 0.0) {
  return boost::make_shared<Model>(functional, physical, indexOffset);
}

using kora_testing::thrownText;

// Runs `body` once, on one thread of a parallel region of two threads.
// Returns whether that thread was in an active parallel region (not so
// where OpenMP gives the region one thread only).
template <class Body>
bool inParallelRegion(const Body& body) {
  bool active = false;
#pragma omp parallel num_threads(2)
  {
#pragma omp single
    {
      active = omp_in_parallel();
      body();
    }
  }
  return active;
}

}  // namespace testing
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TESTING_TEST_MODELS_H_
