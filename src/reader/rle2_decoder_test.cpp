#include "reader/rle2_decoder.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "reader/intensity_normalizer.h"
#include "tools/frame_encoding.h"

namespace lumo {
namespace io {
namespace kora {
namespace {

using Peaks = std::vector<std::pair<uint32_t, uint32_t>>;

struct Collect {
  Peaks* peaks;
  void operator()(uint32_t index, uint32_t intensity) { peaks->emplace_back(index, intensity); }
};

Peaks decode(const std::vector<uint32_t>& words, unsigned int first, unsigned int last) {
  Peaks peaks;
  decoding::decodeRLE2(5, 2, writer::toBytePlanes(words), first, last, Collect{&peaks});
  return peaks;
}

std::string error(const std::vector<unsigned char>& data, unsigned int first, unsigned int last) {
  Peaks peaks;
  try {
    decoding::decodeRLE2(5, 2, data, first, last, Collect{&peaks});
  } catch (const CorruptScanDataError& e) {
    return e.what();
  }
  return "no exception";
}

TEST(Rle2Decoder, RunningIndexMinusOne) {
  // Steps 4, 1, 10: indices 3, 4, 14. Words with all four bytes set check
  // that each plane lands in its byte.
  const std::vector<uint32_t> words = {9, 9, 4, 0x01020304, 1, 0xFFFFFFFF, 10, 7, 1, 2};
  EXPECT_EQ((Peaks{{3, 0x01020304}, {4, 0xFFFFFFFF}, {14, 7}}), decode(words, 2, 8));
  EXPECT_EQ((Peaks{{0, 2}}), decode(words, 8, 10));
  EXPECT_EQ(Peaks{}, decode(words, 4, 4));
  // A first step of 0 wraps to index 0xFFFFFFFF; no bin limit applies.
  EXPECT_EQ((Peaks{{0xFFFFFFFF, 3}, {0x7FFFFFFF, 4}}), decode({0, 3, 0x80000000, 4}, 0, 4));
}

TEST(Rle2Decoder, ReadsTheWriterFrameTable) {
  std::vector<writer::Scan> scans(3);
  scans[0] = {{0, 5, 399999}, {10, 20, 30}};
  scans[2] = {{7}, {70000}};
  const std::vector<uint32_t> words = writer::encodeFrameWordTable(scans);
  // Word 0 is the start of scan 0, word i the length of scan i - 1.
  ASSERT_EQ(3u, words[0]);
  ASSERT_EQ(6u, words[1]);
  ASSERT_EQ(0u, words[2]);
  EXPECT_EQ((Peaks{{0, 10}, {5, 20}, {399999, 30}}), decode(words, 3, 9));
  EXPECT_EQ(Peaks{}, decode(words, 9, 9));
  EXPECT_EQ((Peaks{{7, 70000}}), decode(words, 9, 11));
}

struct CollectBlocks {
  Peaks* peaks;
  std::vector<size_t>* blocks;
  void operator()(uint32_t index, uint32_t intensity) { peaks->emplace_back(index, intensity); }
  void append(const uint32_t* indices, const uint32_t* intensities, size_t n) {
    blocks->push_back(n);
    for (size_t k = 0; k < n; ++k) peaks->emplace_back(indices[k], intensities[k]);
  }
};

TEST(Rle2Decoder, BlockSinksSeeTheSamePeaks) {
  std::vector<writer::Scan> scans(2);
  for (uint32_t i = 0; i < 600; ++i) {
    scans[1].indices.push_back(3 * i + i % 2);
    scans[1].intensities.push_back(0xFFFF0000u + i);
  }
  const std::vector<uint32_t> words = writer::encodeFrameWordTable(scans);
  Peaks expected;
  for (uint32_t i = 0; i < 600; ++i) expected.emplace_back(3 * i + i % 2, 0xFFFF0000u + i);
  Peaks peaks;
  std::vector<size_t> blocks;
  decoding::decodeRLE2(5, 1, writer::toBytePlanes(words), 2, 1202, CollectBlocks{&peaks, &blocks});
  EXPECT_EQ(expected, peaks);
  EXPECT_EQ((std::vector<size_t>{256, 256, 88}), blocks);
  EXPECT_EQ(expected, decode(words, 2, 1202));
  // A normaliser passes blocks on as blocks.
  peaks.clear();
  blocks.clear();
  detail::Normalizer_DutyCycle<CollectBlocks, 0> halve{CollectBlocks{&peaks, &blocks}, 0.5};
  decoding::decodeRLE2(5, 1, writer::toBytePlanes(words), 2, 1202, halve);
  ASSERT_EQ(600u, peaks.size());
  EXPECT_EQ(std::make_pair(4u, (0xFFFF0000u + 1) / 2), peaks[1]);
  EXPECT_EQ((std::vector<size_t>{256, 256, 88}), blocks);
}

// The block decoders against a plain decoding of the words: `steps` and
// `values` of random 32-bit words, so that every byte plane and the wrapping
// of the running index count, in runs whose lengths end in each remainder of
// the blocks. `index` enters as `start` and must leave as the plain one.
class PairBlocks : public ::testing::Test {
 protected:
  using Block = size_t (*)(const unsigned char*, size_t, size_t, uint32_t&, uint32_t*, uint32_t*);

  void SetUp() override {
    std::mt19937 random(20261123);
    for (int i = 0; i < 2 * kPairs; ++i) words.push_back(random());
    planes = writer::toBytePlanes(words);
  }

  // Decodes pairs [from, from + n) with `block` or, when null, decodePairs,
  // and checks every peak it claims and the index it leaves.
  void check(Block block, size_t from, size_t n, uint32_t start, size_t step) {
    std::vector<uint32_t> indices(n + 1, 0xABABABAB);
    std::vector<uint32_t> intensities(n + 1, 0xABABABAB);
    uint32_t index = start;
    size_t done = n;
    if (block != nullptr) {
      done = block(planes.data() + 2 * from, words.size(), n, index, indices.data(),
                   intensities.data());
      ASSERT_EQ(n / step * step, done) << n;
    } else {
      detail::decodePairs(planes.data() + 2 * from, words.size(), n, index, indices.data(),
                          intensities.data());
    }
    uint32_t expected = start;
    for (size_t k = 0; k < done; ++k) {
      expected += words[2 * (from + k)];
      ASSERT_EQ(expected - 1, indices[k]) << "peak " << k << " of " << n;
      ASSERT_EQ(words[2 * (from + k) + 1], intensities[k]) << "peak " << k << " of " << n;
    }
    EXPECT_EQ(expected, index) << n;
    EXPECT_EQ(0xABABABABu, indices[done]);
    EXPECT_EQ(0xABABABABu, intensities[done]);
  }

  void checkAll(Block block, size_t step) {
    for (size_t n = 0; n <= 49; ++n) check(block, 3, n, 1, step);
    check(block, 0, kPairs, 0xFFFFFFF0u, step);
    check(block, 5, kPairs - 5, 0, step);
  }

  static constexpr int kPairs = 1000;
  std::vector<uint32_t> words;
  writer::Bytes planes;
};

TEST_F(PairBlocks, Sse2DecodesWholeBlocksOfEight) {
#if defined(__SSE2__)
  checkAll(detail::decodePairBlockSse2, 8);
#else
  GTEST_SKIP() << "built without SSE2";
#endif
}

TEST_F(PairBlocks, Avx2DecodesWholeBlocksOfSixteen) {
  if (!detail::wideDecodingAvailable()) GTEST_SKIP() << "no AVX2 here";
  checkAll(detail::decodePairBlockAvx2, 16);
}

TEST_F(PairBlocks, DecodePairsDecodesEveryPeak) { checkAll(nullptr, 1); }

TEST(Rle2Decoder, CorruptScans) {
  const std::vector<unsigned char> data = writer::toBytePlanes({1, 2, 3, 4, 5, 6});
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=5, Scan=2: number of decompressed entries not an even "
      "number.",
      error(data, 1, 4));
  EXPECT_EQ("CorruptScanDataError for FrameId=5, Scan=2: Scan words reach beyond the frame data.",
            error(data, 4, 8));
}

// Normalisers wrap the sink of a decoder. Peak by peak and as one block they
// must give the same counts.
Peaks normalize(NormalizationType type, double accumulation, double ramp,
                const std::vector<uint32_t>& intensities) {
  Peaks peaks;
  detail::withNormalizer(type, accumulation, ramp, Collect{&peaks}, [&](auto sink) {
    for (uint32_t i = 0; i < intensities.size(); ++i) sink(i, intensities[i]);
  });
  std::vector<uint32_t> indices(intensities.size());
  for (uint32_t i = 0; i < indices.size(); ++i) indices[i] = i;
  Peaks block;
  detail::withNormalizer(type, accumulation, ramp, Collect{&block}, [&](auto sink) {
    sink.append(indices.data(), intensities.data(), intensities.size());
  });
  EXPECT_EQ(peaks, block);
  return peaks;
}

TEST(IntensityNormalizer, FactorsAndRounding) {
  using T = NormalizationType;
  // Accumulation time 100: unchanged; 200: 1 -> 0.5 + 0.5 = 1; 2 -> 1.5 cut to 1.
  EXPECT_EQ((Peaks{{0, 7}}), normalize(T::AccuTime100ms, 100.0, 0.0, {7}));
  EXPECT_EQ((Peaks{{0, 1}, {1, 1}, {2, 0}}), normalize(T::AccuTime100ms, 200.0, 0.0, {1, 2, 0}));
  // Accumulation time exactly 0: factor 1.
  EXPECT_EQ((Peaks{{0, 9}}), normalize(T::AccuTime100ms, 0.0, 50.0, {9}));
  EXPECT_EQ((Peaks{{0, 9}}), normalize(T::DutyCycle, 0.0, 50.0, {9}));
  // Duty cycle 90 / 100: 9 -> 8.1, cut to 8, or rounded to 8; 5 -> 4.5.
  EXPECT_EQ((Peaks{{0, 8}, {1, 4}}), normalize(T::DutyCycle, 100.0, 90.0, {9, 5}));
  EXPECT_EQ((Peaks{{0, 8}, {1, 5}}), normalize(T::DutyCycleRounded, 100.0, 90.0, {9, 5}));
  // The largest count is converted as unsigned.
  EXPECT_EQ((Peaks{{0, 0xFFFFFFFF}}), normalize(T::DutyCycle, 2.0, 2.0, {0xFFFFFFFF}));
}

TEST(IntensityNormalizer, ValuesOutsideTheCountRangeSaturate) {
  using T = NormalizationType;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // An accumulation time of 1e-320 makes the factor +inf: 0 x inf is NaN.
  EXPECT_EQ((Peaks{{0, 0}, {1, 0xFFFFFFFF}, {2, 0xFFFFFFFF}}),
            normalize(T::AccuTime100ms, 1e-320, 0.0, {0, 1, 0xFFFFFFFF}));
  // 2^32 - 2 fits, 2^32 saturates; also after rounding (factor 2: + 0.5).
  EXPECT_EQ((Peaks{{0, 0xFFFFFFFE}, {1, 0xFFFFFFFF}}),
            normalize(T::DutyCycle, 1.0, 2.0, {0x7FFFFFFF, 0x80000000}));
  EXPECT_EQ((Peaks{{0, 0xFFFFFFFE}, {1, 0xFFFFFFFF}}),
            normalize(T::AccuTime100ms, 50.0, 0.0, {0x7FFFFFFF, 0x80000000}));
  // Below 0 gives 0, also where rounding lifts -4.5 to -4 and -0.5 to 0.0.
  EXPECT_EQ((Peaks{{0, 0}, {1, 0}}), normalize(T::DutyCycle, 100.0, -50.0, {9, 1}));
  EXPECT_EQ((Peaks{{0, 0}, {1, 0}}), normalize(T::DutyCycleRounded, 100.0, -50.0, {9, 1}));
  EXPECT_EQ((Peaks{{0, 0}}), normalize(T::AccuTime100ms, -100.0, 0.0, {5}));
  // NaN times give a NaN factor, and NaN gives 0.
  EXPECT_EQ((Peaks{{0, 0}, {1, 0}}), normalize(T::DutyCycle, 100.0, nan, {9, 0}));
  EXPECT_EQ((Peaks{{0, 0}}), normalize(T::AccuTime100ms, nan, 0.0, {9}));
}

TEST(IntensityNormalizer, DefaultsAndUnknownTypes) {
  EXPECT_EQ(NormalizationType::None, defaultNormalization(1));
  EXPECT_EQ(NormalizationType::DutyCycle, defaultNormalization(2));
  EXPECT_EQ(NormalizationType::AccuTime100ms, defaultNormalization(3));
  EXPECT_EQ(NormalizationType::AccuTime100ms, defaultNormalization(0));
  for (int type : {0, 1, 5}) {
    try {
      normalize(static_cast<NormalizationType>(type), 100.0, 100.0, {1});
      ADD_FAILURE() << type;
    } catch (const std::runtime_error& e) {
      EXPECT_STREQ("decodeScanRange() : Unknown NormalizationType", e.what());
    }
  }
}

}  // namespace
}  // namespace kora
}  // namespace io
}  // namespace lumo
