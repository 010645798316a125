// A failing export logs its exception, with the stack trace of the throw, at
// DEBUG. This program configures the library's logging through the document
// hook (it is linked with -rdynamic): root DEBUG into a rolling file in a
// temporary directory.
#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "koradata.h"

namespace {

namespace fs = boost::filesystem;

const fs::path& logDirectory() {
  static const fs::path dir = fs::temp_directory_path() / fs::unique_path("kora-api-log-%%%%%%%%");
  return dir;
}

std::string logText() {
  std::ifstream in((logDirectory() / "api.log").string());
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf(std::string* out) {
  *out = "<lumo-logconf><sink name='file' class='lumo.logging.RollingFileSink'><file-path>" +
         (logDirectory() / "api.log").string() +
         "</file-path></sink><root level='DEBUG'><sink ref='file'/></root></lumo-logconf>";
}

TEST(ApiLogging, FailingOpenLogsExceptionWithStackTraceAtDebug) {
  const fs::path missing = logDirectory() / "no-such-analysis.d";
  EXPECT_EQ(0u, kora_open(missing.c_str(), 0));
  char error[256] = {0};
  kora_get_last_error_string(error, sizeof error);
  EXPECT_STREQ("Specified analysis directory does not exist.", error);

  const std::string log = logText();
  fs::remove_all(logDirectory());
  const std::size_t at = log.find(
      "[DEBUG] lumo.io.koradata_dll: Caught std::exception with "
      "boost::diagnostic_information = \n");
  ASSERT_NE(std::string::npos, at) << log;
  const std::string entry = log.substr(at);
  EXPECT_NE(std::string::npos,
            entry.find("std::exception::what: Specified analysis directory does not exist."))
      << entry;
  // At least one resolved frame of the library itself.
  EXPECT_TRUE(std::regex_search(
      entry,
      std::regex(
          "\n0x[0-9a-f]+: [^\n]+ at line [^\n]+ in [^\n]+ in [^\n]*libkoradata\\.so[^\n]*\n")))
      << entry;
}
