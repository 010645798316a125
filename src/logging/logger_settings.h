// LoggerSettings: the configuration of the process, read once, and the
// answer for each logger name.
//
// Document: the root element lumo-logconf with, in this order, <sink>
// elements (name, class, optional level, class-specific children), one <root>
// (level, <sink ref=".."/> children) and <logger> elements (name, optional
// level, optional <sink ref=".."/> children). A sink nothing refers to is
// never created.
//
// Thread-safety: built on one thread inside the creation of the logger table;
// read-only afterwards, so lookups are thread-safe.
#ifndef KORA_LOGGING_LOGGER_SETTINGS_H_
#define KORA_LOGGING_LOGGER_SETTINGS_H_

#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <boost/property_tree/ptree.hpp>
#include <iosfwd>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "logging/logger_impl.h"
#include "logging/sink.h"

namespace lumo {
namespace logging {

// The document used when no other source yields one: one ConsoleSink, root
// INFO.
extern const char kBuiltInConfiguration[];

// A host's hook: stores a document (or a path of one) in *out; empty means
// nothing to offer.
typedef void (*ConfigurationHook)(std::string* out);

class LoggerSettings : boost::noncopyable {
 public:
  struct LoggerEntry {
    Level::type level = Level::INFO;
    std::vector<SinkInfo> sinks;
    bool nullSink = false;  // the logger referred to lumo.logging.NullSink
  };

  struct Impl;

  // Empty settings: root INFO, no sinks. `consoleLock` is handed to every
  // console-type sink and must outlive them.
  explicit LoggerSettings(std::mutex* consoleLock) : consoleLock(consoleLock) {}

  // Finds the configuration and parses it (falling back to the built-in
  // document).
  void load();

  // The effective configuration of logger `name`: the level and sinks of the
  // longest configured prefix ending at a dot (or of the root), with the
  // threshold raised to the lowest threshold of the sinks.
  LoggerConfig lookup(const std::string& name) const;

  std::mutex* const consoleLock;
  std::map<std::string, LoggerEntry> loggers;
  Level::type rootLevel = Level::INFO;
  std::vector<SinkInfo> rootSinks;
  bool rootNullSink = false;
};

// The steps of reading a configuration; all static.
struct LoggerSettings::Impl {
  // The document of the first source that yields one: the hook
  // lumo_logging_get_logconf, the hook lumo_logging_get_logconf_path, the file
  // "<executable path>-lumo-logconf.xml", the file "lumo-logconf.xml" beside
  // the executable, the built-in document.
  static boost::property_tree::ptree find_configuration();
  // Empty (after a report) when the stream does not hold well-formed XML.
  static boost::optional<boost::property_tree::ptree> try_safe_load_xml(std::istream& in);
  static boost::optional<boost::property_tree::ptree> try_safe_conf_xml_load(
      ConfigurationHook hook);
  static boost::optional<boost::property_tree::ptree> try_safe_conf_path_load(
      ConfigurationHook hook);
  // parse_configuration; on failure, after a report, the built-in document.
  static void try_parse_configuration(LoggerSettings& settings,
                                      const boost::property_tree::ptree& document);
  // Throws std::runtime_error (or the property tree's errors) when the
  // document is unusable; `settings` is then partly filled.
  static void parse_configuration(LoggerSettings& settings,
                                  const boost::property_tree::ptree& document);
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LOGGER_SETTINGS_H_
