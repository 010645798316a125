// The transformator factory: the right model for a pair of functional and
// physical constants. Within a family, a coefficient that is zero selects
// the simpler model: exact zero for the TOF families (-0.0 counts as zero),
// a threshold relative to the slope for the ion trap, the calibration mode
// for FTMS.
//
// One stateless factory, CalibrationTransformatorFactory, serves the whole
// process: transformatorFactory(). Thread-safe: any thread may call it. Every failure creates no
// object; the failures carry their location and stack trace.
#ifndef KORA_CALIBRATION_CORE_FACTORY_CALIBRATION_TRANSFORMATOR_FACTORY_H_
#define KORA_CALIBRATION_CORE_FACTORY_CALIBRATION_TRANSFORMATOR_FACTORY_H_

#include <vector>

#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/constants/physical_constants.h"
#include "calibration_core/transformation/calibration_transformator.h"

namespace lumo {
namespace calibration {
namespace Transformation {

class ICalibrationTransformatorFactory {
 public:
  virtual ~ICalibrationTransformatorFactory() {}

  // By the family of `functional`, tested in the order TOF2, TOF1, FTMS,
  // Halyard, Linear. Throws std::invalid_argument when `physical` is not of
  // the family's physical kind ("types differ") or no family matches ("type
  // unknown"), and what the family's operation throws.
  virtual ICalibrationTransformatorPtr createTransformator(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalPtr& physical) const = 0;
  // TOF1: c2 exactly 0.0 gives the linear model, else the quadratic one.
  virtual ICalibrationTransformatorPtr createTransformatorTof(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalTOFPtr& physical) const = 0;
  // TOF2: dm or c3 not exactly 0.0 gives the cubic model, else c2 not
  // exactly 0.0 the quadratic one, else the linear one.
  virtual ICalibrationTransformatorPtr createTransformatorTof2(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalTOFPtr& physical) const = 0;
  // Halyard: linear when A * 1e-9 >= |c2| (A the slope number), else
  // quadratic; so a negative slope always gives the quadratic model.
  virtual ICalibrationTransformatorPtr createTransformatorTrap(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalHalyardPtr& physical) const = 0;
  // FTMS by calibration mode: 0, 4 FTMS04; 1, 5 FTMS15; 2, 3, 6 and others
  // fail.
  virtual ICalibrationTransformatorPtr createTransformatorIcr(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalFTMSPtr& physical) const = 0;
  virtual ICalibrationTransformatorPtr createTransformatorLinear(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalLinearPtr& physical) const = 0;
  // The VEGA models are not part of this library: their polynomial is never
  // made, and both throw std::runtime_error ("can't create ...").
  virtual ICalibrationTransformatorPtr createTransformatorVega(
      const std::vector<double>& numbers) const = 0;
  virtual ICalibrationTransformatorPtr createTransformatorVega2(
      const std::vector<double>& numbers) const = 0;
  // A decorator of the same kind as `decorator` (raw bounds checker, index
  // bounds checker or ZRK correction, with its bounds, or its polynomial, use
  // flag and search width) around a clone of `transformator`. Throws
  // std::invalid_argument for any other kind of `decorator` and an empty
  // `transformator`.
  virtual ICalibrationTransformatorPtr createDecoratedTransformator(
      const ICalibrationTransformatorPtr& transformator,
      const ICalibrationTransformatorPtr& decorator) const = 0;
  // FTMS constants of `calibMode`: 0, 4 FTMS04; 1, 3, 5, 6 FTMS1356 (alpha
  // taken as 0.0 unless `withAlpha`). `version` is the version of the stored
  // form, read by no family yet. Throws std::invalid_argument for mode 2 and
  // std::runtime_error for any other.
  virtual ICalibrationConstantsFunctionalPtr createConstantsFunctionalIcr(
      int calibMode, int ftmsRawMode, int version, bool withAlpha, double alpha, double beta,
      double freqHigh) const = 0;
};

// The one factory of the process, a CalibrationTransformatorFactory.
const ICalibrationTransformatorFactory& transformatorFactory();

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_FACTORY_CALIBRATION_TRANSFORMATOR_FACTORY_H_
