// kora-writer: writes synthetic analysis directories.
//
//   kora-writer sample <dir> [--compression 1|2] [--frames N] [--seed S]
//   kora-writer realistic <dir> [--compression 1|2] [--frames N] [--seed S]
//   kora-writer damage <dir> [--seed S]
//
// "sample" writes the small demo analysis (schema 3, realistic-looking but
// lighter frames, calibration rows); "realistic" writes full-size frames
// for benchmarks. Both print one line describing what was written. "damage"
// damages an analysis in place (tools/damage_command.h).
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "tools/analysis_writer.h"
#include "tools/damage_command.h"
#include "tools/data_generator.h"

namespace {

using lumo::writer::AnalysisSpec;
using lumo::writer::GeneratorOptions;

int usage() {
  std::cerr << "usage: kora-writer sample|realistic <dir> [--compression 1|2] [--frames N] "
               "[--seed S]\n       kora-writer damage <dir> [--seed S]\n";
  return 2;
}

bool parseNumber(const std::string& text, uint64_t& out) {
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
  errno = 0;
  out = std::strtoull(text.c_str(), nullptr, 10);
  return errno == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return usage();
  const std::string mode = argv[1];
  if (mode == "damage") return lumo::writer::damageCommand(argc, argv);
  const std::string dir = argv[2];
  if (mode != "sample" && mode != "realistic") return usage();

  uint64_t compression = 2;
  uint64_t frames = mode == "sample" ? 36 : 20;
  uint64_t seed = 1;
  for (int i = 3; i < argc; i += 2) {
    const std::string flag = argv[i];
    uint64_t value = 0;
    if (i + 1 >= argc || !parseNumber(argv[i + 1], value)) return usage();
    if (flag == "--compression" && (value == 1 || value == 2)) {
      compression = value;
    } else if (flag == "--frames" && value > 0 && value <= 1000000) {
      frames = value;
    } else if (flag == "--seed") {
      seed = value;
    } else {
      return usage();
    }
  }

  GeneratorOptions options = GeneratorOptions::realistic(seed, static_cast<uint32_t>(frames));
  if (mode == "sample") options.meanPeaksPerScan = 30;
  const int schema = 3;
  try {
    // Frames are generated, encoded and written one at a time.
    AnalysisSpec spec =
        lumo::writer::generatedAnalysisRows(options, schema, static_cast<int>(compression));
    for (lumo::writer::FrameRow& row : spec.frames) {
      row.rampTime = 90.0;
      row.t1 = 25.0 + 0.01 * static_cast<double>(row.id % 10);
      row.t2 = 24.5;
    }
    lumo::writer::addSampleCalibration(spec, options.scansPerFrame);
    lumo::writer::GeneratedBlocks blocks(options);
    const lumo::writer::WrittenAnalysis written = lumo::writer::writeAnalysis(spec, blocks, dir);
    const uint64_t peaks = blocks.peaks();
    std::cout << "kora-writer: wrote " << dir << ": schema " << schema << ", compression "
              << compression << ", " << frames << " frames of " << options.scansPerFrame
              << " scans, " << peaks << " peaks, seed " << seed << ", analysis.oxa_bin "
              << written.binSize << " bytes\n";
  } catch (const std::exception& e) {
    std::cerr << "kora-writer: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
