// Cost of the conversion exports on a writer-made analysis (the sample
// calibration: a quadratic time-of-flight law adapted to each frame's
// temperatures, and a voltage ramp).
//
// (a) One call with one value, kora_index_to_mz and
//     kora_scannum_to_oneoverk0, against one kora_read_scans_v2 of a single
//     empty scan: the cheapest call that also looks up a frame.
// (b) kora_index_to_mz of 10 million indices against the model's own batch
//     DIndexToMass on a std::vector (the same quadratic law, built here from
//     the same constants), on 1 and 2 threads.
//
// Beside each, the floor that the exports' design sets, measured on the same
// analysis: for (a) one read transaction of the two queries that find a
// frame's mobility calibration, through the sqlite3 C API with statements
// prepared once; for (b) the model's batch between a copy of the values into a
// std::vector and a copy of the results out (the vector interface of the
// model's batch), on 1 thread.
//
// Repetitions run in random interleaved order and the minimum counts: CPU
// time for (a), which runs on one thread, wall time for (b). The ratio tables
// are printed at the end.
#include <benchmark/benchmark.h>
#include <omp.h>
#include <sqlite3.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <boost/make_shared.hpp>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "koradata.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace {

namespace fs = boost::filesystem;

constexpr uint32_t kScans = 918;
constexpr int64_t kPeakFrame = 1;   // realistic peaks
constexpr int64_t kEmptyFrame = 2;  // only empty scans
constexpr size_t kBatch = 10000000;

struct Analysis {
  fs::path dir;
  uint64_t handle = 0;
  Analysis() {
    lumo::writer::GeneratorOptions options = lumo::writer::GeneratorOptions::realistic(7, 2);
    options.emptyFrames = {1};
    lumo::writer::AnalysisSpec spec = lumo::writer::generateAnalysis(options);
    lumo::writer::addSampleCalibration(spec, kScans);
    dir = fs::temp_directory_path() / fs::unique_path("koradata-conv-bench-%%%%-%%%%");
    lumo::writer::writeAnalysis(spec, dir);
    handle = kora_open(dir.string().c_str(), 0);
    if (handle == 0) throw std::runtime_error("kora_open failed");
  }
  ~Analysis() {
    kora_close(handle);
    boost::system::error_code ec;
    fs::remove_all(dir, ec);
  }
};

Analysis& analysis() {
  static Analysis a;
  return a;
}

std::vector<double>& indices() {
  static std::vector<double> v = [] {
    std::vector<double> x(kBatch);
    for (size_t i = 0; i < kBatch; ++i) x[i] = static_cast<double>(i % 400000) + 0.25;
    return x;
  }();
  return v;
}

void fail(benchmark::State& state, const char* what) {
  char text[512];
  kora_get_last_error_string(text, sizeof text);
  state.SkipWithError((std::string(what) + ": " + text).c_str());
}

// (a)

void ReadEmptyScan(benchmark::State& state) {
  const uint64_t h = analysis().handle;
  uint32_t buf[4];
  uint32_t scan = 0;
  for (auto _ : state) {
    if (kora_read_scans_v2(h, kEmptyFrame, scan, scan + 1, buf, sizeof buf) != 4)
      return fail(state, "kora_read_scans_v2");
    scan = (scan + 1) % kScans;
  }
}

void IndexToMzOne(benchmark::State& state) {
  const uint64_t h = analysis().handle;
  double in = 123456.5, out = 0.0;
  for (auto _ : state) {
    if (kora_index_to_mz(h, kPeakFrame, &in, &out, 1) != 1) return fail(state, "kora_index_to_mz");
    benchmark::DoNotOptimize(out);
  }
}

void ScanToOneOverK0One(benchmark::State& state) {
  const uint64_t h = analysis().handle;
  double in = 400.5, out = 0.0;
  for (auto _ : state) {
    if (kora_scannum_to_oneoverk0(h, kPeakFrame, &in, &out, 1) != 1)
      return fail(state, "kora_scannum_to_oneoverk0");
    benchmark::DoNotOptimize(out);
  }
}

// The floor of (a): the connection's lock cycle and two indexed lookups.
void SqliteMobilityQueries(benchmark::State& state) {
  sqlite3* db = nullptr;
  if (sqlite3_open((analysis().dir / "analysis.oxa").string().c_str(), &db) != SQLITE_OK) {
    sqlite3_close(db);
    return state.SkipWithError("sqlite3_open failed");
  }
  const char* const texts[] = {"BEGIN", "SELECT KoraCalibration FROM Frames WHERE Id=?",
                               "SELECT * FROM KoraCalibration WHERE Id=?", "COMMIT"};
  sqlite3_stmt* statements[4] = {};
  for (int i = 0; i < 4; ++i)
    if (sqlite3_prepare_v2(db, texts[i], -1, &statements[i], nullptr) != SQLITE_OK)
      state.SkipWithError(sqlite3_errmsg(db));
  int64_t calibration = 0;
  for (auto _ : state) {
    if (state.error_occurred()) break;
    for (int i = 0; i < 4; ++i) {
      sqlite3_stmt* st = statements[i];
      if (i == 1) sqlite3_bind_int64(st, 1, kPeakFrame);
      if (i == 2) sqlite3_bind_int64(st, 1, calibration);
      while (sqlite3_step(st) == SQLITE_ROW)
        if (i == 1) calibration = sqlite3_column_int64(st, 0);
      sqlite3_reset(st);
    }
  }
  for (sqlite3_stmt* st : statements) sqlite3_finalize(st);
  sqlite3_close(db);
}

// (b)

void IndexToMzBatch(benchmark::State& state) {
  kora_set_num_threads(static_cast<uint32_t>(state.range(0)));
  const uint64_t h = analysis().handle;
  const std::vector<double>& in = indices();
  std::vector<double> out(in.size());
  // One call before the timing, as the model's result buffer is paged in
  // before its timing: the first batch of this length grows the handle's
  // scratch, and a first iteration that long would also make the benchmark
  // settle on one iteration per repetition.
  if (kora_index_to_mz(h, kPeakFrame, in.data(), out.data(), static_cast<uint32_t>(in.size())) != 1)
    return fail(state, "kora_index_to_mz");
  for (auto _ : state) {
    if (kora_index_to_mz(h, kPeakFrame, in.data(), out.data(), static_cast<uint32_t>(in.size())) !=
        1)
      return fail(state, "kora_index_to_mz");
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * in.size()));
}

// The sample's law as the model itself, without temperature adaptation: the
// same policies and the same batch loop.
boost::shared_ptr<lumo::calibration::Transformation::CalibrationTransformatorTOFQuadratic>
sampleModel() {
  using namespace lumo::calibration;
  const auto head = lumo::writer::sampleMzCalibrationHead();
  const auto& c = lumo::writer::kSampleTofCoefficients;
  return boost::make_shared<Transformation::CalibrationTransformatorTOFQuadratic>(
      boost::make_shared<Constants::CalibrationConstantsFunctionalTOF1>(c[0], c[1], c[2]),
      boost::make_shared<Constants::CalibrationConstantsPhysicalTOF>(head.timebase, head.delay));
}

void ModelBatch(benchmark::State& state) {
  omp_set_num_threads(static_cast<int>(state.range(0)));
  const auto model = sampleModel();
  const std::vector<double>& in = indices();
  // Sized and paged in before the timing, as the export's result buffer: a
  // repetition of few iterations would otherwise time the first touch of
  // 80 MB rather than the batch.
  std::vector<double> out(in.size());
  for (auto _ : state) {
    model->DIndexToMass(in, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * in.size()));
}

// The floor of (b) on 1 thread: the model's batch between two copies.
void ModelBatchCopied(benchmark::State& state) {
  omp_set_num_threads(1);
  const auto model = sampleModel();
  const std::vector<double>& in = indices();
  std::vector<double> values(in.size()), results(in.size()), out(in.size());
  for (auto _ : state) {
    std::memcpy(values.data(), in.data(), in.size() * sizeof(double));
    model->DIndexToMass(values, results);
    std::memcpy(out.data(), results.data(), in.size() * sizeof(double));
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * in.size()));
}

double minimum(const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); }

BENCHMARK(ReadEmptyScan)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(IndexToMzOne)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(ScanToOneOverK0One)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(SqliteMobilityQueries)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(IndexToMzBatch)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(ModelBatch)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);
BENCHMARK(ModelBatchCopied)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(7)
    ->ComputeStatistics("min", minimum);

// Console output as usual; the minimum time per iteration of each benchmark
// kept for the tables, in the benchmark's unit: CPU time for the
// single-threaded calls of (a), wall time for the batches of (b).
class TableReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "min" && !run.error_occurred)
        times[run.run_name.function_name +
              (run.run_name.args.empty() ? "" : "/" + run.run_name.args)] =
            run.run_name.time_type.empty() ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  double at(const std::string& name) const {
    const auto it = times.find(name);
    return it == times.end() ? 0.0 : it->second;
  }
  std::map<std::string, double> times;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> args(argv, argv + argc);
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string aggregates = "--benchmark_report_aggregates_only=true";
  args.insert(args.begin() + 1, &aggregates[0]);
  args.insert(args.begin() + 1, &interleave[0]);
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  TableReporter r;
  benchmark::RunSpecifiedBenchmarks(&r);

  const double empty = r.at("ReadEmptyScan");
  std::printf("\n%-28s %10s %10s %8s\n", "one value per call", "us/call", "target", "ratio");
  std::printf("%-28s %10.2f %10s %8s\n", "kora_read_scans_v2 (empty)", empty, "", "1.000");
  const double mz = r.at("IndexToMzOne"), k0 = r.at("ScanToOneOverK0One");
  std::printf("%-28s %10.2f %10.0f %8.3f\n", "kora_index_to_mz", mz, 20.0, mz / empty);
  std::printf("%-28s %10.2f %10.0f %8.3f\n", "kora_scannum_to_oneoverk0", k0, 10.0, k0 / empty);
  const double floor = r.at("SqliteMobilityQueries");
  std::printf("%-28s %10.2f %10s %8.3f\n", "floor: its queries, bare", floor, "", floor / empty);
  std::printf("kora_scannum_to_oneoverk0 / its bare queries: %.2f\n", floor > 0 ? k0 / floor : 0.0);

  std::printf("\n%-8s %14s %14s %8s\n", "threads", "export ms", "model ms", "ratio");
  for (const char* t : {"/1", "/2"}) {
    const double e = r.at(std::string("IndexToMzBatch") + t);
    const double m = r.at(std::string("ModelBatch") + t);
    std::printf("%-8s %14.2f %14.2f %8.3f\n", t + 1, e, m, m > 0 ? e / m : 0.0);
  }
  const double copied = r.at("ModelBatchCopied"), m1 = r.at("ModelBatch/1");
  std::printf("%-8s %14s %14.2f %8.3f  (floor: the model between two copies)\n", "1", "", copied,
              m1 > 0 ? copied / m1 : 0.0);
  const double e1 = r.at("IndexToMzBatch/1"), e2 = r.at("IndexToMzBatch/2");
  std::printf("export speed-up on 2 threads: %.2fx (target at least 1.7x)\n",
              e2 > 0 ? e1 / e2 : 0.0);
  return 0;
}
