#include "math/polynomials.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::math::monotonicPolyRange;
using lumo::math::polynomialRoots;

const double kInf = std::numeric_limits<double>::infinity();

vigra::Polynomial<double> poly(std::vector<double> c) {
  return vigra::Polynomial<double>(c.begin(), static_cast<unsigned int>(c.size() - 1));
}

std::complex<double> evaluate(const std::vector<double>& c, std::complex<double> x) {
  std::complex<double> y = 0.0;
  for (std::size_t i = c.size(); i-- > 0;) y = y * x + c[i];
  return y;
}

TEST(PolynomialRoots, LinearHasTheOneRoot) {
  std::vector<std::complex<double>> roots{{9.0, 9.0}, {8.0, 8.0}};
  const double c[] = {3.0, -2.0};
  polynomialRoots(2, c, roots);
  ASSERT_EQ(1u, roots.size());
  EXPECT_DOUBLE_EQ(1.5, roots[0].real());
  EXPECT_EQ(0.0, roots[0].imag());
}

TEST(PolynomialRoots, RefusesTooFewCoefficientsAndAZeroLeadingCoefficient) {
  std::vector<std::complex<double>> roots;
  const double c[] = {1.0, 2.0, 0.0};
  EXPECT_THROW(polynomialRoots(1, c, roots), std::out_of_range);
  EXPECT_EQ("Too few coefficients.", thrownText([&] { polynomialRoots(0, c, roots); }));
  EXPECT_EQ("Too few coefficients.", thrownText([&] { polynomialRoots(1, c, roots); }));
  EXPECT_EQ("Highest-order coefficient must not be zero.",
            thrownText([&] { polynomialRoots(3, c, roots); }));
  // A tiny leading coefficient is no zero.
  const double tiny[] = {1.0, 1e-300};
  polynomialRoots(2, tiny, roots);
  EXPECT_EQ(1u, roots.size());
}

TEST(PolynomialRoots, ComplexPairsOfAQuadratic) {
  std::vector<std::complex<double>> roots;
  const double c[] = {5.0, -2.0, 1.0};  // (x - 1)^2 + 4
  polynomialRoots(3, c, roots);
  ASSERT_EQ(2u, roots.size());
  EXPECT_NEAR(1.0, roots[0].real(), 1e-12);
  EXPECT_NEAR(2.0, std::abs(roots[0].imag()), 1e-12);
  EXPECT_EQ(roots[0].imag(), -roots[1].imag());
}

TEST(PolynomialRoots, RandomPolynomialsVanishAtEveryRoot) {
  std::mt19937 rng(20261122);
  std::uniform_real_distribution<double> coef(-10.0, 10.0);
  for (unsigned int degree = 1; degree <= 5; ++degree) {
    for (int trial = 0; trial < 50; ++trial) {
      std::vector<double> c(degree + 1);
      for (double& v : c) v = coef(rng);
      std::vector<std::complex<double>> roots;
      polynomialRoots(degree + 1, c.data(), roots);
      ASSERT_EQ(degree, roots.size());
      for (const auto& r : roots) {
        // Scale of the terms at r, so that the test is relative.
        double scale = 0.0;
        for (std::size_t i = 0; i < c.size(); ++i)
          scale += std::abs(c[i]) * std::pow(std::abs(r), i);
        EXPECT_LT(std::abs(evaluate(c, r)), 1e-9 * scale) << "degree " << degree;
      }
    }
  }
}

TEST(MonotonicPolyRange, BoundsAreTheNearestCriticalPoints) {
  const auto cubic = poly({0.0, -3.0, 0.0, 1.0});  // x^3 - 3x, critical at -1 and 1
  auto r = monotonicPolyRange(cubic, 2.0);
  EXPECT_NEAR(1.0, r.first, 1e-12);
  EXPECT_EQ(kInf, r.second);
  r = monotonicPolyRange(cubic, -2.0);
  EXPECT_EQ(-kInf, r.first);
  EXPECT_NEAR(-1.0, r.second, 1e-12);
  r = monotonicPolyRange(poly({0.0, 0.0, 1.0}), 1.0);  // x^2
  EXPECT_EQ(0.0, r.first);
  EXPECT_EQ(kInf, r.second);
}

TEST(MonotonicPolyRange, UnboundedWithoutRealCriticalPoints) {
  auto r = monotonicPolyRange(poly({4.0, 2.0}), 100.0);  // constant derivative
  EXPECT_EQ(-kInf, r.first);
  EXPECT_EQ(kInf, r.second);
  r = monotonicPolyRange(poly({0.0, 1.0, 0.0, 1.0}), -3.0);  // f' = 3x^2 + 1
  EXPECT_EQ(-kInf, r.first);
  EXPECT_EQ(kInf, r.second);
}

TEST(MonotonicPolyRange, RefusesWhatDoesNotRiseAtX0) {
  const std::string text = "Polynomial not strictly monotonously increasing at x0.";
  EXPECT_EQ(text, thrownText([] { monotonicPolyRange(poly({7.0}), 0.0); }));
  EXPECT_EQ(text, thrownText([] { monotonicPolyRange(poly({0.0, -3.0, 0.0, 1.0}), 0.0); }));
  EXPECT_EQ(text, thrownText([] { monotonicPolyRange(poly({0.0, 0.0, 1.0}), 0.0); }));
  EXPECT_EQ(text, thrownText([] { monotonicPolyRange(poly({0.0, -1.0}), 5.0); }));
}

TEST(MonotonicPolyRange, ExactZeroLeadingCoefficientsAreDropped) {
  // x^2 stored with a zero cubic coefficient: the derivative 2x + 0x^2 is
  // shortened before its roots are taken.
  const auto r = monotonicPolyRange(poly({0.0, 0.0, 1.0, 0.0}), 1.0);
  EXPECT_EQ(0.0, r.first);
  EXPECT_EQ(kInf, r.second);
}

TEST(MonotonicPolyRange, RangeMatchesASampledDerivative) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> coef(-5.0, 5.0);
  std::uniform_real_distribution<double> point(-3.0, 3.0);
  int checked = 0;
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<double> c(5);
    for (double& v : c) v = coef(rng);
    const auto f = poly(c);
    auto derivative = [&](double x) {
      return c[1] + 2 * c[2] * x + 3 * c[3] * x * x + 4 * c[4] * x * x * x;
    };
    const double x0 = point(rng);
    if (derivative(x0) <= 0.0) continue;
    const auto r = monotonicPolyRange(f, x0);
    ASSERT_LT(r.first, x0);
    ASSERT_GT(r.second, x0);
    // Inside: the derivative stays positive.
    const double lo = std::max(r.first, x0 - 50.0);
    const double hi = std::min(r.second, x0 + 50.0);
    for (int i = 1; i < 100; ++i) {
      const double x = lo + (hi - lo) * i / 100.0;
      EXPECT_GT(derivative(x), 0.0) << "x=" << x << " range " << r.first << ".." << r.second;
    }
    // At a finite bound the derivative vanishes.
    if (std::isfinite(r.first)) EXPECT_NEAR(0.0, derivative(r.first), 1e-8);
    if (std::isfinite(r.second)) EXPECT_NEAR(0.0, derivative(r.second), 1e-8);
    ++checked;
  }
  EXPECT_GT(checked, 50);
}

}  // namespace
