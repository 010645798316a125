// Functional constants that carry temperatures: the TOF families with the
// measured temperatures of a frame, the correction factors of the sensors
// and a compensation mode, and the adaptation of a reference calibration to
// those temperatures.
//
// The flight length grows with the temperature; a calibration made at
// reference temperatures is adapted to measured ones by the factor
//   s = 1 + sum_i (reference_i - measured_i) * factor_i / 1e6
// (factors in parts per million per unit of temperature), by which the
// slope term a1 = 1e12 / (c1 * c1) and the higher coefficients are divided.
//
// Compensation modes:
//   1  adapted with one temperature
//   2  temperatures set, not adapted
//   3  adapted with two or more temperatures, or marked as needing none
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_CONSTANTS_H_
#define KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_CONSTANTS_H_

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/functional_constants.h"

namespace lumo {
namespace calibration {

// What addTemperatureCompensationInfo puts into the constants.
struct TemperatureCompensationInfo {
  std::vector<double> temperatures;  // one per sensor
  std::vector<double> factors;       // ppm per unit of temperature, per sensor; may be empty
  int strategy;                      // initial compensation mode; 3 from the readers
};

class ICalibrationConstantsFunctionalTemperatureCompensation;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalTemperatureCompensation>
    ICalibrationConstantsFunctionalTemperatureCompensationPtr;

class ICalibrationConstantsFunctionalTemperatureCompensation
    : public virtual ICalibrationConstantsFunctional {
 public:
  // The measured temperatures.
  virtual std::vector<double> GetTemperatures() const = 0;
  // Replaces them and sets the compensation mode to 2.
  virtual void SetTemperatures(const std::vector<double>& temperatures) = 0;
  virtual std::vector<double> GetCorrectionFactors() const = 0;
  // Replaces them; the mode stays.
  virtual void SetCorrectionFactors(const std::vector<double>& factors) = 0;
  // Mode 1 or 3.
  virtual bool IsCompensated() const = 0;
  virtual int GetCompensationMode() const = 0;
  // Stored unchecked.
  virtual void SetCompensationMode(int mode) = 0;
  // Sets this object's coefficients to those of `referenceConstants`
  // adapted from `referenceTemperatures` to this object's temperatures with
  // `temperatureFactors`, and the mode to 1 (one temperature) or 3.
  virtual void AdaptToReference(
      boost::shared_ptr<ICalibrationConstantsFunctionalTemperatureCompensation> referenceConstants,
      std::vector<double> referenceTemperatures, std::vector<double> temperatureFactors) = 0;
};

namespace Constants {
namespace detail {

// The temperature fields over a TOF family class, and what is common to both
// compensated families. Derived names the final class (for Clone).
template <class Derived, class Family, int kCalibrationType>
class TemperatureCompensated
    : public Family,
      public virtual ICalibrationConstantsFunctionalTemperatureCompensation {
 public:
  ICloneablePtr Clone() const override {
    return boost::make_shared<Derived>(static_cast<const Derived&>(*this));
  }
  int GetCalibrationType() const override { return kCalibrationType; }
  // Derived::kDumpHead, the mode, Derived::kDumpAfterMode, the temperatures
  // and the factors, then the family's own dump.
  std::string Dump() const override;
  // The family's fields and the temperatures, factors and mode.
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override {
    const ICalibrationConstantsFunctionalTemperatureCompensationPtr o =
        boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(other);
    return Family::IsEqual(other) && o && o->GetTemperatures() == measTemp_ &&
           o->GetCorrectionFactors() == factors_ && o->GetCompensationMode() == mode_;
  }

  std::vector<double> GetTemperatures() const override { return measTemp_; }
  void SetTemperatures(const std::vector<double>& temperatures) override {
    measTemp_ = temperatures;
    mode_ = 2;
  }
  std::vector<double> GetCorrectionFactors() const override { return factors_; }
  void SetCorrectionFactors(const std::vector<double>& factors) override { factors_ = factors; }
  bool IsCompensated() const override { return mode_ == 1 || mode_ == 3; }
  int GetCompensationMode() const override { return mode_; }
  void SetCompensationMode(int mode) override { mode_ = mode; }

 protected:
  template <class... FamilyArgs>
  TemperatureCompensated(const std::vector<double>& temperatures,
                         const std::vector<double>& factors, int strategy, FamilyArgs... args)
      : Family(args...), measTemp_(temperatures), factors_(factors), mode_(strategy) {}

  // Sets the mode for the measured temperatures (1 for one, 3 for more) and
  // tells whether both vectors have as many entries. Throws
  // std::runtime_error with `emptyText` without measured temperatures.
  bool StartAdaptation(const char* emptyText, const std::vector<double>& referenceTemperatures,
                       const std::vector<double>& temperatureFactors);
  // Takes c0, a1 / s and c2 / s of `reference` and returns s.
  // REQUIRES: StartAdaptation returned true.
  double AdaptQuadratic(const ICalibrationConstantsFunctionalComputationQuadratic& reference,
                        const std::vector<double>& referenceTemperatures,
                        const std::vector<double>& temperatureFactors);
  // The factor s of the adaptation from `referenceTemperatures`; the three
  // vectors have equal sizes.
  double ScaleFrom(const std::vector<double>& referenceTemperatures,
                   const std::vector<double>& temperatureFactors) const;

  std::vector<double> measTemp_;  // m_measTemp
  std::vector<double> factors_;
  int mode_;
};

}  // namespace detail

// TOF1 constants with temperatures; GetCalibrationType 9.
class CalibrationConstantsFunctionalTOF1TemperatureCompensation final
    : public detail::TemperatureCompensated<
          CalibrationConstantsFunctionalTOF1TemperatureCompensation,
          CalibrationConstantsFunctionalTOF1, kCalibrationTypeTOFTemperatureCompensation> {
 public:
  CalibrationConstantsFunctionalTOF1TemperatureCompensation(double c0, double c1, double c2,
                                                            const std::vector<double>& temperatures,
                                                            const std::vector<double>& factors,
                                                            int strategy, int calibMode = -1)
      : TemperatureCompensated(temperatures, factors, strategy, c0, c1, c2, calibMode) {}

  static constexpr const char* kDumpHead =
      "\tCalibrationConstantsFunctionalTOF1TemperatureCompensation[ compensation mode = ";
  static constexpr const char* kDumpAfterMode = ", temperatures: (";

  // Throws std::invalid_argument when `referenceConstants` is not TOF1, and
  // std::runtime_error without measured temperatures. When either vector's
  // size differs from the number of measured temperatures the coefficients
  // stay as they are (the mode is set all the same).
  void AdaptToReference(
      ICalibrationConstantsFunctionalTemperatureCompensationPtr referenceConstants,
      std::vector<double> referenceTemperatures, std::vector<double> temperatureFactors) override;
};

// TOF2 constants with temperatures; GetCalibrationType 13.
class CalibrationConstantsFunctionalTOF2TemperatureCompensation final
    : public detail::TemperatureCompensated<
          CalibrationConstantsFunctionalTOF2TemperatureCompensation,
          CalibrationConstantsFunctionalTOF2, kCalibrationTypeTOF2TemperatureCompensation> {
 public:
  CalibrationConstantsFunctionalTOF2TemperatureCompensation(double c0, double c1, double c2,
                                                            double c3, double c4,
                                                            const std::vector<double>& temperatures,
                                                            const std::vector<double>& factors,
                                                            int strategy, int calibMode = -1)
      : TemperatureCompensated(temperatures, factors, strategy, c0, c1, c2, c3, c4, calibMode) {}

  static constexpr const char* kDumpHead =
      "\tCalibrationConstantsFunctionalTOF2TemperatureCompensation[ compensation mode = ";
  static constexpr const char* kDumpAfterMode = " temperatures: (";

  // The reference may be TOF2 or TOF1 (c3 and dm 0.0 then). Throws
  // std::invalid_argument for a reference of neither family and for vector
  // sizes that differ from the number of measured temperatures, and
  // std::runtime_error without measured temperatures.
  void AdaptToReference(
      ICalibrationConstantsFunctionalTemperatureCompensationPtr referenceConstants,
      std::vector<double> referenceTemperatures, std::vector<double> temperatureFactors) override;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TEMPERATURE_TEMPERATURE_COMPENSATION_CONSTANTS_H_
