// The conversions of the library, compiled when its header declares them.
#include "connection.h"
#include "koradata.h"

namespace koradata_py {

const bool kHaveConversions = true;

bool callConversion(uint64_t handle, Conversion conversion, int64_t frame, const double* in,
                    double* out, uint32_t count) {
  switch (conversion) {
    case Conversion::kIndexToMz:
      return kora_index_to_mz(handle, frame, in, out, count) != 0;
    case Conversion::kMzToIndex:
      return kora_mz_to_index(handle, frame, in, out, count) != 0;
    case Conversion::kScanToInvMobility:
      return kora_scannum_to_oneoverk0(handle, frame, in, out, count) != 0;
    case Conversion::kInvMobilityToScan:
      return kora_oneoverk0_to_scannum(handle, frame, in, out, count) != 0;
    case Conversion::kScanToVoltage:
      return kora_scannum_to_voltage(handle, frame, in, out, count) != 0;
    case Conversion::kVoltageToScan:
      return kora_voltage_to_scannum(handle, frame, in, out, count) != 0;
  }
  return false;
}

}  // namespace koradata_py
