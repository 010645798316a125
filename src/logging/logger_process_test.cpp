// The process-wide logger table and how a process finds its configuration.
// Each configuration is fixed once per process, so every scenario runs a
// child case of this executable in a fresh process. The executable exports
// the two configuration hooks (it is linked with -rdynamic); they answer from
// environment variables of the child.
#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <regex>
#include <stdexcept>

#include "logging/child_process_for_test.h"
#include "logging/log_stream.h"
#include "logging/logger.h"
#include "sys/environment.h"

// The document in the file named by KORA_TEST_LOGCONF_FILE.
extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf(std::string* out) {
  if (const char* file = std::getenv("KORA_TEST_LOGCONF_FILE")) {
    *out = lumo::testing_support::readWholeFile(file);
  }
}

// The path in KORA_TEST_LOGCONF_PATH.
extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf_path(
    std::string* out) {
  if (const char* path = std::getenv("KORA_TEST_LOGCONF_PATH")) *out = path;
}

namespace lumo {
namespace logging {
namespace {

namespace fs = boost::filesystem;
using testing_support::ChildRun;
using testing_support::runChild;

// ---- Child cases ---------------------------------------------------------

TEST(Child, LogLines) {
  KORA_SKIP_UNLESS_CHILD();
  std::printf("PID=%x\n", static_cast<unsigned>(getpid()));
  std::fflush(stdout);
  const Logger logger = Logger::getLogger("lumo.test.Child");
  LogStream(logger, Level::TRACE) << "trace line";
  LogStream(logger, Level::DEBUG) << "debug line";
  LogStream(logger, Level::INFO) << "info line " << 42;
  LogStream(logger, Level::WARN) << "warn line";
}

TEST(Child, AsyncFlood) {
  KORA_SKIP_UNLESS_CHILD();
  // No handle is released and nothing is stopped: the exit drains the queue.
  static const Logger logger = Logger::getLogger("lumo.test.Flood");
  for (int i = 0; i < 10000; ++i) LogStream(logger, Level::INFO) << "event " << i;
}

// Made before the logger table, so destroyed after it: asks for a logger at
// process exit, when the table is gone.
struct LateRequest {
  ~LateRequest() {
    try {
      Logger::getLogger("lumo.test.Late");
      std::fputs("LATE: no error\n", stderr);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "LATE: %s\n", e.what());
    }
  }
};

TEST(Child, RequestAfterExit) {
  KORA_SKIP_UNLESS_CHILD();
  static LateRequest late;
  LogStream(Logger::getLogger("lumo.test.Child"), Level::INFO) << "before exit";
}

// ---- Helpers ---------------------------------------------------------------

class TempDir {
 public:
  TempDir() : path_(fs::temp_directory_path() / fs::unique_path("kora-logconf-%%%%%%%%")) {
    fs::create_directories(path_);
  }
  ~TempDir() { fs::remove_all(path_); }
  const fs::path& path() const { return path_; }
  fs::path write(const std::string& name, const std::string& text) const {
    std::ofstream((path_ / name).string()) << text;
    return path_ / name;
  }

 private:
  fs::path path_;
};

std::string lineOf(const std::string& level, const std::string& message) {
  return "[" + level + "] lumo.test.Child: " + message + "\n";
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

int count(const std::string& text, const std::string& part) {
  int n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

const char kStdOutTrace[] =
    "<lumo-logconf><sink name='out' class='lumo.logging.StdOutSink'/>"
    "<root level='TRACE'><sink ref='out'/></root></lumo-logconf>";

// ---- In this process: the built-in configuration ------------------------

TEST(LoggerTable, SameNameGivesOneLogger) {
  const Logger a = Logger::getLogger("lumo.test.Same");
  const Logger b = Logger::getLogger("lumo.test.Same");
  EXPECT_EQ(&a.name(), &b.name());
  EXPECT_EQ("lumo.test.Same", a.name());
  EXPECT_TRUE(a.isEnabled(Level::INFO));
  EXPECT_FALSE(a.isEnabled(Level::DEBUG));
}

TEST(LoggerTable, NameRules) {
  for (const char* bad : {"9lives", "a..b", "a.", ".a", "", "a b", "a.9"}) {
    try {
      Logger::getLogger(bad);
      ADD_FAILURE() << bad;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ("Invalid logger name: \"" + std::string(bad) + "\"", e.what());
    }
  }
  try {
    Logger::getLogger(nullptr);
    ADD_FAILURE();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Invalid logger name: <NULL>", e.what());
  }
  EXPECT_EQ("a-b_c.D9", Logger::getLogger("a-b_c.D9").name());
}

// ---- Fresh processes -------------------------------------------------------

TEST(LoggerTable, NoResurrectionAfterProcessWideDestruction) {
  const ChildRun run = runChild(sys::executablePath(), "Child.RequestAfterExit");
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_TRUE(contains(run.out, lineOf("INFO ", "before exit")));
  EXPECT_TRUE(contains(run.err,
                       "LATE: Boost.Interprocess: Dead reference on non-Phoenix singleton of type"))
      << run.err;
  EXPECT_TRUE(contains(run.err, "LoggerMapWrapper")) << run.err;
}

TEST(Configuration, BuiltInWhenNoHookAndNoFile) {
  const ChildRun run = runChild(sys::executablePath(), "Child.LogLines");
  ASSERT_EQ(0, run.exitCode) << run.out << run.err;
  std::smatch pid;
  ASSERT_TRUE(std::regex_search(run.out, pid, std::regex("PID=([0-9a-f]+)\n")));
  // INFO to standard output, WARN to standard error, nothing below INFO.
  const std::regex infoLine(
      "\n[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6} \\[tid=0x" +
      pid[1].str() + "\\] \\[INFO \\] lumo\\.test\\.Child: info line 42\n");
  EXPECT_TRUE(std::regex_search(run.out, infoLine)) << run.out;
  EXPECT_TRUE(contains(run.err, lineOf("WARN ", "warn line"))) << run.err;
  EXPECT_FALSE(contains(run.out + run.err, "debug line"));
  EXPECT_FALSE(contains(run.err, ">>>>>>>>")) << run.err;
}

TEST(Configuration, DocumentHook) {
  TempDir dir;
  const ChildRun run =
      runChild(sys::executablePath(), "Child.LogLines",
               {{"KORA_TEST_LOGCONF_FILE", dir.write("conf.xml", kStdOutTrace).string()}});
  ASSERT_EQ(0, run.exitCode) << run.err;
  const std::size_t trace = run.out.find(lineOf("TRACE", "trace line"));
  const std::size_t debug = run.out.find(lineOf("DEBUG", "debug line"));
  const std::size_t warn = run.out.find(lineOf("WARN ", "warn line"));
  ASSERT_NE(std::string::npos, trace) << run.out;
  EXPECT_LT(trace, debug);
  EXPECT_LT(debug, warn);
  EXPECT_NE(std::string::npos, warn);
  EXPECT_EQ("", run.err);
}

TEST(Configuration, DocumentHookWithBrokenXmlFallsToPathHook) {
  TempDir dir;
  const ChildRun run =
      runChild(sys::executablePath(), "Child.LogLines",
               {{"KORA_TEST_LOGCONF_FILE", dir.write("broken.xml", "<lumo-logconf><sink").string()},
                {"KORA_TEST_LOGCONF_PATH", dir.write("conf.xml", kStdOutTrace).string()}});
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_EQ(1, count(run.err, "lumo-logconf configuration could not be parsed:\n")) << run.err;
  EXPECT_TRUE(contains(run.out, lineOf("DEBUG", "debug line"))) << run.out;
}

TEST(Configuration, PathHookThatCannotBeOpened) {
  const ChildRun run = runChild(sys::executablePath(), "Child.LogLines",
                                {{"KORA_TEST_LOGCONF_PATH", "/nonexistent/kora/conf.xml"}});
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_TRUE(contains(run.err,
                       "] - lumo_logging_get_logconf_path returned a file path that cannot be "
                       "opened: /nonexistent/kora/conf.xml\n"))
      << run.err;
  EXPECT_TRUE(contains(run.out, lineOf("INFO ", "info line 42")));  // built-in
  EXPECT_FALSE(contains(run.out, "debug line"));
}

class FilesBesideExecutable : public ::testing::Test {
 protected:
  FilesBesideExecutable() : copy_(dir_.path() / "tool") {
    fs::copy_file(sys::executablePath(), copy_);
  }
  TempDir dir_;
  fs::path copy_;
};

const char kStdErrDebug[] =
    "<lumo-logconf><sink name='err' class='lumo.logging.StdErrSink'/>"
    "<root level='DEBUG'><sink ref='err'/></root></lumo-logconf>";

TEST_F(FilesBesideExecutable, NamedAfterProgramComesFirst) {
  dir_.write("tool-lumo-logconf.xml", kStdOutTrace);
  dir_.write("lumo-logconf.xml", kStdErrDebug);
  const ChildRun run = runChild(copy_, "Child.LogLines");
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_TRUE(contains(run.out, lineOf("TRACE", "trace line"))) << run.out;
}

TEST_F(FilesBesideExecutable, InvalidXmlLeadsToNextFile) {
  dir_.write("tool-lumo-logconf.xml", "<lumo-logconf><sink name='x'");
  dir_.write("lumo-logconf.xml", kStdErrDebug);
  const ChildRun run = runChild(copy_, "Child.LogLines");
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_EQ(1, count(run.err, ">>>>>>>>|- ERROR in [lumo-logconf:")) << run.err;
  EXPECT_TRUE(contains(run.err, "] - lumo-logconf configuration could not be parsed:\n"));
  EXPECT_TRUE(contains(run.err, lineOf("DEBUG", "debug line"))) << run.err;
  EXPECT_TRUE(contains(run.err, lineOf("INFO ", "info line 42")));
  EXPECT_FALSE(contains(run.out, "info line"));
}

TEST_F(FilesBesideExecutable, WellFormedButUnusableStopsTheSearch) {
  dir_.write("tool-lumo-logconf.xml",
             "<lumo-logconf><sink name='err' class='lumo.logging.StdErrSink'/></lumo-logconf>");
  dir_.write("lumo-logconf.xml", kStdErrDebug);
  const ChildRun run = runChild(copy_, "Child.LogLines");
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_TRUE(contains(run.err,
                       "] - XML analysis error: The resulting configuration is unusable - "
                       "Falling back to default configuration:\n"))
      << run.err;
  EXPECT_TRUE(contains(run.err, "No <root> element found"));
  // The built-in document, not the second file.
  EXPECT_TRUE(contains(run.out, lineOf("INFO ", "info line 42"))) << run.out;
  EXPECT_FALSE(contains(run.err, "debug line"));
}

TEST(Configuration, AsyncSinkDrainsIntoRollingFileAtExit) {
  TempDir dir;
  const fs::path log = dir.path() / "logs" / "flood.log";
  const std::string document =
      "<lumo-logconf>"
      "<sink name='file' class='lumo.logging.RollingFileSink'>"
      "<file-path>" +
      (dir.path() / "logs" / "${env:KORA_TEST_LOG_NAME}").string() +
      "</file-path><max-file-size>0</max-file-size></sink>"
      "<sink name='async' class='lumo.logging.AsyncSink'><sink ref='file'/></sink>"
      "<root level='INFO'><sink ref='async'/></root></lumo-logconf>";
  const ChildRun run =
      runChild(sys::executablePath(), "Child.AsyncFlood",
               {{"KORA_TEST_LOGCONF_FILE", dir.write("conf.xml", document).string()},
                {"KORA_TEST_LOG_NAME", "flood.log"}});
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_EQ("", run.err);
  std::ifstream in(log.string());
  std::string line;
  int n = 0;
  while (std::getline(in, line)) {
    const std::string expected = "] [INFO ] lumo.test.Flood: event " + std::to_string(n);
    ASSERT_EQ(line.size() - expected.size(), line.rfind(expected)) << line;
    ++n;
  }
  EXPECT_EQ(10000, n);
}

TEST(Configuration, ExampleDocument) {
  TempDir dir;
  const ChildRun run = runChild(
      sys::executablePath(), "Child.LogLines",
      {{"KORA_TEST_LOGCONF_PATH", std::string(KORA_SOURCE_DIR) + "/examples/lumo-logconf.xml"},
       {"XDG_DATA_HOME", dir.path().string()}});
  ASSERT_EQ(0, run.exitCode) << run.err;
  EXPECT_FALSE(contains(run.err, ">>>>>>>>")) << run.err;
  EXPECT_TRUE(contains(run.err, lineOf("WARN ", "warn line")));  // the console at WARN
  EXPECT_FALSE(contains(run.out, "info line"));
  const std::string file =
      testing_support::readWholeFile(dir.path() / "koradata" / "logs" / "koradata.log");
  EXPECT_TRUE(contains(file, lineOf("INFO ", "info line 42"))) << file;
  EXPECT_TRUE(contains(file, lineOf("WARN ", "warn line")));
  EXPECT_FALSE(contains(file, "debug line"));
}

}  // namespace
}  // namespace logging
}  // namespace lumo
