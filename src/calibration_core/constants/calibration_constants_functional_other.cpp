#include "calibration_core/constants/calibration_constants_functional_other.h"

#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Constants {

namespace {

void checkFtms1356Mode(int mode, const char* text) {
  if (mode != 1 && mode != 3 && mode != 5 && mode != 6) LUMO_THROW(std::invalid_argument(text));
}

}  // namespace

std::string CalibrationConstantsFunctionalHalyard::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalHalyard[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << ", c2 = " << c2_ << ", calibMode = " << calibMode_
     << " ]";
  return os.str();
}

std::string CalibrationConstantsFunctionalLinear::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalLinear[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

void CalibrationConstantsFunctionalFTMS04::SetCalibMode(const int& mode) {
  if (mode != 0 && mode != 4) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationConstantsFunctionalFTMS04::SetCalibMode: Invalid FTMS mode: 0 or 4 are "
        "possible"));
  }
  calibMode_ = mode;
}

std::string CalibrationConstantsFunctionalFTMS04::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalFTMS04[ \n"
     << "\t\tbeta = " << beta_ << ", freq high = " << freqHigh_
     << ", ftms raw mode = " << ftmsRawMode_ << ", calib mode = " << calibMode_ << " ]";
  return os.str();
}

CalibrationConstantsFunctionalFTMS1356::CalibrationConstantsFunctionalFTMS1356(
    double alpha, double beta, double freqHigh, int ftmsRawMode, int calibMode)
    : FtmsConstantsBase(beta, freqHigh, ftmsRawMode, calibMode), alpha_(alpha) {
  checkFtms1356Mode(calibMode,
                    "CalibrationConstantsFunctionalFTMS1356 c'tor: Invalid FTMS Mode: 1, "
                    "3, 5 and 6 are valid");
}

void CalibrationConstantsFunctionalFTMS1356::SetCalibMode(const int& mode) {
  checkFtms1356Mode(mode,
                    "CalibrationConstantsFunctionalFTMS1356::SetCalibMode: Invalid FTMS Mode: 1, "
                    "3, 5 and 6 are valid");
  calibMode_ = mode;
}

std::string CalibrationConstantsFunctionalFTMS1356::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalFTMS1356[ \n"
     << "\t\talpha = " << alpha_ << ", beta = " << beta_ << ", freq high = " << freqHigh_
     << ", ftms raw mode = " << ftmsRawMode_ << ", calib mode = " << calibMode_ << " ]";
  return os.str();
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
