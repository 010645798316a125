#include "calibration_core/transformation/functors.h"

#include <sstream>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Functors {

const char* const kTransformationFailedText =
    "Transformation failed, most likely due to bad calibration constants.";

void throwTransformationFailed() { LUMO_THROW(std::runtime_error(kTransformationFailedText)); }

void throwInvalidRange(std::int32_t first, std::int32_t last) {
  std::ostringstream os;
  os << "Lumo::CCO::Functors::RangeTransformation(TTransformationFunctor transFunctor, "
        "boost::int32_t first, boost::int32_t last, TDest & dest): "
     << "invalid transformation: range invalid: last < first with last = " << last
     << " and first = " << first;
  LUMO_THROW(std::invalid_argument(os.str()));
}

}  // namespace Functors
}  // namespace calibration
}  // namespace lumo
