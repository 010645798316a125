// Seeded damage of a whole analysis directory, for corruption campaigns: the
// kinds of harm that copies between instruments, shares and clusters do.
// The same seed on the same analysis gives the same damage on every machine.
//
// Kinds, one to three of them per damaged analysis:
//   flip       bytes of analysis.oxa_bin XORed with a random mask
//   truncate   analysis.oxa_bin cut at a random length
//   overwrite  a range of analysis.oxa_bin set to one byte value or noise
//   size       a word near the start of a frame block (a size, a count, an
//              offset, the Zstandard frame header) set to an implausible value
//   frames     a value of table Frames changed (KoraId, AccumulationTime,
//              RampTime, Id)
//   metadata   a value of table GlobalMetadata changed or removed
#ifndef KORA_TOOLS_ANALYSIS_DAMAGE_H_
#define KORA_TOOLS_ANALYSIS_DAMAGE_H_

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>

namespace lumo {
namespace writer {

// Damages the analysis in `dir` (analysis.oxa and analysis.oxa_bin, as the
// writer makes them) as `seed` chooses. Returns what was done, one clause per
// damage separated by "; ", e.g. "flip 0x10 at 1234; metadata
// KoraCompressionType = '3'".
// Throws std::runtime_error when a file cannot be changed.
// Thread-safe for different directories.
std::string damageAnalysis(const boost::filesystem::path& dir, uint64_t seed);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_ANALYSIS_DAMAGE_H_
