// The measurement mode a transformator was calibrated for: polarity,
// acquisition mode, scan mode and MS/MS level. Carried and cloned with a
// transformator; no conversion reads it.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_MEASUREMENT_MODE_INFO_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_MEASUREMENT_MODE_INFO_H_

#include <boost/shared_ptr.hpp>
#include <string>

#include "calibration_core/cloneable.h"

namespace lumo {
namespace pvxlegacy {

// The key under which a reference calibration is kept: its polarity.
class IRefCalibKey {
 public:
  virtual int GetRefCalibPolarity() const = 0;
  virtual ~IRefCalibKey() {}
};

}  // namespace pvxlegacy

namespace calibration {

class IMeasurementModeInfo;
typedef boost::shared_ptr<IMeasurementModeInfo> IMeasurementModeInfoPtr;

class IMeasurementModeInfo : public virtual ICloneable {
 public:
  virtual int GetPolarity() const = 0;
  virtual void SetPolarity(int polarity) = 0;
  virtual int GetAcquisitionMode() const = 0;
  virtual void SetAcquisitionMode(int mode) = 0;
  virtual int GetScanMode() const = 0;
  virtual void SetScanMode(int mode) = 0;
  virtual int GetMSMSLevel() const = 0;
  virtual void SetMSMSLevel(int level) = 0;
  virtual bool IsEqual(const IMeasurementModeInfoPtr& other) const = 0;
  virtual std::string Dump() const = 0;
};

namespace Transformation {

// Acquisition modes: 1 TOF linear, anything else TOF reflector.
// Scan modes: 0 MS, 1 MS-HiRes, 2 MSMS, 3 MSMS-HiRes.
class MeasurementModeInfo : public virtual IMeasurementModeInfo,
                            public virtual ICloneable,
                            public pvxlegacy::IRefCalibKey {
 public:
  // Note the order: acquisition mode first, polarity second.
  MeasurementModeInfo(int acquisitionMode, int polarity, int scanMode, int msmsLevel);

  ICloneablePtr Clone() const override;

  int GetPolarity() const override { return polarity_; }
  void SetPolarity(int polarity) override { polarity_ = polarity; }
  int GetAcquisitionMode() const override { return acquisitionMode_; }
  void SetAcquisitionMode(int mode) override { acquisitionMode_ = mode; }
  int GetScanMode() const override { return scanMode_; }
  void SetScanMode(int mode) override { scanMode_ = mode; }
  int GetMSMSLevel() const override { return msmsLevel_; }
  void SetMSMSLevel(int level) override { msmsLevel_ = level; }
  bool IsEqual(const IMeasurementModeInfoPtr& other) const override;
  std::string Dump() const override;

  int GetRefCalibPolarity() const override { return polarity_; }

 private:
  int polarity_;
  int acquisitionMode_;
  int scanMode_;
  int msmsLevel_;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_MEASUREMENT_MODE_INFO_H_
