// The resident memory of this process, as the kernel reports it in
// /proc/self/status, for tests that check that a call leaves memory it has no
// use for untouched. Linux only. For tests only; not thread-safe.
#ifndef KORA_TESTING_RESIDENT_MEMORY_H_
#define KORA_TESTING_RESIDENT_MEMORY_H_

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace kora_testing {

// The value of a "<field>:   <n> kB" line of /proc/self/status, in bytes; 0
// when there is no such line.
inline uint64_t procStatusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.compare(0, field.size() + 1, field + ":") != 0) continue;
    std::istringstream value(line.substr(field.size() + 1));
    uint64_t kib = 0;
    value >> kib;
    return kib * 1024;
  }
  return 0;
}

// Bytes resident now.
inline uint64_t residentBytes() { return procStatusBytes("VmRSS"); }

// Anonymous bytes resident now: what allocations cost. Pages of mapped files
// (the program's own debug information, read when a thrown error's stack trace
// is symbolised) are left out.
inline uint64_t anonymousResidentBytes() { return procStatusBytes("RssAnon"); }

// True in a ThreadSanitizer build. Its runtime keeps per-allocation state in
// anonymous memory of its own, tens of megabytes for an allocation of
// gigabytes that the program never touches, so a budget on anonymous memory
// there measures the sanitizer rather than the code.
constexpr bool sanitizerCountsInAnonymousMemory() {
#if defined(__SANITIZE_THREAD__)
  return true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
  return true;
#else
  return false;
#endif
#else
  return false;
#endif
}

// The most bytes resident at once since the start or the last
// resetPeakResident().
inline uint64_t peakResidentBytes() { return procStatusBytes("VmHWM"); }

// Lowers the peak to what is resident now. Returns false where the kernel
// does not allow it.
inline bool resetPeakResident() {
  std::ofstream clear("/proc/self/clear_refs");
  clear << "5";
  clear.close();
  return static_cast<bool>(clear);
}

}  // namespace kora_testing

#endif  // KORA_TESTING_RESIDENT_MEMORY_H_
