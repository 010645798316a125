// ProcessSingleton<T>: one instance of T per process, made lazily and
// thread-safely by the first get(), destroyed at process exit in the reverse
// order of creation of such objects, and never made again afterwards.
//
// Invariants:
//   1. At most one T is ever constructed by get() (a construction that throws
//      leaves nothing behind, and the next get() tries again).
//   2. Once destruction of the T has begun, get() throws and alive() is null.
//
// One copy of this library serves every caller of the process (its symbols
// are not exported), so a function-local static is the process-wide instance.
//
// Thread-safety: thread-safe.
#ifndef KORA_LOGGING_PROCESS_SINGLETON_H_
#define KORA_LOGGING_PROCESS_SINGLETON_H_

#include <atomic>
#include <boost/interprocess/exceptions.hpp>
#include <string>
#include <typeinfo>

#include "sys/throw.h"

namespace lumo {
namespace logging {

template <class T>
class ProcessSingleton {
 public:
  // The instance, created on first call. Throws
  // boost::interprocess::interprocess_exception "Boost.Interprocess: Dead
  // reference on non-Phoenix singleton of type<type name>" after destruction.
  static T& get() {
    if (dead().load(std::memory_order_acquire)) throwDead();
    static Holder holder;
    if (dead().load(std::memory_order_acquire)) throwDead();
    return holder.value;
  }

  // The instance if it exists and is not being destroyed; null otherwise.
  // Creates nothing.
  static T* alive() {
    if (dead().load(std::memory_order_acquire)) return nullptr;
    return instance().load(std::memory_order_acquire);
  }

 private:
  struct Holder {
    Holder() { instance().store(&value, std::memory_order_release); }
    ~Holder() {
      dead().store(true, std::memory_order_release);
      instance().store(nullptr, std::memory_order_release);
    }
    T value;
  };

  // Trivially destructible, constant-initialised: valid for the whole run,
  // including static destruction.
  static std::atomic<bool>& dead() {
    static std::atomic<bool> flag{false};
    return flag;
  }
  static std::atomic<T*>& instance() {
    static std::atomic<T*> pointer{nullptr};
    return pointer;
  }

  [[noreturn]] static void throwDead() {
    const std::string text =
        std::string("Boost.Interprocess: Dead reference on non-Phoenix singleton of type") +
        typeid(T).name();
    LUMO_THROW_NO_TRACE(boost::interprocess::interprocess_exception(text.c_str()));
  }
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_PROCESS_SINGLETON_H_
