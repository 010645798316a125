// Provisional logger core: one console sink on stderr, root level INFO.
#include "logging/logger.h"

#include <boost/make_shared.hpp>

#include <iostream>
#include <map>
#include <mutex>
#include <stdexcept>

#include "logging/log_stream.h"

namespace lumo {
namespace logging {

class Logger::Impl {
 public:
  std::string name;
  Level::type level = Level::INFO;
};

namespace {
const char* levelName(Level::type level) {
  static const char* names[] = {"TRACE", "DEBUG", "INFO ", "WARN ", "ERROR", "FATAL"};
  return names[level];
}
void checkLevel(Level::type level) {
  if (level < Level::TRACE || level > Level::FATAL)
    throw std::runtime_error("Invalid logging level (ordinal value: " +
                             std::to_string(static_cast<int>(level)) + ")");
}
}  // namespace

Logger Logger::getLogger(const char* name) {
  static std::mutex mutex;
  static std::map<std::string, boost::shared_ptr<Impl>> table;
  std::lock_guard<std::mutex> lock(mutex);
  auto& slot = table[name];
  if (!slot) {
    slot = boost::make_shared<Impl>();
    slot->name = name;
  }
  return Logger(slot);
}

bool Logger::isEnabled(Level::type level) const {
  checkLevel(level);
  return impl_->level <= level;
}

void Logger::log(Level::type level, const char* message) const {
  if (isEnabled(level)) log(level, std::string(message));
}

void Logger::log(Level::type level, const std::string& message) const {
  checkLevel(level);
  std::cerr << "[" << levelName(level) << "] " << impl_->name << ": " << message << "\n";
}

const std::string& Logger::name() const { return impl_->name; }

LogStream::LogStream(const Logger& logger, Level::type level)
    : logger_(&logger), level_(level), enabled_(logger.isEnabled(level)) {}

LogStream::~LogStream() {
  if (!enabled_) return;
  try {
    logger_->log(level_, os_ ? os_->str() : std::string());
  } catch (...) {
  }
}

std::ostream& LogStream::stream() {
  if (!os_) os_.emplace();
  return *os_;
}

}  // namespace logging
}  // namespace lumo
