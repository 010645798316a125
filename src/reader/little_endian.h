// Loads of the little-endian integers of the frame file, safe at any
// alignment. On little-endian machines each load is one move.
#ifndef KORA_READER_LITTLE_ENDIAN_H_
#define KORA_READER_LITTLE_ENDIAN_H_

#include <cstdint>
#include <cstring>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

inline uint32_t loadLe32(const unsigned char* p) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
#else
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
#endif
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_LITTLE_ENDIAN_H_
