// The encodings of scans and frames in analysis.oxa_bin, as building blocks
// for the block writer and for tests that hand-craft broken blocks.
// All functions are pure and thread-safe.
#ifndef KORA_TOOLS_FRAME_ENCODING_H_
#define KORA_TOOLS_FRAME_ENCODING_H_

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "tools/analysis_spec.h"

struct ZSTD_CCtx_s;

namespace lumo {
namespace writer {

// Form 1: the signed words of one scan. A gap of k indices before a peak
// is one word -k; a peak is its intensity. The running index starts at 0.
// REQUIRES: indices strictly increasing, intensities <= 0x7FFFFFFF.
std::vector<int32_t> encodeScanWords(const Scan& scan);

// Little-endian bytes of a word sequence.
Bytes wordsToBytes(const std::vector<int32_t>& words);
Bytes wordsToBytes(const std::vector<uint32_t>& words);

// An LZF stream that expands to `raw`. Uses liblzf's lzf_compress and falls
// back to literal runs (at most 32 bytes each) when the data does not
// shrink, or always when `literal_only`. An empty input gives no bytes.
Bytes lzfCompress(const Bytes& raw, bool literal_only = false);

// LZF literal runs only: a control byte n - 1 before each run of n <= 32
// bytes.
Bytes lzfLiteralRuns(const Bytes& raw);

// Form 2: the word table of a frame. Words 0 .. n-1 are the length table
// (word 0 the start of the first scan, word i the length of scan i - 1),
// then each scan as (index step, intensity) pairs; the step from the
// running value (0 at the scan start) is index + 1 - running value.
// Scans listed in `odd_word_scans` get one extra word 0.
// REQUIRES: indices strictly increasing per scan.
std::vector<uint32_t> encodeFrameWordTable(const std::vector<Scan>& scans,
                                           const std::set<uint32_t>& odd_word_scans = {});
// The same into `words`, which it replaces; its capacity is kept.
void encodeFrameWordTable(const std::vector<Scan>& scans, const std::set<uint32_t>& odd_word_scans,
                          std::vector<uint32_t>& words);

// The byte-plane layout of a word table: byte k of word j at k * W + j.
Bytes toBytePlanes(const std::vector<uint32_t>& words);
// The same into `out`, which it replaces; its capacity is kept.
void toBytePlanes(const std::vector<uint32_t>& words, Bytes& out);

// One Zstandard frame of `raw`, with or without the content size in its
// header. Throws std::runtime_error if Zstandard fails.
Bytes zstdCompress(const Bytes& raw, bool with_content_size = true, int level = 3);

// A Zstandard compression context kept over many frames; a frame it makes is
// the one zstdCompress makes of the same bytes. Thread-compatible.
class ZstdCompressor {
 public:
  // Throws std::runtime_error if Zstandard cannot make a context.
  ZstdCompressor();
  ~ZstdCompressor();
  ZstdCompressor(const ZstdCompressor&) = delete;
  ZstdCompressor& operator=(const ZstdCompressor&) = delete;

  // Appends one Zstandard frame of the `size` bytes at `raw` to `out`.
  // Throws std::runtime_error if Zstandard fails; `out` may then have grown.
  void compress(const unsigned char* raw, size_t size, bool with_content_size, int level,
                Bytes& out);

 private:
  ZSTD_CCtx_s* cctx_;
};

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_FRAME_ENCODING_H_
