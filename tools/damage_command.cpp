#include "tools/damage_command.h"

#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

#include "tools/analysis_damage.h"

namespace lumo {
namespace writer {

int damageCommand(int argc, char** argv) {
  const std::string usage = "usage: kora-writer damage <dir> [--seed S]\n";
  if (argc == 3 && std::string(argv[2]) == "--help") {
    std::cout << usage
              << "Damages the analysis in <dir> in place: bytes of analysis.oxa_bin flipped, cut "
                 "or overwritten, sizes made to lie, values of Frames or GlobalMetadata "
                 "changed. The same seed gives the same damage.\n";
    return 0;
  }
  uint64_t seed = 1;
  bool ok = argc == 3 || argc == 5;
  if (ok && argc == 5) {
    const std::string flag = argv[3];
    const std::string value = argv[4];
    ok = flag == "--seed" && !value.empty() &&
         value.find_first_not_of("0123456789") == std::string::npos && value.size() <= 19;
    if (ok) seed = std::stoull(value);
  }
  if (!ok) {
    std::cerr << usage;
    return 2;
  }
  const std::string dir = argv[2];
  try {
    const std::string done = damageAnalysis(dir, seed);
    std::cout << "kora-writer: damaged " << dir << ", seed " << seed << ": " << done << "\n";
  } catch (const std::exception& e) {
    std::cerr << "kora-writer: " << e.what() << "\n";
    return 1;
  }
  return 0;
}

}  // namespace writer
}  // namespace lumo
