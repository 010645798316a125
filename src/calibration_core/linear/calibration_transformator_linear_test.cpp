#include "calibration_core/linear/calibration_transformator_linear.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <limits>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// t = 0.5 * index - 100: index 200 sits at t = 0.
boost::shared_ptr<CalibrationTransformatorLinear> linearModel(double c0, double c1) {
  return boost::make_shared<CalibrationTransformatorLinear>(linear(c0, c1), line(-100.0, 0.5));
}

TEST(LinearModel, LawAndRoundTripsOnBothSides) {
  auto m = linearModel(3.0, 0.25);
  EXPECT_EQ(3.0, m->IndexToMass(200));
  EXPECT_EQ(-22.0, m->IndexToMass(0));
  EXPECT_EQ(28.0, m->RawToMass(100.0));
  EXPECT_EQ(100.0, m->MassToRaw(28.0));
  EXPECT_EQ(400, m->MassToIndex(28.0));
  EXPECT_EQ(4, m->GetCalibrationType());
  EXPECT_EQ(1, m->GetFunctionalDegree());
  for (double t : {-5e8, -1.5, -1e-12, 0.0, 3e-7, 42.0, 7.77e9}) {
    EXPECT_NEAR(t, m->MassToRaw(m->RawToMass(t)), 1e-12 * (1.0 + std::fabs(t))) << t;
  }
  for (int i : {0, 199, 200, 201, 4096, 3000000}) {
    EXPECT_EQ(i, m->MassToIndex(m->IndexToMass(i))) << i;
    EXPECT_NEAR(i - 0.375, m->MassToDIndex(m->DIndexToMass(i - 0.375)), 1e-9 * (1 + i)) << i;
  }
}

TEST(LinearModel, ZeroSlopeGivesInfinityOrNaN) {
  auto flat = linearModel(3.0, 0.0);
  EXPECT_EQ(-std::numeric_limits<double>::infinity(), flat->MassToRaw(1.0));
  EXPECT_TRUE(std::isnan(flat->MassToRaw(3.0)));
  EXPECT_EQ(3.0, flat->IndexToMass(1234));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
