#include "calibration_core/constants/measurement_mode_info.h"

#include <boost/make_shared.hpp>
#include <sstream>

namespace lumo {
namespace calibration {
namespace Transformation {

namespace {

const char* const kScanModeNames[] = {"MS", "MS-HiRes", "MSMS", "MSMS-HiRes"};

}  // namespace

MeasurementModeInfo::MeasurementModeInfo(int acquisitionMode, int polarity, int scanMode,
                                         int msmsLevel)
    : polarity_(polarity),
      acquisitionMode_(acquisitionMode),
      scanMode_(scanMode),
      msmsLevel_(msmsLevel) {}

ICloneablePtr MeasurementModeInfo::Clone() const {
  return boost::make_shared<MeasurementModeInfo>(*this);
}

bool MeasurementModeInfo::IsEqual(const IMeasurementModeInfoPtr& other) const {
  return other && other->GetPolarity() == polarity_ &&
         other->GetAcquisitionMode() == acquisitionMode_ && other->GetScanMode() == scanMode_ &&
         other->GetMSMSLevel() == msmsLevel_;
}

std::string MeasurementModeInfo::Dump() const {
  std::ostringstream os;
  os << "\tMeasurementModeInfo[ Polarity = " << polarity_
     << ", AcquisitionMode = " << (acquisitionMode_ == 1 ? "TOF linear" : "TOF reflector")
     << ", ScanMode = ";
  if (scanMode_ >= 0 && scanMode_ <= 3) {
    os << kScanModeNames[scanMode_];
  } else {
    os << "? (" << scanMode_ << ")";
  }
  os << ", MSMSLevel = " << msmsLevel_ << "] ";
  return os.str();
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
