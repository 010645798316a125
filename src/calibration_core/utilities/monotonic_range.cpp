#include "calibration_core/utilities/monotonic_range.h"

#include <cmath>
#include <stdexcept>

#include "logging/log_stream.h"
#include "logging/logger.h"
#include "sys/throw.h"

// The range search of the numerics library; until that library is part of
// the build, range requests fail with std::logic_error.
#if __has_include("math/polynomials.h")
#include "math/polynomials.h"
#define KORA_HAVE_MONOTONIC_POLY_RANGE 1
#endif

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
#ifdef KORA_HAVE_MONOTONIC_POLY_RANGE
  std::pair<double, double> range = math::monotonicPolyRange(polynomial, std::sqrt(x));
#else
  std::pair<double, double> range;
  LUMO_THROW(std::logic_error("monotonic range search not available in this build"));
#endif
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
