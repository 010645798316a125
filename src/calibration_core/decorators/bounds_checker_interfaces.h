// The interfaces of the two bounds-check decorators: a fixed interval
// [lower, upper] on the raw axis or on the index axis, into which the
// decorator clamps what it hands out.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_INTERFACES_H_
#define KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_INTERFACES_H_

#include <boost/shared_ptr.hpp>

#include "calibration_core/decorators/calibration_transformator_decorator.h"

namespace lumo {
namespace calibration {

// What both checkers have: the interval [lower, upper] they clamp into.
class ICalibrationTransformatorBoundsChecker : public ICalibrationTransformatorDecorator {
 public:
  virtual double GetLower() const = 0;
  virtual void SetLower(double lower) = 0;
  virtual double GetUpper() const = 0;
  virtual void SetUpper(double upper) = 0;
};

// Bounds on the raw axis, in the raw unit of the wrapped model.
class ICalibrationTransformatorRawBoundsChecker : public ICalibrationTransformatorBoundsChecker {};
typedef boost::shared_ptr<ICalibrationTransformatorRawBoundsChecker>
    ICalibrationTransformatorRawBoundsCheckerPtr;

// Bounds on the index axis, in samples.
class ICalibrationTransformatorIndexBoundsChecker : public ICalibrationTransformatorBoundsChecker {
};
typedef boost::shared_ptr<ICalibrationTransformatorIndexBoundsChecker>
    ICalibrationTransformatorIndexBoundsCheckerPtr;

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_BOUNDS_CHECKER_INTERFACES_H_
