// CalibrationTemperatureCompensator: adapts a reference transformator,
// calibrated at reference temperatures, to the temperatures that a measured
// transformator's constants carry. Every result is a fresh clone; nothing is
// cached.
//
// Thread-compatible: one thread at a time (the setters change the object;
// GetCompensatedTransformator only reads it).
#ifndef KORA_CALIBRATION_CORE_TEMPERATURE_CALIBRATION_TEMPERATURE_COMPENSATOR_H_
#define KORA_CALIBRATION_CORE_TEMPERATURE_CALIBRATION_TEMPERATURE_COMPENSATOR_H_

#include <vector>

#include "calibration_core/cloneable.h"
#include "calibration_core/constants/constant_accessors.h"
#include "calibration_core/transformation/calibration_transformator.h"

namespace lumo {
namespace calibration {
namespace TemperatureCompensation {

class ICalibrationTemperatureCompensator {
 public:
  virtual ~ICalibrationTemperatureCompensator() {}

  KORA_ABSTRACT_CONSTANT(ICalibrationTransformatorPtr, ReferenceTransformator);
  virtual std::vector<double> GetReferenceTemperatures() const = 0;
  virtual void SetReferenceTemperatures(const std::vector<double>& temperatures) = 0;
  // Parts per million per unit of temperature, one per sensor.
  virtual std::vector<double> GetTemperatureFactors() const = 0;
  virtual void SetTemperatureFactors(const std::vector<double>& factors) = 0;
  // The transformator that the argument-free GetCompensatedTransformator
  // adapts to.
  KORA_ABSTRACT_CONSTANT(ICalibrationTransformatorPtr, CurrentTransformator);
  // A clone of the reference transformator with the physical constants of
  // `measured` and its functional constants adapted to the temperatures of
  // `measured`'s. Empty when `measured` or the reference is empty; the plain
  // clone when `measured`'s constants carry no temperatures. The reference's
  // functional constants must carry temperatures as well. Throws what
  // AdaptToReference throws.
  virtual ICalibrationTransformatorPtr GetCompensatedTransformator(
      const ICalibrationTransformatorPtr& measured) const = 0;
  // The same with the current transformator as `measured`.
  virtual ICalibrationTransformatorPtr GetCompensatedTransformator() const = 0;
};

// Clone shares the transformators with this object.
class CalibrationTemperatureCompensator
    : public ICalibrationTemperatureCompensator,
      public calibration::detail::ClonedAs<CalibrationTemperatureCompensator, ICloneable> {
 public:
  CalibrationTemperatureCompensator() {}
  CalibrationTemperatureCompensator(const ICalibrationTransformatorPtr& reference,
                                    const std::vector<double>& referenceTemperatures,
                                    const std::vector<double>& temperatureFactors);

  ICalibrationTransformatorPtr GetReferenceTransformator() const override { return reference_; }
  void SetReferenceTransformator(const ICalibrationTransformatorPtr& reference) override {
    reference_ = reference;
  }
  std::vector<double> GetReferenceTemperatures() const override { return referenceTemperatures_; }
  void SetReferenceTemperatures(const std::vector<double>& temperatures) override {
    referenceTemperatures_ = temperatures;
  }
  std::vector<double> GetTemperatureFactors() const override { return temperatureFactors_; }
  void SetTemperatureFactors(const std::vector<double>& factors) override {
    temperatureFactors_ = factors;
  }
  ICalibrationTransformatorPtr GetCurrentTransformator() const override { return current_; }
  void SetCurrentTransformator(const ICalibrationTransformatorPtr& current) override {
    current_ = current;
  }

  ICalibrationTransformatorPtr GetCompensatedTransformator(
      const ICalibrationTransformatorPtr& measured) const override;
  ICalibrationTransformatorPtr GetCompensatedTransformator() const override {
    return GetCompensatedTransformator(current_);
  }

 private:
  ICalibrationTransformatorPtr reference_;
  std::vector<double> referenceTemperatures_;
  std::vector<double> temperatureFactors_;
  ICalibrationTransformatorPtr current_;
};

}  // namespace TemperatureCompensation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TEMPERATURE_CALIBRATION_TEMPERATURE_COMPENSATOR_H_
