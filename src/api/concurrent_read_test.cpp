// Handles on different threads at the same time, as the header allows: eight
// threads each read every frame through a handle of their own and convert
// what they read (tof indices to m/z, scans to 1/K0, in batches of hundreds)
// while other threads fetch their own error texts and open and close handles.
// Every thread must see what a single thread sees. Under ThreadSanitizer
// (make tsan) this is the race check of the read and conversion paths.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "koradata.h"
#include "testing/api_analysis.h"
#include "tools/data_generator.h"

namespace {

using kora_testing::ApiAnalysis;
using kora_testing::lastError;
using Words = std::vector<uint32_t>;
using Values = std::vector<double>;

constexpr uint32_t kFrames = 4;
constexpr uint32_t kScans = 80;

// One frame as a caller sees it: the normalised words of scans [0, kScans),
// and the m/z of every peak's index and the 1/K0 of every peak's scan, in the
// order of the words. A failed call leaves `words` empty.
struct FrameView {
  Words words;
  Values mz;
  Values oneOverK0;

  bool operator==(const FrameView& other) const {
    return words == other.words && mz == other.mz && oneOverK0 == other.oneOverK0;
  }
};

Values convert(uint32_t (*function)(uint64_t, int64_t, const double*, double*, uint32_t),
               uint64_t handle, int64_t frame, const Values& in) {
  Values out(in.size());
  if (function(handle, frame, in.data(), out.data(), static_cast<uint32_t>(in.size())) != 1)
    return {};
  return out;
}

FrameView readFrame(uint64_t handle, int64_t frame) {
  FrameView view;
  const uint32_t needed = kora_read_scans_v2(handle, frame, 0, kScans, nullptr, 0);
  if (needed == 0) return view;
  Words words(needed / 4);
  if (kora_read_scans_v2(handle, frame, 0, kScans, words.data(), needed) != needed) return view;
  Values indices;
  Values scans;
  size_t at = kScans;
  for (uint32_t s = 0; s < kScans; ++s) {
    for (uint32_t p = 0; p < words[s]; ++p) {
      indices.push_back(words[at + p]);
      scans.push_back(s);
    }
    at += 2 * words[s];
  }
  view.mz = convert(kora_index_to_mz, handle, frame, indices);
  view.oneOverK0 = convert(kora_scannum_to_oneoverk0, handle, frame, scans);
  if (view.mz.empty() || view.oneOverK0.empty()) return view;
  view.words = std::move(words);
  return view;
}

class ConcurrentReads : public ::testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(BothForms, ConcurrentReads, ::testing::Values(1, 2),
                         kora_testing::compressionTypeName);

TEST_P(ConcurrentReads, EightThreadsOnTheirOwnHandlesReadAndConvertWhatOneThreadDoes) {
  lumo::writer::GeneratorOptions options;
  options.seed = 5;
  options.numFrames = kFrames;
  options.scansPerFrame = kScans;
  options.meanPeaksPerScan = 30;
  lumo::writer::AnalysisSpec spec = lumo::writer::generateAnalysis(options, 3, GetParam());
  lumo::writer::addSampleCalibration(spec, kScans);
  for (size_t f = 0; f < spec.frames.size(); ++f) spec.frames[f].accumulationTime = 50.0 + 25.0 * f;
  const ApiAnalysis analysis(spec);
  std::vector<FrameView> expected;
  for (int64_t frame = 1; frame <= kFrames; ++frame) {
    expected.push_back(readFrame(analysis.handle, frame));
    ASSERT_FALSE(expected.back().words.empty()) << lastError();
    // Every batch is large enough to be converted in parallel.
    ASSERT_GE(expected.back().mz.size(), 100u);
  }
  const std::string dir = analysis.dir.str();

  std::atomic<int> mismatches{0};
  std::atomic<bool> readersDone{false};
  std::vector<std::thread> readers;
  for (int t = 0; t < 8; ++t) {
    readers.emplace_back([&, t] {
      const uint64_t handle = kora_open(dir.c_str(), 0);
      if (handle == 0) {
        ++mismatches;
        return;
      }
      for (int round = 0; round < 3; ++round) {
        // Each thread starts at another frame, so that frames are read in
        // different orders at the same time.
        for (uint32_t k = 0; k < kFrames; ++k) {
          const uint32_t f = (k + t) % kFrames;
          if (!(readFrame(handle, f + 1) == expected[f])) ++mismatches;
        }
      }
      kora_close(handle);
    });
  }
  // Two threads make failures of their own and must find their own texts.
  std::vector<std::thread> others;
  for (int t = 0; t < 2; ++t) {
    others.emplace_back([&, t] {
      const uint64_t handle = kora_open(dir.c_str(), 0);
      const double index = 1000.0;
      double mz = 0.0;
      while (!readersDone) {
        const std::string missing = dir + "/missing-" + std::to_string(t);
        if (kora_open(missing.c_str(), 0) != 0 ||
            lastError() != "Specified analysis directory does not exist.")
          ++mismatches;
        if (kora_read_scans_v2(handle, 1, 5, 5, nullptr, 0) != 0 ||
            lastError() != "scan_end must be > scan_begin")
          ++mismatches;
        if (kora_index_to_mz(handle, 999, &index, &mz, 1) != 0 ||
            lastError() != "Frame 999 does not exists or is missing MzCalibration/Polarity")
          ++mismatches;
      }
      kora_close(handle);
    });
  }
  // One thread opens, reads from, converts on and closes handles all the time.
  others.emplace_back([&] {
    while (!readersDone) {
      const uint64_t handle = kora_open(dir.c_str(), 0);
      if (!(readFrame(handle, 2) == expected[1])) ++mismatches;
      kora_close(handle);
    }
  });
  for (std::thread& t : readers) t.join();
  readersDone = true;
  for (std::thread& t : others) t.join();
  EXPECT_EQ(0, mismatches.load());
}

}  // namespace
