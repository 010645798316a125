#include "reader/oxa_frame_header.h"

#include <stdexcept>

#include "reader/corrupt_data_error.h"
#include "reader/little_endian.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

OxaFrameHeader::OxaFrameHeader()
    : logger(logging::Logger::getLogger("lumo.io.kora.OxaReader.OxaFrameHeader")) {}

void OxaFrameHeader::initFromStream(int64_t frame_id, int64_t kora_id, std::istream& stream) {
  frameId = frame_id;
  koraId = kora_id;

  unsigned char head[8];
  stream.read(reinterpret_cast<char*>(head), sizeof head);
  if (stream.gcount() != static_cast<std::streamsize>(sizeof head))
    LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading 8-byte binary header."));
  headerWord = detail::loadLe32(head);
  const uint32_t num_scans = detail::loadLe32(head + 4);
  if (num_scans > kMaxScans)
    LUMO_THROW(CorruptFrameDataError(frame_id, "Maximum number of scans exceeded."));

  scanOffsets.resize(num_scans + 1);
  const std::streamsize bytes = static_cast<std::streamsize>(scanOffsets.size() * 4);
  stream.read(reinterpret_cast<char*>(scanOffsets.data()), bytes);
  if (stream.gcount() != bytes)
    LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading binary scan offsets."));
#if !(defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
  for (uint32_t& offset : scanOffsets)
    offset = detail::loadLe32(reinterpret_cast<const unsigned char*>(&offset));
#endif
}

std::pair<uint64_t, uint32_t> OxaFrameHeader::getScanStartOffset(uint32_t scan) const {
  if (scanOffsets.empty() || scan >= scanOffsets.size() - 1)
    LUMO_THROW(std::invalid_argument("Scan number out of range."));
  return {static_cast<uint64_t>(koraId) + scanOffsets[scan],
          scanOffsets[scan + 1] - scanOffsets[scan]};
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
