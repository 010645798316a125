// The calling thread's last error text of the library, whole. For tests only.
#ifndef KORA_TESTING_LAST_ERROR_H_
#define KORA_TESTING_LAST_ERROR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "koradata.h"

namespace kora_testing {

inline std::string lastError() {
  const uint32_t size = kora_get_last_error_string(nullptr, 0);
  std::vector<char> buf(size);
  kora_get_last_error_string(buf.data(), size);
  return std::string(buf.data());
}

}  // namespace kora_testing

#endif  // KORA_TESTING_LAST_ERROR_H_
