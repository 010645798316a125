// Decoding of one scan of a per-frame compressed frame. The expanded frame is
// a table of W = size / 4 unsigned 32-bit words stored in four byte planes:
// byte k (0 the lowest) of word j is at position k * W + j. A scan is a run
// of word pairs (index step, intensity); the running index starts at 0, grows
// by each step (32-bit, wrapping), and the peak's index is the running index
// minus 1.
#ifndef KORA_READER_RLE2_DECODER_H_
#define KORA_READER_RLE2_DECODER_H_

#include <algorithm>
#include <cstdint>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
// GCC and Clang on x86-64 build an AVX2 decoder beside the build's own,
// chosen at run time.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define KORA_RLE2_AVX2 1
#endif

#include "reader/corrupt_data_error.h"
#include "reader/peak_sink.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {
namespace detail {

// Decodes the first peaks of a block of `n` word pairs whose words start at
// `plane0` in a byte-plane table of `w` words, 8 peaks per step, continuing
// the running `index`. Returns the number of peaks decoded, a multiple of 8;
// the rest (fewer than 8) is left to the caller. Without SSE2 it decodes none.
inline size_t decodePairBlockSse2(const unsigned char* plane0, size_t w, size_t n, uint32_t& index,
                                  uint32_t* indices, uint32_t* intensities) {
  size_t k = 0;
#if defined(__SSE2__)
  const unsigned char* const p1 = plane0 + w;
  const unsigned char* const p2 = p1 + w;
  const unsigned char* const p3 = p2 + w;
  // The running index minus 1, which is what a peak stores: adding the
  // steps to it gives each peak's index directly.
  __m128i carry = _mm_set1_epi32(static_cast<int>(index - 1));
  // Running sums of four steps each, without the carry.
  auto runningSum = [](__m128i steps) {
    steps = _mm_add_epi32(steps, _mm_slli_si128(steps, 4));
    return _mm_add_epi32(steps, _mm_slli_si128(steps, 8));
  };
  // Each plane block holds one byte of 8 word pairs: even bytes belong to
  // index steps, odd bytes to intensities. Masks and shifts split them into
  // 16-bit halves, which leaves the shuffle unit only the four unpacks that
  // join the halves; that unit bounds the loop.
  const __m128i even = _mm_set1_epi16(0x00FF);
  for (; k + 8 <= n; k += 8) {
    const size_t m = 2 * k;
    const __m128i b0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(plane0 + m));
    const __m128i b1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p1 + m));
    const __m128i b2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p2 + m));
    const __m128i b3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p3 + m));
    const __m128i steps_lo = _mm_or_si128(_mm_and_si128(b0, even), _mm_slli_epi16(b1, 8));
    const __m128i steps_hi = _mm_or_si128(_mm_and_si128(b2, even), _mm_slli_epi16(b3, 8));
    const __m128i values_lo = _mm_or_si128(_mm_srli_epi16(b0, 8), _mm_andnot_si128(even, b1));
    const __m128i values_hi = _mm_or_si128(_mm_srli_epi16(b2, 8), _mm_andnot_si128(even, b3));
    const __m128i a = _mm_add_epi32(runningSum(_mm_unpacklo_epi16(steps_lo, steps_hi)), carry);
    const __m128i b = _mm_add_epi32(runningSum(_mm_unpackhi_epi16(steps_lo, steps_hi)),
                                    _mm_shuffle_epi32(a, 0xFF));
    carry = _mm_shuffle_epi32(b, 0xFF);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices + k), a);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices + k + 4), b);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(intensities + k),
                     _mm_unpacklo_epi16(values_lo, values_hi));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(intensities + k + 4),
                     _mm_unpackhi_epi16(values_lo, values_hi));
  }
  index = static_cast<uint32_t>(_mm_cvtsi128_si32(carry)) + 1;
#else
  (void)plane0;
  (void)w;
  (void)n;
  (void)index;
  (void)indices;
  (void)intensities;
#endif
  return k;
}

// True when decodePairBlockAvx2 may run on this processor; false where it
// was not built. Thread-safe.
bool wideDecodingAvailable();

// As decodePairBlockSse2, 16 peaks per step; returns a multiple of 16.
// REQUIRES: wideDecodingAvailable().
size_t decodePairBlockAvx2(const unsigned char* plane0, size_t w, size_t n, uint32_t& index,
                           uint32_t* indices, uint32_t* intensities);

// Decodes `n` peaks from the word pairs that start at `plane0` in a
// byte-plane table of `w` words, continuing the running `index`, into
// indices[0, n) and intensities[0, n). The two arrays may lie anywhere in
// memory, also in the caller's final buffer.
// REQUIRES: the four planes hold 2 * n bytes each from that position.
inline void decodePairs(const unsigned char* plane0, size_t w, size_t n, uint32_t& index,
                        uint32_t* indices, uint32_t* intensities) {
  using Block = size_t (*)(const unsigned char*, size_t, size_t, uint32_t&, uint32_t*, uint32_t*);
  Block block = decodePairBlockSse2;
  size_t width = 8;
  if (n >= 16 && wideDecodingAvailable()) {
    block = decodePairBlockAvx2;
    width = 16;
  }
  size_t k = block(plane0, w, n, index, indices, intensities);
  if (k >= width && k < n) {
    // The rest: one more block over the last `width` peaks, from s >= 1 on,
    // continuing from the index after peak s - 1. Peaks s to k get again the
    // values they already have; nothing is written past peak n - 1.
    const size_t s = n - width;
    index = indices[s - 1] + 1;
    block(plane0 + 2 * s, w, width, index, indices + s, intensities + s);
    return;
  }
  const unsigned char* const p1 = plane0 + w;
  const unsigned char* const p2 = p1 + w;
  const unsigned char* const p3 = p2 + w;
  auto word = [&](size_t m) {
    return static_cast<uint32_t>(plane0[m]) | static_cast<uint32_t>(p1[m]) << 8 |
           static_cast<uint32_t>(p2[m]) << 16 | static_cast<uint32_t>(p3[m]) << 24;
  };
  for (; k < n; ++k) {
    index += word(2 * k);
    indices[k] = index - 1;
    intensities[k] = word(2 * k + 1);
  }
}

}  // namespace detail

namespace decoding {

// The number of peaks of the scan held in words [first, last) of an expanded
// frame of `data_size` bytes: (last - first) / 2, or 0 when first >= last.
// Throws CorruptScanDataError when the scan has an odd number of words or
// reaches beyond the frame's data_size / 4 words.
inline size_t rle2ScanPeaks(int64_t frame_id, unsigned int scan, size_t data_size,
                            unsigned int first, unsigned int last) {
  if (((last - first) & 1u) != 0)
    LUMO_THROW(
        CorruptScanDataError(frame_id, scan, "number of decompressed entries not an even number."));
  if (first >= last) return 0;
  if (last > data_size / 4)
    LUMO_THROW(CorruptScanDataError(frame_id, scan, "Scan words reach beyond the frame data."));
  return (last - first) / 2;
}

// Calls sink(index, intensity) for each peak of the scan held in words
// [first, last) of the expanded frame `data`, in stored order. Indices are
// not checked against the number of bins.
//
// F: a peak sink (reader/peak_sink.h), called directly. `data` may be a byte
// vector of any allocator.
// Throws CorruptScanDataError when the scan has an odd number of words or
// reaches beyond the frame's W words.
template <class F, class Alloc>
void decodeRLE2(int64_t frame_id, unsigned int scan, const std::vector<unsigned char, Alloc>& data,
                unsigned int first, unsigned int last, F sink) {
  const size_t peaks = rle2ScanPeaks(frame_id, scan, data.size(), first, last);
  const size_t w = data.size() / 4;
  uint32_t indices[detail::kPeakBlock];
  uint32_t intensities[detail::kPeakBlock];
  uint32_t index = 0;
  for (size_t k = 0; k < peaks;) {
    const size_t n = std::min<size_t>(peaks - k, detail::kPeakBlock);
    detail::decodePairs(data.data() + first + 2 * k, w, n, index, indices, intensities);
    detail::deliverPeaks(sink, indices, intensities, n);
    k += n;
  }
}

}  // namespace decoding
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_RLE2_DECODER_H_
