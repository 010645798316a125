#include "math/linearly_continued_function.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace lumo {
namespace math {
namespace {

// y = x * x on [1, 3]; falling when negated.
struct Square {
  double sign;
  double operator()(double x) const { return sign * x * x; }
  double inverse(double y) const { return std::sqrt(sign * y); }
};

TEST(LinearlyContinuedFunction, RisingFunctionUsesTangentsOutside) {
  Square f{1.0};
  LinearlyContinuedFunction<Square&> g(f, 1.0, 3.0, 2.0, 6.0);
  EXPECT_EQ(1.0, g.y0());
  EXPECT_EQ(9.0, g.y1());
  EXPECT_EQ(4.0, g(2.0));
  EXPECT_EQ(1.0, g(1.0));
  EXPECT_EQ(-1.0, g(0.0));
  EXPECT_EQ(15.0, g(4.0));
  EXPECT_EQ(2.0, g.inverse(4.0));
  EXPECT_EQ(0.0, g.inverse(-1.0));
  EXPECT_EQ(4.0, g.inverse(15.0));
}

TEST(LinearlyContinuedFunction, FallingFunctionInvertsOnEachPiece) {
  Square f{-1.0};
  LinearlyContinuedFunction<Square&> g(f, 1.0, 3.0, -2.0, -6.0);
  EXPECT_EQ(1.0, g(0.0));
  EXPECT_EQ(-15.0, g(4.0));
  EXPECT_EQ(0.0, g.inverse(1.0));
  EXPECT_EQ(4.0, g.inverse(-15.0));
  EXPECT_EQ(2.0, g.inverse(-4.0));
}

TEST(LinearlyContinuedFunction, RejectsEmptyIntervalAndUnequalSlopeSigns) {
  Square f{1.0};
  try {
    LinearlyContinuedFunction<Square&>(f, 3.0, 3.0, 1.0, 1.0);
    FAIL();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ("x1 must be > x0.", e.what());
  }
  try {
    LinearlyContinuedFunction<Square&>(f, 1.0, 3.0, 0.0, 1.0);
    FAIL();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ("slopes must be non-zero and have same sign.", e.what());
  }
}

}  // namespace
}  // namespace math
}  // namespace lumo
