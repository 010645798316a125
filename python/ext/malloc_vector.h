// Arrays in memory from std::malloc, so that numpy can take them over, so
// that growing a large one moves no data (realloc of a mapped block remaps
// its pages), and so that large blocks are taken from and given back to the
// block cache. Elements are never initialised: T must be trivially copyable.
#ifndef KORA_PYTHON_EXT_MALLOC_VECTOR_H_
#define KORA_PYTHON_EXT_MALLOC_VECTOR_H_

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "block_cache.h"

namespace koradata_py {

struct ReleaseBlock {
  void operator()(void* p) const { releaseBlock(p); }
};
// Memory owned by one pointer, given back with releaseBlock.
template <class T>
using MallocArray = std::unique_ptr<T[], ReleaseBlock>;

// A growable array. Thread-compatible.
template <class T>
class MallocVector {
  static_assert(std::is_trivially_copyable<T>::value, "elements are moved as bytes");

 public:
  MallocVector() = default;
  ~MallocVector() { releaseBlock(data_); }
  MallocVector(MallocVector&& o) noexcept
      : data_(std::exchange(o.data_, nullptr)),
        size_(std::exchange(o.size_, 0)),
        capacity_(std::exchange(o.capacity_, 0)) {}
  MallocVector& operator=(MallocVector&& o) noexcept {
    std::swap(data_, o.data_);
    std::swap(size_, o.size_);
    std::swap(capacity_, o.capacity_);
    return *this;
  }
  MallocVector(const MallocVector&) = delete;
  MallocVector& operator=(const MallocVector&) = delete;

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return size_; }
  size_t capacity() const { return capacity_; }

  // Sets the size, keeping the first min(size(), n) elements; grows the
  // capacity at least geometrically. Throws std::bad_alloc.
  void resize(size_t n) {
    if (n > capacity_) grow(std::max(n, capacity_ + capacity_ / 2));
    size_ = n;
  }

  // Makes room for `n` elements, keeping the present ones.
  void reserve(size_t n) {
    if (n > capacity_) grow(n);
  }

  // Makes room for `n` elements without keeping any: size() becomes 0.
  void reserveDiscarding(size_t n) {
    size_ = 0;
    if (n <= capacity_) return;
    releaseBlock(std::exchange(data_, nullptr));
    capacity_ = 0;
    grow(n);
  }

  // The memory, trimmed to size() (at least one element, never null); the
  // vector is empty afterwards.
  MallocArray<T> release() {
    if (!data_ || size_ < capacity_) grow(size_ > 0 ? size_ : 1);
    size_ = capacity_ = 0;
    return MallocArray<T>(std::exchange(data_, nullptr));
  }

 private:
  void grow(size_t n) {
    const size_t bytes = n * sizeof(T);
    void* p = data_;
    // A vector growing large takes a cached block (its pages already mapped)
    // instead of growing its small one into fresh pages.
    if (bytes >= kMinCachedBytes && (!p || malloc_usable_size(p) < kMinCachedBytes)) {
      if (void* cached = takeBlock(bytes)) {
        if (p) std::memcpy(cached, p, size_ * sizeof(T));
        releaseBlock(std::exchange(p, cached));
      }
    }
    if (!p || malloc_usable_size(p) < bytes) {
      const size_t had = p ? malloc_usable_size(p) : 0;
      p = std::realloc(p, bytes);
      if (!p) throw std::bad_alloc();
      if (bytes >= kMinCachedBytes) prefault(static_cast<char*>(p) + had, bytes - had);
    }
    data_ = static_cast<T*>(p);
    capacity_ = std::max(n, malloc_usable_size(p) / sizeof(T));
  }

  T* data_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_MALLOC_VECTOR_H_
