#include "math/cfunction/polynomial_elements.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace lumo {
namespace math {

namespace detail {

double horner(const std::vector<double>& c, double x) {
  double y = 0.0;
  for (std::size_t i = c.size(); i-- > 0;) y = y * x + c[i];
  return y;
}

double hornerDerivative(const std::vector<double>& c, double x) {
  double d = 0.0;
  for (std::size_t i = c.size(); i-- > 1;) d = d * x + static_cast<double>(i) * c[i];
  return d;
}

}  // namespace detail

namespace {

// Coefficients as given, or one 0.0 for none.
std::vector<double> coefficientsOrZero(const std::vector<double>& y) {
  return y.empty() ? std::vector<double>(1, 0.0) : y;
}

double lowerBound(const std::vector<double>& x) {
  return x.size() < 2 ? -detail::kUnboundedLimit : x[0];
}

double upperBound(const std::vector<double>& x) {
  return x.size() < 2 ? detail::kUnboundedLimit : x[1];
}

}  // namespace

namespace detail {

IntPolynomElem::IntPolynomElem(int elemNumber, const std::vector<double>& x,
                               std::vector<double> coefficients, double lo, double hi)
    : CFuncBaseElem(elemNumber, x), m_vCoefficients(std::move(coefficients)), lo_(lo), hi_(hi) {}

}  // namespace detail

CSpec1dIntPolynomElemXAll::CSpec1dIntPolynomElemXAll(int elemNumber, const std::vector<double>& x,
                                                     const std::vector<double>& y)
    : IntPolynomElem(elemNumber, x, y, -detail::kUnboundedLimit, detail::kUnboundedLimit) {}

std::unique_ptr<CFuncBaseElem> CSpec1dIntPolynomElemXAll::Clone() const {
  return std::make_unique<CSpec1dIntPolynomElemXAll>(*this);
}

double CSpec1dIntPolynomElemXAll::operator()(double x) const { return Polynomial(x); }

double CSpec1dIntPolynomElemXAll::Derivative(double x) const { return PolynomialSlope(x); }

int CSpec1dIntPolynomElemXAll::TypeCode() const { return kIntPolynomXAllElemType; }

CSpec1dIntPolynomElemXCopyExt::CSpec1dIntPolynomElemXCopyExt(int elemNumber,
                                                             const std::vector<double>& x,
                                                             const std::vector<double>& y)
    : IntPolynomElem(elemNumber, x, y, lowerBound(x), upperBound(x)) {}

std::unique_ptr<CFuncBaseElem> CSpec1dIntPolynomElemXCopyExt::Clone() const {
  return std::make_unique<CSpec1dIntPolynomElemXCopyExt>(*this);
}

double CSpec1dIntPolynomElemXCopyExt::operator()(double x) const {
  return InRange(x) ? Polynomial(x) : x;
}

double CSpec1dIntPolynomElemXCopyExt::Derivative(double x) const {
  return InRange(x) ? PolynomialSlope(x) : 1.0;
}

int CSpec1dIntPolynomElemXCopyExt::TypeCode() const { return kIntPolynomXCopyExtElemType; }

CSpec1dIntPolynomElemZRKExt::CSpec1dIntPolynomElemZRKExt(int elemNumber,
                                                         const std::vector<double>& x,
                                                         const std::vector<double>& y)
    : IntPolynomElem(elemNumber, x, coefficientsOrZero(y), lowerBound(x), upperBound(x)),
      k_(x.size() < 3 ? 1.0 : x[2]) {}

std::unique_ptr<CFuncBaseElem> CSpec1dIntPolynomElemZRKExt::Clone() const {
  return std::make_unique<CSpec1dIntPolynomElemZRKExt>(*this);
}

double CSpec1dIntPolynomElemZRKExt::operator()(double x) const {
  if (InRange(x)) return Polynomial(x);
  const double b = x < lo_ ? lo_ : hi_;
  return x + std::exp(-((x - b) * k_ * (x - b))) * (Polynomial(b) - b);
}

void CSpec1dIntPolynomElemZRKExt::operator()(const std::vector<double>& x,
                                             std::vector<double>& y) const {
  y.resize(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) y[i] = CSpec1dIntPolynomElemZRKExt::operator()(x[i]);
}

double CSpec1dIntPolynomElemZRKExt::Derivative(double x) const {
  if (InRange(x)) return PolynomialSlope(x);
  const double b = x < lo_ ? lo_ : hi_;
  return 1.0 - (Polynomial(b) - b) * 2.0 * k_ * (x - b) * std::exp(-((x - b) * k_ * (x - b)));
}

int CSpec1dIntPolynomElemZRKExt::TypeCode() const { return kIntPolynomZRKExtElemType; }

double CSpec1dIntPolynomElemZRKExt::PolynomialValue(double x) const { return Polynomial(x); }

double CSpec1dIntPolynomElemZRKExt::PolynomialDerivative(double x) const {
  return PolynomialSlope(x);
}

}  // namespace math
}  // namespace lumo
