// lumo::diag::StackTrace: the call stack of the calling thread, captured as
// finished text at the moment of a throw.
//
// Thread-safety: capture is serialised process-wide; a StackTrace object is
// plain data afterwards (thread-compatible).
#ifndef KORA_SYS_STACK_TRACE_H_
#define KORA_SYS_STACK_TRACE_H_

#include <boost/exception/error_info.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace lumo {
namespace diag {

class StackTrace {
 public:
  // Captures the frames of the calling thread, innermost first, starting with
  // the caller of this constructor; each frame as formatFrame gives it.
  // Costly (milliseconds and up): only for throws, never on a normal path.
  // A failure of capture (e.g. std::bad_alloc) leaves the constructor, and so
  // replaces the exception that was about to be thrown.
  StackTrace();

  const std::vector<std::string>& frames() const { return frames_; }

 private:
  std::vector<std::string> frames_;
};

// The text of one frame: "<address>: <symbol> at line <line> in <source file>
// in <module>", where a line of 0 and an empty file or module print as "???".
// The address prints as a stream prints a pointer, in the classic locale.
std::string formatFrame(const void* address, const std::string& symbol, std::size_t line,
                        const std::string& sourceFile, const std::string& module);

// The whole trace: every frame followed by one line feed. Found by
// boost::diagnostic_information through argument-dependent lookup.
std::string to_string(const StackTrace& trace);

struct StackTraceTag {};
using StackTraceInfo = boost::error_info<StackTraceTag, StackTrace>;

}  // namespace diag
}  // namespace lumo

#endif  // KORA_SYS_STACK_TRACE_H_
