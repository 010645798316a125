#include "math/cfunction/spline_elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <vector>

#include "testing/thrown_text.h"

namespace lumo {
namespace math {
namespace {

using kora_testing::thrownText;
using Vec = std::vector<double>;

const double kSmallestNormal = std::numeric_limits<double>::min();

TEST(CSpec1dAkimaElem, ValuesWithACentralDifferenceDerivative) {
  const CSpec1dAkimaElem f(0, {0, 1, 2}, {0, 1, 0, 0, 0, 0});
  EXPECT_EQ(0.5, f(0.5));
  // The analytic slope there is 1.5.
  EXPECT_NEAR(1.5, f.Derivative(0.5), 1e-9);
  EXPECT_EQ((f(0.5 + 1e-6) - f(0.5 - 1e-6)) / 2e-6, f.Derivative(0.5));
  EXPECT_EQ(kSmallestNormal, f(-1.0));
  EXPECT_EQ(kSmallestNormal, f(3.0));
  EXPECT_EQ(kAkimaElemType, f.TypeCode());
}

TEST(CSpec1dAkimaElem, LowerLimit) {
  // 2n entries: the smallest normal double; values above zero stay.
  const CSpec1dAkimaElem plain(0, {0, 1, 2}, {1, 1, -1, 0, 0, 0});
  EXPECT_EQ(kSmallestNormal, plain.LowerLimit());
  EXPECT_EQ(1.0, plain(0.5));
  EXPECT_EQ(kSmallestNormal, plain(2.0));
  EXPECT_EQ(kSmallestNormal, plain(3.0));
  // 2n + 1 entries: the entry at 2n - 1, the last slope; the extra entry is
  // not read.
  const CSpec1dAkimaElem limited(0, {0, 1, 2}, {0, 1, 0, 0, 0, 0.25, 99});
  EXPECT_EQ(0.25, limited.LowerLimit());
  EXPECT_EQ(0.5, limited(0.5));
  EXPECT_EQ(0.25, limited(0.0));
}

TEST(CSpec1dAkimaElem, VectorFormAsPointForm) {
  const CSpec1dAkimaPosConstrainedElem f(0, {0, 1, 2, 4}, {10, 11, 11, 9, -5, -5, 0, 1});
  const Vec x{-1, 0, 0.1, 0.5, 0.9, 1.5, 3, 4, 5, 0.25};
  Vec y{7};
  f(x, y);
  ASSERT_EQ(x.size(), y.size());
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_EQ(f(x[i]), y[i]) << x[i];
}

TEST(CSpec1dAkimaPosConstrainedElem, KeepsEachIntervalAboveItsLowerEnd) {
  // On [0, 1] the curve leaves 10 with slope -5: below 10 at 0.1.
  const Vec knots{0, 1, 2};
  const Vec y{10, 11, 11, -5, -5, 0};
  EXPECT_DOUBLE_EQ(9.668, CSpec1dAkimaElem(0, knots, y)(0.1));
  const CSpec1dAkimaPosConstrainedElem f(0, knots, y);
  EXPECT_EQ(10.0, f(0.1));
  EXPECT_DOUBLE_EQ(11.332, f(0.9));
  EXPECT_EQ(kAkimaPosConstrainedElemType, f.TypeCode());
}

TEST(SplineElems, ConstructionFailures) {
  EXPECT_EQ("2*xValues.size() 6 != yValues.size() 8", thrownText<std::invalid_argument>([] {
              CSpec1dAkimaElem(0, {0, 1, 2}, Vec(8, 0.0));
            }));
  EXPECT_EQ("2*xValues.size() 4 != yValues.size() 3", thrownText<std::invalid_argument>([] {
              CSpec1dAkimaPosConstrainedElem(0, {0, 1}, Vec(3, 0.0));
            }));
  EXPECT_EQ("not initialized correctly, 2*xValues.size() != yValues.size()",
            thrownText<std::invalid_argument>([] {
              CSpec1dCubicSplineElem(0, {0, 1}, Vec(5, 0.0));
            }));
}

TEST(CSpec1dCubicSplineElem, ValuesThenSecondDerivatives) {
  // x^3 with its second derivatives 6x.
  const CSpec1dCubicSplineElem f(0, {0, 1, 2, 3}, {0, 1, 8, 27, 0, 6, 12, 18});
  EXPECT_NEAR(3.375, f(1.5), 1e-12);
  EXPECT_NEAR(64.0, f(4.0), 1e-12);
  EXPECT_NEAR(6.75, f.Derivative(1.5), 1e-8);
  Vec y;
  f(Vec{0.5, 1.5, 2.5}, y);
  EXPECT_EQ((Vec{f(0.5), f(1.5), f(2.5)}), y);
  EXPECT_EQ(kCubicSplineElemType, f.TypeCode());
}

}  // namespace
}  // namespace math
}  // namespace lumo
