// The byte buffers of the read path that are sized by words of the frame file
// (a frame's stored size, its declared expanded size, a run of scans). Growth
// leaves the new bytes uninitialised, so only what a read or the decompressor
// actually writes is touched: a size word that lies costs address space, not
// memory or time. Nothing may read a byte before it has been written.
#ifndef KORA_READER_BYTE_BUFFER_H_
#define KORA_READER_BYTE_BUFFER_H_

#include <boost/core/noinit_adaptor.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

using ByteBuffer = std::vector<unsigned char, boost::noinit_adaptor<std::allocator<unsigned char>>>;
// Words of a read-out in the making; grows the same way.
using WordBuffer = std::vector<uint32_t, boost::noinit_adaptor<std::allocator<uint32_t>>>;

// Makes `buffer` hold `n` elements of unspecified value. Growing past the
// capacity does not copy the old bytes: a larger buffer is taken afresh.
template <class Buffer>
void resizeDiscarding(Buffer& buffer, size_t n) {
  if (n > buffer.capacity()) Buffer().swap(buffer);
  buffer.resize(n);
}

// The fuzz build's caps (KORA_INITIAL_BUFFER_BYTES, KORA_MAX_BELIEVED_BYTES);
// no cap elsewhere.
#ifdef KORA_INITIAL_BUFFER_BYTES
constexpr uint64_t kInitialBufferCap = KORA_INITIAL_BUFFER_BYTES;
#else
constexpr uint64_t kInitialBufferCap = ~uint64_t{0};
#endif
#ifdef KORA_MAX_BELIEVED_BYTES
constexpr uint64_t kBelievedSizeCap = KORA_MAX_BELIEVED_BYTES;
#else
constexpr uint64_t kBelievedSizeCap = ~uint64_t{0};
#endif

// A buffer's starting size: `ordinary`, or at most the initial-buffer cap
// where the build sets one (the fuzz build, which opens and closes a reader
// per input and would otherwise spend its time on tens of megabytes it never
// uses). Buffers still grow to whatever a frame needs.
constexpr size_t initialBufferSize(size_t ordinary) {
  return ordinary < kInitialBufferCap ? ordinary : static_cast<size_t>(kInitialBufferCap);
}

// A limit on a size word of the frame file: `ordinary`, or at most the
// believed-size cap where the build sets one (the fuzz build: under ASan every
// allocation writes the shadow of all its bytes, so a lying size of a
// gigabyte costs a hundred megabytes of writes however little of it is used).
// A size above the limit fails as one above the ordinary limit does.
constexpr uint64_t believedSizeLimit(uint64_t ordinary) {
  return ordinary < kBelievedSizeCap ? ordinary : kBelievedSizeCap;
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_BYTE_BUFFER_H_
