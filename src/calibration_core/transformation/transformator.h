// Transformator: the class template that builds a complete
// ICalibrationTransformator from three compile-time policies.
//
//   Derived                 the concrete model (CRTP). It must be
//                           constructible from (functional constants,
//                           physical constants, index offset, measurement
//                           mode info) and provide
//                           static const char* ClassName().
//   RawMassPolicy           raw <-> mass, see raw_mass_policies.h
//   RawIndexPolicy          raw <-> index, see raw_index_policies.h
//   ConstantsSettingPolicy  see constants_setting_policies.h
//
// Invariants:
//   1. The constants members are this object's private clones; nobody else
//      holds them.
//   2. The policies' numbers are derived from those clones by the setters
//      below and only there; conversions read the policies alone.
//   3. A setter that fails leaves the conversions as they were.
//
// Thread-safety: const operations are thread-safe; the setters are
// thread-compatible and must not overlap any other call.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_TRANSFORMATOR_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_TRANSFORMATOR_H_

#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "calibration_core/transformation/calibration_transformator.h"
#include "calibration_core/transformation/functors.h"
#include "calibration_core/transformation/policy_errors.h"
#include "calibration_core/transformation/width_conversions.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace detail {

template <class P, class = void>
struct IsRawMassPolicy : std::false_type {};
template <class P>
struct IsRawMassPolicy<
    P, std::void_t<decltype(static_cast<double>(std::declval<const P&>().RawToMass(0.0))),
                   decltype(static_cast<double>(std::declval<const P&>().MassToRaw(0.0))),
                   decltype(std::declval<P&>().UpdateFunctionalConstants(
                       std::declval<const ICalibrationConstantsFunctionalPtr&>()))>>
    : std::true_type {};

template <class P, class = void>
struct IsRawIndexPolicy : std::false_type {};
template <class P>
struct IsRawIndexPolicy<
    P, std::void_t<decltype(static_cast<double>(std::declval<const P&>().IndexToRaw(0))),
                   decltype(static_cast<double>(std::declval<const P&>().DIndexToRaw(0.0))),
                   decltype(static_cast<std::int32_t>(std::declval<const P&>().RawToIndex(0.0))),
                   decltype(static_cast<double>(std::declval<const P&>().RawToDIndex(0.0))),
                   decltype(static_cast<double>(std::declval<const P&>().GetIndexOffset())),
                   decltype(std::declval<P&>().SetIndexOffset(0.0)),
                   decltype(std::declval<P&>().UpdatePhysicalConstants(
                       std::declval<const ICalibrationConstantsPhysicalPtr&>()))>>
    : std::true_type {};

template <class P, class = void>
struct IsConstantsSettingPolicy : std::false_type {};
template <class P>
struct IsConstantsSettingPolicy<P, std::void_t<decltype(std::declval<const P&>().AdjustConstants(
                                       std::declval<const ICalibrationConstantsFunctionalPtr&>(),
                                       std::declval<const ICalibrationConstantsPhysicalPtr&>()))>>
    : std::true_type {};

}  // namespace detail

// Opens the public part of a model class `Name` derived from `Base`: the
// constructors of Base (they throw std::invalid_argument for constants of a
// wrong kind) and ClassName(), the name of the dump.
#define KORA_MODEL_NAME_AND_CONSTRUCTORS(Name, Base) \
 public:                                             \
  using Base::Base;                                  \
  static const char* ClassName() { return #Name; }

// The version tag of the stored form of the template's models.
extern const char* const kTransformatorSerializationVersion;

template <class Derived, class RawMassPolicy, class RawIndexPolicy, class ConstantsSettingPolicy>
class Transformator : public ICalibrationTransformator,
                      public ICalibrationSerializationTransformators {
  static_assert(detail::IsRawMassPolicy<RawMassPolicy>::value,
                "RawMassPolicy must provide double RawToMass(double) const, double "
                "MassToRaw(double) const and UpdateFunctionalConstants(const "
                "ICalibrationConstantsFunctionalPtr&)");
  static_assert(detail::IsRawIndexPolicy<RawIndexPolicy>::value,
                "RawIndexPolicy must provide IndexToRaw, DIndexToRaw, RawToIndex, RawToDIndex "
                "(const), GetIndexOffset, SetIndexOffset and UpdatePhysicalConstants");
  static_assert(detail::IsConstantsSettingPolicy<ConstantsSettingPolicy>::value,
                "ConstantsSettingPolicy must provide AdjustConstants(const "
                "ICalibrationConstantsFunctionalPtr&, const ICalibrationConstantsPhysicalPtr&) "
                "const");

 public:
  // Sets the functional constants, the physical constants and the info in
  // this order (empty constants are skipped), then the index offset.
  // Throws what the setters throw.
  // Models inherit this constructor (using Transformator::Transformator).
  Transformator(const ICalibrationConstantsFunctionalPtr& functionalConstants,
                const ICalibrationConstantsPhysicalPtr& physicalConstants, double indexOffset = 0.0,
                const IMeasurementModeInfoPtr& measurementModeInfo = IMeasurementModeInfoPtr()) {
    Transformator::SetFunctionalConstants(functionalConstants);
    Transformator::SetPhysicalConstants(physicalConstants);
    Transformator::SetMeasurementModeInfo(measurementModeInfo);
    rawIndex_.SetIndexOffset(indexOffset);
  }

  // A new Derived built through the public getters.
  ICloneablePtr Clone() const override {
    const ICalibrationConstantsFunctionalPtr functional = GetFunctionalConstants();
    const double indexOffset = GetIndexOffset();
    const ICalibrationConstantsPhysicalPtr physical = GetPhysicalConstants();
    const IMeasurementModeInfoPtr info = GetMeasurementModeInfo();
    return boost::make_shared<Derived>(functional, physical, indexOffset, info);
  }

  std::string GetSerializationVersion() const override {
    return kTransformatorSerializationVersion;
  }

  std::int32_t GetCalibrationType() const override {
    return functional_ ? functional_->GetCalibrationType() : -1;
  }
  double GetIndexOffset() const override { return rawIndex_.GetIndexOffset(); }

  ICalibrationConstantsFunctionalPtr GetFunctionalConstants() const override {
    return cloneAs(functional_);
  }
  void SetFunctionalConstants(const ICalibrationConstantsFunctionalPtr& constants) override {
    if (!constants) return;
    ICalibrationConstantsFunctionalPtr copy = cloneAs(constants);
    settings_.AdjustConstants(copy, physical_);
    RawMassPolicy updated = rawMass_;
    updated.UpdateFunctionalConstants(copy);
    functional_.swap(copy);
    rawMass_ = updated;
  }

  ICalibrationConstantsPhysicalPtr GetPhysicalConstants() const override {
    return cloneAs(physical_);
  }
  void SetPhysicalConstants(const ICalibrationConstantsPhysicalPtr& constants) override {
    if (!constants) return;
    ICalibrationConstantsPhysicalPtr copy = cloneAs(constants);
    settings_.AdjustConstants(functional_, copy);
    RawIndexPolicy updated = rawIndex_;
    updated.UpdatePhysicalConstants(copy);
    physical_.swap(copy);
    rawIndex_ = updated;
  }

  IMeasurementModeInfoPtr GetMeasurementModeInfo() const override { return cloneAs(info_); }
  void SetMeasurementModeInfo(const IMeasurementModeInfoPtr& info) override {
    IMeasurementModeInfoPtr copy = cloneAs(info);
    info_.swap(copy);
  }

  // -1 without functional constants.
  std::int32_t GetCalibMode() const override {
    return functional_ ? functional_->GetCalibMode() : -1;
  }
  // Ignored without functional constants.
  void SetCalibMode(std::int32_t mode) override {
    if (!functional_) return;
    ICalibrationConstantsFunctionalPtr copy = cloneAs(functional_);
    copy->SetCalibMode(mode);
    Transformator::SetFunctionalConstants(copy);
  }

  bool IsEqual(ICalibrationTransformatorConstPtr other) const override {
    if (!dynamic_cast<const Derived*>(other.get())) return false;
    const ICalibrationConstantsFunctionalPtr otherFunctional = other->GetFunctionalConstants();
    const ICalibrationConstantsFunctionalPtr functional = GetFunctionalConstants();
    const bool functionalEqual = otherFunctional && functional
                                     ? otherFunctional->IsEqual(functional)
                                     : !otherFunctional && !functional;
    const ICalibrationConstantsPhysicalPtr otherPhysical = other->GetPhysicalConstants();
    const ICalibrationConstantsPhysicalPtr physical = GetPhysicalConstants();
    const bool physicalEqual =
        otherPhysical && physical ? otherPhysical->IsEqual(physical) : !otherPhysical && !physical;
    return functionalEqual && physicalEqual;
  }

  void SetIndexOffset(double indexOffset) override { rawIndex_.SetIndexOffset(indexOffset); }

  void AssimilateIndexOffset() override {
    const double indexOffset = rawIndex_.GetIndexOffset();
    if (physical_) physical_->AssimilateIndexOffset(indexOffset);
    if (functional_) functional_->AssimilateIndexOffset(indexOffset);
    rawIndex_.SetIndexOffset(0.0);
    if (physical_) rawIndex_.UpdatePhysicalConstants(physical_);
  }

  // Ignored without physical constants.
  void SetRawRangeStart(double raw, double index) override {
    if (!physical_) return;
    physical_->SetRawRangeStart(raw, index);
    rawIndex_.UpdatePhysicalConstants(physical_);
  }

  // Scalar conversions: each one expression of the policies.
  double MassToRaw(double mass) const override { return rawMass_.MassToRaw(mass); }
  double RawToMass(double raw) const override { return rawMass_.RawToMass(raw); }
  std::int32_t MassToIndex(double mass) const override {
    return rawIndex_.RawToIndex(rawMass_.MassToRaw(mass));
  }
  double MassToDIndex(double mass) const override {
    return rawIndex_.RawToDIndex(rawMass_.MassToRaw(mass));
  }
  double DIndexToMass(double dindex) const override {
    return rawMass_.RawToMass(rawIndex_.DIndexToRaw(dindex));
  }
  double IndexToMass(std::int32_t index) const override {
    return rawMass_.RawToMass(rawIndex_.IndexToRaw(index));
  }
  double IndexToRaw(std::int32_t index) const override { return rawIndex_.IndexToRaw(index); }
  double DIndexToRaw(double dindex) const override { return rawIndex_.DIndexToRaw(dindex); }
  std::int32_t RawToIndex(double raw) const override { return rawIndex_.RawToIndex(raw); }
  double RawToDIndex(double raw) const override { return rawIndex_.RawToDIndex(raw); }

  // Batch conversions.
  void MassToRaw(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::MassRawTransformFunctor<Derived>(derived()), values);
  }
  void MassToRaw(const std::vector<double>& masses, std::vector<double>& raws) const override {
    Functors::BatchTransformation(Functors::MassRawTransformFunctor<Derived>(derived()), masses,
                                  raws);
  }
  void RawToMass(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::RawMassTransformFunctor<Derived>(derived()), values);
  }
  void RawToMass(const std::vector<double>& raws, std::vector<double>& masses) const override {
    Functors::BatchTransformation(Functors::RawMassTransformFunctor<Derived>(derived()), raws,
                                  masses);
  }
  void MassToIndex(const std::vector<double>& masses,
                   std::vector<std::int32_t>& indexes) const override {
    Functors::BatchTransformation(Functors::MassIndexTransformFunctor<Derived>(derived()), masses,
                                  indexes);
  }
  void MassToDIndex(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::MassDIndexTransformFunctor<Derived>(derived()), values);
  }
  void MassToDIndex(const std::vector<double>& masses,
                    std::vector<double>& dindexes) const override {
    Functors::BatchTransformation(Functors::MassDIndexTransformFunctor<Derived>(derived()), masses,
                                  dindexes);
  }
  void DIndexToMass(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::DIndexMassTransformFunctor<Derived>(derived()), values);
  }
  void DIndexToMass(const std::vector<double>& dindexes,
                    std::vector<double>& masses) const override {
    Functors::BatchTransformation(Functors::DIndexMassTransformFunctor<Derived>(derived()),
                                  dindexes, masses);
  }
  void IndexToMass(std::int32_t first, std::int32_t last,
                   std::vector<double>& masses) const override {
    Functors::RangeTransformation(Functors::IndexMassTransformFunctor<Derived>(derived()), first,
                                  last, masses);
  }
  void IndexToMass(const std::vector<std::int32_t>& indexes,
                   std::vector<double>& masses) const override {
    Functors::BatchTransformation(Functors::IndexMassTransformFunctor<Derived>(derived()), indexes,
                                  masses);
  }
  void IndexToRaw(const std::vector<std::int32_t>& indexes,
                  std::vector<double>& raws) const override {
    Functors::BatchTransformation(Functors::IndexRawTransformFunctor<Derived>(derived()), indexes,
                                  raws);
  }
  void DIndexToRaw(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::DIndexRawTransformFunctor<Derived>(derived()), values);
  }
  void DIndexToRaw(const std::vector<double>& dindexes, std::vector<double>& raws) const override {
    Functors::BatchTransformation(Functors::DIndexRawTransformFunctor<Derived>(derived()), dindexes,
                                  raws);
  }
  void RawToIndex(const std::vector<double>& raws,
                  std::vector<std::int32_t>& indexes) const override {
    Functors::BatchTransformation(Functors::RawIndexTransformFunctor<Derived>(derived()), raws,
                                  indexes);
  }
  void RawToDIndex(std::vector<double>& values) const override {
    Functors::BatchTransformation(Functors::RawDIndexTransformFunctor<Derived>(derived()), values);
  }
  void RawToDIndex(const std::vector<double>& raws, std::vector<double>& dindexes) const override {
    Functors::BatchTransformation(Functors::RawDIndexTransformFunctor<Derived>(derived()), raws,
                                  dindexes);
  }

  double IndexWidthToMassWidth(double mass, double indexWidth) const override {
    return detail::indexWidthToMassWidth(*this, mass, indexWidth);
  }
  double MassWidthToIndexWidth(double mass, double massWidth) const override {
    return detail::massWidthToIndexWidth(*this, mass, massWidth);
  }

  // Throw std::runtime_error unless the model overrides them.
  std::pair<double, double> monotonicMassRange(double m0) const override {
    throwRangeNotImplemented("monotonicMassRange");
  }
  std::pair<double, double> usableMassRange(double m0, double maxRoundTripError) const override {
    throwRangeNotImplemented("usableMassRange");
  }

  std::string DumpData() const override {
    std::ostringstream os;
    os << Derived::ClassName() << "[ " << GetSerializationVersion() << "\n";
    if (functional_) os << functional_->Dump() << "\n";
    if (physical_) os << physical_->Dump() << "\n";
    if (info_) os << info_->Dump() << "\n";
    os << "\tIndex offset[" << rawIndex_.GetIndexOffset() << "]\n";
    os << "]";
    return os.str();
  }

 protected:
  const RawMassPolicy& rawMassPolicy() const { return rawMass_; }
  const RawIndexPolicy& rawIndexPolicy() const { return rawIndex_; }

 private:
  const Derived* derived() const { return static_cast<const Derived*>(this); }

  ICalibrationConstantsFunctionalPtr functional_;
  ICalibrationConstantsPhysicalPtr physical_;
  IMeasurementModeInfoPtr info_;
  RawMassPolicy rawMass_;
  RawIndexPolicy rawIndex_;
  ConstantsSettingPolicy settings_;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_TRANSFORMATOR_H_
