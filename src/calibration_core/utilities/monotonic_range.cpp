#include "calibration_core/utilities/monotonic_range.h"

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

}  // namespace calibration
}  // namespace lumo
