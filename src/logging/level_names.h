// Level names as they appear in configurations and log lines, and the range
// check of level numbers.
//
// Thread-safety: thread-safe (no state).
#ifndef KORA_LOGGING_LEVEL_NAMES_H_
#define KORA_LOGGING_LEVEL_NAMES_H_

#include <boost/optional.hpp>
#include <string>

#include "logging/level.h"

namespace lumo {
namespace logging {

// Throws std::runtime_error "Invalid logging level (ordinal value: N)" for a
// level outside TRACE..FATAL.
void checkLevel(Level::type level);

// "TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL".
// REQUIRES: level within TRACE..FATAL.
const char* levelName(Level::type level);

// The level of an exact, case-sensitive name; empty for any other text.
boost::optional<Level::type> parseLevel(const std::string& name);

// A boost::property_tree translator: node.get<Level::type>(path,
// LevelTranslator()) fails with the property tree's conversion error on any
// text that is not a level name.
struct LevelTranslator {
  typedef std::string internal_type;
  typedef Level::type external_type;
  boost::optional<Level::type> get_value(const std::string& text) const { return parseLevel(text); }
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LEVEL_NAMES_H_
