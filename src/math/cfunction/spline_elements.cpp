#include "math/cfunction/spline_elements.h"

#include <limits>
#include <sstream>
#include <stdexcept>

#include "math/splines/akima.h"
#include "math/splines/cubic_spline.h"
#include "sys/throw.h"

namespace lumo {
namespace math {

namespace {

std::vector<double> slice(const std::vector<double>& y, std::size_t from, std::size_t count) {
  return std::vector<double>(y.begin() + from, y.begin() + from + count);
}

// Checks y.size() against 2n and 2n + 1 before any slicing.
std::size_t checkedAkimaKnots(const std::vector<double>& x, const std::vector<double>& y) {
  const std::size_t n = x.size();
  if (y.size() != 2 * n && y.size() != 2 * n + 1) {
    std::ostringstream text;
    text << "2*xValues.size() " << 2 * n << " != yValues.size() " << y.size();
    LUMO_THROW(std::invalid_argument(text.str()));
  }
  return n;
}

std::size_t checkedSplineKnots(const std::vector<double>& x, const std::vector<double>& y) {
  if (2 * x.size() != y.size()) {
    LUMO_THROW(
        std::invalid_argument("not initialized correctly, 2*xValues.size() != yValues.size()"));
  }
  return x.size();
}

}  // namespace

CSpec1dCubicSplineElem::CSpec1dCubicSplineElem(int elemNumber, const std::vector<double>& x,
                                               const std::vector<double>& y)
    : CFuncBaseElem(elemNumber, x),
      knots_(x),
      values_(slice(y, 0, checkedSplineKnots(x, y))),
      secondDerivatives_(slice(y, x.size(), x.size())) {}

std::unique_ptr<CFuncBaseElem> CSpec1dCubicSplineElem::Clone() const {
  return std::make_unique<CSpec1dCubicSplineElem>(*this);
}

void CSpec1dCubicSplineElem::operator()(const std::vector<double>& x,
                                        std::vector<double>& y) const {
  CubicSplineInterpolation(x, y, knots_, values_, secondDerivatives_);
}

double CSpec1dCubicSplineElem::operator()(double x) const {
  double y = 0.0;
  CubicSplineInterpolation(x, y, knots_, values_, secondDerivatives_);
  return y;
}

int CSpec1dCubicSplineElem::TypeCode() const { return kCubicSplineElemType; }

namespace detail {

AkimaElem::AkimaElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y,
                     int constraint)
    : CFuncBaseElem(elemNumber, x),
      knots_(x),
      values_(slice(y, 0, checkedAkimaKnots(x, y))),
      slopes_(slice(y, x.size(), x.size())),
      lowerLimit_(!x.empty() && y.size() == 2 * x.size() + 1 ? y[2 * x.size() - 1]
                                                             : std::numeric_limits<double>::min()),
      constraint_(constraint) {}

void AkimaElem::operator()(const std::vector<double>& x, std::vector<double>& y) const {
  std::vector<double> dy;
  CAkima().CalcInterpolation(x, y, dy, knots_, values_, slopes_, constraint_);
  for (double& value : y) {
    if (value < lowerLimit_) value = lowerLimit_;
  }
}

double AkimaElem::operator()(double x) const {
  double y = 0.0;
  double dy = 0.0;
  CAkima().CalcInterpolation(x, y, dy, knots_, values_, slopes_, constraint_);
  return y < lowerLimit_ ? lowerLimit_ : y;
}

}  // namespace detail

CSpec1dAkimaElem::CSpec1dAkimaElem(int elemNumber, const std::vector<double>& x,
                                   const std::vector<double>& y)
    : AkimaElem(elemNumber, x, y, 0) {}

std::unique_ptr<CFuncBaseElem> CSpec1dAkimaElem::Clone() const {
  return std::make_unique<CSpec1dAkimaElem>(*this);
}

int CSpec1dAkimaElem::TypeCode() const { return kAkimaElemType; }

CSpec1dAkimaPosConstrainedElem::CSpec1dAkimaPosConstrainedElem(int elemNumber,
                                                               const std::vector<double>& x,
                                                               const std::vector<double>& y)
    : AkimaElem(elemNumber, x, y, 1) {}

std::unique_ptr<CFuncBaseElem> CSpec1dAkimaPosConstrainedElem::Clone() const {
  return std::make_unique<CSpec1dAkimaPosConstrainedElem>(*this);
}

int CSpec1dAkimaPosConstrainedElem::TypeCode() const { return kAkimaPosConstrainedElemType; }

}  // namespace math
}  // namespace lumo
