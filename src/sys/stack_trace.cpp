// Capture of the calling thread's stack with Boost.Stacktrace over libbacktrace:
// demangled names, and source file and line where debug information has them.
// The module of a frame comes from dladdr.
#include "sys/stack_trace.h"

#include <dlfcn.h>

#include <boost/stacktrace.hpp>
#include <cerrno>
#include <cstring>
#include <locale>
#include <mutex>
#include <sstream>

#include "sys/environment.h"

namespace lumo {
namespace diag {
namespace {

// libbacktrace's symbol state is not meant for concurrent first use; capture
// is serialised for the whole process.
std::mutex& captureMutex() {
  static std::mutex mutex;
  return mutex;
}

// The path of the module that holds `address`; empty when unknown. The main
// program's own entry names it as invoked (argv[0]): it is replaced by the
// absolute path of the executable.
std::string modulePath(const void* address) {
  Dl_info info;
  if (address == nullptr || dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
    return std::string();
  }
  if (std::strcmp(info.dli_fname, program_invocation_name) == 0) {
    try {
      return lumo::sys::executablePath().string();
    } catch (const std::exception&) {
    }
  }
  return info.dli_fname;
}

const std::string& orUnknown(const std::string& text) {
  static const std::string unknown("???");
  return text.empty() ? unknown : text;
}

}  // namespace

std::string formatFrame(const void* address, const std::string& symbol, std::size_t line,
                        const std::string& sourceFile, const std::string& module) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << address << ": " << symbol << " at line ";
  if (line == 0) {
    os << "???";
  } else {
    os << line;
  }
  os << " in " << orUnknown(sourceFile) << " in " << orUnknown(module);
  return os.str();
}

StackTrace::StackTrace() {
  std::lock_guard<std::mutex> lock(captureMutex());
  // Skip this constructor: the first frame is the code that asked for the trace.
  const boost::stacktrace::stacktrace trace(1, static_cast<std::size_t>(-1));
  frames_.reserve(trace.size());
  for (const boost::stacktrace::frame& frame : trace) {
    const void* address = frame.address();
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
    // Fuzz builds throw on nearly every input: their frames are bare
    // addresses, without the lookups that cost milliseconds per throw.
    frames_.push_back(formatFrame(address, std::string(), 0, std::string(), std::string()));
    continue;
#endif
    // Every captured address is a return address: it may lie behind the end
    // of a function whose call never returns. Symbol, line and module are
    // looked up one byte before it, inside the call instruction.
    const boost::stacktrace::frame call(address == nullptr ? address
                                                           : static_cast<const char*>(address) - 1);
    frames_.push_back(formatFrame(address, call.name(), call.source_line(), call.source_file(),
                                  modulePath(call.address())));
  }
}

std::string to_string(const StackTrace& trace) {
  std::string text;
  for (const std::string& frame : trace.frames()) {
    text += frame;
    text += '\n';
  }
  return text;
}

}  // namespace diag
}  // namespace lumo
