// Severity levels; the number is the order of severity and what is compared.
// There is no level that switches logging off.
#ifndef KORA_LOGGING_LEVEL_H_
#define KORA_LOGGING_LEVEL_H_

namespace lumo {
namespace logging {

struct Level {
  enum type : int { TRACE = 0, DEBUG = 1, INFO = 2, WARN = 3, ERROR = 4, FATAL = 5 };
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_LEVEL_H_
