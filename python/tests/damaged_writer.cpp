// kora-damaged-writer: writes a small analysis whose frame `damaged` is cut
// short, for the tests of reads that go on past a bad frame.
//
//   kora-damaged-writer <dir> <compression 1|2> <frames> <damaged frame id>
//
// The damaged frame's block is written last in analysis.oxa_bin and the file
// is then truncated in the middle of that block, so every other frame stays
// whole. Prints the ids of the frames, the damaged one marked with '!'.
#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "tools/analysis_writer.h"
#include "tools/data_generator.h"
#include "tools/file_damage.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: kora-damaged-writer <dir> <compression 1|2> <frames> <damaged id>\n";
    return 2;
  }
  const int compression = std::atoi(argv[2]);
  lumo::writer::GeneratorOptions options;
  options.seed = 7;
  options.numFrames = static_cast<uint32_t>(std::atoi(argv[3]));
  options.scansPerFrame = 40;
  options.maxIntensity = 1000;
  const size_t damaged = static_cast<size_t>(std::atoi(argv[4])) - 1;
  if ((compression != 1 && compression != 2) || damaged >= options.numFrames) {
    std::cerr << "kora-damaged-writer: bad arguments\n";
    return 2;
  }
  try {
    lumo::writer::AnalysisSpec spec = lumo::writer::generateAnalysis(options, 3, compression);
    lumo::writer::addSampleCalibration(spec, options.scansPerFrame);
    // Blocks: the damaged frame's goes last, the others keep their order.
    std::rotate(spec.blocks.begin() + damaged, spec.blocks.begin() + damaged + 1,
                spec.blocks.end());
    for (size_t i = damaged + 1; i < spec.frames.size(); ++i) spec.frames[i].block = i - 1;
    spec.frames[damaged].block = spec.blocks.size() - 1;
    const boost::filesystem::path dir = argv[1];
    const lumo::writer::WrittenAnalysis written = lumo::writer::writeAnalysis(spec, dir);
    const uint64_t lastBlock = written.blockOffsets.back();
    lumo::writer::truncateFile(dir / "analysis.oxa_bin",
                               lastBlock + (written.binSize - lastBlock) / 2);
    for (size_t i = 0; i < spec.frames.size(); ++i) {
      std::cout << spec.frames[i].id << (i == damaged ? "!" : "") << "\n";
    }
  } catch (const std::exception& e) {
    std::cerr << "kora-damaged-writer: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
