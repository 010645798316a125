#include "sys/environment.h"

#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <boost/system/system_error.hpp>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "sys/throw.h"

namespace lumo {
namespace sys {
namespace {

// getenv returns storage shared by the whole process.
std::mutex& environmentMutex() {
  static std::mutex mutex;
  return mutex;
}

[[noreturn]] void throwSystemError(int error, const char* what) {
  LUMO_THROW_NO_TRACE(boost::system::system_error(error, boost::system::system_category(), what));
}

// The home directory from the password database; empty if it has none.
std::string passwordDatabaseHome() {
  long size = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
  struct passwd entry;
  struct passwd* found = nullptr;
  while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (found == nullptr || found->pw_dir == nullptr) return std::string();
  return found->pw_dir;
}

}  // namespace

boost::optional<std::string> environmentVariable(const std::string& name) {
  std::lock_guard<std::mutex> lock(environmentMutex());
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return boost::none;
  return std::string(value);
}

boost::filesystem::path executablePath() {
  // readlink does not terminate and does not say whether it cut the path:
  // a result that fills the buffer is retried with twice the room.
  std::vector<char> buffer(260);
  for (;;) {
    const ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (n <= 0) throwSystemError(n < 0 ? errno : ENOENT, "Executable path could not be determined");
    if (static_cast<std::size_t>(n) < buffer.size()) {
      return boost::filesystem::path(std::string(buffer.data(), static_cast<std::size_t>(n)));
    }
    buffer.resize(buffer.size() * 2);
  }
}

boost::filesystem::path userHome() {
  boost::optional<std::string> home = environmentVariable("HOME");
  std::string path = home ? *home : std::string();
  if (path.empty()) path = passwordDatabaseHome();
  if (path.empty()) throwSystemError(ENOENT, "User home directory could not be determined");
  return boost::filesystem::path(path);
}

boost::filesystem::path userDataHome() {
  // XDG Base Directory rules: a relative $XDG_DATA_HOME is to be ignored.
  boost::optional<std::string> dataHome = environmentVariable("XDG_DATA_HOME");
  if (dataHome && !dataHome->empty() && (*dataHome)[0] == '/') {
    return boost::filesystem::path(*dataHome);
  }
  boost::filesystem::path home;
  try {
    home = userHome();
  } catch (const boost::system::system_error& e) {
    throwSystemError(e.code().value(), "User data home directory could not be determined");
  }
  return home / ".local" / "share";
}

std::uint32_t processId() { return static_cast<std::uint32_t>(getpid()); }

std::uint32_t threadId() { return static_cast<std::uint32_t>(syscall(SYS_gettid)); }

}  // namespace sys
}  // namespace lumo
