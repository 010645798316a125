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

#include "reader/corrupt_data_error.h"
#include "reader/peak_sink.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {
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
  const unsigned char* const p1 = p0 + w;
  const unsigned char* const p2 = p1 + w;
  const unsigned char* const p3 = p2 + w;
  uint32_t words[2 * detail::kPeakBlock];
  uint32_t indices[detail::kPeakBlock];
  uint32_t intensities[detail::kPeakBlock];
  uint32_t index = 0;
  for (size_t j = first; j < last;) {
    const size_t n = std::min<size_t>((last - j) / 2, detail::kPeakBlock);
    // Words from their planes, a block at a time (a loop the compiler vectorises).
    for (size_t m = 0; m < 2 * n; ++m) {
      words[m] = static_cast<uint32_t>(p0[j + m]) | static_cast<uint32_t>(p1[j + m]) << 8 |
                 static_cast<uint32_t>(p2[j + m]) << 16 | static_cast<uint32_t>(p3[j + m]) << 24;
    }
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
