// The parallel query without Python: with any number of threads it must give
// the rows that reading the frames one at a time through the C interface
// gives, in the order asked, and a frame that fails must leave out its own
// rows only. Under ThreadSanitizer (make tsan) this is the race check of the
// query's readers and of the columns they share.
#include "frame_query.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "api/conversion_test_support.h"
#include "connection.h"
#include "koradata.h"
#include "testing/api_analysis.h"
#include "tools/data_generator.h"

namespace koradata_py {
namespace {

using kora_testing::ApiAnalysis;

constexpr uint32_t kScans = 40;
constexpr uint32_t kFrames = 12;

lumo::writer::AnalysisSpec analysisSpec(int compression) {
  lumo::writer::GeneratorOptions options;
  options.seed = 11;
  options.numFrames = kFrames;
  options.scansPerFrame = kScans;
  options.maxIntensity = 1000;
  lumo::writer::AnalysisSpec spec = lumo::writer::generateAnalysis(options, 3, compression);
  lumo::writer::addSampleCalibration(spec, kScans);
  return spec;
}

// Every column of a query's rows, and the peaks of each frame asked.
struct Rows {
  std::vector<int64_t> frame;
  std::vector<uint32_t> scan, tof, intensity;
  std::vector<double> mz, invMobility;
  std::vector<uint64_t> peaks;

  bool operator==(const Rows& o) const {
    return frame == o.frame && scan == o.scan && tof == o.tof && intensity == o.intensity &&
           mz == o.mz && invMobility == o.invMobility && peaks == o.peaks;
  }
};

bool inAnalysis(int64_t frame) { return frame >= 1 && frame <= kFrames; }

// The rows of `frames` read one frame at a time through `analysis`; frames
// not in the analysis give none.
Rows rowsReadOneByOne(const ApiAnalysis& analysis, const std::vector<int64_t>& frames) {
  const kora_testing::OpenAnalysis converter(analysis.dir.str(), 0);
  Rows rows;
  for (int64_t frame : frames) {
    if (!inAnalysis(frame)) {
      rows.peaks.push_back(0);
      continue;
    }
    const auto scans = analysis.read(frame, 0, kScans, kora_read_scans_v2);
    std::vector<double> indices;
    std::vector<double> scanNumbers(kScans);
    std::iota(scanNumbers.begin(), scanNumbers.end(), 0.0);
    const std::vector<double> ofScan =
        converter.convert(kora_scannum_to_oneoverk0, frame, scanNumbers);
    for (uint32_t s = 0; s < kScans; ++s) {
      for (size_t p = 0; p < scans[s].indices.size(); ++p) {
        rows.frame.push_back(frame);
        rows.scan.push_back(s);
        rows.tof.push_back(scans[s].indices[p]);
        rows.intensity.push_back(scans[s].intensities[p]);
        rows.invMobility.push_back(ofScan[s]);
        indices.push_back(scans[s].indices[p]);
      }
    }
    const std::vector<double> mz = converter.convert(kora_index_to_mz, frame, indices);
    rows.mz.insert(rows.mz.end(), mz.begin(), mz.end());
    rows.peaks.push_back(indices.size());
  }
  return rows;
}

template <class T>
std::vector<T> column(const MallocArray<T>& values, size_t rows) {
  return values ? std::vector<T>(values.get(), values.get() + rows) : std::vector<T>();
}

Rows rowsOf(const QueryResult& result) {
  Rows rows;
  rows.frame = column(result.frame, result.rows);
  rows.scan = column(result.scan, result.rows);
  rows.tof = column(result.tof, result.rows);
  rows.intensity = column(result.intensity, result.rows);
  rows.mz = column(result.mz, result.rows);
  rows.invMobility = column(result.invMobility, result.rows);
  rows.peaks = result.peaks;
  return rows;
}

// Every column of every frame; a frame the analysis lacks has an unknown
// number of scans, as the Python layer asks for it.
QueryRequest request(const std::vector<int64_t>& frames, unsigned threads, bool stopOnError) {
  QueryRequest r;
  r.frames = frames;
  for (int64_t frame : frames) r.numScans.push_back(inAnalysis(frame) ? kScans : -1);
  r.columns = QueryColumns{true, true, true, true, true, true};
  r.stopOnError = stopOnError;
  r.threads = threads;
  return r;
}

class FrameQuery : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (!kHaveConversions) GTEST_SKIP() << "this build has no conversions";
  }

  // The library's text for a read of `frame`, on a fresh handle afterwards.
  std::string readError(int64_t frame) {
    const std::string text = analysis.error(frame, 0, 1, kora_read_scans_v2);
    analysis.reopen();
    return text;
  }

  ApiAnalysis analysis{analysisSpec(GetParam())};
};

TEST_P(FrameQuery, AnyThreadCountGivesTheRowsOfTheFramesReadOneByOne) {
  // Descending, with a frame the analysis lacks in the middle.
  std::vector<int64_t> frames;
  for (int64_t f = kFrames; f >= 1; --f) frames.push_back(f);
  frames.insert(frames.begin() + 5, 999);
  const std::string missing = readError(999);
  const Rows expected = rowsReadOneByOne(analysis, frames);
  ASSERT_GT(expected.frame.size(), 0u);

  for (unsigned threads : {1u, 2u, 4u}) {
    SCOPED_TRACE(std::to_string(threads) + " threads");
    std::vector<std::unique_ptr<Connection>> pool;
    size_t lastDone = 0;
    const QueryResult result = runQuery(request(frames, threads, false), analysis.dir.str(), false,
                                        pool, [&](size_t done) {
                                          lastDone = done;
                                          return true;
                                        });
    EXPECT_TRUE(expected == rowsOf(result));
    ASSERT_EQ(1u, result.errors.size());
    EXPECT_EQ(5u, result.errors[0].position);
    EXPECT_EQ(missing, result.errors[0].text);
    EXPECT_EQ(frames.size(), lastDone);
    EXPECT_EQ(threads, pool.size());
  }
}

TEST_P(FrameQuery, StopsAtTheFirstFailedFrameInTheOrderAsked) {
  std::vector<int64_t> frames;
  for (int64_t f = 1; f <= kFrames; ++f) frames.push_back(f);
  frames.insert(frames.begin() + 9, 999);
  frames.insert(frames.begin() + 4, 998);
  const std::string first = readError(998);

  for (unsigned threads : {1u, 2u, 4u}) {
    SCOPED_TRACE(std::to_string(threads) + " threads");
    std::vector<std::unique_ptr<Connection>> pool;
    const QueryResult result = runQuery(request(frames, threads, true), analysis.dir.str(), false,
                                        pool, [](size_t) { return true; });
    ASSERT_FALSE(result.errors.empty());
    EXPECT_EQ(4u, result.errors[0].position);
    EXPECT_EQ(first, result.errors[0].text);
    // The later failure is found only by a reader that was ahead.
    EXPECT_LE(result.errors.size(), 2u);
  }
}

INSTANTIATE_TEST_SUITE_P(BothCompressions, FrameQuery, ::testing::Values(1, 2),
                         kora_testing::compressionTypeName);

}  // namespace
}  // namespace koradata_py
