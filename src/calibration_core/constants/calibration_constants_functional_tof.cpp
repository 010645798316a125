#include "calibration_core/constants/calibration_constants_functional_tof.h"

#include <boost/make_shared.hpp>
#include <cmath>
#include <limits>
#include <sstream>

namespace lumo {
namespace calibration {

double slopeTermFromC1(double c1) { return 1e12 / (c1 * c1); }

namespace {

// The c1 of sign `signOf` whose slope term is `a1`.
double c1FromSlopeTerm(double a1, double signOf) {
  const double magnitude = 1e6 / std::sqrt(a1);
  return signOf < 0 ? -magnitude : magnitude;
}

std::ostringstream& dumpStream(std::ostringstream& os) {
  os.precision(std::numeric_limits<double>::max_digits10);
  return os;
}

}  // namespace

namespace Constants {

CalibrationConstantsFunctionalTOF1::CalibrationConstantsFunctionalTOF1(double c0, double c1,
                                                                       double c2, int calibMode)
    : c0_(c0), c1_(c1), c2_(c2), calibMode_(calibMode) {}

ICloneablePtr CalibrationConstantsFunctionalTOF1::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalTOF1>(*this);
}

bool CalibrationConstantsFunctionalTOF1::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalTOF1> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(other);
  return o && o->GetCalibrationType() == GetCalibrationType() && o->GetC0() == c0_ &&
         o->GetC1() == c1_ && o->GetC2() == c2_ && o->GetCalibMode() == calibMode_;
}

void CalibrationConstantsFunctionalTOF1::SetA1(const double& a1) { c1_ = c1FromSlopeTerm(a1, c1_); }

std::string CalibrationConstantsFunctionalTOF1::Dump() const {
  std::ostringstream os;
  dumpStream(os) << "\tCalibrationConstantsFunctionalTOF1[ "
                 << "c0 = " << c0_ << ", c1 = " << c1_ << " (corresponding to a1 = " << GetA1()
                 << ", c2 = " << c2_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

CalibrationConstantsFunctionalTOF2::CalibrationConstantsFunctionalTOF2(double c0, double c1,
                                                                       double c2, double c3,
                                                                       double c4, int calibMode)
    : c0_(c0), c1_(c1), c2_(c2), c3_(c3), c4_(c4), calibMode_(calibMode) {}

ICloneablePtr CalibrationConstantsFunctionalTOF2::Clone() const {
  return boost::make_shared<CalibrationConstantsFunctionalTOF2>(*this);
}

bool CalibrationConstantsFunctionalTOF2::IsEqual(
    const ICalibrationConstantsFunctionalPtr& other) const {
  boost::shared_ptr<ICalibrationConstantsFunctionalTOF2> o =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(other);
  return o && o->GetCalibrationType() == GetCalibrationType() && o->GetC0() == c0_ &&
         o->GetC1() == c1_ && o->GetC2() == c2_ && o->GetC3() == c3_ && o->GetC4() == c4_ &&
         o->GetCalibMode() == calibMode_;
}

void CalibrationConstantsFunctionalTOF2::SetA1(const double& a1) { c1_ = c1FromSlopeTerm(a1, c1_); }

std::string CalibrationConstantsFunctionalTOF2::Dump() const {
  std::ostringstream os;
  dumpStream(os) << "\tCalibrationConstantsFunctionalTOF2[ "
                 << "c0 = " << c0_ << ", c1 = " << c1_ << ", c2 = " << c2_ << ", c3 = " << c3_
                 << ", c4 = " << c4_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
