// The m/z calibration of the calibration access tests, written out as its
// formulas so that tests check the models against them and not against the
// models' own code.
//
// Digitizer: flight time t = index * 0.25 + 20000. TOF law (C0 .. C4 =
// 100, 745, 0.01, 0, 0): t = 100 + sqrt(a1 / s * m) + 0.01 / s * m with
// a1 = 1e12 / 745^2, where s is the factor of a temperature compensation
// (1 without). ZRK correction (C3 .. C9 = 0, 0, 100, 3000, 2, 0.05, 1e-5):
// the base law's mass is f(M) = 0.05 + (1 + 1e-5) M of the precise mass M.
#ifndef KORA_CALIBRATION_ACCESS_TEST_CALIBRATION_LAW_H_
#define KORA_CALIBRATION_ACCESS_TEST_CALIBRATION_LAW_H_

#include <gtest/gtest.h>

#include <cmath>

#include "calibration_core/transformation/calibration_transformator.h"

namespace kora_testing {

constexpr double kTimeBase = 0.25;
constexpr double kDelay = 20000.0;
constexpr char kTofCoefficients[] = "100.0, 745.0, 0.01, 0.0, 0.0";
constexpr char kZrkCoefficients[] = "100.0, 745.0, 0.01, 0.0, 0.0, 100.0, 3000.0, 2, 0.05, 1e-5";

inline double flightTime(double m, double s = 1.0) {
  return 100.0 + std::sqrt(1e12 / (745.0 * 745.0) / s * m) + 0.01 / s * m;
}
inline double zrkFlightTime(double precise, double s = 1.0) {
  return flightTime(0.05 + (1.0 + 1e-5) * precise, s);
}
inline double indexOfTime(double t) { return (t - kDelay) / kTimeBase; }

// `t` follows the TOF law with factor s in both directions.
inline void expectTofLaw(const lumo::calibration::ICalibrationTransformatorPtr& t, double s) {
  ASSERT_TRUE(t);
  for (double m : {200.0, 1500.0}) {
    EXPECT_NEAR(flightTime(m, s), t->MassToRaw(m), 1e-9 * flightTime(m, s));
    EXPECT_NEAR(m, t->DIndexToMass(indexOfTime(flightTime(m, s))), 1e-9 * m);
  }
}

// `t` follows the corrected law; the inverse of the correction is first
// order, good to 1e-5.
inline void expectZrkLaw(const lumo::calibration::ICalibrationTransformatorPtr& t, double s) {
  ASSERT_TRUE(t);
  for (double precise : {250.0, 1000.0}) {
    EXPECT_NEAR(zrkFlightTime(precise, s), t->MassToRaw(precise), 1e-9 * zrkFlightTime(precise, s));
    EXPECT_NEAR(precise, t->DIndexToMass(indexOfTime(zrkFlightTime(precise, s))), 1e-5);
  }
}

}  // namespace kora_testing

#endif  // KORA_CALIBRATION_ACCESS_TEST_CALIBRATION_LAW_H_
