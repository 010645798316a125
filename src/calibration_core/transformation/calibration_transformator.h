// ICalibrationTransformator: the one interface of every mass calibration
// model. A model converts between four axes:
//   mass    double  the m/z value the caller sees
//   raw     double  the axis on which the model's law is stated (the flight
//                   time for the TOF families)
//   index   int32   a whole digitizer sample position
//   dindex  double  the same axis as index, with a fractional part
//
// Objects are held by boost::shared_ptr (ICalibrationTransformatorPtr) and
// copied with Clone(). Constants go in and come out as clones, so no caller
// can change a model behind its back.
//
// Thread-safety: every const operation (all conversions, the getters and
// the range functions) may run on any number of threads at once; the
// setters must not run while the object is in use.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_CALIBRATION_TRANSFORMATOR_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_CALIBRATION_TRANSFORMATOR_H_

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calibration_core/cloneable.h"
#include "calibration_core/constants/functional_constants.h"
#include "calibration_core/constants/measurement_mode_info.h"
#include "calibration_core/constants/physical_constants.h"

namespace lumo {
namespace calibration {

class ICalibrationTransformator;
typedef boost::shared_ptr<ICalibrationTransformator> ICalibrationTransformatorPtr;
typedef boost::shared_ptr<const ICalibrationTransformator> ICalibrationTransformatorConstPtr;

class ICalibrationTransformator : public virtual ICloneable,
                                  public boost::enable_shared_from_this<ICalibrationTransformator> {
 public:
  // The family number of the functional constants (see CalibrationType).
  virtual std::int32_t GetCalibrationType() const = 0;
  virtual double GetIndexOffset() const = 0;
  // Fresh clones; empty if none is set.
  virtual ICalibrationConstantsFunctionalPtr GetFunctionalConstants() const = 0;
  // An empty argument is ignored. Otherwise the model takes a clone.
  virtual void SetFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) = 0;
  virtual ICalibrationConstantsPhysicalPtr GetPhysicalConstants() const = 0;
  // An empty argument is ignored. Otherwise the model takes a clone.
  virtual void SetPhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) = 0;
  virtual IMeasurementModeInfoPtr GetMeasurementModeInfo() const = 0;
  // The model takes a clone; an empty argument clears the info.
  virtual void SetMeasurementModeInfo(const IMeasurementModeInfoPtr& info) = 0;
  virtual std::int32_t GetCalibMode() const = 0;
  virtual void SetCalibMode(std::int32_t mode) = 0;
  // Same concrete model with equal functional and equal physical constants;
  // the index offset and the measurement mode info do not take part.
  virtual bool IsEqual(ICalibrationTransformatorConstPtr other) const = 0;
  // Shifts every index conversion by `indexOffset` samples.
  virtual void SetIndexOffset(double indexOffset) = 0;
  // Folds the index offset into the constants: every conversion stays as it
  // was and the offset becomes 0.0.
  virtual void AssimilateIndexOffset() = 0;
  // Moves the start of the raw axis: afterwards dindex `index` (without
  // offset) maps to `raw`.
  virtual void SetRawRangeStart(double raw, double index) = 0;

  // Conversions. A batch form resizes its output to the input's size; see
  // Functors::BatchTransformation for the failure rules of the batches.
  virtual void MassToRaw(std::vector<double>& values) const = 0;
  virtual void MassToRaw(const std::vector<double>& masses, std::vector<double>& raws) const = 0;
  virtual double MassToRaw(double mass) const = 0;
  virtual void RawToMass(std::vector<double>& values) const = 0;
  virtual void RawToMass(const std::vector<double>& raws, std::vector<double>& masses) const = 0;
  virtual double RawToMass(double raw) const = 0;
  virtual void MassToIndex(const std::vector<double>& masses,
                           std::vector<std::int32_t>& indexes) const = 0;
  virtual std::int32_t MassToIndex(double mass) const = 0;
  virtual void MassToDIndex(std::vector<double>& values) const = 0;
  virtual void MassToDIndex(const std::vector<double>& masses,
                            std::vector<double>& dindexes) const = 0;
  virtual double MassToDIndex(double mass) const = 0;
  virtual void DIndexToMass(std::vector<double>& values) const = 0;
  virtual void DIndexToMass(const std::vector<double>& dindexes,
                            std::vector<double>& masses) const = 0;
  virtual double DIndexToMass(double dindex) const = 0;
  // The masses of the indexes first..last, both included.
  virtual void IndexToMass(std::int32_t first, std::int32_t last,
                           std::vector<double>& masses) const = 0;
  virtual void IndexToMass(const std::vector<std::int32_t>& indexes,
                           std::vector<double>& masses) const = 0;
  virtual double IndexToMass(std::int32_t index) const = 0;
  // The mass width of `indexWidth` samples centred on `mass`; an interval
  // reaching below index 0 is moved up to start there.
  virtual double IndexWidthToMassWidth(double mass, double indexWidth) const = 0;
  // The index width of `massWidth` centred on `mass`; an interval reaching
  // below the mass of index 0 is moved up to start there.
  virtual double MassWidthToIndexWidth(double mass, double massWidth) const = 0;
  virtual void IndexToRaw(const std::vector<std::int32_t>& indexes,
                          std::vector<double>& raws) const = 0;
  virtual double IndexToRaw(std::int32_t index) const = 0;
  virtual void DIndexToRaw(std::vector<double>& values) const = 0;
  virtual void DIndexToRaw(const std::vector<double>& dindexes,
                           std::vector<double>& raws) const = 0;
  virtual double DIndexToRaw(double dindex) const = 0;
  virtual void RawToIndex(const std::vector<double>& raws,
                          std::vector<std::int32_t>& indexes) const = 0;
  virtual std::int32_t RawToIndex(double raw) const = 0;
  virtual void RawToDIndex(std::vector<double>& values) const = 0;
  virtual void RawToDIndex(const std::vector<double>& raws,
                           std::vector<double>& dindexes) const = 0;
  virtual double RawToDIndex(double raw) const = 0;

  // The widest mass interval around m0 on which RawToMass rises.
  virtual std::pair<double, double> monotonicMassRange(double m0) const = 0;
  // The part of monotonicMassRange(m0) on which the fast inverse keeps the
  // round-trip error mass -> raw -> mass within maxRoundTripError (0.0: no
  // restriction by the error).
  virtual std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const = 0;

  // Human-readable text of the object, several lines.
  virtual std::string DumpData() const = 0;
};

// Answered by every model that has a stored form.
class ICalibrationSerializationTransformators {
 public:
  // The version tag of the stored form.
  virtual std::string GetSerializationVersion() const = 0;
  virtual ~ICalibrationSerializationTransformators() {}
};

namespace Transformation {

// The polynomial degree of a model: 1 linear, 2 quadratic, 3 cubic.
class TransformatorFunctionalDegree {
 public:
  explicit TransformatorFunctionalDegree(std::int32_t degree) : degree_(degree) {}
  virtual ~TransformatorFunctionalDegree() {}
  std::int32_t GetFunctionalDegree() const { return degree_; }

 private:
  std::int32_t degree_;
};

namespace detail {

// A degree fixed by the model's class, so that the model can inherit the
// constructors of its Transformator.
template <std::int32_t kDegree>
class FixedFunctionalDegree : public TransformatorFunctionalDegree {
 public:
  FixedFunctionalDegree() : TransformatorFunctionalDegree(kDegree) {}
};

}  // namespace detail

}  // namespace Transformation

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_CALIBRATION_TRANSFORMATOR_H_
