#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {

// Reaches the private range helpers of the cubic model.
class CalibrationTransformatorTOF2CubicPeer {
 public:
  static double exactRawToMass(const CalibrationTransformatorTOF2Cubic& m, double t, double lo,
                               double hi) {
    return m.exactRawToMass(t, lo, hi);
  }
};

namespace {

using namespace testing;

const double kMaxDouble = std::numeric_limits<double>::max();

// t = 2000 + 1000 w + 0.2 w^2 + c3 w^3, w = sqrt(m + 0.5).
boost::shared_ptr<CalibrationTransformatorTOF2Cubic> cubicModel(double c3 = -0.02) {
  return model<CalibrationTransformatorTOF2Cubic>(tof2(2000.0, 1000.0, 0.2, c3, 0.5));
}

double roundTripError(const ICalibrationTransformator& m, double mass) {
  return std::fabs(m.RawToMass(m.MassToRaw(mass)) - mass);
}

TEST(TOF2Cubic, MassToRawIsThePolynomial) {
  auto m = cubicModel();
  EXPECT_EQ(2000.0, m->MassToRaw(-0.5));
  // w = 10: 2000 + 10000 + 20 - 20.
  EXPECT_EQ(12000.0, m->MassToRaw(99.5));
  // w = -10: 2000 - 10000 + 20 + 20.
  EXPECT_EQ(-7960.0, m->MassToRaw(-100.5));
}

TEST(TOF2Cubic, WithoutCubicTermItIsTheQuadraticModel) {
  auto cubic = cubicModel(0.0);
  auto quadratic =
      model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.2, 0.0, 0.5));
  for (double t : {-1e6, 0.0, 1999.5, 2000.0, 2000.5, 12000.0, 1e7}) {
    EXPECT_EQ(quadratic->RawToMass(t), cubic->RawToMass(t)) << t;
  }
}

TEST(TOF2Cubic, TimesBelowTheOriginStayOnTheQuadraticEstimate) {
  auto cubic = cubicModel();
  auto quadratic =
      model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.2, 0.0, 0.5));
  for (double t : {-5e5, 0.0, 1500.0, 1999.0}) {
    EXPECT_EQ(quadratic->RawToMass(t), cubic->RawToMass(t)) << t;
    EXPECT_LT(cubic->RawToMass(t), -0.5);
  }
}

TEST(TOF2Cubic, RoundTripsInsideTheUsableRange) {
  auto m = cubicModel();
  const std::pair<double, double> usable = m->usableMassRange(500.0, 1e-6);
  EXPECT_EQ(0.5, usable.first);
  EXPECT_GT(usable.second, 500.0);
  for (int i = 0; i <= 400; ++i) {
    const double mass = usable.first + (usable.second - usable.first) * i / 400.0;
    EXPECT_LE(roundTripError(*m, mass), 1e-6 + 1e-12) << mass;
  }
  EXPECT_NEAR(1e-6, roundTripError(*m, usable.second), 1e-9);
  EXPECT_GT(roundTripError(*m, usable.second * 1.01), 1e-6);
  // Below the origin (index 2000) the fast inverse is the mirrored quadratic
  // estimate alone: index round trips hold only close to the origin.
  for (int i : {1990, 1999, 2001, 3000, 10000}) {
    EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << i;
  }
}

TEST(TOF2Cubic, ZeroRoundTripErrorSkipsTheRestriction) {
  auto m = cubicModel();
  const std::pair<double, double> restricted = m->usableMassRange(500.0, 1e-6);
  const std::pair<double, double> whole = m->usableMassRange(500.0, 0.0);
  EXPECT_EQ(restricted.first, whole.first);
  EXPECT_GT(whole.second, restricted.second);
  const std::pair<double, double> monotonic = m->monotonicMassRange(500.0);
  EXPECT_LE(whole.second, monotonic.second - 1.0);
}

TEST(TOF2Cubic, WithoutCriticalPointTheUpperBoundIsTheLargestDouble) {
  auto m = cubicModel(0.02);
  const std::pair<double, double> usable = m->usableMassRange(500.0, 0.0);
  EXPECT_EQ(0.5, usable.first);
  EXPECT_EQ(kMaxDouble - 1.0, usable.second);
}

TEST(TOF2Cubic, NarrowRangeShrinksToItsMiddle) {
  // 1000 w - (1000 / 3) w^3 rises up to w = 1 only: masses -0.5 to 0.5.
  auto m = model<CalibrationTransformatorTOF2Cubic>(tof2(2000.0, 1000.0, 0.0, -1000.0 / 3.0, 0.5));
  const std::pair<double, double> usable = m->usableMassRange(0.0, 1e-6);
  EXPECT_EQ(usable.first, usable.second);
  EXPECT_NEAR(0.0, usable.first, 1e-6);
}

TEST(TOF2Cubic, ExactInverseTakesTheNearerBoundOutsideTheRange) {
  auto m = cubicModel();
  const double tHi = m->MassToRaw(200.0);
  const double tLo = m->MassToRaw(100.0);
  EXPECT_EQ(200.0, CalibrationTransformatorTOF2CubicPeer::exactRawToMass(*m, tHi * (1 + 1e-12),
                                                                         100.0, 200.0));
  EXPECT_EQ(100.0, CalibrationTransformatorTOF2CubicPeer::exactRawToMass(*m, tLo * (1 - 1e-12),
                                                                         100.0, 200.0));
  EXPECT_NEAR(
      150.0,
      CalibrationTransformatorTOF2CubicPeer::exactRawToMass(*m, m->MassToRaw(150.0), 100.0, 200.0),
      1e-9);
}

TEST(TOF2Cubic, ExactInverseNeedsAtLeastAQuadratic) {
  auto m = model<CalibrationTransformatorTOF2Cubic>(tof2(2000.0, 1000.0, 0.0, 0.0, 0.5));
  EXPECT_EQ("Failed to determine roots of polynomial: order < 2.",
            thrownText<std::runtime_error>([&] {
              CalibrationTransformatorTOF2CubicPeer::exactRawToMass(*m, 3000.0, 0.0, 10.0);
            }));
}

TEST(TOF2Cubic, RangesNeedANonNegativeShiftedMass) {
  auto m = cubicModel();
  EXPECT_EQ("Mass->time mapping not defined for specified value of 'm0'",
            thrownText<std::runtime_error>([&] { m->usableMassRange(-1.0, 1e-6); }));
  EXPECT_EQ("Mass->time mapping not defined for specified value of 'm0'",
            thrownText<std::runtime_error>([&] { m->monotonicMassRange(-1.0); }));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
