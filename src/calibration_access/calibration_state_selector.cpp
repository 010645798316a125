#include "calibration_access/calibration_state_selector.h"

namespace lumo {
namespace io {
namespace calibration {

void CalibrationStateSelector::setAnalysisInfo(int64_t frameCount, bool hasPositive,
                                               bool hasNegative, bool hasMobility) {
  frameCount_ = frameCount;
  hasPositiveFrames_ = hasPositive;
  hasNegativeFrames_ = hasNegative;
  hasMobility_ = hasMobility;
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
