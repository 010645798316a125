// Encodes frame blocks for analysis.oxa_bin one after another. Internal to
// the writer.
#ifndef KORA_TOOLS_BLOCK_ENCODER_H_
#define KORA_TOOLS_BLOCK_ENCODER_H_

#include <cstdint>
#include <vector>

#include "tools/analysis_spec.h"
#include "tools/frame_encoding.h"

namespace lumo {
namespace writer {

// Keeps its buffers and its Zstandard context from one block to the next, so
// that a stream of similar blocks allocates nothing after the first.
// Thread-compatible.
class BlockEncoder {
 public:
  // The bytes of `block` in form `compression_type`, as encodeBlock gives
  // them; valid until the next call. Throws as encodeBlock.
  const Bytes& encode(const FrameBlock& block, int compression_type);

 private:
  void encodeZstd(const FrameBlock& block);

  Bytes out_;
  std::vector<uint32_t> words_;
  Bytes planes_;
  ZstdCompressor zstd_;
};

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_BLOCK_ENCODER_H_
