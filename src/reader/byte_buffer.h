// The byte buffers of the read path that are sized by words of the frame file
// (a frame's stored size, its declared expanded size, a run of scans). Growth
// leaves the new bytes uninitialised, so only what a read or the decompressor
// actually writes is touched: a size word that lies costs address space, not
// memory or time. Nothing may read a byte before it has been written.
#ifndef KORA_READER_BYTE_BUFFER_H_
#define KORA_READER_BYTE_BUFFER_H_

#include <boost/core/noinit_adaptor.hpp>
#include <cstddef>
#include <memory>
#include <vector>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

using ByteBuffer = std::vector<unsigned char, boost::noinit_adaptor<std::allocator<unsigned char>>>;

// Makes `buffer` hold `n` bytes of unspecified value. Growing past the
// capacity does not copy the old bytes: a larger buffer is taken afresh.
inline void resizeDiscarding(ByteBuffer& buffer, size_t n) {
  if (n > buffer.capacity()) ByteBuffer().swap(buffer);
  buffer.resize(n);
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_BYTE_BUFFER_H_
