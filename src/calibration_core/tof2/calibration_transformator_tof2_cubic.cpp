#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>
#include <vigra/eigensystem.hxx>
#include <vigra/polynomial.hxx>

#include "calibration_core/utilities/monotonic_range.h"
#include "logging/log_stream.h"
#include "math/find_zero_in_range.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace {

using logging::Level;
using logging::LogStream;

std::string rangeText(const std::pair<double, double>& range) {
  std::ostringstream os;
  os << "[" << range.first << ", " << range.second << "]";
  return os.str();
}

}  // namespace

double CalibrationTransformatorTOF2Cubic::exactRawToMass(double t, double minMass,
                                                         double maxMass) const {
  double dm = 0.0;
  vigra::Polynomial<double> polynomial = squareRootLawPolynomial(GetFunctionalConstants(), 3, &dm);
  polynomial[0] = polynomial[0] - t;
  polynomial.minimizeOrder(0.0);
  if (polynomial.order() < 2) {
    LUMO_THROW(std::runtime_error("Failed to determine roots of polynomial: order < 2."));
  }
  std::vector<std::complex<double>> roots;
  if (!vigra::polynomialRootsEigenvalueMethod(polynomial, roots, true)) {
    LUMO_THROW(
        std::runtime_error("Failed to determine roots of polynomial. Vigra returned error."));
  }
  std::vector<double> realRoots;
  for (const std::complex<double>& root : roots) {
    if (root.imag() == 0.0) realRoots.push_back(root.real());
  }
  for (double r : realRoots) {
    if (r >= 0) {
      const double mass = r * r - dm;
      if (minMass <= mass && mass <= maxMass) return mass;
    }
  }

  LogStream roundOff(logger_, Level::TRACE);
  if (roundOff.enabled()) {
    roundOff.stream().precision(16);
    roundOff.stream() << "Round-off handling; roots = ";
    for (double r : realRoots) roundOff.stream() << r << " ";
  }
  const double tMin = MassToRaw(minMass);
  const double tMax = MassToRaw(maxMass);
  LogStream(logger_, Level::TRACE) << "- time = " << t << ", " << tMin << ", " << tMax;
  const double mid = (tMax + tMin) * 0.5;
  const bool lower = t < mid;
  LogStream(logger_, Level::TRACE) << "- choosing " << (lower ? "lower" : "upper") << " boundary.";
  return lower ? minMass : maxMass;
}

std::pair<double, double> CalibrationTransformatorTOF2Cubic::approximateMonotonicMassRange(
    double m0) const {
  double dm = 0.0;
  const vigra::Polynomial<double> quadratic =
      squareRootLawPolynomial(GetFunctionalConstants(), 2, &dm);
  std::pair<double, double> range = monotonicPolyShiftedSqrtRange(quadratic, m0, dm);
  LogStream(logger_, Level::TRACE) << "monotonic range approx = " << rangeText(range);
  const std::pair<double, double> exact = monotonicMassRange(m0);
  range.first = std::max(range.first, exact.first);
  range.second = std::min(range.second, exact.second);
  LogStream(logger_, Level::TRACE) << "       monotonic range = " << rangeText(range);
  if (range.second < range.first) range.second = range.first;
  return range;
}

std::pair<double, double> CalibrationTransformatorTOF2Cubic::monotonicMassRange(double m0) const {
  double dm = 0.0;
  const vigra::Polynomial<double> cubic = squareRootLawPolynomial(GetFunctionalConstants(), 3, &dm);
  return monotonicPolyShiftedSqrtRange(cubic, m0, dm);
}

double CalibrationTransformatorTOF2Cubic::quadraticMassToTime(double m) const {
  double dm = 0.0;
  const vigra::Polynomial<double> quadratic =
      squareRootLawPolynomial(GetFunctionalConstants(), 2, &dm);
  const double x = std::sqrt(m + dm);
  return (quadratic[2] * x + quadratic[1]) * x + quadratic[0];
}

std::pair<double, double> CalibrationTransformatorTOF2Cubic::usableTimeRange(
    const std::pair<double, double>& massRange) const {
  const double aHi = quadraticMassToTime(massRange.second);
  const double aLo = quadraticMassToTime(massRange.first);
  LogStream(logger_, Level::TRACE)
      << "     time range approx = " << rangeText(std::make_pair(aLo, aHi));
  const double eHi = MassToRaw(massRange.second);
  const double eLo = MassToRaw(massRange.first);
  LogStream(logger_, Level::TRACE)
      << "      time range exact = " << rangeText(std::make_pair(eLo, eHi));
  const std::pair<double, double> usable(std::max(eLo, aLo), std::min(eHi, aHi));
  LogStream(logger_, Level::TRACE) << "     usable time range = " << rangeText(usable);
  return usable;
}

std::pair<double, double> CalibrationTransformatorTOF2Cubic::usableMassRange(
    double m0, double maxRoundTripError) const {
  LogStream description(logger_, Level::TRACE);
  if (description.enabled()) {
    double dm = 0.0;
    const vigra::Polynomial<double> cubic =
        squareRootLawPolynomial(GetFunctionalConstants(), 3, &dm);
    description.stream().precision(20);
    description.stream() << "usableMassRange() for " << ClassName() << " " << cubic[3] << " "
                         << cubic[2] << " " << cubic[1] << " " << cubic[0] << " dm " << dm;
  }

  const std::pair<double, double> massRange = approximateMonotonicMassRange(m0);
  if (massRange.first == massRange.second) return massRange;

  const std::pair<double, double> timeRange = usableTimeRange(massRange);
  if (!(timeRange.first < timeRange.second)) {
    LogStream(logger_, Level::WARN)
        << "Usable time ranges don't overlap. Bad quadratic approximation.";
    return std::make_pair(0.0, 0.0);
  }

  const double mLo = exactRawToMass(timeRange.first, massRange.first, massRange.second);
  const double mHi = std::isinf(timeRange.second)
                         ? std::numeric_limits<double>::max()
                         : exactRawToMass(timeRange.second, massRange.first, massRange.second);
  LogStream(logger_, Level::TRACE) << rangeText(std::make_pair(mLo, mHi));

  double a = mLo + 1.0;
  double b = mHi - 1.0;
  if (b <= a) {
    a = (mHi + mLo) * 0.5;
    b = a;
  }
  if (a != b && maxRoundTripError != 0.0) {
    const ICalibrationTransformator& self = *this;
    b = math::findZeroInRange(
        a, b,
        [&self, maxRoundTripError](double m) {
          return std::fabs(self.RawToMass(self.MassToRaw(m)) - m) - maxRoundTripError;
        },
        0.0, 1000, nullptr);
    LogStream(logger_, Level::TRACE)
        << "Restricted round-trip error => " << rangeText(std::make_pair(a, b));
  }
  return std::make_pair(a, b);
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
