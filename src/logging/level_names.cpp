#include "logging/level_names.h"

#include <cassert>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace {
const char* const kNames[] = {"TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL"};
}  // namespace

void checkLevel(Level::type level) {
  if (level < Level::TRACE || level > Level::FATAL) {
    LUMO_THROW_NO_TRACE(std::runtime_error(
        "Invalid logging level (ordinal value: " + std::to_string(static_cast<int>(level)) + ")"));
  }
}

const char* levelName(Level::type level) {
  assert(level >= Level::TRACE && level <= Level::FATAL);
  return kNames[level];
}

boost::optional<Level::type> parseLevel(const std::string& name) {
  for (int i = Level::TRACE; i <= Level::FATAL; ++i) {
    if (name == kNames[i]) return static_cast<Level::type>(i);
  }
  return boost::none;
}

}  // namespace logging
}  // namespace lumo
