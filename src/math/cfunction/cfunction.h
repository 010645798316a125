// CFunction: one real function of one real variable, chosen at run time by a
// strategy number, that can be evaluated, differentiated and inverted.
//
// Strategies (the element behind each is in the headers of this folder):
//    1  piecewise constant            CSpec1dConstElem
//    2  piecewise linear              CSpec1dLinearElem
//    3  cubic spline                  CSpec1dCubicSplineElem
//    4  polynomial everywhere         CSpec1dIntPolynomElemXAll
//    5  polynomial, identity outside  CSpec1dIntPolynomElemXCopyExt
//    6  real-exponent polynomial, tangent continuation
//                                     CSpec1dRealPolynomElemXDerivExt
//    9  polynomial, Gaussian return to the identity outside
//                                     CSpec1dIntPolynomElemZRKExt
//   10  Akima spline                  CSpec1dAkimaElem
//   11  Akima spline kept from undershooting
//                                     CSpec1dAkimaPosConstrainedElem
// Strategies 7 and 8 (elements of fixed shape) are not part of this library:
// like every other number they fail with std::runtime_error
// "Unsupported CFunction strategy.".
//
// Status: 0 while empty, 1 after a successful set-up, 2101 after a failed
// constructor, 2100 after a failed Init.
//
// Thread-safety: the const operations (evaluation, Derivative, Inverse) are
// safe from several threads at once; the only mutable data behind them is a
// per-thread interval cache. Init and assignment are thread-compatible: one
// thread at a time, and no reader meanwhile.
#ifndef KORA_MATH_CFUNCTION_CFUNCTION_H_
#define KORA_MATH_CFUNCTION_CFUNCTION_H_

#include <memory>
#include <vector>

namespace lumo {
namespace math {

class CFunctionImp;

class CFunction {
 public:
  // Empty: no implementation, status 0.
  CFunction();
  // Builds the function of `strategy` from `x` and `y`; `status` becomes 1.
  // On failure `status` becomes 2101 and a std::exception with the text of
  // the failure is thrown (its original class is not kept).
  CFunction(int strategy, const std::vector<double>& x, const std::vector<double>& y, int& status);
  ~CFunction();
  // Deep copies: the copy shares nothing with its source.
  CFunction(const CFunction& other);
  CFunction& operator=(const CFunction& other);

  // Replaces whatever was held by the function of `strategy`. On failure the
  // function is left empty with status 2100, and a std::exception with the
  // text of the failure is thrown.
  void Init(int strategy, const std::vector<double>& x, const std::vector<double>& y);
  // The same with integer parameters (strategy 6 reads its exponents there).
  void Init(int strategy, const std::vector<double>& x, const std::vector<double>& y,
            const std::vector<int>& parameters);

  // Value at x. `elem` is ignored by every supported strategy.
  // Throws std::invalid_argument "not initialized correctly, m_vFuncElems
  // empty" while empty (as do the other evaluations).
  double operator()(double x, int elem = 0) const;
  // Values at every x; `y` is resized to x.size().
  void operator()(const std::vector<double>& x, std::vector<double>& y) const;
  double Derivative(double x, int elem = 0) const;

  // An x in [lo, hi] with f(x) == y, by Newton's method started at
  // (lo + hi) / 2. `converged` is false when [lo, hi] brackets no solution
  // (the start is returned), when the residual f(x) - y exceeds 1e-6 in
  // magnitude, or when the iteration limit was reached. Never throws for
  // numerical trouble. While empty: 0.0, not converged, residual 0.0.
  double Inverse(double y, double lo, double hi, bool& converged, double& residual) const;
  // The same, started at `start`.
  double Inverse(double y, double start, double lo, double hi, bool& converged,
                 double& residual) const;

  // True when an implementation is held.
  bool IsInitialized() const;
  int GetStatus() const;
  int GetStrategy() const;

 private:
  void SetUp(int strategy, const std::vector<double>& x, const std::vector<double>& y,
             const std::vector<int>* parameters, int failureStatus);
  // Throws std::invalid_argument "not initialized correctly, m_vFuncElems
  // empty" while empty.
  const CFunctionImp& Imp() const;

  int status;
  std::unique_ptr<CFunctionImp> strategyImp;
  int strategy;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_CFUNCTION_H_
