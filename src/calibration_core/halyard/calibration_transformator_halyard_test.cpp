#include "calibration_core/halyard/calibration_transformator_halyard.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// Raw mass t = index / 20 - 50: index 1000 sits at t = 0, i.e. at m = c0.
ICalibrationConstantsPhysicalPtr axis() { return rawMassAxis(-50.0, 20.0); }

boost::shared_ptr<CalibrationTransformatorHalyardLinear> linearTrap(double c0, double c1) {
  return boost::make_shared<CalibrationTransformatorHalyardLinear>(halyard(c0, c1, 0.0), axis());
}

boost::shared_ptr<CalibrationTransformatorHalyardQuadratic> quadraticTrap(double c0, double c1,
                                                                          double c2) {
  return boost::make_shared<CalibrationTransformatorHalyardQuadratic>(halyard(c0, c1, c2), axis());
}

TEST(HalyardLinear, LawAndRoundTripsOnBothSides) {
  auto m = linearTrap(10.0, 2.0);
  EXPECT_EQ(210.0, m->RawToMass(100.0));
  EXPECT_EQ(100.0, m->MassToRaw(210.0));
  EXPECT_EQ(-90.0, m->IndexToMass(0));
  EXPECT_EQ(10.0, m->IndexToMass(1000));
  EXPECT_EQ(1000, m->MassToIndex(10.0));
  EXPECT_EQ(2, m->GetCalibrationType());
  EXPECT_EQ(1, m->GetFunctionalDegree());
  for (double t : {-1e6, -33.3, -1e-9, 0.0, 1e-9, 0.7, 123.456, 1e7}) {
    EXPECT_NEAR(t, m->MassToRaw(m->RawToMass(t)), 1e-12 * (1.0 + std::fabs(t))) << t;
  }
  for (int i : {0, 1, 999, 1000, 1001, 5000, 2000000}) {
    EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << i;
    EXPECT_NEAR(i + 0.25, m->MassToDIndex(m->DIndexToMass(i + 0.25)), 1e-9 * (1 + i)) << i;
  }
}

TEST(HalyardQuadratic, Law) {
  auto m = quadraticTrap(10.0, 2.0, 0.25);
  EXPECT_EQ(2710.0, m->RawToMass(100.0));
  EXPECT_EQ(100.0, m->MassToRaw(2710.0));
  EXPECT_EQ(2, m->GetCalibrationType());
  EXPECT_EQ(2, m->GetFunctionalDegree());
}

TEST(HalyardQuadratic, WithoutC2ItIsTheLinearInverse) {
  for (double c1 : {4.0, 0.3, -2.5}) {
    auto m = quadraticTrap(10.0, c1, 0.0);
    for (double mass : {-1e4, -7.0, 9.99, 10.0, 10.01, 30.0, 1e6}) {
      EXPECT_EQ((mass - 10.0) / c1, m->MassToRaw(mass)) << c1 << " " << mass;
      EXPECT_NEAR(mass, m->RawToMass(m->MassToRaw(mass)), 1e-12 * std::fabs(mass)) << mass;
    }
  }
}

TEST(HalyardQuadratic, RoundTripsAboveC0AndAnOddInverseBelow) {
  for (double c2 : {0.25, 1e-4, -1e-4}) {
    auto m = quadraticTrap(10.0, 2.0, c2);
    // Raw values from 0 up to well before the vertex of a falling parabola.
    for (double t : {0.0, 1e-6, 0.5, 17.0, 900.0, 4000.0}) {
      EXPECT_NEAR(t, m->MassToRaw(m->RawToMass(t)), 1e-10 * (1.0 + t)) << c2 << " " << t;
    }
    for (int i : {1000, 1001, 1500, 50000}) {
      EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << c2 << " " << i;
      EXPECT_NEAR(i + 0.25, m->MassToDIndex(m->DIndexToMass(i + 0.25)), 1e-8 * i) << i;
    }
    // Below c0 the solved direction is the mirror image of the one above.
    for (double delta : {0.0078125, 1.0, 250.0}) {
      EXPECT_EQ(-m->MassToRaw(10.0 + delta), m->MassToRaw(10.0 - delta)) << c2 << " " << delta;
    }
  }
  // So below c0 the round trip is exact only without c2.
  auto curved = quadraticTrap(10.0, 2.0, 0.25);
  const double x = curved->MassToRaw(6.0);
  EXPECT_DOUBLE_EQ(6.0 + 2.0 * 0.25 * x * x, curved->RawToMass(x));
}

TEST(HalyardQuadratic, FallingParabolaFailsFarFromC0OnEitherSide) {
  auto m = quadraticTrap(10.0, 2.0, -0.25);  // discriminant 4 - |m - 10|
  EXPECT_NO_THROW(m->MassToRaw(13.9));
  EXPECT_NO_THROW(m->MassToRaw(6.1));
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { m->MassToRaw(14.5); }));
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { m->MassToRaw(5.5); }));
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { m->MassToDIndex(1e5); }));
  // A rising parabola never fails.
  EXPECT_TRUE(std::isfinite(quadraticTrap(10.0, 2.0, 0.25)->MassToRaw(-1e12)));
}

TEST(HalyardQuadratic, BatchesFailWithTheirPathsMessage) {
  auto m = quadraticTrap(10.0, 2.0, -0.25);
  std::vector<double> small = {11.0, 12.0, 100.0, 13.0};
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { m->MassToRaw(small); }));
  std::vector<double> large(500, 11.0);
  large[321] = 100.0;
  std::vector<double> raws;
  EXPECT_EQ(kFailed, thrownText<std::runtime_error>([&] { m->MassToRaw(large, raws); }));

  large[321] = 12.0;
  m->MassToRaw(large, raws);
  ASSERT_EQ(500u, raws.size());
  for (std::size_t i = 0; i < large.size(); ++i) EXPECT_EQ(m->MassToRaw(large[i]), raws[i]) << i;
}

TEST(HalyardModels, ZeroSlopeGivesNoFailure) {
  auto flat = linearTrap(10.0, 0.0);
  EXPECT_EQ(std::numeric_limits<double>::infinity(), flat->MassToRaw(20.0));
  EXPECT_TRUE(std::isnan(flat->MassToRaw(10.0)));
  EXPECT_EQ(-std::numeric_limits<double>::infinity(),
            quadraticTrap(10.0, 0.0, 0.0)->MassToRaw(0.0));
}

TEST(HalyardModels, QuadraticNeedsTheQuadraticComputationInterface) {
  EXPECT_EQ(
      "lumo::calibration::Transformation::RMQuadratic::UpdateFunctionalConstants(const "
      "ICalibrationConstantsFunctionalPtr funConsts):\n" +
          std::string(13, '\t') +
          "funConsts is not of type ICalibrationConstantsFunctionalComputationQuadratic.",
      thrownText<std::invalid_argument>(
          [] { CalibrationTransformatorHalyardQuadratic(linear(1.0, 2.0), axis()); }));
}

TEST(HalyardModels, ClonesAndSettersLeaveEarlierObjectsUnchanged) {
  auto source = quadraticTrap(10.0, 2.0, 0.25);
  ICalibrationTransformatorPtr copy = cloneAs(ICalibrationTransformatorPtr(source));
  ASSERT_TRUE(boost::dynamic_pointer_cast<CalibrationTransformatorHalyardQuadratic>(copy));
  EXPECT_TRUE(copy->IsEqual(source));
  EXPECT_FALSE(copy->IsEqual(linearTrap(10.0, 2.0)));

  copy->SetFunctionalConstants(halyard(10.0, 2.0, 0.5));
  copy->SetPhysicalConstants(rawMassAxis(0.0, 10.0));
  EXPECT_EQ(2710.0, source->RawToMass(100.0));
  EXPECT_EQ(535.0, source->IndexToMass(0));
  EXPECT_EQ(5010.0 + 200.0, copy->RawToMass(100.0));
  EXPECT_EQ(10.0, copy->IndexToMass(0));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
