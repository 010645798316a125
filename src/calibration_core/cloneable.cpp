#include "calibration_core/cloneable.h"

namespace lumo {
namespace calibration {

const char* const kCloneErrorText =
    "Error while cloning an object. It is not of type ICloneable. This means there's an error in "
    "an object's Clone() implementation.";

}  // namespace calibration
}  // namespace lumo
