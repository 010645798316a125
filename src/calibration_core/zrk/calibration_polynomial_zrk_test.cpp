#include "calibration_core/zrk/calibration_polynomial_zrk.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

// `x` moved by `ulps` units in the last place.
double plusUlps(double x, int ulps) {
  for (int i = 0; i < ulps; ++i) x = std::nextafter(x, 2 * x);
  return x;
}

CalibrationPolynomialZRK zrk(std::vector<double> coefficients, double c2 = 0.25, double c0 = 0.5,
                             double minMass = 100.0, double maxMass = 3000.0) {
  return CalibrationPolynomialZRK(coefficients, c2, c0, minMass, maxMass);
}

TEST(CalibrationPolynomialZRK, KeepsTheRecordInItsOrder) {
  const CalibrationPolynomialZRK p = zrk({1e-3, 2e-6, -1e-9});
  EXPECT_EQ(2, p.GetOrder());
  EXPECT_EQ(std::vector<double>({1e-3, 2e-6, -1e-9}), p.GetCoefficients());
  EXPECT_EQ(0.25, p.GetC2());
  EXPECT_EQ(0.5, p.GetC0());
  EXPECT_EQ(std::make_pair(100.0, 3000.0), p.GetGlobalMassRange());
  EXPECT_TRUE(p.GetUse());
  EXPECT_EQ(-1, zrk({}).GetOrder());
}

// The tolerance is 3 epsilon relative to the larger magnitude: 3 units in
// the last place at 1.0, about 4.7 at 100.
TEST(CalibrationPolynomialZRK, NumbersAreEqualWithinARelativeTolerance) {
  const CalibrationPolynomialZRK p = zrk({1.0, 2e-6});
  EXPECT_TRUE(p == zrk({plusUlps(1.0, 3), 2e-6}));
  EXPECT_FALSE(p == zrk({plusUlps(1.0, 4), 2e-6}));
  EXPECT_TRUE(p == zrk({1.0, 2e-6}, plusUlps(0.25, 3)));
  EXPECT_FALSE(p == zrk({1.0, 2e-6}, plusUlps(0.25, 4)));
  EXPECT_FALSE(p == zrk({1.0, 2e-6}, 0.25, plusUlps(0.5, 4)));
  EXPECT_TRUE(p == zrk({1.0, 2e-6}, 0.25, 0.5, plusUlps(100.0, 4)));
  EXPECT_FALSE(p == zrk({1.0, 2e-6}, 0.25, 0.5, plusUlps(100.0, 5)));
  EXPECT_FALSE(p == zrk({1.0, 2e-6}, 0.25, 0.5, 100.0, plusUlps(3000.0, 5)));
  EXPECT_FALSE(p == zrk({1.0}));
  EXPECT_FALSE(p == zrk({1.0, 2e-6, 0.0}));
  EXPECT_TRUE(zrk({0.0, -0.0}) == zrk({-0.0, 0.0}));
  EXPECT_TRUE(p.IsEqual(zrk({plusUlps(1.0, 3), 2e-6})));
}

TEST(CalibrationPolynomialZRK, NaNIsEqualToNothing) {
  const CalibrationPolynomialZRK p = zrk({std::nan(""), 1.0});
  EXPECT_FALSE(p == p);
  EXPECT_TRUE(p != p);
  EXPECT_FALSE(zrk({1.0}, std::nan("")) == zrk({1.0}, std::nan("")));
}

TEST(CalibrationPolynomialZRK, Dump) {
  EXPECT_EQ(
      "\tCalibrationPolynomialZRK[ \n"
      "\t\torder = 1\n"
      "\t\tc0 = 0.5, c2 = 0.25, coefficients = (0.001, 1.9999999999999999e-06), global mass "
      "range = [100, 3000], arg range = [100, 3000]\n"
      "\t\tparent mass = 0\n"
      "\t]",
      zrk({1e-3, 2e-6}).Dump());
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
