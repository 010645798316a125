// The functional constants of the ion-trap (Halyard), linear and
// Fourier-transform families.
//
// Besides their family interface each class answers the computation
// interfaces that its model's policy reads:
//   Halyard:  c0, A = c1, c2       (quadratic computation interface)
//   Linear:   c0, A = c1           (linear computation interface)
//   FTMS04:   c0 = 0.0, A = beta   (linear computation interface)
//   FTMS1356: c0 = 0.0, A = beta, c2 = alpha (quadratic computation interface)
// The frequency axis has no offset term, so c0 of the FTMS families is 0.0
// and SetC0 is ignored there.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_OTHER_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_OTHER_H_

#include <string>

#include "calibration_core/constants/functional_constants.h"

namespace lumo {
namespace calibration {
namespace Constants {

class CalibrationConstantsFunctionalHalyard
    : public virtual ICalibrationConstantsFunctionalHalyard {
 public:
  CalibrationConstantsFunctionalHalyard(double c0, double c1, double c2, int calibMode = -1);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  void SetCalibMode(const int& mode) override { calibMode_ = mode; }
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeHalyard; }
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetC0() const override { return c0_; }
  void SetC0(const double& c0) override { c0_ = c0; }
  double GetC1() const override { return c1_; }
  void SetC1(const double& c1) override { c1_ = c1; }
  double GetC2() const override { return c2_; }
  void SetC2(const double& c2) override { c2_ = c2; }
  // The slope number of the mass polynomial: c1 itself.
  double GetA1() const override { return c1_; }
  void SetA1(const double& a1) override { c1_ = a1; }
  double GetA1FromStoredC1() const override { return 1e12 / (c1_ * c1_); }

 private:
  double c0_;
  double c1_;
  double c2_;
  int calibMode_;
};

class CalibrationConstantsFunctionalLinear
    : public virtual ICalibrationConstantsFunctionalLinear,
      public virtual ICalibrationConstantsFunctionalComputationLinear {
 public:
  CalibrationConstantsFunctionalLinear(double c0, double c1, int calibMode = -1);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  void SetCalibMode(const int& mode) override { calibMode_ = mode; }
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeLinear; }
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetC0() const override { return c0_; }
  void SetC0(const double& c0) override { c0_ = c0; }
  double GetC1() const override { return c1_; }
  void SetC1(const double& c1) override { c1_ = c1; }
  double GetA1() const override { return c1_; }
  void SetA1(const double& a1) override { c1_ = a1; }

 private:
  double c0_;
  double c1_;
  int calibMode_;
};

// Raw modes 0 and 4: f = beta / m.
class CalibrationConstantsFunctionalFTMS04
    : public virtual ICalibrationConstantsFunctionalFTMS04,
      public virtual ICalibrationConstantsFunctionalComputationLinear {
 public:
  // Accepts any modes; SetCalibMode checks.
  CalibrationConstantsFunctionalFTMS04(double beta, double freqHigh, int ftmsRawMode = 4,
                                       int calibMode = 4);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  // Throws std::invalid_argument for a mode other than 0 or 4.
  void SetCalibMode(const int& mode) override;
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeFTMS; }
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetBeta() const override { return beta_; }
  void SetBeta(const double& beta) override { beta_ = beta; }
  double GetFreqHigh() const override { return freqHigh_; }
  void SetFreqHigh(const double& freqHigh) override { freqHigh_ = freqHigh; }
  int GetFtmsRawMode() const override { return ftmsRawMode_; }
  void SetFtmsRawMode(const int& mode) override { ftmsRawMode_ = mode; }

  double GetC0() const override { return 0.0; }
  void SetC0(const double& c0) override {}
  double GetA1() const override { return beta_; }
  void SetA1(const double& a1) override { beta_ = a1; }

 private:
  double beta_;
  double freqHigh_;
  int ftmsRawMode_;
  int calibMode_;
};

// Raw modes 1, 3, 5 and 6: f = alpha / m^2 + beta / m.
class CalibrationConstantsFunctionalFTMS1356
    : public virtual ICalibrationConstantsFunctionalFTMS1356,
      public virtual ICalibrationConstantsFunctionalComputationQuadratic {
 public:
  // Throws std::invalid_argument when calibMode is not 1, 3, 5 or 6.
  CalibrationConstantsFunctionalFTMS1356(double alpha, double beta, double freqHigh,
                                         int ftmsRawMode = 1, int calibMode = 1);

  ICloneablePtr Clone() const override;

  int GetCalibMode() const override { return calibMode_; }
  // Throws std::invalid_argument for a mode other than 1, 3, 5 or 6.
  void SetCalibMode(const int& mode) override;
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override;
  int GetCalibrationType() const override { return kCalibrationTypeFTMS; }
  void AssimilateIndexOffset(double indexOffset) override {}
  std::string Dump() const override;

  double GetAlpha() const override { return alpha_; }
  void SetAlpha(const double& alpha) override { alpha_ = alpha; }
  double GetBeta() const override { return beta_; }
  void SetBeta(const double& beta) override { beta_ = beta; }
  double GetFreqHigh() const override { return freqHigh_; }
  void SetFreqHigh(const double& freqHigh) override { freqHigh_ = freqHigh; }
  int GetFtmsRawMode() const override { return ftmsRawMode_; }
  void SetFtmsRawMode(const int& mode) override { ftmsRawMode_ = mode; }

  double GetC0() const override { return 0.0; }
  void SetC0(const double& c0) override {}
  double GetA1() const override { return beta_; }
  void SetA1(const double& a1) override { beta_ = a1; }
  double GetC2() const override { return alpha_; }
  void SetC2(const double& c2) override { alpha_ = c2; }
  double GetA1FromStoredC1() const override { return 1e12 / (beta_ * beta_); }

 private:
  double alpha_;
  double beta_;
  double freqHigh_;
  int ftmsRawMode_;
  int calibMode_;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_OTHER_H_
