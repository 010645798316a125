#include "calibration_core/tof/calibration_transformator_tof.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "calibration_core/testing/test_models.h"
#include "calibration_core/tof/calibration_tof_utilities.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// t = 2000 + 1000 sqrt(m) (+ c2 m); the digitizer puts t = 2000 at index 2000.
template <class Model>
boost::shared_ptr<Model> tofModel(double c2 = 0.0) {
  return model<Model>(tof1(2000.0, 1000.0, c2));
}

template <class Model>
void expectRoundTrips(const Model& m) {
  for (double mass : {-2500.0, -1.0, -1e-3, 0.0, 1e-3, 0.25, 1.0, 100.0, 2500.0, 1e5}) {
    EXPECT_NEAR(mass, m.RawToMass(m.MassToRaw(mass)), 1e-11 * (1.0 + std::fabs(mass))) << mass;
  }
  for (double x : {10.0, 1000.5, 1999.0, 2001.0, 3000.25, 1e6}) {
    EXPECT_NEAR(x, m.MassToDIndex(m.DIndexToMass(x)), 1e-9 * x) << x;
  }
  for (int i : {1000, 1999, 2001, 3000, 1000000}) EXPECT_EQ(i, m.MassToIndex(m.IndexToMass(i)));
}

TEST(TOFLinear, Law) {
  auto m = tofModel<CalibrationTransformatorTOFLinear>();
  EXPECT_EQ(2000.0, m->MassToRaw(0.0));
  EXPECT_EQ(0.0, m->RawToMass(2000.0));
  EXPECT_EQ(12000.0, m->MassToRaw(100.0));
  EXPECT_EQ(100.0, m->RawToMass(12000.0));
  EXPECT_EQ(-m->RawToMass(2050.0), m->RawToMass(1950.0));
  EXPECT_EQ(-m->MassToRaw(9.0) + 4000.0, m->MassToRaw(-9.0));
  expectRoundTrips(*m);
}

TEST(TOFQuadratic, Law) {
  auto m = tofModel<CalibrationTransformatorTOFQuadratic>(0.5);
  EXPECT_EQ(2000.0, m->MassToRaw(0.0));
  EXPECT_EQ(0.0, m->RawToMass(2000.0));
  EXPECT_EQ(12050.0, m->MassToRaw(100.0));
  EXPECT_DOUBLE_EQ(100.0, m->RawToMass(12050.0));
  EXPECT_EQ(-m->RawToMass(2050.0), m->RawToMass(1950.0));
  expectRoundTrips(*m);
  expectRoundTrips(*tofModel<CalibrationTransformatorTOFQuadratic>(-0.01));
}

TEST(TOFQuadratic, WithoutQuadraticTermItIsTheLinearModel) {
  auto quadratic = tofModel<CalibrationTransformatorTOFQuadratic>(0.0);
  auto linear = tofModel<CalibrationTransformatorTOFLinear>();
  for (double t : {-1e6, 0.0, 1999.5, 2000.0, 2000.5, 12000.0, 1e7}) {
    EXPECT_NEAR(linear->RawToMass(t), quadratic->RawToMass(t),
                1e-12 * std::fabs(linear->RawToMass(t)));
    EXPECT_EQ(linear->MassToRaw(t), quadratic->MassToRaw(t));
  }
}

TEST(TOFQuadratic, NegativeDiscriminantFailsOnBothBranches) {
  auto falling = tofModel<CalibrationTransformatorTOFQuadratic>(-0.01);
  EXPECT_NO_THROW(falling->RawToMass(2000.0 + 2.5e7));
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { falling->RawToMass(2000.0 + 2.6e7); }));
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { falling->RawToMass(2000.0 - 2.6e7); }));
  auto rising = tofModel<CalibrationTransformatorTOFQuadratic>(0.01);
  EXPECT_NO_THROW(rising->RawToMass(2000.0 - 2.6e7));
  EXPECT_NO_THROW(rising->RawToMass(2000.0 + 2.6e7));
}

TEST(TOFModels, ConvertLikeTOF2ModelsWithoutShiftAndCubicTerm) {
  auto one = model<CalibrationTransformatorTOFQuadratic>(tof1(2000.0, 1000.0, 0.5));
  auto two = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.5, 0.0, 0.0));
  auto oneLinear = model<CalibrationTransformatorTOFLinear>(tof1(2000.0, 1000.0, 0.0));
  auto twoLinear = model<CalibrationTransformatorTOF2Linear>(tof2(2000.0, 1000.0, 0.0, 0.0, 0.0));
  for (double x : {-5.0, 0.0, 3.5, 1999.0, 2001.0, 1e5}) {
    EXPECT_EQ(one->DIndexToMass(x), two->DIndexToMass(x));
    EXPECT_EQ(oneLinear->DIndexToMass(x), twoLinear->DIndexToMass(x));
  }
  for (double mass : {-5.0, 1.0, 1234.5}) {
    EXPECT_EQ(one->MassToDIndex(mass), two->MassToDIndex(mass));
    EXPECT_EQ(oneLinear->MassToDIndex(mass), twoLinear->MassToDIndex(mass));
  }
  EXPECT_EQ(1, one->GetCalibrationType());
  EXPECT_EQ(12, two->GetCalibrationType());
}

TEST(TOFModels, MonotonicAndUsableRanges) {
  auto linear = tofModel<CalibrationTransformatorTOFLinear>();
  EXPECT_EQ(std::make_pair(0.0, kInf), linear->monotonicMassRange(100.0));
  EXPECT_EQ(linear->monotonicMassRange(100.0), linear->usableMassRange(100.0, 1e-3));
  EXPECT_EQ(std::make_pair(0.0, kInf), linear->monotonicMassRange(0.0));

  // The parabola 2000 + 1000 w - 0.01 w^2 turns at w = 50000.
  auto quadratic = tofModel<CalibrationTransformatorTOFQuadratic>(-0.01);
  const std::pair<double, double> range = quadratic->monotonicMassRange(100.0);
  EXPECT_EQ(0.0, range.first);
  EXPECT_NEAR(2.5e9, range.second, 1.0);
  EXPECT_EQ(range, quadratic->usableMassRange(100.0, 1e-3));

  EXPECT_EQ("Mass->time mapping not defined for specified value of 'm0'",
            thrownText<std::runtime_error>([&] { linear->monotonicMassRange(-1.0); }));
  EXPECT_EQ("Mass->time mapping not defined for specified value of 'm0'",
            thrownText<std::runtime_error>([&] { quadratic->usableMassRange(-1.0, 0.0); }));
}

TEST(CalibrationTOFUtilitiesTest, ConstantConversions) {
  CalibrationTOFUtilities utilities;
  EXPECT_EQ(1e9, utilities.ConvertC1ToA1(1000.0));
  EXPECT_EQ(1000.0, utilities.ConvertA1ToC1(1e9));
}

TEST(CalibrationTOFUtilitiesTest, MainConstantsOfTOF1Models) {
  CalibrationTOFUtilities utilities;
  ICalibrationTransformatorPtr m = tofModel<CalibrationTransformatorTOFQuadratic>(0.5);
  double c0 = 0, c1 = 0, c2 = 0;
  utilities.GetMainCalibConstants(m, c0, c1, c2);
  EXPECT_EQ(2000.0, c0);
  EXPECT_EQ(1000.0, c1);
  EXPECT_EQ(0.5, c2);
  ICalibrationTransformatorPtr before = cloneAs(m);
  utilities.SetMainCalibConstants(m, 1000.0, 500.0, 0.0);
  EXPECT_EQ(1000.0 + 2000.0 * 10.0, m->MassToRaw(100.0));
  EXPECT_EQ(12050.0, before->MassToRaw(100.0));
}

TEST(CalibrationTOFUtilitiesTest, MainConstantsOfTOF2Models) {
  CalibrationTOFUtilities utilities;
  ICalibrationTransformatorPtr m =
      model<CalibrationTransformatorTOF2Cubic>(tof2(2000.0, 1000.0, 0.5, -0.001, 0.25));
  double c0 = 0, c1 = 0, c2 = 0, c3 = 0, dm = 0;
  utilities.GetMainCalibConstants(m, c0, c1, c2, c3, dm);
  EXPECT_EQ(2000.0, c0);
  EXPECT_EQ(1000.0, c1);
  EXPECT_EQ(0.5, c2);
  EXPECT_EQ(-0.001, c3);
  EXPECT_EQ(0.25, dm);
  utilities.SetMainCalibConstants(m, 1000.0, 500.0, 0.0, 0.0, 1.0);
  EXPECT_EQ(1000.0 + 2000.0 * 10.0, m->MassToRaw(99.0));
}

TEST(CalibrationTOFUtilitiesTest, WrongFamilies) {
  CalibrationTOFUtilities utilities;
  ICalibrationTransformatorPtr one = tofModel<CalibrationTransformatorTOFLinear>();
  ICalibrationTransformatorPtr two =
      model<CalibrationTransformatorTOF2Linear>(tof2(2000.0, 1000.0, 0.0, 0.0, 0.0));
  double c0, c1, c2, c3, dm;
  EXPECT_EQ(
      "lumo::calibration::CalibrationTOFUtilities::GetMainCalibConstants( \t\t\t\t\t"
      "ICalibrationTransformatorPtr transformer, double & c0, double & c1, double & c2)\n: "
      "calibration transformer is not of type ICalibrationConstantsFunctionalTOF1Ptr",
      thrownText<std::invalid_argument>([&] { utilities.GetMainCalibConstants(two, c0, c1, c2); }));
  EXPECT_EQ(
      "lumo::calibration::CalibrationTOFUtilities::SetMainCalibConstants("
      "ICalibrationTransformatorPtr transformer, double c0, double c1, double c2)\n: calibration "
      "transformer not of type ICalibrationConstantsFunctionalTOF1Ptr.",
      thrownText<std::invalid_argument>([&] { utilities.SetMainCalibConstants(two, 1, 2, 3); }));
  EXPECT_EQ(
      "lumo::calibration::CalibrationTOFUtilities::GetMainCalibConstants( \t\t\t\t\t"
      "ICalibrationTransformatorPtr transformer, double & c0, double & c1, double & c2, double c3, "
      "double dm)\n: calibration transformer is not of type ICalibrationConstantsFunctionalTOF2Ptr",
      thrownText<std::invalid_argument>(
          [&] { utilities.GetMainCalibConstants(one, c0, c1, c2, c3, dm); }));
  EXPECT_EQ(
      "lumo::calibration::CalibrationTOFUtilities::SetMainCalibConstants("
      "ICalibrationTransformatorPtr transformer, double c0, double c1, double c2, double c3, "
      "double "
      "dm)\n: calibration transformer not of type ICalibrationConstantsFunctionalTOF2Ptr.",
      thrownText<std::invalid_argument>(
          [&] { utilities.SetMainCalibConstants(one, 1, 2, 3, 4, 5); }));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
