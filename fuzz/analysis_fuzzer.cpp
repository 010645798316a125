// Reads arbitrary bytes as the frame file of a whole analysis through the
// public header: they become analysis.oxa_bin beside a fixed analysis.oxa made
// by the writer, and every frame is read whole, raw and normalised. Each read
// must return data laid out as the header promises, the same bytes again on a
// second call, or 0 with a text.
//
// Input: one byte whose lowest bit chooses the compression type (0: per-scan
// LZF, 1: per-frame Zstandard), then the frame file.
#include <boost/filesystem.hpp>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "koradata.h"
#include "tools/analysis_writer.h"

namespace {

namespace fs = boost::filesystem;
using ReadFunction = uint32_t (*)(uint64_t, int64_t, uint32_t, uint32_t, void*, uint32_t);

// The two analysis directories, written once; removed at exit.
struct Analyses {
  Analyses() : root(fs::temp_directory_path() / fs::unique_path("kora-fuzz-%%%%-%%%%")) {
    for (int type : {1, 2}) lumo::writer::writeAnalysis(kora_fuzz::fixedAnalysis(type), dir(type));
  }
  ~Analyses() {
    boost::system::error_code ec;
    fs::remove_all(root, ec);
  }
  fs::path dir(int type) const { return root / ("type-" + std::to_string(type)); }

  fs::path root;
};

const Analyses& analyses() {
  static const Analyses instance;
  return instance;
}

void check(bool ok) {
  if (!ok) std::abort();
}

void readWhole(uint64_t handle, int64_t frame, ReadFunction function) {
  const uint32_t scans = kora_fuzz::kScans;
  const uint32_t needed = function(handle, frame, 0, scans, nullptr, 0);
  if (needed == 0) {
    check(kora_get_last_error_string(nullptr, 0) > 1);
    return;
  }
  check(needed % 4 == 0 && needed >= 4 * scans);
  std::vector<uint32_t> first(needed / 4);
  std::vector<uint32_t> second(needed / 4);
  check(function(handle, frame, 0, scans, first.data(), needed) == needed);
  check(function(handle, frame, 0, scans, second.data(), needed) == needed);
  check(first == second);
  uint64_t words = scans;
  for (uint32_t s = 0; s < scans; ++s) words += 2 * static_cast<uint64_t>(first[s]);
  check(words == first.size());
}

}  // namespace

// The library logs nothing below FATAL here: a damaged file is the normal case.
extern "C" __attribute__((visibility("default"))) void lumo_logging_get_logconf(std::string* out) {
  *out =
      "<lumo-logconf><sink name='console' class='lumo.logging.ConsoleSink'/>"
      "<root level='FATAL'><sink ref='console'/></root></lumo-logconf>";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const fs::path dir = analyses().dir(1 + (data[0] & 1));
  {
    std::ofstream bin((dir / "analysis.oxa_bin").string(), std::ios::binary | std::ios::trunc);
    bin.write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
  }
  const uint64_t handle = kora_open(dir.string().c_str(), 0);
  check(handle != 0);
  for (int64_t frame = 1; frame <= kora_fuzz::kFrames; ++frame) {
    readWhole(handle, frame, kora_read_scans_v2);
    readWhole(handle, frame, kora_read_scans_internal);
  }
  kora_close(handle);
  return 0;
}
