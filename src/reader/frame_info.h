#ifndef KORA_READER_FRAME_INFO_H_
#define KORA_READER_FRAME_INFO_H_

#include <cstdint>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

// One row of Frames as the decoding needs it.
struct FrameInfo {
  // Byte offset of the frame in analysis.oxa_bin. Schema 1: 0 for NULL;
  // schema 2 and 3: -1 for NULL.
  int64_t koraId = 0;
  double accumulationTime = 0.0;  // 0.0 where NULL or absent (schema 1)
  double rampTime = 0.0;          // 0.0 where NULL or absent (schema 1)
};

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_FRAME_INFO_H_
