// A guarded LZF expansion: every read of the input and every write of the
// output is checked against its bound, so a corrupt or hostile stream ends in
// an exception, never outside the two buffers.
//
// Stream format: a sequence of items, each starting with a control byte c.
//   c < 32        literal run: the next c + 1 bytes are copied.
//   c >> 5 in 1-6 short back reference, length n = c >> 5, one offset byte b.
//   c >> 5 == 7   long back reference, n = 7 + e, then the offset byte b.
// A back reference copies n + 2 bytes from output position
// p - ((c & 31) * 256) - b - 1, byte by byte, so it may overlap itself.
#ifndef KORA_READER_LZF_DECOMPRESSION_H_
#define KORA_READER_LZF_DECOMPRESSION_H_

#include <stdexcept>

namespace lumo {
namespace io {
namespace uimf {

// A stream that is not valid LZF. what() is "Invalid input stream".
class InvalidInputStream : public std::invalid_argument {
 public:
  InvalidInputStream() : std::invalid_argument("Invalid input stream") {}
};

// Expands `in_len` bytes of `in` into at most `out_len` bytes of `out`.
// Returns the number of bytes written, or 0 when `out` is null, `out_len` is 0
// or the expansion does not fit into `out_len` bytes; the content of `out` is
// unspecified in that case.
// Throws std::invalid_argument for an empty input and for a length of
// 0xFFFFFFFF, and InvalidInputStream for a corrupt stream.
// Thread-safe: no state.
unsigned int decompressLzf(const unsigned char in[], unsigned int in_len, unsigned char* out,
                           unsigned int out_len);

}  // namespace uimf
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_LZF_DECOMPRESSION_H_
