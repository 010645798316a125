// ICalibrationTransformatorDecorator: the interface of a transformator that
// wraps another one (the base transformator) and changes some of its
// conversions. A chain of decorators ends in a plain model.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_DECORATOR_H_
#define KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_DECORATOR_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>

#include "calibration_core/transformation/calibration_transformator.h"

namespace lumo {
namespace calibration {

class ICalibrationTransformatorDecorator;
typedef boost::shared_ptr<ICalibrationTransformatorDecorator> ICalibrationTransformatorDecoratorPtr;

class ICalibrationTransformatorDecorator {
 public:
  // The wrapped transformator itself, not a copy: a change made through it
  // (SetFunctionalConstants, say) changes this decorator's conversions.
  virtual ICalibrationTransformatorPtr GetBaseTransformator() const = 0;
  // Wraps a clone of `base` instead of the current one.
  // REQUIRES: `base` is not empty.
  virtual void SetBaseTransformator(const ICalibrationTransformatorPtr& base) = 0;
  // The calibration mode at the end of the chain: asked of the wrapped
  // decorator when the base is one, else of the base model.
  virtual std::int32_t GetBaseCalibMode() const = 0;
  virtual void SetBaseCalibMode(std::int32_t mode) = 0;
  virtual ~ICalibrationTransformatorDecorator() {}
};

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_CALIBRATION_TRANSFORMATOR_DECORATOR_H_
