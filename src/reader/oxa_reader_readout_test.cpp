// OxaReader::readScans, the read-out that decodes straight into its final
// layout, against two references written here: a plain decoder of the frame
// file's bytes (zstd and liblzf, no code of the reader) for sound analyses,
// and the sink path of decodeScanRange collecting the same layout for
// damaged ones, where the failure texts must agree as well.
#include <gtest/gtest.h>
#include <lzf.h>
#include <zstd.h>

#include <boost/filesystem.hpp>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "reader/oxa_reader.h"
#include "reader/oxa_reader_decoding.h"
#include "testing/temp_dir.h"
#include "testing/thrown_text.h"
#include "tools/analysis_damage.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace lumo {
namespace io {
namespace kora {
namespace {

namespace fs = boost::filesystem;
using writer::AnalysisSpec;
using writer::Bytes;
using Words = std::vector<uint32_t>;

uint32_t le32(const Bytes& b, uint64_t at) {
  return static_cast<uint32_t>(b[at]) | static_cast<uint32_t>(b[at + 1]) << 8 |
         static_cast<uint32_t>(b[at + 2]) << 16 | static_cast<uint32_t>(b[at + 3]) << 24;
}

// The peaks of one scan, as stored.
struct PlainScan {
  Words indices;
  Words intensities;
};

// Form 2: the whole frame at `at` expanded with zstd, the scans cut from the
// byte planes by the length table.
std::vector<PlainScan> plainZstdFrame(const Bytes& file, uint64_t at) {
  const uint32_t frame_size = le32(file, at);
  const uint32_t num_scans = le32(file, at + 4);
  std::vector<PlainScan> scans(num_scans);
  if (frame_size == 8) return scans;
  const unsigned char* payload = file.data() + at + 8;
  Bytes planes(ZSTD_getFrameContentSize(payload, frame_size - 8));
  EXPECT_EQ(planes.size(), ZSTD_decompress(planes.data(), planes.size(), payload, frame_size - 8));
  const size_t w = planes.size() / 4;
  auto word = [&](size_t j) {
    return static_cast<uint32_t>(planes[j]) | static_cast<uint32_t>(planes[w + j]) << 8 |
           static_cast<uint32_t>(planes[2 * w + j]) << 16 |
           static_cast<uint32_t>(planes[3 * w + j]) << 24;
  };
  size_t start = 0;
  for (uint32_t s = 0; s < num_scans; ++s) {
    start += word(s);
    const size_t stop = s + 1 < num_scans ? start + word(s + 1) : w;
    uint32_t running = 0;
    for (size_t j = start; j < stop; j += 2) {
      running += word(j);
      scans[s].indices.push_back(running - 1);
      scans[s].intensities.push_back(word(j + 1));
    }
  }
  return scans;
}

// Form 1: each scan expanded with liblzf and walked; indices at or beyond
// `num_bins` are left out.
std::vector<PlainScan> plainLzfFrame(const Bytes& file, uint64_t at, uint32_t num_bins) {
  const uint32_t num_scans = le32(file, at + 4);
  std::vector<PlainScan> scans(num_scans);
  Bytes expanded(4194304);
  for (uint32_t s = 0; s < num_scans; ++s) {
    const uint32_t begin = le32(file, at + 8 + 4 * s);
    const uint32_t end = le32(file, at + 12 + 4 * s);
    if (begin == end) continue;
    const unsigned int n = lzf_decompress(file.data() + at + begin, end - begin, expanded.data(),
                                          static_cast<unsigned int>(expanded.size()));
    uint32_t index = 0;
    for (unsigned int k = 0; k + 4 <= n; k += 4) {
      const int32_t value = static_cast<int32_t>(le32(expanded, k));
      if (value < 0) {
        index -= static_cast<uint32_t>(value);
        continue;
      }
      if (index < num_bins) {
        scans[s].indices.push_back(index);
        scans[s].intensities.push_back(static_cast<uint32_t>(value));
      }
      ++index;
    }
  }
  return scans;
}

// The read-out of scans [begin, end): counts, then indices and intensities
// per scan, intensities as v * factor + 0.5 truncated (no saturation needed
// for the values used here).
Words layout(const std::vector<PlainScan>& scans, uint32_t begin, uint32_t end, double factor) {
  Words out;
  for (uint32_t s = begin; s < end; ++s)
    out.push_back(static_cast<uint32_t>(scans[s].indices.size()));
  for (uint32_t s = begin; s < end; ++s) {
    out.insert(out.end(), scans[s].indices.begin(), scans[s].indices.end());
    for (uint32_t v : scans[s].intensities)
      out.push_back(factor == 1.0 ? v : static_cast<uint32_t>(v * factor + 0.5));
  }
  return out;
}

// What a read gives: the words, or the failure text.
struct Outcome {
  Words words;
  std::string error;
  bool operator==(const Outcome& o) const { return words == o.words && error == o.error; }
};

std::ostream& operator<<(std::ostream& os, const Outcome& o) {
  return os << (o.error.empty() ? std::to_string(o.words.size()) + " words" : o.error);
}

constexpr uint32_t kSentinel = 0xCDCDCDCD;

// readScans into a word buffer with room for `room` words beyond the result;
// asserts that a failure leaves the buffer untouched.
Outcome readOut(OxaReader& reader, int64_t frame, uint32_t begin, uint32_t end,
                NormalizationType normalization) {
  Words buffer(1 << 16, kSentinel);
  Outcome outcome;
  try {
    uint32_t bytes = reader.readScans(frame, begin, end, normalization, buffer.data(),
                                      static_cast<uint32_t>(4 * buffer.size()));
    if (bytes > 4 * buffer.size()) {
      buffer.assign(bytes / 4, kSentinel);
      bytes = reader.readScans(frame, begin, end, normalization, buffer.data(), bytes);
    }
    outcome.words.assign(buffer.begin(), buffer.begin() + bytes / 4);
  } catch (const std::exception& e) {
    outcome.error = e.what();
    EXPECT_EQ(Words(buffer.size(), kSentinel), buffer) << outcome.error;
  }
  return outcome;
}

// The straightforward road: peaks collected per scan through decodeScanRange,
// appended behind the counts.
Outcome sinkReadOut(OxaReader& reader, int64_t frame, uint32_t begin, uint32_t end,
                    NormalizationType normalization) {
  Outcome outcome;
  try {
    Words counts, peaks, indices, intensities;
    reader.decodeScanRange(
        frame, begin, end,
        [&](uint32_t index, uint32_t intensity) {
          indices.push_back(index);
          intensities.push_back(intensity);
        },
        [&](unsigned int) {
          counts.push_back(static_cast<uint32_t>(indices.size()));
          peaks.insert(peaks.end(), indices.begin(), indices.end());
          peaks.insert(peaks.end(), intensities.begin(), intensities.end());
          indices.clear();
          intensities.clear();
        },
        normalization);
    if (counts.size() + peaks.size() > 0x3FFFFFFF)
      throw std::runtime_error("Maximum decompressed frame size exceeded.");
    outcome.words = counts;
    outcome.words.insert(outcome.words.end(), peaks.begin(), peaks.end());
  } catch (const std::exception& e) {
    outcome.error = e.what();
  }
  return outcome;
}

Bytes fileBytes(const fs::path& path) {
  std::ifstream in(path.string(), std::ios::binary);
  return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

writer::GeneratorOptions options(uint64_t seed) {
  writer::GeneratorOptions o;
  o.seed = seed;
  o.numFrames = 4;
  o.scansPerFrame = 60;
  o.meanPeaksPerScan = 150;  // up to 300 peaks: scans beyond a decoder block
  o.emptyFrames = {2};
  o.maxIntensity = 1000000;
  return o;
}

// Parameter: the compression type.
class ReadOut : public ::testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(BothForms, ReadOut, ::testing::Values(1, 2),
                         [](const ::testing::TestParamInfo<int>& info) {
                           return info.param == 1 ? std::string("PerScanLzf")
                                                  : std::string("PerFrameZstd");
                         });

TEST_P(ReadOut, SoundAnalysesMatchAPlainDecodingOfTheFile) {
  const int type = GetParam();
  // AccumulationTime 100 and 0 leave the counts, 40 and 250 scale them.
  const double times[] = {100.0, 40.0, 0.0, 250.0};
  for (uint64_t seed : {3u, 17u, 2026u}) {
    AnalysisSpec spec = writer::generateAnalysis(options(seed), 3, type);
    for (size_t f = 0; f < spec.frames.size(); ++f) spec.frames[f].accumulationTime = times[f];
    // Bins below the generator's: the per-scan form drops the peaks beyond.
    const uint32_t bins = 300000 + static_cast<uint32_t>(seed);
    spec.metadata.set("DigitizerNumSamples", std::to_string(bins));
    kora_testing::TempDir dir;
    const writer::WrittenAnalysis written = writer::writeAnalysis(spec, dir.path());
    const Bytes file = fileBytes(dir / "analysis.oxa_bin");
    OxaReader reader(dir.path(), boost::none);
    for (size_t f = 0; f < spec.frames.size(); ++f) {
      const std::vector<PlainScan> scans = type == 2
                                               ? plainZstdFrame(file, written.blockOffsets[f])
                                               : plainLzfFrame(file, written.blockOffsets[f], bins);
      ASSERT_EQ(60u, scans.size());
      const int64_t id = spec.frames[f].id;
      const double factor = times[f] == 0.0 ? 1.0 : 100.0 / times[f];
      for (auto range : {std::make_pair(0u, 60u), std::make_pair(7u, 8u), std::make_pair(1u, 59u)}) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " frame " + std::to_string(id) + " scans " +
                     std::to_string(range.first) + ".." + std::to_string(range.second));
        EXPECT_EQ((Outcome{layout(scans, range.first, range.second, 1.0), ""}),
                  readOut(reader, id, range.first, range.second, NormalizationType::None));
        EXPECT_EQ((Outcome{layout(scans, range.first, range.second, factor), ""}),
                  readOut(reader, id, range.first, range.second, NormalizationType::Default));
      }
    }
  }
}

TEST_P(ReadOut, BufferTooSmallOrNotWordAligned) {
  const int type = GetParam();
  const AnalysisSpec spec = writer::generateAnalysis(options(5), 3, type);
  kora_testing::TempDir dir;
  writer::writeAnalysis(spec, dir.path());
  OxaReader reader(dir.path(), boost::none);
  const Words expected = readOut(reader, 1, 0, 60, NormalizationType::None).words;
  const uint32_t bytes = static_cast<uint32_t>(4 * expected.size());
  ASSERT_LT(1000u, bytes);

  EXPECT_EQ(bytes, reader.readScans(1, 0, 60, NormalizationType::None, nullptr, 0));
  // One byte short: nothing is written. One byte past a word boundary: the
  // read-out lands there byte for byte.
  std::vector<unsigned char> raw(bytes + 1, 0xCD);
  EXPECT_EQ(bytes, reader.readScans(1, 0, 60, NormalizationType::None, raw.data() + 1, bytes - 1));
  EXPECT_EQ(std::vector<unsigned char>(bytes + 1, 0xCD), raw);
  EXPECT_EQ(bytes, reader.readScans(1, 0, 60, NormalizationType::None, raw.data() + 1, bytes));
  EXPECT_EQ(0xCD, raw[0]);
  EXPECT_EQ(0, std::memcmp(expected.data(), raw.data() + 1, bytes));
}

TEST_P(ReadOut, DamagedAnalysesFailAsTheSinkPathDoes) {
  const int type = GetParam();
  int opened = 0;
  int failed_reads = 0;
  for (uint64_t seed = 1; seed <= 24; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    kora_testing::TempDir dir;
    writer::writeAnalysis(writer::generateAnalysis(options(seed), 3, type), dir.path());
    const std::string damage = writer::damageAnalysis(dir.path(), seed * 7919 + type);
    SCOPED_TRACE(damage);
    if (kora_testing::thrownText([&] { OxaReader(dir.path(), boost::none); }) !=
        "<nothing thrown>")
      continue;
    ++opened;
    // Two readers take the same calls, so that cache and stream states
    // evolve alike.
    OxaReader direct(dir.path(), boost::none);
    OxaReader reference(dir.path(), boost::none);
    for (int64_t id : {1, 2, 3, 4, 5}) {
      for (auto range : {std::make_pair(0u, 60u), std::make_pair(30u, 31u)}) {
        for (NormalizationType n : {NormalizationType::None, NormalizationType::Default}) {
          const Outcome expected = sinkReadOut(reference, id, range.first, range.second, n);
          EXPECT_EQ(expected, readOut(direct, id, range.first, range.second, n))
              << "frame " << id << " scans " << range.first << ".." << range.second;
          failed_reads += !expected.error.empty();
        }
      }
    }
  }
  // The damage must have reached the read path, not only the opening.
  EXPECT_LT(10, opened);
  EXPECT_LT(20, failed_reads);
}

}  // namespace
}  // namespace kora
}  // namespace io
}  // namespace lumo
