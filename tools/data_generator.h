// A seeded, deterministic generator of frame peaks, shared by tests and
// benchmarks: the same options give the same peaks on every machine and
// compiler (only integer arithmetic and basic IEEE operations are used).
//
// The peaks are returned as they are stored; a test that compares them with
// what a reader returns applies any index filtering or intensity
// normalisation itself.
#ifndef KORA_TOOLS_DATA_GENERATOR_H_
#define KORA_TOOLS_DATA_GENERATOR_H_

#include <array>
#include <cstdint>
#include <future>
#include <set>
#include <utility>
#include <vector>

#include "tools/analysis_spec.h"
#include "tools/analysis_writer.h"
#include "tools/calibration_rows.h"

namespace lumo {
namespace writer {

// A small pseudo-random generator (splitmix64). Thread-compatible.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  uint64_t next();
  // Uniform in [0, n). REQUIRES: n > 0.
  uint64_t below(uint64_t n);
  // Uniform in [0, 1), 53 random bits.
  double unit();

 private:
  uint64_t state_;
};

struct GeneratorOptions {
  enum class Mode {
    // Scans of uniformly scattered single peaks, some scans empty.
    Sparse,
    // Frames like real spectra: peak counts rising and falling over the
    // mobility scans, indices in clustered runs, intensities with a long
    // tail.
    Realistic,
  };

  Mode mode = Mode::Sparse;
  uint64_t seed = 1;
  uint32_t numFrames = 3;
  uint32_t scansPerFrame = 50;
  // Every index is below numBins.
  uint32_t numBins = 400000;
  // Sparse: peaks of a non-empty scan are 1 .. 2 x meanPeaksPerScan.
  // Realistic: the mean over all scans of a frame.
  uint32_t meanPeaksPerScan = 20;
  // Sparse: share of scans left empty.
  double emptyScanFraction = 0.25;
  // Frames (0-based positions) that hold only empty scans.
  std::set<uint32_t> emptyFrames;
  // Intensities are at most this; keep it at or below 0x7FFFFFFF for
  // compression type 1.
  uint32_t maxIntensity = 0x7FFFFFFF;

  // About 918 scans and 100 000 peaks per frame over 400 000 bins.
  static GeneratorOptions realistic(uint64_t seed, uint32_t num_frames);
};

// Makes the frames of `options` one at a time: the n-th call of next()
// gives frame n of generateFrames(options). Memory does not grow with the
// number of frames. Thread-compatible.
class FrameGenerator {
 public:
  explicit FrameGenerator(const GeneratorOptions& options);

  uint32_t remaining() const { return options_.numFrames - frame_; }

  // Replaces `scans` with the scansPerFrame scans of the next frame, reusing
  // the capacity `scans` already has. REQUIRES: remaining() > 0.
  void next(std::vector<Scan>& scans);

 private:
  const GeneratorOptions options_;
  Random rng_;
  uint32_t frame_ = 0;
  std::vector<std::pair<uint32_t, uint64_t>> peaks_;  // scratch of one scan
};

// The scans of every frame, numFrames entries of scansPerFrame scans each.
// Every scan satisfies the invariant of Scan.
std::vector<std::vector<Scan>> generateFrames(const GeneratorOptions& options);

// The blocks of generateAnalysis(options, ...) for the streaming
// writeAnalysis, two frames in memory at a time: while the writer encodes one
// block, the next is generated on a thread of its own.
// Thread-compatible: next() from one thread at a time.
class GeneratedBlocks : public BlockSource {
 public:
  explicit GeneratedBlocks(const GeneratorOptions& options);
  const FrameBlock* next() override;
  // Peaks in the blocks given so far.
  uint64_t peaks() const { return peaks_; }

 private:
  FrameGenerator generator_;
  FrameBlock blocks_[2];
  int current_ = -1;  // slot of the block given last; -1 before the first
  uint64_t peaks_ = 0;
  // Fills the other slot; destroyed first, so it ends before the rest.
  std::future<void> ahead_;
};

// AnalysisSpec::make(schema_major, compression_type, options.numBins) with
// one frame (ids 1, 2, ...) per generated frame, in order; the peaks are in
// spec.blocks[i].scans.
AnalysisSpec generateAnalysis(const GeneratorOptions& options, int schema_major = 3,
                              int compression_type = 2);

// generateAnalysis(options, ...) without the blocks: spec.blocks is empty and
// frame row i points at block i of GeneratedBlocks(options).
AnalysisSpec generatedAnalysisRows(const GeneratorOptions& options, int schema_major = 3,
                                   int compression_type = 2);

// The sample's m/z calibration: the head (time base 0.25, delay 20000,
// reference temperatures 25.0 and 24.0, coefficients 12 and -4 ppm per
// degree) and the quadratic TOF model c0 10000, c1 377, c2 0.5: m/z about 14
// at index 0 and 1693 at index 400000 at the reference temperatures.
MzCalibrationHead sampleMzCalibrationHead();
constexpr std::array<double, 5> kSampleTofCoefficients = {10000.0, 377.0, 0.5, 0.0, 0.0};
// The sample's mobility calibration: a ramp from 200 V to 60 V over
// `ramp_scans` scans, 1/K0 = V / (0.001 V + 120) between 50 V and 210 V.
MobilityRamp sampleMobilityRamp(uint32_t ramp_scans);

// Adds the MzCalibration row 1 (sampleMzCalibrationHead(), model 1 with
// kSampleTofCoefficients) and the KoraCalibration row 1
// (sampleMobilityRamp(ramp_scans)), to which frame rows refer by default,
// and gives every frame temperatures that differ from the reference:
// T1 = 25.0 + 0.25 * (id % 8), T2 = 24.0 - 0.1 * (id % 5).
void addSampleCalibration(AnalysisSpec& spec, uint32_t ramp_scans);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_DATA_GENERATOR_H_
