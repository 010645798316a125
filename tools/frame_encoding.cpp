#include "tools/frame_encoding.h"

#include <lzf.h>
#include <zstd.h>

#include <cassert>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace writer {

namespace {

void appendLe32(Bytes& out, uint32_t w) {
  out.push_back(static_cast<unsigned char>(w));
  out.push_back(static_cast<unsigned char>(w >> 8));
  out.push_back(static_cast<unsigned char>(w >> 16));
  out.push_back(static_cast<unsigned char>(w >> 24));
}

}  // namespace

std::vector<int32_t> encodeScanWords(const Scan& scan) {
  assert(scan.indices.size() == scan.intensities.size());
  std::vector<int32_t> words;
  words.reserve(scan.size() + scan.size() / 2);
  uint32_t running = 0;
  for (size_t i = 0; i < scan.size(); ++i) {
    const uint32_t index = scan.indices[i];
    assert(index >= running);
    assert(scan.intensities[i] <= 0x7FFFFFFFu);
    // A gap wider than a word can say is split into several skips.
    uint32_t gap = index - running;
    while (gap > 0) {
      const uint32_t step = gap > 0x7FFFFFFFu ? 0x7FFFFFFFu : gap;
      words.push_back(-static_cast<int32_t>(step));
      gap -= step;
    }
    words.push_back(static_cast<int32_t>(scan.intensities[i]));
    running = index + 1;
  }
  return words;
}

Bytes wordsToBytes(const std::vector<int32_t>& words) {
  Bytes out;
  out.reserve(4 * words.size());
  for (int32_t w : words) appendLe32(out, static_cast<uint32_t>(w));
  return out;
}

Bytes wordsToBytes(const std::vector<uint32_t>& words) {
  Bytes out;
  out.reserve(4 * words.size());
  for (uint32_t w : words) appendLe32(out, w);
  return out;
}

Bytes lzfLiteralRuns(const Bytes& raw) {
  Bytes out;
  out.reserve(raw.size() + raw.size() / 32 + 1);
  for (size_t pos = 0; pos < raw.size();) {
    const size_t run = std::min<size_t>(32, raw.size() - pos);
    out.push_back(static_cast<unsigned char>(run - 1));
    out.insert(out.end(), raw.begin() + pos, raw.begin() + pos + run);
    pos += run;
  }
  return out;
}

Bytes lzfCompress(const Bytes& raw, bool literal_only) {
  if (raw.empty()) return {};
  if (literal_only || raw.size() < 2) return lzfLiteralRuns(raw);
  // Output limited to one byte less than the input: a result means the scan
  // shrank; 0 means it did not (or did not fit), and literal runs are used.
  Bytes out(raw.size() - 1);
  const unsigned int n = lzf_compress(raw.data(), static_cast<unsigned int>(raw.size()), out.data(),
                                      static_cast<unsigned int>(out.size()));
  if (n == 0) return lzfLiteralRuns(raw);
  out.resize(n);
  return out;
}

std::vector<uint32_t> encodeFrameWordTable(const std::vector<Scan>& scans,
                                           const std::set<uint32_t>& odd_word_scans) {
  std::vector<uint32_t> words;
  encodeFrameWordTable(scans, odd_word_scans, words);
  return words;
}

void encodeFrameWordTable(const std::vector<Scan>& scans, const std::set<uint32_t>& odd_word_scans,
                          std::vector<uint32_t>& words) {
  const size_t n = scans.size();
  words.assign(n, 0);
  size_t total = n;
  for (size_t s = 0; s < n; ++s) {
    total += 2 * scans[s].size() + (odd_word_scans.count(static_cast<uint32_t>(s)) ? 1 : 0);
  }
  words.reserve(total);
  if (n > 0) words[0] = static_cast<uint32_t>(n);
  for (size_t s = 0; s < n; ++s) {
    const Scan& scan = scans[s];
    assert(scan.indices.size() == scan.intensities.size());
    const size_t start = words.size();
    uint32_t running = 0;
    for (size_t i = 0; i < scan.size(); ++i) {
      const uint32_t next = scan.indices[i] + 1;
      words.push_back(next - running);
      words.push_back(scan.intensities[i]);
      running = next;
    }
    if (odd_word_scans.count(static_cast<uint32_t>(s))) words.push_back(0);
    // Word s + 1 holds the length of scan s; the last length is implied by
    // the end of the table.
    if (s + 1 < n) words[s + 1] = static_cast<uint32_t>(words.size() - start);
  }
  assert(words.size() == total);
}

Bytes toBytePlanes(const std::vector<uint32_t>& words) {
  Bytes out;
  toBytePlanes(words, out);
  return out;
}

void toBytePlanes(const std::vector<uint32_t>& words, Bytes& out) {
  const size_t w = words.size();
  out.resize(4 * w);
  for (size_t j = 0; j < w; ++j) {
    out[j] = static_cast<unsigned char>(words[j]);
    out[w + j] = static_cast<unsigned char>(words[j] >> 8);
    out[2 * w + j] = static_cast<unsigned char>(words[j] >> 16);
    out[3 * w + j] = static_cast<unsigned char>(words[j] >> 24);
  }
}

Bytes zstdCompress(const Bytes& raw, bool with_content_size, int level) {
  Bytes out;
  ZstdCompressor().compress(raw.data(), raw.size(), with_content_size, level, out);
  return out;
}

ZstdCompressor::ZstdCompressor() : cctx_(ZSTD_createCCtx()) {
  if (cctx_ == nullptr) LUMO_THROW_NO_TRACE(std::runtime_error("ZSTD_createCCtx failed."));
}

ZstdCompressor::~ZstdCompressor() { ZSTD_freeCCtx(cctx_); }

void ZstdCompressor::compress(const unsigned char* raw, size_t size, bool with_content_size,
                              int level, Bytes& out) {
  size_t rc = ZSTD_CCtx_setParameter(cctx_, ZSTD_c_compressionLevel, level);
  if (!ZSTD_isError(rc)) {
    rc = ZSTD_CCtx_setParameter(cctx_, ZSTD_c_contentSizeFlag, with_content_size ? 1 : 0);
  }
  const size_t at = out.size();
  if (!ZSTD_isError(rc)) {
    out.resize(at + ZSTD_compressBound(size));
    // The content-size flag alone decides whether the header states the size.
    rc = ZSTD_compress2(cctx_, out.data() + at, out.size() - at, raw, size);
  }
  if (ZSTD_isError(rc)) {
    LUMO_THROW_NO_TRACE(
        std::runtime_error(std::string("Zstandard compression failed: ") + ZSTD_getErrorName(rc)));
  }
  out.resize(at + rc);
}

}  // namespace writer
}  // namespace lumo
