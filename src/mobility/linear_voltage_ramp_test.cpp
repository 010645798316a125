#include "mobility/linear_voltage_ramp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace lumo {
namespace calibration {
namespace kora {
namespace {

std::string constructionError(int ndelay, int ncycles, double Vstart, double Vend) {
  try {
    LinearVoltageRamp ramp(ndelay, ncycles, Vstart, Vend);
  } catch (const std::invalid_argument& e) {
    return e.what();
  }
  return "";
}

TEST(LinearVoltageRamp, PositiveRampFallsAndContinuesPastItsEnds) {
  LinearVoltageRamp ramp(0, 100, 200.0, 100.0);
  EXPECT_FALSE(ramp.isNegative());
  EXPECT_EQ(-1.0, ramp.slope());
  EXPECT_EQ(200.0, ramp.intercept());
  EXPECT_EQ(200.0, ramp.voltage(0));
  EXPECT_EQ(150.0, ramp.voltage(50));
  EXPECT_EQ(100.0, ramp.voltage(100));
  EXPECT_EQ(50.0, ramp.voltage(150));
  EXPECT_EQ(-50.0, ramp.voltage(250));
  EXPECT_EQ(149.5, ramp.voltage(50.5));
  EXPECT_EQ(250.0, ramp.scanNumber(-50.0));
  EXPECT_EQ(50.5, ramp.scanNumber(149.5));
}

TEST(LinearVoltageRamp, NegativeRampRisesTowardsZero) {
  LinearVoltageRamp ramp(5, 10, -100.0, -50.0);
  EXPECT_TRUE(ramp.isNegative());
  EXPECT_EQ(5.0, ramp.slope());
  EXPECT_EQ(-125.0, ramp.intercept());
  EXPECT_EQ(-100.0, ramp.voltage(5));
  EXPECT_EQ(-50.0, ramp.voltage(15));
  EXPECT_EQ(-125.0, ramp.voltage(0));
  EXPECT_EQ(15.0, ramp.scanNumber(-50.0));
  EXPECT_EQ(5, ramp.ndelay());
  EXPECT_EQ(10, ramp.ncycles());
  EXPECT_EQ(-100.0, ramp.Vstart());
  EXPECT_EQ(-50.0, ramp.Vend());
}

TEST(LinearVoltageRamp, ScanNumberInvertsVoltage) {
  LinearVoltageRamp ramp(7, 913, 187.3, 12.9);
  for (double s : {-40.25, 0.0, 7.0, 311.75, 920.0, 1500.5}) {
    EXPECT_NEAR(s, ramp.scanNumber(ramp.voltage(s)), 1e-9) << s;
  }
}

TEST(LinearVoltageRamp, FirstFailingCheckDecidesTheMessage) {
  EXPECT_EQ("Vend must be != Vstart.", constructionError(0, 0, 100.0, 100.0));
  EXPECT_EQ("ncycles must be > 0.", constructionError(-1, 0, 200.0, 100.0));
  EXPECT_EQ("ndelay must be >= 0.", constructionError(-1, 1, 200.0, 300.0));
  EXPECT_EQ("Ramp in positive mode must be decreasing.", constructionError(0, 1, 200.0, 300.0));
  EXPECT_EQ("Ramp in negative mode must be increasing.", constructionError(0, 1, -50.0, -100.0));
  EXPECT_EQ("Ramp in negative mode must be increasing.", constructionError(0, 1, 0.0, -1.0));
  EXPECT_EQ("Voltage ramp has zero crossing (not allowed).", constructionError(0, 1, 0.0, 1.0));
  EXPECT_EQ("Voltage ramp has zero crossing (not allowed).", constructionError(0, 1, 10.0, 0.0));
  EXPECT_EQ("Voltage ramp has zero crossing (not allowed).", constructionError(0, 1, 10.0, -10.0));
  EXPECT_EQ("Voltage ramp has zero crossing (not allowed).", constructionError(0, 1, -10.0, 5.0));
}

TEST(LinearVoltageRamp, NanVoltagePassesEveryCheck) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  LinearVoltageRamp start(0, 10, nan, 100.0);
  EXPECT_TRUE(std::isnan(start.slope()));
  EXPECT_TRUE(std::isnan(start.intercept()));
  LinearVoltageRamp end(0, 10, -100.0, nan);
  EXPECT_TRUE(std::isnan(end.voltage(3.0)));
}

}  // namespace
}  // namespace kora
}  // namespace calibration
}  // namespace lumo
