#include "math/splines/akima.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "testing/thrown_text.h"

namespace lumo {
namespace math {
namespace {

using kora_testing::thrownText;
using Vec = std::vector<double>;

struct Point {
  double y;
  double dy;
};

Point at(double x, const Vec& knots, const Vec& values, const Vec& slopes, int constraint = 0) {
  Point p{-1.0, -1.0};
  CAkima().CalcInterpolation(x, p.y, p.dy, knots, values, slopes, constraint);
  return p;
}

// The interval [0, 1] rises from 0 to 1 but leaves with slope -5 and comes
// in with slope -5: below 0 near its start, above 1 near its end.
const Vec kOvershootKnots{0, 1, 2};
const Vec kOvershootValues{0, 1, 1};
const Vec kOvershootSlopes{-5, -5, 0};

TEST(Akima, HermiteCubicInsideTheKnots) {
  const Point p = at(0.5, {0, 1, 2}, {0, 1, 0}, {0, 0, 0});
  EXPECT_EQ(0.5, p.y);
  EXPECT_EQ(1.5, p.dy);
  // The second interval mirrors the first.
  const Point q = at(1.5, {0, 1, 2}, {0, 1, 0}, {0, 0, 0});
  EXPECT_EQ(0.5, q.y);
  EXPECT_EQ(-1.5, q.dy);
  // At a knot: its value and slope.
  const Point k = at(1.0, {0, 1, 2}, {0, 1, 0}, {0, 0.25, 0});
  EXPECT_EQ(1.0, k.y);
  EXPECT_EQ(0.25, k.dy);
}

TEST(Akima, OutsideTheKnotsTheEndValuesAreFlat) {
  const Point below = at(-1.0, {0, 1, 2}, {0, 1, 0}, {0, 0, 0});
  EXPECT_EQ(0.0, below.y);
  EXPECT_EQ(0.0, below.dy);
  const Point above = at(3.0, {0, 1, 2}, {2, 1, 5}, {1, 1, 1});
  EXPECT_EQ(5.0, above.y);
  EXPECT_EQ(0.0, above.dy);
}

TEST(Akima, ConstraintsClipToTheIntervalsEndValues) {
  // Unconstrained the curve dips below 0 at 0.1 and rises above 1 at 0.9.
  const Point dip = at(0.1, kOvershootKnots, kOvershootValues, kOvershootSlopes);
  EXPECT_DOUBLE_EQ(-0.332, dip.y);
  EXPECT_DOUBLE_EQ(-1.76, dip.dy);
  const Point peak = at(0.9, kOvershootKnots, kOvershootValues, kOvershootSlopes);
  EXPECT_NEAR(1.332, peak.y, 1e-14);

  const Point raised = at(0.1, kOvershootKnots, kOvershootValues, kOvershootSlopes, 1);
  EXPECT_EQ(0.0, raised.y);
  EXPECT_EQ(0.0, raised.dy);
  const Point lowered = at(0.9, kOvershootKnots, kOvershootValues, kOvershootSlopes, -1);
  EXPECT_EQ(1.0, lowered.y);
  EXPECT_EQ(0.0, lowered.dy);

  // Each constraint leaves the other side alone.
  EXPECT_NEAR(1.332, at(0.9, kOvershootKnots, kOvershootValues, kOvershootSlopes, 1).y, 1e-14);
  EXPECT_DOUBLE_EQ(-0.332, at(0.1, kOvershootKnots, kOvershootValues, kOvershootSlopes, -1).y);
}

TEST(Akima, TwoKnotsAreALineWithTheFirstSlopeEverywhere) {
  const Vec knots{1, 3};
  const Vec values{2, 10};
  const Vec slopes{4, 7};
  const Point right = at(5.0, knots, values, slopes);
  EXPECT_EQ(18.0, right.y);
  EXPECT_EQ(4.0, right.dy);
  const Point left = at(-1.0, knots, values, slopes);
  EXPECT_EQ(-6.0, left.y);
  EXPECT_EQ(4.0, left.dy);
  // Constrained with the two values.
  const Point clipped = at(-1.0, knots, values, slopes, 1);
  EXPECT_EQ(2.0, clipped.y);
  EXPECT_EQ(0.0, clipped.dy);
  const Point capped = at(5.0, knots, values, slopes, -1);
  EXPECT_EQ(10.0, capped.y);
  EXPECT_EQ(0.0, capped.dy);
}

TEST(Akima, FewerKnots) {
  const Point none = at(3.0, {}, {}, {});
  EXPECT_EQ(0.0, none.y);
  EXPECT_EQ(0.0, none.dy);
  const Point one = at(3.0, {1}, {7}, {2});
  EXPECT_EQ(7.0, one.y);
  EXPECT_EQ(0.0, one.dy);
}

TEST(Akima, KnotsAndValuesMustMatch) {
  const char* text = "CalcInterpolation failed because y.size() 2!= x.size() 3";
  EXPECT_EQ(text, thrownText<std::invalid_argument>([] { at(0.5, {0, 1, 2}, {0, 1}, {0, 0}); }));
  EXPECT_EQ(text, thrownText<std::invalid_argument>([] {
              Vec y, dy;
              CAkima().CalcInterpolation(Vec{0.5}, y, dy, {0, 1, 2}, {0, 1}, {0, 0, 0}, 0);
            }));
}

// Knots with uneven spacing and slopes that make every interval different.
const Vec kKnots{-2, -1, 0.5, 1, 2.5, 4, 4.5, 7};
const Vec kValues{3, -1, 0.5, 2, 1, 1.5, -2, 0};
const Vec kSlopes{1, -2, 3, 0.5, -1, 2, -3, 0.25};

void expectVectorFormAsPointForm(const Vec& x, int constraint) {
  Vec y, dy;
  CAkima().CalcInterpolation(x, y, dy, kKnots, kValues, kSlopes, constraint);
  ASSERT_EQ(x.size(), y.size());
  ASSERT_EQ(x.size(), dy.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Point p = at(x[i], kKnots, kValues, kSlopes, constraint);
    EXPECT_EQ(p.y, y[i]) << "x = " << x[i] << ", constraint " << constraint;
    EXPECT_EQ(p.dy, dy[i]) << "x = " << x[i] << ", constraint " << constraint;
  }
}

TEST(Akima, VectorFormAgreesWithPointForm) {
  Vec ascending;
  for (double x = -3.0; x <= 8.0; x += 0.0625) ascending.push_back(x);
  // Descending and jumping runs step down and search again; 0.0 is left out.
  const Vec jumping{6.9, 6.8, 4.2, 0.7, -1.5, 3.0, 4.25, -0.5, 7.0, -2.0, 1.0};
  for (int constraint : {0, 1, -1}) {
    expectVectorFormAsPointForm(ascending, constraint);
    expectVectorFormAsPointForm(jumping, constraint);
    expectVectorFormAsPointForm(kKnots, constraint);
  }
  // Two knots or fewer take the point form.
  Vec y, dy;
  CAkima().CalcInterpolation(Vec{-1.0, 5.0}, y, dy, {1, 3}, {2, 10}, {4, 7}, 0);
  EXPECT_EQ((Vec{-6.0, 18.0}), y);
  EXPECT_EQ((Vec{4.0, 4.0}), dy);
}

TEST(Akima, VectorSearchKeepsTheSteppedDownIntervalAtExactlyZero) {
  // After 3.5 the interval is [3, 4]; 0.0 lies two intervals below. One step
  // down gives [2, 3], and at 0.0 exactly that interval stands: its cubic
  // (rising from 0 to 1, flat ends) is extrapolated to t = -2.
  const Vec knots{-1, 1, 2, 3, 4};
  const Vec values{0, 0, 0, 1, 0};
  const Vec slopes{0, 0, 0, 0, 0};
  Vec y, dy;
  CAkima().CalcInterpolation(Vec{3.5, 0.0}, y, dy, knots, values, slopes, 0);
  EXPECT_EQ(28.0, y[1]);
  EXPECT_EQ(-36.0, dy[1]);
  const Point p = at(0.0, knots, values, slopes);
  EXPECT_EQ(0.0, p.y);
  EXPECT_EQ(0.0, p.dy);
  // Any other value searches again.
  CAkima().CalcInterpolation(Vec{3.5, 0.5}, y, dy, knots, values, slopes, 0);
  EXPECT_EQ(0.0, y[1]);
  EXPECT_EQ(0.0, dy[1]);
}

}  // namespace
}  // namespace math
}  // namespace lumo
