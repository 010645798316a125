// Writes the SQLite databases of an analysis. Internal to the writer.
#ifndef KORA_TOOLS_OXA_DATABASE_WRITER_H_
#define KORA_TOOLS_OXA_DATABASE_WRITER_H_

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <vector>

#include "tools/analysis_spec.h"

namespace lumo {
namespace writer {

// The columns of table Frames for `spec`: Id, KoraId, then AccumulationTime
// and RampTime from schema major 2 on, then Polarity, T1, T2, MzCalibration,
// KoraCalibration; less those in spec.omitFrameColumns.
std::vector<std::string> frameColumns(const AnalysisSpec& spec);

// Creates `file` afresh with the tables of `spec`. KoraId of a row with a
// block is block_offsets[block] + koraIdDelta.
// Throws std::runtime_error with SQLite's message on failure,
// std::out_of_range for a row whose block is not in `block_offsets`.
void writeOxaDatabase(const AnalysisSpec& spec, const std::vector<uint64_t>& block_offsets,
                      const boost::filesystem::path& file);

// Creates `file` afresh with exactly `tables`, rows included.
// Throws std::runtime_error with SQLite's message on failure.
void writeDatabase(const std::vector<Table>& tables, const boost::filesystem::path& file);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_OXA_DATABASE_WRITER_H_
