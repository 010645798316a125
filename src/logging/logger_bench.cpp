// Cost of logging statements, against a baseline of one integer comparison
// measured in the same run: a disabled statement should cost about that.
#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

#include "logging/log_stream.h"
#include "logging/logger_impl.h"

namespace {

using lumo::logging::ISink;
using lumo::logging::Level;
using lumo::logging::LogEvent;
using lumo::logging::Logger;
using lumo::logging::LoggerConfig;
using lumo::logging::LogStream;

class DiscardingSink : public ISink {
 public:
  void write(const LogEvent& event) override { benchmark::DoNotOptimize(event.text.data()); }
};

Logger infoLogger() {
  LoggerConfig config;
  config.name = "lumo.bench.Logger";
  config.level = Level::INFO;
  lumo::logging::SinkInfo info;
  info.sink = boost::make_shared<DiscardingSink>();
  config.sinks.push_back(info);
  return Logger(boost::make_shared<Logger::Impl>(config));
}

void BM_BaselineComparison(benchmark::State& state) {
  int threshold = Level::INFO;
  int level = Level::DEBUG;
  for (auto _ : state) {
    benchmark::DoNotOptimize(threshold);
    benchmark::DoNotOptimize(level);
    bool enabled = threshold <= level;
    benchmark::DoNotOptimize(enabled);
  }
}
BENCHMARK(BM_BaselineComparison);

void BM_DisabledStatement(benchmark::State& state) {
  const Logger logger = infoLogger();
  int frame = 17;
  for (auto _ : state) {
    LogStream ls(logger, Level::DEBUG);
    if (ls.enabled()) ls.stream() << "frame " << frame;
    benchmark::DoNotOptimize(frame);
  }
}
BENCHMARK(BM_DisabledStatement);

void BM_EnabledStatement(benchmark::State& state) {
  const Logger logger = infoLogger();
  int frame = 17;
  for (auto _ : state) {
    LogStream ls(logger, Level::INFO);
    if (ls.enabled()) ls.stream() << "frame " << frame;
  }
}
BENCHMARK(BM_EnabledStatement);

}  // namespace

BENCHMARK_MAIN();
