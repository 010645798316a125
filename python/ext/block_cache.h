// A process-wide cache of large freed blocks of malloc memory.
//
// Pages a process touches for the first time cost a fault each, and large
// blocks go straight back to the system when freed, so a column of a query
// result would pay those faults again in every query. Blocks of freed
// results are kept here instead (at most kMaxCachedBytes in all) and handed
// to the next query that needs room.
//
// Thread-safe.
#ifndef KORA_PYTHON_EXT_BLOCK_CACHE_H_
#define KORA_PYTHON_EXT_BLOCK_CACHE_H_

#include <cstddef>

namespace koradata_py {

// Blocks smaller than this are freed at once (malloc recycles them itself).
constexpr size_t kMinCachedBytes = size_t{1} << 20;
constexpr size_t kMaxCachedBytes = size_t{1} << 30;

// A cached block of at least `bytes` usable bytes (the smallest such), else
// the largest cached block, else nullptr; nullptr for fewer than
// kMinCachedBytes. The block is the caller's, to be
// grown with std::realloc and given back with releaseBlock.
void* takeBlock(size_t bytes);

// Keeps a block from std::malloc or std::realloc for takeBlock, or frees it.
// Null is ignored.
void releaseBlock(void* block);

// Maps the pages inside [from, from + bytes) for writing in one call, where
// the system can, instead of one page fault at a time as they are first
// written. Advice only: nothing changes for the caller when it cannot.
void prefault(void* from, size_t bytes);

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_BLOCK_CACHE_H_
