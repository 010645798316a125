// Expansion of the variables of a log file path.
//
//   ${exe.home}       directory of the executable
//   ${user.home}      the user's home directory
//   ${user.data.home} the per-user application data directory
//   ${pid}            the process number in decimal
//   ${xpid}           the process number in lower-case hex
//   ${env:NAME}       the environment variable NAME, empty when not set
//
// Paths are UTF-8 (the native narrow encoding here), so expansion works on
// the narrow text.
#ifndef KORA_LOGGING_PATH_EXPANSION_H_
#define KORA_LOGGING_PATH_EXPANSION_H_

#include <string>

namespace lumo {
namespace logging {

// Replaces variables from the start of `path`, rescanning from position 0
// after every replacement (a value may hold variables; a variable whose value
// names itself never ends). Scanning stops at a "$" not followed by "{", or
// a "${" with no "}" behind it; an unknown variable stays. Throws
// boost::system::system_error when a needed home directory is unknown.
std::string expandPathVariables(std::string path);

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_PATH_EXPANSION_H_
