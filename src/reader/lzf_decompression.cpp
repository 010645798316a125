#include "reader/lzf_decompression.h"

#include <cstring>

#include "sys/throw.h"

namespace lumo {
namespace io {
namespace uimf {

namespace {

// Copies `len` bytes from `ref` to `op`, where `ref` lies `distance` bytes
// before `op` and the ranges may overlap: bytes written early are read again
// later, which is how a reference to the previous byte repeats it. `room` is
// the space left at `op`; where it allows, whole chunks are moved and up to
// 16 bytes beyond `len` are overwritten (and read), bytes that later items or
// nobody will read.
// REQUIRES: room >= len, distance >= 1, ref + distance == op.
inline void copyBackReference(unsigned char* op, const unsigned char* ref, size_t len,
                              size_t distance, size_t room) {
  if (room >= len + 16) {
    unsigned char chunk[16];
    if (distance >= len && len <= 16) {
      // The bytes wanted all lie before op: one load, one store.
      std::memcpy(chunk, ref, 16);
      std::memcpy(op, chunk, 16);
      return;
    }
    if (distance >= 16) {
      // Each chunk reads only bytes that are already final.
      for (size_t i = 0; i < len; i += 16) std::memcpy(op + i, ref + i, 16);
      return;
    }
    if (distance >= 8) {
      for (size_t i = 0; i < len; i += 8) std::memcpy(op + i, ref + i, 8);
      return;
    }
    // A period below 8: repeat an 8-byte pattern at steps of the largest
    // multiple of the period that fits 8.
    static const unsigned char kEightModulo[8] = {0, 0, 0, 2, 0, 3, 2, 1};
    for (size_t i = 0; i < 8; ++i) chunk[i] = i < distance ? ref[i] : chunk[i - distance];
    const size_t step = 8 - kEightModulo[distance];
    for (size_t i = 0; i < len; i += step) std::memcpy(op + i, chunk, 8);
    return;
  }
  while (len--) *op++ = *ref++;
}

}  // namespace

unsigned int decompressLzf(const unsigned char in[], unsigned int in_len, unsigned char* out,
                           unsigned int out_len) {
  if (in_len == 0) LUMO_THROW(std::invalid_argument("Must provide non-empty input stream."));
  if (out == nullptr || out_len == 0) return 0;
  if (in_len == 0xFFFFFFFFu || out_len == 0xFFFFFFFFu)
    LUMO_THROW(std::invalid_argument("Input or output length exceeds maximum value of unsigned."));

  const unsigned char* ip = in;
  const unsigned char* const in_end = in + in_len;
  unsigned char* op = out;
  unsigned char* const out_end = out + out_len;

  do {
    unsigned int ctrl = *ip++;
    if (ctrl < 32) {
      const unsigned int len = ctrl + 1;
      if (static_cast<size_t>(out_end - op) < len) return 0;
      if (static_cast<size_t>(in_end - ip) < len) LUMO_THROW(InvalidInputStream());
      // A literal run is at most 32 bytes: copy 32 where both sides allow.
      if (static_cast<size_t>(out_end - op) >= 32 && static_cast<size_t>(in_end - ip) >= 32)
        std::memcpy(op, ip, 32);
      else
        std::memcpy(op, ip, len);
      op += len;
      ip += len;
    } else {
      unsigned int len = ctrl >> 5;
      if (ip >= in_end) LUMO_THROW(InvalidInputStream());
      if (len == 7) {
        len += *ip++;
        if (ip >= in_end) LUMO_THROW(InvalidInputStream());
      }
      const size_t back = ((static_cast<size_t>(ctrl & 31)) << 8) + *ip++ + 1;
      if (static_cast<size_t>(out_end - op) < len + 2) return 0;
      if (static_cast<size_t>(op - out) < back) LUMO_THROW(InvalidInputStream());
      copyBackReference(op, op - back, len + 2, back, static_cast<size_t>(out_end - op));
      op += len + 2;
    }
  } while (ip < in_end);

  return static_cast<unsigned int>(op - out);
}

}  // namespace uimf
}  // namespace io
}  // namespace lumo
