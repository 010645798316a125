// Errors for bad data in an analysis, and the text of a failed seek in the
// frame file. The errors carry only their text.
#ifndef KORA_READER_CORRUPT_DATA_ERROR_H_
#define KORA_READER_CORRUPT_DATA_ERROR_H_

#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>

namespace lumo {
namespace io {
namespace kora {

class CorruptDataError : public std::runtime_error {
 public:
  explicit CorruptDataError(const std::string& message) : std::runtime_error(message) {}
};

// what(): "CorruptFrameDataError for FrameId=<frame_id>: <message>".
class CorruptFrameDataError : public CorruptDataError {
 public:
  CorruptFrameDataError(int64_t frame_id, const std::string& message);
};

// what(): "CorruptScanDataError for FrameId=<frame_id>, Scan=<scan>: <message>".
class CorruptScanDataError : public CorruptDataError {
 public:
  CorruptScanDataError(int64_t frame_id, uint32_t scan, const std::string& message);
};

// "Can't seek to binary header. Current position: <tellg>. Error flags: good:
// <0|1>, eof <0|1>, fail <0|1>, bad <0|1>", describing `stream` as it stands:
// the text both readers of the frame file give to a failed seek to a block.
std::string seekFailureText(std::istream& stream);

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_CORRUPT_DATA_ERROR_H_
