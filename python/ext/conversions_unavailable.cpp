// Stands in for conversions.cpp when the library's header declares no
// conversion functions: every conversion fails with one text.
#include "connection.h"

namespace koradata_py {

const bool kHaveConversions = false;

bool callConversion(uint64_t, Conversion, int64_t, const double*, double*, uint32_t) {
  throw LibraryError("this build of koradata has no m/z or 1/K0 conversions");
}

}  // namespace koradata_py
