// The layout of a read of scans [first, first + n) as the library writes it,
// in 32-bit words: n peak counts, then per scan its indices followed by its
// intensities. These helpers turn it into columns, one row per peak.
#ifndef KORA_PYTHON_EXT_SCAN_LAYOUT_H_
#define KORA_PYTHON_EXT_SCAN_LAYOUT_H_

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace koradata_py {

// Destinations of the rows of one read, each null when not wanted.
struct PeakColumns {
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

// Writes the peaks of `words` to the first rows of `out`.
// REQUIRES: `words` holds a read of `numScans` scans starting at scan
// `first`; each column of `out` has room for all its peaks;
// invMobilityOfScan has numScans entries when out.invMobility is set.
inline void scatterScans(const uint32_t* words, uint32_t numScans, uint32_t first,
                         const double* invMobilityOfScan, PeakColumns out) {
  const uint32_t* peaks = words + numScans;
  size_t row = 0;
  for (uint32_t s = 0; s < numScans; ++s) {
    const uint32_t count = words[s];
    if (out.tof) std::memcpy(out.tof + row, peaks, count * sizeof(uint32_t));
    if (out.intensity) std::memcpy(out.intensity + row, peaks + count, count * sizeof(uint32_t));
    if (out.scan) std::fill_n(out.scan + row, count, first + s);
    if (out.invMobility) std::fill_n(out.invMobility + row, count, invMobilityOfScan[s]);
    peaks += 2 * static_cast<size_t>(count);
    row += count;
  }
}

// Writes the time-of-flight indices of `words` as doubles to `out`.
// REQUIRES: as scatterScans; `out` has room for every peak.
inline void indicesAsDoubles(const uint32_t* words, uint32_t numScans, double* out) {
  const uint32_t* peaks = words + numScans;
  for (uint32_t s = 0; s < numScans; ++s) {
    const uint32_t count = words[s];
    out = std::copy_n(peaks, count, out);
    peaks += 2 * static_cast<size_t>(count);
  }
}

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_SCAN_LAYOUT_H_
