#include "reader/oxa_frame_reader.h"

#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>

#include "reader/corrupt_data_error.h"
#include "reader/little_endian.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace {

constexpr int64_t kNoFrame = -2;

[[noreturn]] void throwZstdError(int64_t frame_id, const char* text) {
  LUMO_THROW(CorruptFrameDataError(frame_id, std::string("Error decompressing frame data: ") + text));
}

[[noreturn]] void throwZstdError(int64_t frame_id, size_t code) {
  throwZstdError(frame_id, ZSTD_getErrorName(code));
}

}  // namespace

OxaFrameReader::OxaFrameReader()
    : compressed(kInitialCompressedSize),
      decompressed(kInitialExpandedSize),
      dctx(ZSTD_createDCtx()) {
  if (dctx == nullptr) LUMO_THROW(std::bad_alloc());
}

OxaFrameReader::~OxaFrameReader() { ZSTD_freeDCtx(dctx); }

void OxaFrameReader::fill(std::istream& stream, int64_t frame_id, int64_t kora_id) {
  if (kora_id == cachedKoraId) return;
  cachedKoraId = kNoFrame;
  scanBoundaries.clear();
  if (kora_id < 0) {
    cachedKoraId = kora_id;
    numScans = 0;
    return;
  }

  stream.seekg(static_cast<std::streamoff>(kora_id));
  if (!stream.good()) LUMO_THROW(CorruptFrameDataError(frame_id, seekFailureText(stream)));
  unsigned char head[8];
  stream.read(reinterpret_cast<char*>(head), sizeof head);
  if (stream.gcount() != static_cast<std::streamsize>(sizeof head))
    LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading 8-byte binary header."));
  const uint32_t frame_size = detail::loadLe32(head);
  numScans = detail::loadLe32(head + 4);
  if (frame_size > kMaxFrameSize)
    LUMO_THROW(CorruptFrameDataError(frame_id, "Compressed scan size too large."));
  stream.seekg(static_cast<std::streamoff>(kora_id + 8));
  if (!stream.good()) LUMO_THROW(CorruptFrameDataError(frame_id, "Error seeking to frame data."));

  const uint32_t c = frame_size - 8;
  if (c == 0) {
    decompressed.clear();
    cachedKoraId = kora_id;
    return;
  }
  // A frameSize below 8 wraps c to nearly 4 GiB: refused as the buffer's
  // length error rather than attempted.
  if (c > kMaxFrameSize) LUMO_THROW(std::length_error("vector::_M_default_append"));
  detail::resizeDiscarding(compressed, c);
  stream.read(reinterpret_cast<char*>(compressed.data()), c);
  if (stream.gcount() != static_cast<std::streamsize>(c))
    LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading frame data."));

  const unsigned long long content = ZSTD_getFrameContentSize(compressed.data(), c);
  if (ZSTD_isError(static_cast<size_t>(content)))
    throwZstdError(frame_id, static_cast<size_t>(content));
  // Any declared size is taken, apart from the fuzz build's limit.
  if (content > detail::believedSizeLimit(~uint64_t{0}))
    throwZstdError(frame_id, ZSTD_getErrorString(ZSTD_error_dstSize_tooSmall));
  const uint32_t d = static_cast<uint32_t>(content);
  detail::resizeDiscarding(decompressed, d);
  const size_t result = ZSTD_decompressDCtx(dctx, decompressed.data(), d, compressed.data(), c);
  if (ZSTD_isError(result)) throwZstdError(frame_id, result);

  // Scan boundaries: running sums of the length table. A table longer than
  // the data is cut at W, which the count test below then reports.
  const uint32_t w = d / 4;
  const unsigned char* const p0 = decompressed.data();
  const uint32_t listed = std::min(numScans, w);
  scanBoundaries.reserve(static_cast<size_t>(listed) + 1);
  uint32_t sum = 0;
  for (uint32_t i = 0; i < listed; ++i) {
    sum += static_cast<uint32_t>(p0[i]) | static_cast<uint32_t>(p0[w + i]) << 8 |
           static_cast<uint32_t>(p0[2 * size_t{w} + i]) << 16 |
           static_cast<uint32_t>(p0[3 * size_t{w} + i]) << 24;
    scanBoundaries.push_back(sum);
  }
  scanBoundaries.push_back(w);
  if (scanBoundaries.size() != static_cast<size_t>(numScans) + 1)
    LUMO_THROW(CorruptFrameDataError(
        frame_id, "Found invalid number of scans for frame, expected [" + std::to_string(numScans) +
                      "] got [" + std::to_string(scanBoundaries.size() - 1) + "]"));
  cachedKoraId = kora_id;
}

const detail::ByteBuffer& OxaFrameReader::get(unsigned int scan, unsigned int& first,
                                              unsigned int& last) const {
  if (scan >= numScans)
    LUMO_THROW(std::invalid_argument("Scan number [" + std::to_string(scan) + "] out of range."));
  scanWords(scan, first, last);
  return decompressed;
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
