// kora-fuzz-seeds <dir>: writes the seed corpus of every fuzz target,
// <dir>/<target>/seed-<n>, from analyses made by the writer.
#include <boost/filesystem.hpp>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"
#include "tools/frame_encoding.h"

namespace {

namespace fs = boost::filesystem;
using lumo::writer::AnalysisSpec;
using lumo::writer::Bytes;

class Corpus {
 public:
  Corpus(const fs::path& root, const std::string& target) : dir_(root / target) {
    fs::create_directories(dir_);
  }
  void add(const Bytes& prefix, const Bytes& bytes) {
    std::ofstream out((dir_ / ("seed-" + std::to_string(count_++))).string(), std::ios::binary);
    out.write(reinterpret_cast<const char*>(prefix.data()),
              static_cast<std::streamsize>(prefix.size()));
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
  }

 private:
  fs::path dir_;
  int count_ = 0;
};

Bytes fileBytes(const fs::path& file) {
  std::ifstream in(file.string(), std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: kora-fuzz-seeds <dir>\n";
    return 2;
  }
  const fs::path root = argv[1];

  Corpus analysis(root, "analysis_fuzzer");
  const fs::path scratch = root / "analysis-scratch";
  for (int type : {1, 2}) {
    lumo::writer::writeAnalysis(kora_fuzz::fixedAnalysis(type), scratch);
    analysis.add({static_cast<unsigned char>(type - 1)}, fileBytes(scratch / "analysis.oxa_bin"));
  }
  fs::remove_all(scratch);

  Corpus cache(root, "frame_cache_fuzzer");
  Corpus zstd(root, "zstd_frame_fuzzer");
  Corpus scans(root, "scan_decoders_fuzzer");
  Corpus lzf(root, "lzf_decompression_fuzzer");
  for (int type : {1, 2}) {
    const AnalysisSpec spec = kora_fuzz::fixedAnalysis(type);
    for (const lumo::writer::FrameBlock& block : spec.blocks) {
      const Bytes encoded = lumo::writer::encodeBlock(block, type);
      const unsigned char n = static_cast<unsigned char>(block.scans.size());
      if (type == 2) {
        zstd.add({}, encoded);
        continue;
      }
      cache.add({0, 0, n}, encoded);
      cache.add({3, 0, 2}, encoded);
      for (const lumo::writer::Scan& scan : block.scans) {
        if (scan.empty()) continue;
        const Bytes stored = lumo::writer::lzfCompress(
            lumo::writer::wordsToBytes(lumo::writer::encodeScanWords(scan)));
        // Bins 4000, word range 0..2 of the stored bytes as a frame, duty cycle.
        scans.add({0x0F, 0xA0, 0, 0, 2, 0, 0, 0}, stored);
        const unsigned int out = 4 * static_cast<unsigned int>(scan.size()) + 64;
        lzf.add({static_cast<unsigned char>(out >> 8), static_cast<unsigned char>(out)}, stored);
      }
    }
  }
  std::cout << "kora-fuzz-seeds: wrote " << root.string() << "\n";
  return 0;
}
