// A loadable module for module_lifetime_test: logging code inside a shared
// object.
#include "logging/logger.h"
#include "logging/module_lifetime.h"

// Makes a logger from inside the module; 1 when it works.
extern "C" __attribute__((visibility("default"))) int kora_test_make_logger() {
  return lumo::logging::Logger::getLogger("lumo.test.Pinned").isEnabled(lumo::logging::Level::FATAL)
             ? 1
             : 0;
}

// 1 when a pin made by the module's code holds nothing.
extern "C" __attribute__((visibility("default"))) int kora_test_pin_is_empty() {
  const lumo::logging::ModulePin pin;
  return pin.empty() ? 1 : 0;
}
