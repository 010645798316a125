#include "math/cfunction/piecewise_elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "math/cfunction/cfunction.h"

namespace lumo {
namespace math {
namespace {

using Vec = std::vector<double>;

const Vec kKnots{0, 1, 3};
const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(CSpec1dConstElem, ValueOfTheInterval) {
  const CSpec1dConstElem f(0, kKnots, {5, 6, 7});
  EXPECT_EQ(5.0, f(-1.0));
  EXPECT_EQ(5.0, f(0.0));
  EXPECT_EQ(5.0, f(0.5));
  EXPECT_EQ(6.0, f(1.0));
  EXPECT_EQ(6.0, f(2.9));
  // At and above the last knot, the last interval's value.
  EXPECT_EQ(6.0, f(3.0));
  EXPECT_EQ(6.0, f(4.0));
  EXPECT_EQ(0.0, f.Derivative(0.5));
  EXPECT_EQ(0.0, f(kNaN));
  EXPECT_EQ(kConstElemType, f.TypeCode());
  // A single knot: its value everywhere.
  const CSpec1dConstElem single(0, {2}, {9});
  EXPECT_EQ(9.0, single(1.0));
  EXPECT_EQ(9.0, single(3.0));
}

TEST(CSpec1dLinearElem, InterpolatesBetweenTheKnots) {
  const CSpec1dLinearElem f(0, kKnots, {1, 3, 4});
  EXPECT_EQ(1.0, f(-1.0));
  EXPECT_EQ(1.0, f(0.0));
  EXPECT_EQ(2.0, f(0.5));
  EXPECT_EQ(3.5, f(2.0));
  EXPECT_EQ(4.0, f(3.0));
  EXPECT_EQ(4.0, f(5.0));
  EXPECT_EQ(2.0, f.Derivative(0.0));
  EXPECT_EQ(0.5, f.Derivative(2.0));
  EXPECT_EQ(0.0, f.Derivative(-1.0));
  EXPECT_EQ(0.0, f.Derivative(3.0));
  EXPECT_EQ(0.0, f(kNaN));
  EXPECT_EQ(0.0, f.Derivative(kNaN));
  EXPECT_EQ(kLinearElemType, f.TypeCode());
  // Knots beyond the values take no part.
  const CSpec1dLinearElem shorter(0, kKnots, {1, 3});
  EXPECT_EQ(3.0, shorter(2.0));
}

TEST(CSpec1dLinearElem, SearchRestartsBelowTheLastInterval) {
  const Vec knots{0, 1, 2, 3, 4, 5};
  const CSpec1dLinearElem f(0, knots, {0, 10, 20, 30, 40, 50});
  // Each point of the same thread searches from the interval before.
  const Vec x{4.5, 0.5, 2.5, 2.25, 1.5, 4.75, 0.0};
  const Vec expected{45, 5, 25, 22.5, 15, 47.5, 0};
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_EQ(expected[i], f(x[i])) << x[i];
  Vec y;
  f(x, y);
  EXPECT_EQ(expected, y);
  const CSpec1dConstElem g(0, knots, {0, 10, 20, 30, 40, 50});
  g(x, y);
  EXPECT_EQ((Vec{40, 0, 20, 20, 10, 40, 0}), y);
}

TEST(PiecewiseElems, ThreadsGiveTheResultsOfOneThread) {
  Vec knots, values;
  for (int i = 0; i <= 100; ++i) {
    knots.push_back(i * 0.5);
    values.push_back((i % 7) * 1.5 - i * 0.25);
  }
  Vec x;
  for (int i = 0; i < 2000; ++i) x.push_back(((i * 7919) % 1031) * 0.05 - 1.0);
  for (int strategy : {1, 2}) {
    int status = 0;
    const CFunction f(strategy, knots, values, status);
    Vec expected, expectedSlopes;
    for (double v : x) {
      expected.push_back(f(v));
      expectedSlopes.push_back(f.Derivative(v));
    }
    const int kThreads = 4;
    std::vector<Vec> results(kThreads), slopes(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        // Each thread walks the points from its own offset.
        for (std::size_t k = 0; k < x.size(); ++k) {
          const std::size_t i = (k + t * 499) % x.size();
          results[t].push_back(f(x[i]));
          slopes[t].push_back(f.Derivative(x[i]));
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t) {
      for (std::size_t k = 0; k < x.size(); ++k) {
        const std::size_t i = (k + t * 499) % x.size();
        ASSERT_EQ(expected[i], results[t][k]) << "strategy " << strategy << ", x = " << x[i];
        ASSERT_EQ(expectedSlopes[i], slopes[t][k]) << "strategy " << strategy << ", x = " << x[i];
      }
    }
  }
}

}  // namespace
}  // namespace math
}  // namespace lumo
