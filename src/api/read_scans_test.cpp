// kora_read_scans_v2 and kora_read_scans_internal through the public header,
// on analyses made by the synthetic writer, in both frame file forms.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "koradata.h"
#include "testing/api_analysis.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace {

using lumo::writer::AnalysisSpec;
using lumo::writer::Bytes;
using lumo::writer::FrameBlock;
using lumo::writer::FrameRow;
using lumo::writer::Scan;

using Analysis = kora_testing::ApiAnalysis;

std::vector<Scan> slice(const std::vector<Scan>& scans, uint32_t begin, uint32_t end) {
  return std::vector<Scan>(scans.begin() + begin, scans.begin() + end);
}

Scan scan(std::vector<uint32_t> indices, std::vector<uint32_t> intensities) {
  return Scan{std::move(indices), std::move(intensities)};
}

// Parameter: the compression type.
class ReadScans : public ::testing::TestWithParam<int> {
 protected:
  int type() const { return GetParam(); }
  AnalysisSpec make(int schema_major = 3, uint32_t num_bins = 400000) const {
    return AnalysisSpec::make(schema_major, type(), num_bins);
  }
  // "Scan number out of range." in the words of the form.
  std::string scanOutOfRange(uint32_t scan) const {
    return kora_testing::scanOutOfRange(type(), scan);
  }
};

INSTANTIATE_TEST_SUITE_P(BothForms, ReadScans, ::testing::Values(1, 2),
                         kora_testing::compressionTypeName);

TEST_P(ReadScans, WriterAnalysesReadBackPeakForPeak) {
  lumo::writer::GeneratorOptions options;
  options.seed = 42 + type();
  options.numFrames = 5;
  options.scansPerFrame = 70;
  options.emptyFrames = {3};
  options.meanPeaksPerScan = 200;  // up to 400 peaks: scans longer than a decoder block
  const AnalysisSpec spec = lumo::writer::generateAnalysis(options, 3, type());
  const Analysis analysis(spec);
  for (size_t f = 0; f < spec.blocks.size(); ++f) {
    const std::vector<Scan>& expected = spec.blocks[f].scans;
    ASSERT_EQ(70u, expected.size());
    const int64_t id = spec.frames[f].id;
    EXPECT_EQ(expected, analysis.read(id, 0, 70)) << "frame " << id;
    // Accumulation time 100: the default normalisation changes nothing.
    EXPECT_EQ(expected, analysis.read(id, 0, 70, kora_read_scans_v2)) << "frame " << id;
    for (auto range : {std::make_pair(0u, 1u), std::make_pair(69u, 70u), std::make_pair(5u, 6u),
                       std::make_pair(5u, 7u), std::make_pair(13u, 61u)})
      EXPECT_EQ(slice(expected, range.first, range.second),
                analysis.read(id, range.first, range.second))
          << "frame " << id << " scans " << range.first << ".." << range.second;
  }
  // Frames in a new order, and back: nothing of one frame leaks into another.
  EXPECT_EQ(slice(spec.blocks[4].scans, 2, 40), analysis.read(5, 2, 40));
  EXPECT_EQ(slice(spec.blocks[0].scans, 2, 40), analysis.read(1, 2, 40));
}

TEST_P(ReadScans, FrameOfOnlyEmptyScansGivesZeroCounts) {
  AnalysisSpec spec = make();
  spec.addFrame(std::vector<Scan>(9));
  FrameBlock no_payload;
  no_payload.scans.resize(4);
  no_payload.noPayload = true;  // form 2: the 8-byte header alone
  spec.addFrame(no_payload);
  const Analysis analysis(spec);
  for (int64_t frame : {1, 2}) {
    const uint32_t n = frame == 1 ? 9 : 4;
    EXPECT_EQ(4 * n, kora_read_scans_v2(analysis.handle, frame, 0, n, nullptr, 0));
    std::vector<uint32_t> words(n, 0xFFFFFFFF);
    EXPECT_EQ(4 * n, kora_read_scans_v2(analysis.handle, frame, 0, n, words.data(), 4 * n));
    EXPECT_EQ(std::vector<uint32_t>(n, 0), words);
    EXPECT_EQ(scanOutOfRange(n), analysis.error(frame, n - 1, n + 1));
  }
}

TEST_P(ReadScans, BufferProtocol) {
  AnalysisSpec spec = make();
  spec.addFrame({scan({1, 2}, {10, 20}), scan({}, {}), scan({7}, {70})});
  const Analysis analysis(spec);
  const std::vector<uint32_t> expected = {2, 0, 1, 1, 2, 10, 20, 7, 70};
  const uint32_t bytes = 4 * static_cast<uint32_t>(expected.size());

  EXPECT_EQ(bytes, kora_read_scans_v2(analysis.handle, 1, 0, 3, nullptr, 0));
  // One byte short: nothing at all is written.
  std::vector<uint32_t> words(expected.size(), 0xCDCDCDCD);
  EXPECT_EQ(bytes, kora_read_scans_v2(analysis.handle, 1, 0, 3, words.data(), bytes - 1));
  EXPECT_EQ(std::vector<uint32_t>(expected.size(), 0xCDCDCDCD), words);
  EXPECT_EQ(bytes, kora_read_scans_v2(analysis.handle, 1, 0, 3, words.data(), bytes));
  EXPECT_EQ(expected, words);
  // A larger buffer: only the result's bytes are written.
  words.assign(expected.size() + 1, 0xCDCDCDCD);
  EXPECT_EQ(bytes, kora_read_scans_internal(analysis.handle, 1, 0, 3, words.data(), bytes + 4));
  EXPECT_EQ(0xCDCDCDCDu, words.back());
}

TEST_P(ReadScans, RangeAndFrameErrors) {
  AnalysisSpec spec = make();
  spec.addFrame({scan({1}, {1}), scan({2}, {2})});
  const Analysis analysis(spec);
  EXPECT_EQ("scan_end must be > scan_begin", analysis.error(1, 1, 1));
  EXPECT_EQ("scan_end must be > scan_begin", analysis.error(1, 2, 1, kora_read_scans_v2));
  EXPECT_EQ("CorruptFrameDataError for FrameId=99: Frame doesn't exist", analysis.error(99, 0, 1));
  EXPECT_EQ("CorruptFrameDataError for FrameId=99: Frame doesn't exist",
            analysis.error(99, 0, 1, kora_read_scans_v2));
  EXPECT_EQ(scanOutOfRange(2), analysis.error(1, 0, 3));
  EXPECT_EQ(scanOutOfRange(7), analysis.error(1, 7, 8));
  // A failure leaves the handle usable.
  EXPECT_EQ((std::vector<Scan>{scan({2}, {2})}), analysis.read(1, 1, 2));
}

TEST_P(ReadScans, IndicesAtOrAboveTheBinsAreDroppedOnlyUnderPerScanLzf) {
  AnalysisSpec spec = make(3, 100);
  spec.addFrame({scan({98, 99, 100, 150}, {1, 2, 3, 4}), scan({0, 200}, {5, 6})});
  const Scan kept = scan({98, 99}, {1, 2});
  testing::internal::CaptureStderr();
  {
    const Analysis first(spec);
    const Analysis second(spec);
    for (const Analysis* analysis : {&first, &second, &first}) {
      const std::vector<Scan> scans = analysis->read(1, 0, 2);
      if (type() == 1) {
        EXPECT_EQ((std::vector<Scan>{kept, scan({0}, {5})}), scans);
      } else {
        EXPECT_EQ(spec.blocks[0].scans, scans);
      }
    }
  }
  const std::string log = testing::internal::GetCapturedStderr();
  size_t lines = 0;
  for (size_t at = log.find("exceeds number of bins"); at != std::string::npos;
       at = log.find("exceeds number of bins", at + 1))
    ++lines;
  // One line per handle, for the first dropped peak only.
  EXPECT_EQ(type() == 1 ? 2u : 0u, lines) << log;
  if (type() == 1) {
    EXPECT_NE(std::string::npos,
              log.find("Index 100 exceeds number of bins = 100, silently dropping from now on."));
  }
}

TEST_P(ReadScans, NormalisationBySchemaVersion) {
  struct Case {
    int schema;
    double accumulation;
    double ramp;
    uint32_t stored;
    uint32_t normalised;
  };
  const Case cases[] = {
      {3, 0.0, 50.0, 7, 7},   {3, 100.0, 50.0, 7, 7},  {3, 200.0, 50.0, 1, 1},
      {3, 200.0, 50.0, 2, 1}, {3, 50.0, 50.0, 3, 6},   {2, 100.0, 90.0, 9, 8},
      {2, 0.0, 90.0, 9, 9},   {2, 100.0, 100.0, 9, 9}, {1, 200.0, 50.0, 9, 9},
  };
  for (const Case& c : cases) {
    AnalysisSpec spec = make(c.schema);
    FrameRow& row = spec.addFrame({scan({3, 4}, {c.stored, 0}), scan({}, {})});
    row.accumulationTime = c.accumulation;
    row.rampTime = c.ramp;
    const Analysis analysis(spec);
    const std::string what = "schema " + std::to_string(c.schema) + ", accumulation " +
                             std::to_string(c.accumulation) + ", stored " +
                             std::to_string(c.stored);
    EXPECT_EQ((std::vector<Scan>{scan({3, 4}, {c.normalised, 0}), scan({}, {})}),
              analysis.read(1, 0, 2, kora_read_scans_v2))
        << what;
    EXPECT_EQ(spec.blocks[0].scans, analysis.read(1, 0, 2)) << what;
  }
}

TEST_P(ReadScans, NullKoraIdHasNoScans) {
  AnalysisSpec spec = make(3);
  spec.addFrame({scan({1}, {1})});
  FrameRow null_row;
  null_row.id = 2;  // KoraId NULL
  spec.frames.push_back(null_row);
  const Analysis analysis(spec);
  EXPECT_EQ(scanOutOfRange(0), analysis.error(2, 0, 1));
}

TEST_P(ReadScans, AFailedReadAtTheEndOfTheFileFailsEveryLaterSeek) {
  AnalysisSpec spec = make();
  spec.addFrame({scan({1}, {1})});
  FrameBlock cut;
  cut.scans = {scan({2}, {2})};
  cut.truncateTo = 4;
  spec.addFrame(cut);
  const Analysis analysis(spec);
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Error reading 8-byte binary header.",
            analysis.error(2, 0, 1));
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=1: Can't seek to binary header. Current position: -1. "
      "Error flags: good: 0, eof 0, fail 1, bad 0",
      analysis.error(1, 0, 1));
  // A new handle on the same directory is not affected.
  const Analysis fresh(spec);
  EXPECT_EQ((std::vector<Scan>{scan({1}, {1})}), fresh.read(1, 0, 1));
}

}  // namespace
