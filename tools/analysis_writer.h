// Writes an analysis directory from an AnalysisSpec: analysis.oxa (SQLite),
// analysis.oxa_bin (frame blocks) and, if asked, calibration.sqlite. The entry point of the
// synthetic analysis writer used by tests, benchmarks and the demo.
#ifndef KORA_TOOLS_ANALYSIS_WRITER_H_
#define KORA_TOOLS_ANALYSIS_WRITER_H_

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <vector>

#include "tools/analysis_spec.h"

namespace lumo {
namespace writer {

// Where the blocks went.
struct WrittenAnalysis {
  std::vector<uint64_t> blockOffsets;  // file offset of each AnalysisSpec block
  uint64_t binSize = 0;                // size of analysis.oxa_bin in bytes
};

// The frame blocks of an analysis, handed to the writer one at a time in
// file order. Thread-compatible.
class BlockSource {
 public:
  virtual ~BlockSource() = default;
  // The next block, valid until the next call; nullptr after the last.
  virtual const FrameBlock* next() = 0;
};

// Writes `spec` into `dir`, creating the directory if needed and replacing
// analysis.oxa, analysis.oxa_bin and calibration.sqlite if present. Throws std::runtime_error on
// any failure of the file system, SQLite or the compressors, std::out_of_range
// for a frame row pointing at no block.
// Thread-safe for different directories.
WrittenAnalysis writeAnalysis(const AnalysisSpec& spec, const boost::filesystem::path& dir);

// As above with the blocks taken from `blocks` instead of spec.blocks, each
// encoded and written as soon as it is given: the writer holds one block at
// a time, whatever the size of the analysis. The same blocks give the same
// bytes as the form above. REQUIRES: spec.blocks is empty.
WrittenAnalysis writeAnalysis(const AnalysisSpec& spec, BlockSource& blocks,
                              const boost::filesystem::path& dir);

// The encoded bytes of one block in form `compression_type`, as
// writeAnalysis would write them (gapBefore not included).
Bytes encodeBlock(const FrameBlock& block, int compression_type);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_ANALYSIS_WRITER_H_
