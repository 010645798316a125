// The functional constants of the two time-of-flight families.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_

#include <string>

#include "calibration_core/constants/functional_constants.h"

namespace lumo {
namespace calibration {

// The slope term of the stored flight constant: 1e12 / (c1 * c1). The sign of
// c1 is lost.
double slopeTermFromC1(double c1);

namespace Constants {

// TOF1: c0 is the raw value at mass zero, c1 the stored flight constant
// (a1 = 1e12 / (c1 * c1)), c2 the quadratic term (0.0: linear model).
class CalibrationConstantsFunctionalTOF1 : public virtual ICalibrationConstantsFunctionalTOF1 {
 public:
  CalibrationConstantsFunctionalTOF1(double c0, double c1, double c2, int calibMode = -1);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  void SetCalibMode(const int& mode) override { calibMode_ = mode; }
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeTOF; }
  // Does nothing: the index offset lives in the physical constants.
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetC0() const override { return c0_; }
  void SetC0(const double& c0) override { c0_ = c0; }
  double GetC1() const override { return c1_; }
  void SetC1(const double& c1) override { c1_ = c1; }
  double GetC2() const override { return c2_; }
  void SetC2(const double& c2) override { c2_ = c2; }
  // 1e12 / (c1 * c1).
  double GetA1() const override { return slopeTermFromC1(c1_); }
  // Stores the c1 with 1e12 / (c1 * c1) == a1; c1 keeps its sign (positive
  // if it was 0.0). A negative a1 has no such c1 and gives NaN.
  void SetA1(const double& a1) override;
  double GetA1FromStoredC1() const override { return slopeTermFromC1(c1_); }

 private:
  double c0_;
  double c1_;
  double c2_;
  int calibMode_;
};

// TOF2: the TOF1 law in w = sqrt(m + c4) with a cubic term c3; c4 is the
// mass shift dm.
class CalibrationConstantsFunctionalTOF2 : public virtual ICalibrationConstantsFunctionalTOF2 {
 public:
  CalibrationConstantsFunctionalTOF2(double c0, double c1, double c2, double c3, double c4,
                                     int calibMode = -1);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  void SetCalibMode(const int& mode) override { calibMode_ = mode; }
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeTOF2; }
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetC0() const override { return c0_; }
  void SetC0(const double& c0) override { c0_ = c0; }
  double GetC1() const override { return c1_; }
  void SetC1(const double& c1) override { c1_ = c1; }
  double GetC2() const override { return c2_; }
  void SetC2(const double& c2) override { c2_ = c2; }
  double GetC3() const override { return c3_; }
  void SetC3(const double& c3) override { c3_ = c3; }
  double GetC4() const override { return c4_; }
  void SetC4(const double& c4) override { c4_ = c4; }
  double GetDm() const override { return c4_; }
  void SetDm(const double& dm) override { c4_ = dm; }
  double GetA1() const override { return slopeTermFromC1(c1_); }
  void SetA1(const double& a1) override;
  double GetA1FromStoredC1() const override { return slopeTermFromC1(c1_); }

 private:
  double c0_;
  double c1_;
  double c2_;
  double c3_;
  double c4_;
  int calibMode_;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_
