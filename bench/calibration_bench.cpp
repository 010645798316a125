// Speed of the hot mass conversions against a plain loop.
//
// DIndexToMass and MassToDIndex run over batches of 10 million values for
// the TOF quadratic and the TOF2 cubic model, through the library's batch
// functions on 1 and on 2 OpenMP threads, and as a plain serial loop of the
// same scalar formula written out here. At the end a table gives values/s
// and the ratios library(1 thread) / plain loop and
// library(1 thread) / library(2 threads), all measured in this run.
// DIndexToMass of a temperature-compensated TOF quadratic model (a frame two
// sensors away from the reference temperatures) is set against the plain
// model, on 1 and 2 threads: time compensated / time plain.
// DIndexToMass of the TOF quadratic model under a ZRK correction is set
// against the plain model, on 1 and 2 threads: time ZRK / time plain model
// on 1 thread, and ZRK on 1 thread / ZRK on 2 threads.
//
// Flags: the usual --benchmark_* flags.
#include <benchmark/benchmark.h>
#include <omp.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/temperature/calibration_temperature_compensator.h"
#include "calibration_core/temperature/temperature_compensation.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "calibration_core/zrk/calibration_polynomial_zrk.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"

namespace {

using namespace lumo::calibration;
using namespace lumo::calibration::Transformation;

constexpr size_t kValues = 10 * 1000 * 1000;

// The digitizer and constants of both models.
constexpr double kTimeBase = 0.2;
constexpr double kDelay = 20000.0;
constexpr double kC0 = 20000.0;
constexpr double kC1 = 3000.0;  // slope term 1e12 / c1^2, slope 333.3
constexpr double kC2 = 0.01;
constexpr double kC3 = -1e-5;
constexpr double kDm = 0.3;

const std::vector<double>& dindexes() {
  static const std::vector<double> v = [] {
    std::vector<double> r(kValues);
    for (size_t i = 0; i < kValues; ++i) r[i] = 1000.0 + (i * 7919 % 390000) + 0.25;
    return r;
  }();
  return v;
}

const std::vector<double>& masses() {
  static const std::vector<double> v = [] {
    std::vector<double> r(kValues);
    for (size_t i = 0; i < kValues; ++i) r[i] = 50.0 + (i * 7919 % 2950000) * 1e-3;
    return r;
  }();
  return v;
}

inline double signedSqrt(double x) { return x < 0 ? -std::sqrt(-x) : std::sqrt(x); }
inline double signedSquare(double x) { return x < 0 ? -(x * x) : x * x; }

ICalibrationConstantsPhysicalPtr digitizer() {
  return boost::make_shared<Constants::CalibrationConstantsPhysicalTOF>(kTimeBase, kDelay);
}

const CalibrationTransformatorTOFQuadratic& quadratic() {
  static const CalibrationTransformatorTOFQuadratic m(
      boost::make_shared<Constants::CalibrationConstantsFunctionalTOF1>(kC0, kC1, kC2),
      digitizer());
  return m;
}

const CalibrationTransformatorTOF2Cubic& cubic() {
  static const CalibrationTransformatorTOF2Cubic m(
      boost::make_shared<Constants::CalibrationConstantsFunctionalTOF2>(kC0, kC1, kC2, kC3, kDm),
      digitizer());
  return m;
}

// The quadratic model of a frame at (21, 33) against a reference at
// (20, 30), factors (10, 100).
const ICalibrationTransformator& compensatedQuadratic() {
  static const ICalibrationTransformatorPtr m = [] {
    const std::vector<double> reference = {20.0, 30.0}, factors = {10.0, 100.0};
    const ICalibrationTransformatorPtr plain =
        boost::dynamic_pointer_cast<ICalibrationTransformator>(quadratic().Clone());
    const TemperatureCompensation::CalibrationTemperatureCompensator compensator(
        addTemperatureCompensationInfo(plain, TemperatureCompensationInfo{reference, factors, 3}),
        reference, factors);
    return compensator.GetCompensatedTransformator(addTemperatureCompensationInfo(
        plain, TemperatureCompensationInfo{{21.0, 33.0}, factors, 3}));
  }();
  return *m;
}

// The quadratic model under a ZRK correction that covers every mass of the
// batch (about 0.4 to 50000): a few ppm, at most 0.05 mass units.
const CalibrationTransformatorZRK& zrkQuadratic() {
  static const CalibrationTransformatorZRK m(
      boost::dynamic_pointer_cast<ICalibrationTransformator>(quadratic().Clone()),
      boost::make_shared<CalibrationPolynomialZRK>(std::vector<double>{1e-3, 2e-6, -2e-11}, kC2,
                                                   kC0, 0.1, 60000.0));
  return m;
}

// The numbers of the plain loops, as the models derive them. They are
// runtime values, as a caller's constants read from an analysis would be:
// the compiler cannot fold them into the loops.
struct Plain {
  double timeBase, delay, indexOffset, c0, c2, c3, dm, a1, b, sign, D0;
};
Plain g_plain;
const bool kPlainReady = [] {
  const double a1 = 1e12 / (kC1 * kC1);
  g_plain = Plain{kTimeBase,           kDelay, 0.0, kC0, kC2, kC3, kDm, a1, signedSqrt(a1),
                  a1 < 0 ? -1.0 : 1.0, a1};
  return true;
}();

[[noreturn]] void complexSolution() { throw std::logic_error("complex"); }

inline double quadraticDIndexToMass(const Plain& p, double x) {
  const double t = (p.indexOffset + x) * p.timeBase + p.delay;
  const double n = p.c0 - t;
  const double d = p.c0 > t ? p.D0 - (t - p.c0) * 4.0 * p.c2 : p.D0 - n * 4.0 * p.c2;
  if (d < 0) complexSolution();
  const double q = (std::sqrt(d) * p.sign + p.b) * -0.5;
  return signedSquare(n / q);
}

inline double quadraticMassToDIndex(const Plain& p, double m) {
  const double r = signedSqrt(p.a1 * m);
  const double t = (p.c2 * m + r) + p.c0;
  return (t - p.delay) / p.timeBase - p.indexOffset;
}

inline double cubicDIndexToMass(const Plain& p, double x) {
  const double t = (p.indexOffset + x) * p.timeBase + p.delay;
  const double k1 = p.b;
  const double n = p.c0 - t;
  const double d = p.c0 > t ? p.D0 - (t - p.c0) * 4.0 * p.c2 : p.D0 - n * 4.0 * p.c2;
  if (d < 0) complexSolution();
  double y = n / ((std::sqrt(d) * p.sign + k1) * -0.5);
  if (y > 0 && p.c3 != 0.0) {
    double w = signedSqrt(y * y);
    const double poly = ((p.c3 * w + p.c2) * w + k1) * w + p.c0;
    y = (y * t) / (poly > 20.0 ? poly : 20.0);
    const double slope = (3.0 * y * p.c3 + (p.c2 + p.c2)) * y + k1;
    w = signedSqrt(signedSquare(y));
    double f = ((p.c3 * w + p.c2) * w + k1) * w + p.c0 - t;
    y = y - f / slope;
    w = signedSqrt(signedSquare(y));
    f = ((p.c3 * w + p.c2) * w + k1) * w + p.c0 - t;
    y = y - f / slope;
  }
  return signedSquare(y) - p.dm;
}

inline double cubicMassToDIndex(const Plain& p, double m) {
  const double w = signedSqrt(m + p.dm);
  const double t = ((p.c3 * w + p.c2) * w + p.b) * w + p.c0;
  return (t - p.delay) / p.timeBase - p.indexOffset;
}

template <double (*F)(const Plain&, double)>
void plainLoop(benchmark::State& state, const std::vector<double>& in) {
  std::vector<double> out(in.size());
  for (auto _ : state) {
    const Plain p = g_plain;
    for (size_t i = 0; i < in.size(); ++i) out[i] = F(p, in[i]);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * in.size());
}

template <class Model>
void libraryDIndexToMass(benchmark::State& state, const Model& m) {
  omp_set_num_threads(static_cast<int>(state.range(0)));
  // Sized before the timed loop, as in the plain loop: a caller that reuses
  // its buffer.
  std::vector<double> out(kValues);
  for (auto _ : state) {
    m.DIndexToMass(dindexes(), out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}

template <class Model>
void libraryMassToDIndex(benchmark::State& state, const Model& m) {
  omp_set_num_threads(static_cast<int>(state.range(0)));
  // Sized before the timed loop, as in the plain loop: a caller that reuses
  // its buffer.
  std::vector<double> out(kValues);
  for (auto _ : state) {
    m.MassToDIndex(masses(), out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}

void BM_TOFQuadratic_DIndexToMass_Plain(benchmark::State& s) {
  plainLoop<quadraticDIndexToMass>(s, dindexes());
}
void BM_TOFQuadratic_DIndexToMass(benchmark::State& s) { libraryDIndexToMass(s, quadratic()); }
void BM_TOFQuadratic_DIndexToMass_Compensated(benchmark::State& s) {
  libraryDIndexToMass(s, compensatedQuadratic());
}
void BM_ZRKTOFQuadratic_DIndexToMass(benchmark::State& s) {
  libraryDIndexToMass(s, zrkQuadratic());
}
void BM_TOFQuadratic_MassToDIndex_Plain(benchmark::State& s) {
  plainLoop<quadraticMassToDIndex>(s, masses());
}
void BM_TOFQuadratic_MassToDIndex(benchmark::State& s) { libraryMassToDIndex(s, quadratic()); }
void BM_TOF2Cubic_DIndexToMass_Plain(benchmark::State& s) {
  plainLoop<cubicDIndexToMass>(s, dindexes());
}
void BM_TOF2Cubic_DIndexToMass(benchmark::State& s) { libraryDIndexToMass(s, cubic()); }
void BM_TOF2Cubic_MassToDIndex_Plain(benchmark::State& s) {
  plainLoop<cubicMassToDIndex>(s, masses());
}
void BM_TOF2Cubic_MassToDIndex(benchmark::State& s) { libraryMassToDIndex(s, cubic()); }

// Three short repetitions each; the table takes the fastest of them, which
// is the one least disturbed by other work on the machine.
constexpr double kMinTime = 0.1;
constexpr int kRepetitions = 3;
BENCHMARK(BM_TOFQuadratic_DIndexToMass_Plain)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOFQuadratic_DIndexToMass)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOFQuadratic_DIndexToMass_Compensated)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_ZRKTOFQuadratic_DIndexToMass)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOFQuadratic_MassToDIndex_Plain)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOFQuadratic_MassToDIndex)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOF2Cubic_DIndexToMass_Plain)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOF2Cubic_DIndexToMass)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOF2Cubic_MassToDIndex_Plain)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();
BENCHMARK(BM_TOF2Cubic_MassToDIndex)
    ->Arg(1)
    ->Arg(2)
    ->MinTime(kMinTime)
    ->Repetitions(kRepetitions)
    ->UseRealTime();

// Console output as usual, and the fastest real time per value of every
// benchmark kept for the table.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
        const double perValue = run.real_accumulated_time / run.iterations / kValues;
        auto found = seconds_.find(run.benchmark_name());
        if (found == seconds_.end() || perValue < found->second) {
          seconds_[run.benchmark_name()] = perValue;
        }
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintTable() const {
    std::printf("\n%-28s %12s %12s %12s %10s %10s\n", "conversion", "plain v/s", "1 thread v/s",
                "2 threads v/s", "1t/plain", "1t/2t");
    for (const char* name : {"TOFQuadratic_DIndexToMass", "TOFQuadratic_MassToDIndex",
                             "TOF2Cubic_DIndexToMass", "TOF2Cubic_MassToDIndex"}) {
      const std::string base = std::string("BM_") + name;
      const double plain = lookup(base + "_Plain");
      const double one = lookup(base + "/1/");
      const double two = lookup(base + "/2/");
      std::printf("%-28s %12.3g %12.3g %12.3g %10.3f %10.3f\n", name, 1.0 / plain, 1.0 / one,
                  1.0 / two, one / plain, one / two);
    }
    std::printf("\n%-28s %12s %12s %12s %12s\n", "temperature compensation", "1 thread v/s",
                "2 threads v/s", "1t comp/plain", "2t comp/plain");
    const std::string model = "BM_TOFQuadratic_DIndexToMass";
    const double one = lookup(model + "/1/"), two = lookup(model + "/2/");
    const double compOne = lookup(model + "_Compensated/1/");
    const double compTwo = lookup(model + "_Compensated/2/");
    std::printf("%-28s %12.3g %12.3g %12.3f %12.3f\n", "TOFQuadratic_DIndexToMass", 1.0 / compOne,
                1.0 / compTwo, compOne / one, compTwo / two);
  }

  // ZRK over the TOF quadratic model against the model alone.
  void PrintZrkTable() const {
    std::printf("\n%-28s %12s %12s %12s %12s\n", "ZRK correction", "1 thread v/s", "2 threads v/s",
                "1t zrk/model", "1t/2t zrk");
    const double one = lookup("BM_TOFQuadratic_DIndexToMass/1/");
    const double zrkOne = lookup("BM_ZRKTOFQuadratic_DIndexToMass/1/");
    const double zrkTwo = lookup("BM_ZRKTOFQuadratic_DIndexToMass/2/");
    std::printf("%-28s %12.3g %12.3g %12.3f %12.3f\n", "TOFQuadratic_DIndexToMass", 1.0 / zrkOne,
                1.0 / zrkTwo, zrkOne / one, zrkOne / zrkTwo);
  }

 private:
  double lookup(const std::string& prefix) const {
    for (const auto& entry : seconds_) {
      if (entry.first.compare(0, prefix.size(), prefix) == 0) return entry.second;
    }
    return NAN;
  }
  std::map<std::string, double> seconds_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintTable();
  reporter.PrintZrkTable();
  benchmark::Shutdown();
  return 0;
}
