// The console-type sinks and the debug-output sink.
//
//   ConsoleSink      TRACE, DEBUG, INFO to std::cout; WARN, ERROR, FATAL to std::cerr
//   StdOutSink       the C stream stdout
//   StdErrSink       the C stream stderr
//   DebugOutputSink  the system log (syslog), this platform's debugger channel
//
// Thread-safety: thread-safe. Console-type sinks share one lock (the console
// lock of the logger table), so their lines never mix; the debug-output sink
// takes no lock.
#ifndef KORA_LOGGING_CONSOLE_SINKS_H_
#define KORA_LOGGING_CONSOLE_SINKS_H_

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdio>
#include <mutex>

#include "logging/console_color_formatter.h"
#include "logging/sink.h"

namespace lumo {
namespace logging {
namespace impl {

class ConsoleSink : public ISink {
 public:
  // `node` is the <sink> element (optional <layout> child).
  // REQUIRES: consoleLock outlives the sink.
  ConsoleSink(std::mutex* consoleLock, const boost::property_tree::ptree& node);
  void write(const LogEvent& event) override;

 private:
  std::mutex* consoleLock_;
  boost::optional<ConsoleColorFormatter> formatter_;
};

// A console-type sink on one C stream.
class StdStreamSink : public ISink {
 public:
  void write(const LogEvent& event) override;

 protected:
  StdStreamSink(std::mutex* consoleLock, const boost::property_tree::ptree& node,
                std::FILE* stream);

 private:
  std::mutex* consoleLock_;
  boost::optional<ConsoleColorFormatter> formatter_;
  std::FILE* stream_;
};

class StdOutSink : public StdStreamSink {
 public:
  StdOutSink(std::mutex* consoleLock, const boost::property_tree::ptree& node)
      : StdStreamSink(consoleLock, node, stdout) {}
};

class StdErrSink : public StdStreamSink {
 public:
  StdErrSink(std::mutex* consoleLock, const boost::property_tree::ptree& node)
      : StdStreamSink(consoleLock, node, stderr) {}
};

class DebugOutputSink : public ISink {
 public:
  // The lock is kept and not used.
  explicit DebugOutputSink(std::mutex* consoleLock) : consoleLock_(consoleLock) {}
  void write(const LogEvent& event) override;

 private:
  [[maybe_unused]] std::mutex* consoleLock_;
};

}  // namespace impl
}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_CONSOLE_SINKS_H_
