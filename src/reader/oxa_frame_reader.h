// The reader of a per-frame compressed frame file. A frame block is a word
// frameSize (the block's size including the 8 header bytes, at most 1 GiB),
// a word numScans, and one Zstandard frame that states its content size. The
// content is a table of W words in four byte planes; words 0 to numScans - 1
// are the scan lengths (word 0 the start of the first scan), the scans follow
// as word pairs up to word W.
//
// A frame is read and expanded whole, once, and kept until another KoraId is
// asked for; one decompression context serves every frame.
//
// Invariants:
//  1. cachedKoraId == -2: no frame is held.
//  2. cachedKoraId >= 0 with numScans scans: scanBoundaries holds numScans + 1
//     word positions, the last being W; or it is empty and the frame has no
//     payload, so every scan is empty.
//  3. cachedKoraId < -2 or == -1: a frame without data; every scan is refused.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_READER_OXA_FRAME_READER_H_
#define KORA_READER_OXA_FRAME_READER_H_

#include <boost/noncopyable.hpp>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <vector>

#include "reader/byte_buffer.h"

struct ZSTD_DCtx_s;

namespace lumo {
namespace io {
namespace kora {

class OxaFrameReader : boost::noncopyable {
 public:
  static constexpr uint32_t kMaxFrameSize = detail::believedSizeLimit(0x40000000);
  // Starting sizes of the two buffers, so that ordinary frames never make
  // them grow; the allocation is reused for every frame.
  static constexpr size_t kInitialCompressedSize = detail::initialBufferSize(10000000);
  static constexpr size_t kInitialExpandedSize = detail::initialBufferSize(20000000);

  OxaFrameReader();
  ~OxaFrameReader();

  // Makes the frame whose block starts at `kora_id` the current one, unless
  // it is already. A negative `kora_id` is a frame without data. After a
  // failure no frame is held. `frame_id` only names the frame in errors.
  // Throws CorruptFrameDataError for a failed seek or read, a frame above
  // kMaxFrameSize, data Zstandard refuses, or a length table that does not
  // fit the data; std::length_error for a frameSize below 8.
  void fill(std::istream& stream, int64_t frame_id, int64_t kora_id);

  // The expanded frame and, in `first` and `last`, the word range of `scan`.
  // Valid until the next fill of another frame.
  // Throws std::invalid_argument "Scan number [<scan>] out of range.".
  const detail::ByteBuffer& get(unsigned int scan, unsigned int& first, unsigned int& last) const;
  // The number of scans of the current frame, as its header gives it.
  unsigned int scanCount() const { return numScans; }
  // The expanded frame, as get returns it.
  const detail::ByteBuffer& expanded() const { return decompressed; }
  // The word range of `scan`, as get gives it, without the range check.
  // REQUIRES: scan < the frame's number of scans.
  void scanWords(unsigned int scan, unsigned int& first, unsigned int& last) const {
    if (scanBoundaries.empty()) {
      first = last = 0;
    } else {
      first = scanBoundaries[scan];
      last = scanBoundaries[scan + 1];
    }
  }

 private:
  // Both sized by words of the file; only the bytes read or expanded are
  // touched.
  detail::ByteBuffer compressed;
  detail::ByteBuffer decompressed;
  std::vector<uint32_t> scanBoundaries;
  int64_t cachedKoraId = -2;
  uint32_t numScans = 0;
  ZSTD_DCtx_s* dctx;
};

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_FRAME_READER_H_
