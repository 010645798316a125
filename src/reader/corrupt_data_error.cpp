#include "reader/corrupt_data_error.h"

#include <boost/format.hpp>
#include <sstream>

namespace lumo {
namespace io {
namespace kora {

CorruptFrameDataError::CorruptFrameDataError(int64_t frame_id, const std::string& message)
    : CorruptDataError(
          (boost::format("CorruptFrameDataError for FrameId=%d: %s") % frame_id % message).str()) {}

CorruptScanDataError::CorruptScanDataError(int64_t frame_id, uint32_t scan,
                                           const std::string& message)
    : CorruptDataError((boost::format("CorruptScanDataError for FrameId=%d, Scan=%d: %s") %
                        frame_id % scan % message)
                           .str()) {}

std::string seekFailureText(std::istream& stream) {
  std::ostringstream os;
  const long long position = static_cast<long long>(stream.tellg());
  os << "Can't seek to binary header. Current position: " << position
     << ". Error flags: good: " << stream.good() << ", eof " << stream.eof() << ", fail "
     << stream.fail() << ", bad " << stream.bad();
  return os.str();
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
