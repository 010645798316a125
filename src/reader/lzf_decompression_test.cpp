#include "reader/lzf_decompression.h"

#include <gtest/gtest.h>
#include <lzf.h>

#include <cerrno>
#include <random>
#include <string>
#include <vector>

namespace lumo {
namespace io {
namespace uimf {
namespace {

using Bytes = std::vector<unsigned char>;

// Expands `in` into a buffer of `out_len` bytes; the bytes written, or the
// text of the exception.
std::string expand(const Bytes& in, unsigned int out_len) {
  Bytes out(out_len);
  try {
    const unsigned int n =
        decompressLzf(in.data(), static_cast<unsigned int>(in.size()), out.data(), out_len);
    return std::string(out.begin(), out.begin() + n);
  } catch (const std::exception& e) {
    return std::string("throws: ") + e.what();
  }
}

TEST(LzfDecoder, RefusesEmptyInputAndMaximumLengths) {
  unsigned char in[1] = {0};
  unsigned char out[4];
  EXPECT_THROW(
      try { decompressLzf(in, 0, out, 4); } catch (const std::invalid_argument& e) {
        EXPECT_STREQ("Must provide non-empty input stream.", e.what());
        throw;
      },
      std::invalid_argument);
  for (auto lengths : {std::make_pair(0xFFFFFFFFu, 4u), std::make_pair(1u, 0xFFFFFFFFu)}) {
    try {
      decompressLzf(in, lengths.first, out, lengths.second);
      ADD_FAILURE() << "no exception";
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ("Input or output length exceeds maximum value of unsigned.", e.what());
    }
  }
}

TEST(LzfDecoder, NoOutputSpaceGivesZero) {
  const unsigned char in[] = {0, 'a'};
  unsigned char out[4];
  EXPECT_EQ(0u, decompressLzf(in, 2, nullptr, 4));
  EXPECT_EQ(0u, decompressLzf(in, 2, out, 0));
}

TEST(LzfDecoder, LiteralRunsAndBackReferences) {
  EXPECT_EQ("abc", expand({2, 'a', 'b', 'c'}, 16));
  // Short reference: length 2 + 2 from 4 bytes back.
  EXPECT_EQ("abcdabcd", expand({3, 'a', 'b', 'c', 'd', 2 << 5, 3}, 16));
  // Reference 256 + 1 bytes back: high offset bits in the control byte.
  Bytes in = {31};
  for (int i = 0; i < 32; ++i) in.push_back(static_cast<unsigned char>(i));
  std::string expected(in.begin() + 1, in.end());
  for (int k = 0; k < 8; ++k) {
    in.push_back(31);
    for (int i = 0; i < 32; ++i) in.push_back(static_cast<unsigned char>(32 * (k + 1) + i));
    for (int i = 0; i < 32; ++i) expected.push_back(static_cast<char>(32 * (k + 1) + i));
  }
  in.insert(in.end(), {(1 << 5) | 1, 0});  // 3 bytes from 257 back
  expected += expected.substr(expected.size() - 257, 3);
  EXPECT_EQ(expected, expand(in, 1000));
}

TEST(LzfDecoder, OverlappingBackReferenceRepeatsOneByte) {
  // Long reference to offset 1 with n = 7 + 5: 14 copies of the byte before.
  EXPECT_EQ(std::string(15, 'x'), expand({0, 'x', 0xE0, 5, 0}, 64));
  // Offset 2 repeats a pair.
  EXPECT_EQ("ababababab", expand({1, 'a', 'b', 0xC0, 1}, 64));
}

TEST(LzfDecoder, BackReferencesOfEveryShortPeriod) {
  for (unsigned char period = 1; period <= 20; ++period) {
    for (unsigned char e : {0, 3, 40, 250}) {
      Bytes in = {static_cast<unsigned char>(period - 1)};
      std::string expected;
      for (unsigned char i = 0; i < period; ++i) {
        in.push_back(static_cast<unsigned char>('a' + i));
        expected.push_back(static_cast<char>('a' + i));
      }
      in.insert(in.end(), {0xE0, e, static_cast<unsigned char>(period - 1), 0, 'z'});
      for (size_t i = 0; i < 7u + e + 2; ++i) expected.push_back(expected[i]);
      expected.push_back('z');
      // Room to spare, and exactly enough room.
      EXPECT_EQ(expected, expand(in, 1000)) << int(period) << " " << int(e);
      EXPECT_EQ(expected, expand(in, static_cast<unsigned int>(expected.size())))
          << int(period) << " " << int(e);
    }
  }
}

TEST(LzfDecoder, OutputTooSmallGivesZero) {
  EXPECT_EQ("", expand({2, 'a', 'b', 'c'}, 2));
  EXPECT_EQ("abc", expand({2, 'a', 'b', 'c'}, 3));
  EXPECT_EQ("", expand({0, 'x', 0xE0, 5, 0}, 14));
  EXPECT_EQ(std::string(15, 'x'), expand({0, 'x', 0xE0, 5, 0}, 15));
}

TEST(LzfDecoder, CorruptStreams) {
  const std::string corrupt = "throws: Invalid input stream";
  EXPECT_EQ(corrupt, expand({5, 'a'}, 16));           // literal past the input
  EXPECT_EQ(corrupt, expand({0, 'a', 0x20}, 16));     // reference without offset
  EXPECT_EQ(corrupt, expand({0, 'a', 0xE0, 1}, 16));  // long reference cut off
  EXPECT_EQ(corrupt, expand({0, 'a', 0x20, 1}, 16));  // starts before the output
  EXPECT_EQ(corrupt, expand({0x20, 0}, 16));          // reference into nothing
  EXPECT_EQ(corrupt, expand({1, 'a', 'b', (1 << 5) | 1, 0}, 1000));
}

// liblzf's lzf_decompress is the reference: it returns 0 with errno E2BIG
// where ours returns 0, and 0 with EINVAL where ours throws.
std::string reference(const Bytes& in, unsigned int out_len) {
  Bytes out(out_len);
  errno = 0;
  const unsigned int n =
      lzf_decompress(in.data(), static_cast<unsigned int>(in.size()), out.data(), out_len);
  if (n == 0 && errno == EINVAL) return "throws: Invalid input stream";
  return std::string(out.begin(), out.begin() + n);
}

Bytes compressible(std::mt19937& rng, size_t size) {
  Bytes raw;
  std::uniform_int_distribution<int> kind(0, 3), byte(0, 255), run(1, 300);
  while (raw.size() < size) {
    const int k = kind(rng);
    const int n = run(rng);
    if (k == 0) {  // noise
      for (int i = 0; i < n; ++i) raw.push_back(static_cast<unsigned char>(byte(rng)));
    } else if (k == 1) {  // one byte repeated
      raw.insert(raw.end(), n, static_cast<unsigned char>(byte(rng)));
    } else if (!raw.empty()) {  // a copy of earlier data
      std::uniform_int_distribution<size_t> from(0, raw.size() - 1);
      const size_t start = from(rng);
      for (int i = 0; i < n; ++i) raw.push_back(raw[start + i % (raw.size() - start)]);
    }
  }
  raw.resize(size);
  return raw;
}

Bytes compress(const Bytes& raw) {
  Bytes out(raw.size() + raw.size() / 16 + 64);
  const unsigned int n = lzf_compress(raw.data(), static_cast<unsigned int>(raw.size()), out.data(),
                                      static_cast<unsigned int>(out.size()));
  out.resize(n);
  return out;
}

TEST(LzfDecoder, AgreesWithLiblzfOnValidStreams) {
  std::mt19937 rng(20261122);
  for (int round = 0; round < 200; ++round) {
    const Bytes raw = compressible(rng, 1 + rng() % 5000);
    const Bytes in = compress(raw);
    ASSERT_FALSE(in.empty());
    const unsigned int size = static_cast<unsigned int>(raw.size());
    ASSERT_EQ(std::string(raw.begin(), raw.end()), expand(in, size));
    for (unsigned int out_len : {size - 1, size / 2 + 1, size + 7})
      ASSERT_EQ(reference(in, out_len), expand(in, out_len)) << "round " << round;
  }
}

TEST(LzfDecoder, AgreesWithLiblzfOnDamagedAndRandomStreams) {
  std::mt19937 rng(7);
  for (int round = 0; round < 3000; ++round) {
    Bytes in;
    if (round % 3 == 0) {  // random bytes
      in.resize(1 + rng() % 64);
      for (auto& b : in) b = static_cast<unsigned char>(rng());
    } else {  // a valid stream with flipped bytes or cut short
      const Bytes raw = compressible(rng, 1 + rng() % 2000);
      in = compress(raw);
      if (round % 3 == 1) {
        for (int flips = 1 + rng() % 3; flips > 0; --flips)
          in[rng() % in.size()] ^= static_cast<unsigned char>(1 + rng() % 255);
      } else {
        in.resize(1 + rng() % in.size());
      }
    }
    const unsigned int out_len = 1 + rng() % 4096;
    ASSERT_EQ(reference(in, out_len), expand(in, out_len)) << "round " << round;
  }
}

}  // namespace
}  // namespace uimf
}  // namespace io
}  // namespace lumo
