// Speed of the spline vector forms against their point forms.
//
// Akima (1000 knots) and the cubic spline (1000 knots) are evaluated at
// 100000 ascending points, once point by point (the baseline: a linear or a
// bisection search per point) and once through the vector form, which
// searches once and then steps along the knots. At the end a table gives
// values/s and the ratio time(point form) / time(vector form), both
// measured in this run.
//
// Flags: the usual --benchmark_* flags.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "math/splines/akima.h"
#include "math/splines/cubic_spline.h"

namespace {

using lumo::math::CAkima;
using lumo::math::CubicSplineInterpolation;

constexpr int kKnots = 1000;
constexpr int kPoints = 100000;

struct Spline {
  std::vector<double> knots, values, slopes, points;
};

// A wavy curve on [0, kKnots), the points spread evenly over it.
const Spline& spline() {
  static const Spline s = [] {
    Spline s;
    for (int i = 0; i < kKnots; ++i) {
      s.knots.push_back(i);
      s.values.push_back((i * 37 % 101) * 0.01);
      s.slopes.push_back(((i * 53 % 89) - 44) * 0.001);
    }
    for (int i = 0; i < kPoints; ++i) s.points.push_back(i * (kKnots - 1.0) / kPoints);
    return s;
  }();
  return s;
}

void BM_Akima_Point(benchmark::State& state) {
  const Spline& s = spline();
  std::vector<double> y(kPoints), dy(kPoints);
  for (auto _ : state) {
    for (int i = 0; i < kPoints; ++i) {
      CAkima().CalcInterpolation(s.points[i], y[i], dy[i], s.knots, s.values, s.slopes, 0);
    }
    benchmark::DoNotOptimize(y.data());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Akima_Vector(benchmark::State& state) {
  const Spline& s = spline();
  std::vector<double> y(kPoints), dy(kPoints);
  for (auto _ : state) {
    CAkima().CalcInterpolation(s.points, y, dy, s.knots, s.values, s.slopes, 0);
    benchmark::DoNotOptimize(y.data());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_CubicSpline_Point(benchmark::State& state) {
  const Spline& s = spline();
  std::vector<double> y(kPoints);
  for (auto _ : state) {
    for (int i = 0; i < kPoints; ++i) {
      CubicSplineInterpolation(s.points[i], y[i], s.knots, s.values, s.slopes);
    }
    benchmark::DoNotOptimize(y.data());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_CubicSpline_Vector(benchmark::State& state) {
  const Spline& s = spline();
  std::vector<double> y(kPoints);
  for (auto _ : state) {
    CubicSplineInterpolation(s.points, y, s.knots, s.values, s.slopes);
    benchmark::DoNotOptimize(y.data());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

// Three short repetitions each; the table takes the fastest.
constexpr double kMinTime = 0.1;
constexpr int kRepetitions = 3;
BENCHMARK(BM_Akima_Point)->MinTime(kMinTime)->Repetitions(kRepetitions);
BENCHMARK(BM_Akima_Vector)->MinTime(kMinTime)->Repetitions(kRepetitions);
BENCHMARK(BM_CubicSpline_Point)->MinTime(kMinTime)->Repetitions(kRepetitions);
BENCHMARK(BM_CubicSpline_Vector)->MinTime(kMinTime)->Repetitions(kRepetitions);

// Console output as usual, and the fastest time per value of each benchmark.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
        const double perValue = run.real_accumulated_time / run.iterations / kPoints;
        auto found = seconds_.find(run.benchmark_name());
        if (found == seconds_.end() || perValue < found->second) {
          seconds_[run.benchmark_name()] = perValue;
        }
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintTable() const {
    std::printf("\n%-14s %14s %14s %12s\n", "spline", "point v/s", "vector v/s", "point/vector");
    for (const char* name : {"Akima", "CubicSpline"}) {
      const double point = lookup(std::string("BM_") + name + "_Point");
      const double vector = lookup(std::string("BM_") + name + "_Vector");
      std::printf("%-14s %14.4g %14.4g %12.2f\n", name, 1.0 / point, 1.0 / vector, point / vector);
    }
  }

 private:
  // The fastest of the repetitions, whose names carry a suffix.
  double lookup(const std::string& base) const {
    double best = 0.0;
    for (const auto& entry : seconds_) {
      if (entry.first.compare(0, base.size(), base) == 0 &&
          (entry.first.size() == base.size() || entry.first[base.size()] == '/') &&
          (best == 0.0 || entry.second < best)) {
        best = entry.second;
      }
    }
    return best;
  }

  std::map<std::string, double> seconds_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintTable();
  benchmark::Shutdown();
  return 0;
}
