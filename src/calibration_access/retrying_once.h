// RetryingOnce: run a loader at most once to success, as std::call_once does.
//
// Contract (that of std::call_once):
//   1. The first call whose function returns normally marks the flag done;
//      every later call returns at once without running anything.
//   2. A call whose function throws leaves the flag unset and passes the
//      exception on; the next call runs the function again.
//   3. Concurrent callers wait for the one that runs; none runs twice.
//
// Thread-safe.
//
// Under ThreadSanitizer the flag is a mutex and a done bit instead of a
// std::once_flag: the sanitizer's pthread_once interceptor never releases a
// flag whose function threw, so rule 2 would turn into a hang of every later
// call. Every other build uses std::call_once itself.
#ifndef KORA_CALIBRATION_ACCESS_RETRYING_ONCE_H_
#define KORA_CALIBRATION_ACCESS_RETRYING_ONCE_H_

#include <mutex>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#define KORA_RETRYING_ONCE_WITH_MUTEX 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KORA_RETRYING_ONCE_WITH_MUTEX 1
#endif
#endif

namespace lumo {
namespace io {
namespace calibration {
namespace detail {

#if defined(KORA_RETRYING_ONCE_WITH_MUTEX)

class RetryingOnce {
 public:
  template <class Function>
  void call(Function&& function) {
    std::lock_guard<std::mutex> lock(mutex);
    if (done) return;
    function();
    done = true;
  }

 private:
  std::mutex mutex;
  bool done = false;
};

#else

class RetryingOnce {
 public:
  template <class Function>
  void call(Function&& function) {
    std::call_once(flag, std::forward<Function>(function));
  }

 private:
  std::once_flag flag;
};

#endif

}  // namespace detail
}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_RETRYING_ONCE_H_
