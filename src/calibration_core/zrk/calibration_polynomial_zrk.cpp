#include "calibration_core/zrk/calibration_polynomial_zrk.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

namespace lumo {
namespace calibration {
namespace Transformation {

namespace detail {

// Three machine epsilons, relative to the larger magnitude.
const double kRelativeTolerance = 6.661338147750939e-16;

// False whenever either is NaN.
bool nearlyEqual(double a, double b) {
  return std::fabs(a - b) <= kRelativeTolerance * std::max(std::fabs(a), std::fabs(b));
}

}  // namespace detail

CalibrationPolynomialZRK::CalibrationPolynomialZRK(const std::vector<double>& coefficients,
                                                   double c2, double c0, double minMass,
                                                   double maxMass)
    : Order(static_cast<std::int32_t>(coefficients.size()) - 1),
      vCoeff(coefficients),
      c2(c2),
      c0(c0),
      minMass(minMass),
      maxMass(maxMass),
      bUse(true) {}

bool CalibrationPolynomialZRK::operator==(const CalibrationPolynomialZRK& other) const {
  if (Order != other.Order || bUse != other.bUse || vCoeff.size() != other.vCoeff.size()) {
    return false;
  }
  for (std::size_t i = 0; i < vCoeff.size(); ++i) {
    if (!detail::nearlyEqual(vCoeff[i], other.vCoeff[i])) return false;
  }
  return detail::nearlyEqual(c2, other.c2) && detail::nearlyEqual(c0, other.c0) &&
         detail::nearlyEqual(minMass, other.minMass) && detail::nearlyEqual(maxMass, other.maxMass);
}

bool CalibrationPolynomialZRK::IsEqual(const ICalibrationPolynomial& other) const {
  const auto* zrk = dynamic_cast<const CalibrationPolynomialZRK*>(&other);
  return zrk && *this == *zrk;
}

std::string CalibrationPolynomialZRK::Dump() const {
  std::ostringstream os;
  os.precision(std::numeric_limits<double>::max_digits10);
  os << "\tCalibrationPolynomialZRK[ \n"
     << "\t\torder = " << Order << "\n"
     << "\t\tc0 = " << c0 << ", c2 = " << c2 << ", coefficients = (";
  for (std::size_t i = 0; i < vCoeff.size(); ++i) os << (i ? ", " : "") << vCoeff[i];
  os << "), global mass range = [" << minMass << ", " << maxMass << "], arg range = ["
     << GetArgRange().first << ", " << GetArgRange().second << "]\n"
     << "\t\tparent mass = " << GetParentMass() << "\n"
     << "\t]";
  return os.str();
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
