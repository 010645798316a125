// Logger::Impl, LoggerConfig and the line format. Internal to the logging
// library.
#ifndef KORA_LOGGING_LOGGER_IMPL_H_
#define KORA_LOGGING_LOGGER_IMPL_H_

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "logging/level.h"
#include "logging/logger.h"
#include "logging/sink.h"

namespace lumo {
namespace logging {

// What the configuration answers for one logger name.
struct LoggerConfig {
  std::string name;
  Level::type level = Level::INFO;  // the effective threshold
  std::vector<SinkInfo> sinks;      // no null pointers
};

// A logger as made: never changes, so it needs no lock (thread-safe).
class Logger::Impl {
 public:
  explicit Impl(const LoggerConfig& config)
      : name(config.name), level(config.level), sinks(config.sinks) {}

  // Builds the line once and hands it to every sink whose threshold is not
  // above `level`, in order. An exception from a sink stops the loop and
  // passes to the caller. No threshold test of the logger's own.
  void write(Level::type level, const std::string& message) const;

  const std::string name;
  const Level::type level;
  const std::vector<SinkInfo> sinks;
};

// "<date> <time> [tid=0x<thread>] [<LEVEL>] <logger>: <message>\n", the time
// as "2025-01-31 14:05:09.123456", the thread number in lower-case hex and the
// level name padded with blanks to five characters. The message is unchanged.
// Throws std::runtime_error for a level outside TRACE..FATAL.
std::string formatLogLine(const boost::posix_time::ptime& localTime, std::uint32_t threadId,
                          Level::type level, const std::string& logger, const std::string& message);

// formatLogLine with the local time of now (microseconds) and the calling
// thread. Throws std::runtime_error "could not convert calendar time to local
// time" when the local time is unavailable.
std::string buildLogLine(Level::type level, const std::string& logger, const std::string& message);

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LOGGER_IMPL_H_
