#include "math/cfunction/piecewise_elements.h"

#include <algorithm>

namespace lumo {
namespace math {

namespace detail {

std::size_t ThreadIntervalCache::Get() const {
  const std::size_t* interval = interval_.get();
  return interval ? *interval : 0;
}

void ThreadIntervalCache::Set(std::size_t interval) const {
  std::size_t* cached = interval_.get();
  if (cached) {
    *cached = interval;
  } else {
    interval_.reset(new std::size_t(interval));
  }
}

PiecewiseElem::PiecewiseElem(int elemNumber, const std::vector<double>& x,
                             const std::vector<double>& y)
    : CFuncBaseElem(elemNumber, x), n(std::min(x.size(), y.size())), knots(x), values(y) {}

void PiecewiseElem::operator()(const std::vector<double>& x, std::vector<double>& y) const {
  y.resize(x.size());
  std::size_t hint = 0;
  for (std::size_t i = 0; i < x.size(); ++i) y[i] = valueAt(x[i], hint);
}

double PiecewiseElem::operator()(double x) const {
  std::size_t hint = cache_.Get();
  const double y = valueAt(x, hint);
  cache_.Set(hint);
  return y;
}

bool PiecewiseElem::FindInterval(double v, std::size_t& hint) const {
  // Two passes: from the hint on, then from the first interval.
  std::size_t start = hint;
  for (int pass = 0; pass < 2; ++pass, start = 0) {
    for (std::size_t i = start; i + 1 < n; ++i) {
      if (knots[i] <= v && v < knots[i + 1]) {
        hint = i;
        return true;
      }
    }
  }
  return false;
}

}  // namespace detail

CSpec1dConstElem::CSpec1dConstElem(int elemNumber, const std::vector<double>& x,
                                   const std::vector<double>& y)
    : PiecewiseElem(elemNumber, x, y) {}

std::unique_ptr<CFuncBaseElem> CSpec1dConstElem::Clone() const {
  return std::make_unique<CSpec1dConstElem>(*this);
}

double CSpec1dConstElem::Derivative(double x) const { return 0.0; }

int CSpec1dConstElem::TypeCode() const { return kConstElemType; }

double CSpec1dConstElem::valueAt(double v, std::size_t& hint) const {
  if (n == 0) return 0.0;
  if (v < knots[0]) return values[0];
  if (v >= knots[n - 1]) return values[n >= 2 ? n - 2 : 0];
  return FindInterval(v, hint) ? values[hint] : 0.0;
}

CSpec1dLinearElem::CSpec1dLinearElem(int elemNumber, const std::vector<double>& x,
                                     const std::vector<double>& y)
    : PiecewiseElem(elemNumber, x, y) {}

std::unique_ptr<CFuncBaseElem> CSpec1dLinearElem::Clone() const {
  return std::make_unique<CSpec1dLinearElem>(*this);
}

double CSpec1dLinearElem::Derivative(double v) const {
  if (n == 0 || v < knots[0] || v >= knots[n - 1]) return 0.0;
  std::size_t i = Cache().Get();
  if (!FindInterval(v, i)) return 0.0;
  Cache().Set(i);
  return (values[i + 1] - values[i]) / (knots[i + 1] - knots[i]);
}

int CSpec1dLinearElem::TypeCode() const { return kLinearElemType; }

double CSpec1dLinearElem::valueAt(double v, std::size_t& hint) const {
  if (n == 0) return 0.0;
  if (v < knots[0]) return values[0];
  if (v >= knots[n - 1]) return values[n - 1];
  if (!FindInterval(v, hint)) return 0.0;
  const std::size_t i = hint;
  const double u = (v - knots[i]) / (knots[i + 1] - knots[i]);
  return values[i + 1] * u + (1 - u) * values[i];
}

}  // namespace math
}  // namespace lumo
