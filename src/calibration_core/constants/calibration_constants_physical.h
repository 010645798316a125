// The physical constants of every family. Each class also answers
// ICalibrationConstantsPhysicalLinear, raw = index * a1 + a0:
//   TOF:     a0 = time delay, a1 = time base
//   Linear:  a0, a1 as stored
//   Halyard: a0 = begin raw mass, a1 = 1.0 / measurements per raw mass
//   FTMS:    a0 = freq low, a1 = freq width / size, for calib modes 0..6
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_PHYSICAL_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_PHYSICAL_H_

#include <string>

#include "calibration_core/constants/constant_accessors.h"
#include "calibration_core/constants/physical_constants.h"

namespace lumo {
namespace calibration {
namespace Constants {
namespace detail {

// Clone and the two moves of the raw range start of the families whose raw
// is index * a1 + a0: Derived::RawSpan(n) is the raw width of n measurements,
// n * a1 computed as the family stores its slope.
template <class Derived>
class RawIsLinearInIndex
    : public calibration::detail::ClonedAs<Derived, ICalibrationConstantsPhysicalLinear> {
 public:
  // a0 += a1 * indexOffset.
  void AssimilateIndexOffset(double indexOffset) override {
    this->SetA0(derived().RawSpan(indexOffset) + this->GetA0());
  }
  // a0 such that `index` lies at `raw`.
  void SetRawRangeStart(double raw, double index) override {
    this->SetA0(raw - derived().RawSpan(index));
  }

 private:
  const Derived& derived() const { return static_cast<const Derived&>(*this); }
};

}  // namespace detail

class CalibrationConstantsPhysicalTOF
    : public virtual ICalibrationConstantsPhysicalTOF,
      public detail::RawIsLinearInIndex<CalibrationConstantsPhysicalTOF> {
 public:
  // The order of the digitizer columns: time base first, delay second.
  CalibrationConstantsPhysicalTOF(double timeBase, double timeDelay);

  bool IsEqual(const ICalibrationConstantsPhysicalPtr& other) const override;
  std::string Dump() const override;
  double RawSpan(double measurements) const { return measurements * timeBase_; }

  KORA_CONSTANT(double, TimeDelay, timeDelay_);
  KORA_CONSTANT(double, TimeBase, timeBase_);

  KORA_CONSTANT(double, A0, timeDelay_);
  KORA_CONSTANT(double, A1, timeBase_);

 private:
  double timeDelay_;
  double timeBase_;
};

class CalibrationConstantsPhysicalLinear
    : public detail::RawIsLinearInIndex<CalibrationConstantsPhysicalLinear> {
 public:
  CalibrationConstantsPhysicalLinear(double a0, double a1);

  bool IsEqual(const ICalibrationConstantsPhysicalPtr& other) const override;
  std::string Dump() const override;
  double RawSpan(double measurements) const { return measurements * a1_; }

  KORA_CONSTANT(double, A0, a0_);
  KORA_CONSTANT(double, A1, a1_);

 private:
  double a0_;
  double a1_;
};

class CalibrationConstantsPhysicalHalyard
    : public virtual ICalibrationConstantsPhysicalHalyard,
      public detail::RawIsLinearInIndex<CalibrationConstantsPhysicalHalyard> {
 public:
  CalibrationConstantsPhysicalHalyard(double beginRawMass, double measurementsPerRawMass);

  bool IsEqual(const ICalibrationConstantsPhysicalPtr& other) const override;
  std::string Dump() const override;
  // Divides by the stored count rather than multiplying by its inverse.
  double RawSpan(double measurements) const { return measurements / measurementsPerRawMass_; }

  KORA_CONSTANT(double, BeginRawMass, beginRawMass_);
  KORA_CONSTANT(double, MeasurementsPerRawMass, measurementsPerRawMass_);

  KORA_CONSTANT(double, A0, beginRawMass_);
  double GetA1() const override { return 1.0 / measurementsPerRawMass_; }
  void SetA1(const double& a1) override { measurementsPerRawMass_ = 1.0 / a1; }

 private:
  double beginRawMass_;
  double measurementsPerRawMass_;
};

class CalibrationConstantsPhysicalFTMS
    : public virtual ICalibrationConstantsPhysicalFTMS,
      public calibration::detail::ClonedAs<CalibrationConstantsPhysicalFTMS,
                                           ICalibrationConstantsPhysicalLinear> {
 public:
  CalibrationConstantsPhysicalFTMS(double freqLow, double freqWidth, int size, int calibMode = 0,
                                   int ftmsRawMode = 0);

  bool IsEqual(const ICalibrationConstantsPhysicalPtr& other) const override;
  // Throws std::runtime_error for a calib mode outside 0..6.
  void AssimilateIndexOffset(double indexOffset) override;
  void SetRawRangeStart(double raw, double index) override;
  std::string Dump() const override;

  KORA_CONSTANT(int, CalibMode, calibMode_);
  KORA_CONSTANT(int, FtmsRawMode, ftmsRawMode_);
  double GetFreqLow() const override { return freqLow_; }
  double GetFreqWidth() const override { return freqWidth_; }
  int GetSize() const override { return size_; }

  // Both throw std::runtime_error for a calib mode outside 0..6.
  double GetA0() const override;
  void SetA0(const double& a0) override { freqLow_ = a0; }
  double GetA1() const override;
  void SetA1(const double& a1) override { freqWidth_ = a1 * size_; }

 private:
  double freqLow_;
  double freqWidth_;
  int size_;
  int calibMode_;
  int ftmsRawMode_;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_PHYSICAL_H_
