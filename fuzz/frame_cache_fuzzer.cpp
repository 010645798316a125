// Reads arbitrary bytes as a per-scan compressed frame file with one block at
// offset 0: the frame header through the scan cache, a run of scans as a
// hinted read, each scan from the run (or alone, with the single-scan limit)
// and expanded by the LZF scan decoder. Any failure must be one the read path
// documents.
//
// Input: scan_begin (2 bytes, little-endian), number of scans (1 byte), then
// the file.
#include <atomic>
#include <boost/optional.hpp>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "reader/corrupt_data_error.h"
#include "reader/oxa_reader_cache.h"
#include "reader/uimf_decompression.h"

namespace {

using lumo::io::kora::CorruptDataError;
using lumo::io::kora::CorruptFrameDataError;
using lumo::io::kora::CorruptScanDataError;

// One run of the cache as the reader uses it: a limit and texts per caller.
void fill(lumo::io::kora::OxaReaderCache& cache, std::istream& stream, int64_t kora_id,
          unsigned int begin, unsigned int end, uint64_t limit) {
  cache.fill(
      stream, 1, kora_id, begin, end,
      [&](uint64_t bytes) {
        if (bytes > limit) throw CorruptFrameDataError(1, "too large");
      },
      [] { throw CorruptFrameDataError(1, "seek"); },
      [] { throw CorruptFrameDataError(1, "read"); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  const unsigned int begin = data[0] | static_cast<unsigned int>(data[1]) << 8;
  const unsigned int end = begin + data[2];
  // One cache for all runs, as in a reader's life: its buffer keeps its
  // allocation. The block stands at offset 0 or 1 by turns, so that every run
  // loads its header and its run anew.
  static lumo::io::kora::OxaReaderCache cache;
  static int64_t kora_id = 0;
  kora_id = 1 - kora_id;
  std::istringstream stream(std::string(static_cast<size_t>(kora_id), '\0') +
                            std::string(reinterpret_cast<const char*>(data) + 3, size - 3));
  std::vector<unsigned char> lzf(1000);
  // Spent by the first run: one log line per process, not one per run.
  static std::atomic_flag logged = ATOMIC_FLAG_INIT;
  uint64_t total = 0;
  try {
    fill(cache, stream, kora_id, begin, end, 0x40000000);
    for (unsigned int scan = begin; scan < end; ++scan) {
      if (!cache.contains(kora_id, scan)) fill(cache, stream, kora_id, scan, scan + 1, 0x10000);
      const std::pair<const unsigned char*, unsigned int> blob = cache.getScan(scan);
      if (blob.second == 0) continue;
      try {
        lumo::io::kora::decompressUimf(blob.first, static_cast<int>(blob.second),
                                       kora_fuzz::PeakChecksum{&total}, lzf, 4194304,
                                       boost::optional<unsigned int>(4000), &logged, 1, scan);
      } catch (const CorruptScanDataError&) {
        break;  // as a read does: a scan that fails ends it
      }
    }
  } catch (const CorruptDataError&) {
  } catch (const std::invalid_argument&) {  // "Scan number out of range."
  }
  volatile uint64_t keep = total;
  (void)keep;
  return 0;
}
