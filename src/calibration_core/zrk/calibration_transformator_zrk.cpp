#include "calibration_core/zrk/calibration_transformator_zrk.h"

#include <omp.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <stdexcept>

#include "calibration_core/transformation/functors.h"
#include "calibration_core/transformation/policy_errors.h"
#include "calibration_core/transformation/transformator.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace detail {

// CFunction strategy of the polynomial with a Gaussian return to the identity.
const int kZrkStrategy = 9;
// The first-order inverse is taken when it reproduces the mass this closely.
const double kFirstOrderTolerance = 1e-05;

const char* const kNotInvertibleText = "zrk polynomial could not be inverted in a unique way";
const char* const kBatchFailedText =
    "a transformation failed, most likely due to bad calibration constants";
const char* const kPreciseBatchFailedText =
    "ZRK transformation failed, most likely due to bad calibration constants";

// The largest block of a ZRK batch loop. A fused block's arrays (input,
// base output, first-order inverse, check) stay in a core's cache.
const std::ptrdiff_t kBlockSize = 2048;

// The work arrays of the correction of one block. They keep their capacity
// from block to block: a loop allocates on a thread's first block only,
// and in that thread. Aligned apart so that two threads' arrays never share
// a cache line.
struct alignas(64) CorrectionScratch {
  std::vector<double> masses, firstOrder, check;
};

// A fused block's arrays besides: its input, the masses between the two
// steps, and its output.
template <class In, class Out>
struct FusedScratch : CorrectionScratch {
  std::vector<In> in;
  std::vector<double> between;
  std::vector<Out> out;
};

// Whether the out-of-place conversions run the base and the correction
// block by block: on two threads or more outside a parallel region. On one
// thread the base's batch would open a parallel region of its own for every
// block, which costs more than the passes over memory it saves.
inline bool fuses() { return !omp_in_parallel() && omp_get_max_threads() > 1; }

// Runs block(begin, end, scratch) over the blocks [begin, end) of [0, n)
// on the OpenMP threads, each thread with its own Scratch. Throws
// std::runtime_error (the loop's own report) when any block threw.
// REQUIRES: not inside a parallel region.
template <class Scratch, class Body>
void blockLoop(std::ptrdiff_t n, const Body& body) {
  std::vector<Scratch> scratch(static_cast<std::size_t>(omp_get_max_threads()));
  Functors::detail::parallelLoop(
      n, Functors::detail::parallelBlockSize(n, kBlockSize),
      [&](std::ptrdiff_t& i, std::ptrdiff_t end) {
        body(i, end, scratch[static_cast<std::size_t>(omp_get_thread_num())]);
        i = end;
      },
      [](std::ptrdiff_t, std::ptrdiff_t) {});
}

// out = second(first(in)), with first(x, y, correctionScratch) and second
// likewise filling y from x. Where fuses(), both run block by block on the threads
// while the block is in cache; any failure there runs oneAfterTheOther(),
// the two steps over the whole vector, so that the caller sees the failure
// and the output that they give. Otherwise oneAfterTheOther() alone.
template <class In, class Out, class First, class Second, class OneAfterTheOther>
void fusedSteps(const std::vector<In>& in, std::vector<Out>& out, const First& first,
                const Second& second, const OneAfterTheOther& oneAfterTheOther) {
  if (!fuses() || static_cast<const void*>(&in) == static_cast<const void*>(&out)) {
    return oneAfterTheOther();
  }
  out.resize(in.size());
  try {
    blockLoop<FusedScratch<In, Out>>(
        static_cast<std::ptrdiff_t>(in.size()),
        [&](std::ptrdiff_t begin, std::ptrdiff_t end, FusedScratch<In, Out>& s) {
          s.in.assign(in.data() + begin, in.data() + end);
          first(s.in, s.between, s);
          second(s.between, s.out, s);
          std::copy(s.out.begin(), s.out.end(), out.data() + begin);
        });
  } catch (const std::runtime_error&) {
    oneAfterTheOther();
  }
}

}  // namespace detail

CalibrationTransformatorZRK::CalibrationTransformatorZRK(
    const ICalibrationTransformatorPtr& base, const ICalibrationPolynomialZRKPtr& polynomial)
    : TransformatorDecorator(base),
      minMass(0.0),
      maxMass(0.0),
      useCorrection(true),
      minimumSearchWidth(1.0) {
  SetPolynomial(polynomial);
}

CalibrationTransformatorZRK::CalibrationTransformatorZRK(const CalibrationTransformatorZRK& other)
    : TransformatorDecorator(other.base()),
      minMass(0.0),
      maxMass(0.0),
      useCorrection(other.useCorrection),
      minimumSearchWidth(other.minimumSearchWidth) {
  SetPolynomial(other.zrkPolynomial);
}

ICloneablePtr CalibrationTransformatorZRK::Clone() const {
  return boost::make_shared<CalibrationTransformatorZRK>(*this);
}

std::string CalibrationTransformatorZRK::GetSerializationVersion() const {
  return kTransformatorSerializationVersion;
}

bool CalibrationTransformatorZRK::IsEqual(ICalibrationTransformatorConstPtr other) const {
  const auto* zrk = dynamic_cast<const ICalibrationTransformatorZRK*>(other.get());
  if (!zrk || !base()->IsEqual(zrk->GetBaseTransformator())) return false;
  const ICalibrationPolynomialZRKPtr otherPolynomial = zrk->GetPolynomial();
  if (!zrkPolynomial || !otherPolynomial) return !zrkPolynomial && !otherPolynomial;
  return zrkPolynomial->IsEqual(*otherPolynomial);
}

std::string CalibrationTransformatorZRK::DumpData() const {
  std::ostringstream os;
  os << ClassName() << "[ " << GetSerializationVersion() << "\n";
  if (zrkPolynomial) os << zrkPolynomial->Dump() << "\n";
  os << "\tuse correction = " << (useCorrection ? "true" : "false")
     << ", minimum search width = " << minimumSearchWidth << "\n"
     << base()->DumpData() << "\n"
     << "]";
  return os.str();
}

ICalibrationPolynomialZRKPtr CalibrationTransformatorZRK::GetPolynomial() const {
  return cloneAs(zrkPolynomial);
}

void CalibrationTransformatorZRK::SetPolynomial(const ICalibrationPolynomialZRKPtr& polynomial) {
  zrkPolynomial = cloneAs(polynomial);
  if (!zrkPolynomial) {
    f = math::CFunction();
    return;
  }
  std::vector<double> coefficients = zrkPolynomial->GetCoefficients();
  minMass = zrkPolynomial->GetGlobalMassRange().first;
  maxMass = zrkPolynomial->GetGlobalMassRange().second;
  std::vector<double> parameters{minMass, maxMass, 1.0};
  // The stored coefficients are deltas from the identity.
  if (coefficients.size() < 2) {
    coefficients.push_back(1.0);
  } else {
    coefficients[1] += 1.0;
  }
  f.Init(detail::kZrkStrategy, parameters, coefficients);

  // The width of the tails: the larger edge correction decays with a slope
  // of at most sqrt(1/2) of the identity's, so f keeps rising.
  const double e1 = PreciseMassToMassImpl(minMass) - minMass;
  const double e2 = PreciseMassToMassImpl(maxMass) - maxMass;
  const double pick = e2 > e1 ? e2 : e1;
  double c = std::exp(1.0) * 0.25 / (pick * pick);
  if (c >= 1.0) c = 1.0;
  parameters[2] = c;
  f.Init(detail::kZrkStrategy, parameters, coefficients);
}

double CalibrationTransformatorZRK::MassToPreciseMassImpl(double mass) const {
  if (!useCorrection || !f.IsInitialized()) return mass;
  const double g = f(mass);
  const double x = (mass - g) + mass;
  if (std::fabs(mass - f(x)) < detail::kFirstOrderTolerance) return x;
  return SearchPreciseMass(mass);
}

double CalibrationTransformatorZRK::SearchPreciseMass(double mass) const {
  double w = (f(minMass) - minMass) * 2;
  const double atMax = (f(maxMass) - maxMass) * 2;
  if (atMax > w) w = atMax;
  if (minimumSearchWidth > w) w = minimumSearchWidth;
  bool converged = false;
  double residual = 0.0;
  const double precise = f.Inverse(mass, mass - w, mass + w, converged, residual);
  if (!converged) LUMO_THROW(std::logic_error(detail::kNotInvertibleText));
  return precise;
}

// The blocks evaluate f through its vector form: one dispatch per block
// instead of one per element.
void CalibrationTransformatorZRK::PreciseMassesToMassesBlock(const double* in, double* out,
                                                             std::ptrdiff_t count,
                                                             detail::CorrectionScratch& s) const {
  s.masses.assign(in, in + count);
  f(s.masses, s.check);
  std::copy(s.check.begin(), s.check.end(), out);
}

void CalibrationTransformatorZRK::MassesToPreciseMassesBlock(const double* in, double* out,
                                                             std::ptrdiff_t count,
                                                             detail::CorrectionScratch& s) const {
  s.masses.assign(in, in + count);
  // First f of the masses, then, in place, their first-order inverses.
  f(s.masses, s.firstOrder);
  for (std::ptrdiff_t k = 0; k < count; ++k) {
    s.firstOrder[k] = (s.masses[k] - s.firstOrder[k]) + s.masses[k];
  }
  f(s.firstOrder, s.check);
  for (std::ptrdiff_t k = 0; k < count; ++k) {
    out[k] = std::fabs(s.masses[k] - s.check[k]) < detail::kFirstOrderTolerance
                 ? s.firstOrder[k]
                 : SearchPreciseMass(s.masses[k]);
  }
}

// A step of fusedSteps: `block` over all of `in` into `out`.
auto CalibrationTransformatorZRK::CorrectionStep(Block block) const {
  return [this, block](const std::vector<double>& in, std::vector<double>& out,
                       detail::CorrectionScratch& scratch) {
    out.resize(in.size());
    (this->*block)(in.data(), out.data(), static_cast<std::ptrdiff_t>(in.size()), scratch);
  };
}

// Serial inside a parallel region, letting the first failure out unchanged;
// otherwise on the OpenMP threads whatever the size, ending in
// std::logic_error(failureText) when any element failed.
void CalibrationTransformatorZRK::RunBatch(Block block, const std::vector<double>& in,
                                           std::vector<double>& out,
                                           const char* failureText) const {
  if (!Corrects()) {
    if (&in != &out) out = in;
    return;
  }
  out.resize(in.size());
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(in.size());
  const double* source = in.data();
  double* destination = out.data();
  if (omp_in_parallel()) {
    detail::CorrectionScratch scratch;
    (this->*block)(source, destination, n, scratch);
    return;
  }
  try {
    detail::blockLoop<detail::CorrectionScratch>(
        n, [&](std::ptrdiff_t begin, std::ptrdiff_t end, detail::CorrectionScratch& scratch) {
          (this->*block)(source + begin, destination + begin, end - begin, scratch);
        });
  } catch (const std::runtime_error&) {
    // The loop's own report of a failed element.
    LUMO_THROW(std::logic_error(failureText));
  }
}

template <class In, class ToMass>
void CalibrationTransformatorZRK::BaseThenCorrection(const std::vector<In>& in,
                                                     std::vector<double>& masses,
                                                     const ToMass& toMass) const {
  if (!Corrects()) return toMass(in, masses);
  detail::fusedSteps(
      in, masses, [&](const auto& x, auto& y, detail::CorrectionScratch&) { toMass(x, y); },
      CorrectionStep(&CalibrationTransformatorZRK::MassesToPreciseMassesBlock),
      [&] {
        toMass(in, masses);
        MassesToPreciseMasses(masses);
      });
}

template <class Out, class FromMass>
void CalibrationTransformatorZRK::CorrectionThenBase(const std::vector<double>& masses,
                                                     std::vector<Out>& out,
                                                     const FromMass& fromMass) const {
  if (!Corrects()) return fromMass(masses, out);
  detail::fusedSteps(
      masses, out, CorrectionStep(&CalibrationTransformatorZRK::PreciseMassesToMassesBlock),
      [&](const auto& x, auto& y, detail::CorrectionScratch&) { fromMass(x, y); },
      [&] {
        std::vector<double> copy;
        PreciseMassesToMasses(masses, copy);
        fromMass(copy, out);
      });
}

// In place (one vector on both sides) the failure text is that of the
// in-place form.
void CalibrationTransformatorZRK::PreciseMassesToMasses(const std::vector<double>& preciseMasses,
                                                        std::vector<double>& masses) const {
  RunBatch(&CalibrationTransformatorZRK::PreciseMassesToMassesBlock, preciseMasses, masses,
           &preciseMasses == &masses ? detail::kBatchFailedText : detail::kPreciseBatchFailedText);
}

void CalibrationTransformatorZRK::MassesToPreciseMasses(const std::vector<double>& masses,
                                                        std::vector<double>& preciseMasses) const {
  RunBatch(&CalibrationTransformatorZRK::MassesToPreciseMassesBlock, masses, preciseMasses,
           detail::kBatchFailedText);
}

void CalibrationTransformatorZRK::MassToRaw(std::vector<double>& values) const {
  PreciseMassesToMasses(values);
  base()->MassToRaw(values);
}

void CalibrationTransformatorZRK::MassToRaw(const std::vector<double>& masses,
                                            std::vector<double>& raws) const {
  CorrectionThenBase(masses, raws, [this](const std::vector<double>& in, std::vector<double>& out) {
    base()->MassToRaw(in, out);
  });
}

double CalibrationTransformatorZRK::MassToRaw(double mass) const {
  return base()->MassToRaw(PreciseMassToMassImpl(mass));
}

void CalibrationTransformatorZRK::MassToIndex(const std::vector<double>& masses,
                                              std::vector<std::int32_t>& indexes) const {
  CorrectionThenBase(masses, indexes,
                     [this](const std::vector<double>& in, std::vector<std::int32_t>& out) {
                       base()->MassToIndex(in, out);
                     });
}

std::int32_t CalibrationTransformatorZRK::MassToIndex(double mass) const {
  return base()->MassToIndex(PreciseMassToMassImpl(mass));
}

void CalibrationTransformatorZRK::MassToDIndex(std::vector<double>& values) const {
  PreciseMassesToMasses(values);
  base()->MassToDIndex(values);
}

void CalibrationTransformatorZRK::MassToDIndex(const std::vector<double>& masses,
                                               std::vector<double>& dindexes) const {
  CorrectionThenBase(masses, dindexes,
                     [this](const std::vector<double>& in, std::vector<double>& out) {
                       base()->MassToDIndex(in, out);
                     });
}

double CalibrationTransformatorZRK::MassToDIndex(double mass) const {
  return base()->MassToDIndex(PreciseMassToMassImpl(mass));
}

void CalibrationTransformatorZRK::RawToMass(std::vector<double>& values) const {
  base()->RawToMass(values);
  MassesToPreciseMasses(values);
}

void CalibrationTransformatorZRK::RawToMass(const std::vector<double>& raws,
                                            std::vector<double>& masses) const {
  BaseThenCorrection(raws, masses, [this](const std::vector<double>& in, std::vector<double>& out) {
    base()->RawToMass(in, out);
  });
}

double CalibrationTransformatorZRK::RawToMass(double raw) const {
  return MassToPreciseMassImpl(base()->RawToMass(raw));
}

void CalibrationTransformatorZRK::DIndexToMass(std::vector<double>& values) const {
  base()->DIndexToMass(values);
  MassesToPreciseMasses(values);
}

void CalibrationTransformatorZRK::DIndexToMass(const std::vector<double>& dindexes,
                                               std::vector<double>& masses) const {
  BaseThenCorrection(dindexes, masses,
                     [this](const std::vector<double>& in, std::vector<double>& out) {
                       base()->DIndexToMass(in, out);
                     });
}

double CalibrationTransformatorZRK::DIndexToMass(double dindex) const {
  return MassToPreciseMassImpl(base()->DIndexToMass(dindex));
}

void CalibrationTransformatorZRK::IndexToMass(std::int32_t first, std::int32_t last,
                                              std::vector<double>& masses) const {
  base()->IndexToMass(first, last, masses);
  MassesToPreciseMasses(masses);
}

void CalibrationTransformatorZRK::IndexToMass(const std::vector<std::int32_t>& indexes,
                                              std::vector<double>& masses) const {
  BaseThenCorrection(indexes, masses,
                     [this](const std::vector<std::int32_t>& in, std::vector<double>& out) {
                       base()->IndexToMass(in, out);
                     });
}

double CalibrationTransformatorZRK::IndexToMass(std::int32_t index) const {
  return MassToPreciseMassImpl(base()->IndexToMass(index));
}

std::pair<double, double> CalibrationTransformatorZRK::monotonicMassRange(double) const {
  throwRangeNotImplemented("monotonicMassRange");
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
