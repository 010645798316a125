// The functional constants of the two time-of-flight families.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_

#include <string>

#include "calibration_core/constants/constant_accessors.h"
#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/constants/functional_constants_base.h"

namespace lumo {
namespace calibration {
namespace Constants {

// TOF1: c0 is the raw value at mass zero, c1 the stored flight constant
// (a1 = 1e12 / (c1 * c1)), c2 the quadratic term (0.0: linear model).
class CalibrationConstantsFunctionalTOF1
    : public detail::TofConstantsBase<CalibrationConstantsFunctionalTOF1,
                                      ICalibrationConstantsFunctionalTOF1, kCalibrationTypeTOF> {
 public:
  CalibrationConstantsFunctionalTOF1(double c0, double c1, double c2, int calibMode = -1)
      : TofConstantsBase(c0, c1, c2, calibMode) {}

  std::string Dump() const override;
  bool FieldsEqual(const ICalibrationConstantsFunctionalTOF1& o) const { return TofFieldsEqual(o); }
};

// TOF2: the TOF1 law in w = sqrt(m + c4) with a cubic term c3; c4 is the
// mass shift dm.
class CalibrationConstantsFunctionalTOF2
    : public detail::TofConstantsBase<CalibrationConstantsFunctionalTOF2,
                                      ICalibrationConstantsFunctionalTOF2, kCalibrationTypeTOF2> {
 public:
  CalibrationConstantsFunctionalTOF2(double c0, double c1, double c2, double c3, double c4,
                                     int calibMode = -1)
      : TofConstantsBase(c0, c1, c2, calibMode), c3_(c3), c4_(c4) {}

  std::string Dump() const override;
  bool FieldsEqual(const ICalibrationConstantsFunctionalTOF2& o) const {
    return TofFieldsEqual(o) && o.GetC3() == c3_ && o.GetC4() == c4_;
  }

  KORA_CONSTANT(double, C3, c3_);
  KORA_CONSTANT(double, C4, c4_);
  KORA_CONSTANT(double, Dm, c4_);

 private:
  double c3_;
  double c4_;
};

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CALIBRATION_CONSTANTS_FUNCTIONAL_TOF_H_
