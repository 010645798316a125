#include "calibration_access/reader_test_log.h"

#include <boost/filesystem.hpp>
#include <fstream>
#include <sstream>

namespace kora_testing {
namespace {

const boost::filesystem::path& logFile() {
  static const boost::filesystem::path file =
      boost::filesystem::temp_directory_path() /
      boost::filesystem::unique_path("koradata-calibration-%%%%%%%%") / "readers.log";
  return file;
}

// Removes the log's directory when the program ends. Made after the path,
// so it is destroyed before it.
struct LogDirectoryRemover {
  const boost::filesystem::path& file = logFile();
  ~LogDirectoryRemover() {
    boost::system::error_code ec;
    boost::filesystem::remove_all(file.parent_path(), ec);
  }
} remover;

}  // namespace

std::string readerTestLog() {
  std::ifstream in(logFile().string());
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

size_t countLines(const std::string& log, const std::string& what) {
  size_t n = 0;
  for (size_t at = log.find(what); at != std::string::npos; at = log.find(what, at + 1)) ++n;
  return n;
}

}  // namespace kora_testing

extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf(std::string* out) {
  *out = "<lumo-logconf><sink name='file' class='lumo.logging.RollingFileSink'><file-path>" +
         kora_testing::logFile().string() +
         "</file-path><max-file-size>0</max-file-size></sink><root level='TRACE'><sink "
         "ref='file'/></root></lumo-logconf>";
}
