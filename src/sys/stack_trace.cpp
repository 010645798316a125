#include "sys/stack_trace.h"

#include <boost/stacktrace.hpp>

#include <locale>
#include <mutex>
#include <sstream>

namespace lumo {
namespace diag {
namespace {
std::mutex& captureMutex() {
  static std::mutex m;
  return m;
}
}  // namespace

StackTrace::StackTrace() {
  std::lock_guard<std::mutex> lock(captureMutex());
  boost::stacktrace::stacktrace st;
  for (const boost::stacktrace::frame& f : st) {
    std::ostringstream os;
    os.imbue(std::locale::classic());
    const std::string file = f.source_file();
    const std::size_t line = f.source_line();
    os << f.address() << ": " << f.name() << " at line ";
    if (line == 0) os << "???"; else os << line;
    os << " in " << (file.empty() ? std::string("???") : file) << " in ???";
    frames_.push_back(os.str());
  }
}

std::string to_string(const StackTrace& trace) {
  std::string text;
  for (const std::string& f : trace.frames()) {
    text += f;
    text += '\n';
  }
  return text;
}

}  // namespace diag
}  // namespace lumo
