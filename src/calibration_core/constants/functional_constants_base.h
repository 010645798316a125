// What every class of functional constants has in common, written once:
// the calibration mode, Clone, the family number, the no-op
// AssimilateIndexOffset and the frame of IsEqual. A family class derives from
// FunctionalConstantsBase<Itself, ItsInterface, itsFamilyNumber> and provides
//   bool FieldsEqual(const Interface& other) const
// which compares the family's own fields (the mode and the family number are
// compared here). Also the TOF fields c0, c1, c2 shared by TOF1 and TOF2.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_BASE_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_BASE_H_

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <sstream>

#include "calibration_core/constants/constant_accessors.h"
#include "calibration_core/constants/functional_constants.h"

namespace lumo {
namespace calibration {

// The slope term of the stored flight constant: 1e12 / (c1 * c1). The sign of
// c1 is lost.
double slopeTermFromC1(double c1);

namespace Constants {
namespace detail {

// A stream that prints doubles with all their digits, for the dumps.
class DumpStream : public std::ostringstream {
 public:
  DumpStream();
};

template <class Derived, class Interface, int kCalibrationType>
class FunctionalConstantsBase : public virtual Interface {
 public:
  // A copy of the most derived class: a class that derives from a family
  // class overrides Clone in turn.
  ICloneablePtr Clone() const override {
    return boost::make_shared<Derived>(static_cast<const Derived&>(*this));
  }

  KORA_CONSTANT(int, CalibMode, calibMode_);
  int GetCalibrationType() const override { return kCalibrationType; }
  // Does nothing: the index offset is folded into the physical constants.
  void AssimilateIndexOffset(double indexOffset) override {}

  // Same family interface, same family number, same mode, equal fields.
  bool IsEqual(const ICalibrationConstantsFunctionalPtr& other) const override {
    const boost::shared_ptr<Interface> o = boost::dynamic_pointer_cast<Interface>(other);
    return o && o->GetCalibrationType() == this->GetCalibrationType() &&
           o->GetCalibMode() == calibMode_ && static_cast<const Derived&>(*this).FieldsEqual(*o);
  }

 protected:
  explicit FunctionalConstantsBase(int calibMode) : calibMode_(calibMode) {}

  int calibMode_;
};

// c0 and c1, the two coefficients every polynomial family stores.
template <class Derived, class Interface, int kCalibrationType>
class C0C1ConstantsBase : public FunctionalConstantsBase<Derived, Interface, kCalibrationType> {
 public:
  KORA_CONSTANT(double, C0, c0_);
  KORA_CONSTANT(double, C1, c1_);

 protected:
  C0C1ConstantsBase(double c0, double c1, int calibMode)
      : FunctionalConstantsBase<Derived, Interface, kCalibrationType>(calibMode),
        c0_(c0),
        c1_(c1) {}

  bool C0C1Equal(const Interface& o) const { return o.GetC0() == c0_ && o.GetC1() == c1_; }

  double c0_;
  double c1_;
};

// c0, c1 and c2 of the time-of-flight families, with a1 = 1e12 / (c1 * c1).
template <class Derived, class Interface, int kCalibrationType>
class TofConstantsBase : public C0C1ConstantsBase<Derived, Interface, kCalibrationType> {
 public:
  KORA_CONSTANT(double, C2, c2_);

  // The slope term of every TOF law. a1 is 1e12 / (c1 * c1) wherever the
  // slope term is meant: here, in GetA1FromStoredC1, in the polynomials of
  // the range functions (whose slope is sqrt(a1)) and in temperature
  // compensation, which divides a1 and not c1. Only the table conversions
  // ConvertC1ToA1 / ConvertA1ToC1 of CalibrationTOFUtilities are the plain
  // 1e12 / x.
  double GetA1() const override { return slopeTermFromC1(this->c1_); }
  // Stores the c1 with 1e12 / (c1 * c1) == a1; c1 keeps its sign (positive
  // if it was 0.0). A negative a1 has no such c1 and gives NaN.
  void SetA1(const double& a1) override;
  double GetA1FromStoredC1() const override { return slopeTermFromC1(this->c1_); }

 protected:
  TofConstantsBase(double c0, double c1, double c2, int calibMode)
      : C0C1ConstantsBase<Derived, Interface, kCalibrationType>(c0, c1, calibMode), c2_(c2) {}

  bool TofFieldsEqual(const Interface& o) const { return this->C0C1Equal(o) && o.GetC2() == c2_; }

  double c2_;
};

// The c1 of sign `signOf` whose slope term is `a1`.
double c1FromSlopeTerm(double a1, double signOf);

template <class Derived, class Interface, int kCalibrationType>
void TofConstantsBase<Derived, Interface, kCalibrationType>::SetA1(const double& a1) {
  this->c1_ = c1FromSlopeTerm(a1, this->c1_);
}

}  // namespace detail
}  // namespace Constants
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_FUNCTIONAL_CONSTANTS_BASE_H_
