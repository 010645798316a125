// The mobility axis: conversions between scan number, ramp voltage and the
// inverse reduced mobility 1/K0.
//
// ITransformator is what the conversion entry points call;
// ILinearVoltageRampBasedTransformator adds what is particular to a linear
// voltage ramp. The one implementation is made by
// createLinearVoltageRampBasedTransformator.
//
// Scan numbers are the stored scan numbers of a frame (doubles: fractional
// scans are meaningful); voltages are in volts, signed as the ramp is.
#ifndef KORA_MOBILITY_TRANSFORMATION_H_
#define KORA_MOBILITY_TRANSFORMATION_H_

#include <boost/function.hpp>
#include <memory>
#include <utility>
#include <vector>

#include "mobility/linear_voltage_ramp.h"

namespace lumo {
namespace calibration {
namespace kora {

// Thread-safety of implementations: the conversions are const and may run on
// any number of threads at once.
class ITransformator {
 public:
  virtual ~ITransformator() {}

  // Resizes `out` to end - begin and sets out[i - begin] to the value of scan
  // number i, for begin <= i < end. Throws std::invalid_argument when
  // end < begin.
  virtual void scanNumToOneOverK0(std::vector<double>& out, int begin, int end) const = 0;
  virtual double scanNumToOneOverK0(double scanNum) const = 0;
  // As scanNumToOneOverK0(out, begin, end), with voltages.
  virtual void scanNumToVoltage(std::vector<double>& out, int begin, int end) const = 0;
  virtual double scanNumToVoltage(double scanNum) const = 0;
  virtual double oneOverK0ToScanNum(double oneOverK0) const = 0;
  virtual double voltageToScanNum(double voltage) const = 0;
  virtual double voltageToOneOverK0(double voltage) const = 0;
  virtual double oneOverK0ToVoltage(double oneOverK0) const = 0;
  // The ModelType number of the law in the calibration table.
  virtual int getModelType() const = 0;
};

// A transformator on a linear voltage ramp whose voltage-to-1/K0 law is
// 1/K0 = x / (c0 * x + c1) for the voltage magnitude x in [vmin, vmax],
// continued by its tangents outside.
//
// Thread-safety: the setters are not synchronised; call them before the object
// is shared.
class ILinearVoltageRampBasedTransformator : public ITransformator {
 public:
  virtual LinearVoltageRamp getVoltageRamp() const = 0;
  // Replaces the ramp (and with it the polarity); coefficients stay.
  virtual void setVoltageRamp(const LinearVoltageRamp& ramp) = 0;
  // Added to a ramp scan number to give the stored scan number.
  virtual double getScanNumOffset() const = 0;
  virtual void setScanNumOffset(double offset) = 0;
  // first = floor(ndelay + offset), last = ceil(ndelay + ncycles + offset).
  virtual std::pair<int, int> getScanNumRange() const = 0;
  virtual int getDegree() const = 0;
  // c0, c1, vmin, vmax, in this order.
  virtual std::vector<double> getCoefficients() const = 0;
  // Takes c0, c1, vmin, vmax. Throws std::invalid_argument for an invalid set,
  // and then leaves the object unchanged.
  virtual void setCoefficients(const std::vector<double>& coefficients) = 0;
};

// Makes the transformator of `ramp`, `scanNumOffset` and `coefficients`
// (c0, c1, vmin, vmax). Throws std::invalid_argument as setCoefficients does.
std::unique_ptr<ILinearVoltageRampBasedTransformator> createLinearVoltageRampBasedTransformator(
    const LinearVoltageRamp& ramp, double scanNumOffset, const std::vector<double>& coefficients);

// Resizes `out` to end - begin elements and sets out[i - begin] = f(i) for
// each integer i in [begin, end), in ascending order. `begin` may be
// negative. Throws std::invalid_argument ("end must be >= begin.") when
// end < begin, and boost::bad_function_call for an empty `f` unless the range
// is empty. A failure of `f` leaves `out` resized and partly filled.
void rangeTransform(std::vector<double>& out, int begin, int end,
                    const boost::function<double(double)>& f);

}  // namespace kora
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_MOBILITY_TRANSFORMATION_H_
