#include "tools/data_generator.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "tools/calibration_rows.h"

namespace lumo {
namespace writer {

uint64_t Random::next() {
  uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

uint64_t Random::below(uint64_t n) {
  assert(n > 0);
  return static_cast<uint64_t>((static_cast<unsigned __int128>(next()) * n) >> 64);
}

double Random::unit() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }

GeneratorOptions GeneratorOptions::realistic(uint64_t seed, uint32_t num_frames) {
  GeneratorOptions o;
  o.mode = Mode::Realistic;
  o.seed = seed;
  o.numFrames = num_frames;
  o.scansPerFrame = 918;
  o.numBins = 400000;
  o.meanPeaksPerScan = 109;
  o.emptyScanFraction = 0.0;
  return o;
}

namespace {

// A Pareto-like intensity of at least 1: P(value > x) falls as 10 / x.
uint32_t longTailIntensity(Random& rng, uint32_t max) {
  const double u = 1.0 - rng.unit();  // (0, 1]
  const double v = std::floor(10.0 / u) - 9.0;
  return v >= static_cast<double>(max) ? max : static_cast<uint32_t>(v);
}

void sparseScan(Random& rng, const GeneratorOptions& o, Scan& scan) {
  scan.indices.clear();
  scan.intensities.clear();
  if (rng.unit() < o.emptyScanFraction) return;
  const uint64_t count =
      std::min<uint64_t>(1 + rng.below(2 * std::max<uint32_t>(o.meanPeaksPerScan, 1)), o.numBins);
  scan.indices.reserve(count);
  for (uint64_t i = 0; i < count; ++i) {
    scan.indices.push_back(static_cast<uint32_t>(rng.below(o.numBins)));
  }
  std::sort(scan.indices.begin(), scan.indices.end());
  scan.indices.erase(std::unique(scan.indices.begin(), scan.indices.end()), scan.indices.end());
  scan.intensities.reserve(scan.indices.size());
  for (size_t i = 0; i < scan.indices.size(); ++i) {
    // Now and then a stored zero, which is a peak like any other.
    scan.intensities.push_back(rng.below(64) == 0 ? 0 : longTailIntensity(rng, o.maxIntensity));
  }
}

// Peaks come in runs of 1 to 7 adjacent bins around an apex, runs placed
// more densely at low indices; overlapping runs add up.
// `peaks` is scratch space, kept by the caller between scans.
void realisticScan(Random& rng, const GeneratorOptions& o, uint32_t s,
                   std::vector<std::pair<uint32_t, uint64_t>>& peaks, Scan& scan) {
  const double n = o.scansPerFrame;
  const double x = (s + 0.5) / n;
  // Rises and falls over the scans; the factor 1.5 makes the mean over a
  // frame meanPeaksPerScan.
  const double target = 1.5 * o.meanPeaksPerScan * 4.0 * x * (1.0 - x);
  const uint64_t count = static_cast<uint64_t>(target * (0.5 + rng.unit()));
  peaks.clear();
  peaks.reserve(count + 8);
  while (peaks.size() < count) {
    const uint32_t len = std::min<uint32_t>(1 + static_cast<uint32_t>(rng.below(7)), o.numBins);
    const double where = rng.unit();
    const uint32_t start = static_cast<uint32_t>(where * where * (o.numBins - len + 1));
    const uint64_t apex = longTailIntensity(rng, o.maxIntensity);
    const uint32_t half = len / 2 + 1;
    for (uint32_t k = 0; k < len; ++k) {
      const uint32_t dist = 2 * k + 1 > len ? (2 * k + 1 - len) / 2 : (len - 2 * k - 1) / 2;
      peaks.emplace_back(start + k, std::max<uint64_t>(1, apex * (half - dist) / half));
    }
  }
  std::sort(peaks.begin(), peaks.end());
  scan.indices.clear();
  scan.intensities.clear();
  scan.indices.reserve(peaks.size());
  scan.intensities.reserve(peaks.size());
  for (const auto& p : peaks) {
    if (!scan.indices.empty() && scan.indices.back() == p.first) {
      const uint64_t sum = scan.intensities.back() + p.second;
      scan.intensities.back() = static_cast<uint32_t>(std::min<uint64_t>(sum, o.maxIntensity));
    } else {
      scan.indices.push_back(p.first);
      scan.intensities.push_back(
          static_cast<uint32_t>(std::min<uint64_t>(p.second, o.maxIntensity)));
    }
  }
}

}  // namespace

FrameGenerator::FrameGenerator(const GeneratorOptions& options)
    : options_(options), rng_(options.seed) {
  assert(options.numBins > 0);
}

void FrameGenerator::next(std::vector<Scan>& scans) {
  assert(remaining() > 0);
  const uint32_t f = frame_++;
  scans.resize(options_.scansPerFrame);
  if (options_.emptyFrames.count(f)) {
    for (Scan& scan : scans) {
      scan.indices.clear();
      scan.intensities.clear();
    }
    return;
  }
  for (uint32_t s = 0; s < options_.scansPerFrame; ++s) {
    if (options_.mode == GeneratorOptions::Mode::Sparse) {
      sparseScan(rng_, options_, scans[s]);
    } else {
      realisticScan(rng_, options_, s, peaks_, scans[s]);
    }
  }
}

std::vector<std::vector<Scan>> generateFrames(const GeneratorOptions& o) {
  FrameGenerator generator(o);
  std::vector<std::vector<Scan>> frames(o.numFrames);
  for (std::vector<Scan>& scans : frames) generator.next(scans);
  return frames;
}

GeneratedBlocks::GeneratedBlocks(const GeneratorOptions& options) : generator_(options) {}

const FrameBlock* GeneratedBlocks::next() {
  if (current_ < 0) {
    if (generator_.remaining() == 0) return nullptr;
    current_ = 0;
    generator_.next(blocks_[0].scans);
  } else {
    if (!ahead_.valid()) return nullptr;
    ahead_.get();
    current_ ^= 1;
  }
  if (generator_.remaining() > 0) {
    ahead_ = std::async(std::launch::async,
                        [this, slot = current_ ^ 1] { generator_.next(blocks_[slot].scans); });
  }
  for (const Scan& scan : blocks_[current_].scans) peaks_ += scan.size();
  return &blocks_[current_];
}

AnalysisSpec generateAnalysis(const GeneratorOptions& options, int schema_major,
                              int compression_type) {
  AnalysisSpec spec = AnalysisSpec::make(schema_major, compression_type, options.numBins);
  for (auto& scans : generateFrames(options)) spec.addFrame(std::move(scans));
  return spec;
}

AnalysisSpec generatedAnalysisRows(const GeneratorOptions& options, int schema_major,
                                   int compression_type) {
  AnalysisSpec spec = AnalysisSpec::make(schema_major, compression_type, options.numBins);
  for (uint32_t f = 0; f < options.numFrames; ++f) spec.addFrameRow(f);
  return spec;
}

void addSampleCalibration(AnalysisSpec& spec, uint32_t ramp_scans) {
  spec.mzCalibration.rows.push_back(mzTofRow(1, sampleMzCalibrationHead(), kSampleTofCoefficients));
  spec.koraCalibration.rows.push_back(koraRampRow(1, sampleMobilityRamp(ramp_scans)));
  for (FrameRow& row : spec.frames) {
    row.t1 = 25.0 + 0.25 * static_cast<double>(row.id % 8);
    row.t2 = 24.0 - 0.1 * static_cast<double>(row.id % 5);
  }
}

MzCalibrationHead sampleMzCalibrationHead() {
  MzCalibrationHead head;
  head.timebase = 0.25;
  head.delay = 20000.0;
  head.t1 = 25.0;
  head.t2 = 24.0;
  head.dC1 = 12.0;
  head.dC2 = -4.0;
  return head;
}

MobilityRamp sampleMobilityRamp(uint32_t ramp_scans) {
  MobilityRamp ramp;
  ramp.ncycles = ramp_scans;
  ramp.vStart = 200.0;
  ramp.vEnd = 60.0;
  ramp.c0 = 0.001;
  ramp.c1 = 120.0;
  ramp.vMin = 50.0;
  ramp.vMax = 210.0;
  return ramp;
}

}  // namespace writer
}  // namespace lumo
