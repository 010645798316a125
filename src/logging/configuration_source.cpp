// Finding the configuration document: hooks exported by the host executable,
// files beside the executable, the built-in document. Every failure falls
// back to the next source; only a broken built-in document ends the process.
//
// On this platform the hooks are looked up with dlsym on the handle of the
// main program (dlopen(nullptr)); a host must export them (e.g. link with
// -rdynamic) as extern "C" functions.
#include <dlfcn.h>

#include <boost/filesystem.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <exception>
#include <fstream>
#include <sstream>

#include "logging/diagnostic.h"
#include "logging/logger_settings.h"
#include "sys/environment.h"

namespace lumo {
namespace logging {
namespace {

using boost::property_tree::ptree;
namespace fs = boost::filesystem;

// The handle of the main program, for looking up the host's hooks.
class SelfHolder : boost::noncopyable {
 public:
  SelfHolder() : handle_(dlopen(nullptr, RTLD_LAZY)) {
    if (handle_ == nullptr) {
      LUMO_REPORT_DIAGNOSTIC(2, "Could not acquire handle to executable\n");
      LUMO_REPORT_DIAGNOSTIC(
          2,
          "self_loader could not be initialized. Any attempts to load the initializer functions "
          "\"lumo_logging_get_logconf\" or \"lumo_logging_get_logconf_path\" will fail\n");
    }
  }
  ~SelfHolder() {
    if (handle_) dlclose(handle_);
  }

  ConfigurationHook hook(const char* name) const {
    if (handle_ == nullptr) return nullptr;
    return reinterpret_cast<ConfigurationHook>(dlsym(handle_, name));
  }

 private:
  void* handle_;
};

boost::optional<ptree> tryFile(const fs::path& path) {
  boost::system::error_code ec;
  if (!fs::exists(path, ec)) return boost::none;
  std::ifstream in(path.string());
  if (!in) return boost::none;
  return LoggerSettings::Impl::try_safe_load_xml(in);
}

[[noreturn]] void terminateWithoutConfiguration() {
  LUMO_REPORT_DIAGNOSTIC(2, "Default configuration could not be loaded - program terminate\n");
  std::terminate();
}

ptree builtInDocument() {
  std::istringstream in(kBuiltInConfiguration);
  boost::optional<ptree> document = LoggerSettings::Impl::try_safe_load_xml(in);
  if (!document) terminateWithoutConfiguration();
  return *document;
}

}  // namespace

boost::optional<ptree> LoggerSettings::Impl::try_safe_load_xml(std::istream& in) {
  try {
    ptree document;
    boost::property_tree::read_xml(in, document);
    return document;
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTION("lumo-logconf configuration could not be parsed");
    return boost::none;
  }
}

boost::optional<ptree> LoggerSettings::Impl::try_safe_conf_xml_load(ConfigurationHook hook) {
  try {
    std::string text;
    hook(&text);
    if (text.empty()) return boost::none;
    std::istringstream in(text);
    return try_safe_load_xml(in);
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTION("lumo_logging_get_logconf failure");
    return boost::none;
  }
}

boost::optional<ptree> LoggerSettings::Impl::try_safe_conf_path_load(ConfigurationHook hook) {
  try {
    std::string text;
    hook(&text);
    if (text.empty()) return boost::none;
    const fs::path path(text);  // UTF-8, the native narrow encoding here
    std::ifstream in(path.string());
    if (!in) {
      LUMO_REPORT_DIAGNOSTIC(
          2, ("lumo_logging_get_logconf_path returned a file path that cannot be opened: " +
              path.string() + "\n")
                 .c_str());
      return boost::none;
    }
    return try_safe_load_xml(in);
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTION("lumo_logging_get_logconf_path failure");
    return boost::none;
  }
}

ptree LoggerSettings::Impl::find_configuration() {
  {
    const SelfHolder self;
    if (ConfigurationHook hook = self.hook("lumo_logging_get_logconf")) {
      if (boost::optional<ptree> document = try_safe_conf_xml_load(hook)) return *document;
    }
    if (ConfigurationHook hook = self.hook("lumo_logging_get_logconf_path")) {
      if (boost::optional<ptree> document = try_safe_conf_path_load(hook)) return *document;
    }
  }
  fs::path executable;
  try {
    executable = sys::executablePath();
  } catch (const std::exception&) {
    // Without the executable's path there are no files beside it to try.
  }
  if (!executable.empty()) {
    if (boost::optional<ptree> document = tryFile(executable.string() + "-lumo-logconf.xml")) {
      return *document;
    }
    if (boost::optional<ptree> document = tryFile(executable.parent_path() / "lumo-logconf.xml")) {
      return *document;
    }
  }
  return builtInDocument();
}

void LoggerSettings::Impl::try_parse_configuration(LoggerSettings& settings,
                                                   const ptree& document) {
  try {
    parse_configuration(settings, document);
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTION(
        "XML analysis error: The resulting configuration is unusable - Falling back to default "
        "configuration");
    parse_configuration(settings, builtInDocument());
  }
}

}  // namespace logging
}  // namespace lumo
