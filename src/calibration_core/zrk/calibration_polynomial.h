// The interfaces of the correction polynomials that a model may carry on
// top of its own law: ICalibrationPolynomial, and ICalibrationPolynomialZRK
// for the ZRK precision correction of the mass.
//
// Objects are held by boost::shared_ptr and copied with Clone(); they are
// plain values, thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_H_
#define KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calibration_core/cloneable.h"

namespace lumo {
namespace calibration {

class ICalibrationPolynomial : public virtual ICloneable {
 public:
  // The number of coefficients less one (-1 without coefficients).
  virtual std::int32_t GetOrder() const = 0;
  // Coefficients of rising powers.
  virtual std::vector<double> GetCoefficients() const = 0;
  // The mass interval [first, second] on which the polynomial was fitted.
  virtual std::pair<double, double> GetGlobalMassRange() const = 0;
  // The interval of the polynomial's argument.
  virtual std::pair<double, double> GetArgRange() const = 0;
  // The parent mass the polynomial belongs to; 0.0 where it belongs to none.
  virtual double GetParentMass() const = 0;
  // Same kind of polynomial with equal fields (the kind defines "equal").
  virtual bool IsEqual(const ICalibrationPolynomial& other) const = 0;
  // Human-readable text, several lines.
  virtual std::string Dump() const = 0;
};
typedef boost::shared_ptr<ICalibrationPolynomial> ICalibrationPolynomialPtr;

// The ZRK correction of the mass: its coefficients are deltas from the
// identity, valid on the global mass range. c0 and c2 are the terms of the
// law it was fitted over; they are kept and reported, and enter no
// conversion.
class ICalibrationPolynomialZRK : public virtual ICalibrationPolynomial {
 public:
  virtual double GetC0() const = 0;
  virtual double GetC2() const = 0;
  // Whether the stored record asks for the correction to be used.
  virtual bool GetUse() const = 0;
};
typedef boost::shared_ptr<ICalibrationPolynomialZRK> ICalibrationPolynomialZRKPtr;

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_H_
