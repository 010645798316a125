// The interfaces of the physical constants: the description of the raw axis
// of a digitizer (time delay and time base, raw mass grid, frequency grid).
//
// Every family also answers ICalibrationConstantsPhysicalLinear, the
// straight line raw = index * a1 + a0 through which the raw-to-index policy
// reads it.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_PHYSICAL_CONSTANTS_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_PHYSICAL_CONSTANTS_H_

#include <boost/shared_ptr.hpp>
#include <string>

#include "calibration_core/cloneable.h"
#include "calibration_core/constants/constant_accessors.h"

namespace lumo {
namespace calibration {

class ICalibrationConstantsPhysical;
typedef boost::shared_ptr<ICalibrationConstantsPhysical> ICalibrationConstantsPhysicalPtr;

class ICalibrationConstantsPhysical : public virtual ICloneable {
 public:
  // True when `other` is of the same family with equal fields.
  virtual bool IsEqual(const ICalibrationConstantsPhysicalPtr& other) const = 0;
  // Moves the axis so that index i maps to the raw value index i + offset
  // mapped to before.
  virtual void AssimilateIndexOffset(double indexOffset) = 0;
  // Moves the start of the raw axis: afterwards index `index` maps to `raw`;
  // the step width stays.
  virtual void SetRawRangeStart(double raw, double index) = 0;
  virtual std::string Dump() const = 0;
};

// raw = index * a1 + a0.
class ICalibrationConstantsPhysicalLinear : public virtual ICalibrationConstantsPhysical {
 public:
  KORA_ABSTRACT_CONSTANT(double, A0);
  KORA_ABSTRACT_CONSTANT(double, A1);
};

// Digitizer of a time-of-flight instrument; raw is the flight time.
class ICalibrationConstantsPhysicalTOF : public virtual ICalibrationConstantsPhysical {
 public:
  KORA_ABSTRACT_CONSTANT(double, TimeDelay);
  KORA_ABSTRACT_CONSTANT(double, TimeBase);
};

// Raw mass grid of an ion trap.
class ICalibrationConstantsPhysicalHalyard : public virtual ICalibrationConstantsPhysical {
 public:
  KORA_ABSTRACT_CONSTANT(double, BeginRawMass);
  KORA_ABSTRACT_CONSTANT(double, MeasurementsPerRawMass);
};

// Frequency grid of a Fourier-transform instrument.
class ICalibrationConstantsPhysicalFTMS : public virtual ICalibrationConstantsPhysical {
 public:
  KORA_ABSTRACT_CONSTANT(int, CalibMode);
  KORA_ABSTRACT_CONSTANT(int, FtmsRawMode);
  virtual double GetFreqLow() const = 0;
  virtual double GetFreqWidth() const = 0;
  // Number of samples of the transient.
  virtual int GetSize() const = 0;
};

typedef boost::shared_ptr<ICalibrationConstantsPhysicalLinear>
    ICalibrationConstantsPhysicalLinearPtr;
typedef boost::shared_ptr<ICalibrationConstantsPhysicalTOF> ICalibrationConstantsPhysicalTOFPtr;
typedef boost::shared_ptr<ICalibrationConstantsPhysicalHalyard>
    ICalibrationConstantsPhysicalHalyardPtr;
typedef boost::shared_ptr<ICalibrationConstantsPhysicalFTMS> ICalibrationConstantsPhysicalFTMSPtr;

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_PHYSICAL_CONSTANTS_H_
