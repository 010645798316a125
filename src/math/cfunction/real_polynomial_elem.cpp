#include "math/cfunction/real_polynomial_elem.h"

#include <cmath>

#include "math/cfunction/polynomial_elements.h"

namespace lumo {
namespace math {

namespace {

double firstExponent(const std::vector<int>& p) {
  if (p.size() < 4 || p[1] < 1) return 0.0;
  return static_cast<double>(p[0]) / static_cast<double>(p[1]);
}

double secondExponent(const std::vector<int>& p) {
  if (p.size() < 4 || p[3] <= 0) return 1.0;
  return static_cast<double>(p[2]) / static_cast<double>(p[3]);
}

double nonNegative(double v) { return v < 0.0 ? 0.0 : v; }

}  // namespace

CSpec1dRealPolynomElemXDerivExt::CSpec1dRealPolynomElemXDerivExt(int elemNumber,
                                                                 const std::vector<double>& x,
                                                                 const std::vector<double>& y,
                                                                 const std::vector<int>& parameters)
    : CFuncBaseElem(elemNumber, x),
      m_vCoefficients(y.empty() ? std::vector<double>(1, 0.0) : y),
      e0_(firstExponent(parameters)),
      e1_(secondExponent(parameters)),
      lo_(x.size() == 2 ? nonNegative(x[0]) : 1e-10),
      hi_(x.size() == 2 ? nonNegative(x[1]) : 1.0) {}

std::unique_ptr<CFuncBaseElem> CSpec1dRealPolynomElemXDerivExt::Clone() const {
  return std::make_unique<CSpec1dRealPolynomElemXDerivExt>(*this);
}

double CSpec1dRealPolynomElemXDerivExt::operator()(double x) const {
  if (detail::inRange(x, lo_, hi_)) return valueInRange(x);
  if (x <= lo_) return valueInRange(lo_) - (lo_ - x) * derivativeInRange(lo_);
  return valueInRange(hi_) + (x - hi_) * derivativeInRange(hi_);
}

double CSpec1dRealPolynomElemXDerivExt::Derivative(double x) const {
  if (detail::inRange(x, lo_, hi_)) return derivativeInRange(x);
  return derivativeInRange(x > lo_ ? hi_ : lo_);
}

int CSpec1dRealPolynomElemXDerivExt::TypeCode() const { return kRealPolynomXDerivExtElemType; }

double CSpec1dRealPolynomElemXDerivExt::valueInRange(double x) const {
  if (x <= 0) return m_vCoefficients[0];
  return std::pow(x, e0_) * detail::horner(m_vCoefficients, std::pow(x, e1_));
}

double CSpec1dRealPolynomElemXDerivExt::derivativeInRange(double x) const {
  double t = 0.0;
  double w = 1.0;
  if (x > 0) {
    t = std::pow(x, e1_);
    w = std::pow(x, e0_ + e1_ - 1);
  }
  const std::size_t n = m_vCoefficients.size() - 1;
  double s = static_cast<double>(n) * e1_;
  double d = s * m_vCoefficients[n];
  for (std::size_t i = n; i-- > 1;) {
    s = s - e1_;
    d = s * m_vCoefficients[i] + t * d;
  }
  return w * d;
}

}  // namespace math
}  // namespace lumo
