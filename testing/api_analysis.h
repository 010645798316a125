// An analysis written by the synthetic writer into a fresh directory and
// opened through the public interface, with the reads a careful caller makes.
// For tests only; one thread at a time.
#ifndef KORA_TESTING_API_ANALYSIS_H_
#define KORA_TESTING_API_ANALYSIS_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "koradata.h"
#include "testing/last_error.h"
#include "testing/temp_dir.h"
#include "tools/analysis_spec.h"
#include "tools/analysis_writer.h"

namespace kora_testing {

using ReadFunction = uint32_t (*)(uint64_t, int64_t, uint32_t, uint32_t, void*, uint32_t);

// Splits a read's words into the peaks of `num_scans` scans; every word must
// be used.
inline std::vector<lumo::writer::Scan> parseScans(const std::vector<uint32_t>& words,
                                                  uint32_t num_scans) {
  std::vector<lumo::writer::Scan> scans(num_scans);
  size_t at = num_scans;
  for (uint32_t s = 0; s < num_scans; ++s) {
    const uint32_t n = words[s];
    scans[s].indices.assign(words.begin() + at, words.begin() + at + n);
    scans[s].intensities.assign(words.begin() + at + n, words.begin() + at + 2 * n);
    at += 2 * n;
  }
  EXPECT_EQ(words.size(), at);
  return scans;
}

// The name of a test parameter that is a compression type: "PerScanLzf" for
// 1, "PerFrameZstd" for 2.
inline std::string compressionTypeName(const ::testing::TestParamInfo<int>& info) {
  return info.param == 1 ? "PerScanLzf" : "PerFrameZstd";
}

// "Scan number out of range." in the words of compression type `type`.
inline std::string scanOutOfRange(int type, uint32_t scan) {
  return type == 1 ? "Scan number out of range."
                   : "Scan number [" + std::to_string(scan) + "] out of range.";
}

class ApiAnalysis {
 public:
  // Writes `spec` and opens it.
  explicit ApiAnalysis(const lumo::writer::AnalysisSpec& spec)
      : written(lumo::writer::writeAnalysis(spec, dir.path())) {
    reopen();
  }
  ~ApiAnalysis() { kora_close(handle); }
  ApiAnalysis(const ApiAnalysis&) = delete;
  ApiAnalysis& operator=(const ApiAnalysis&) = delete;

  // Closes the handle and opens the directory again.
  void reopen() {
    kora_close(handle);
    handle = kora_open(dir.str().c_str(), 0);
    EXPECT_NE(0u, handle) << lastError();
  }

  // Reads scans [begin, end): asks for the size, then reads into a buffer of
  // exactly that size.
  std::vector<lumo::writer::Scan> read(int64_t frame, uint32_t begin, uint32_t end,
                                       ReadFunction function = kora_read_scans_internal) const {
    const uint32_t needed = function(handle, frame, begin, end, nullptr, 0);
    EXPECT_NE(0u, needed) << lastError();
    if (needed == 0) return {};
    std::vector<uint32_t> words(needed / 4);
    EXPECT_EQ(needed, function(handle, frame, begin, end, words.data(), needed)) << lastError();
    return parseScans(words, end - begin);
  }

  // The text of a read that must fail and leave the buffer untouched.
  std::string error(int64_t frame, uint32_t begin, uint32_t end,
                    ReadFunction function = kora_read_scans_internal) const {
    uint32_t sentinel = 0xABABABAB;
    const uint32_t result = function(handle, frame, begin, end, &sentinel, sizeof sentinel);
    EXPECT_EQ(0xABABABABu, sentinel);
    if (result != 0) return "<succeeded>";
    return lastError();
  }

  TempDir dir;
  lumo::writer::WrittenAnalysis written;
  uint64_t handle = 0;
};

}  // namespace kora_testing

#endif  // KORA_TESTING_API_ANALYSIS_H_
