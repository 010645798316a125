#include "tools/analysis_damage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "testing/temp_dir.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace lumo {
namespace writer {
namespace {

std::vector<char> contents(const boost::filesystem::path& file) {
  std::ifstream in(file.string(), std::ios::binary);
  return std::vector<char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

AnalysisSpec small(int type) {
  GeneratorOptions options;
  options.scansPerFrame = 20;
  return generateAnalysis(options, 3, type);
}

TEST(AnalysisDamage, TheSameSeedDamagesTheSameWay) {
  for (int type : {1, 2}) {
    kora_testing::TempDir a;
    kora_testing::TempDir b;
    writeAnalysis(small(type), a.path());
    writeAnalysis(small(type), b.path());
    const std::string done = damageAnalysis(a.path(), 11);
    EXPECT_EQ(done, damageAnalysis(b.path(), 11));
    EXPECT_EQ(contents(a / "analysis.oxa_bin"), contents(b / "analysis.oxa_bin")) << done;
  }
}

TEST(AnalysisDamage, SeedsReachEveryKind) {
  const AnalysisSpec spec = small(2);
  const char* const kinds[] = {"flip ",      "truncate to ", "overwrite ",
                               "size word ", "frames ",      "metadata "};
  std::set<std::string> seen;
  for (uint64_t seed = 1; seed <= 40; ++seed) {
    kora_testing::TempDir dir;
    writeAnalysis(spec, dir.path());
    const std::string done = damageAnalysis(dir.path(), seed);
    for (const char* kind : kinds) {
      if (done.find(kind) != std::string::npos) seen.insert(kind);
    }
  }
  EXPECT_EQ(6u, seen.size());
}

}  // namespace
}  // namespace writer
}  // namespace lumo
