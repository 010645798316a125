// Decoding of one scan of a per-scan compressed frame: an LZF stream that
// expands to signed 32-bit little-endian words. A negative word -k moves the
// running index on by k; a word v >= 0 is one peak (running index, v), after
// which the index moves on by 1. The index starts at 0 in every scan.
#ifndef KORA_READER_UIMF_DECOMPRESSION_H_
#define KORA_READER_UIMF_DECOMPRESSION_H_

#include <algorithm>
#include <atomic>
#include <boost/optional.hpp>
#include <cstdint>
#include <vector>

#include "logging/log_stream.h"
#include "logging/logger.h"
#include "reader/corrupt_data_error.h"
#include "reader/little_endian.h"
#include "reader/lzf_decompression.h"
#include "reader/peak_sink.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace detail {

// Expands `data` into `buffer`, growing it to min(max_size, 2 * size + 1)
// until the expansion fits. Returns the number of bytes expanded.
unsigned int expandLzfScan(const unsigned char* data, int size, std::vector<unsigned char>& buffer,
                           unsigned int max_size, int64_t frame_id, unsigned int scan);

// Logs that `index` is beyond `num_bins`, unless `flag` was already set.
void reportBinOverflow(uint32_t index, unsigned int num_bins, std::atomic_flag* flag);

}  // namespace detail

// Calls sink(index, intensity) for each peak of the LZF-compressed scan
// `data` of `size` bytes, in stored order.
//
// `buffer` is scratch space that is reused between calls and only grows, up
// to `max_size` bytes. When `num_bins` is set, a peak whose index is not
// below it is dropped; the first such peak logs one warning unless `flag` is
// set already (a null flag logs every time). `frame_id` and `scan` only name
// the scan in errors.
//
// F: a peak sink (reader/peak_sink.h), called directly; nothing is
// allocated per peak.
// Throws CorruptScanDataError for a corrupt stream, an expansion above
// `max_size` bytes, or one that is not a whole number of words. Peaks handed
// to the sink before a failure stay with the sink.
template <class F>
void decompressUimf(const unsigned char* data, int size, F sink, std::vector<unsigned char>& buffer,
                    unsigned int max_size, const boost::optional<unsigned int>& num_bins,
                    std::atomic_flag* flag, int64_t frame_id, unsigned int scan) {
  if (size == 0) return;
  const unsigned int expanded = detail::expandLzfScan(data, size, buffer, max_size, frame_id, scan);
  if (expanded % 4 != 0)
    LUMO_THROW(CorruptScanDataError(frame_id, scan, "LZF-decompressed size not a multiple of 4."));

  const unsigned char* p = buffer.data();
  const unsigned char* const end = p + expanded;
  uint32_t indices[detail::kPeakBlock];
  uint32_t intensities[detail::kPeakBlock];
  size_t n = 0;
  uint32_t index = 0;
  // Branch-free walk: every word is written to the block, and only a kept
  // peak advances the block's fill.
  if (!num_bins) {
    for (; p != end; p += 4) {
      const uint32_t word = detail::loadLe32(p);
      const bool peak = static_cast<int32_t>(word) >= 0;
      indices[n] = index;
      intensities[n] = word;
      n += peak;
      index += peak ? 1u : 0u - word;
      if (n == detail::kPeakBlock) {
        detail::deliverPeaks(sink, indices, intensities, n);
        n = 0;
      }
    }
  } else {
    const uint32_t bins = *num_bins;
    for (; p != end; p += 4) {
      const uint32_t word = detail::loadLe32(p);
      const bool peak = static_cast<int32_t>(word) >= 0;
      const bool inside = index < bins;
      if (peak && !inside) detail::reportBinOverflow(index, bins, flag);
      indices[n] = index;
      intensities[n] = word;
      n += peak && inside;
      index += peak ? 1u : 0u - word;
      if (n == detail::kPeakBlock) {
        detail::deliverPeaks(sink, indices, intensities, n);
        n = 0;
      }
    }
  }
  detail::deliverPeaks(sink, indices, intensities, n);
}

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_UIMF_DECOMPRESSION_H_
