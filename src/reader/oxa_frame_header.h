// The header of a frame block of a per-scan compressed frame file.
//
// Block layout (all little-endian): a word that is kept but not interpreted,
// the number of scans n (at most 131072), then n + 1 offsets from the block
// start: the start of each scan and behind them the end of the last scan.
#ifndef KORA_READER_OXA_FRAME_HEADER_H_
#define KORA_READER_OXA_FRAME_HEADER_H_

#include <cstdint>
#include <istream>
#include <utility>
#include <vector>

#include "logging/logger.h"

namespace lumo {
namespace io {
namespace kora {

// Thread-compatible: one thread at a time.
class OxaFrameHeader {
 public:
  static constexpr uint32_t kMaxScans = 0x20000;

  OxaFrameHeader();

  // Reads the header of the block at which `stream` stands; the caller has
  // seeked there. frameId and koraId are set first, so a header that fails to
  // load still carries the new identity (with whatever table it had).
  // Throws CorruptFrameDataError for a short header, more than kMaxScans
  // scans, or a short offset table. The stream's failure state is kept.
  void initFromStream(int64_t frame_id, int64_t kora_id, std::istream& stream);

  // File offset and size in bytes of scan `scan`. Offsets that run backwards
  // give a huge size, for the caller's size limits to catch.
  // Throws std::invalid_argument "Scan number out of range." for a scan not in
  // the table, also when no table is loaded.
  std::pair<uint64_t, uint32_t> getScanStartOffset(uint32_t scan) const;

  logging::Logger logger;  // named lumo.io.kora.OxaReader.OxaFrameHeader; unused
  int64_t frameId = -1;    // frame of the last load, for error messages
  int64_t koraId = -1;     // block start of the last load; -1 before any
  uint32_t headerWord = 0;
  std::vector<uint32_t> scanOffsets;  // numScans + 1 entries once loaded
};

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_FRAME_HEADER_H_
