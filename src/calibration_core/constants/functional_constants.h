// The interfaces of the functional constants: the fitted coefficients of a
// mass calibration model.
//
// Every family has an interface ICalibrationConstantsFunctional<Family> and a
// class of the same name without the I in lumo::calibration::Constants. The
// conversion policies never read a family: they read numbers through the
// small computation interfaces, so that one policy serves several families.
//
// All interfaces derive virtually from ICloneable; objects are held by
// boost::shared_ptr. Constants are plain values: thread-compatible, one
// thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_H_

#include <boost/shared_ptr.hpp>
#include <string>

#include "calibration_core/cloneable.h"
#include "calibration_core/constants/constant_accessors.h"

namespace lumo {
namespace calibration {

class ICalibrationConstantsFunctional;
typedef boost::shared_ptr<ICalibrationConstantsFunctional> ICalibrationConstantsFunctionalPtr;
typedef boost::shared_ptr<const ICalibrationConstantsFunctional>
    ICalibrationConstantsFunctionalConstPtr;

// Family numbers of GetCalibrationType.
enum CalibrationType {
  kCalibrationTypeTOF = 1,
  kCalibrationTypeHalyard = 2,
  kCalibrationTypeFTMS = 3,
  kCalibrationTypeLinear = 4,
  kCalibrationTypePSD = 6,
  kCalibrationTypeVEGA1 = 7,
  kCalibrationTypeTOFTemperatureCompensation = 9,
  kCalibrationTypeVEGA2 = 10,
  kCalibrationTypeTOF2 = 12,
  kCalibrationTypeTOF2TemperatureCompensation = 13,
};

class ICalibrationConstantsFunctional : public virtual ICloneable {
 public:
  // The calibration mode number read with the constants (-1: none).
  KORA_ABSTRACT_CONSTANT(int, CalibMode);
  // True when `other` is of the same family with equal fields.
  virtual bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const = 0;
  // The family number, see CalibrationType.
  virtual int GetCalibrationType() const = 0;
  // Folds an index offset into the constants; the models' own shift is done
  // on the physical constants, so most families do nothing here.
  virtual void AssimilateIndexOffset(double indexOffset) = 0;
  // One diagnostic line; its layout has no consumer but people.
  virtual std::string Dump() const = 0;
};

// c0 and the slope term a1 of a first-degree law.
class ICalibrationConstantsFunctionalComputationLinear : public virtual ICloneable {
 public:
  KORA_ABSTRACT_CONSTANT(double, C0);
  KORA_ABSTRACT_CONSTANT(double, A1);
};

class ICalibrationConstantsFunctionalComputationQuadratic
    : public virtual ICalibrationConstantsFunctionalComputationLinear {
 public:
  KORA_ABSTRACT_CONSTANT(double, C2);
  // 1e12 / (c1 * c1) of the stored flight constant; read by no conversion.
  virtual double GetA1FromStoredC1() const = 0;
};

class ICalibrationConstantsFunctionalComputationCubic
    : public virtual ICalibrationConstantsFunctionalComputationQuadratic {
 public:
  KORA_ABSTRACT_CONSTANT(double, C3);
};

// The mass shift dm: the polynomial's variable is sqrt(m + dm).
class ICalibrationConstantsFunctionalComputationShift : public virtual ICloneable {
 public:
  KORA_ABSTRACT_CONSTANT(double, Dm);
};

// TOF1: t = c0 + sqrt(a1 * m) (+ c2 * m), a1 = 1e12 / (c1 * c1).
class ICalibrationConstantsFunctionalTOF1
    : public virtual ICalibrationConstantsFunctional,
      public virtual ICalibrationConstantsFunctionalComputationQuadratic {
 public:
  KORA_ABSTRACT_CONSTANT(double, C0);
  KORA_ABSTRACT_CONSTANT(double, C1);
  KORA_ABSTRACT_CONSTANT(double, C2);
};

// TOF2: t = c0 + sqrt(a1) w + c2 w^2 + c3 w^3 with w = sqrt(m + c4), c4 = dm.
class ICalibrationConstantsFunctionalTOF2
    : public virtual ICalibrationConstantsFunctional,
      public virtual ICalibrationConstantsFunctionalComputationShift,
      public virtual ICalibrationConstantsFunctionalComputationCubic {
 public:
  KORA_ABSTRACT_CONSTANT(double, C1);
  KORA_ABSTRACT_CONSTANT(double, C4);
};

// Halyard (ion trap): the mass is a polynomial of the raw mass axis.
class ICalibrationConstantsFunctionalHalyard
    : public virtual ICalibrationConstantsFunctional,
      public virtual ICalibrationConstantsFunctionalComputationQuadratic {
 public:
  KORA_ABSTRACT_CONSTANT(double, C1);
};

// A purely linear mass axis: m = c1 * raw + c0.
class ICalibrationConstantsFunctionalLinear : public virtual ICalibrationConstantsFunctional {
 public:
  KORA_ABSTRACT_CONSTANT(double, C0);
  KORA_ABSTRACT_CONSTANT(double, C1);
};

// Fourier-transform instruments: the raw axis is a frequency axis.
class ICalibrationConstantsFunctionalFTMS : public virtual ICalibrationConstantsFunctional {
 public:
  KORA_ABSTRACT_CONSTANT(double, Beta);
  KORA_ABSTRACT_CONSTANT(double, FreqHigh);
  KORA_ABSTRACT_CONSTANT(int, FtmsRawMode);
};

class ICalibrationConstantsFunctionalFTMS04 : public virtual ICalibrationConstantsFunctionalFTMS {};

class ICalibrationConstantsFunctionalFTMS1356 : public virtual ICalibrationConstantsFunctionalFTMS {
 public:
  KORA_ABSTRACT_CONSTANT(double, Alpha);
};

typedef boost::shared_ptr<ICalibrationConstantsFunctionalComputationLinear>
    ICalibrationConstantsFunctionalComputationLinearPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalComputationQuadratic>
    ICalibrationConstantsFunctionalComputationQuadraticPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalComputationCubic>
    ICalibrationConstantsFunctionalComputationCubicPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalComputationShift>
    ICalibrationConstantsFunctionalComputationShiftPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalTOF1>
    ICalibrationConstantsFunctionalTOF1Ptr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalTOF2>
    ICalibrationConstantsFunctionalTOF2Ptr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalHalyard>
    ICalibrationConstantsFunctionalHalyardPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalLinear>
    ICalibrationConstantsFunctionalLinearPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalFTMS>
    ICalibrationConstantsFunctionalFTMSPtr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalFTMS04>
    ICalibrationConstantsFunctionalFTMS04Ptr;
typedef boost::shared_ptr<ICalibrationConstantsFunctionalFTMS1356>
    ICalibrationConstantsFunctionalFTMS1356Ptr;

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_H_
