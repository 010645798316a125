// CFunctionImp: the strategy behind a CFunction. It holds a geometry (points
// and elements) and the function elements on it; the operations forward to
// the first function element.
//
// Thread-safety: Init is thread-compatible; the const operations are safe
// from several threads once Init has returned.
#ifndef KORA_MATH_CFUNCTION_CFUNCTION_IMP_H_
#define KORA_MATH_CFUNCTION_CFUNCTION_IMP_H_

#include <memory>
#include <vector>

#include "math/cfunction/func_base_elem.h"
#include "math/cfunction/geometry.h"

namespace lumo {
namespace math {

class CFunctionImp {
 public:
  virtual ~CFunctionImp();
  // A deep copy: points, elements and function elements are cloned.
  virtual std::unique_ptr<CFunctionImp> Clone() const = 0;

  // Keeps `parameters` (intParams) and calls Init(x, y).
  virtual void Init(const std::vector<double>& x, const std::vector<double>& y,
                    const std::vector<int>& parameters);
  virtual void Init(const std::vector<double>& x, const std::vector<double>& y) = 0;

  // The operations of the function element; `elem` is not used.
  // Each throws std::invalid_argument "not initialized correctly,
  // m_vFuncElems empty" when there is no function element.
  virtual double operator()(double x, int elem) const;
  virtual void operator()(const std::vector<double>& x, std::vector<double>& y) const;
  virtual double Derivative(double x, int elem) const;
  virtual double Inverse(double y, double start, double a, double b, int& converged,
                         double& residual) const;
  virtual void Inverse(const std::vector<double>& y, std::vector<double>& x, double start, double a,
                       double b, std::vector<int>& converged, std::vector<double>& residual) const;
  virtual void GetXValues(std::vector<double>& x) const;
  virtual int TypeCode() const = 0;

 protected:
  CFunctionImp();
  CFunctionImp(const CFunctionImp& other);
  CFunctionImp& operator=(const CFunctionImp&) = delete;

  // The first function element. Throws as the operations do.
  const CFuncBaseElem& FirstFuncElem() const;

  int dimension;
  std::vector<int> intParams;
  std::vector<std::unique_ptr<CGeomBasePoint>> points;
  std::vector<std::unique_ptr<CGeomBaseElem>> elements;
  std::vector<std::unique_ptr<CFuncBaseElem>> m_vFuncElems;
};

namespace detail {

// Throws std::invalid_argument "not initialized correctly, m_vFuncElems
// empty": an operation on a function without elements.
[[noreturn]] void throwNoFuncElems();

}  // namespace detail
}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_CFUNCTION_IMP_H_
