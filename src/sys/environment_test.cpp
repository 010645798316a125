#include "sys/environment.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <boost/system/system_error.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace lumo {
namespace sys {
namespace {

namespace fs = boost::filesystem;

// Sets a variable for one test and restores it afterwards.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    if (old) old_ = std::string(old);
    if (value) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      setenv(name_, old_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

 private:
  const char* name_;
  boost::optional<std::string> old_;
};

TEST(EnvironmentVariable, UnsetEmptyAndSet) {
  ScopedEnv unset("KORA_TEST_UNSET_VARIABLE", nullptr);
  ScopedEnv empty("KORA_TEST_EMPTY_VARIABLE", "");
  ScopedEnv set("KORA_TEST_SET_VARIABLE", "value with blanks");
  EXPECT_FALSE(environmentVariable("KORA_TEST_UNSET_VARIABLE"));
  ASSERT_TRUE(environmentVariable("KORA_TEST_EMPTY_VARIABLE"));
  EXPECT_EQ("", *environmentVariable("KORA_TEST_EMPTY_VARIABLE"));
  EXPECT_EQ(std::string("value with blanks"),
            environmentVariable("KORA_TEST_SET_VARIABLE").value());
}

TEST(Directories, UserHomeFromHomeVariable) {
  ScopedEnv home("HOME", "/home/somebody");
  EXPECT_EQ(fs::path("/home/somebody"), userHome());
}

TEST(Directories, UserHomeFallsBackToPasswordDatabase) {
  ScopedEnv home("HOME", nullptr);
  const fs::path path = userHome();
  EXPECT_FALSE(path.empty());
  EXPECT_TRUE(path.is_absolute()) << path;
}

TEST(Directories, UserDataHome) {
  ScopedEnv home("HOME", "/home/somebody");
  {
    ScopedEnv xdg("XDG_DATA_HOME", "/srv/data");
    EXPECT_EQ(fs::path("/srv/data"), userDataHome());
  }
  {
    ScopedEnv xdg("XDG_DATA_HOME", nullptr);
    EXPECT_EQ(fs::path("/home/somebody/.local/share"), userDataHome());
  }
  {
    ScopedEnv xdg("XDG_DATA_HOME", "relative/is/ignored");
    EXPECT_EQ(fs::path("/home/somebody/.local/share"), userDataHome());
  }
}

TEST(ProcessAndThread, OperatingSystemNumbers) {
  EXPECT_EQ(static_cast<std::uint32_t>(getpid()), processId());
  EXPECT_EQ(processId(), threadId());  // the main thread of the test
  std::uint32_t other = 0;
  std::thread t([&other] { other = threadId(); });
  t.join();
  EXPECT_NE(0u, other);
  EXPECT_NE(threadId(), other);
}

// Run as a child: prints the executable path between markers.
TEST(ExecutablePath, PrintForParent) {
  if (!std::getenv("KORA_TEST_PRINT_EXECUTABLE")) GTEST_SKIP();
  std::printf("<<%s>>\n", executablePath().string().c_str());
}

TEST(ExecutablePath, IsTheRunningProgram) {
  const fs::path path = executablePath();
  EXPECT_TRUE(path.is_absolute());
  EXPECT_EQ(fs::canonical("/proc/self/exe"), path);
}

TEST(ExecutablePath, LongerThan260CharactersIsReturnedWhole) {
  const fs::path root = fs::temp_directory_path() / fs::unique_path("kora-exe-%%%%%%%%");
  fs::path dir = root;
  for (int i = 0; i < 8; ++i) dir /= std::string(60, static_cast<char>('a' + i));
  fs::create_directories(dir);
  const fs::path copy = dir / "copy_of_test";
  fs::copy_file(executablePath(), copy);
  ASSERT_GT(copy.string().size(), 500u);
  const std::string command = "KORA_TEST_PRINT_EXECUTABLE=1 '" + copy.string() +
                              "' --gtest_filter=ExecutablePath.PrintForParent";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(nullptr, pipe);
  std::string output;
  char buffer[1024];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
  EXPECT_EQ(0, pclose(pipe));
  fs::remove_all(root);
  EXPECT_NE(std::string::npos, output.find("<<" + copy.string() + ">>")) << output;
}

}  // namespace
}  // namespace sys
}  // namespace lumo
