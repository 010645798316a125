#include "logging/path_expansion.h"

#include <boost/optional.hpp>
#include <cstdio>

#include "sys/environment.h"

namespace lumo {
namespace logging {
namespace {

// The value of a variable of the fixed table, or empty if `token` is none.
boost::optional<std::string> tableValue(const std::string& token) {
  if (token == "${exe.home}") return sys::executablePath().parent_path().string();
  if (token == "${user.home}") return sys::userHome().string();
  if (token == "${user.data.home}") return sys::userDataHome().string();
  if (token == "${pid}") return std::to_string(sys::processId());
  if (token == "${xpid}") {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%x", static_cast<unsigned>(sys::processId()));
    return std::string(buffer);
  }
  return boost::none;
}

}  // namespace

std::string expandPathVariables(std::string path) {
  std::size_t position = 0;
  for (;;) {
    const std::size_t dollar = path.find('$', position);
    if (dollar == std::string::npos) break;
    if (dollar + 1 >= path.size() || path[dollar + 1] != '{') break;
    const std::size_t close = path.find('}', dollar + 2);
    if (close == std::string::npos) break;
    const std::string token = path.substr(dollar, close - dollar + 1);
    if (boost::optional<std::string> value = tableValue(token)) {
      path.replace(dollar, token.size(), *value);
      position = 0;
    } else if (token.size() >= 8 && token.compare(0, 6, "${env:") == 0) {
      const std::string name = token.substr(6, token.size() - 7);
      path.replace(dollar, token.size(), sys::environmentVariable(name).value_or(std::string()));
      position = 0;
    } else {
      position = dollar + 1;
    }
  }
  return path;
}

}  // namespace logging
}  // namespace lumo
