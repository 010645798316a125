#include "calibration_core/ftms/calibration_transformator_ftms.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

// t = 1e6 / m on the transient t = index + 1000, 1024 points.
boost::shared_ptr<CalibrationTransformatorFTMS04> linearFtms(double indexOffset = 0.0) {
  return boost::make_shared<CalibrationTransformatorFTMS04>(ftms04(1e6), transient(), indexOffset);
}

// t = alpha / m^2 + beta / m on the same transient.
boost::shared_ptr<CalibrationTransformatorFTMS15> quadraticFtms(double alpha, double beta) {
  return boost::make_shared<CalibrationTransformatorFTMS15>(ftms1356(alpha, beta), transient());
}

TEST(FTMS04, Law) {
  auto m = linearFtms();
  EXPECT_DOUBLE_EQ(2000.0, m->MassToRaw(500.0));
  EXPECT_DOUBLE_EQ(500.0, m->RawToMass(2000.0));
  EXPECT_DOUBLE_EQ(1000.0, m->IndexToMass(0));
  EXPECT_DOUBLE_EQ(1e6 / 2023.0, m->IndexToMass(1023));
  EXPECT_EQ(3, m->GetCalibrationType());
  EXPECT_EQ(std::numeric_limits<double>::infinity(), m->MassToRaw(0.0));
  EXPECT_EQ(std::numeric_limits<double>::infinity(), m->RawToMass(0.0));
}

TEST(FTMSIndexLimit, EveryIndexStaysOnTheTransient) {
  auto m = linearFtms();
  EXPECT_EQ(2023.0, m->IndexToRaw(1024));
  EXPECT_EQ(2023.0, m->IndexToRaw(1 << 30));
  EXPECT_EQ(2023.0, m->DIndexToRaw(1024.0));
  EXPECT_EQ(2023.5, m->DIndexToRaw(1023.5));
  EXPECT_EQ(1000.0, m->DIndexToRaw(-3.0));
  EXPECT_EQ(1000.0, m->IndexToRaw(-3));
  EXPECT_TRUE(std::isnan(m->DIndexToRaw(kNaN)));
  EXPECT_EQ(1023.0, m->RawToDIndex(5000.0));
  EXPECT_EQ(0.0, m->RawToDIndex(10.0));
  EXPECT_EQ(500.25, m->RawToDIndex(1500.25));
  EXPECT_EQ(1023, m->RawToIndex(1e12));
  EXPECT_EQ(0, m->RawToIndex(-1e12));
  EXPECT_EQ(501, m->RawToIndex(1500.5));
  // Masses off the axis on either end.
  EXPECT_EQ(0, m->MassToIndex(1e9));
  EXPECT_EQ(1023, m->MassToIndex(1.0));
  EXPECT_EQ(1023.0, m->MassToDIndex(1.0));
  EXPECT_EQ(0, m->MassToIndex(-5.0));
  EXPECT_EQ(m->IndexToMass(1023), m->IndexToMass(4000));

  std::vector<double> masses;
  for (int i = 0; i < 1000; ++i) masses.push_back(0.5 + 2.0 * i);
  std::vector<std::int32_t> indexes;
  m->MassToIndex(masses, indexes);
  for (std::size_t i = 0; i < masses.size(); ++i) {
    EXPECT_EQ(m->MassToIndex(masses[i]), indexes[i]) << i;
    EXPECT_TRUE(indexes[i] >= 0 && indexes[i] <= 1023) << i;
  }
}

TEST(FTMSIndexLimit, AppliesToTheIndexBeforeTheOffset) {
  auto m = linearFtms(10.0);
  EXPECT_EQ(2033.0, m->DIndexToRaw(1023.0));
  EXPECT_EQ(2033.0, m->DIndexToRaw(2000.0));
  EXPECT_EQ(1010.0, m->IndexToRaw(-1));
  EXPECT_EQ(1023.0, m->RawToDIndex(2033.0));
  EXPECT_EQ(0.0, m->RawToDIndex(1009.0));
}

TEST(FTMS04, RoundTripsOnBothSides) {
  auto m = linearFtms();
  for (double mass : {-5000.0, -1.0, 200.0, 494.5, 1000.0, 1e5}) {
    EXPECT_NEAR(mass, m->RawToMass(m->MassToRaw(mass)), 1e-13 * std::fabs(mass)) << mass;
  }
  for (int i : {0, 1, 511, 1022, 1023}) {
    EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << i;
    EXPECT_NEAR(i * 0.999, m->MassToDIndex(m->DIndexToMass(i * 0.999)), 1e-9) << i;
  }
}

TEST(FTMS15, WithoutAlphaItIsFTMS04) {
  auto quadratic = quadraticFtms(0.0, 1e6);
  auto linear = linearFtms();
  for (double t : {-3000.0, 1000.0, 1234.5, 2023.0, 1e7}) {
    EXPECT_EQ(linear->RawToMass(t), quadratic->RawToMass(t)) << t;
    EXPECT_EQ(linear->MassToRaw(t), quadratic->MassToRaw(t)) << t;
  }
}

TEST(FTMS15, RoundTripsOnTheRisingBranch) {
  // alpha > 0: rising for 1/m > -0.05; alpha < 0: rising for 1/m < 0.05.
  for (double alpha : {1e7, -1e7}) {
    auto m = quadraticFtms(alpha, 1e6);
    for (double mass : {-1000.0, -100.0, 25.0, 200.0, 1000.0, 5000.0}) {
      EXPECT_NEAR(mass, m->RawToMass(m->MassToRaw(mass)), 1e-12 * std::fabs(mass))
          << alpha << " " << mass;
    }
    for (int i : {0, 100, 1023}) EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << i;
  }
}

TEST(FTMS15, DegenerateParabolaFailures) {
  EXPECT_EQ("Polynomial is constant.",
            thrownText<std::runtime_error>([] { quadraticFtms(0.0, 0.0)->RawToMass(1500.0); }));
  EXPECT_EQ("Case b*x + c with negative slope.",
            thrownText<std::runtime_error>([] { quadraticFtms(0.0, -1e6)->IndexToMass(3); }));

  auto falling = quadraticFtms(0.0, -1e6);
  std::vector<double> small(99, 4.0);
  EXPECT_EQ("Case b*x + c with negative slope.",
            thrownText<std::runtime_error>([&] { falling->DIndexToMass(small); }));
  std::vector<double> large(100, 4.0);
  EXPECT_EQ(kFailed, thrownText<std::runtime_error>([&] { falling->DIndexToMass(large); }));
}

TEST(FTMSConstants, PhysicalConstantsFollowTheFunctionalModes) {
  // Mode 9 alone would make a0 unreadable; the functional mode 4 is copied first.
  auto m = boost::make_shared<CalibrationTransformatorFTMS04>(ftms04(1e6), transient(9, 0));
  ICalibrationConstantsPhysicalFTMSPtr physical =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalFTMS>(m->GetPhysicalConstants());
  ASSERT_TRUE(physical);
  EXPECT_EQ(4, physical->GetCalibMode());
  EXPECT_EQ(4, physical->GetFtmsRawMode());

  // A functional mode reaches the physical constants at once, a0 and a1 only
  // when the physical constants are set again.
  const double mass = m->IndexToMass(17);
  m->SetFunctionalConstants(
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(1e6, 0.0, 2, 9));
  physical =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalFTMS>(m->GetPhysicalConstants());
  EXPECT_EQ(9, physical->GetCalibMode());
  EXPECT_EQ(2, physical->GetFtmsRawMode());
  EXPECT_EQ(mass, m->IndexToMass(17));
  EXPECT_EQ(
      "CalibrationConstantsPhysicalFTMS::GetA0(): invalid calibration constants: icr mode "
      "unknown. Expected 0..6, but got 9",
      thrownText<std::runtime_error>([&] { m->SetPhysicalConstants(transient()); }));
  EXPECT_EQ(mass, m->IndexToMass(17));
}

TEST(FTMSConstants, WrongPhysicalConstantsFailAndChangeNothing) {
  EXPECT_EQ(
      "lumo::calibration::Transformation::FTMSIndexChecker::UpdatePhysicalConstants("
      "ICalibrationConstantsPhysicalPtr physConsts): This function can only be used with "
      "ICalibrationConstantsPhysicalFTMSPtr objects.",
      thrownText<std::logic_error>(
          [] { CalibrationTransformatorFTMS04(ftms04(1e6), digitizer()); }));
  auto m = linearFtms();
  EXPECT_THROW(m->SetPhysicalConstants(digitizer()), std::logic_error);
  EXPECT_EQ(2023.0, m->IndexToRaw(5000));
  EXPECT_EQ(1500.0, m->DIndexToRaw(500.0));
}

TEST(FTMSModels, InterfacesClonesAndRanges) {
  ICalibrationTransformatorPtr linear = linearFtms(2.0);
  ICalibrationTransformatorPtr quadratic = quadraticFtms(1e7, 1e6);
  EXPECT_TRUE(boost::dynamic_pointer_cast<ICalibrationTransformatorFTMS>(linear));
  EXPECT_FALSE(boost::dynamic_pointer_cast<ICalibrationTransformatorFTMSQuadratic>(linear));
  EXPECT_TRUE(boost::dynamic_pointer_cast<ICalibrationTransformatorFTMSQuadratic>(quadratic));

  ICalibrationTransformatorPtr copy = cloneAs(quadratic);
  ASSERT_TRUE(boost::dynamic_pointer_cast<CalibrationTransformatorFTMS15>(copy));
  EXPECT_TRUE(copy->IsEqual(quadratic));
  EXPECT_EQ(quadratic->IndexToRaw(5000), copy->IndexToRaw(5000));
  copy->SetFunctionalConstants(ftms1356(2e7, 1e6));
  EXPECT_EQ(quadraticFtms(1e7, 1e6)->IndexToMass(9), quadratic->IndexToMass(9));
  EXPECT_NE(quadratic->IndexToMass(9), copy->IndexToMass(9));
  EXPECT_TRUE(cloneAs(linear)->IsEqual(linear));
  EXPECT_EQ(2.0, cloneAs(linear)->GetIndexOffset());

  EXPECT_EQ("monotonicMassRange() not yet implemented for this particular transformator.",
            thrownText<std::runtime_error>([&] { quadratic->monotonicMassRange(500.0); }));
}

// The tilted parabola's solved direction, taken alone: on its rising branch
// it inverts P(x) = a x^2 + b x + c; past the vertex (x_v, y_v) it inverts the
// parabola point-mirrored there, 2 y_v - P(2 x_v - x).
TEST(RMQuadraticTilt, FlippedContinuationForEverySignOfAAndB) {
  for (double a : {1.0, -1.0}) {
    for (double b : {2.0, -2.0}) {
      RMQuadraticTilt p;
      p.c = 1.0;
      p.b = b;
      p.a = a;
      const double xv = -b / (2.0 * a);
      const double yv = p.MassToRaw(xv);
      double previous = -std::numeric_limits<double>::infinity();
      for (double t = yv - 10.0; t <= yv + 10.0; t += 0.25) {
        const double x = p.RawToMass(t);
        ASSERT_TRUE(std::isfinite(x)) << a << " " << b << " " << t;
        EXPECT_GT(x, previous) << a << " " << b << " " << t;
        previous = x;
        const bool pastVertex = a > 0 ? t < yv : t > yv;
        const double back = pastVertex ? 2.0 * yv - p.MassToRaw(2.0 * xv - x) : p.MassToRaw(x);
        EXPECT_NEAR(t, back, 1e-12) << a << " " << b << " " << t;
      }
    }
  }
}

TEST(RMQuadraticTilt, VertexAndDegenerateCases) {
  RMQuadraticTilt p;  // (x + 1)^2
  p.c = 1.0;
  p.b = 2.0;
  p.a = 1.0;
  EXPECT_EQ(-1.0, p.RawToMass(0.0));   // discriminant exactly 0
  EXPECT_EQ(-2.0, p.RawToMass(-1.0));  // mirrored: 0 - P(0)
  EXPECT_EQ(0.0, p.RawToMass(1.0));
  p.a = kNaN;
  EXPECT_TRUE(std::isnan(p.RawToMass(3.0)));
  p.a = 0.0;
  EXPECT_EQ(1.0, p.RawToMass(3.0));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
