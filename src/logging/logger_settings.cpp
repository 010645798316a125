// Parsing of a configuration document into LoggerSettings, creation of the
// sinks it refers to, and the level resolution of logger names.
#include "logging/logger_settings.h"

#include <boost/regex.hpp>
#include <cassert>
#include <stdexcept>

#include "logging/level_names.h"
#include "logging/sink_factory.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace {

using boost::property_tree::ptree;

[[noreturn]] void fail(const std::string& text) { LUMO_THROW_NO_TRACE(std::runtime_error(text)); }

// A <sink> element while the document is parsed.
struct SinkEntry {
  std::string className;
  const ptree* config = nullptr;
  SinkInfo info;
  bool created = false;
};
typedef std::map<std::string, SinkEntry> SinkTable;

// The context handed to sink factories: resolves references to other sinks
// of the same document, creating them on first use.
class MapSinkContext : public SinkContext {
 public:
  MapSinkContext(const ptree& config, LoggerSettings* settings, SinkTable* table)
      : SinkContext(config), settings_(settings), table_(table) {}

  SinkInfo get_sink_info(const std::string& name) const override;

 private:
  LoggerSettings* settings_;
  SinkTable* table_;
};

void createSink(SinkEntry& entry, LoggerSettings* settings, SinkTable* table) {
  if (entry.created) return;
  const SinkFactory factory = findSinkFactory(entry.className);
  assert(factory != nullptr);  // classes are checked when the entry is made
  MapSinkContext context(*entry.config, settings, table);
  entry.info.sink = factory(context, settings->consoleLock);
  entry.created = true;
}

SinkInfo MapSinkContext::get_sink_info(const std::string& name) const {
  auto it = table_->find(name);
  if (it == table_->end()) fail("Unknown <sink> reference '" + name + "'");
  createSink(it->second, settings_, table_);
  return it->second.info;
}

boost::optional<Level::type> optionalLevel(const ptree& node) {
  boost::optional<const ptree&> level = node.get_child_optional("<xmlattr>.level");
  if (!level) return boost::none;
  return level->get_value<Level::type>(LevelTranslator());
}

// The <sink ref=".."/> children of a <root> or <logger> element, appended to
// `sinks`; a null sink sets `nullSink`. Returns the number of references.
int readSinkReferences(const ptree& node, LoggerSettings* settings, SinkTable* table,
                       std::vector<SinkInfo>& sinks, bool& nullSink) {
  int count = 0;
  for (const ptree::value_type& child : node) {
    if (child.first != "sink") continue;
    ++count;
    const std::string ref = child.second.get<std::string>("<xmlattr>.ref");
    auto it = table->find(ref);
    if (it == table->end()) fail("Unknown <sink> reference '" + ref + "'");
    createSink(it->second, settings, table);
    if (it->second.info.sink) {
      sinks.push_back(it->second.info);
    } else {
      nullSink = true;
    }
  }
  return count;
}

}  // namespace

const char kBuiltInConfiguration[] =
    "<lumo-logconf><sink name=\"console\" class=\"lumo.logging.ConsoleSink\"/>"
    "<root level=\"INFO\"><sink ref=\"console\"/></root></lumo-logconf>";

void LoggerSettings::load() { Impl::try_parse_configuration(*this, Impl::find_configuration()); }

LoggerConfig LoggerSettings::lookup(const std::string& name) const {
  LoggerConfig config;
  config.name = name;
  config.level = rootLevel;
  const LoggerEntry* deciding = nullptr;
  if (!loggers.empty()) {
    std::string prefix = name;
    for (;;) {
      auto it = loggers.find(prefix);
      if (it != loggers.end()) {
        deciding = &it->second;
        break;
      }
      const std::size_t dot = prefix.rfind('.');
      if (dot == std::string::npos) break;
      prefix.erase(dot);
    }
  }
  if (deciding) {
    config.level = deciding->level;
    config.sinks = (!deciding->sinks.empty() || deciding->nullSink) ? deciding->sinks : rootSinks;
  } else {
    config.sinks = rootSinks;
  }
  Level::type lowestSink = Level::FATAL;
  for (const SinkInfo& info : config.sinks) {
    if (info.level < lowestSink) lowestSink = info.level;
  }
  if (lowestSink > config.level) config.level = lowestSink;
  return config;
}

void LoggerSettings::Impl::parse_configuration(LoggerSettings& settings, const ptree& document) {
  settings.rootLevel = Level::INFO;
  settings.rootSinks.clear();
  settings.rootNullSink = false;
  settings.loggers.clear();
  const boost::regex sinkName("[A-Za-z:.\\-_0-9]+");

  const ptree& top = document.get_child("lumo-logconf");
  SinkTable sinks;
  int sinkCount = 0;
  int loggerCount = 0;
  bool rootSeen = false;
  for (const ptree::value_type& child : top) {
    const ptree& node = child.second;
    if (child.first == "sink") {
      if (rootSeen) fail("<root> element before <sink> element");
      if (loggerCount > 0) fail("<logger> element before <sink> element");
      const std::string name = node.get<std::string>("<xmlattr>.name");
      if (!boost::regex_match(name, sinkName)) fail("Invalid sink name provided: '" + name + "'");
      SinkEntry entry;
      entry.info.level = optionalLevel(node).value_or(Level::TRACE);
      if (sinks.count(name)) fail("<sink> element with duplicate name '" + name + "' found");
      entry.className = node.get<std::string>("<xmlattr>.class");
      if (findSinkFactory(entry.className) == nullptr) {
        fail("<sink> element with unknown class attribute '" + entry.className + "'");
      }
      entry.config = &node;
      sinks.emplace(name, entry);
      ++sinkCount;
    } else if (child.first == "root") {
      if (rootSeen) fail("Duplicate <root> element found");
      if (sinkCount == 0) fail("No <sink> element before <root> element");
      rootSeen = true;
      settings.rootLevel = node.get<Level::type>("<xmlattr>.level", LevelTranslator());
      if (readSinkReferences(node, &settings, &sinks, settings.rootSinks, settings.rootNullSink) ==
          0) {
        fail("No <sink> reference within <root> element");
      }
    } else if (child.first == "logger") {
      if (!rootSeen) fail("No <root> element before <logger> element");
      if (sinkCount == 0) fail("No <sink> element before <logger> element");
      const std::string name = node.get<std::string>("<xmlattr>.name");
      if (settings.loggers.count(name)) {
        fail("<logger> element with duplicate name '" + name + "' found");
      }
      LoggerEntry entry;
      entry.level = optionalLevel(node).value_or(settings.rootLevel);
      readSinkReferences(node, &settings, &sinks, entry.sinks, entry.nullSink);
      settings.loggers.emplace(name, entry);
      ++loggerCount;
    }
  }
  if (sinkCount == 0) fail("No <sink> element found");
  if (!rootSeen) fail("No <root> element found");
}

}  // namespace logging
}  // namespace lumo
