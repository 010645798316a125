// The polynomial elements with integer powers: c[0] + c[1] x + ... + c[n] x^n
// (coefficients lowest order first), differing in what lies outside their
// validity range.
//
// In range means lo - 1e-10 <= x <= hi + 1e-10.
//
// Thread-safety: immutable after construction; safe from several threads.
#ifndef KORA_MATH_CFUNCTION_POLYNOMIAL_ELEMENTS_H_
#define KORA_MATH_CFUNCTION_POLYNOMIAL_ELEMENTS_H_

#include <memory>
#include <vector>

#include "math/cfunction/func_base_elem.h"

namespace lumo {
namespace math {

namespace detail {

// Tolerance of every polynomial element's validity range, on both bounds.
const double kRangeTolerance = 1e-10;
// The bounds of an element given no range: half the largest double.
const double kUnboundedLimit = 8.98846567431158e307;

inline bool inRange(double x, double lo, double hi) {
  return x <= hi + kRangeTolerance && x >= lo - kRangeTolerance;
}

// Horner's rule at x; 0.0 for no coefficients.
double horner(const std::vector<double>& c, double x);
// The derivative by Horner's rule on i * c[i]; 0.0 for fewer than two
// coefficients.
double hornerDerivative(const std::vector<double>& c, double x);

}  // namespace detail

namespace detail {

// What the integer-power polynomial elements share: the coefficients and
// the validity range.
class IntPolynomElem : public CFuncBaseElem {
 public:
  using CFuncBaseElem::operator();

 protected:
  IntPolynomElem(int elemNumber, const std::vector<double>& x, std::vector<double> coefficients,
                 double lo, double hi);

  double Polynomial(double x) const { return horner(m_vCoefficients, x); }
  double PolynomialSlope(double x) const { return hornerDerivative(m_vCoefficients, x); }
  bool InRange(double x) const { return inRange(x, lo_, hi_); }

  const std::vector<double> m_vCoefficients;
  const double lo_;
  const double hi_;
};

}  // namespace detail

// `y` holds the coefficients; `x` is not used. The polynomial everywhere.
class CSpec1dIntPolynomElemXAll : public detail::IntPolynomElem {
 public:
  CSpec1dIntPolynomElemXAll(int elemNumber, const std::vector<double>& x,
                            const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  double operator()(double x) const override;
  double Derivative(double x) const override;
  int TypeCode() const override;
};

// `y` holds the coefficients, `x` the range [x[0], x[1]] (the whole line when
// x has fewer than two values). Outside the range the identity: value x,
// derivative 1.0.
class CSpec1dIntPolynomElemXCopyExt : public detail::IntPolynomElem {
 public:
  CSpec1dIntPolynomElemXCopyExt(int elemNumber, const std::vector<double>& x,
                                const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  double operator()(double x) const override;
  double Derivative(double x) const override;
  int TypeCode() const override;
};

// `y` holds the coefficients (none: one 0.0), `x` is [lo, hi, k]: fewer than
// two values give lo = -8.98846567431158e307 and hi = 8.98846567431158e307,
// fewer than three k = 1.0. Outside the range the function returns to the
// identity with a Gaussian: with b the bound on x's side and P the
// polynomial, x + (P(b) - b) * exp(-k (x - b)^2).
class CSpec1dIntPolynomElemZRKExt : public detail::IntPolynomElem {
 public:
  CSpec1dIntPolynomElemZRKExt(int elemNumber, const std::vector<double>& x,
                              const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  double operator()(double x) const override;
  // The scalar form over every element, bound without a virtual call.
  void operator()(const std::vector<double>& x, std::vector<double>& y) const override;
  double Derivative(double x) const override;
  int TypeCode() const override;

  // The polynomial itself at x, with no continuation outside the range.
  double PolynomialValue(double x) const;
  double PolynomialDerivative(double x) const;

 private:
  const double k_;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_POLYNOMIAL_ELEMENTS_H_
