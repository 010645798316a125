#include "math/splines/cubic_spline.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumo {
namespace math {
namespace {

using Vec = std::vector<double>;

// x^3 on 0..3 with its exact second derivatives 6x: every interval holds
// the cubic itself, and so does the extrapolation.
const Vec kCubeKnots{0, 1, 2, 3};
const Vec kCubeValues{0, 1, 8, 27};
const Vec kCubeD2{0, 6, 12, 18};

// Zero second derivatives: the broken line through (0,0), (1,1), (2,0), (3,1).
const Vec kZigzagKnots{0, 1, 2, 3};
const Vec kZigzagValues{0, 1, 0, 1};
const Vec kZigzagD2{0, 0, 0, 0};

double at(double x, const Vec& knots, const Vec& values, const Vec& d2) {
  double y = -1.0;
  EXPECT_TRUE(CubicSplineInterpolation(x, y, knots, values, d2));
  return y;
}

TEST(CubicSpline, ReproducesACubicInsideAndOutsideTheKnots) {
  for (double x : {0.0, 0.5, 1.5, 2.0, 2.75, 3.0}) {
    EXPECT_NEAR(x * x * x, at(x, kCubeKnots, kCubeValues, kCubeD2), 1e-12) << x;
  }
  EXPECT_NEAR(-1.0, at(-1.0, kCubeKnots, kCubeValues, kCubeD2), 1e-12);
  EXPECT_NEAR(64.0, at(4.0, kCubeKnots, kCubeValues, kCubeD2), 1e-12);
  EXPECT_EQ(0.5, at(0.5, kZigzagKnots, kZigzagValues, kZigzagD2));
  EXPECT_EQ(0.5, at(2.5, kZigzagKnots, kZigzagValues, kZigzagD2));
}

TEST(CubicSpline, MismatchedOrEmptyInputGivesZeroAndFalse) {
  double y = -1.0;
  EXPECT_FALSE(CubicSplineInterpolation(0.5, y, {0, 1, 2}, {0, 1}, {0, 0, 0}));
  EXPECT_EQ(0.0, y);
  y = -1.0;
  EXPECT_FALSE(CubicSplineInterpolation(0.5, y, {}, {}, {}));
  EXPECT_EQ(0.0, y);

  Vec ys{-1.0};
  EXPECT_FALSE(CubicSplineInterpolation(Vec{0.5, 1.5}, ys, {0, 1, 2}, {0, 1}, {0, 0, 0}));
  EXPECT_EQ((Vec{0.0, 0.0}), ys);
  EXPECT_FALSE(CubicSplineInterpolation(Vec{0.5, 1.5}, ys, {}, {}, {}));
  EXPECT_EQ((Vec{0.0, 0.0}), ys);
  EXPECT_FALSE(CubicSplineInterpolation(Vec{}, ys, kCubeKnots, kCubeValues, kCubeD2));
  EXPECT_TRUE(ys.empty());
}

TEST(CubicSpline, VectorFormAgreesWithPointFormOnAscendingInput) {
  Vec x;
  for (double v = -1.0; v <= 5.0; v += 0.125) x.push_back(v);
  Vec y;
  ASSERT_TRUE(CubicSplineInterpolation(x, y, kZigzagKnots, kZigzagValues, kZigzagD2));
  ASSERT_EQ(x.size(), y.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    EXPECT_EQ(at(x[i], kZigzagKnots, kZigzagValues, kZigzagD2), y[i]) << x[i];
  }
}

TEST(CubicSpline, VectorFormNeverStepsDown) {
  // After 2.5 the interval is [2, 3]; 0.5 is extrapolated along its line.
  Vec y;
  ASSERT_TRUE(CubicSplineInterpolation(Vec{2.5, 0.5}, y, kZigzagKnots, kZigzagValues, kZigzagD2));
  EXPECT_EQ(0.5, y[0]);
  EXPECT_EQ(-1.5, y[1]);
  EXPECT_EQ(0.5, at(0.5, kZigzagKnots, kZigzagValues, kZigzagD2));
}

}  // namespace
}  // namespace math
}  // namespace lumo
