// Test support: runs one test case of a test executable in a fresh process,
// for behaviour that is fixed once per process (the logging configuration).
//
// A child case starts with KORA_SKIP_UNLESS_CHILD(); the parent runs it with
// runChild and looks at its exit code and output.
#ifndef KORA_LOGGING_CHILD_PROCESS_FOR_TEST_H_
#define KORA_LOGGING_CHILD_PROCESS_FOR_TEST_H_

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#define KORA_SKIP_UNLESS_CHILD()                                 \
  do {                                                           \
    if (std::getenv("KORA_TEST_CHILD") == nullptr) GTEST_SKIP(); \
  } while (0)

namespace lumo {
namespace testing_support {

struct ChildRun {
  int exitCode = -1;
  std::string out;  // standard output
  std::string err;  // standard error
};

inline std::string readWholeFile(const boost::filesystem::path& path) {
  std::ifstream in(path.string(), std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

// Runs `executable --gtest_filter=<test>` with KORA_TEST_CHILD=1 and `env`
// added to this process's environment.
inline ChildRun runChild(const boost::filesystem::path& executable, const std::string& test,
                         const std::vector<std::pair<std::string, std::string>>& env = {}) {
  namespace fs = boost::filesystem;
  const fs::path outPath = fs::temp_directory_path() / fs::unique_path("kora-child-%%%%%%%%.out");
  const fs::path errPath = fs::temp_directory_path() / fs::unique_path("kora-child-%%%%%%%%.err");
  const std::string filter = "--gtest_filter=" + test;
  // Everything the child needs is made before fork: after it only
  // async-signal-safe calls run.
  std::vector<std::string> variables = {"KORA_TEST_CHILD=1"};
  for (const auto& variable : env) variables.push_back(variable.first + "=" + variable.second);
  for (char** e = environ; *e; ++e) variables.push_back(*e);  // first entry wins
  std::vector<char*> envp;
  for (std::string& v : variables) envp.push_back(&v[0]);
  envp.push_back(nullptr);
  char* argv[] = {const_cast<char*>(executable.c_str()), const_cast<char*>(filter.c_str()),
                  nullptr};
  const pid_t pid = fork();
  if (pid == 0) {
    const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(out, 1);
    dup2(err, 2);
    execve(executable.c_str(), argv, envp.data());
    _exit(127);
  }
  ChildRun run;
  int status = 0;
  if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status)) {
    run.exitCode = WEXITSTATUS(status);
  }
  run.out = readWholeFile(outPath);
  run.err = readWholeFile(errPath);
  boost::system::error_code ec;
  fs::remove(outPath, ec);
  fs::remove(errPath, ec);
  return run;
}

}  // namespace testing_support
}  // namespace lumo

#endif  // KORA_LOGGING_CHILD_PROCESS_FOR_TEST_H_
