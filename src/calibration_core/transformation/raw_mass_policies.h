// Raw-to-mass policies. A raw-to-mass policy provides:
//   double RawToMass(double raw) const
//   double MassToRaw(double mass) const
//   void   UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr&)
// Its numbers are copies taken from the functional constants in
// UpdateFunctionalConstants; the conversions read nothing else and allocate
// nothing. All arithmetic is double, in the order written.
//
// Here: the tags SquareRoot and NoSquareRoot (is the polynomial's variable
// the square root of the mass, or the mass itself), RMLinear<Tag>,
// RMQuadratic<Tag>, and the adaptors RMShift, RMInverse and RMReciprocal.
// The cubic policy lives with the TOF2 cubic model, the tilted quadratic one
// with the FTMS models.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_MASS_POLICIES_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_MASS_POLICIES_H_

#include <cmath>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/transformation/computation_cast.h"
#include "calibration_core/transformation/policy_errors.h"
#include "calibration_core/transformation/signed_math.h"

namespace lumo {
namespace calibration {
namespace Transformation {

struct SquareRoot {};
struct NoSquareRoot {};

namespace detail {

// Steps of UpdateFunctionalConstants that several policies share.

// c0 and the slope term a1 of the linear computation interface. Throws
// std::invalid_argument (the RMLinear text) when `constants` do not answer it.
inline void readLinearLaw(const ICalibrationConstantsFunctionalPtr& constants, double& c0,
                          double& a1) {
  const ICalibrationConstantsFunctionalComputationLinearPtr linear =
      computationOf<ICalibrationConstantsFunctionalComputationLinear>(
          constants, "RMLinear", "ICalibrationConstantsFunctionalComputationLinear");
  c0 = linear->GetC0();
  a1 = linear->GetA1();
}

// The numbers of the stable root of a square-root law with slope term a1:
// sign of a1, b = signedSqrt(a1) and D0 = a1 itself (not b * b).
inline void squareRootLawRoot(double a1, double& sign, double& b, double& D0) {
  sign = a1 < 0 ? -1.0 : 1.0;
  b = signedSqrt(a1);
  D0 = a1;
}

}  // namespace detail

template <class Tag>
class RMLinear;

// t = c0 + signedSqrt(a1 * m): the first-degree TOF law; closed both ways.
template <>
class RMLinear<SquareRoot> {
 public:
  RMLinear() : c0(0.0), a1(1.0) {}

  double MassToRaw(double mass) const {
    const double u = a1 * mass;
    return c0 + signedSqrt(u);
  }
  double RawToMass(double raw) const {
    const double x = raw - c0;
    return signedSquare(x) / a1;
  }
  // Throws std::invalid_argument when `constants` is not
  // ICalibrationConstantsFunctionalComputationLinear.
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    detail::readLinearLaw(constants, c0, a1);
  }

  double c0;
  double a1;
};

// y = A * x + c0 in the variable itself; closed both ways.
template <>
class RMLinear<NoSquareRoot> {
 public:
  RMLinear() : c0(0.0), A(1.0) {}

  double MassToRaw(double mass) const { return A * mass + c0; }
  double RawToMass(double raw) const { return (raw - c0) / A; }
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    detail::readLinearLaw(constants, c0, A);
  }

  double c0;
  double A;
};

template <class Tag>
class RMQuadratic;

namespace detail {

// c0, a1 and c2 of the quadratic computation interface, as RMQuadratic reads
// them. Throws std::invalid_argument (the RMQuadratic text) when `constants`
// do not answer it.
inline ICalibrationConstantsFunctionalComputationQuadraticPtr readQuadratic(
    const ICalibrationConstantsFunctionalPtr& constants, double& c0, double& a1, double& c2) {
  return readQuadraticLaw<ICalibrationConstantsFunctionalComputationQuadratic>(
      constants, "RMQuadratic", "ICalibrationConstantsFunctionalComputationQuadratic", c0, a1, c2);
}

}  // namespace detail

// t = c2 * m + signedSqrt(a1 * m) + c0. RawToMass solves
// c2 w^2 + b w + (c0 - t) = 0 for w by the numerically stable root and
// continues it below c0 by the mirror image (c2 negated there), so the law is
// odd around (0, c0). Throws std::logic_error (kComplexSolutionText) where
// the discriminant is negative.
template <>
class RMQuadratic<SquareRoot> {
 public:
  RMQuadratic() : c0(0.0), a1(1.0), c2(0.0), a1FromStoredC1(0.0), sign(1.0), b(1.0), D0(1.0) {}

  double MassToRaw(double mass) const {
    const double r = signedSqrt(a1 * mass);
    return (c2 * mass + r) + c0;
  }
  double RawToMass(double raw) const {
    const double n = c0 - raw;
    const double d = c0 > raw ? D0 - (raw - c0) * 4.0 * c2 : D0 - n * 4.0 * c2;
    if (d < 0) throwComplexSolution();
    const double q = (std::sqrt(d) * sign + b) * -0.5;
    const double w = n / q;
    return signedSquare(w);
  }
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    a1FromStoredC1 = detail::readQuadratic(constants, c0, a1, c2)->GetA1FromStoredC1();
    detail::squareRootLawRoot(a1, sign, b, D0);
  }

  double c0;
  double a1;
  double c2;
  double a1FromStoredC1;  // read by no conversion
  double sign;
  double b;
  double D0;  // a1 itself, not b * b
};

// y = ((x * x) * c2 + c1 * x) + c0 in the variable itself. RawToMass solves
// for x by the numerically stable root; below c0 it solves the parabola with
// c2 negated, so the solved direction is odd around (c0, 0) while
// MassToRaw stays the plain parabola. With c2 = 0 it is (y - c0) / c1.
// Throws std::logic_error (kComplexSolutionText) where the discriminant is
// negative, i.e. for c2 < 0 far enough from c0 on either side.
template <>
class RMQuadratic<NoSquareRoot> {
 public:
  RMQuadratic() : c0(0.0), c1(1.0), c2(0.0), a1FromStoredC1(0.0), sign(1.0), b(1.0), D0(1.0) {}

  double MassToRaw(double mass) const { return ((mass * mass) * c2 + c1 * mass) + c0; }
  double RawToMass(double raw) const {
    const double n = c0 - raw;
    const double d = c0 > raw ? D0 - (raw - c0) * 4.0 * c2 : D0 - n * 4.0 * c2;
    if (d < 0) throwComplexSolution();
    return n / ((std::sqrt(d) * sign + b) * -0.5);
  }
  // Throws std::invalid_argument when `constants` is not
  // ICalibrationConstantsFunctionalComputationQuadratic.
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    a1FromStoredC1 = detail::readQuadratic(constants, c0, c1, c2)->GetA1FromStoredC1();
    sign = c1 < 0 ? -1.0 : 1.0;
    b = c1;
    D0 = c1 * c1;
  }

  double c0;
  double c1;
  double c2;
  double a1FromStoredC1;  // read by no conversion
  double sign;
  double b;
  double D0;
};

// Adds the mass shift dm of ICalibrationConstantsFunctionalComputationShift:
// MassToRaw(m) = P.MassToRaw(m + dm), RawToMass(t) = P.RawToMass(t) - dm.
template <class P>
class RMShift {
 public:
  RMShift() : dm(0.0) {}

  double MassToRaw(double mass) const { return policy.MassToRaw(mass + dm); }
  double RawToMass(double raw) const { return policy.RawToMass(raw) - dm; }
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    const ICalibrationConstantsFunctionalComputationShiftPtr shift =
        computationOf<ICalibrationConstantsFunctionalComputationShift>(
            constants, "RMShift", "ICalibrationConstantsFunctionalComputationShift");
    P updated = policy;
    updated.UpdateFunctionalConstants(constants);
    dm = shift->GetDm();
    policy = updated;
  }

  double dm;
  P policy;
};

// Swaps the directions of P: RawToMass(t) = P.MassToRaw(t),
// MassToRaw(m) = P.RawToMass(m).
template <class P>
class RMInverse {
 public:
  double MassToRaw(double mass) const { return policy.RawToMass(mass); }
  double RawToMass(double raw) const { return policy.MassToRaw(raw); }
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    policy.UpdateFunctionalConstants(constants);
  }

  P policy;
};

// The mass is the reciprocal of P's variable:
// MassToRaw(m) = P.MassToRaw(1.0 / m), RawToMass(t) = 1.0 / P.RawToMass(t).
// A mass or a solved variable of zero gives an infinity, not a failure.
template <class P>
class RMReciprocal {
 public:
  double MassToRaw(double mass) const { return policy.MassToRaw(1.0 / mass); }
  double RawToMass(double raw) const { return 1.0 / policy.RawToMass(raw); }
  void UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) {
    policy.UpdateFunctionalConstants(constants);
  }

  P policy;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_RAW_MASS_POLICIES_H_
