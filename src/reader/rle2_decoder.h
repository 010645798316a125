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

#include "reader/corrupt_data_error.h"
#include "reader/peak_sink.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {
namespace detail {

// out[m] = word m of a byte-plane table of `w` words whose plane 0 starts at
// `plane0` (offset to the first word wanted), for m < count.
// REQUIRES: the four planes hold `count` bytes each from that position.
inline void gatherPlaneWords(const unsigned char* plane0, size_t w, size_t count, uint32_t* out) {
  const unsigned char* const p1 = plane0 + w;
  const unsigned char* const p2 = p1 + w;
  const unsigned char* const p3 = p2 + w;
  size_t m = 0;
#if defined(__SSE2__)
  // 16 words per step: interleave bytes 0/1 and 2/3 to 16-bit halves, then
  // the halves to words.
  for (; m + 16 <= count; m += 16) {
    const __m128i b0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(plane0 + m));
    const __m128i b1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p1 + m));
    const __m128i b2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p2 + m));
    const __m128i b3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p3 + m));
    const __m128i lo01 = _mm_unpacklo_epi8(b0, b1);
    const __m128i hi01 = _mm_unpackhi_epi8(b0, b1);
    const __m128i lo23 = _mm_unpacklo_epi8(b2, b3);
    const __m128i hi23 = _mm_unpackhi_epi8(b2, b3);
    __m128i* const o = reinterpret_cast<__m128i*>(out + m);
    _mm_storeu_si128(o, _mm_unpacklo_epi16(lo01, lo23));
    _mm_storeu_si128(o + 1, _mm_unpackhi_epi16(lo01, lo23));
    _mm_storeu_si128(o + 2, _mm_unpacklo_epi16(hi01, hi23));
    _mm_storeu_si128(o + 3, _mm_unpackhi_epi16(hi01, hi23));
  }
#endif
  for (; m < count; ++m) {
    out[m] = static_cast<uint32_t>(plane0[m]) | static_cast<uint32_t>(p1[m]) << 8 |
             static_cast<uint32_t>(p2[m]) << 16 | static_cast<uint32_t>(p3[m]) << 24;
  }
}

}  // namespace detail

namespace decoding {

// Calls sink(index, intensity) for each peak of the scan held in words
// [first, last) of the expanded frame `data`, in stored order. Indices are
// not checked against the number of bins.
//
// F: a peak sink (reader/peak_sink.h), called directly.
// Throws CorruptScanDataError when the scan has an odd number of words or
// reaches beyond the frame's W words.
template <class F>
void decodeRLE2(int64_t frame_id, unsigned int scan, const std::vector<unsigned char>& data,
                unsigned int first, unsigned int last, F sink) {
  if (((last - first) & 1u) != 0)
    LUMO_THROW(
        CorruptScanDataError(frame_id, scan, "number of decompressed entries not an even number."));
  if (first >= last) return;
  const size_t w = data.size() / 4;
  if (last > w)
    LUMO_THROW(CorruptScanDataError(frame_id, scan, "Scan words reach beyond the frame data."));

  const unsigned char* const p0 = data.data();
  uint32_t words[2 * detail::kPeakBlock];
  uint32_t indices[detail::kPeakBlock];
  uint32_t intensities[detail::kPeakBlock];
  uint32_t index = 0;
  for (size_t j = first; j < last;) {
    const size_t n = std::min<size_t>((last - j) / 2, detail::kPeakBlock);
    detail::gatherPlaneWords(p0 + j, w, 2 * n, words);
    for (size_t k = 0; k < n; ++k) {
      index += words[2 * k];
      indices[k] = index - 1;
      intensities[k] = words[2 * k + 1];
    }
    detail::deliverPeaks(sink, indices, intensities, n);
    j += 2 * n;
  }
}

}  // namespace decoding
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_RLE2_DECODER_H_
