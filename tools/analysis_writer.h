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

// Writes `spec` into `dir`, creating the directory if needed and replacing
// analysis.oxa, analysis.oxa_bin and calibration.sqlite if present. Throws std::runtime_error on
// any failure of the file system, SQLite or the compressors.
// Thread-safe for different directories.
WrittenAnalysis writeAnalysis(const AnalysisSpec& spec, const boost::filesystem::path& dir);

// The encoded bytes of one block in form `compression_type`, as
// writeAnalysis would write them (gapBefore not included).
Bytes encodeBlock(const FrameBlock& block, int compression_type);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_ANALYSIS_WRITER_H_
