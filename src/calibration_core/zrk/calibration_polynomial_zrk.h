// CalibrationPolynomialZRK: the stored record of a ZRK correction.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_ZRK_H_
#define KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_ZRK_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calibration_core/zrk/calibration_polynomial.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationPolynomialZRK final
    : public calibration::detail::ClonedAs<CalibrationPolynomialZRK, ICalibrationPolynomialZRK> {
 public:
  // The numbers in the order of the stored record: the coefficients (rising
  // powers, deltas from the identity), c2, c0, and the global mass range
  // [minMass, maxMass]. The correction is marked for use.
  CalibrationPolynomialZRK(const std::vector<double>& coefficients, double c2, double c0,
                           double minMass, double maxMass);

  std::int32_t GetOrder() const override { return Order; }
  std::vector<double> GetCoefficients() const override { return vCoeff; }
  std::pair<double, double> GetGlobalMassRange() const override {
    return std::make_pair(minMass, maxMass);
  }
  // The argument is the mass itself: the global mass range.
  std::pair<double, double> GetArgRange() const override { return GetGlobalMassRange(); }
  // 0.0: a ZRK correction belongs to no parent mass.
  double GetParentMass() const override { return 0.0; }
  double GetC0() const override { return c0; }
  double GetC2() const override { return c2; }
  bool GetUse() const override { return bUse; }

  // Every number equal within 6.661338147750939e-16 (three machine epsilons)
  // times the larger magnitude; the order, the coefficient count and the use
  // flag exactly equal. A NaN anywhere makes the two unequal.
  bool operator==(const CalibrationPolynomialZRK& other) const;
  bool operator!=(const CalibrationPolynomialZRK& other) const { return !(*this == other); }
  // operator== for another CalibrationPolynomialZRK, false for any other kind.
  bool IsEqual(const ICalibrationPolynomial& other) const override;

  std::string Dump() const override;

 private:
  std::int32_t Order;
  std::vector<double> vCoeff;
  double c2;
  double c0;
  double minMass;
  double maxMass;
  bool bUse;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_ZRK_CALIBRATION_POLYNOMIAL_ZRK_H_
