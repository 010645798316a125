// The ZRK precision correction: a fine correction of the mass laid over any
// other transformator (the base). The base's mass becomes an intermediate;
// the caller sees the precise mass.
//
//   mass = f(precise mass)
//
// f is the polynomial inside the global mass range [minMass, maxMass] (its
// stored coefficients are deltas from the identity) and outside returns to
// the identity with a Gaussian of width parameter c:
//   f(x) = x + exp(-((x - b) * c * (x - b))) * (f(b) - b), b the nearer bound.
// c is chosen from the corrections at the two bounds so that f keeps rising,
// which makes the inverse unique.
//
// Conversions towards the mass axis (RawToMass, DIndexToMass, IndexToMass)
// run the base and then MassToPreciseMass; conversions from it (MassToRaw,
// MassToIndex, MassToDIndex) run PreciseMassToMass and then the base.
// Everything else is the base's, except that neither range function is
// answered (both throw as for a model that cannot).
//
// Thread-safety: const operations are thread-safe when the base's are; the
// setters are thread-compatible and must not overlap any other call.
#ifndef KORA_CALIBRATION_CORE_ZRK_CALIBRATION_TRANSFORMATOR_ZRK_H_
#define KORA_CALIBRATION_CORE_ZRK_CALIBRATION_TRANSFORMATOR_ZRK_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calibration_core/decorators/calibration_transformator_decorator.h"
#include "calibration_core/decorators/transformator_decorator.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "calibration_core/zrk/calibration_polynomial.h"
#include "math/cfunction/cfunction.h"

namespace lumo {
namespace calibration {

class ICalibrationTransformatorZRK : public ICalibrationTransformator {
 public:
  // A clone of the polynomial; empty if none is set.
  virtual ICalibrationPolynomialZRKPtr GetPolynomial() const = 0;
  // Takes a clone and rebuilds the correction; an empty polynomial removes
  // the correction (the class then forwards).
  virtual void SetPolynomial(const ICalibrationPolynomialZRKPtr& polynomial) = 0;
  // false turns the whole class into a plain forwarder.
  virtual bool GetUseCorrection() const = 0;
  virtual void SetUseCorrection(bool useCorrection) = 0;
  // The least half width, in mass units, of the interval searched when the
  // first-order inverse of the correction is not close enough.
  virtual double GetMinimumSearchWidth() const = 0;
  virtual void SetMinimumSearchWidth(double width) = 0;

  // f(preciseMass); preciseMass itself without a correction in use.
  virtual double PreciseMassToMass(double preciseMass) const = 0;
  // The inverse of PreciseMassToMass, within 1e-5 in the mass.
  // Throws std::logic_error "zrk polynomial could not be inverted in a
  // unique way" when no inverse is found.
  virtual double MassToPreciseMass(double mass) const = 0;
  // The batch forms run on OpenMP threads unless called inside a parallel
  // region (then serially, letting the first failure out unchanged). A
  // failure on the threads ends in std::logic_error: "ZRK transformation
  // failed, most likely due to bad calibration constants" for the
  // out-of-place PreciseMassesToMasses, "a transformation failed, most
  // likely due to bad calibration constants" for the other three.
  virtual void PreciseMassesToMasses(std::vector<double>& values) const = 0;
  virtual void PreciseMassesToMasses(const std::vector<double>& preciseMasses,
                                     std::vector<double>& masses) const = 0;
  virtual void MassesToPreciseMasses(std::vector<double>& values) const = 0;
  virtual void MassesToPreciseMasses(const std::vector<double>& masses,
                                     std::vector<double>& preciseMasses) const = 0;

  // The wrapped model itself (as ICalibrationTransformatorDecorator gives it).
  virtual ICalibrationTransformatorPtr GetBaseTransformator() const = 0;
};
typedef boost::shared_ptr<ICalibrationTransformatorZRK> ICalibrationTransformatorZRKPtr;

namespace Transformation {

namespace detail {
struct CorrectionScratch;
}  // namespace detail

class CalibrationTransformatorZRK final
    : public TransformatorDecorator<ICalibrationTransformatorZRK,
                                    ICalibrationTransformatorDecorator>,
      public ICalibrationSerializationTransformators {
 public:
  // Wraps a clone of `base` under a clone of `polynomial`, correction in use,
  // minimum search width 1.0. REQUIRES: `base` is not empty.
  CalibrationTransformatorZRK(const ICalibrationTransformatorPtr& base,
                              const ICalibrationPolynomialZRKPtr& polynomial);
  // Takes the base (cloned), the polynomial, the use flag and the search
  // width of `other`, and builds the correction again.
  CalibrationTransformatorZRK(const CalibrationTransformatorZRK& other);
  CalibrationTransformatorZRK& operator=(const CalibrationTransformatorZRK&) = delete;

  static const char* ClassName() { return "CalibrationTransformatorZRK"; }

  ICloneablePtr Clone() const override;
  std::string GetSerializationVersion() const override;
  // Another ZRK correction with an equal polynomial (or none on both sides)
  // around an IsEqual base.
  bool IsEqual(ICalibrationTransformatorConstPtr other) const override;
  std::string DumpData() const override;

  ICalibrationPolynomialZRKPtr GetPolynomial() const override;
  void SetPolynomial(const ICalibrationPolynomialZRKPtr& polynomial) override;
  bool GetUseCorrection() const override { return useCorrection; }
  void SetUseCorrection(bool use) override { useCorrection = use; }
  double GetMinimumSearchWidth() const override { return minimumSearchWidth; }
  void SetMinimumSearchWidth(double width) override { minimumSearchWidth = width; }

  double PreciseMassToMass(double preciseMass) const override {
    return PreciseMassToMassImpl(preciseMass);
  }
  double MassToPreciseMass(double mass) const override { return MassToPreciseMassImpl(mass); }
  void PreciseMassesToMasses(std::vector<double>& values) const override {
    PreciseMassesToMasses(values, values);
  }
  void PreciseMassesToMasses(const std::vector<double>& preciseMasses,
                             std::vector<double>& masses) const override;
  void MassesToPreciseMasses(std::vector<double>& values) const override {
    MassesToPreciseMasses(values, values);
  }
  void MassesToPreciseMasses(const std::vector<double>& masses,
                             std::vector<double>& preciseMasses) const override;

  // From the precise mass: the correction, then the base. The out-of-place
  // forms leave the caller's masses alone.
  void MassToRaw(std::vector<double>& values) const override;
  void MassToRaw(const std::vector<double>& masses, std::vector<double>& raws) const override;
  double MassToRaw(double mass) const override;
  void MassToIndex(const std::vector<double>& masses,
                   std::vector<std::int32_t>& indexes) const override;
  std::int32_t MassToIndex(double mass) const override;
  void MassToDIndex(std::vector<double>& values) const override;
  void MassToDIndex(const std::vector<double>& masses,
                    std::vector<double>& dindexes) const override;
  double MassToDIndex(double mass) const override;

  // To the precise mass: the base, then the inverse correction.
  void RawToMass(std::vector<double>& values) const override;
  void RawToMass(const std::vector<double>& raws, std::vector<double>& masses) const override;
  double RawToMass(double raw) const override;
  void DIndexToMass(std::vector<double>& values) const override;
  void DIndexToMass(const std::vector<double>& dindexes,
                    std::vector<double>& masses) const override;
  double DIndexToMass(double dindex) const override;
  void IndexToMass(std::int32_t first, std::int32_t last,
                   std::vector<double>& masses) const override;
  void IndexToMass(const std::vector<std::int32_t>& indexes,
                   std::vector<double>& masses) const override;
  double IndexToMass(std::int32_t index) const override;

  // Not answered: throws std::runtime_error "monotonicMassRange() not yet
  // implemented for this particular transformator.".
  std::pair<double, double> monotonicMassRange(double m0) const override;

 private:
  double PreciseMassToMassImpl(double preciseMass) const {
    return Corrects() ? f(preciseMass) : preciseMass;
  }
  double MassToPreciseMassImpl(double mass) const;
  bool Corrects() const { return useCorrection && f.IsInitialized(); }
  // The precise mass by Newton's method on f, for a mass whose first-order
  // inverse is not close enough. Throws std::logic_error when none is found.
  double SearchPreciseMass(double mass) const;
  // out[k] = PreciseMassToMass(in[k]) or MassToPreciseMass(in[k]) for k from
  // 0 up to count, in order, through the work arrays of `scratch`. `in` and
  // `out` may be the same array. REQUIRES: Corrects().
  void PreciseMassesToMassesBlock(const double* in, double* out, std::ptrdiff_t count,
                                  detail::CorrectionScratch& scratch) const;
  void MassesToPreciseMassesBlock(const double* in, double* out, std::ptrdiff_t count,
                                  detail::CorrectionScratch& scratch) const;
  typedef void (CalibrationTransformatorZRK::*Block)(const double*, double*, std::ptrdiff_t,
                                                     detail::CorrectionScratch&) const;
  // `out` resized to `in`, then `block` over all of it as in the batch forms.
  void RunBatch(Block block, const std::vector<double>& in, std::vector<double>& out,
                const char* failureText) const;
  // `block` as a step of two: (in, out, scratch) with `out` resized to `in`.
  auto CorrectionStep(Block block) const;
  // The out-of-place conversions towards and from the precise mass:
  // toMass(in, masses) of the base and then MassesToPreciseMasses, or
  // PreciseMassesToMasses and then fromMass(masses, out) of the base. On the
  // threads both steps run block by block while the block is in cache; the
  // results, and the failures, are those of the two steps one after the
  // other.
  template <class In, class ToMass>
  void BaseThenCorrection(const std::vector<In>& in, std::vector<double>& masses,
                          const ToMass& toMass) const;
  template <class Out, class FromMass>
  void CorrectionThenBase(const std::vector<double>& masses, std::vector<Out>& out,
                          const FromMass& fromMass) const;

  // The correction f; empty without a polynomial.
  math::CFunction f;
  // The global mass range of the polynomial.
  double minMass;
  double maxMass;
  // A clone of the polynomial; empty without one.
  ICalibrationPolynomialZRKPtr zrkPolynomial;
  bool useCorrection;
  double minimumSearchWidth;
};

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_ZRK_CALIBRATION_TRANSFORMATOR_ZRK_H_
