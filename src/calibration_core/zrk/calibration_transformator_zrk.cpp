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

// Runs block(source, destination, i, end), which converts the elements
// from i up to end and advances i past each one it completes, over every
// element of `in` into `out`; `in` and `out` have the same size and may be
// one vector. Serial inside a parallel region, letting the first failure out
// unchanged; otherwise on the OpenMP threads whatever the size, ending in
// std::logic_error(failureText) when any element failed.
template <class Block>
void zrkLoop(const Block& block, const std::vector<double>& in, std::vector<double>& out,
             const char* failureText) {
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(in.size());
  const double* source = in.data();
  double* destination = out.data();
  if (omp_in_parallel()) {
    std::ptrdiff_t i = 0;
    block(source, destination, i, n);
    return;
  }
  try {
    Functors::detail::parallelLoop(
        n, [&](std::ptrdiff_t& i, std::ptrdiff_t end) { block(source, destination, i, end); },
        [](std::ptrdiff_t, std::ptrdiff_t) {});
  } catch (const std::runtime_error&) {
    // The loop's own report of a failed element.
    LUMO_THROW(std::logic_error(failureText));
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
                                                             std::ptrdiff_t& i,
                                                             std::ptrdiff_t end) const {
  if (!useCorrection || !f.IsInitialized()) {
    for (; i < end; ++i) out[i] = in[i];
    return;
  }
  const std::vector<double> preciseMasses(in + i, in + end);
  std::vector<double> masses;
  f(preciseMasses, masses);
  std::copy(masses.begin(), masses.end(), out + i);
  i = end;
}

void CalibrationTransformatorZRK::MassesToPreciseMassesBlock(const double* in, double* out,
                                                             std::ptrdiff_t& i,
                                                             std::ptrdiff_t end) const {
  if (!useCorrection || !f.IsInitialized()) {
    for (; i < end; ++i) out[i] = in[i];
    return;
  }
  const std::vector<double> masses(in + i, in + end);
  // First f of the masses, then, in place, their first-order inverses.
  std::vector<double> firstOrder;
  f(masses, firstOrder);
  for (std::size_t k = 0; k < masses.size(); ++k) {
    firstOrder[k] = (masses[k] - firstOrder[k]) + masses[k];
  }
  std::vector<double> check;
  f(firstOrder, check);
  for (std::size_t k = 0; i < end; ++i, ++k) {
    out[i] = std::fabs(masses[k] - check[k]) < detail::kFirstOrderTolerance
                 ? firstOrder[k]
                 : SearchPreciseMass(masses[k]);
  }
}

void CalibrationTransformatorZRK::RunBatch(Block block, const std::vector<double>& in,
                                           std::vector<double>& out,
                                           const char* failureText) const {
  out.resize(in.size());
  detail::zrkLoop(
      [this, block](const double* source, double* destination, std::ptrdiff_t& i,
                    std::ptrdiff_t end) { (this->*block)(source, destination, i, end); },
      in, out, failureText);
}

void CalibrationTransformatorZRK::PreciseMassesToMasses(std::vector<double>& values) const {
  RunBatch(&CalibrationTransformatorZRK::PreciseMassesToMassesBlock, values, values,
           detail::kBatchFailedText);
}

void CalibrationTransformatorZRK::PreciseMassesToMasses(const std::vector<double>& preciseMasses,
                                                        std::vector<double>& masses) const {
  RunBatch(&CalibrationTransformatorZRK::PreciseMassesToMassesBlock, preciseMasses, masses,
           detail::kPreciseBatchFailedText);
}

void CalibrationTransformatorZRK::MassesToPreciseMasses(std::vector<double>& values) const {
  RunBatch(&CalibrationTransformatorZRK::MassesToPreciseMassesBlock, values, values,
           detail::kBatchFailedText);
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
  std::vector<double> copy;
  PreciseMassesToMasses(masses, copy);
  base()->MassToRaw(copy, raws);
}

double CalibrationTransformatorZRK::MassToRaw(double mass) const {
  return base()->MassToRaw(PreciseMassToMassImpl(mass));
}

void CalibrationTransformatorZRK::MassToIndex(const std::vector<double>& masses,
                                              std::vector<std::int32_t>& indexes) const {
  std::vector<double> copy;
  PreciseMassesToMasses(masses, copy);
  base()->MassToIndex(copy, indexes);
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
  std::vector<double> copy;
  PreciseMassesToMasses(masses, copy);
  base()->MassToDIndex(copy, dindexes);
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
  base()->RawToMass(raws, masses);
  MassesToPreciseMasses(masses);
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
  base()->DIndexToMass(dindexes, masses);
  MassesToPreciseMasses(masses);
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
  base()->IndexToMass(indexes, masses);
  MassesToPreciseMasses(masses);
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
