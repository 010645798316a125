// The rising mass range of a square-root law: a polynomial in
// w = sqrt(m + dm) that rises around w0 = sqrt(m0 + dm) rises, as a function
// of the mass, on the interval this function returns.
#ifndef KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_
#define KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_

#include <utility>
#include <vigra/polynomial.hxx>

namespace lumo {
namespace calibration {

// The widest mass interval (lo, hi) around m0 on which `polynomial`, a
// polynomial in w = sqrt(m + dm), rises. A bound without a critical point
// is infinite; the lower bound is never below -dm (w = 0).
// Throws std::runtime_error ("Mass->time mapping not defined for specified
// value of 'm0'") unless m0 + dm >= 0, and what the range search throws
// (a polynomial falling at w0).
std::pair<double, double> monotonicPolyShiftedSqrtRange(const vigra::Polynomial<double>& polynomial,
                                                        double m0, double dm);

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_UTILITIES_MONOTONIC_RANGE_H_
