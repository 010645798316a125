#include "reader/oxa_reader_cache.h"

namespace lumo {
namespace io {
namespace kora {

OxaReaderCache::OxaReaderCache() : data(kInitialDataSize) {}

void OxaReaderCache::ensureFrameHeaderLoaded(std::istream& stream, int64_t frame_id,
                                             int64_t kora_id) {
  if (header.koraId == kora_id) return;
  stream.seekg(static_cast<std::streamoff>(kora_id));
  if (!stream.good()) LUMO_THROW(CorruptFrameDataError(frame_id, seekFailureText(stream)));
  header.initFromStream(frame_id, kora_id, stream);
}

std::pair<const unsigned char*, unsigned int> OxaReaderCache::getScan(unsigned int scan) const {
  const std::pair<uint64_t, uint32_t> where = header.getScanStartOffset(scan);
  if (where.second == 0) return {nullptr, 0};
  if (where.first < blockStart || where.first - blockStart > runSize ||
      where.second > runSize - (where.first - blockStart))
    LUMO_THROW(CorruptScanDataError(header.frameId, scan, "Scan offsets lie outside the frame."));
  return {data.data() + (where.first - blockStart), where.second};
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
