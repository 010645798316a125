#include "reader/uimf_decompression.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tools/frame_encoding.h"

namespace lumo {
namespace io {
namespace kora {
namespace {

using writer::Bytes;
using Peaks = std::vector<std::pair<uint32_t, uint32_t>>;

struct Collect {
  Peaks* peaks;
  void operator()(uint32_t index, uint32_t intensity) { peaks->emplace_back(index, intensity); }
};

Bytes lzfOfWords(const std::vector<int32_t>& words) {
  return writer::lzfCompress(writer::wordsToBytes(words));
}

size_t count(const std::string& text, const std::string& part) {
  size_t n = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

class UimfDecoder : public ::testing::Test {
 protected:
  // Decodes with the reader's settings: 4 MiB limit, frame 7, scan 3.
  Peaks decode(const Bytes& stored, boost::optional<unsigned int> bins = boost::none,
               std::atomic_flag* flag = nullptr) {
    Peaks peaks;
    decompressUimf(stored.data(), static_cast<int>(stored.size()), Collect{&peaks}, buffer, 4194304,
                   bins, flag, 7, 3);
    return peaks;
  }

  std::string error(const Bytes& stored) {
    try {
      decode(stored);
    } catch (const CorruptScanDataError& e) {
      return e.what();
    }
    return "no exception";
  }

  std::vector<unsigned char> buffer = std::vector<unsigned char>(1000);
};

TEST_F(UimfDecoder, SkipsAndPeaks) {
  EXPECT_EQ((Peaks{{3, 7}, {4, 0}, {7, 5}}), decode(lzfOfWords({-3, 7, 0, -2, 5})));
  EXPECT_EQ(Peaks{}, decode(lzfOfWords({-3, -100, -1})));
  EXPECT_EQ((Peaks{{0, 0x7FFFFFFF}}), decode(lzfOfWords({0x7FFFFFFF})));
  // The running index is unsigned 32-bit: the most negative word is a skip.
  EXPECT_EQ((Peaks{{0x80000001u, 9}}), decode(lzfOfWords({INT32_MIN, -1, 9})));
}

TEST_F(UimfDecoder, EmptyScanCallsNothing) {
  Peaks peaks;
  decompressUimf(nullptr, 0, Collect{&peaks}, buffer, 4194304, boost::none, nullptr, 7, 3);
  EXPECT_TRUE(peaks.empty());
  EXPECT_EQ(1000u, buffer.size());
}

TEST_F(UimfDecoder, BufferGrowsAndKeepsItsSize) {
  std::vector<int32_t> words(1250, -1);  // 5000 bytes
  words.push_back(42);
  EXPECT_EQ((Peaks{{1250, 42}}), decode(lzfOfWords(words)));
  EXPECT_EQ(8007u, buffer.size());  // 1000, 2001, 4003, 8007
  EXPECT_EQ((Peaks{{1, 2}}), decode(lzfOfWords({-1, 2})));
  EXPECT_EQ(8007u, buffer.size());
}

TEST_F(UimfDecoder, ExpansionOfExactlyTheLimitFits) {
  std::vector<int32_t> words(4194304 / 4, -1);
  words.back() = 5;
  EXPECT_EQ((Peaks{{1048575, 5}}), decode(lzfOfWords(words)));
  EXPECT_EQ(4194304u, buffer.size());

  Bytes raw = writer::wordsToBytes(words);
  raw.push_back(0);
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=7, Scan=3: Maximum decompression-buffer size exceeded.",
      error(writer::lzfCompress(raw)));
}

TEST_F(UimfDecoder, CorruptScans) {
  EXPECT_EQ(
      "CorruptScanDataError for FrameId=7, Scan=3: LZF-decompressed size not a multiple of 4.",
      error(writer::lzfCompress(Bytes{1, 0, 0, 0, 2})));
  // The last control byte promises three more bytes than there are.
  EXPECT_EQ("CorruptScanDataError for FrameId=7, Scan=3: Corrupt LZF input stream.",
            error(Bytes{3, 1, 0, 0, 0, 3, 2}));
  EXPECT_EQ("CorruptScanDataError for FrameId=7, Scan=3: Corrupt LZF input stream.",
            error(Bytes{0x20, 0}));
}

TEST_F(UimfDecoder, PeaksBeforeAFailureStayWithTheSink) {
  Peaks peaks;
  const Bytes stored = writer::lzfCompress(Bytes{1, 0, 0, 0, 2, 0, 0, 0, 3});
  EXPECT_THROW(decompressUimf(stored.data(), static_cast<int>(stored.size()), Collect{&peaks},
                              buffer, 4194304, boost::none, nullptr, 7, 3),
               CorruptScanDataError);
  EXPECT_TRUE(peaks.empty());  // the size is checked before the walk
}

TEST_F(UimfDecoder, IndicesAtOrAboveTheBinsAreDroppedButMoveTheIndexOn) {
  std::atomic_flag flag = ATOMIC_FLAG_INIT;
  // Indices 8, 9, 10, 11, then 13.
  const Bytes stored = lzfOfWords({-8, 1, 2, 3, 4, -1, 5});
  testing::internal::CaptureStderr();
  EXPECT_EQ((Peaks{{8, 1}, {9, 2}}), decode(stored, 10u, &flag));
  EXPECT_EQ((Peaks{{8, 1}, {9, 2}}), decode(stored, 10u, &flag));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(1u, count(log, "exceeds number of bins"));
  EXPECT_EQ(1u, count(log, "Index 10 exceeds number of bins = 10, silently dropping from now on."));
  EXPECT_TRUE(flag.test_and_set());

  // Without bins every peak passes; without a flag every drop logs.
  EXPECT_EQ((Peaks{{8, 1}, {9, 2}, {10, 3}, {11, 4}, {13, 5}}), decode(stored));
  testing::internal::CaptureStderr();
  EXPECT_EQ((Peaks{{8, 1}}), decode(stored, 9u, nullptr));
  EXPECT_EQ((Peaks{{8, 1}}), decode(stored, 9u, nullptr));
  EXPECT_EQ(2u, count(testing::internal::GetCapturedStderr(),
                      "Index 9 exceeds number of bins = 9, silently dropping from now on."));
}

// A sink that takes blocks; records the block sizes it was given.
struct CollectBlocks {
  Peaks* peaks;
  std::vector<size_t>* blocks;
  void operator()(uint32_t index, uint32_t intensity) { peaks->emplace_back(index, intensity); }
  void append(const uint32_t* indices, const uint32_t* intensities, size_t n) {
    blocks->push_back(n);
    for (size_t k = 0; k < n; ++k) peaks->emplace_back(indices[k], intensities[k]);
  }
};

TEST_F(UimfDecoder, BlockSinksSeeTheSamePeaks) {
  // 700 peaks (some dropped by the bins), with a skip before every third.
  std::vector<int32_t> words;
  Peaks expected;
  uint32_t index = 0;
  for (int32_t i = 0; i < 700; ++i) {
    if (i % 3 == 0) {
      words.push_back(-(i % 7) - 1);
      index += i % 7 + 1;
    }
    words.push_back(i * 11);
    if (index < 1500) expected.emplace_back(index, i * 11);
    ++index;
  }
  const Bytes stored = lzfOfWords(words);
  std::atomic_flag flag = ATOMIC_FLAG_INIT;
  testing::internal::CaptureStderr();
  Peaks peaks;
  std::vector<size_t> blocks;
  decompressUimf(stored.data(), static_cast<int>(stored.size()), CollectBlocks{&peaks, &blocks},
                 buffer, 4194304, 1500u, &flag, 7, 3);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(expected, peaks);
  ASSERT_EQ(expected.size(), decode(stored, 1500u, &flag).size());
  EXPECT_EQ((std::vector<size_t>{256, 256, expected.size() - 512}), blocks);
}

}  // namespace
}  // namespace kora
}  // namespace io
}  // namespace lumo
