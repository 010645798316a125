// Normalisation of stored intensities. Stored intensities are raw counts that
// scale with the time spent on a frame; a normaliser wraps a peak sink and
// rescales each intensity on its way through, so decoding needs no second
// pass. The factor is computed once per read; per peak the cost is one
// multiply, one add and one conversion. Each normaliser is a peak sink
// (reader/peak_sink.h) in both forms.
//
// The conversion of a scaled value to a count truncates towards zero and is
// defined for every double: NaN and values below 0 give 0, values at or
// above 2^32 (+inf included) give 4294967295. Absurd times in the file (an
// AccumulationTime so small that the factor overflows, a negative or NaN
// ratio) thus give saturated or zero counts, never undefined ones.
#ifndef KORA_READER_INTENSITY_NORMALIZER_H_
#define KORA_READER_INTENSITY_NORMALIZER_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "reader/peak_sink.h"

namespace lumo {
namespace io {
namespace kora {

enum class NormalizationType : int32_t {
  None = 0,              // raw counts
  Default = 1,           // the default of the analysis, see defaultNormalization
  DutyCycle = 2,         // times RampTime / AccumulationTime, truncated
  DutyCycleRounded = 3,  // the same, rounded half up
  AccuTime100ms = 4,     // to an accumulation time of 100, rounded half up
};

// The normalisation that NormalizationType::Default stands for in an
// analysis of schema major version `schema_major`.
inline NormalizationType defaultNormalization(int32_t schema_major) {
  if (schema_major == 1) return NormalizationType::None;
  if (schema_major == 2) return NormalizationType::DutyCycle;
  return NormalizationType::AccuTime100ms;
}

// The one failure of a normalisation value. Thrown bare, with neither stack
// trace nor throw location, unlike every other failure of the reader: callers
// have always received it so.
[[noreturn]] inline void throwUnknownNormalization() {
  throw std::runtime_error("decodeScanRange() : Unknown NormalizationType");
}

// `type`, with Default resolved for an analysis of schema major version
// `schema_major`.
// Throws std::runtime_error "decodeScanRange() : Unknown NormalizationType"
// for a value above 4.
inline NormalizationType resolveNormalization(NormalizationType type, int32_t schema_major) {
  if (type == NormalizationType::Default) type = defaultNormalization(schema_major);
  if (static_cast<uint32_t>(type) > 4) throwUnknownNormalization();
  return type;
}

namespace detail {

// Truncation towards zero, saturating: NaN and values below 0 give 0,
// values at or above 2^32 give 4294967295.
inline uint32_t truncateToCount(double scaled) {
  if (!(scaled >= 0.0)) return 0;
  return scaled < 4294967296.0 ? static_cast<uint32_t>(scaled) : 0xFFFFFFFFu;
}

// Whether scaling by `factor` leaves every count as it is: exactly 1.0 does
// (v + 0.5 is exact below 2^32 and truncates to v), so no pass is needed.
inline bool keepsCounts(double factor) { return factor == 1.0; }

// out[k] = truncateToCount(in[k] * factor + rounding) for k < n; `out` may
// be `in`.
inline void scaleCounts(const uint32_t* in, uint32_t* out, size_t n, double factor,
                        double rounding) {
  for (size_t k = 0; k < n; ++k)
    out[k] = truncateToCount(static_cast<double>(in[k]) * factor + rounding);
}

// Scales a block of intensities and passes it on to `sink`.
template <class F>
void appendScaled(F& sink, const uint32_t* indices, const uint32_t* intensities, size_t n,
                  double factor, double rounding) {
  if (keepsCounts(factor)) {
    deliverPeaks(sink, indices, intensities, n);
    return;
  }
  uint32_t scaled[kPeakBlock];
  while (n > 0) {
    const size_t m = n < kPeakBlock ? n : kPeakBlock;
    scaleCounts(intensities, scaled, m, factor, rounding);
    deliverPeaks(sink, indices, scaled, m);
    indices += m;
    intensities += m;
    n -= m;
  }
}

// sink(index, intensity * factor + 0.5), truncated: rounds half up.
template <class F>
struct Normalizer_AccuTime_100ms {
  F sink;
  double factor;

  void operator()(uint32_t index, uint32_t intensity) {
    sink(index, truncateToCount(static_cast<double>(intensity) * factor + 0.5));
  }
  void append(const uint32_t* indices, const uint32_t* intensities, size_t n) {
    appendScaled(sink, indices, intensities, n, factor, 0.5);
  }
};

// sink(index, intensity * factor + rounding), truncated; `rounding` is 0.5
// for N = 1 and 0.0 for N = 0.
template <class F, int N>
struct Normalizer_DutyCycle {
  static_assert(N == 0 || N == 1, "N selects truncation (0) or rounding half up (1)");
  F sink;
  double factor;
  double rounding = N == 1 ? 0.5 : 0.0;

  void operator()(uint32_t index, uint32_t intensity) {
    sink(index, truncateToCount(static_cast<double>(intensity) * factor + rounding));
  }
  void append(const uint32_t* indices, const uint32_t* intensities, size_t n) {
    appendScaled(sink, indices, intensities, n, factor, rounding);
  }
};

// The scaling of one read: scaled = intensity * factor + rounding.
struct CountScale {
  double factor;
  double rounding;
};

// The scaling that `type` gives a frame of `accumulation_time` and
// `ramp_time`. A time of exactly 0.0 gives the factor 1.0.
// Throws std::runtime_error "decodeScanRange() : Unknown NormalizationType"
// unless type is DutyCycle, DutyCycleRounded or AccuTime100ms.
inline CountScale countScale(NormalizationType type, double accumulation_time, double ramp_time) {
  const bool no_time = accumulation_time == 0.0;
  switch (type) {
    case NormalizationType::DutyCycle:
      return {no_time ? 1.0 : ramp_time / accumulation_time, 0.0};
    case NormalizationType::DutyCycleRounded:
      return {no_time ? 1.0 : ramp_time / accumulation_time, 0.5};
    case NormalizationType::AccuTime100ms:
      return {no_time ? 1.0 : 100.0 / accumulation_time, 0.5};
    default:
      throwUnknownNormalization();
  }
}

// Runs body(normaliser) with `sink` wrapped in the normaliser of `type`, for
// a frame of `accumulation_time` and `ramp_time`.
// Throws as countScale does.
template <class F, class Body>
void withNormalizer(NormalizationType type, double accumulation_time, double ramp_time, F sink,
                    Body body) {
  const double factor = countScale(type, accumulation_time, ramp_time).factor;
  switch (type) {
    case NormalizationType::DutyCycle:
      body(Normalizer_DutyCycle<F, 0>{sink, factor});
      return;
    case NormalizationType::DutyCycleRounded:
      body(Normalizer_DutyCycle<F, 1>{sink, factor});
      return;
    default:
      body(Normalizer_AccuTime_100ms<F>{sink, factor});
      return;
  }
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_INTENSITY_NORMALIZER_H_
