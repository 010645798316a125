// CalibrationTOFUtilities: the main constants of a TOF1 or TOF2 model read
// and written through the model's functional constants.
//
// Thread-safety: stateless; the Set operations change the model and must
// not overlap its use.
#ifndef KORA_CALIBRATION_CORE_TOF_CALIBRATION_TOF_UTILITIES_H_
#define KORA_CALIBRATION_CORE_TOF_CALIBRATION_TOF_UTILITIES_H_

#include "calibration_core/transformation/calibration_transformator.h"

namespace lumo {
namespace calibration {

class ICalibrationTOFUtilities {
 public:
  virtual ~ICalibrationTOFUtilities() {}
  // 1e12 / c1.
  virtual double ConvertC1ToA1(double c1) const = 0;
  // 1e12 / a1: the map is its own inverse.
  virtual double ConvertA1ToC1(double a1) const = 0;
  // c0, c1, c2 of a model with TOF1 constants (c1 as stored).
  virtual void GetMainCalibConstants(ICalibrationTransformatorPtr transformer, double& c0,
                                     double& c1, double& c2) const = 0;
  // c0, c1, c2, c3, dm of a model with TOF2 constants.
  virtual void GetMainCalibConstants(ICalibrationTransformatorPtr transformer, double& c0,
                                     double& c1, double& c2, double& c3, double& dm) const = 0;
  // Writes c0, c1, c2 into a clone of the model's TOF1 constants and hands
  // it back with SetFunctionalConstants.
  virtual void SetMainCalibConstants(ICalibrationTransformatorPtr transformer, double c0, double c1,
                                     double c2) const = 0;
  virtual void SetMainCalibConstants(ICalibrationTransformatorPtr transformer, double c0, double c1,
                                     double c2, double c3, double dm) const = 0;
};

// All four Get/Set operations throw std::invalid_argument when the model's
// functional constants are not of the family they need.
class CalibrationTOFUtilities : public ICalibrationTOFUtilities {
 public:
  double ConvertC1ToA1(double c1) const override;
  double ConvertA1ToC1(double a1) const override;
  void GetMainCalibConstants(ICalibrationTransformatorPtr transformer, double& c0, double& c1,
                             double& c2) const override;
  void GetMainCalibConstants(ICalibrationTransformatorPtr transformer, double& c0, double& c1,
                             double& c2, double& c3, double& dm) const override;
  void SetMainCalibConstants(ICalibrationTransformatorPtr transformer, double c0, double c1,
                             double c2) const override;
  void SetMainCalibConstants(ICalibrationTransformatorPtr transformer, double c0, double c1,
                             double c2, double c3, double dm) const override;
};

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TOF_CALIBRATION_TOF_UTILITIES_H_
