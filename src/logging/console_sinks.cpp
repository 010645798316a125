#include "logging/console_sinks.h"

#include <syslog.h>

#include <iostream>

namespace lumo {
namespace logging {
namespace impl {

ConsoleSink::ConsoleSink(std::mutex* consoleLock, const boost::property_tree::ptree& node)
    : consoleLock_(consoleLock) {
  read_formatter(node, formatter_);
}

void ConsoleSink::write(const LogEvent& event) {
  std::lock_guard<std::mutex> lock(*consoleLock_);
  std::ostream& os = event.level >= Level::WARN ? std::cerr : std::cout;
  if (formatter_) {
    formatter_->write(os, event);
  } else {
    os.write(event.text.data(), static_cast<std::streamsize>(event.text.size()));
  }
  os.flush();
}

StdStreamSink::StdStreamSink(std::mutex* consoleLock, const boost::property_tree::ptree& node,
                             std::FILE* stream)
    : consoleLock_(consoleLock), stream_(stream) {
  read_formatter(node, formatter_);
}

void StdStreamSink::write(const LogEvent& event) {
  std::lock_guard<std::mutex> lock(*consoleLock_);
  if (formatter_) {
    formatter_->write(stream_, event);
  } else {
    // Stops at an embedded zero byte.
    std::fprintf(stream_, "%s", event.text.c_str());
  }
  std::fflush(stream_);
}

void DebugOutputSink::write(const LogEvent& event) {
  int priority = LOG_DEBUG;
  switch (event.level) {
    case Level::TRACE:
    case Level::DEBUG:
      priority = LOG_DEBUG;
      break;
    case Level::INFO:
      priority = LOG_INFO;
      break;
    case Level::WARN:
      priority = LOG_WARNING;
      break;
    case Level::ERROR:
      priority = LOG_ERR;
      break;
    case Level::FATAL:
      priority = LOG_CRIT;
      break;
  }
  syslog(LOG_USER | priority, "%s", event.text.c_str());
}

}  // namespace impl
}  // namespace logging
}  // namespace lumo
