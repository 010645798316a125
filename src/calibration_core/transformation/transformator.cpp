#include "calibration_core/transformation/transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

const char* const kTransformatorSerializationVersion = "V1";

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
