#include "math/cfunction/func_base_elem.h"

#include <boost/math/policies/error_handling.hpp>
#include <boost/math/tools/roots.hpp>
#include <cmath>
#include <cstdint>
#include <utility>

namespace lumo {
namespace math {

namespace {

const double kDerivativeStep = 1e-6;
const int kInverseDigits = 53;
const std::uintmax_t kInverseMaxIterations = 2600;
const double kInverseTolerance = 1e-6;

}  // namespace

CFuncBaseElem::CFuncBaseElem(int elemNumber, const std::vector<double>& x)
    : elemNumber_(elemNumber), m_vXValues(x) {}

CFuncBaseElem::~CFuncBaseElem() {}

void CFuncBaseElem::operator()(const std::vector<double>& x, std::vector<double>& y) const {
  y.resize(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) y[i] = (*this)(x[i]);
}

double CFuncBaseElem::Derivative(double x) const {
  return ((*this)(x + kDerivativeStep) - (*this)(x - kDerivativeStep)) / (2 * kDerivativeStep);
}

double CFuncBaseElem::Inverse(double y, double start, double a, double b, int& converged,
                              double& residual) const {
  if (((*this)(a)-y) * ((*this)(b)-y) > 0) {
    converged = 0;
    residual = (*this)(start)-y;
    return start;
  }
  std::uintmax_t iterations = kInverseMaxIterations;
  double result;
  try {
    result = boost::math::tools::newton_raphson_iterate(
        [this, y](double x) { return std::make_pair((*this)(x)-y, Derivative(x)); }, start, a, b,
        kInverseDigits, iterations);
  } catch (const boost::math::evaluation_error&) {
    // The iteration found no bracketed root it could reach (a local
    // extremum, or a >= b): reported like a missing bracket.
    converged = 0;
    residual = (*this)(start)-y;
    return start;
  }
  converged = 1;
  residual = (*this)(result)-y;
  if (std::fabs(residual) > kInverseTolerance || iterations > kInverseMaxIterations - 1) {
    converged = 0;
  }
  return result;
}

void CFuncBaseElem::Inverse(const std::vector<double>& y, std::vector<double>& x, double start,
                            double a, double b, std::vector<int>& converged,
                            std::vector<double>& residual) const {
  x.resize(y.size());
  converged.resize(y.size());
  residual.resize(y.size());
  for (std::size_t i = 0; i < y.size(); ++i) {
    x[i] = Inverse(y[i], i == 0 ? start : x[i - 1], a, b, converged[i], residual[i]);
  }
}

void CFuncBaseElem::GetXValues(std::vector<double>& x) const { x = m_vXValues; }

}  // namespace math
}  // namespace lumo
