// FTMSIndexChecker: the index limit of the FTMS models. Every index that
// goes into or comes out of an FTMS model lies in [0, size - 1], size being
// the number of points of the transient.
#ifndef KORA_CALIBRATION_CORE_FTMS_FTMS_INDEX_CHECKER_H_
#define KORA_CALIBRATION_CORE_FTMS_FTMS_INDEX_CHECKER_H_

#include <limits>

#include "calibration_core/constants/physical_constants.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class FTMSIndexChecker {
 public:
  // No limit above until physical constants are set.
  FTMSIndexChecker() : size(std::numeric_limits<double>::infinity()) {}

  // x at or above size becomes size - 1.0, below zero 0.0; NaN stays NaN.
  double limit(double x) const {
    if (x >= size) x = size - 1.0;
    if (x <= 0.0) x = 0.0;
    return x;
  }

  // Reads the size. Throws std::logic_error with location and stack trace
  // when `constants` is not ICalibrationConstantsPhysicalFTMS; the checker
  // is then unchanged.
  void UpdatePhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants);

  double size;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_FTMS_FTMS_INDEX_CHECKER_H_
