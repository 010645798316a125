// The layout of a read of scans [first, first + n) as the library writes it,
// in 32-bit words: n peak counts, then per scan its indices followed by its
// intensities. These helpers turn it into columns, one row per peak.
#ifndef KORA_PYTHON_EXT_SCAN_LAYOUT_H_
#define KORA_PYTHON_EXT_SCAN_LAYOUT_H_

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "short_copy.h"

namespace koradata_py {

// Destinations of the rows of one read, each null when not wanted.
struct PeakColumns {
  int64_t* frame = nullptr;  // every row set to frameId
  int64_t frameId = 0;
  uint32_t* scan = nullptr;
  uint32_t* tof = nullptr;
  uint32_t* intensity = nullptr;
  // 1/K0 per row, taken from invMobilityOfScan[scan - first].
  double* invMobility = nullptr;
};

// Number of peaks in a read of `numScans` scans that is `words` long.
// REQUIRES: words >= numScans, words - numScans even (the library's layout).
inline size_t peakCount(size_t words, uint32_t numScans) {
  assert(words >= numScans && (words - numScans) % 2 == 0);
  return (words - numScans) / 2;
}

// Calls op(s, count, indices) for each scan s of `words` in order; its
// intensities follow at indices + count.
template <class Op>
inline void forEachScan(const uint32_t* words, uint32_t numScans, Op op) {
  const uint32_t* peaks = words + numScans;
  for (uint32_t s = 0; s < numScans; ++s) {
    const uint32_t count = words[s];
    op(s, count, peaks);
    peaks += 2 * static_cast<size_t>(count);
  }
}

// Writes the peaks of `words` to the first rows of `out`.
// REQUIRES: `words` holds a read of `numScans` scans starting at scan
// `first`; each column of `out` has room for all its peaks;
// invMobilityOfScan has numScans entries when out.invMobility is set.
inline void scatterScans(const uint32_t* words, uint32_t numScans, uint32_t first,
                         const double* invMobilityOfScan, PeakColumns out) {
  // Scan by scan, all columns together: each scan's words are read once,
  // and every column is written in ascending rows.
  forEachScan(words, numScans, [&](uint32_t s, uint32_t count, const uint32_t* indices) {
    if (out.tof) out.tof = copyShort(out.tof, indices, count);
    if (out.intensity) out.intensity = copyShort(out.intensity, indices + count, count);
    if (out.scan) out.scan = fillShort(out.scan, count, first + s);
    if (out.invMobility) out.invMobility = fillShort(out.invMobility, count, invMobilityOfScan[s]);
    if (out.frame) out.frame = fillShort(out.frame, count, out.frameId);
  });
}

// Writes the time-of-flight indices of `words` as doubles to `out`.
// REQUIRES: as scatterScans; `out` has room for every peak.
inline void indicesAsDoubles(const uint32_t* words, uint32_t numScans, double* out) {
  forEachScan(words, numScans, [&](uint32_t, uint32_t count, const uint32_t* indices) {
    out = std::copy_n(indices, count, out);
  });
}

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_SCAN_LAYOUT_H_
