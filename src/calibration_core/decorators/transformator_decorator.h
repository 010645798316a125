// TransformatorDecorator: the common base of the classes that wrap another
// transformator (the bounds checkers and the ZRK correction). It answers the
// whole ICalibrationTransformator by forwarding to the wrapped object; a
// concrete decorator overrides only the operations it changes, plus Clone,
// IsEqual and DumpData.
//
//   TransformatorInterface  ICalibrationTransformator or an interface derived
//                           from it
//   DecoratorInterface      ICalibrationTransformatorDecorator or an
//                           interface derived from it
//
// Rules kept here for every decorator:
//   1. The wrapped object is a clone taken on the way in; it is never empty.
//   2. usableMassRange is not forwarded: it throws as for a model that cannot
//      answer it, whatever the wrapped model could say.
//   3. The width conversions run on this object's own (virtual) scalars, so
//      what a decorator changes takes part in them.
//
// Thread-safety: const operations are thread-safe when the wrapped object's
// are; the setters are thread-compatible and must not overlap any other call.
#ifndef KORA_CALIBRATION_CORE_DECORATORS_TRANSFORMATOR_DECORATOR_H_
#define KORA_CALIBRATION_CORE_DECORATORS_TRANSFORMATOR_DECORATOR_H_

#include <cassert>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "calibration_core/decorators/calibration_transformator_decorator.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "calibration_core/transformation/policy_errors.h"
#include "calibration_core/transformation/width_conversions.h"

namespace lumo {
namespace calibration {
namespace Transformation {

template <class TransformatorInterface, class DecoratorInterface>
class TransformatorDecorator : public TransformatorInterface, public DecoratorInterface {
  static_assert(std::is_base_of<ICalibrationTransformator, TransformatorInterface>::value,
                "TransformatorInterface must derive from ICalibrationTransformator");
  static_assert(std::is_base_of<ICalibrationTransformatorDecorator, DecoratorInterface>::value,
                "DecoratorInterface must derive from ICalibrationTransformatorDecorator");

 public:
  // Wraps a clone of `base`. REQUIRES: `base` is not empty.
  explicit TransformatorDecorator(const ICalibrationTransformatorPtr& base) : base_(cloneAs(base)) {
    assert(base_);
  }

  // ICalibrationTransformatorDecorator.
  ICalibrationTransformatorPtr GetBaseTransformator() const override { return base_; }
  void SetBaseTransformator(const ICalibrationTransformatorPtr& base) override {
    ICalibrationTransformatorPtr copy = cloneAs(base);
    assert(copy);
    base_.swap(copy);
  }
  std::int32_t GetBaseCalibMode() const override {
    const auto* inner = dynamic_cast<const ICalibrationTransformatorDecorator*>(base_.get());
    return inner ? inner->GetBaseCalibMode() : base_->GetCalibMode();
  }
  void SetBaseCalibMode(std::int32_t mode) override {
    auto* inner = dynamic_cast<ICalibrationTransformatorDecorator*>(base_.get());
    if (inner) {
      inner->SetBaseCalibMode(mode);
    } else {
      base_->SetCalibMode(mode);
    }
  }

  // Constants, offsets and modes: forwarded.
  std::int32_t GetCalibrationType() const override { return base_->GetCalibrationType(); }
  double GetIndexOffset() const override { return base_->GetIndexOffset(); }
  ICalibrationConstantsFunctionalPtr GetFunctionalConstants() const override {
    return base_->GetFunctionalConstants();
  }
  void SetFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) override {
    base_->SetFunctionalConstants(constants);
  }
  ICalibrationConstantsPhysicalPtr GetPhysicalConstants() const override {
    return base_->GetPhysicalConstants();
  }
  void SetPhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) override {
    base_->SetPhysicalConstants(constants);
  }
  IMeasurementModeInfoPtr GetMeasurementModeInfo() const override {
    return base_->GetMeasurementModeInfo();
  }
  void SetMeasurementModeInfo(const IMeasurementModeInfoPtr& info) override {
    base_->SetMeasurementModeInfo(info);
  }
  std::int32_t GetCalibMode() const override { return base_->GetCalibMode(); }
  void SetCalibMode(std::int32_t mode) override { base_->SetCalibMode(mode); }
  void SetIndexOffset(double indexOffset) override { base_->SetIndexOffset(indexOffset); }
  void AssimilateIndexOffset() override { base_->AssimilateIndexOffset(); }
  void SetRawRangeStart(double raw, double index) override { base_->SetRawRangeStart(raw, index); }

  // Conversions: forwarded unless a decorator overrides them.
  void MassToRaw(std::vector<double>& values) const override { base_->MassToRaw(values); }
  void MassToRaw(const std::vector<double>& masses, std::vector<double>& raws) const override {
    base_->MassToRaw(masses, raws);
  }
  double MassToRaw(double mass) const override { return base_->MassToRaw(mass); }
  void RawToMass(std::vector<double>& values) const override { base_->RawToMass(values); }
  void RawToMass(const std::vector<double>& raws, std::vector<double>& masses) const override {
    base_->RawToMass(raws, masses);
  }
  double RawToMass(double raw) const override { return base_->RawToMass(raw); }
  void MassToIndex(const std::vector<double>& masses,
                   std::vector<std::int32_t>& indexes) const override {
    base_->MassToIndex(masses, indexes);
  }
  std::int32_t MassToIndex(double mass) const override { return base_->MassToIndex(mass); }
  void MassToDIndex(std::vector<double>& values) const override { base_->MassToDIndex(values); }
  void MassToDIndex(const std::vector<double>& masses,
                    std::vector<double>& dindexes) const override {
    base_->MassToDIndex(masses, dindexes);
  }
  double MassToDIndex(double mass) const override { return base_->MassToDIndex(mass); }
  void DIndexToMass(std::vector<double>& values) const override { base_->DIndexToMass(values); }
  void DIndexToMass(const std::vector<double>& dindexes,
                    std::vector<double>& masses) const override {
    base_->DIndexToMass(dindexes, masses);
  }
  double DIndexToMass(double dindex) const override { return base_->DIndexToMass(dindex); }
  void IndexToMass(std::int32_t first, std::int32_t last,
                   std::vector<double>& masses) const override {
    base_->IndexToMass(first, last, masses);
  }
  void IndexToMass(const std::vector<std::int32_t>& indexes,
                   std::vector<double>& masses) const override {
    base_->IndexToMass(indexes, masses);
  }
  double IndexToMass(std::int32_t index) const override { return base_->IndexToMass(index); }
  void IndexToRaw(const std::vector<std::int32_t>& indexes,
                  std::vector<double>& raws) const override {
    base_->IndexToRaw(indexes, raws);
  }
  double IndexToRaw(std::int32_t index) const override { return base_->IndexToRaw(index); }
  void DIndexToRaw(std::vector<double>& values) const override { base_->DIndexToRaw(values); }
  void DIndexToRaw(const std::vector<double>& dindexes, std::vector<double>& raws) const override {
    base_->DIndexToRaw(dindexes, raws);
  }
  double DIndexToRaw(double dindex) const override { return base_->DIndexToRaw(dindex); }
  void RawToIndex(const std::vector<double>& raws,
                  std::vector<std::int32_t>& indexes) const override {
    base_->RawToIndex(raws, indexes);
  }
  std::int32_t RawToIndex(double raw) const override { return base_->RawToIndex(raw); }
  void RawToDIndex(std::vector<double>& values) const override { base_->RawToDIndex(values); }
  void RawToDIndex(const std::vector<double>& raws, std::vector<double>& dindexes) const override {
    base_->RawToDIndex(raws, dindexes);
  }
  double RawToDIndex(double raw) const override { return base_->RawToDIndex(raw); }

  double IndexWidthToMassWidth(double mass, double indexWidth) const override {
    return detail::indexWidthToMassWidth(*this, mass, indexWidth);
  }
  double MassWidthToIndexWidth(double mass, double massWidth) const override {
    return detail::massWidthToIndexWidth(*this, mass, massWidth);
  }

  std::pair<double, double> monotonicMassRange(double m0) const override {
    return base_->monotonicMassRange(m0);
  }
  // Throws std::runtime_error: see rule 2.
  std::pair<double, double> usableMassRange(double, double) const override {
    throwRangeNotImplemented("usableMassRange");
  }

 protected:
  // The wrapped object; never empty.
  const ICalibrationTransformatorPtr& base() const { return base_; }

 private:
  ICalibrationTransformatorPtr base_;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_DECORATORS_TRANSFORMATOR_DECORATOR_H_
