#include "logging/sink_factory.h"

#include <boost/make_shared.hpp>
#include <cstring>

#include "logging/async_sink.h"
#include "logging/console_sinks.h"
#include "logging/rolling_file_sink.h"

namespace lumo {
namespace logging {
namespace {

boost::shared_ptr<ISink> makeNullSink(const SinkContext&, std::mutex*) {
  return boost::shared_ptr<ISink>();
}

template <class Sink>
boost::shared_ptr<ISink> makeConsoleTypeSink(const SinkContext& context, std::mutex* lock) {
  return boost::make_shared<Sink>(lock, context.config);
}

boost::shared_ptr<ISink> makeDebugOutputSink(const SinkContext&, std::mutex* lock) {
  return boost::make_shared<impl::DebugOutputSink>(lock);
}

boost::shared_ptr<ISink> makeRollingFileSink(const SinkContext& context, std::mutex*) {
  return boost::make_shared<impl::RollingFileSink>(context.config);
}

boost::shared_ptr<ISink> makeAsyncSink(const SinkContext& context, std::mutex*) {
  return boost::make_shared<impl::AsyncSink>(context);
}

struct FactoryEntry {
  const char* className;
  SinkFactory factory;
};

const FactoryEntry kFactories[] = {
    {"lumo.logging.NullSink", &makeNullSink},
    {"lumo.logging.ConsoleSink", &makeConsoleTypeSink<impl::ConsoleSink>},
    {"lumo.logging.StdOutSink", &makeConsoleTypeSink<impl::StdOutSink>},
    {"lumo.logging.StdErrSink", &makeConsoleTypeSink<impl::StdErrSink>},
    {"lumo.logging.DebugOutputSink", &makeDebugOutputSink},
    {"lumo.logging.RollingFileSink", &makeRollingFileSink},
    {"lumo.logging.AsyncSink", &makeAsyncSink},
};

}  // namespace

SinkFactory findSinkFactory(const std::string& className) {
  for (const FactoryEntry& entry : kFactories) {
    if (className == entry.className) return entry.factory;
  }
  return nullptr;
}

}  // namespace logging
}  // namespace lumo
