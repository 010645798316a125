// The frame of the time-of-flight models with a closed inverse: the
// digitizer-line frame with the closed square-root range functions.
//
// Thread-safety: as every Transformator (const operations thread-safe).
#ifndef KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_
#define KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_

#include "calibration_core/transformation/digitizer_line_model.h"
#include "calibration_core/utilities/monotonic_range.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace detail {

// Derived is the model class; kDegree the order of its square-root law and
// its functional degree.
template <class Derived, class RawMass, int kDegree>
class SquareRootModel
    : public ClosedSquareRootLaw<DigitizerLineModel<Derived, RawMass, kDegree>, kDegree> {
 public:
  using ClosedSquareRootLaw<DigitizerLineModel<Derived, RawMass, kDegree>,
                            kDegree>::ClosedSquareRootLaw;
};

}  // namespace detail
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_SQUARE_ROOT_MODEL_H_
