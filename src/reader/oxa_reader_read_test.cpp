// The read path of OxaReader on analyses made by the synthetic writer: the
// failures of both frame file forms with their exact texts, and the caching
// rules, made visible by overwriting the frame file under an open reader.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "reader/oxa_reader.h"
#include "reader/oxa_reader_decoding.h"
#include "testing/temp_dir.h"
#include "testing/thrown_text.h"
#include "tools/analysis_writer.h"
#include "tools/frame_encoding.h"

namespace lumo {
namespace io {
namespace kora {
namespace {

namespace fs = boost::filesystem;
using writer::AnalysisSpec;
using writer::Bytes;
using writer::FrameBlock;
using writer::FrameRow;
using writer::Scan;
using Peaks = std::vector<std::pair<uint32_t, uint32_t>>;

Scan scan(std::vector<uint32_t> indices, std::vector<uint32_t> intensities) {
  return Scan{std::move(indices), std::move(intensities)};
}

class ReadPath : public ::testing::Test {
 protected:
  OxaReader& open(int compression_type) {
    writer::writeAnalysis(spec(compression_type), dir.path());
    reader.reset(new OxaReader(dir.path(), boost::none));
    return *reader;
  }
  AnalysisSpec& spec(int compression_type) {
    spec_.compressionType = compression_type;
    spec_.metadata.set("KoraCompressionType", std::to_string(compression_type));
    return spec_;
  }

  // All peaks of scans [begin, end), raw.
  Peaks read(int64_t frame, uint32_t begin, uint32_t end) {
    Peaks peaks;
    reader->decodeScanRange(
        frame, begin, end, [&](uint32_t i, uint32_t v) { peaks.emplace_back(i, v); },
        [](unsigned int) {}, NormalizationType::None);
    return peaks;
  }

  std::string error(int64_t frame, uint32_t begin, uint32_t end) {
    try {
      read(frame, begin, end);
    } catch (const std::exception& e) {
      return e.what();
    }
    return "<read>";
  }

  // Overwrites analysis.oxa_bin with zeros in place, under the open reader.
  void zeroFrameFile() {
    const fs::path path = dir / "analysis.oxa_bin";
    const std::string zeros(fs::file_size(path), '\0');
    std::fstream file(path.string(), std::ios::in | std::ios::out | std::ios::binary);
    file.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
  }

  AnalysisSpec spec_ = AnalysisSpec::make(3, 1, 400000);
  kora_testing::TempDir dir;
  std::unique_ptr<OxaReader> reader;
};

// --- Per-scan LZF frames ---

using PerScanLzfFile = ReadPath;

TEST_F(PerScanLzfFile, HeaderFailures) {
  FrameBlock too_many;
  too_many.numScans = 131073;
  spec(1).addFrame(too_many);
  FrameBlock short_table;  // the last block, cut inside its offsets
  short_table.scans.resize(3);
  short_table.truncateTo = 8 + 8;
  spec(1).addFrame(short_table);
  open(1);
  EXPECT_EQ("CorruptFrameDataError for FrameId=1: Maximum number of scans exceeded.",
            error(1, 0, 1));
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Error reading binary scan offsets.",
            error(2, 0, 1));
}

TEST_F(PerScanLzfFile, AFailedHeaderIsNotReadAgain) {
  spec(1).addFrame({scan({1}, {1})});
  FrameBlock short_table;  // the last block, cut inside its offsets
  short_table.scans.resize(3);
  short_table.truncateTo = 8 + 8;
  spec(1).addFrame(short_table);
  open(1);
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Error reading binary scan offsets.",
            error(2, 0, 1));
  // The header keeps the frame's identity and is not loaded again: the table
  // is used as the failure left it, two offsets read (scan 0 empty) and the
  // rest zero, which runs backwards.
  EXPECT_EQ(Peaks{}, read(2, 0, 1));
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Compressed scan-range size too large.",
            error(2, 1, 2));
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=1: Can't seek to binary header. Current position: -1. "
      "Error flags: good: 0, eof 0, fail 1, bad 0",
      error(1, 0, 1));
}

TEST_F(PerScanLzfFile, HeaderCutOff) {
  FrameBlock cut;
  cut.scans.resize(1);
  cut.truncateTo = 7;
  spec(1).addFrame(cut);
  open(1);
  EXPECT_EQ("CorruptFrameDataError for FrameId=1: Error reading 8-byte binary header.",
            error(1, 0, 1));
}

TEST_F(PerScanLzfFile, MostScansLoad) {
  FrameBlock block;
  block.numScans = 131072;
  block.scanOffsets = std::vector<uint32_t>(131073, 8 + 4 * 131073);
  spec(1).addFrame(block);
  spec(1).addFrame(FrameBlock{});  // no scans: a table of one offset
  open(1);
  EXPECT_EQ(Peaks{}, read(1, 131070, 131072));
  EXPECT_EQ("Scan number out of range.", error(1, 131071, 131073));
  EXPECT_EQ("Scan number out of range.", error(2, 0, 1));
}

TEST_F(PerScanLzfFile, RunFailures) {
  FrameBlock beyond;  // offsets pointing past the end of the file
  beyond.scans = {scan({1}, {1})};
  beyond.scanOffsets = std::vector<uint32_t>{16, 1000};
  spec(1).addFrame(beyond);
  FrameBlock huge;
  huge.scans = {scan({1}, {1})};
  huge.scanOffsets = std::vector<uint32_t>{16, 16 + 0x40000001};
  spec(1).addFrame(huge);
  open(1);
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Compressed scan-range size too large.",
            error(2, 0, 1));
  EXPECT_EQ("Scan number out of range.", error(2, 0, 2));
  EXPECT_EQ("CorruptFrameDataError for FrameId=1: Error reading scan-range data.", error(1, 0, 1));
}

TEST_F(PerScanLzfFile, ScanFailures) {
  FrameBlock block;
  block.scans = {scan({1}, {1}), scan({2}, {2}), scan({3}, {3}), scan({4}, {4})};
  block.storedScans[0] = Bytes{0x20, 0};
  block.expandedScans[1] = Bytes{1, 2, 3};
  block.expandedScans[2] = Bytes(4194308, 0);
  spec(1).addFrame(block);
  open(1);
  EXPECT_EQ("CorruptScanDataError for FrameId=1, Scan=0: Corrupt LZF input stream.",
            error(1, 0, 4));
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=1, Scan=1: LZF-decompressed size not a multiple of 4.",
      error(1, 1, 2));
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=1, Scan=2: Maximum decompression-buffer size exceeded.",
      error(1, 2, 3));
  EXPECT_EQ((Peaks{{4, 4}}), read(1, 3, 4));
}

// --- The cache of compressed scans ---

using ScanCache = ReadPath;

// The stored bytes of `scan` of `block`, as encoded by the writer.
Bytes storedScan(const FrameBlock& block, uint32_t scan) {
  const Bytes bytes = writer::encodeBlock(block, 1);
  auto word = [&](size_t at) {
    return static_cast<uint32_t>(bytes[at]) | static_cast<uint32_t>(bytes[at + 1]) << 8 |
           static_cast<uint32_t>(bytes[at + 2]) << 16 | static_cast<uint32_t>(bytes[at + 3]) << 24;
  };
  const uint32_t begin = word(8 + 4 * scan);
  const uint32_t end = word(12 + 4 * scan);
  return Bytes(bytes.begin() + begin, bytes.begin() + end);
}

Bytes blob(std::pair<const unsigned char*, unsigned int> b) {
  return b.first == nullptr ? Bytes{} : Bytes(b.first, b.first + b.second);
}

TEST_F(ScanCache, HintedRunIsServedFromMemory) {
  FrameBlock block;
  for (uint32_t s = 0; s < 40; ++s) block.scans.push_back(scan({s, s + 7}, {s + 1, 2 * s}));
  block.scans[12] = Scan{};
  spec(1).addFrame(block);
  FrameRow shared;  // a second frame on the same block
  shared.id = 2;
  shared.block = 0;
  spec(1).frames.push_back(shared);
  OxaReader& r = open(1);

  r.hintWillReadScanRange(1, 10, 20);
  zeroFrameFile();
  EXPECT_EQ(storedScan(block, 15), blob(r.getScanBlob(1, 15)));
  EXPECT_EQ(storedScan(block, 10), blob(r.getScanBlob(2, 10)));  // identity is the KoraId
  EXPECT_EQ(Bytes{}, blob(r.getScanBlob(1, 12)));
  EXPECT_EQ(nullptr, r.getScanBlob(1, 12).first);
  // A scan outside the run replaces the run by itself, read from the file.
  EXPECT_EQ(Bytes(storedScan(block, 30).size(), 0), blob(r.getScanBlob(1, 30)));
  EXPECT_EQ(Bytes(storedScan(block, 15).size(), 0), blob(r.getScanBlob(1, 15)));
}

TEST_F(ScanCache, HintsAlwaysRead) {
  FrameBlock block;
  for (uint32_t s = 0; s < 5; ++s) block.scans.push_back(scan({s}, {s + 1}));
  spec(1).addFrame(block);
  OxaReader& r = open(1);
  EXPECT_EQ((Peaks{{1, 2}, {2, 3}}), read(1, 1, 3));
  zeroFrameFile();
  // The header stays loaded; the scans come from the file again.
  EXPECT_EQ("CorruptScanDataError for FrameId=1, Scan=1: Corrupt LZF input stream.",
            error(1, 1, 3));
  EXPECT_EQ("<nothing thrown>",
            kora_testing::thrownText([&] { r.hintWillReadScanRange(1, 3, 3); }));
  EXPECT_EQ("Scan number out of range.",
            kora_testing::thrownText([&] { r.hintWillReadScanRange(1, 4, 6); }));
  EXPECT_EQ("scan_end must be >= scan_begin.",
            kora_testing::thrownText([&] { r.hintWillReadScanRange(1, 3, 2); }));
}

TEST_F(ScanCache, SingleScanReadsAreLimitedButHintedRunsAreNot) {
  FrameBlock block;
  block.scans.resize(3);
  block.storedScans[0] = Bytes(65536, 7);
  block.storedScans[1] = Bytes(65537, 7);
  spec(1).addFrame(block);
  OxaReader& r = open(1);
  EXPECT_EQ(Bytes(65536, 7), blob(r.getScanBlob(1, 0)));
  EXPECT_EQ("CorruptScanDataError for FrameId=1, Scan=1: Compressed scan size too large.",
            kora_testing::thrownText([&] { r.getScanBlob(1, 1); }));
  r.hintWillReadScanRange(1, 1, 2);
  EXPECT_EQ(Bytes(65537, 7), blob(r.getScanBlob(1, 1)));
  EXPECT_EQ(Bytes{}, blob(r.getScanBlob(1, 2)));
}

TEST_F(ScanCache, EachFormRefusesTheOtherFormsAccess) {
  spec(1).addFrame({scan({1}, {1})});
  OxaReader& r = open(1);
  unsigned int first, last;
  EXPECT_EQ("Unexpected call to getDecompressedScanData for analysis with scan compression",
            kora_testing::thrownText([&] { r.getDecompressedScanData(1, 0, first, last); }));
  spec(2);
  OxaReader& z = open(2);
  EXPECT_EQ("Unexpected call to getScanBlob for analysis with frame compression",
            kora_testing::thrownText([&] { z.getScanBlob(1, 0); }));
  // The hint does nothing here, not even look at the frame.
  EXPECT_EQ("<nothing thrown>",
            kora_testing::thrownText([&] { z.hintWillReadScanRange(77, 5, 9); }));
  EXPECT_EQ("scan_end must be >= scan_begin.",
            kora_testing::thrownText([&] { z.hintWillReadScanRange(1, 9, 5); }));
}

// --- Per-frame Zstandard frames ---

using PerFrameZstdFile = ReadPath;

TEST_F(PerFrameZstdFile, BlockFailures) {
  const std::vector<Scan> scans = {scan({1}, {1}), scan({2}, {2})};
  FrameBlock too_large;
  too_large.scans = scans;
  too_large.frameSize = 0x40000001;
  spec(2).addFrame(too_large);
  FrameBlock no_content_size;
  no_content_size.scans = scans;
  no_content_size.omitContentSize = true;
  spec(2).addFrame(no_content_size);
  FrameBlock garbage;
  garbage.scans = scans;
  garbage.storedPayload = Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  spec(2).addFrame(garbage);
  FrameBlock below_header;
  below_header.scans = scans;
  below_header.frameSize = 7;
  spec(2).addFrame(below_header);
  FrameBlock cut;
  cut.scans = scans;
  cut.truncateTo = 20;
  spec(2).addFrame(cut);
  open(2);
  EXPECT_EQ("CorruptFrameDataError for FrameId=1: Compressed scan size too large.", error(1, 0, 1));
  EXPECT_EQ("CorruptFrameDataError for FrameId=2: Error decompressing frame data: Error (generic)",
            error(2, 0, 1));
  // Zstandard's own text for a header that is no frame header.
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=3: Error decompressing frame data: Unspecified error "
      "code",
      error(3, 0, 1));
  EXPECT_EQ("vector::_M_default_append", error(4, 0, 1));
  EXPECT_EQ("CorruptFrameDataError for FrameId=5: Error reading frame data.", error(5, 0, 1));
}

TEST_F(PerFrameZstdFile, HeaderCutOff) {
  FrameBlock cut;
  cut.scans = {scan({1}, {1})};
  cut.truncateTo = 5;
  spec(2).addFrame(cut);
  open(2);
  EXPECT_EQ("CorruptFrameDataError for FrameId=1: Error reading 8-byte binary header.",
            error(1, 0, 1));
}

TEST_F(PerFrameZstdFile, WordTableFailures) {
  const std::vector<Scan> scans = {scan({1}, {1}), scan({2, 5}, {2, 5}), scan({3}, {3})};
  FrameBlock odd;
  odd.scans = scans;
  odd.oddWordScans = {1};
  spec(2).addFrame(odd);
  FrameBlock too_many;  // W = 3 + 8 = 11 words, 20 scans claimed
  too_many.scans = scans;
  too_many.numScans = 20;
  spec(2).addFrame(too_many);
  FrameBlock none;  // no scans claimed, a payload all the same
  none.scans = scans;
  none.numScans = 0;
  spec(2).addFrame(none);
  FrameBlock tail;  // bytes beyond 4 x W are ignored
  tail.scans = scans;
  Bytes planes = writer::toBytePlanes(writer::encodeFrameWordTable(scans));
  planes.insert(planes.end(), {9, 9, 9});
  tail.expandedPayload = planes;
  spec(2).addFrame(tail);
  open(2);
  EXPECT_EQ((Peaks{{1, 1}}), read(1, 0, 1));
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=1, Scan=1: number of decompressed entries not an even "
      "number.",
      error(1, 0, 3));
  EXPECT_EQ(
      "CorruptFrameDataError for FrameId=2: Found invalid number of scans for frame, expected "
      "[20] got [11]",
      error(2, 0, 1));
  EXPECT_EQ("Scan number [0] out of range.", error(3, 0, 1));
  EXPECT_EQ((Peaks{{1, 1}, {2, 2}, {5, 5}, {3, 3}}), read(4, 0, 3));
}

TEST_F(PerFrameZstdFile, OneExpansionPerKoraId) {
  spec(2).addFrame({scan({1}, {10}), scan({2}, {20})});
  spec(2).addFrame({scan({3}, {30})});
  FrameRow shared;
  shared.id = 3;
  shared.block = 0;
  spec(2).frames.push_back(shared);
  open(2);
  EXPECT_EQ((Peaks{{1, 10}}), read(1, 0, 1));
  zeroFrameFile();
  // Further scans of the frame, and a frame on the same block, need no read.
  EXPECT_EQ((Peaks{{2, 20}}), read(1, 1, 2));
  EXPECT_EQ((Peaks{{1, 10}, {2, 20}}), read(3, 0, 2));
  // Another block is read, and what it finds now is a frame size of 0.
  EXPECT_EQ("vector::_M_default_append", error(2, 0, 1));
}

}  // namespace
}  // namespace kora
}  // namespace io
}  // namespace lumo
