// The process's environment and well-known directories.
//
// On this platform: the executable is read from /proc/self/exe, the user's
// home is $HOME (else the password database), the per-user data directory is
// $XDG_DATA_HOME (else ~/.local/share), and thread numbers are gettid().
//
// Thread-safety: thread-safe. environmentVariable serialises getenv under one
// process-wide lock; nothing here sets variables.
#ifndef KORA_SYS_ENVIRONMENT_H_
#define KORA_SYS_ENVIRONMENT_H_

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <string>

namespace lumo {
namespace sys {

// The value of the environment variable `name`; empty when it is not set.
// A variable set to nothing gives an empty string.
boost::optional<std::string> environmentVariable(const std::string& name);

// The absolute path of the running program, however long.
// Throws boost::system::system_error "Executable path could not be determined".
boost::filesystem::path executablePath();

// The user's home directory.
// Throws boost::system::system_error "User home directory could not be determined".
boost::filesystem::path userHome();

// The per-user application data directory.
// Throws boost::system::system_error "User data home directory could not be determined".
boost::filesystem::path userDataHome();

// The operating system's numbers of the process and of the calling thread.
std::uint32_t processId();
std::uint32_t threadId();

}  // namespace sys
}  // namespace lumo

#endif  // KORA_SYS_ENVIRONMENT_H_
