// The TOF2 cubic model: t = c0 + sqrt(a1) w + c2 w^2 + c3 w^3 with
// w = sqrt(m + dm). Mass to time is the polynomial; time to mass is the fast
// refined estimate of RMCubic on the hot path. The range functions use an
// exact inverse through polynomial roots and answer where the fast inverse
// can be trusted.
//
// Thread-safety: as every Transformator (const operations thread-safe); the
// range functions read the constants through clones and may run on any
// thread.
#ifndef KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_CUBIC_H_
#define KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_CUBIC_H_

#include <utility>

#include "calibration_core/tof2/rm_cubic.h"
#include "calibration_core/transformation/digitizer_line_model.h"
#include "logging/logger.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class CalibrationTransformatorTOF2Cubic final
    : public detail::DigitizerLineModel<CalibrationTransformatorTOF2Cubic,
                                        RMShift<RMCubic<SquareRoot>>, 3> {
  KORA_MODEL_NAME_AND_CONSTRUCTORS(CalibrationTransformatorTOF2Cubic, DigitizerLineModel);

  // The rising range of the cubic in w around sqrt(m0 + dm), as masses.
  // Throws std::runtime_error for m0 + dm < 0.
  std::pair<double, double> monotonicMassRange(double m0) const override;

  // The mass range around m0 in which the fast RawToMass is trusted: inside
  // the rising ranges of both the cubic and its quadratic part, shrunk by
  // 1.0 at each end, and, unless maxRoundTripError is 0.0, cut at the upper
  // end where |RawToMass(MassToRaw(m)) - m| reaches maxRoundTripError.
  // (0.0, 0.0) when the quadratic part is useless there (logged as WARN);
  // equal bounds when the range is empty or no wider than 2.0.
  // Throws std::runtime_error for m0 + dm < 0 and when the polynomial has
  // fewer than three leading non-zero coefficients.
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override;

 private:
  friend class CalibrationTransformatorTOF2CubicPeer;

  // The mass of time t by the roots of the cubic: the first real root whose
  // mass lies in [minMass, maxMass]; without one (rounding at the bounds),
  // the bound whose time is nearer by the midpoint rule.
  double exactRawToMass(double t, double minMass, double maxMass) const;
  // The rising range of the quadratic part intersected with the exact one.
  std::pair<double, double> approximateMonotonicMassRange(double m0) const;
  // The times of `massRange` on both the quadratic part and the cubic,
  // intersected.
  std::pair<double, double> usableTimeRange(const std::pair<double, double>& massRange) const;
  // The time of mass m on the quadratic part alone.
  double quadraticMassToTime(double m) const;

  logging::Logger logger_ =
      logging::Logger::getLogger("lumo.calibration_core.CalibrationTransformatorTOF2Cubic");
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF2_CALIBRATION_TRANSFORMATOR_TOF2_CUBIC_H_
