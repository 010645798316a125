// BoundsChecker: what the raw and the index bounds checker share: the
// interval, its getters and setters, the clamping, Clone, IsEqual and
// DumpData. The concrete checker (Derived, CRTP) overrides the conversions
// it clamps and provides
//   static const char* ClassName()    the class name of the dump
//   static const char* BoundsLabel()  "raw bounds: [" or "index bounds: ["
//   Derived(const ICalibrationTransformatorPtr& base, double lower, double upper)
//
// A checker never fails on a value out of range: it clamps it. The interval
// is not checked; with lower > upper every clamped value is upper.
//
// Thread-safety: as TransformatorDecorator.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_H_
#define KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_H_

#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "calibration_core/decorators/transformator_decorator.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace detail {

// min(upper, max(lower, x)): a NaN becomes lower.
inline double clampValue(double x, double lower, double upper) {
  return std::min(upper, std::max(lower, x));
}

// Every element: below lower becomes lower, and then above upper becomes
// upper. A NaN stays NaN.
template <class T>
void clampValues(std::vector<T>& values, T lower, T upper) {
  for (T& x : values) {
    if (lower > x) x = lower;
    if (x > upper) x = upper;
  }
}

}  // namespace detail

// The forms of the wrapped model's conversion `Op` inside a BoundsChecker,
// one macro a form: the result clamped (in place, out of place from a
// vector of In to one of Out, scalar), or the input clamped first (the
// out-of-place form clamps a copy and leaves the caller's source alone).
#define KORA_CLAMPED_RESULT_IN_PLACE(Op)                \
  void Op(std::vector<double>& values) const override { \
    this->base()->Op(values);                           \
    this->clamp(values);                                \
  }
#define KORA_CLAMPED_RESULT_BATCH(Op, In, Out)                               \
  void Op(const std::vector<In>& in, std::vector<Out>& out) const override { \
    this->base()->Op(in, out);                                               \
    this->clamp(out);                                                        \
  }
#define KORA_CLAMPED_RESULT_SCALAR(Op, In, Out) \
  Out Op(In x) const override { return this->clamp(this->base()->Op(x)); }
#define KORA_CLAMPED_RESULT(Op)                 \
  KORA_CLAMPED_RESULT_IN_PLACE(Op)              \
  KORA_CLAMPED_RESULT_BATCH(Op, double, double) \
  KORA_CLAMPED_RESULT_SCALAR(Op, double, double)

#define KORA_CLAMPED_INPUT_IN_PLACE(Op)                 \
  void Op(std::vector<double>& values) const override { \
    this->clamp(values);                                \
    this->base()->Op(values);                           \
  }
#define KORA_CLAMPED_INPUT_BATCH(Op, Out)                                        \
  void Op(const std::vector<double>& in, std::vector<Out>& out) const override { \
    this->base()->Op(this->clamped(in), out);                                    \
  }

template <class Derived, class CheckerInterface>
class BoundsChecker : public TransformatorDecorator<ICalibrationTransformator, CheckerInterface> {
  typedef TransformatorDecorator<ICalibrationTransformator, CheckerInterface> Base;

 public:
  // Wraps a clone of `base`. REQUIRES: `base` is not empty.
  BoundsChecker(const ICalibrationTransformatorPtr& base, double lower, double upper)
      : Base(base), lower_(lower), upper_(upper) {}

  // A new checker with the same interval around a clone of the wrapped object.
  ICloneablePtr Clone() const override {
    return boost::make_shared<Derived>(this->base(), lower_, upper_);
  }

  double GetLower() const override { return lower_; }
  void SetLower(double lower) override { lower_ = lower; }
  double GetUpper() const override { return upper_; }
  void SetUpper(double upper) override { upper_ = upper; }

  // `other` is a checker of the same kind with exactly equal bounds, around
  // an object IsEqual to the wrapped one.
  bool IsEqual(ICalibrationTransformatorConstPtr other) const override {
    const auto* checker = dynamic_cast<const CheckerInterface*>(other.get());
    if (!checker) return false;
    return this->base()->IsEqual(checker->GetBaseTransformator()) &&
           lower_ == checker->GetLower() && upper_ == checker->GetUpper();
  }

  std::string DumpData() const override {
    std::ostringstream os;
    os << Derived::ClassName() << "[ " << kTransformatorSerializationVersion << "\n"
       << Derived::BoundsLabel() << lower_ << ", " << upper_ << "] " << this->base()->DumpData();
    return os.str();
  }

 protected:
  double clamp(double x) const { return detail::clampValue(x, lower_, upper_); }
  // Against the bounds truncated toward zero.
  std::int32_t clamp(std::int32_t x) const {
    return std::min(static_cast<std::int32_t>(upper_),
                    std::max(static_cast<std::int32_t>(lower_), x));
  }
  void clamp(std::vector<double>& values) const { detail::clampValues(values, lower_, upper_); }
  // The bounds truncated toward zero.
  void clamp(std::vector<std::int32_t>& values) const {
    detail::clampValues(values, static_cast<std::int32_t>(lower_),
                        static_cast<std::int32_t>(upper_));
  }
  // A copy of `values`, clamped.
  std::vector<double> clamped(const std::vector<double>& values) const {
    std::vector<double> copy(values);
    clamp(copy);
    return copy;
  }

 private:
  double lower_;
  double upper_;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_H_
