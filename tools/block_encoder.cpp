// Encodes one FrameBlock into the bytes of analysis.oxa_bin, in either form,
// applying the block's overrides and damage.
#include "tools/block_encoder.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>

#include "sys/throw.h"
#include "tools/analysis_writer.h"

namespace lumo {
namespace writer {

namespace {

void putLe32(Bytes& out, size_t at, uint32_t w) {
  assert(at + 4 <= out.size());
  out[at] = static_cast<unsigned char>(w);
  out[at + 1] = static_cast<unsigned char>(w >> 8);
  out[at + 2] = static_cast<unsigned char>(w >> 16);
  out[at + 3] = static_cast<unsigned char>(w >> 24);
}

uint32_t checkedU32(uint64_t v, const char* what) {
  if (v > 0xFFFFFFFFu) {
    LUMO_THROW_NO_TRACE(std::runtime_error(std::string(what) + " does not fit 32 bits."));
  }
  return static_cast<uint32_t>(v);
}

// The stored bytes of scan s of a form 1 block.
Bytes storedScan(const FrameBlock& block, uint32_t s) {
  auto stored = block.storedScans.find(s);
  if (stored != block.storedScans.end()) return stored->second;
  auto expanded = block.expandedScans.find(s);
  if (expanded != block.expandedScans.end()) {
    return lzfCompress(expanded->second, block.literalOnly);
  }
  if (s >= block.scans.size()) return {};
  return lzfCompress(wordsToBytes(encodeScanWords(block.scans[s])), block.literalOnly);
}

// Form 1: header word, number of scans, offset table, then the scans back to
// back. Offsets count from the block start.
Bytes encodeLzfBlock(const FrameBlock& block) {
  size_t scan_count = block.scans.size();
  if (!block.storedScans.empty()) {
    scan_count = std::max<size_t>(scan_count, block.storedScans.rbegin()->first + 1);
  }
  if (!block.expandedScans.empty()) {
    scan_count = std::max<size_t>(scan_count, block.expandedScans.rbegin()->first + 1);
  }
  const uint32_t num_scans = block.numScans.value_or(checkedU32(scan_count, "Number of scans"));
  const size_t table_entries =
      block.scanOffsets ? block.scanOffsets->size() : static_cast<size_t>(num_scans) + 1;
  const size_t header_size = 8 + 4 * table_entries;

  Bytes out(header_size);
  putLe32(out, 0, block.headerWord);
  putLe32(out, 4, num_scans);
  std::vector<uint32_t> offsets;
  offsets.reserve(scan_count + 1);
  for (size_t s = 0; s < scan_count; ++s) {
    offsets.push_back(checkedU32(out.size(), "Scan offset"));
    const Bytes scan = storedScan(block, static_cast<uint32_t>(s));
    out.insert(out.end(), scan.begin(), scan.end());
  }
  offsets.push_back(checkedU32(out.size(), "Scan offset"));

  if (block.scanOffsets) {
    offsets = *block.scanOffsets;
  } else {
    // A header that claims more scans than were given lists them as empty
    // scans at the end; one that claims fewer lists only the first ones.
    offsets.resize(table_entries, offsets.back());
  }
  assert(offsets.size() == table_entries);
  for (size_t i = 0; i < table_entries; ++i) putLe32(out, 8 + 4 * i, offsets[i]);
  return out;
}

}  // namespace

// Form 2: block size, number of scans, then one Zstandard frame of the
// byte-plane word table.
void BlockEncoder::encodeZstd(const FrameBlock& block) {
  out_.resize(8);
  if (block.storedPayload) {
    out_.insert(out_.end(), block.storedPayload->begin(), block.storedPayload->end());
  } else if (!block.noPayload) {
    const Bytes* expanded = &planes_;
    if (block.expandedPayload) {
      expanded = &*block.expandedPayload;
    } else if (block.wordTable) {
      toBytePlanes(*block.wordTable, planes_);
    } else {
      encodeFrameWordTable(block.scans, block.oddWordScans, words_);
      toBytePlanes(words_, planes_);
    }
    zstd_.compress(expanded->data(), expanded->size(), !block.omitContentSize, 3, out_);
  }
  const uint32_t num_scans =
      block.numScans.value_or(checkedU32(block.scans.size(), "Number of scans"));
  const uint32_t frame_size = block.frameSize.value_or(checkedU32(out_.size(), "Frame size"));
  putLe32(out_, 0, frame_size);
  putLe32(out_, 4, num_scans);
}

const Bytes& BlockEncoder::encode(const FrameBlock& block, int compression_type) {
  if (block.rawBlock) {
    out_ = *block.rawBlock;
  } else if (compression_type == 1) {
    out_ = encodeLzfBlock(block);
  } else if (compression_type == 2) {
    encodeZstd(block);
  } else {
    LUMO_THROW_NO_TRACE(std::invalid_argument("Compression type must be 1 or 2, not " +
                                              std::to_string(compression_type) + "."));
  }
  if (block.truncateTo && *block.truncateTo < out_.size()) out_.resize(*block.truncateTo);
  return out_;
}

Bytes encodeBlock(const FrameBlock& block, int compression_type) {
  return BlockEncoder().encode(block, compression_type);
}

}  // namespace writer
}  // namespace lumo
