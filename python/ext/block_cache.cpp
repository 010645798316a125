#include "block_cache.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace koradata_py {
namespace detail {

struct Cache {
  std::mutex mutex;
  std::vector<void*> blocks;  // guarded by mutex
  size_t bytes = 0;           // usable bytes of `blocks`; guarded by mutex
};

Cache& cache() {
  // Never destroyed: capsules may free arrays while the interpreter exits.
  static Cache* c = new Cache;
  return *c;
}

}  // namespace detail

void* takeBlock(size_t bytes) {
  if (bytes < kMinCachedBytes) return nullptr;
  detail::Cache& c = detail::cache();
  std::lock_guard<std::mutex> lock(c.mutex);
  size_t best = c.blocks.size();
  size_t largest = c.blocks.size();
  for (size_t i = 0; i < c.blocks.size(); ++i) {
    const size_t size = malloc_usable_size(c.blocks[i]);
    if (size >= bytes && (best == c.blocks.size() || size < malloc_usable_size(c.blocks[best]))) {
      best = i;
    }
    if (largest == c.blocks.size() || size > malloc_usable_size(c.blocks[largest])) largest = i;
  }
  const size_t pick = best < c.blocks.size() ? best : largest;
  if (pick == c.blocks.size()) return nullptr;
  void* block = c.blocks[pick];
  c.blocks.erase(c.blocks.begin() + static_cast<std::ptrdiff_t>(pick));
  c.bytes -= malloc_usable_size(block);
  return block;
}

void releaseBlock(void* block) {
  if (!block) return;
  const size_t size = malloc_usable_size(block);
  if (size >= kMinCachedBytes) {
    detail::Cache& c = detail::cache();
    std::lock_guard<std::mutex> lock(c.mutex);
    if (c.bytes + size <= kMaxCachedBytes) {
      c.blocks.push_back(block);
      c.bytes += size;
      return;
    }
  }
  std::free(block);
}

void prefault(void* from, size_t bytes) {
#ifdef MADV_POPULATE_WRITE
  static const uintptr_t kPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t begin = (reinterpret_cast<uintptr_t>(from) + kPage - 1) & ~(kPage - 1);
  const uintptr_t end = (reinterpret_cast<uintptr_t>(from) + bytes) & ~(kPage - 1);
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE);
#else
  (void)from;
  (void)bytes;
#endif
}

}  // namespace koradata_py
