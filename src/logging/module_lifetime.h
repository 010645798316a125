// Keeping loaded the module that made a logger: a logger made by code in a
// shared library would dangle if that library were unloaded while the
// process-wide logger table still holds it.
//
// On this platform the module holding this code is found with dladdr on an
// address in it and pinned with dlopen(RTLD_NOLOAD), which counts a
// reference; the main executable is never pinned.
#ifndef KORA_LOGGING_MODULE_LIFETIME_H_
#define KORA_LOGGING_MODULE_LIFETIME_H_

#include <boost/noncopyable.hpp>
#include <utility>

namespace lumo {
namespace logging {

// A reference on the module that holds the logging code; empty when that
// module is the executable. Thread-compatible: one thread at a time.
class ModulePin : boost::noncopyable {
 public:
  // Throws std::runtime_error "Could not acquire current module handle" or
  // "Could not acquire executable handle" (after reporting the same on the
  // diagnostic channel).
  ModulePin() : handle_(aquire_handle()) {}
  ~ModulePin() { release_handle(handle_); }

  bool empty() const { return handle_ == nullptr; }

 private:
  static void* aquire_handle();
  // Keeps the reference until the process ends (see the definition).
  static void release_handle(void* handle) noexcept;

  void* handle_;
};

// A T that keeps the module of the logging code loaded while it lives: the pin
// is made first and released last.
template <class T>
struct lifetime_wrapper : boost::noncopyable {
  template <class... Args>
  explicit lifetime_wrapper(Args&&... args) : value(std::forward<Args>(args)...) {}

  ModulePin pin;
  T value;
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_MODULE_LIFETIME_H_
