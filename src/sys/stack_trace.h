// lumo::diag::StackTrace: the call stack of the calling thread, captured as
// finished text at the moment of a throw.
//
// Thread-safety: capture is serialised process-wide; a StackTrace object is
// plain data afterwards (thread-compatible).
#ifndef KORA_SYS_STACK_TRACE_H_
#define KORA_SYS_STACK_TRACE_H_

#include <boost/exception/error_info.hpp>

#include <string>
#include <vector>

namespace lumo {
namespace diag {

class StackTrace {
 public:
  // Captures the frames of the calling thread, innermost first. Each frame is
  // "<address>: <symbol> at line <line> in <source file> in <module>", with
  // "???" for an unknown line, file or module. Costly: only for throws.
  StackTrace();

  const std::vector<std::string>& frames() const { return frames_; }

 private:
  std::vector<std::string> frames_;
};

// The whole trace: every frame followed by one line feed. Found by
// boost::diagnostic_information through argument-dependent lookup.
std::string to_string(const StackTrace& trace);

struct StackTraceTag {};
using StackTraceInfo = boost::error_info<StackTraceTag, StackTrace>;

}  // namespace diag
}  // namespace lumo

#endif  // KORA_SYS_STACK_TRACE_H_
