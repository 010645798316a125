#include "logging/module_lifetime.h"

#include <dlfcn.h>
#include <link.h>

#include <stdexcept>

#include "logging/diagnostic.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace {

// An address inside the module that holds this code.
void moduleMarker() {}

struct ContainsAddress {
  const char* address;
  bool found;
};

// True when `address` lies in a loaded segment of the main program, which
// dl_iterate_phdr reports first.
bool inMainProgram(const void* address) {
  ContainsAddress query{static_cast<const char*>(address), false};
  dl_iterate_phdr(
      [](struct dl_phdr_info* info, size_t, void* data) -> int {
        auto* q = static_cast<ContainsAddress*>(data);
        for (int i = 0; i < info->dlpi_phnum; ++i) {
          const ElfW(Phdr)& segment = info->dlpi_phdr[i];
          if (segment.p_type != PT_LOAD) continue;
          const char* start = reinterpret_cast<const char*>(info->dlpi_addr + segment.p_vaddr);
          if (q->address >= start && q->address < start + segment.p_memsz) q->found = true;
        }
        return 1;  // only the first entry, the main program
      },
      &query);
  return query.found;
}

[[noreturn]] void fail(const char* text) {
  LUMO_REPORT_DIAGNOSTIC(2, (std::string(text) + "\n").c_str());
  LUMO_THROW_NO_TRACE(std::runtime_error(text));
}

}  // namespace

void* ModulePin::aquire_handle() {
  void* executable = dlopen(nullptr, RTLD_LAZY);
  if (executable == nullptr) fail("Could not acquire executable handle");
  dlclose(executable);
  const void* marker = reinterpret_cast<const void*>(&moduleMarker);
  if (inMainProgram(marker)) return nullptr;
  Dl_info info;
  if (dladdr(marker, &info) == 0 || info.dli_fname == nullptr) {
    fail("Could not acquire current module handle");
  }
  // RTLD_NOLOAD finds the module already loaded and counts a reference.
  void* handle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) fail("Could not acquire current module handle");
  return handle;
}

// The reference is kept, not given back with dlclose. Pins are released only
// when the process-wide logger table is torn down at exit, and that runs in
// the destructors of the pinned module itself: dlclose there could drop the
// last reference and unmap the code that is running (seen with objects that
// have no STB_GNU_UNIQUE symbols, e.g. built by Clang). The module stays
// loaded until the process ends, which is what the pin promises.
void ModulePin::release_handle(void* handle) noexcept { (void)handle; }

}  // namespace logging
}  // namespace lumo
