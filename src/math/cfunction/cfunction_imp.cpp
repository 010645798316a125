#include "math/cfunction/cfunction_imp.h"

#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace math {

namespace {

template <class T>
std::vector<std::unique_ptr<T>> cloneAll(const std::vector<std::unique_ptr<T>>& list) {
  std::vector<std::unique_ptr<T>> copy;
  copy.reserve(list.size());
  for (const std::unique_ptr<T>& item : list) copy.push_back(item->Clone());
  return copy;
}

}  // namespace

namespace detail {

void throwNoFuncElems() {
  LUMO_THROW(std::invalid_argument("not initialized correctly, m_vFuncElems empty"));
}

}  // namespace detail

CFunctionImp::CFunctionImp() : dimension(1) {}

CFunctionImp::CFunctionImp(const CFunctionImp& other)
    : dimension(other.dimension),
      intParams(other.intParams),
      points(cloneAll(other.points)),
      elements(cloneAll(other.elements)),
      m_vFuncElems(cloneAll(other.m_vFuncElems)) {}

CFunctionImp::~CFunctionImp() {}

void CFunctionImp::Init(const std::vector<double>& x, const std::vector<double>& y,
                        const std::vector<int>& parameters) {
  intParams = parameters;
  Init(x, y);
}

const CFuncBaseElem& CFunctionImp::FirstFuncElem() const {
  if (m_vFuncElems.empty()) detail::throwNoFuncElems();
  return *m_vFuncElems.front();
}

double CFunctionImp::operator()(double x, int elem) const { return FirstFuncElem()(x); }

void CFunctionImp::operator()(const std::vector<double>& x, std::vector<double>& y) const {
  FirstFuncElem()(x, y);
}

double CFunctionImp::Derivative(double x, int elem) const { return FirstFuncElem().Derivative(x); }

double CFunctionImp::Inverse(double y, double start, double a, double b, int& converged,
                             double& residual) const {
  return FirstFuncElem().Inverse(y, start, a, b, converged, residual);
}

void CFunctionImp::Inverse(const std::vector<double>& y, std::vector<double>& x, double start,
                           double a, double b, std::vector<int>& converged,
                           std::vector<double>& residual) const {
  FirstFuncElem().Inverse(y, x, start, a, b, converged, residual);
}

void CFunctionImp::GetXValues(std::vector<double>& x) const { FirstFuncElem().GetXValues(x); }

}  // namespace math
}  // namespace lumo
