#include "connection.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "koradata.h"

namespace koradata_py {

std::string lastErrorText() {
  std::vector<char> text(256);
  uint32_t needed = kora_get_last_error_string(text.data(), static_cast<uint32_t>(text.size()));
  if (needed > text.size()) {
    text.resize(needed);
    needed = kora_get_last_error_string(text.data(), needed);
  }
  return std::string(text.data());
}

Connection::Connection(std::string directory, bool recalibrated)
    : directory_(std::move(directory)), recalibrated_(recalibrated) {
  handle_ = kora_open(directory_.c_str(), recalibrated_ ? 1 : 0);
  if (handle_ == 0) throw LibraryError(lastErrorText());
}

Connection::~Connection() { kora_close(handle_); }

void Connection::requireOpen() const {
  if (handle_ == 0) throw LibraryError(lostReason_);
}

void Connection::fail() {
  const std::string text = lastErrorText();
  kora_close(handle_);
  handle_ = kora_open(directory_.c_str(), recalibrated_ ? 1 : 0);
  if (handle_ == 0) lostReason_ = lastErrorText();
  throw LibraryError(text);
}

void Connection::appendScans(int64_t frame, uint32_t begin, uint32_t end, bool raw,
                             WordBuffer& out) {
  requireOpen();
  const auto read = raw ? kora_read_scans_internal : kora_read_scans_v2;
  constexpr size_t kMaxWords = std::numeric_limits<uint32_t>::max() / sizeof(uint32_t);
  const size_t kept = out.size();
  // The library reports the bytes it needs and writes nothing when `len` is
  // smaller; the second call decodes anew into room of that size.
  for (;;) {
    const size_t room = std::min(out.capacity() - kept, kMaxWords);
    const uint32_t needed = read(handle_, frame, begin, end, out.data() + kept,
                                 static_cast<uint32_t>(room * 4));
    if (needed == 0) fail();
    if (needed <= room * 4) {
      out.resize(kept + needed / 4);
      return;
    }
    if (kept == 0) {
      out.reserveDiscarding(needed / 4);
    } else {
      out.reserve(std::max(kept + needed / 4, out.capacity() + out.capacity() / 2));
    }
  }
}

void Connection::convert(Conversion conversion, int64_t frame, const double* in, double* out,
                         size_t count) {
  requireOpen();
  constexpr size_t kMaxBatch = std::numeric_limits<uint32_t>::max();
  do {
    const auto batch = static_cast<uint32_t>(std::min(count, kMaxBatch));
    if (!callConversion(handle_, conversion, frame, in, out, batch)) fail();
    in += batch;
    out += batch;
    count -= batch;
  } while (count > 0);
}

}  // namespace koradata_py
