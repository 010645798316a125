#include "calibration_core/utilities/monotonic_range.h"

#include <boost/pointer_cast.hpp>
#include <cassert>
#include <cmath>
#include <stdexcept>

#include "logging/log_stream.h"
#include "logging/logger.h"
#include "math/polynomials.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {

std::pair<double, double> monotonicPolyShiftedSqrtRange(const vigra::Polynomial<double>& polynomial,
                                                        double m0, double dm) {
  static const logging::Logger logger =
      logging::Logger::getLogger("lumo.calibration_core.monotonicPolySqrtRange");
  const double x = m0 + dm;
  if (!(x >= 0)) {
    LUMO_THROW(std::runtime_error("Mass->time mapping not defined for specified value of 'm0'"));
  }
  std::pair<double, double> range = math::monotonicPolyRange(polynomial, std::sqrt(x));
  logging::LogStream(logger, logging::Level::TRACE)
      << "Calculated monotonic x range is: [" << range.first << "," << range.second << "]";
  if (range.first < 0) range.first = 0;
  range.first = std::pow(range.first, 2.0) - dm;
  range.second = std::pow(range.second, 2.0) - dm;
  logging::LogStream(logger, logging::Level::TRACE)
      << "Calculated monotonic mass range is: [" << range.first << "," << range.second << "]";
  return range;
}

vigra::Polynomial<double> squareRootLawPolynomial(
    const ICalibrationConstantsFunctionalPtr& constants, unsigned int order, double* dm) {
  assert(order >= 1 && order <= 3);
  const ICalibrationConstantsFunctionalTOF2Ptr tof2 =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(constants);
  ICalibrationConstantsFunctionalComputationQuadraticPtr law = tof2;
  if (!law) law = boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(constants);
  if (!law) {
    LUMO_THROW(
        std::invalid_argument("CalibrationTransformatorTOF: funConsts is neither of type "
                              "ICalibrationConstantsFunctionalTOF1 nor of type "
                              "ICalibrationConstantsFunctionalTOF2."));
  }
  vigra::Polynomial<double> polynomial(order, 1e-14);
  polynomial[0] = law->GetC0();
  polynomial[1] = std::sqrt(law->GetA1());
  if (order >= 2) polynomial[2] = law->GetC2();
  if (order >= 3) polynomial[3] = tof2 ? tof2->GetC3() : 0.0;
  *dm = tof2 ? tof2->GetDm() : 0.0;
  return polynomial;
}

}  // namespace calibration
}  // namespace lumo
