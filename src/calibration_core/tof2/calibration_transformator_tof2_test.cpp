#include "calibration_core/tof2/calibration_transformator_tof2.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// t = 2000 + 1000 w (+ c2 w^2), w = sqrt(m + 0.5).
template <class Model>
boost::shared_ptr<Model> tof2Model(double c2 = 0.0) {
  return model<Model>(tof2(2000.0, 1000.0, c2, 0.0, 0.5));
}

template <class Model>
void expectRoundTripsAroundTheOrigin(const Model& m) {
  for (double mass : {-2500.0, -50.5, -0.6, -0.5, -0.4, 0.0, 0.25, 10.0, 5000.0, 1e5}) {
    EXPECT_NEAR(mass, m.RawToMass(m.MassToRaw(mass)), 1e-11 * (1.0 + std::fabs(mass))) << mass;
  }
  // Index 2000 is at t = c0.
  for (int i : {1, 1000, 1999, 2001, 3000, 1000000}) {
    EXPECT_EQ(i, m.MassToIndex(m.IndexToMass(i))) << i;
    EXPECT_NEAR(i + 0.25, m.MassToDIndex(m.DIndexToMass(i + 0.25)), 1e-9 * i) << i;
  }
}

TEST(TOF2Linear, Law) {
  auto m = tof2Model<CalibrationTransformatorTOF2Linear>();
  EXPECT_EQ(2000.0, m->MassToRaw(-0.5));
  EXPECT_EQ(-0.5, m->RawToMass(2000.0));
  EXPECT_EQ(12000.0, m->MassToRaw(99.5));
  EXPECT_EQ(99.5, m->RawToMass(12000.0));
  EXPECT_DOUBLE_EQ(-m->RawToMass(2300.0) - 1.0, m->RawToMass(1700.0));
  expectRoundTripsAroundTheOrigin(*m);
}

TEST(TOF2Quadratic, Law) {
  auto m = tof2Model<CalibrationTransformatorTOF2Quadratic>(0.5);
  EXPECT_EQ(2000.0, m->MassToRaw(-0.5));
  EXPECT_EQ(-0.5, m->RawToMass(2000.0));
  EXPECT_EQ(12050.0, m->MassToRaw(99.5));
  EXPECT_DOUBLE_EQ(99.5, m->RawToMass(12050.0));
  expectRoundTripsAroundTheOrigin(*m);
  expectRoundTripsAroundTheOrigin(*tof2Model<CalibrationTransformatorTOF2Quadratic>(-0.01));
  expectRoundTripsAroundTheOrigin(*tof2Model<CalibrationTransformatorTOF2Quadratic>(0.0));
}

TEST(TOF2Quadratic, NegativeDiscriminantFails) {
  auto m = tof2Model<CalibrationTransformatorTOF2Quadratic>(-0.01);
  EXPECT_EQ(
      "complex valued solution in computation due to invalid calibration constants/value range",
      thrownText<std::logic_error>([&] { m->RawToMass(2000.0 + 2.6e7); }));
}

TEST(TOF2Models, MonotonicRanges) {
  auto linear = tof2Model<CalibrationTransformatorTOF2Linear>();
  EXPECT_EQ(std::make_pair(-0.5, kInf), linear->monotonicMassRange(100.0));
  EXPECT_EQ(std::make_pair(-0.5, kInf), linear->monotonicMassRange(-0.5));
  EXPECT_EQ(linear->monotonicMassRange(100.0), linear->usableMassRange(100.0, 1e-3));
  EXPECT_EQ("Mass->time mapping not defined for specified value of 'm0'",
            thrownText<std::runtime_error>([&] { linear->monotonicMassRange(-0.5000001); }));

  auto quadratic = tof2Model<CalibrationTransformatorTOF2Quadratic>(-0.01);
  const std::pair<double, double> range = quadratic->monotonicMassRange(100.0);
  EXPECT_EQ(-0.5, range.first);
  EXPECT_NEAR(2.5e9 - 0.5, range.second, 1.0);
  EXPECT_EQ(range, quadratic->usableMassRange(100.0, 0.0));
  EXPECT_EQ("Polynomial not strictly monotonously increasing at x0.",
            thrownText<std::runtime_error>([&] { quadratic->monotonicMassRange(3e9); }));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
