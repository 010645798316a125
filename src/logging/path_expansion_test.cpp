#include "logging/path_expansion.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "sys/environment.h"

namespace lumo {
namespace logging {
namespace {

std::string pid() { return std::to_string(getpid()); }
std::string xpid() {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%x", static_cast<unsigned>(getpid()));
  return buffer;
}

TEST(PathExpansion, ProcessNumbers) {
  EXPECT_EQ("/tmp/run-" + pid() + "-" + xpid() + ".log",
            expandPathVariables("/tmp/run-${pid}-${xpid}.log"));
  EXPECT_EQ("/plain/path.log", expandPathVariables("/plain/path.log"));
}

TEST(PathExpansion, DirectoriesOfProgramAndUser) {
  setenv("HOME", "/home/tester", 1);
  setenv("XDG_DATA_HOME", "/data/tester", 1);
  EXPECT_EQ("/home/tester/logs", expandPathVariables("${user.home}/logs"));
  EXPECT_EQ("/data/tester/kora/a.log", expandPathVariables("${user.data.home}/kora/a.log"));
  EXPECT_EQ(sys::executablePath().parent_path().string() + "/x.log",
            expandPathVariables("${exe.home}/x.log"));
}

TEST(PathExpansion, EnvironmentVariables) {
  setenv("KORA_TEST_LOG_DIR", "/var/kora", 1);
  unsetenv("KORA_TEST_UNSET");
  EXPECT_EQ("/var/kora/a.log", expandPathVariables("${env:KORA_TEST_LOG_DIR}/a.log"));
  EXPECT_EQ("/a.log", expandPathVariables("${env:KORA_TEST_UNSET}/a.log"));
  // Seven characters: no variable.
  EXPECT_EQ("/x/${env:}/a.log", expandPathVariables("/x/${env:}/a.log"));
  // A value is scanned again.
  setenv("KORA_TEST_NESTED", "/run/${pid}", 1);
  EXPECT_EQ("/run/" + pid() + "/a.log", expandPathVariables("${env:KORA_TEST_NESTED}/a.log"));
}

TEST(PathExpansion, UnknownVariablesStayAndStopRules) {
  EXPECT_EQ("${foo}x" + pid(), expandPathVariables("${foo}x${pid}"));
  EXPECT_EQ("$x${pid}", expandPathVariables("$x${pid}"));
  EXPECT_EQ("a${pid", expandPathVariables("a${pid"));
  EXPECT_EQ("a$", expandPathVariables("a$"));
  EXPECT_EQ("${PID}", expandPathVariables("${PID}"));
}

}  // namespace
}  // namespace logging
}  // namespace lumo
