// The FTMS models: the raw axis is the frequency of the transient, and the
// mass is the reciprocal of the variable x of
//   FTMS04:  t = A * x + c0                  (c0, A = beta)
//   FTMS15:  t = a * x^2 + b * x + c         (c, b = beta, a = alpha)
// with x = 1 / m. Every index conversion is clamped to [0, size - 1] of the
// transient (FTMSIndexChecker), and the physical constants follow the
// functional constants' raw and calibration modes
// (ConstantsSettingAdjustForFTMS).
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_FTMS_CALIBRATION_TRANSFORMATOR_FTMS_H_
#define KORA_CALIBRATION_CORE_FTMS_CALIBRATION_TRANSFORMATOR_FTMS_H_

#include "calibration_core/ftms/ftms_index_checker.h"
#include "calibration_core/ftms/rm_quadratic_tilt.h"
#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {

// Answered by the FTMS models; a caller tells the families apart by these.
class ICalibrationTransformatorFTMS {
 public:
  virtual ~ICalibrationTransformatorFTMS() {}
};

// Answered by the second-degree FTMS model.
class ICalibrationTransformatorFTMSQuadratic : public virtual ICalibrationTransformatorFTMS {};

namespace Transformation {

class CalibrationTransformatorFTMS04 final
    : public Transformator<CalibrationTransformatorFTMS04, RMReciprocal<RMLinear<NoSquareRoot>>,
                           IndexCheck<RILinear, FTMSIndexChecker>, ConstantsSettingAdjustForFTMS>,
      public virtual ICalibrationTransformatorFTMS {
 public:
  // Throws std::invalid_argument or std::logic_error for constants of a
  // wrong kind, std::runtime_error for a calibration mode outside 0..6.
  using Transformator::Transformator;

  static const char* ClassName() { return "CalibrationTransformatorFTMS04"; }
};

class CalibrationTransformatorFTMS15 final
    : public Transformator<CalibrationTransformatorFTMS15, RMReciprocal<RMQuadraticTilt>,
                           IndexCheck<RILinear, FTMSIndexChecker>, ConstantsSettingAdjustForFTMS>,
      public virtual ICalibrationTransformatorFTMSQuadratic {
 public:
  using Transformator::Transformator;

  static const char* ClassName() { return "CalibrationTransformatorFTMS15"; }
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_FTMS_CALIBRATION_TRANSFORMATOR_FTMS_H_
