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
// until the expansion fits. Returns the number of words expanded.
// Throws CorruptScanDataError for a corrupt stream, an expansion above
// `max_size` bytes, or one that is not a whole number of words.
// REQUIRES: size > 0.
unsigned int expandLzfScan(const unsigned char* data, int size, std::vector<unsigned char>& buffer,
                           unsigned int max_size, int64_t frame_id, unsigned int scan);

// Logs that `index` is beyond `num_bins`, unless `flag` was already set.
void reportBinOverflow(uint32_t index, unsigned int num_bins, std::atomic_flag* flag);

// How far a word moves the running index on: 1 for a peak (word >= 0 as a
// signed number), -word for a skip. Branch-free, since peaks and skips
// follow one another without a pattern.
inline uint32_t uimfIndexStep(uint32_t word) {
  const uint32_t skip = static_cast<uint32_t>(static_cast<int32_t>(word) >> 31);  // all ones
  return 1u + (~word & skip);  // ~word + 1 == -word
}

// Walks the expanded words [p, end) of a scan, continuing the running
// `index`, and writes each kept peak to indices[n] and intensities[n], `n`
// counting on from its value on entry, until the words end or `n` reaches
// `room`. Returns the first word not walked. A peak at or beyond `num_bins`,
// when set, is dropped (the first one reported through `flag`) and still
// moves the index on.
// REQUIRES: both arrays hold `room` entries.
template <bool kCheckBins>
inline const unsigned char* walkUimfWords(const unsigned char* p, const unsigned char* end,
                                          uint32_t num_bins, std::atomic_flag* flag,
                                          uint32_t& index, uint32_t* indices,
                                          uint32_t* intensities, size_t room, size_t& n) {
  // Every word is written at n, and only a kept peak moves n on.
  for (; p != end && n < room; p += 4) {
    const uint32_t word = loadLe32(p);
    const uint32_t peak = ~word >> 31;  // 1 for a peak, 0 for a skip
    uint32_t keep = peak;
    if (kCheckBins) {
      const bool inside = index < num_bins;
      if (peak && !inside) reportBinOverflow(index, num_bins, flag);
      keep = peak & inside;
    }
    indices[n] = index;
    intensities[n] = word;
    n += keep;
    index += uimfIndexStep(word);
  }
  return p;
}

inline const unsigned char* walkUimfWords(const unsigned char* p, const unsigned char* end,
                                          const boost::optional<unsigned int>& num_bins,
                                          std::atomic_flag* flag, uint32_t& index,
                                          uint32_t* indices, uint32_t* intensities, size_t room,
                                          size_t& n) {
  if (num_bins)
    return walkUimfWords<true>(p, end, *num_bins, flag, index, indices, intensities, room, n);
  return walkUimfWords<false>(p, end, 0, flag, index, indices, intensities, room, n);
}

// Walks all expanded words [p, end) of a scan as walkUimfWords does, into
// indices[] and intensities[], and returns the number of peaks kept. The
// walk first assumes that every peak lies below `num_bins`, without a test
// per word, and checks that once at the end from the final index (kept wide,
// so that a wrap shows); only a scan that reaches the bins is walked again
// word by word.
// REQUIRES: both arrays hold (end - p) / 4 entries.
inline size_t walkUimfScan(const unsigned char* p, const unsigned char* end, uint32_t num_bins,
                           std::atomic_flag* flag, uint32_t* indices, uint32_t* intensities) {
  uint64_t index = 0;
  size_t n = 0;
  for (const unsigned char* q = p; q != end; q += 4) {
    const uint32_t word = loadLe32(q);
    indices[n] = static_cast<uint32_t>(index);
    intensities[n] = word;
    n += ~word >> 31;
    index += uimfIndexStep(word);
  }
  if (index <= num_bins) return n;
  uint32_t checked_index = 0;
  n = 0;
  walkUimfWords<true>(p, end, num_bins, flag, checked_index, indices, intensities,
                      static_cast<size_t>(end - p) / 4, n);
  return n;
}

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
  const unsigned int words = detail::expandLzfScan(data, size, buffer, max_size, frame_id, scan);
  const unsigned char* p = buffer.data();
  const unsigned char* const end = p + 4 * size_t{words};
  uint32_t indices[detail::kPeakBlock];
  uint32_t intensities[detail::kPeakBlock];
  uint32_t index = 0;
  while (p != end) {
    size_t n = 0;
    p = detail::walkUimfWords(p, end, num_bins, flag, index, indices, intensities,
                              detail::kPeakBlock, n);
    detail::deliverPeaks(sink, indices, intensities, n);
  }
}

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_UIMF_DECOMPRESSION_H_
