// CSpec1dRealPolynomElemXDerivExt: a polynomial with real exponents,
//   f(x) = x^e0 * (c[0] + c[1] t + ... + c[n] t^n),  t = x^e1,
// on a validity range [lo, hi], continued outside along its tangents.
//
// Construction from x (the range), y (the coefficients, lowest first) and
// the integer parameters (p0, p1, p2, p3):
//   1. e0 = p0 / p1 if p1 >= 1, else 0; e1 = p2 / p3 if p3 > 0, else 1;
//      with fewer than four parameters e0 = 0 and e1 = 1.
//   2. No coefficients: one 0.0.
//   3. The range is [x[0], x[1]], each raised to 0.0 if negative, when x has
//      exactly two values (in either order), else [1e-10, 1].
//
// The derivative leaves out the derivative of the factor x^e0: it is exact
// for e0 = 0 only, and that is what this element promises.
//
// Thread-safety: immutable after construction; safe from several threads.
#ifndef KORA_MATH_CFUNCTION_REAL_POLYNOMIAL_ELEM_H_
#define KORA_MATH_CFUNCTION_REAL_POLYNOMIAL_ELEM_H_

#include <memory>
#include <vector>

#include "math/cfunction/func_base_elem.h"

namespace lumo {
namespace math {

class CSpec1dRealPolynomElemXDerivExt : public CFuncBaseElem {
 public:
  CSpec1dRealPolynomElemXDerivExt(int elemNumber, const std::vector<double>& x,
                                  const std::vector<double>& y, const std::vector<int>& parameters);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  using CFuncBaseElem::operator();
  // In range (1e-10 tolerance on both bounds): the polynomial, c[0] for
  // x <= 0. Below: f(lo) - (lo - x) f'(lo); above: f(hi) + (x - hi) f'(hi).
  double operator()(double x) const override;
  // In range the derivative as stated above; outside f'(hi) for x > lo,
  // else f'(lo).
  double Derivative(double x) const override;
  int TypeCode() const override;

  double E0() const { return e0_; }
  double E1() const { return e1_; }

 private:
  double valueInRange(double x) const;
  double derivativeInRange(double x) const;

  std::vector<double> m_vCoefficients;
  double e0_;
  double e1_;
  double lo_;
  double hi_;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_REAL_POLYNOMIAL_ELEM_H_
