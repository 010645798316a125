// A logger made by code in a shared object pins that object; code in the
// executable pins nothing.
//
// (Whether the pinned object really stays loaded after dlclose can't be seen
// here: objects with STB_GNU_UNIQUE symbols, which the C++ and Boost headers
// bring, are never unloaded by the C library anyway.)
#include "logging/module_lifetime.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

TEST(ModulePin, EmptyInTheExecutable) {
  const lumo::logging::ModulePin pin;
  EXPECT_TRUE(pin.empty());
}

TEST(ModulePin, HeldInASharedObject) {
  void* handle = dlopen(KORA_PIN_MODULE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(nullptr, handle) << dlerror();
  auto pinIsEmpty = reinterpret_cast<int (*)()>(dlsym(handle, "kora_test_pin_is_empty"));
  auto makeLogger = reinterpret_cast<int (*)()>(dlsym(handle, "kora_test_make_logger"));
  ASSERT_NE(nullptr, pinIsEmpty);
  ASSERT_NE(nullptr, makeLogger);
  EXPECT_EQ(0, pinIsEmpty());
  EXPECT_EQ(1, makeLogger());
  dlclose(handle);
}

}  // namespace
