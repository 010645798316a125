// The exported functions and the Instance behind a handle.
//
// A handle is the address of an Instance. There is no table of open handles
// and no validation: a handle is turned back into a pointer and used. No
// exception leaves a function that can fail: every such export routes its
// catch block through saveError(), which logs the full diagnostic text and
// keeps what() as the calling thread's last error.
#include "koradata.h"

#include <omp.h>

#include <algorithm>
#include <boost/exception/diagnostic_information.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <boost/thread/tss.hpp>
#include <cstring>
#include <string>

#include "calibration_access/calibration_state_selector.h"
#include "logging/log_stream.h"
#include "logging/logger.h"
#include "reader/oxa_reader.h"
#include "sys/encoding.h"

namespace {

using lumo::io::calibration::CalibrationStateSelector;
using lumo::logging::Level;
using lumo::logging::Logger;
using lumo::logging::LogStream;

const char* const kLoggerName = "lumo.io.koradata_dll";

// One text per thread, created by the thread's first failure, never cleared.
boost::thread_specific_ptr<std::string> last_error;

// An open analysis. Thread-compatible: one thread at a time.
class Instance : boost::noncopyable {
 public:
  Instance(const boost::filesystem::path& dir, bool useRecalibratedState)
      : logger(Logger::getLogger(kLoggerName)),
        reader(dir, useRecalibratedState ? boost::make_optional(CalibrationStateSelector())
                                         : boost::none) {
    LogStream(logger, Level::DEBUG) << "instantiated.";
  }

  Logger logger;
  lumo::io::kora::OxaReader reader;
};

Instance* toInstance(uint64_t handle) {
  return reinterpret_cast<Instance*>(static_cast<uintptr_t>(handle));
}

// The boundary handler of every export that can fail.
void saveError(const std::exception& e) {
  const std::string text = boost::diagnostic_information(e, true);
  if (!text.empty()) {
    LogStream ls(Logger::getLogger(kLoggerName), Level::DEBUG);
    if (ls.enabled())
      ls.stream() << "Caught std::exception with boost::diagnostic_information = \n" << text;
  }
  std::string message = e.what();
  if (!last_error.get()) last_error.reset(new std::string);
  *last_error = std::move(message);
}

}  // namespace

extern "C" {

KORA_EXPORT uint64_t kora_open(const char* analysis_directory, uint32_t use_recalibrated_state) {
  try {
    const Logger logger = Logger::getLogger(kLoggerName);
    {
      LogStream ls(logger, Level::TRACE);
      // Converted whether or not the statement is enabled: malformed UTF-8
      // fails here, with "Invalid UTF-8".
      const std::string path =
          lumo::sys::utf8_to_native(analysis_directory, lumo::sys::NativeEncodingOption::ANSI);
      if (ls.enabled()) ls.stream() << "Opening " << path << ", recal = " << use_recalibrated_state;
    }
    lumo::sys::checkUtf8(analysis_directory);
    // The native narrow encoding of paths is UTF-8 here.
    const boost::filesystem::path dir(analysis_directory);
    Instance* instance = new Instance(dir, use_recalibrated_state != 0);
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(instance));
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

KORA_EXPORT void kora_close(uint64_t handle) {
  LogStream(Logger::getLogger(kLoggerName), Level::TRACE) << "Closing handle " << handle;
  if (handle == 0) return;
  Instance* instance = toInstance(handle);
  LogStream(instance->logger, Level::DEBUG) << "destroying...";
  delete instance;
}

KORA_EXPORT uint32_t kora_get_last_error_string(char* buf, uint32_t len) {
  const std::string text = last_error.get() ? *last_error : std::string("<no error>");
  const uint32_t L = static_cast<uint32_t>(text.size());
  if (len != 0) {
    const uint32_t n = std::min(L, std::min(L + 1, len) - 1);
    std::memcpy(buf, text.data(), n);
    buf[n] = '\0';
  }
  return L + 1;
}

KORA_EXPORT uint32_t kora_has_recalibrated_state(uint64_t /*handle*/) { return 0; }

KORA_EXPORT void kora_set_num_threads(uint32_t n) { omp_set_num_threads(static_cast<int>(n)); }

}  // extern "C"
