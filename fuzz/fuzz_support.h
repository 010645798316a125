// What the fuzz targets share: the writer-made analyses behind the targets and
// their seed corpora (so that a target and its seeds agree on the frame
// layout), and a peak sink that keeps the decoded peaks from being optimised
// away. Deterministic.
#ifndef KORA_FUZZ_FUZZ_SUPPORT_H_
#define KORA_FUZZ_FUZZ_SUPPORT_H_

#include <cstdint>

#include "tools/analysis_spec.h"
#include "tools/data_generator.h"

namespace kora_fuzz {

// Frames and scans of fixedAnalysis.
constexpr uint32_t kFrames = 3;
constexpr uint32_t kScans = 24;

// A small sound analysis of compression type `type` (1 or 2): kFrames frames
// of kScans scans, one of them empty, indices below 4000.
inline lumo::writer::AnalysisSpec fixedAnalysis(int type) {
  lumo::writer::GeneratorOptions options;
  options.seed = 11;
  options.numFrames = kFrames;
  options.scansPerFrame = kScans;
  options.numBins = 4000;
  options.meanPeaksPerScan = 6;
  options.emptyFrames = {1};
  return lumo::writer::generateAnalysis(options, 3, type);
}

// A peak sink that folds every peak into one number.
struct PeakChecksum {
  uint64_t* total;
  void operator()(uint32_t index, uint32_t intensity) { *total += index ^ intensity; }
};

}  // namespace kora_fuzz

#endif  // KORA_FUZZ_FUZZ_SUPPORT_H_
