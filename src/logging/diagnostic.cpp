#include "logging/diagnostic.h"

#include <boost/exception/diagnostic_information.hpp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace lumo {
namespace logging {
namespace {

constexpr std::size_t kBufferSize = 4096;

const char* severityWord(int severity) {
  switch (severity) {
    case 0:
      return "INFO";
    case 1:
      return "WARN";
    case 2:
      return "ERROR";
    default:
      return "???";
  }
}

// The last component of a path with "/" or "\" separators.
const char* baseName(const char* file) {
  if (file == nullptr) return "";
  const char* base = file;
  for (const char* p = file; *p; ++p) {
    if (*p == '/' || *p == '\\') base = p + 1;
  }
  return base;
}

std::string currentExceptionText(const char* text) {
  std::string report = text ? text : "";
  try {
    throw;
  } catch (const boost::exception& e) {
    report += ":\n" + boost::diagnostic_information(e) + "\n";
  } catch (const std::exception& e) {
    report += ":\n" + boost::diagnostic_information(e) + "\n";
  } catch (...) {
    report += ":\n unknown exception.\n";
  }
  return report;
}

}  // namespace

void writeDiagnosticOutput(int severity, const char* text) noexcept {
  FILE* stream = severity > 0 ? stderr : stdout;
  std::fputs(text, stream);
  std::fflush(stream);
}

void reportDiagnostic(int severity, const char* text, const char* file, long line,
                      const char* /*function*/) noexcept {
  char buffer[kBufferSize];
  // snprintf cuts at the buffer's end and always terminates.
  std::snprintf(buffer, sizeof buffer, ">>>>>>>>|- %s in [lumo-logconf:%s:%ld] - %s",
                severityWord(severity), baseName(file), line, text ? text : "");
  writeDiagnosticOutput(severity, buffer);
}

void reportDiagnosticf(int severity, const char* file, long line, const char* function,
                       const char* format, ...) noexcept {
  char text[kBufferSize];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  reportDiagnostic(severity, text, file, line, function);
}

void reportCurrentException(const char* text, const char* file, long line,
                            const char* function) noexcept {
  reportDiagnostic(2, currentExceptionText(text).c_str(), file, line, function);
}

void reportCurrentExceptionf(const char* file, long line, const char* function, const char* format,
                             ...) noexcept {
  char text[kBufferSize];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  reportCurrentException(text, file, line, function);
}

}  // namespace logging
}  // namespace lumo
