// The process-wide logger table and the Logger handle.
#include "logging/logger.h"

#include <boost/date_time/posix_time/posix_time.hpp>
#include <boost/make_shared.hpp>
#include <boost/regex.hpp>
#include <cstdio>
#include <map>
#include <mutex>
#include <stdexcept>

#include "logging/level_names.h"
#include "logging/logger_impl.h"
#include "logging/logger_settings.h"
#include "logging/module_lifetime.h"
#include "logging/process_singleton.h"
#include "sys/environment.h"
#include "sys/iso_time.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace {

// The process-wide state. Members are made in this order and destroyed in
// reverse: the sinks (in the settings) go before the locks they use, and the
// module pin is released last.
class LoggerMapWrapper : boost::noncopyable {
 public:
  LoggerMapWrapper()
      : settings(&consoleLock),
        nameExpression("[A-Za-z][A-Za-z0-9_\\-]*(\\.[A-Za-z][A-Za-z0-9_\\-]*)*") {
    settings.load();
  }

  ModulePin pin;
  std::mutex tableLock;    // guards `table`
  std::mutex consoleLock;  // shared by all console-type sinks
  LoggerSettings settings;
  std::map<std::string, boost::shared_ptr<lifetime_wrapper<Logger::Impl>>> table;
  const boost::regex nameExpression;
};

Logger handleOf(const boost::shared_ptr<lifetime_wrapper<Logger::Impl>>& wrapper) {
  // Aliasing: the handle points at the Impl and owns the whole wrapper.
  return Logger(boost::shared_ptr<Logger::Impl>(wrapper, &wrapper->value));
}

}  // namespace

std::string formatLogLine(const boost::posix_time::ptime& localTime, std::uint32_t threadId,
                          Level::type level, const std::string& logger,
                          const std::string& message) {
  checkLevel(level);
  std::string line =
      sys::posix::toIsoExtendedString(localTime, sys::posix::FormatOption::BLANK_MICROSECONDS);
  char prefix[64];
  std::snprintf(prefix, sizeof prefix, " [tid=0x%x] [%-5s] ", static_cast<unsigned>(threadId),
                levelName(level));
  line.reserve(line.size() + 32 + logger.size() + message.size());
  line += prefix;
  line += logger;
  line += ": ";
  line += message;
  line += '\n';
  return line;
}

std::string buildLogLine(Level::type level, const std::string& logger, const std::string& message) {
  checkLevel(level);
  // Throws "could not convert calendar time to local time" on failure.
  const boost::posix_time::ptime now = boost::posix_time::microsec_clock::local_time();
  return formatLogLine(now, sys::threadId(), level, logger, message);
}

void Logger::Impl::write(Level::type eventLevel, const std::string& message) const {
  if (sinks.empty()) return;
  const LogEvent event{buildLogLine(eventLevel, name, message), eventLevel};
  for (const SinkInfo& info : sinks) {
    if (info.level <= eventLevel) info.sink->write(event);
  }
}

Logger Logger::getLogger(const char* name) {
  LoggerMapWrapper& wrapper = ProcessSingleton<LoggerMapWrapper>::get();
  std::lock_guard<std::mutex> lock(wrapper.tableLock);
  if (name == nullptr) LUMO_THROW_NO_TRACE(std::runtime_error("Invalid logger name: <NULL>"));
  const std::string key(name);
  auto it = wrapper.table.find(key);
  if (it != wrapper.table.end()) return handleOf(it->second);
  if (!boost::regex_match(key, wrapper.nameExpression)) {
    LUMO_THROW_NO_TRACE(std::runtime_error("Invalid logger name: \"" + key + "\""));
  }
  auto made = boost::make_shared<lifetime_wrapper<Impl>>(wrapper.settings.lookup(key));
  wrapper.table.emplace(key, made);
  return handleOf(made);
}

bool Logger::isEnabled(Level::type level) const {
  checkLevel(level);
  return impl_->level <= level;
}

void Logger::log(Level::type level, const char* message) const {
  if (isEnabled(level)) impl_->write(level, std::string(message));
}

void Logger::log(Level::type level, const std::string& message) const {
  impl_->write(level, message);
}

const std::string& Logger::name() const { return impl_->name; }

}  // namespace logging
}  // namespace lumo
