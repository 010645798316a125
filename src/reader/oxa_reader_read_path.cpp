// The read path of OxaReader and OxaReaderImpl: access to the stored scans of
// either frame file form. The decoding templates are in oxa_reader_decoding.h.
#include <stdexcept>

#include "reader/corrupt_data_error.h"
#include "reader/oxa_frame_reader.h"
#include "reader/oxa_reader.h"
#include "reader/oxa_reader_cache.h"
#include "reader/oxa_reader_impl.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace {

// A single scan read outside a hinted run.
constexpr uint64_t kMaxScanRead = 0x10000;
// A hinted run of scans.
constexpr uint64_t kMaxRunRead = 0x40000000;

}  // namespace

std::pair<const unsigned char*, unsigned int> OxaReaderImpl::getScanBlob(int64_t frame_id,
                                                                         unsigned int scan) {
  if (!scanCache)
    LUMO_THROW(
        std::runtime_error("Unexpected call to getScanBlob for analysis with frame compression"));
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  if (!scanCache->contains(info.koraId, scan)) {
    scanCache->fill(
        binaryFile, frame_id, info.koraId, scan, scan + 1,
        [&](uint64_t bytes) {
          if (bytes > kMaxScanRead)
            LUMO_THROW(CorruptScanDataError(frame_id, scan, "Compressed scan size too large."));
        },
        [&] { LUMO_THROW(CorruptScanDataError(frame_id, scan, "Error seeking to scan data.")); },
        [&] { LUMO_THROW(CorruptScanDataError(frame_id, scan, "Error reading scan data.")); });
  }
  return scanCache->getScan(scan);
}

void OxaReaderImpl::hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin,
                                          unsigned int scan_end) {
  if (scan_end < scan_begin) LUMO_THROW(std::invalid_argument("scan_end must be >= scan_begin."));
  if (!scanCache) return;
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  scanCache->fill(
      binaryFile, frame_id, info.koraId, scan_begin, scan_end,
      [&](uint64_t bytes) {
        if (bytes > kMaxRunRead)
          LUMO_THROW(CorruptFrameDataError(frame_id, "Compressed scan-range size too large."));
      },
      [&] { LUMO_THROW(CorruptFrameDataError(frame_id, "Error seeking to scan-range data.")); },
      [&] { LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading scan-range data.")); });
}

const detail::ByteBuffer& OxaReaderImpl::getDecompressedScanData(int64_t frame_id,
                                                                 unsigned int scan,
                                                                 unsigned int& first,
                                                                 unsigned int& last) {
  if (!frameReader)
    LUMO_THROW(std::runtime_error(
        "Unexpected call to getDecompressedScanData for analysis with scan compression"));
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  frameReader->fill(binaryFile, frame_id, info.koraId);
  return frameReader->get(scan, first, last);
}

std::pair<const unsigned char*, unsigned int> OxaReader::getScanBlob(int64_t frame_id,
                                                                     unsigned int scan) {
  return impl->getScanBlob(frame_id, scan);
}

void OxaReader::hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin,
                                      unsigned int scan_end) {
  impl->hintWillReadScanRange(frame_id, scan_begin, scan_end);
}

const detail::ByteBuffer& OxaReader::getDecompressedScanData(int64_t frame_id, unsigned int scan,
                                                             unsigned int& first,
                                                             unsigned int& last) {
  return impl->getDecompressedScanData(frame_id, scan, first, last);
}

int32_t OxaReader::getSchemaVersionMajor() const { return impl->getSchemaVersionMajor(); }

}  // namespace kora
}  // namespace io
}  // namespace lumo
