// Copies and fills of a few hundred bytes at a time, as the rows of one scan
// are, written inline: a call into the C library's memcpy per scan costs
// more than moving its bytes, and a copy loop left to the compiler may be
// turned into that very call. On x86-64 they move 16 bytes per unaligned
// store (SSE2, which every x86-64 processor has); elsewhere they are plain
// loops.
#ifndef KORA_PYTHON_EXT_SHORT_COPY_H_
#define KORA_PYTHON_EXT_SHORT_COPY_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#if defined(__x86_64__)
#include <emmintrin.h>
#define KORA_PY_SSE2_COPIES 1
#endif

namespace koradata_py {

// Copies `n` values from `from` to `to` and returns to + n.
// REQUIRES: the ranges do not overlap.
template <class T>
inline T* copyShort(T* to, const T* from, size_t n) {
  static_assert(std::is_trivially_copyable<T>::value && 16 % sizeof(T) == 0,
                "values are moved as bytes, a whole number of them per store");
  size_t i = 0;
#ifdef KORA_PY_SSE2_COPIES
  constexpr size_t kPerStore = 16 / sizeof(T);
  for (; i + kPerStore <= n; i += kPerStore) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i)));
  }
#endif
  for (; i < n; ++i) to[i] = from[i];
  return to + n;
}

// Sets `n` values from `to` on to `value` and returns to + n.
template <class T>
inline T* fillShort(T* to, size_t n, T value) {
  static_assert(std::is_trivially_copyable<T>::value && 16 % sizeof(T) == 0,
                "values are moved as bytes, a whole number of them per store");
  size_t i = 0;
#ifdef KORA_PY_SSE2_COPIES
  constexpr size_t kPerStore = 16 / sizeof(T);
  T pattern[kPerStore];
  std::fill_n(pattern, kPerStore, value);
  const __m128i line = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pattern));
  for (; i + kPerStore <= n; i += kPerStore) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), line);
  }
#endif
  for (; i < n; ++i) to[i] = value;
  return to + n;
}

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_SHORT_COPY_H_
