#include "mobility/linear_voltage_ramp.h"

#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace kora {

// Every comparison is written so that an unordered one (a NaN voltage) is not
// a failure.
LinearVoltageRamp::LinearVoltageRamp(int ndelay, int ncycles, double Vstart, double Vend)
    : ndelay_(ndelay),
      ncycles_(ncycles),
      Vstart_(Vstart),
      Vend_(Vend),
      slope_(0.0),
      intercept_(0.0) {
  if (Vend == Vstart) LUMO_THROW(std::invalid_argument("Vend must be != Vstart."));
  if (ncycles < 1) LUMO_THROW(std::invalid_argument("ncycles must be > 0."));
  if (ndelay < 0) LUMO_THROW(std::invalid_argument("ndelay must be >= 0."));
  if (Vstart > 0.0) {
    if (Vend > Vstart)
      LUMO_THROW(std::invalid_argument("Ramp in positive mode must be decreasing."));
  } else if (Vstart > Vend) {
    LUMO_THROW(std::invalid_argument("Ramp in negative mode must be increasing."));
  }
  const double n0 = ndelay;
  const double n1 = endScan();
  if (0.0 >= Vstart * Vend) {
    LUMO_THROW(std::invalid_argument("Voltage ramp has zero crossing (not allowed)."));
  }
  const double d = n0 - n1;
  slope_ = (Vstart - Vend) / d;
  intercept_ = (n0 * Vend - n1 * Vstart) / d;
}

}  // namespace kora
}  // namespace calibration
}  // namespace lumo
