// The cache of a per-scan compressed frame file: one run of consecutive
// compressed scans of one frame, read from the file in one piece, and the
// header of the frame touched last. Scans of a block follow one another
// without gaps, which is what lets a whole run come in with one read. Nothing
// expanded is kept here.
//
// Invariants:
//  1. scanRangeBegin == scanRangeEnd means that nothing is cached; then
//     cachedKoraId and blockStart are not read.
//  2. While a run is cached, header describes its frame and data[0] holds the
//     byte at file offset blockStart.
//  3. data only grows; its allocation stays for the reader's life. Its bytes
//     are uninitialised until a read writes them.
//
// Thread-compatible: one thread at a time. A pointer from getScan is valid
// until the next fill.
#ifndef KORA_READER_OXA_READER_CACHE_H_
#define KORA_READER_OXA_READER_CACHE_H_

#include <boost/noncopyable.hpp>
#include <cstdint>
#include <istream>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "reader/byte_buffer.h"
#include "reader/corrupt_data_error.h"
#include "reader/oxa_frame_header.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

class OxaReaderCache : boost::noncopyable {
 public:
  static constexpr size_t kInitialDataSize = detail::initialBufferSize(10000000);

  OxaReaderCache();

  // Replaces the cached run by scans [scan_begin, scan_end) of the frame
  // `frame_id` whose block starts at `kora_id`, reading them with one seek and
  // one read. The cache is emptied first, so after any failure nothing is
  // cached. An empty range, or a run of 0 bytes, only loads the header.
  //
  // The three function objects carry the caller's limit and words:
  //   tooLarge(uint64_t bytes): called with the run's size; throws when it is
  //                             above the caller's limit;
  //   seekFailed(), readFailed(): throw; called when the seek to the run or
  //                             the read of it fails.
  // Throws std::invalid_argument "scan_end must be >= scan_begin." for a
  // reversed range, "Scan number out of range." for a scan behind the frame,
  // and the errors of ensureFrameHeaderLoaded.
  template <class TooLarge, class SeekFailed, class ReadFailed>
  void fill(std::istream& stream, int64_t frame_id, int64_t kora_id, unsigned int scan_begin,
            unsigned int scan_end, TooLarge tooLarge, SeekFailed seekFailed, ReadFailed readFailed);

  // Loads the header of the block at `kora_id` unless it is the one loaded
  // last (also when that load failed).
  // Throws CorruptFrameDataError for a failed seek and the errors of
  // OxaFrameHeader::initFromStream.
  void ensureFrameHeaderLoaded(std::istream& stream, int64_t frame_id, int64_t kora_id);

  bool contains(int64_t kora_id, unsigned int scan) const {
    return cachedKoraId == kora_id && scan >= scanRangeBegin && scan < scanRangeEnd;
  }

  // Compressed bytes of a cached scan; (nullptr, 0) for an empty scan.
  // Throws CorruptScanDataError when the frame's offsets put the scan outside
  // the cached run (offsets that run backwards inside the run).
  // REQUIRES: the last fill was for the scan's frame and took the scan in, or
  // found it empty (a run of 0 bytes caches nothing).
  std::pair<const unsigned char*, unsigned int> getScan(unsigned int scan) const;

 private:
  detail::ByteBuffer data;
  int64_t cachedKoraId = -1;
  uint32_t scanRangeBegin = 0;
  uint32_t scanRangeEnd = 0;
  uint64_t blockStart = 0;
  uint64_t runSize = 0;  // bytes of the cached run at the front of data
  OxaFrameHeader header;
};

template <class TooLarge, class SeekFailed, class ReadFailed>
void OxaReaderCache::fill(std::istream& stream, int64_t frame_id, int64_t kora_id,
                          unsigned int scan_begin, unsigned int scan_end, TooLarge tooLarge,
                          SeekFailed seekFailed, ReadFailed readFailed) {
  if (scan_end < scan_begin) LUMO_THROW(std::invalid_argument("scan_end must be >= scan_begin."));
  scanRangeEnd = scanRangeBegin;
  ensureFrameHeaderLoaded(stream, frame_id, kora_id);
  if (scan_end == scan_begin) return;

  const uint64_t start = header.getScanStartOffset(scan_begin).first;
  const std::pair<uint64_t, uint32_t> last = header.getScanStartOffset(scan_end - 1);
  const uint64_t total = last.first + last.second - start;
  if (total == 0) return;
  tooLarge(total);
  if (total > std::numeric_limits<detail::ByteBuffer::size_type>::max() ||
      total > static_cast<uint64_t>(std::numeric_limits<std::streamsize>::max()))
    LUMO_THROW(
        CorruptFrameDataError(frame_id, "Binary scan data block too large for std::vector<>"));
  if (data.size() < total) detail::resizeDiscarding(data, static_cast<size_t>(total));

  blockStart = start;
  runSize = total;
  stream.seekg(static_cast<std::streamoff>(blockStart));
  if (!stream.good()) seekFailed();
  const std::streamsize bytes = static_cast<std::streamsize>(total);
  stream.read(reinterpret_cast<char*>(data.data()), bytes);
  if (stream.gcount() != bytes) readFailed();

  cachedKoraId = kora_id;
  scanRangeBegin = scan_begin;
  scanRangeEnd = scan_end;
}

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_READER_CACHE_H_
