// The one way a raw-to-mass policy reaches the numbers it reads: the
// computation interface of the functional constants.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_COMPUTATION_CAST_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_COMPUTATION_CAST_H_

#include <boost/pointer_cast.hpp>
#include <boost/shared_ptr.hpp>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/transformation/policy_errors.h"

namespace lumo {
namespace calibration {
namespace Transformation {

// `constants` as the computation interface I, named `interfaceName`, that
// `policy` reads; never empty. Throws std::invalid_argument with location
// and stack trace when the constants do not answer I.
template <class I>
boost::shared_ptr<I> computationOf(const ICalibrationConstantsFunctionalPtr& constants,
                                   const char* policy, const char* interfaceName) {
  boost::shared_ptr<I> computation = boost::dynamic_pointer_cast<I>(constants);
  if (!computation) throwWrongFunctionalConstants(policy, interfaceName);
  return computation;
}

namespace detail {

// c0, a1 and c2 of the computation interface I, the quadratic one or one
// derived from it, named `interfaceName`, which `policy` reads; returns
// `constants` as I for the policy's further numbers.
template <class I>
boost::shared_ptr<I> readQuadraticLaw(const ICalibrationConstantsFunctionalPtr& constants,
                                      const char* policy, const char* interfaceName, double& c0,
                                      double& a1, double& c2) {
  const boost::shared_ptr<I> law = computationOf<I>(constants, policy, interfaceName);
  c0 = law->GetC0();
  a1 = law->GetA1();
  c2 = law->GetC2();
  return law;
}

}  // namespace detail

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_COMPUTATION_CAST_H_
