#include "reader/uimf_decompression.h"

#include <cassert>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

unsigned int expandLzfScan(const unsigned char* data, int size, std::vector<unsigned char>& buffer,
                           unsigned int max_size, int64_t frame_id, unsigned int scan) {
  assert(size > 0);
  for (;;) {
    unsigned int expanded;
    try {
      expanded = uimf::decompressLzf(data, static_cast<unsigned int>(size), buffer.data(),
                                     static_cast<unsigned int>(buffer.size()));
    } catch (const uimf::InvalidInputStream&) {
      LUMO_THROW(CorruptScanDataError(frame_id, scan, "Corrupt LZF input stream."));
    }
    if (expanded != 0) {
      if (expanded % 4 != 0)
        LUMO_THROW(
            CorruptScanDataError(frame_id, scan, "LZF-decompressed size not a multiple of 4."));
      return expanded / 4;
    }
    if (buffer.size() == max_size)
      LUMO_THROW(
          CorruptScanDataError(frame_id, scan, "Maximum decompression-buffer size exceeded."));
    // Grows 1000, 2001, 4003, ... up to max_size; the size stays for later scans.
    buffer.resize(std::min<size_t>(max_size, 2 * buffer.size() + 1));
  }
}

void reportBinOverflow(uint32_t index, unsigned int num_bins, std::atomic_flag* flag) {
  if (flag != nullptr && flag->test_and_set()) return;
  const logging::Logger logger = logging::Logger::getLogger("lumo.io.kora.decodeUimfRle");
  logging::LogStream ls(logger, logging::Level::WARN);
  if (ls.enabled())
    ls.stream() << "Index " << index << " exceeds number of bins = " << num_bins
                << ", silently dropping from now on.";
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo
