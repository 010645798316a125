// The frame of the models whose raw axis is the digitizer line of the
// physical constants and whose constants need no adjusting: the model
// template over a raw-mass law, RILinear and ConstantsSettingNoAction, with
// a fixed functional degree. KORA_MODEL declares a model that is its frame
// and nothing more, in one line.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_DIGITIZER_LINE_MODEL_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_DIGITIZER_LINE_MODEL_H_

#include "calibration_core/transformation/constants_setting_policies.h"
#include "calibration_core/transformation/raw_index_policies.h"
#include "calibration_core/transformation/raw_mass_policies.h"
#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace detail {

// Derived is the model class; kDegree its functional degree.
template <class Derived, class RawMass, int kDegree>
class DigitizerLineModel
    : public Transformator<Derived, RawMass, RILinear, ConstantsSettingNoAction>,
      public FixedFunctionalDegree<kDegree> {
 public:
  using Transformator<Derived, RawMass, RILinear, ConstantsSettingNoAction>::Transformator;
};

}  // namespace detail

// The final model class `Name` over detail::Frame<Name, the other arguments>,
// with the frame's constructors and its ClassName.
#define KORA_MODEL(Name, Frame, ...)                           \
  class Name final : public detail::Frame<Name, __VA_ARGS__> { \
    KORA_MODEL_NAME_AND_CONSTRUCTORS(Name, Frame);             \
  }

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_DIGITIZER_LINE_MODEL_H_
