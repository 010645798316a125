// The logging library's own diagnostic channel. It never uses a logger: lines
// ">>>>>>>>|- <SEVERITY> in [lumo-logconf:<file>:<line>] - <text>" go to
// stdout for severity 0 and to stderr above (this platform has no debugger
// channel). Severities: 0 INFO, 1 WARN, 2 ERROR; others print as "???".
//
// Thread-safety: thread-safe; each report is one write of the C stream.
#ifndef KORA_LOGGING_DIAGNOSTIC_H_
#define KORA_LOGGING_DIAGNOSTIC_H_

namespace lumo {
namespace logging {

// Texts bring their own line feeds. The whole line is cut at 4096 bytes.
// `function` is not printed.
void reportDiagnostic(int severity, const char* text, const char* file, long line,
                      const char* function) noexcept;

// As reportDiagnostic, with `format` and its arguments printed first into a
// 4096-byte buffer.
void reportDiagnosticf(int severity, const char* file, long line, const char* function,
                       const char* format, ...) noexcept __attribute__((format(printf, 5, 6)));

// REQUIRES: called inside a catch block. Reports at severity 2 `text`, ":\n",
// boost::diagnostic_information of the current exception and "\n" (for an
// exception of unknown type `text` and ":\n unknown exception.\n").
void reportCurrentException(const char* text, const char* file, long line,
                            const char* function) noexcept;
void reportCurrentExceptionf(const char* file, long line, const char* function, const char* format,
                             ...) noexcept __attribute__((format(printf, 4, 5)));

// Writes `text` as it is to the output of the channel for `severity`, with no
// prefix: where a sink sends lines it cannot deliver.
void writeDiagnosticOutput(int severity, const char* text) noexcept;

}  // namespace logging
}  // namespace lumo

#define LUMO_REPORT_DIAGNOSTIC(severity, text) \
  ::lumo::logging::reportDiagnostic((severity), (text), __FILE__, __LINE__, __func__)
#define LUMO_REPORT_DIAGNOSTICF(severity, ...) \
  ::lumo::logging::reportDiagnosticf((severity), __FILE__, __LINE__, __func__, __VA_ARGS__)
#define LUMO_REPORT_CURRENT_EXCEPTION(text) \
  ::lumo::logging::reportCurrentException((text), __FILE__, __LINE__, __func__)
#define LUMO_REPORT_CURRENT_EXCEPTIONF(...) \
  ::lumo::logging::reportCurrentExceptionf(__FILE__, __LINE__, __func__, __VA_ARGS__)

#endif  // KORA_LOGGING_DIAGNOSTIC_H_
