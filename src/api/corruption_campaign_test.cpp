// A corruption campaign: analyses made by the writer in both frame file
// forms, each damaged as a seed chooses, each read whole through the public
// header. Every call must give data or 0 with a text of its own, the size
// protocol must hold (a second call gives the same bytes, laid out as the
// header says), and nothing may crash or hang (the test has a time limit).
//
// KORA_CAMPAIGN_ANALYSES sets the number of damaged analyses, seeds 1 to N
// (default 200; make torture runs 5000).
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "koradata.h"
#include "testing/api_analysis.h"
#include "testing/temp_dir.h"
#include "tools/analysis_damage.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace {

namespace fs = boost::filesystem;
using kora_testing::lastError;
using kora_testing::ReadFunction;

constexpr uint32_t kFrames = 4;
constexpr uint32_t kScans = 60;
// Set by markFailure(); a later failure must replace it with its own text.
const char* const kMarker = "Specified analysis directory does not exist.";

uint64_t analysesToDamage() {
  const char* text = std::getenv("KORA_CAMPAIGN_ANALYSES");
  return text != nullptr && std::atoll(text) > 0 ? std::strtoull(text, nullptr, 10) : 200;
}

// Makes kMarker this thread's last error.
void markFailure() { EXPECT_EQ(0u, kora_open("/nonexistent/kora-campaign", 0)); }

// The text of the failure just seen: its own, not empty.
void expectOwnText(const std::string& what) {
  const std::string text = lastError();
  EXPECT_FALSE(text.empty()) << what;
  EXPECT_NE(kMarker, text) << what;
}

struct Tally {
  uint64_t opened = 0;
  uint64_t refusedAtOpen = 0;
  uint64_t framesRead = 0;
  uint64_t framesFailed = 0;
};

// Reads scans [0, kScans) of `frame` with `function`: asks for the size, then
// reads twice into buffers of exactly that size.
void readWhole(uint64_t handle, int64_t frame, ReadFunction function, Tally& tally) {
  const std::string what = "frame " + std::to_string(frame);
  markFailure();
  const uint32_t needed = function(handle, frame, 0, kScans, nullptr, 0);
  if (needed == 0) {
    expectOwnText(what);
    ++tally.framesFailed;
    return;
  }
  ++tally.framesRead;
  ASSERT_EQ(0u, needed % 4) << what;
  ASSERT_GE(needed, 4 * kScans) << what;
  // One word more than asked for, to see that nothing is written behind.
  std::vector<uint32_t> first(needed / 4 + 1, 0xA5A5A5A5);
  std::vector<uint32_t> second(needed / 4 + 1, 0x5A5A5A5A);
  ASSERT_EQ(needed, function(handle, frame, 0, kScans, first.data(), needed)) << what;
  ASSERT_EQ(needed, function(handle, frame, 0, kScans, second.data(), needed)) << what;
  EXPECT_EQ(0xA5A5A5A5u, first.back()) << what;
  first.pop_back();
  second.pop_back();
  EXPECT_EQ(first, second) << what;
  uint64_t words = kScans;
  for (uint32_t s = 0; s < kScans; ++s) words += 2 * static_cast<uint64_t>(first[s]);
  EXPECT_EQ(first.size(), words) << what;
}

void readAnalysis(const fs::path& dir, Tally& tally) {
  markFailure();
  const uint64_t handle = kora_open(dir.string().c_str(), 0);
  if (handle == 0) {
    expectOwnText("open");
    ++tally.refusedAtOpen;
    return;
  }
  ++tally.opened;
  for (int64_t frame = 1; frame <= kFrames; ++frame) {
    readWhole(handle, frame, kora_read_scans_v2, tally);
    readWhole(handle, frame, kora_read_scans_internal, tally);
  }
  kora_close(handle);
}

TEST(CorruptionCampaign, EveryDamagedAnalysisReadsOrFailsWithItsOwnText) {
  kora_testing::TempDir work;
  // Four sound analyses: both forms, schema 2 (duty cycle) and 3.
  std::vector<fs::path> bases;
  for (int base = 0; base < 4; ++base) {
    lumo::writer::GeneratorOptions options;
    options.seed = 100 + base;
    options.numFrames = kFrames;
    options.scansPerFrame = kScans;
    const int type = 1 + base % 2;
    const int schema = 2 + base / 2;
    bases.push_back(work / ("base-" + std::to_string(base)));
    lumo::writer::writeAnalysis(lumo::writer::generateAnalysis(options, schema, type),
                                bases.back());
  }

  const uint64_t analyses = analysesToDamage();
  const fs::path dir = work / "damaged";
  Tally tally;
  for (uint64_t seed = 1; seed <= analyses; ++seed) {
    const fs::path& base = bases[seed % bases.size()];
    fs::remove_all(dir);
    fs::create_directory(dir);
    for (const char* file : {"analysis.oxa", "analysis.oxa_bin"})
      fs::copy_file(base / file, dir / file);
    const std::string damage = lumo::writer::damageAnalysis(dir, seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + " on " + base.filename().string() + ": " +
                 damage);
    readAnalysis(dir, tally);
    if (HasFatalFailure()) return;
  }
  std::cout << "corruption campaign: " << analyses << " damaged analyses, " << tally.opened
            << " opened, " << tally.refusedAtOpen
            << " refused at open; whole-frame reads: " << tally.framesRead << " returned data, "
            << tally.framesFailed << " failed with a text\n";
  EXPECT_EQ(analyses, tally.opened + tally.refusedAtOpen);
}

}  // namespace
