#include "math/find_zero_in_range.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "testing/thrown_text.h"

namespace lumo {
namespace math {
namespace {

using kora_testing::thrownText;

TEST(FindZeroInRange, Converges) {
  int iterations = -1;
  const double root = findZeroInRange(
      0.0, 2.0, [](double x) { return x * x - 2.0; }, 0.0, 100, &iterations);
  EXPECT_NEAR(std::sqrt(2.0), root, 4e-16);
  EXPECT_GT(iterations, 0);
  EXPECT_LT(iterations, 20);
  EXPECT_EQ(0.5, findZeroInRange(
                     0.0, 1.0, [](double x) { return x - 0.5; }, 0.0, 100, nullptr));
}

TEST(FindZeroInRange, StopsAtTheIterationLimitWithoutError) {
  int iterations = -1;
  const double root = findZeroInRange(
      0.0, 2.0, [](double x) { return x * x - 2.0; }, 0.0, 2, &iterations);
  EXPECT_EQ(2, iterations);
  EXPECT_GE(root, 0.0);
  EXPECT_LE(root, 2.0);
  EXPECT_NE(std::sqrt(2.0), root);
}

TEST(FindZeroInRange, BadArguments) {
  auto f = [](double x) { return x; };
  EXPECT_EQ("findZeroInRange(): tol < 0.", thrownText<std::runtime_error>([&] {
              findZeroInRange(-1.0, 1.0, f, -1e-9, 10, nullptr);
            }));
  EXPECT_EQ("findZeroInRange(): b <= a.", thrownText<std::runtime_error>([&] {
              findZeroInRange(1.0, 1.0, f, 0.0, 10, nullptr);
            }));
}

}  // namespace
}  // namespace math
}  // namespace lumo
