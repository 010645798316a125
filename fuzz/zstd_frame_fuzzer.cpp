// Reads arbitrary bytes as a per-frame compressed frame file with one block at
// offset 0: the Zstandard frame reader expands the frame, and every scan it
// lists is decoded from the byte planes. Any failure must be one the read path
// documents.
#include <zstd.h>

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>

#include "fuzz/fuzz_support.h"
#include "reader/corrupt_data_error.h"
#include "reader/oxa_frame_reader.h"
#include "reader/rle2_decoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A block or frame that declares 4 MiB more than the input holds is
  // refused here: the reader only reserves that space (lying sizes have
  // their unit tests), but under coverage instrumentation growing a buffer
  // costs a step per byte.
  if (size >= 4 &&
      (data[0] | data[1] << 8 | data[2] << 16 | uint32_t{data[3]} << 24) > size + (4u << 20))
    return 0;
  if (size > 8) {
    const unsigned long long declared = ZSTD_getFrameContentSize(data + 8, size - 8);
    if (declared != ZSTD_CONTENTSIZE_ERROR && declared != ZSTD_CONTENTSIZE_UNKNOWN &&
        declared > size + (4u << 20))
      return 0;
  }
  std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
  // One reader for all runs, as in a reader's life: its buffers keep their
  // allocation. A frame without data (KoraId -1) first, so that every run
  // reads its block anew.
  static lumo::io::kora::OxaFrameReader reader;
  uint64_t total = 0;
  try {
    reader.fill(stream, 1, -1);
    reader.fill(stream, 1, 0);
    // Up to the first scan not in the frame, at most the form 1 limit.
    for (unsigned int scan = 0; scan <= 0x20000; ++scan) {
      unsigned int first = 0;
      unsigned int last = 0;
      const lumo::io::kora::detail::ByteBuffer& frame = reader.get(scan, first, last);
      try {
        lumo::io::kora::decoding::decodeRLE2(1, scan, frame, first, last,
                                             kora_fuzz::PeakChecksum{&total});
      } catch (const lumo::io::kora::CorruptScanDataError&) {
        break;  // as a read does: a scan that fails ends it
      }
    }
  } catch (const lumo::io::kora::CorruptDataError&) {
  } catch (const std::invalid_argument&) {  // "Scan number [<scan>] out of range."
  } catch (const std::length_error&) {      // a frameSize below 8
  }
  volatile uint64_t keep = total;
  (void)keep;
  return 0;
}
