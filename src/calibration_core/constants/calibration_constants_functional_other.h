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

#include "calibration_core/constants/constant_accessors.h"
#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/constants/functional_constants_base.h"

namespace lumo {
namespace calibration {
namespace Constants {

namespace detail {

// The linear family as the linear model's policy reads it.
class LinearComputation : public virtual ICalibrationConstantsFunctionalLinear,
                          public virtual ICalibrationConstantsFunctionalComputationLinear {
 public:
  // One c0 for both interfaces.
  double GetC0() const override = 0;
  void SetC0(const double& c0) override = 0;
};

// c0 and c1 of the families whose mass is a polynomial of the raw axis; the
// slope number A of the computation interface is c1 itself. Interface
// includes the linear computation interface.
template <class Derived, class Interface, int kCalibrationType>
class PolynomialConstantsBase : public C0C1ConstantsBase<Derived, Interface, kCalibrationType> {
 public:
  double GetA1() const override { return this->c1_; }
  void SetA1(const double& a1) override { this->c1_ = a1; }

 protected:
  using C0C1ConstantsBase<Derived, Interface, kCalibrationType>::C0C1ConstantsBase;
};

// beta, the upper frequency and the raw mode of the FTMS families; beta is
// the slope number A, and c0 is 0.0.
template <class Derived, class Interface>
class FtmsConstantsBase : public FunctionalConstantsBase<Derived, Interface, kCalibrationTypeFTMS>,
                          public virtual ICalibrationConstantsFunctionalComputationLinear {
 public:
  KORA_CONSTANT(double, Beta, beta_);
  KORA_CONSTANT(double, FreqHigh, freqHigh_);
  KORA_CONSTANT(int, FtmsRawMode, ftmsRawMode_);

  double GetC0() const override { return 0.0; }
  void SetC0(const double& c0) override {}
  KORA_CONSTANT(double, A1, beta_);

 protected:
  FtmsConstantsBase(double beta, double freqHigh, int ftmsRawMode, int calibMode)
      : FunctionalConstantsBase<Derived, Interface, kCalibrationTypeFTMS>(calibMode),
        beta_(beta),
        freqHigh_(freqHigh),
        ftmsRawMode_(ftmsRawMode) {}

  bool FtmsFieldsEqual(const Interface& o) const {
    return o.GetBeta() == beta_ && o.GetFreqHigh() == freqHigh_ &&
           o.GetFtmsRawMode() == ftmsRawMode_;
  }

  double beta_;
  double freqHigh_;
  int ftmsRawMode_;
};

}  // namespace detail

class CalibrationConstantsFunctionalHalyard
    : public detail::PolynomialConstantsBase<CalibrationConstantsFunctionalHalyard,
                                             ICalibrationConstantsFunctionalHalyard,
                                             kCalibrationTypeHalyard> {
 public:
  CalibrationConstantsFunctionalHalyard(double c0, double c1, double c2, int calibMode = -1)
      : PolynomialConstantsBase(c0, c1, calibMode), c2_(c2) {}

  std::string Dump() const override;
  bool FieldsEqual(const ICalibrationConstantsFunctionalHalyard& o) const {
    return C0C1Equal(o) && o.GetC2() == c2_;
  }

  KORA_CONSTANT(double, C2, c2_);
  double GetA1FromStoredC1() const override { return slopeTermFromC1(c1_); }

 private:
  double c2_;
};

class CalibrationConstantsFunctionalLinear
    : public detail::PolynomialConstantsBase<CalibrationConstantsFunctionalLinear,
                                             detail::LinearComputation, kCalibrationTypeLinear> {
 public:
  CalibrationConstantsFunctionalLinear(double c0, double c1, int calibMode = -1)
      : PolynomialConstantsBase(c0, c1, calibMode) {}

  std::string Dump() const override;
  bool FieldsEqual(const detail::LinearComputation& o) const { return C0C1Equal(o); }
};

// Raw modes 0 and 4: f = beta / m.
class CalibrationConstantsFunctionalFTMS04
    : public detail::FtmsConstantsBase<CalibrationConstantsFunctionalFTMS04,
                                       ICalibrationConstantsFunctionalFTMS04> {
 public:
  // Accepts any modes; SetCalibMode checks.
  CalibrationConstantsFunctionalFTMS04(double beta, double freqHigh, int ftmsRawMode = 4,
                                       int calibMode = 4)
      : FtmsConstantsBase(beta, freqHigh, ftmsRawMode, calibMode) {}

  // Throws std::invalid_argument for a mode other than 0 or 4.
  void SetCalibMode(const int& mode) override;
  std::string Dump() const override;
  bool FieldsEqual(const ICalibrationConstantsFunctionalFTMS04& o) const {
    return FtmsFieldsEqual(o);
  }
};

// Raw modes 1, 3, 5 and 6: f = alpha / m^2 + beta / m.
class CalibrationConstantsFunctionalFTMS1356
    : public detail::FtmsConstantsBase<CalibrationConstantsFunctionalFTMS1356,
                                       ICalibrationConstantsFunctionalFTMS1356>,
      public virtual ICalibrationConstantsFunctionalComputationQuadratic {
 public:
  // Throws std::invalid_argument when calibMode is not 1, 3, 5 or 6.
  CalibrationConstantsFunctionalFTMS1356(double alpha, double beta, double freqHigh,
                                         int ftmsRawMode = 1, int calibMode = 1);

  // Throws std::invalid_argument for a mode other than 1, 3, 5 or 6.
  void SetCalibMode(const int& mode) override;
  std::string Dump() const override;
  bool FieldsEqual(const ICalibrationConstantsFunctionalFTMS1356& o) const {
    return FtmsFieldsEqual(o) && o.GetAlpha() == alpha_;
  }

  KORA_CONSTANT(double, Alpha, alpha_);
  KORA_CONSTANT(double, C2, alpha_);
  double GetA1FromStoredC1() const override { return slopeTermFromC1(beta_); }

 private:
  double alpha_;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_OTHER_H_
