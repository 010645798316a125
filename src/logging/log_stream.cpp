#include "logging/log_stream.h"

#include <boost/exception/diagnostic_information.hpp>
#include <exception>

namespace lumo {
namespace logging {
namespace {

// These run inside the catch block of the destructor. They are noexcept: a
// further exception while reporting ends the process.
void reportFailure(const Logger& logger, const std::string& text) noexcept {
  logger.log(Level::ERROR, text.c_str());
}

void reportCurrentFailure(const Logger& logger) noexcept {
  try {
    throw;
  } catch (const boost::exception& e) {
    reportFailure(logger, boost::diagnostic_information(e));
  } catch (const std::exception& e) {
    reportFailure(logger, boost::diagnostic_information(e));
  } catch (...) {
    reportFailure(logger, "Unknown exception during logger IO streaming");
  }
}

}  // namespace

LogStream::LogStream(const Logger& logger, Level::type level)
    : logger_(&logger), level_(level), enabled_(logger.isEnabled(level)) {}

LogStream::~LogStream() {
  if (!enabled_) return;
  try {
    logger_->log(level_, os_ ? os_->str() : std::string());
  } catch (...) {
    reportCurrentFailure(*logger_);
  }
}

std::ostream& LogStream::stream() {
  if (!os_) os_.emplace();
  return *os_;
}

}  // namespace logging
}  // namespace lumo
