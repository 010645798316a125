// The frame of the time-of-flight models with a closed inverse: the model
// template over a raw-mass law, the linear digitizer line and no constants
// setting, with the closed square-root range functions and a fixed
// functional degree.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_
#define KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"
#include "calibration_core/utilities/monotonic_range.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace detail {

// Derived is the model class; kDegree the order of its square-root law and
// its functional degree.
template <class Derived, class RawMass, int kDegree>
class SquareRootModel
    : public ClosedSquareRootLaw<
          Transformator<Derived, RawMass, RILinear, ConstantsSettingNoAction>, kDegree>,
      public FixedFunctionalDegree<kDegree> {
 public:
  using ClosedSquareRootLaw<Transformator<Derived, RawMass, RILinear, ConstantsSettingNoAction>,
                            kDegree>::ClosedSquareRootLaw;
};

}  // namespace detail
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_
