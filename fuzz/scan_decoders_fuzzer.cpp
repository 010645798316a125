// Decodes arbitrary bytes as a stored scan of either frame form: as an LZF
// scan through decompressUimf, and as an expanded frame through the word
// ranges of decodeRLE2. Any failure must be one of the library's exceptions.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "reader/corrupt_data_error.h"
#include "reader/intensity_normalizer.h"
#include "reader/rle2_decoder.h"
#include "reader/uimf_decompression.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 9) return 0;
  uint64_t total = 0;
  // Spent by the first run: one log line per process, not one per run.
  static std::atomic_flag flag = ATOMIC_FLAG_INIT;
  std::vector<unsigned char> buffer(1000);
  const unsigned int bins = static_cast<unsigned int>(data[0]) << 8 | data[1];
  try {
    lumo::io::kora::decompressUimf(data + 8, static_cast<int>(size - 8),
                                   kora_fuzz::PeakChecksum{&total}, buffer, 1 << 16,
                                   boost::optional<unsigned int>(bins), &flag, 1, 2);
  } catch (const lumo::io::kora::CorruptScanDataError&) {
  }

  const std::vector<unsigned char> frame(data + 8, data + size);
  const unsigned int first = data[2] | static_cast<unsigned int>(data[3]) << 8;
  const unsigned int last = data[4] | static_cast<unsigned int>(data[5]) << 8;
  try {
    lumo::io::kora::detail::withNormalizer(
        static_cast<lumo::io::kora::NormalizationType>(2 + data[6] % 3), 100.0, 37.5,
        kora_fuzz::PeakChecksum{&total},
        [&](auto sink) { lumo::io::kora::decoding::decodeRLE2(1, 2, frame, first, last, sink); });
  } catch (const lumo::io::kora::CorruptScanDataError&) {
  }
  volatile uint64_t sink_total = total;
  (void)sink_total;
  return 0;
}
