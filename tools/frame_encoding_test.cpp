#include "tools/frame_encoding.h"

#include <gtest/gtest.h>
#include <lzf.h>
#include <zstd.h>

namespace lumo {
namespace writer {
namespace {

Bytes lzfExpand(const Bytes& stored, size_t expected_size) {
  Bytes out(expected_size + 16);
  const unsigned int n = lzf_decompress(stored.data(), static_cast<unsigned int>(stored.size()),
                                        out.data(), static_cast<unsigned int>(out.size()));
  out.resize(n);
  return out;
}

TEST(ScanWords, GapsBecomeNegativeSkipsAndPeaksTheirIntensity) {
  Scan scan{{0, 1, 5, 100}, {7, 0, 0x7FFFFFFF, 3}};
  EXPECT_EQ(encodeScanWords(scan), (std::vector<int32_t>{7, 0, -3, 0x7FFFFFFF, -94, 3}));
  EXPECT_TRUE(encodeScanWords(Scan{}).empty());
}

TEST(ScanWords, LittleEndianBytes) {
  EXPECT_EQ(wordsToBytes(std::vector<int32_t>{-2, 0x01020304}),
            (Bytes{0xFE, 0xFF, 0xFF, 0xFF, 0x04, 0x03, 0x02, 0x01}));
}

TEST(LzfCompress, RepetitiveDataShrinksAndExpandsBack) {
  Bytes raw;
  for (int i = 0; i < 500; ++i) raw.insert(raw.end(), {1, 2, 3, 4, 5, 6, 7, 8});
  const Bytes stored = lzfCompress(raw);
  EXPECT_LT(stored.size(), raw.size() / 4);
  EXPECT_EQ(lzfExpand(stored, raw.size()), raw);
}

TEST(LzfCompress, IncompressibleDataIsStoredAsLiteralRuns) {
  Bytes raw;
  uint32_t x = 12345;
  for (int i = 0; i < 70; ++i) {
    x = x * 1103515245u + 12345u;
    raw.push_back(static_cast<unsigned char>(x >> 24));
  }
  const Bytes stored = lzfCompress(raw);
  ASSERT_EQ(stored.size(), 73u);  // runs of 32, 32 and 6 bytes
  EXPECT_EQ(stored[0], 31);
  EXPECT_EQ(stored[33], 31);
  EXPECT_EQ(stored[66], 5);
  EXPECT_EQ(lzfExpand(stored, raw.size()), raw);
}

TEST(LzfCompress, LiteralOnlyAndTinyInputs) {
  const Bytes zeros(40, 0);
  const Bytes stored = lzfCompress(zeros, /*literal_only=*/true);
  EXPECT_EQ(stored.size(), 42u);
  EXPECT_EQ(lzfExpand(stored, zeros.size()), zeros);
  EXPECT_EQ(lzfCompress(Bytes{9}), (Bytes{0, 9}));
  EXPECT_TRUE(lzfCompress(Bytes{}).empty());
}

TEST(FrameWordTable, LengthTableThenStepIntensityPairs) {
  std::vector<Scan> scans = {Scan{{0, 4}, {10, 11}}, Scan{}, Scan{{2}, {5}}};
  // Word 0: start of scan 0 (3); words 1, 2: lengths of scans 0 and 1.
  EXPECT_EQ(encodeFrameWordTable(scans), (std::vector<uint32_t>{3, 4, 0, 1, 10, 4, 11, 3, 5}));
}

TEST(FrameWordTable, OddWordScansGetOneMoreWord) {
  std::vector<Scan> scans = {Scan{{1}, {2}}, Scan{{0}, {6}}};
  EXPECT_EQ(encodeFrameWordTable(scans, {0}), (std::vector<uint32_t>{2, 3, 2, 2, 0, 1, 6}));
  EXPECT_TRUE(encodeFrameWordTable({}).empty());
  EXPECT_EQ(encodeFrameWordTable({Scan{}, Scan{}}), (std::vector<uint32_t>{2, 0}));
}

TEST(FrameWordTable, BytePlanes) {
  EXPECT_EQ(toBytePlanes({0x04030201, 0x0D0C0B0A}),
            (Bytes{0x01, 0x0A, 0x02, 0x0B, 0x03, 0x0C, 0x04, 0x0D}));
}

TEST(ZstdCompress, ContentSizeIsStatedOrLeftOut) {
  Bytes raw(1000);
  for (size_t i = 0; i < raw.size(); ++i) raw[i] = static_cast<unsigned char>(i % 7);
  const Bytes with = zstdCompress(raw);
  EXPECT_EQ(ZSTD_getFrameContentSize(with.data(), with.size()), 1000u);
  const Bytes without = zstdCompress(raw, /*with_content_size=*/false);
  EXPECT_EQ(ZSTD_getFrameContentSize(without.data(), without.size()), ZSTD_CONTENTSIZE_UNKNOWN);

  Bytes back(raw.size());
  EXPECT_EQ(ZSTD_decompress(back.data(), back.size(), with.data(), with.size()), raw.size());
  EXPECT_EQ(back, raw);
  back.assign(raw.size(), 0);
  EXPECT_EQ(ZSTD_decompress(back.data(), back.size(), without.data(), without.size()), raw.size());
  EXPECT_EQ(back, raw);
}

}  // namespace
}  // namespace writer
}  // namespace lumo
