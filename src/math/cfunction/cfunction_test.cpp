#include "math/cfunction/cfunction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

#include "math/cfunction/spec1d_element_function.h"
#include "testing/thrown_text.h"

namespace lumo {
namespace math {
namespace {

using kora_testing::thrownText;
using Vec = std::vector<double>;

// x^2 everywhere.
CFunction square() {
  int status = 0;
  return CFunction(4, {0}, {0, 0, 1}, status);
}

TEST(CFunction, EmptyFunction) {
  const CFunction f;
  EXPECT_FALSE(f.IsInitialized());
  EXPECT_EQ(0, f.GetStatus());
  bool converged = true;
  double residual = -1.0;
  EXPECT_EQ(0.0, f.Inverse(2.0, 0.0, 4.0, converged, residual));
  EXPECT_FALSE(converged);
  EXPECT_EQ(0.0, residual);
  const char* text = "not initialized correctly, m_vFuncElems empty";
  EXPECT_EQ(text, thrownText<std::invalid_argument>([&] { f(1.0); }));
  EXPECT_EQ(text, thrownText<std::invalid_argument>([&] { f.Derivative(1.0); }));
  EXPECT_EQ(text, thrownText<std::invalid_argument>([&] {
              Vec y;
              f(Vec{1.0}, y);
            }));
}

TEST(CFunction, UnsupportedStrategiesFailWithStatus) {
  for (int strategy : {0, 7, 8, 12, -1}) {
    int status = 0;
    EXPECT_EQ("Unsupported CFunction strategy.", thrownText([&] {
                CFunction(strategy, {0, 1}, {0, 1}, status);
              }))
        << strategy;
    EXPECT_EQ(2101, status);

    CFunction f = square();
    EXPECT_EQ("Unsupported CFunction strategy.", thrownText([&] {
                f.Init(strategy, {0, 1}, {0, 1});
              }));
    EXPECT_EQ(2100, f.GetStatus());
    EXPECT_EQ(strategy, f.GetStrategy());
    EXPECT_FALSE(f.IsInitialized());
  }
}

TEST(CFunction, SetUpFailuresKeepTheirTextButNotTheirClass) {
  int status = 0;
  EXPECT_EQ("not initialized correctly, MakeEmptyContainer",
            thrownText([&] { CFunction(2, {}, {1}, status); }));
  EXPECT_EQ(2101, status);
  EXPECT_EQ("<other exception>",
            thrownText<std::invalid_argument>([&] { CFunction(2, {}, {1}, status); }));
  EXPECT_EQ("not initialized correctly, 2*xValues.size() != yValues.size()", thrownText([&] {
              CFunction(3, {0, 1}, {0, 1, 0}, status);
            }));
  EXPECT_EQ("2*xValues.size() 6 != yValues.size() 5", thrownText([&] {
              CFunction(10, {0, 1, 2}, {0, 1, 0, 0, 0}, status);
            }));
  EXPECT_EQ("2*xValues.size() 4 != yValues.size() 6", thrownText([&] {
              CFunction(11, {0, 1}, {0, 1, 0, 0, 0, 0}, status);
            }));
}

TEST(CFunction, InitReplacesTheFunction) {
  CFunction f = square();
  EXPECT_TRUE(f.IsInitialized());
  EXPECT_EQ(1, f.GetStatus());
  EXPECT_EQ(4, f.GetStrategy());
  EXPECT_EQ(9.0, f(3.0));
  f.Init(2, {0, 1}, {10, 20});
  EXPECT_EQ(2, f.GetStrategy());
  EXPECT_EQ(1, f.GetStatus());
  EXPECT_EQ(15.0, f(0.5));
  EXPECT_EQ(10.0, f.Derivative(0.5));
  Vec y;
  f(Vec{-1.0, 0.25, 2.0}, y);
  EXPECT_EQ((Vec{10.0, 12.5, 20.0}), y);
}

TEST(CFunction, CopiesAreDeep) {
  CFunction original = square();
  const CFunction copy(original);
  CFunction assigned;
  assigned = original;
  original.Init(2, {0, 1}, {10, 20});
  EXPECT_EQ(9.0, copy(3.0));
  EXPECT_EQ(6.0, copy.Derivative(3.0));
  EXPECT_EQ(4, copy.GetStrategy());
  EXPECT_EQ(9.0, assigned(3.0));
  EXPECT_EQ(20.0, original(3.0));
  // An empty function copies as empty.
  const CFunction empty;
  assigned = empty;
  EXPECT_FALSE(assigned.IsInitialized());
  EXPECT_EQ(0, assigned.GetStatus());
}

TEST(CFunctionInverse, ConvergesInsideTheBracket) {
  const CFunction f = square();
  bool converged = false;
  double residual = 1.0;
  const double x = f.Inverse(4.0, 0.0, 3.0, converged, residual);
  EXPECT_TRUE(converged);
  EXPECT_NEAR(2.0, x, 1e-12);
  EXPECT_NEAR(0.0, residual, 1e-12);
  EXPECT_EQ(x * x - 4.0, residual);
  EXPECT_NEAR(2.0, f.Inverse(4.0, 2.9, 0.0, 3.0, converged, residual), 1e-12);
  EXPECT_TRUE(converged);
}

TEST(CFunctionInverse, NoBracketReturnsTheStart) {
  const CFunction f = square();
  bool converged = true;
  double residual = 0.0;
  EXPECT_EQ(1.5, f.Inverse(100.0, 1.5, 0.0, 3.0, converged, residual));
  EXPECT_FALSE(converged);
  EXPECT_EQ(2.25 - 100.0, residual);
  // Without a start, the middle of the interval.
  converged = true;
  EXPECT_EQ(2.0, f.Inverse(-1.0, 1.0, 3.0, converged, residual));
  EXPECT_FALSE(converged);
  EXPECT_EQ(5.0, residual);
}

TEST(CFunctionInverse, LargeResidualIsNotConverged) {
  // A step from 0 to 1 at x = 1: 0.5 is bracketed but never reached.
  int status = 0;
  const CFunction step(1, {0, 1, 2}, {0, 1, 1}, status);
  bool converged = true;
  double residual = 0.0;
  const double x = step.Inverse(0.5, -1.0, 3.0, converged, residual);
  EXPECT_FALSE(converged);
  EXPECT_EQ(step(x) - 0.5, residual);
  EXPECT_EQ(0.5, std::fabs(residual));
}

TEST(CFunctionInverse, VectorFormStartsEachFromTheResultBefore) {
  CSpec1dElementFunction f(kIntPolynomXAllElemType);
  f.Init({0}, {0, 0, 1});
  Vec x{-5.0};
  std::vector<int> converged;
  Vec residual;
  f.Inverse(Vec{1.0, 4.0, 9.0, 100.0}, x, 0.5, 0.0, 4.0, converged, residual);
  ASSERT_EQ(4u, x.size());
  ASSERT_EQ(4u, converged.size());
  ASSERT_EQ(4u, residual.size());
  EXPECT_NEAR(1.0, x[0], 1e-12);
  EXPECT_NEAR(2.0, x[1], 1e-12);
  EXPECT_NEAR(3.0, x[2], 1e-12);
  EXPECT_EQ((std::vector<int>{1, 1, 1, 0}), converged);
  // No bracket for 100: the start is the result before.
  EXPECT_EQ(x[2], x[3]);
  EXPECT_EQ(x[2] * x[2] - 100.0, residual[3]);
}

TEST(CSpec1dElementFunction, TypeCodesAndGeometry) {
  CSpec1dElementFunction f(kAkimaElemType);
  EXPECT_EQ("not initialized correctly, m_vFuncElems empty",
            thrownText<std::invalid_argument>([&] { f(0.5, 0); }));
  f.Init({0, 1, 2}, {0, 1, 0, 0, 0, 0});
  EXPECT_EQ(kAkimaElemType, f.TypeCode());
  EXPECT_EQ(0.5, f(0.5, 0));
  Vec x;
  f.GetXValues(x);
  EXPECT_EQ((Vec{0, 1, 2}), x);

  // A code that names no element makes a linear one.
  CSpec1dElementFunction other(3);
  other.Init({0, 1}, {10, 20});
  EXPECT_EQ(3, other.TypeCode());
  EXPECT_EQ(15.0, other(0.5, 0));
  EXPECT_EQ(10.0, other.Derivative(0.5, 0));
}

}  // namespace
}  // namespace math
}  // namespace lumo
