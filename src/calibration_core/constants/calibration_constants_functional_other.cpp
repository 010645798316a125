#include "calibration_core/constants/calibration_constants_functional_other.h"

#include <boost/make_shared.hpp>
#include <limits>
#include <sstream>
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

CalibrationConstantsFunctionalHalyard::CalibrationConstantsFunctionalHalyard(double c0, double c1,
                                                                             double c2,
                                                                             int calibMode)
    : c0_(c0), c1_(c1), c2_(c2), calibMode_(calibMode) {}

ICloneablePtr CalibrationConstantsFunctionalHalyard::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalHalyard>(*this);
}

bool CalibrationConstantsFunctionalHalyard::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalHalyard> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalHalyard>(other);
  return o && o->GetC0() == c0_ && o->GetC1() == c1_ && o->GetC2() == c2_ &&
         o->GetCalibMode() == calibMode_;
}

std::string CalibrationConstantsFunctionalHalyard::Dump() const {
  std::ostringstream os;
  os.precision(std::numeric_limits<double>::max_digits10);
  os << "\tCalibrationConstantsFunctionalHalyard[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << ", c2 = " << c2_ << ", calibMode = " << calibMode_
     << " ]";
  return os.str();
}

CalibrationConstantsFunctionalLinear::CalibrationConstantsFunctionalLinear(double c0, double c1,
                                                                           int calibMode)
    : c0_(c0), c1_(c1), calibMode_(calibMode) {}

ICloneablePtr CalibrationConstantsFunctionalLinear::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalLinear>(*this);
}

bool CalibrationConstantsFunctionalLinear::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalLinear> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalLinear>(other);
  return o && o->GetC0() == c0_ && o->GetC1() == c1_ && o->GetCalibMode() == calibMode_;
}

std::string CalibrationConstantsFunctionalLinear::Dump() const {
  std::ostringstream os;
  os.precision(std::numeric_limits<double>::max_digits10);
  os << "\tCalibrationConstantsFunctionalLinear[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

CalibrationConstantsFunctionalFTMS04::CalibrationConstantsFunctionalFTMS04(double beta,
                                                                           double freqHigh,
                                                                           int ftmsRawMode,
                                                                           int calibMode)
    : beta_(beta), freqHigh_(freqHigh), ftmsRawMode_(ftmsRawMode), calibMode_(calibMode) {}

ICloneablePtr CalibrationConstantsFunctionalFTMS04::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalFTMS04>(*this);
}

void CalibrationConstantsFunctionalFTMS04::SetCalibMode(const int& mode) {
  if (mode != 0 && mode != 4) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationConstantsFunctionalFTMS04::SetCalibMode: Invalid FTMS mode: 0 or 4 are "
        "possible"));
  }
  calibMode_ = mode;
}

bool CalibrationConstantsFunctionalFTMS04::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalFTMS04> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalFTMS04>(other);
  return o && o->GetBeta() == beta_ && o->GetFreqHigh() == freqHigh_ &&
         o->GetFtmsRawMode() == ftmsRawMode_ && o->GetCalibMode() == calibMode_;
}

std::string CalibrationConstantsFunctionalFTMS04::Dump() const {
  std::ostringstream os;
  os.precision(std::numeric_limits<double>::max_digits10);
  os << "\tCalibrationConstantsFunctionalFTMS04[ \n"
     << "\t\tbeta = " << beta_ << ", freq high = " << freqHigh_
     << ", ftms raw mode = " << ftmsRawMode_ << ", calib mode = " << calibMode_ << " ]";
  return os.str();
}

CalibrationConstantsFunctionalFTMS1356::CalibrationConstantsFunctionalFTMS1356(
    double alpha, double beta, double freqHigh, int ftmsRawMode, int calibMode)
    : alpha_(alpha),
      beta_(beta),
      freqHigh_(freqHigh),
      ftmsRawMode_(ftmsRawMode),
      calibMode_(calibMode) {
  checkFtms1356Mode(calibMode,
                    "CalibrationConstantsFunctionalFTMS1356 c'tor: Invalid FTMS Mode: 1, "
                    "3, 5 and 6 are valid");
}

ICloneablePtr CalibrationConstantsFunctionalFTMS1356::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalFTMS1356>(*this);
}

void CalibrationConstantsFunctionalFTMS1356::SetCalibMode(const int& mode) {
  checkFtms1356Mode(mode,
                    "CalibrationConstantsFunctionalFTMS1356::SetCalibMode: Invalid FTMS Mode: 1, "
                    "3, 5 and 6 are valid");
  calibMode_ = mode;
}

bool CalibrationConstantsFunctionalFTMS1356::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalFTMS1356> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalFTMS1356>(other);
  return o && o->GetAlpha() == alpha_ && o->GetBeta() == beta_ && o->GetFreqHigh() == freqHigh_ &&
         o->GetFtmsRawMode() == ftmsRawMode_ && o->GetCalibMode() == calibMode_;
}

std::string CalibrationConstantsFunctionalFTMS1356::Dump() const {
  std::ostringstream os;
  os.precision(std::numeric_limits<double>::max_digits10);
  os << "\tCalibrationConstantsFunctionalFTMS1356[ \n"
     << "\t\talpha = " << alpha_ << ", beta = " << beta_ << ", freq high = " << freqHigh_
     << ", ftms raw mode = " << ftmsRawMode_ << ", calib mode = " << calibMode_ << " ]";
  return os.str();
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
