// The spline elements: the cubic spline from second derivatives and the two
// Akima elements from slopes. Their Derivative is the central difference of
// CFuncBaseElem, not the spline's own slope.
//
// Thread-safety: immutable after construction; safe from several threads.
#ifndef KORA_MATH_CFUNCTION_SPLINE_ELEMENTS_H_
#define KORA_MATH_CFUNCTION_SPLINE_ELEMENTS_H_

#include <memory>
#include <vector>

#include "math/cfunction/func_base_elem.h"

namespace lumo {
namespace math {

// Knots x; y holds the n values and then the n second derivatives.
// Throws std::invalid_argument "not initialized correctly,
// 2*xValues.size() != yValues.size()" unless y.size() == 2 * x.size().
class CSpec1dCubicSplineElem : public CFuncBaseElem {
 public:
  CSpec1dCubicSplineElem(int elemNumber, const std::vector<double>& x,
                         const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  void operator()(const std::vector<double>& x, std::vector<double>& y) const override;
  double operator()(double x) const override;
  int TypeCode() const override;

 private:
  std::vector<double> knots_;
  std::vector<double> values_;
  std::vector<double> secondDerivatives_;
};

namespace detail {

// What the Akima elements share. Knots x (n, ascending); y holds the n
// values, the n slopes and optionally one more entry. lowerLimit, which
// every result is raised to, is then y[2n - 1] (the last slope, not the
// extra entry), else the smallest normal double.
// Throws std::invalid_argument "2*xValues.size() <2n> != yValues.size()
// <y.size()>" unless y.size() is 2n or 2n + 1.
class AkimaElem : public CFuncBaseElem {
 public:
  void operator()(const std::vector<double>& x, std::vector<double>& y) const override;
  double operator()(double x) const override;

  double LowerLimit() const { return lowerLimit_; }

 protected:
  // `constraint` as CAkima's.
  AkimaElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y,
            int constraint);

 private:
  std::vector<double> knots_;
  std::vector<double> values_;
  std::vector<double> slopes_;
  double lowerLimit_;
  int constraint_;
};

}  // namespace detail

// The Akima spline, unconstrained.
class CSpec1dAkimaElem : public detail::AkimaElem {
 public:
  CSpec1dAkimaElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  int TypeCode() const override;
};

// The Akima spline kept from falling below the lower end value of each
// interval.
class CSpec1dAkimaPosConstrainedElem : public detail::AkimaElem {
 public:
  CSpec1dAkimaPosConstrainedElem(int elemNumber, const std::vector<double>& x,
                                 const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  int TypeCode() const override;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_SPLINE_ELEMENTS_H_
