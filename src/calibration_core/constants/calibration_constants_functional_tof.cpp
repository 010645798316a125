#include "calibration_core/constants/calibration_constants_functional_tof.h"

#include <cmath>
#include <limits>

namespace lumo {
namespace calibration {

double slopeTermFromC1(double c1) { return 1e12 / (c1 * c1); }

namespace Constants {
namespace detail {

double c1FromSlopeTerm(double a1, double signOf) {
  const double magnitude = 1e6 / std::sqrt(a1);
  return signOf < 0 ? -magnitude : magnitude;
}

DumpStream::DumpStream() { precision(std::numeric_limits<double>::max_digits10); }

}  // namespace detail

std::string CalibrationConstantsFunctionalTOF1::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalTOF1[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << " (corresponding to a1 = " << GetA1()
     << ", c2 = " << c2_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

std::string CalibrationConstantsFunctionalTOF2::Dump() const {
  detail::DumpStream os;
  os << "\tCalibrationConstantsFunctionalTOF2[ "
     << "c0 = " << c0_ << ", c1 = " << c1_ << ", c2 = " << c2_ << ", c3 = " << c3_
     << ", c4 = " << c4_ << ", calibMode = " << calibMode_ << " ]";
  return os.str();
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
