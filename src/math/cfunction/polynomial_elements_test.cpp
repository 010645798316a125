#include "math/cfunction/polynomial_elements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "math/cfunction/cfunction.h"
#include "math/cfunction/real_polynomial_elem.h"

namespace lumo {
namespace math {
namespace {

using Vec = std::vector<double>;

CFunction make(int strategy, const Vec& x, const Vec& y) {
  int status = 0;
  CFunction f(strategy, x, y, status);
  EXPECT_EQ(1, status);
  return f;
}

CFunction makeWithParameters(const Vec& x, const Vec& y, const std::vector<int>& parameters) {
  CFunction f;
  f.Init(6, x, y, parameters);
  return f;
}

TEST(IntPolynomElems, AllHasNoRange) {
  const CFunction f = make(4, {0, 1}, {1, 2, 3});
  EXPECT_EQ(17.0, f(2.0));
  EXPECT_EQ(14.0, f.Derivative(2.0));
  EXPECT_EQ(3002001.0, f(1000.0));
  EXPECT_EQ(0.0, make(4, {0}, {})(5.0));
}

TEST(IntPolynomElems, CopyExtIsTheIdentityOutside) {
  const CFunction f = make(5, {0, 1}, {1, 2, 3});
  EXPECT_EQ(2.75, f(0.5));
  EXPECT_EQ(2.0 + 6.0 * 0.75, f.Derivative(0.75));
  EXPECT_EQ(3.0, f(3.0));
  EXPECT_EQ(1.0, f.Derivative(3.0));
  EXPECT_EQ(-2.0, f(-2.0));
  EXPECT_EQ(1.0, f.Derivative(-2.0));
  // The bounds carry a tolerance of 1e-10.
  EXPECT_EQ(2.0 + 6.0 * (1 + 1e-10), f.Derivative(1 + 1e-10));
  EXPECT_EQ(1.0, f.Derivative(1 + 1e-9));
  EXPECT_EQ(2.0 + 6.0 * -1e-10, f.Derivative(-1e-10));
  // Without a range, the polynomial everywhere.
  EXPECT_EQ(3002001.0, make(5, {0}, {1, 2, 3})(1000.0));
}

// x + 0.5 on [0, 10], tails with k = 0.25.
TEST(IntPolynomElems, ZRKReturnsToTheIdentityWithGaussianTails) {
  const CFunction f = make(9, {0, 10, 0.25}, {0.5, 1.0});
  EXPECT_EQ(2.5, f(2.0));
  EXPECT_EQ(1.0, f.Derivative(2.0));
  EXPECT_DOUBLE_EQ(12.0 + 0.5 * std::exp(-1.0), f(12.0));
  EXPECT_DOUBLE_EQ(1.0 - 0.5 * std::exp(-1.0), f.Derivative(12.0));
  EXPECT_DOUBLE_EQ(-2.0 + 0.5 * std::exp(-1.0), f(-2.0));
  EXPECT_DOUBLE_EQ(1.0 + 0.5 * std::exp(-1.0), f.Derivative(-2.0));
  EXPECT_EQ(1000.0, f(1000.0));
  EXPECT_EQ(1.0, f.Derivative(1000.0));
  // In range up to 1e-10 beyond the bounds: the polynomial's derivative.
  EXPECT_EQ(1.0, f.Derivative(10 + 1e-10));
  EXPECT_EQ(1.0, f.Derivative(-1e-10));
  EXPECT_LT(f.Derivative(10 + 1e-9), 1.0);
  EXPECT_GT(f.Derivative(-1e-9), 1.0);
  // The vector form: the scalar form element by element, tails included.
  const std::vector<double> x{-2.0, -1e-10, 2.0, 10 + 1e-10, 12.0, 1000.0};
  std::vector<double> y{7.0};
  f(x, y);
  ASSERT_EQ(x.size(), y.size());
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_EQ(f(x[i]), y[i]) << x[i];
}

TEST(IntPolynomElems, ZRKDefaults) {
  // No k: 1.0.
  const CFunction f = make(9, {0, 10}, {0.5, 1.0});
  EXPECT_DOUBLE_EQ(12.0 + 0.5 * std::exp(-4.0), f(12.0));
  // No range: the polynomial everywhere.
  EXPECT_EQ(-2e300, make(9, {1}, {0, 2})(-1e300));
  EXPECT_EQ(2e300, make(9, {1}, {0, 2})(1e300));
  // No coefficients: 0.0 inside, returning to the identity from 0 - b.
  const CFunction zero = make(9, {0, 10}, {});
  EXPECT_EQ(0.0, zero(3.0));
  EXPECT_DOUBLE_EQ(11.0 - 10.0 * std::exp(-1.0), zero(11.0));
}

TEST(IntPolynomElems, ZRKInnerPolynomialHasNoContinuation) {
  const CSpec1dIntPolynomElemZRKExt elem(0, {0, 10, 0.25}, {0.5, 1.0, 0.25});
  EXPECT_EQ(0.5 + 12.0 + 36.0, elem.PolynomialValue(12.0));
  EXPECT_EQ(1.0 + 6.0, elem.PolynomialDerivative(12.0));
  EXPECT_EQ(kIntPolynomZRKExtElemType, elem.TypeCode());
  const std::unique_ptr<CFuncBaseElem> copy = elem.Clone();
  EXPECT_EQ(elem(12.0), (*copy)(12.0));
  EXPECT_EQ(elem.Derivative(-3.0), copy->Derivative(-3.0));
}

TEST(RealPolynomElem, IdentityWithSlopeOneContinuation) {
  const CFunction f = make(6, {0.5, 2}, {0, 1});
  EXPECT_EQ(1.25, f(1.25));
  EXPECT_EQ(1.0, f.Derivative(1.25));
  EXPECT_EQ(3.0, f(3.0));
  EXPECT_EQ(0.0, f(0.0));
  EXPECT_EQ(-4.0, f(-4.0));
  EXPECT_EQ(1.0, f.Derivative(3.0));
  EXPECT_EQ(1.0, f.Derivative(-4.0));
}

TEST(RealPolynomElem, RangeBoundsAndTheirTolerance) {
  // x^2 on [0.5, 2], tangents outside.
  const CFunction f = make(6, {0.5, 2}, {0, 0, 1});
  EXPECT_EQ(2.0 * (2 + 1e-10), f.Derivative(2 + 1e-10));
  EXPECT_EQ(4.0, f.Derivative(2 + 1e-9));
  EXPECT_EQ(2.0 * (0.5 - 1e-10), f.Derivative(0.5 - 1e-10));
  EXPECT_EQ(1.0, f.Derivative(0.5 - 1e-9));
  EXPECT_EQ(4.0 + 4.0, f(3.0));
  EXPECT_EQ(0.25 - 0.5, f(0.0));
  // Without a range of two values: [1e-10, 1].
  const CFunction unit = make(6, {0.5, 1, 2}, {0, 0, 1});
  EXPECT_EQ(1.0 + 2.0, unit(2.0));
  // Negative bounds become 0; at x <= 0 the value is c[0] and the slope c[1].
  const CFunction raised = make(6, {-1, 1}, {1, 1, 1});
  EXPECT_EQ(0.5, raised(-0.5));
  EXPECT_EQ(1.0, raised.Derivative(-0.5));
  // No coefficients: zero everywhere.
  const CFunction zero = make(6, {0.5, 2}, {});
  EXPECT_EQ(0.0, zero(1.0));
  EXPECT_EQ(0.0, zero(5.0));
}

TEST(RealPolynomElem, ExponentsFromTheParameters) {
  // e0 = 1/2: sqrt(x) * x on [0, 4]. The derivative leaves out the factor's.
  const CFunction f = makeWithParameters({0, 4}, {0, 1}, {1, 2, 1, 1});
  EXPECT_EQ(8.0, f(4.0));
  EXPECT_EQ(2.0, f.Derivative(4.0));
  const CSpec1dRealPolynomElemXDerivExt elem(0, {0, 4}, {0, 1}, {1, 2, 1, 1});
  EXPECT_EQ(0.5, elem.E0());
  EXPECT_EQ(1.0, elem.E1());
  // e1 = 2: 1 + 3 x^2, derivative exact.
  const CFunction g = makeWithParameters({0, 4}, {1, 3}, {0, 1, 2, 1});
  EXPECT_EQ(13.0, g(2.0));
  EXPECT_EQ(12.0, g.Derivative(2.0));
  // Non-positive denominators fall back to e0 = 0, e1 = 1; so do fewer than
  // four parameters.
  EXPECT_EQ(7.0, makeWithParameters({0, 4}, {1, 3}, {1, 0, 1, 0})(2.0));
  EXPECT_EQ(7.0, makeWithParameters({0, 4}, {1, 3}, {1, 2, 1})(2.0));
}

}  // namespace
}  // namespace math
}  // namespace lumo
