// lumo::logging::Logger: a cheap, copyable handle to a named logger. What a
// logger does (threshold, sinks) is fixed when it is first requested.
//
// Thread-safety: thread-safe. getLogger locks the process-wide table; the
// logging path takes no lock of its own (each sink locks for itself).
#ifndef KORA_LOGGING_LOGGER_H_
#define KORA_LOGGING_LOGGER_H_

#include <boost/shared_ptr.hpp>
#include <string>

#include "logging/level.h"

namespace lumo {
namespace logging {

class Logger {
 public:
  class Impl;

  // The logger of `name` (dotted, every part starting with a letter), made on
  // first request with the configuration the process read when its first
  // logger was requested. Throws std::runtime_error "Invalid logger name: .."
  // and, after the process-wide table was destroyed at exit,
  // boost::interprocess::interprocess_exception.
  static Logger getLogger(const char* name);

  // True when the logger's threshold is not above `level`.
  // Throws std::runtime_error for a level outside 0..5.
  bool isEnabled(Level::type level) const;

  // Threshold-checked write of one message.
  void log(Level::type level, const char* message) const;
  // Unchecked write: straight to the sinks (LogStream tests first).
  void log(Level::type level, const std::string& message) const;

  const std::string& name() const;

  explicit Logger(boost::shared_ptr<Impl> impl) : impl_(std::move(impl)) {}

 private:
  boost::shared_ptr<Impl> impl_;
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LOGGER_H_
