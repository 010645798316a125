// The conversions of the library, compiled when its header declares them.
#include "connection.h"
#include "koradata.h"

namespace koradata_py {

const bool kHaveConversions = true;

bool callConversion(uint64_t handle, Conversion conversion, int64_t frame, const double* in,
                    double* out, uint32_t count) {
  // In the order of Conversion.
  static constexpr uint32_t (*kExports[])(uint64_t, int64_t, const double*, double*, uint32_t) = {
      kora_index_to_mz,          kora_mz_to_index,        kora_scannum_to_oneoverk0,
      kora_oneoverk0_to_scannum, kora_scannum_to_voltage, kora_voltage_to_scannum};
  return kExports[static_cast<int>(conversion)](handle, frame, in, out, count) != 0;
}

}  // namespace koradata_py
