// LogStream: one logging statement. Made with a logger and a level; the
// enabled flag is read once at construction, the string stream is built only
// on the first write of an enabled statement, and the destructor delivers the
// message. Never lets an exception out.
//
//   LogStream ls(logger, Level::DEBUG);
//   if (ls.enabled()) ls.stream() << "read " << n << " scans";
//
// or, when evaluating the operands is cheap:
//   LogStream(logger, Level::INFO) << "opened";
//
// Thread-compatible: one statement belongs to one thread.
#ifndef KORA_LOGGING_LOG_STREAM_H_
#define KORA_LOGGING_LOG_STREAM_H_

#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <sstream>

#include "logging/logger.h"

namespace lumo {
namespace logging {

class LogStream : boost::noncopyable {
 public:
  // REQUIRES: `logger` outlives the statement (it is held by address).
  LogStream(const Logger& logger, Level::type level);
  ~LogStream();

  bool enabled() const { return enabled_; }

  // The stream of the message; built on first call.
  std::ostream& stream();

  template <class T>
  LogStream& operator<<(const T& value) {
    if (enabled_) stream() << value;
    return *this;
  }

 private:
  const Logger* logger_;
  Level::type level_;
  bool enabled_;
  boost::optional<std::ostringstream> os_;
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LOG_STREAM_H_
