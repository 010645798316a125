// The AVX2 form of the pair-block decoder, compiled for AVX2 whatever the
// build's target; decodePairs calls it only where wideDecodingAvailable().
#include "reader/rle2_decoder.h"

#if defined(KORA_RLE2_AVX2)
#include <immintrin.h>
#endif

namespace lumo {
namespace io {
namespace kora {
namespace detail {

#if defined(KORA_RLE2_AVX2)

namespace {

// Running sums of the four steps in each 128-bit half, without a carry.
__attribute__((target("avx2"))) inline __m256i runningSumPerHalf(__m256i steps) {
  steps = _mm256_add_epi32(steps, _mm256_slli_si256(steps, 4));
  return _mm256_add_epi32(steps, _mm256_slli_si256(steps, 8));
}

}  // namespace

bool wideDecodingAvailable() {
  static const bool available = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return available;
}

// As decodePairBlockSse2, 16 peaks per step. The unpacks work within 128-bit
// halves: a half holds peaks 0-3 or 4-7 of its 8, and the halves are put in
// order only when stored.
__attribute__((target("avx2"))) size_t decodePairBlockAvx2(const unsigned char* plane0, size_t w,
                                                           size_t n, uint32_t& index,
                                                           uint32_t* indices,
                                                           uint32_t* intensities) {
  // The running index minus 1 in every lane.
  __m256i carry = _mm256_set1_epi32(static_cast<int>(index - 1));
  const __m256i even = _mm256_set1_epi16(0x00FF);
  const __m256i lastLane = _mm256_set1_epi32(7);
  size_t k = 0;
  for (; k + 16 <= n; k += 16) {
    // Byte `plane` of the 16 word pairs from pair k.
    __m256i bytes[4];
    for (size_t plane = 0; plane < 4; ++plane)
      bytes[plane] =
          _mm256_loadu_si256(reinterpret_cast<const __m256i*>(plane0 + plane * w + 2 * k));
    const __m256i steps_lo =
        _mm256_or_si256(_mm256_and_si256(bytes[0], even), _mm256_slli_epi16(bytes[1], 8));
    const __m256i steps_hi =
        _mm256_or_si256(_mm256_and_si256(bytes[2], even), _mm256_slli_epi16(bytes[3], 8));
    const __m256i values_lo =
        _mm256_or_si256(_mm256_srli_epi16(bytes[0], 8), _mm256_andnot_si256(even, bytes[1]));
    const __m256i values_hi =
        _mm256_or_si256(_mm256_srli_epi16(bytes[2], 8), _mm256_andnot_si256(even, bytes[3]));
    // Halves: `first` peaks 0-3 and 8-11, `second` peaks 4-7 and 12-15, each
    // summed from the start of its half of 8.
    const __m256i first = runningSumPerHalf(_mm256_unpacklo_epi16(steps_lo, steps_hi));
    const __m256i second =
        _mm256_add_epi32(runningSumPerHalf(_mm256_unpackhi_epi16(steps_lo, steps_hi)),
                         _mm256_shuffle_epi32(first, 0xFF));
    // The sum of peaks 0-7, added to the upper half only, and the carry.
    const __m256i totals = _mm256_shuffle_epi32(second, 0xFF);
    const __m256i below = _mm256_add_epi32(_mm256_permute2x128_si256(totals, totals, 0x08), carry);
    const __m256i a = _mm256_add_epi32(first, below);
    const __m256i b = _mm256_add_epi32(second, below);
    carry = _mm256_permutevar8x32_epi32(b, lastLane);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(indices + k),
                        _mm256_permute2x128_si256(a, b, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(indices + k + 8),
                        _mm256_permute2x128_si256(a, b, 0x31));
    const __m256i va = _mm256_unpacklo_epi16(values_lo, values_hi);
    const __m256i vb = _mm256_unpackhi_epi16(values_lo, values_hi);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(intensities + k),
                        _mm256_permute2x128_si256(va, vb, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(intensities + k + 8),
                        _mm256_permute2x128_si256(va, vb, 0x31));
  }
  index = static_cast<uint32_t>(_mm256_cvtsi256_si32(carry)) + 1;
  return k;
}

#else

bool wideDecodingAvailable() { return false; }

size_t decodePairBlockAvx2(const unsigned char*, size_t, size_t, uint32_t&, uint32_t*, uint32_t*) {
  return 0;
}

#endif

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo
