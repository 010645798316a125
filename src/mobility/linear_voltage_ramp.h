// LinearVoltageRamp: the voltage that drives the mobility separator, falling
// or rising linearly over the scans of one frame.
//
// Invariants, established by the constructor:
//   1. Vend != Vstart, ncycles > 0, ndelay >= 0.
//   2. Vstart and Vend have the same sign and neither is 0, so the magnitude of
//      the voltage decreases along the ramp: a positive ramp falls towards 0,
//      a negative one rises towards 0.
//   3. voltage(ndelay) == Vstart and voltage(ndelay + ncycles) == Vend, up to
//      rounding.
// A NaN in Vstart or Vend passes every check and makes slope and intercept NaN.
//
// Thread-safety: immutable after construction (replaced only whole, by
// assignment); concurrent reads are safe.
#ifndef KORA_MOBILITY_LINEAR_VOLTAGE_RAMP_H_
#define KORA_MOBILITY_LINEAR_VOLTAGE_RAMP_H_

#include <cstdint>

namespace lumo {
namespace calibration {
namespace kora {

class LinearVoltageRamp {
 public:
  // `ndelay`: scans before the ramp starts; `ncycles`: length of the ramp in
  // scans; `Vstart`, `Vend`: volts at scan ndelay and ndelay + ncycles.
  // Throws std::invalid_argument when an invariant above does not hold; the
  // first failing check decides the message.
  LinearVoltageRamp(int ndelay, int ncycles, double Vstart, double Vend);

  // True when the ramp has negative ion polarity (0.0 > Vstart).
  bool isNegative() const { return 0.0 > Vstart_; }

  // The ramp line at a (fractional) scan number, in volts. Never clamped to
  // the ramp's extent, so the result may cross zero outside it.
  double voltage(double scanNumber) const { return slope_ * scanNumber + intercept_; }

  // The inverse of voltage(): the (fractional) scan number of `voltage`.
  double scanNumber(double voltage) const { return (voltage - intercept_) / slope_; }

  int ndelay() const { return ndelay_; }
  int ncycles() const { return ncycles_; }
  double Vstart() const { return Vstart_; }
  double Vend() const { return Vend_; }
  // Volts per scan.
  double slope() const { return slope_; }
  // Volts of the extended line at scan number 0.
  double intercept() const { return intercept_; }

  // ndelay + ncycles, summed as a 32-bit integer that wraps on overflow.
  int endScan() const {
    return static_cast<int32_t>(static_cast<uint32_t>(ndelay_) + static_cast<uint32_t>(ncycles_));
  }

 private:
  int ndelay_;
  int ncycles_;
  double Vstart_;
  double Vend_;
  double slope_;
  double intercept_;
};

}  // namespace kora
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_MOBILITY_LINEAR_VOLTAGE_RAMP_H_
