// The piecewise elements over knots x (ascending) and values y: constant and
// linear on each interval x[i] <= v < x[i+1].
//
// The search for the interval starts at the last one found and moves
// forward, then restarts once from the first; when both fail (a NaN, or
// knots out of order) the result is 0.0. The point forms keep the last
// interval per thread and per element; the vector forms keep it in a local
// for the run of points.
//
// Only the first min(x.size(), y.size()) knots take part.
//
// Thread-safety: safe from several threads; the interval cache is per
// thread.
#ifndef KORA_MATH_CFUNCTION_PIECEWISE_ELEMENTS_H_
#define KORA_MATH_CFUNCTION_PIECEWISE_ELEMENTS_H_

#include <boost/thread/tss.hpp>
#include <cstddef>
#include <memory>
#include <vector>

#include "math/cfunction/func_base_elem.h"

namespace lumo {
namespace math {

namespace detail {

// The last interval found by the calling thread. A copy starts empty.
class ThreadIntervalCache {
 public:
  ThreadIntervalCache() {}
  ThreadIntervalCache(const ThreadIntervalCache&) {}
  ThreadIntervalCache& operator=(const ThreadIntervalCache&) { return *this; }

  // 0 before this thread's first Set.
  std::size_t Get() const;
  void Set(std::size_t interval) const;

 private:
  mutable boost::thread_specific_ptr<std::size_t> interval_;
};

// What the piecewise elements share: knots, values, the interval search
// and the two ways of keeping the last interval.
class PiecewiseElem : public CFuncBaseElem {
 public:
  PiecewiseElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y);
  // valueAt for each x, the interval kept in a local.
  void operator()(const std::vector<double>& x, std::vector<double>& y) const override;
  // valueAt with the calling thread's last interval.
  double operator()(double x) const override;

 protected:
  // The value at v; `hint` is the interval to search from, and becomes the
  // interval found.
  virtual double valueAt(double v, std::size_t& hint) const = 0;

  // True with i, x[i] <= v < x[i+1], searching from `hint` on and then from
  // 0; `hint` becomes i. False when neither search finds it.
  bool FindInterval(double v, std::size_t& hint) const;
  // The last interval found by the calling thread.
  const ThreadIntervalCache& Cache() const { return cache_; }

  // The number of knots that take part: min(x.size(), y.size()).
  const std::size_t n;
  const std::vector<double> knots;
  const std::vector<double> values;

 private:
  ThreadIntervalCache cache_;
};

}  // namespace detail

// The value of the interval: y[i] for x[i] <= v < x[i+1]; y[0] below the
// first knot; at or above the last knot the last interval's value
// y[size - 2] (y[0] for a single knot). Derivative 0.0 everywhere.
class CSpec1dConstElem : public detail::PiecewiseElem {
 public:
  CSpec1dConstElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  double Derivative(double x) const override;
  int TypeCode() const override;

 private:
  double valueAt(double v, std::size_t& hint) const override;
};

// Linear interpolation y[i+1] u + (1 - u) y[i], u = (v - x[i]) / (x[i+1] -
// x[i]), with the interval's slope as derivative. Below the first knot y[0],
// at or above the last y[size - 1], both with derivative 0.0.
class CSpec1dLinearElem : public detail::PiecewiseElem {
 public:
  CSpec1dLinearElem(int elemNumber, const std::vector<double>& x, const std::vector<double>& y);
  std::unique_ptr<CFuncBaseElem> Clone() const override;
  double Derivative(double x) const override;
  int TypeCode() const override;

 private:
  double valueAt(double v, std::size_t& hint) const override;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_PIECEWISE_ELEMENTS_H_
