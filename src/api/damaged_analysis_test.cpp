// Analyses damaged in ways seen on copies that arrived broken, read through
// the public header: the read fails with the library's text or returns
// defined data, without touching memory for sizes the damage made up.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <string>
#include <vector>

#include "koradata.h"
#include "testing/api_analysis.h"
#include "testing/resident_memory.h"
#include "tools/data_generator.h"
#include "tools/file_damage.h"

namespace {

using kora_testing::ApiAnalysis;
using kora_testing::lastError;
using kora_testing::scanOutOfRange;
using lumo::writer::AnalysisSpec;
using lumo::writer::FrameBlock;
using lumo::writer::FrameRow;
using lumo::writer::Scan;

constexpr uint64_t kMiB = 1024 * 1024;
constexpr uint32_t kScans = 918;

// Three frames of 918 scans in compression type `type`, light enough to
// write quickly.
AnalysisSpec threeFrames(int type) {
  lumo::writer::GeneratorOptions options;
  options.seed = 7;
  options.scansPerFrame = kScans;
  options.meanPeaksPerScan = 40;
  return lumo::writer::generateAnalysis(options, 3, type);
}

// The file offset of the content size field of the Zstandard frame that
// starts at `frame`, which must declare its size in 4 bytes.
uint64_t zstdContentSizeOffset(const boost::filesystem::path& file, uint64_t frame) {
  std::ifstream in(file.string(), std::ios::binary);
  in.seekg(static_cast<std::streamoff>(frame + 4));
  const int descriptor = in.get();
  EXPECT_EQ(2, descriptor >> 6) << "content size field of 4 bytes";
  const bool single_segment = (descriptor & 0x20) != 0;
  const int dictionary_id_bytes[] = {0, 1, 2, 4};
  return frame + 5 + (single_segment ? 0 : 1) + dictionary_id_bytes[descriptor & 3];
}

TEST(DamagedAnalysis, ZstdHeaderDeclaringFourGigabytesFailsWithoutTouchingThem) {
  const ApiAnalysis analysis(threeFrames(2));
  const boost::filesystem::path bin = analysis.dir / "analysis.oxa_bin";
  // Frame 1 now declares 0xFFFFFFF0 expanded bytes.
  lumo::writer::overwriteLe32(bin, zstdContentSizeOffset(bin, analysis.written.blockOffsets[0] + 8),
                              0xFFFFFFF0);
  ASSERT_NE(0u, kora_read_scans_v2(analysis.handle, 2, 0, kScans, nullptr, 0)) << lastError();

  // The expanded buffer keeps its size after the failure, so whatever was
  // touched of it is still resident. (The peak is not compared: a sanitizer
  // may write the shadow of a fresh mapping once and give it back.)
  const uint64_t before = kora_testing::anonymousResidentBytes();
  EXPECT_EQ(0u, kora_read_scans_v2(analysis.handle, 1, 0, kScans, nullptr, 0));
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=1: Error decompressing frame data: Data corruption "
      "detected",
      lastError());
  if (!kora_testing::sanitizerCountsInAnonymousMemory()) {
    EXPECT_LT(kora_testing::anonymousResidentBytes(), before + 64 * kMiB);
  }
}

// Parameter: the compression type.
class DamagedAnalysisBothForms : public ::testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(BothForms, DamagedAnalysisBothForms, ::testing::Values(1, 2),
                         kora_testing::compressionTypeName);

TEST_P(DamagedAnalysisBothForms, AccumulationTimeOf1eMinus320SaturatesInsteadOfZeroingTheFrame) {
  AnalysisSpec spec = AnalysisSpec::make(3, GetParam());
  FrameRow& row = spec.addFrame({Scan{{3, 4, 9}, {0, 7, 0x7FFFFFFF}}, Scan{}});
  row.accumulationTime = 1e-320;  // 100 / 1e-320 overflows to +inf
  const ApiAnalysis analysis(spec);
  // 0 x inf is NaN, which gives 0; every other count saturates.
  EXPECT_EQ((std::vector<Scan>{Scan{{3, 4, 9}, {0, 0xFFFFFFFF, 0xFFFFFFFF}}, Scan{}}),
            analysis.read(1, 0, 2, kora_read_scans_v2));
  EXPECT_EQ(spec.blocks[0].scans, analysis.read(1, 0, 2));
}

TEST_P(DamagedAnalysisBothForms, ScanRangeOfAGigascanIsRefusedBeforeAllocatingForIt) {
  const ApiAnalysis analysis(threeFrames(GetParam()));
  ASSERT_TRUE(kora_testing::resetPeakResident());
  const uint64_t before = kora_testing::residentBytes();
  EXPECT_EQ(0u, kora_read_scans_v2(analysis.handle, 1, 0, 0x3FFFFFFF, nullptr, 0));
  EXPECT_EQ(scanOutOfRange(GetParam(), kScans), lastError());
  EXPECT_LT(kora_testing::peakResidentBytes(), before + 64 * kMiB);
  // The widest ranges fail the same way; the frame's own range still reads.
  EXPECT_EQ(scanOutOfRange(GetParam(), kScans), analysis.error(1, 0, 0xFFFFFFFF));
  EXPECT_EQ(scanOutOfRange(GetParam(), kScans), analysis.error(1, kScans - 1, 0xFFFFFFFF));
  EXPECT_EQ(scanOutOfRange(GetParam(), 0xFFFFFFFE), analysis.error(1, 0xFFFFFFFE, 0xFFFFFFFF));
  EXPECT_EQ(threeFrames(GetParam()).blocks[0].scans, analysis.read(1, 0, kScans));
}

TEST_P(DamagedAnalysisBothForms, AfterAFileErrorAFreshHandleReadsTheIntactFrames) {
  AnalysisSpec spec = threeFrames(GetParam());
  spec.blocks[2].truncateTo = 6;  // the last frame's header is cut
  ApiAnalysis analysis(spec);
  EXPECT_EQ("CorruptFrameDataError for FrameId=3: Error reading 8-byte binary header.",
            analysis.error(3, 0, kScans));
  // The handle's stream stays failed: intact frames fail on it too.
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=1: Can't seek to binary header. Current position: -1. "
      "Error flags: good: 0, eof 0, fail 1, bad 0",
      analysis.error(1, 0, kScans));
  analysis.reopen();
  EXPECT_EQ(spec.blocks[0].scans, analysis.read(1, 0, kScans));
  EXPECT_EQ(spec.blocks[1].scans, analysis.read(2, 0, kScans));
  EXPECT_EQ("CorruptFrameDataError for FrameId=3: Error reading 8-byte binary header.",
            analysis.error(3, 0, kScans));
}

}  // namespace
