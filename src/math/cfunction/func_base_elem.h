// CFuncBaseElem: the function element behind a CFunction, with what every
// element shares: the central-difference derivative and Newton's inverse.
//
// Thread-safety: elements are immutable after construction; every const
// operation may run on several threads at once.
#ifndef KORA_MATH_CFUNCTION_FUNC_BASE_ELEM_H_
#define KORA_MATH_CFUNCTION_FUNC_BASE_ELEM_H_

#include <memory>
#include <vector>

namespace lumo {
namespace math {

// Type codes of the element classes (TypeCode()).
enum ElementTypeCode {
  kLinearElemType = 4,
  kConstElemType = 5,
  kCubicSplineElemType = 6,
  kIntPolynomXAllElemType = 7,
  kIntPolynomXCopyExtElemType = 8,
  kRealPolynomXDerivExtElemType = 9,
  kIntPolynomZRKExtElemType = 10,
  kAkimaElemType = 11,
  kAkimaPosConstrainedElemType = 12,
};

class CFuncBaseElem {
 public:
  // `elemNumber` is the element's index in its function; `x` are the values
  // the element was made from, returned by GetXValues.
  CFuncBaseElem(int elemNumber, const std::vector<double>& x);
  virtual ~CFuncBaseElem();

  // A deep copy of the concrete element.
  virtual std::unique_ptr<CFuncBaseElem> Clone() const = 0;

  // Values at every x; `y` is resized to x.size(). By default the point
  // form for each.
  virtual void operator()(const std::vector<double>& x, std::vector<double>& y) const;
  virtual double operator()(double x) const = 0;
  // By default (f(x + 1e-6) - f(x - 1e-6)) / 2e-6.
  virtual double Derivative(double x) const;

  // An x in [a, b] with f(x) == y, by Newton-Raphson from `start` (53 bits,
  // at most 2600 iterations). `converged` becomes 1, or 0 when
  // |f(x) - y| > 1e-6 or more than 2599 iterations were used. `residual` is
  // f(result) - y. When f(a) - y and f(b) - y have the same sign, or the
  // iteration gives up (a local extremum, or a >= b), the result is `start`
  // with `converged` 0. Never throws for numerical trouble.
  virtual double Inverse(double y, double start, double a, double b, int& converged,
                         double& residual) const;
  // The point form for each y: the first starts at `start`, each further one
  // at the result before it. `x`, `converged` and `residual` are resized to
  // y.size().
  virtual void Inverse(const std::vector<double>& y, std::vector<double>& x, double start, double a,
                       double b, std::vector<int>& converged, std::vector<double>& residual) const;

  // The x values the element was made from.
  virtual void GetXValues(std::vector<double>& x) const;
  // The number of the element class (ElementTypeCode).
  virtual int TypeCode() const = 0;

  int ElemNumber() const { return elemNumber_; }

 protected:
  CFuncBaseElem(const CFuncBaseElem&) = default;
  CFuncBaseElem& operator=(const CFuncBaseElem&) = default;

 private:
  int elemNumber_;
  std::vector<double> m_vXValues;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_FUNC_BASE_ELEM_H_
