// Expands arbitrary bytes as an LZF stream into an output of arbitrary size
// and checks the result against liblzf: the same bytes, or the same refusal.
#include <lzf.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "reader/lzf_decompression.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  // The first two bytes choose the output size, up to 64 KiB.
  const unsigned int out_len = static_cast<unsigned int>(data[0]) << 8 | data[1];
  const unsigned char* in = data + 2;
  const unsigned int in_len = static_cast<unsigned int>(size - 2);
  std::vector<unsigned char> ours(out_len), theirs(out_len);

  unsigned int n = 0;
  bool corrupt = false;
  try {
    n = lumo::io::uimf::decompressLzf(in, in_len, ours.data(), out_len);
  } catch (const lumo::io::uimf::InvalidInputStream&) {
    corrupt = true;
  }
  errno = 0;
  const unsigned int m = lzf_decompress(in, in_len, theirs.data(), out_len);
  if (out_len == 0) return 0;
  if (corrupt != (m == 0 && errno == EINVAL)) std::abort();
  if (!corrupt && (n != m || std::memcmp(ours.data(), theirs.data(), n) != 0)) std::abort();
  return 0;
}
