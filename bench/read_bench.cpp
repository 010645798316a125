// Speed of the scan read-out against pure decompression of the same data.
//
// A realistic analysis (by default 300 frames of 918 scans, about 100 000
// peaks per frame over 400 000 bins) is written once per compression type.
// ReadFrames reads every frame whole through kora_read_scans_v2 the way a
// careful caller does: one buffer, reused, grown and the call repeated only
// when a result exceeds it. Baseline decompresses the same stored bytes:
// ZSTD_decompressDCtx over each frame payload (type 2), lzf_decompress over
// each scan (type 1). Each runs in repetitions, interleaved at random, and
// the minimum CPU time counts. At the end the ratio read time / baseline time
// is printed per type.
//
// Flags: --frames=N (default 300); --accumulation_time=T to give every frame
// that AccumulationTime (the writer's is 100, a normalisation factor of 1);
// and the usual --benchmark_* flags.
#include <benchmark/benchmark.h>
#include <lzf.h>
#include <zstd.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "koradata.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace {

namespace fs = boost::filesystem;
using lumo::writer::Bytes;

constexpr uint32_t kScans = 918;
uint32_t g_frames = 300;
// AccumulationTime of every frame; 0 keeps the writer's (100, which makes
// the default normalisation a factor of 1).
double g_accumulation_time = 0.0;

uint32_t loadLe32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// One written analysis and the stored bytes a pure decompression works on.
struct Dataset {
  fs::path dir;
  uint64_t handle = 0;
  uint64_t peaks = 0;        // over all frames
  uint64_t outputBytes = 0;  // result bytes of reading every frame whole
  // Type 2: one Zstandard payload per frame. Type 1: one LZF stream per
  // non-empty scan.
  std::vector<Bytes> stored;
  size_t largestExpansion = 0;
};

std::map<int, Dataset> g_data;

Dataset& dataset(int type) {
  Dataset& d = g_data[type];
  if (d.handle != 0) return d;
  lumo::writer::AnalysisSpec spec = lumo::writer::generateAnalysis(
      lumo::writer::GeneratorOptions::realistic(2026, g_frames), 3, type);
  if (g_accumulation_time != 0.0)
    for (auto& row : spec.frames) row.accumulationTime = g_accumulation_time;
  d.dir = fs::temp_directory_path() / fs::unique_path("koradata-bench-%%%%-%%%%");
  const lumo::writer::WrittenAnalysis written = lumo::writer::writeAnalysis(spec, d.dir);
  for (const auto& block : spec.blocks)
    for (const auto& scan : block.scans) d.peaks += scan.size();
  d.outputBytes = 4 * (uint64_t{kScans} * spec.blocks.size() + 2 * d.peaks);
  spec = lumo::writer::AnalysisSpec();  // the peaks are not needed any more

  std::ifstream in((d.dir / "analysis.oxa_bin").string(), std::ios::binary);
  const Bytes file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  for (size_t b = 0; b < written.blockOffsets.size(); ++b) {
    const unsigned char* block = file.data() + written.blockOffsets[b];
    if (type == 2) {
      const uint32_t frame_size = loadLe32(block);
      d.stored.emplace_back(block + 8, block + frame_size);
      d.largestExpansion =
          std::max<size_t>(d.largestExpansion, ZSTD_getFrameContentSize(block + 8, frame_size - 8));
    } else {
      const uint32_t n = loadLe32(block + 4);
      for (uint32_t s = 0; s < n; ++s) {
        const uint32_t begin = loadLe32(block + 8 + 4 * s);
        const uint32_t end = loadLe32(block + 12 + 4 * s);
        if (end > begin) d.stored.emplace_back(block + begin, block + end);
      }
      d.largestExpansion = 4194304;
    }
  }
  d.handle = kora_open(d.dir.string().c_str(), 0);
  if (d.handle == 0) throw std::runtime_error("kora_open failed");
  return d;
}

void ReadFrames(benchmark::State& state) {
  const int type = static_cast<int>(state.range(0));
  Dataset& d = dataset(type);
  std::vector<uint32_t> buffer(1024);
  uint64_t checksum = 0;
  for (auto _ : state) {
    for (uint32_t frame = 1; frame <= g_frames; ++frame) {
      uint32_t bytes = kora_read_scans_v2(d.handle, frame, 0, kScans, buffer.data(),
                                          static_cast<uint32_t>(4 * buffer.size()));
      if (bytes > 4 * buffer.size()) {
        buffer.resize(bytes / 4);
        bytes = kora_read_scans_v2(d.handle, frame, 0, kScans, buffer.data(), bytes);
      }
      if (bytes == 0) {
        state.SkipWithError("kora_read_scans_v2 failed");
        return;
      }
      checksum += buffer[bytes / 4 - 1];
    }
  }
  benchmark::DoNotOptimize(checksum);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * d.peaks));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * d.outputBytes));
}

void Baseline(benchmark::State& state) {
  const int type = static_cast<int>(state.range(0));
  Dataset& d = dataset(type);
  std::vector<unsigned char> out(d.largestExpansion);
  ZSTD_DCtx* dctx = ZSTD_createDCtx();
  uint64_t checksum = 0;
  for (auto _ : state) {
    for (const Bytes& stored : d.stored) {
      size_t n;
      if (type == 2) {
        n = ZSTD_decompressDCtx(dctx, out.data(), out.size(), stored.data(), stored.size());
      } else {
        n = lzf_decompress(stored.data(), static_cast<unsigned int>(stored.size()), out.data(),
                           static_cast<unsigned int>(out.size()));
      }
      checksum += n + out[0];
    }
  }
  ZSTD_freeDCtx(dctx);
  benchmark::DoNotOptimize(checksum);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * d.peaks));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * d.outputBytes));
}

double minimum(const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); }

// Repetitions in random interleaved order, judged by their minimum: the
// machine may be shared, and interference only ever adds time.
BENCHMARK(ReadFrames)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.2)
    ->Repetitions(15)
    ->ComputeStatistics("min", minimum);
BENCHMARK(Baseline)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.2)
    ->Repetitions(15)
    ->ComputeStatistics("min", minimum);

// Console output as usual, and the time per iteration of each run kept for
// the ratio table.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "min" && !run.error_occurred)
        seconds[run.run_name.function_name + "/" + run.run_name.args] = run.GetAdjustedCPUTime();
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> seconds;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--frames=", 9) == 0) {
      g_frames = static_cast<uint32_t>(std::strtoul(argv[i] + 9, nullptr, 10));
    } else if (std::strncmp(argv[i], "--accumulation_time=", 20) == 0) {
      g_accumulation_time = std::strtod(argv[i] + 20, nullptr);
    } else {
      args.push_back(argv[i]);
    }
  }
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string aggregates = "--benchmark_report_aggregates_only=true";
  args.insert(args.begin() + 1, &aggregates[0]);
  args.insert(args.begin() + 1, &interleave[0]);
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::printf("\n%-6s %14s %10s %14s %14s %7s\n", "type", "peaks/s", "MB/s", "read ms/pass",
              "baseline ms", "ratio");
  for (auto& entry : g_data) {
    const int type = entry.first;
    const Dataset& d = entry.second;
    const std::string arg = "/" + std::to_string(type);
    const auto read = reporter.seconds.find("ReadFrames" + arg);
    const auto base = reporter.seconds.find("Baseline" + arg);
    if (read == reporter.seconds.end() || base == reporter.seconds.end()) continue;
    // Times are in the unit of the benchmark, milliseconds.
    const double read_s = read->second / 1e3;
    std::printf("%-6d %14.4g %10.1f %14.2f %14.2f %7.3f\n", type, d.peaks / read_s,
                d.outputBytes / read_s / 1e6, read->second, base->second,
                read->second / base->second);
  }
  for (auto& entry : g_data) {
    kora_close(entry.second.handle);
    boost::system::error_code ec;
    fs::remove_all(entry.second.dir, ec);
  }
  return 0;
}
