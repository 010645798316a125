// The log of a calibration reader test program: the program exports the
// logging document hook, so every logger of the library writes at TRACE and
// above into one file of a temporary directory, which the tests read back.
#ifndef KORA_CALIBRATION_ACCESS_READER_TEST_LOG_H_
#define KORA_CALIBRATION_ACCESS_READER_TEST_LOG_H_

#include <cstddef>
#include <string>

namespace kora_testing {

// The whole log so far; a test takes its size before and the rest after.
std::string readerTestLog();

// How often `what` occurs in `log`.
size_t countLines(const std::string& log, const std::string& what);

}  // namespace kora_testing

#endif  // KORA_CALIBRATION_ACCESS_READER_TEST_LOG_H_
