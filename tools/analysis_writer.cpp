#include "tools/analysis_writer.h"

#include <boost/filesystem/operations.hpp>
#include <cassert>
#include <fstream>
#include <stdexcept>

#include "sys/throw.h"
#include "tools/block_encoder.h"
#include "tools/oxa_database_writer.h"

namespace lumo {
namespace writer {

namespace {

constexpr unsigned char kFiller = 0xEE;

void writeFiller(std::ofstream& out, uint64_t n) {
  const Bytes chunk(64 * 1024, kFiller);
  while (n > 0) {
    const uint64_t k = std::min<uint64_t>(n, chunk.size());
    out.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(k));
    n -= k;
  }
}

// The blocks of spec.blocks, in order.
class SpecBlocks : public BlockSource {
 public:
  explicit SpecBlocks(const std::vector<FrameBlock>& blocks) : blocks_(blocks) {}
  const FrameBlock* next() override {
    return next_ < blocks_.size() ? &blocks_[next_++] : nullptr;
  }

 private:
  const std::vector<FrameBlock>& blocks_;
  size_t next_ = 0;
};

WrittenAnalysis write(const AnalysisSpec& spec, BlockSource& blocks,
                      const boost::filesystem::path& dir) {
  boost::filesystem::create_directories(dir);
  const boost::filesystem::path bin_path = dir / "analysis.oxa_bin";
  const boost::filesystem::path oxa_path = dir / "analysis.oxa";

  // The blocks are laid out even when the frame file is not written, so that
  // KoraId values stay those of the full analysis.
  WrittenAnalysis written;
  std::ofstream out;
  if (spec.writeOxaBin) {
    out.open(bin_path.string(), std::ios::binary | std::ios::trunc);
    if (!out) LUMO_THROW_NO_TRACE(std::runtime_error("Cannot create " + bin_path.string()));
  } else {
    boost::filesystem::remove(bin_path);
  }
  BlockEncoder encoder;
  uint64_t pos = 0;
  while (const FrameBlock* block = blocks.next()) {
    const Bytes& bytes = encoder.encode(*block, spec.compressionType);
    if (out.is_open()) {
      writeFiller(out, block->gapBefore);
      out.write(reinterpret_cast<const char*>(bytes.data()),
                static_cast<std::streamsize>(bytes.size()));
      if (!out) LUMO_THROW_NO_TRACE(std::runtime_error("Cannot write " + bin_path.string()));
    }
    pos += block->gapBefore;
    written.blockOffsets.push_back(pos);
    pos += bytes.size();
  }
  if (out.is_open()) {
    writeFiller(out, spec.trailingBytes);
    out.close();
    if (!out) LUMO_THROW_NO_TRACE(std::runtime_error("Cannot write " + bin_path.string()));
  }
  written.binSize = pos + spec.trailingBytes;

  if (spec.writeOxa) {
    writeOxaDatabase(spec, written.blockOffsets, oxa_path);
  } else {
    boost::filesystem::remove(oxa_path);
  }
  const boost::filesystem::path store_path = dir / "calibration.sqlite";
  if (spec.calibrationStore) {
    writeDatabase(*spec.calibrationStore, store_path);
  } else {
    boost::filesystem::remove(store_path);
  }
  return written;
}

}  // namespace

WrittenAnalysis writeAnalysis(const AnalysisSpec& spec, const boost::filesystem::path& dir) {
  SpecBlocks blocks(spec.blocks);
  return write(spec, blocks, dir);
}

WrittenAnalysis writeAnalysis(const AnalysisSpec& spec, BlockSource& blocks,
                              const boost::filesystem::path& dir) {
  assert(spec.blocks.empty());
  return write(spec, blocks, dir);
}

}  // namespace writer
}  // namespace lumo
