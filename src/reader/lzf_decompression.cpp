#include "reader/lzf_decompression.h"

#include <cstring>

#include "sys/throw.h"

namespace lumo {
namespace io {
namespace uimf {

namespace {

// Copies `len` bytes from `ref` to `op`, where `ref` lies before `op` and the
// ranges may overlap: bytes written early are read again later, which is how
// a reference to the previous byte repeats it.
inline void copyBackReference(unsigned char* op, const unsigned char* ref, unsigned int len) {
  const size_t distance = static_cast<size_t>(op - ref);
  if (distance >= len) {
    std::memcpy(op, ref, len);
    return;
  }
  if (distance >= 8) {
    // Each 8-byte step reads only bytes that are already final.
    while (len >= 8) {
      std::memcpy(op, ref, 8);
      op += 8;
      ref += 8;
      len -= 8;
    }
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
      copyBackReference(op, op - back, len + 2);
      op += len + 2;
    }
  } while (ip < in_end);

  return static_cast<unsigned int>(op - out);
}

}  // namespace uimf
}  // namespace io
}  // namespace lumo
