#include "tools/analysis_spec.h"

#include <algorithm>

namespace lumo {
namespace writer {

void addCoefficientColumns(Table& t, unsigned int coefficients) {
  for (unsigned int i = 0; i < coefficients; ++i) {
    t.columns.push_back({"C" + std::to_string(i), ""});
  }
}

Table mzCalibrationTable(unsigned int coefficients) {
  Table t;
  t.name = "MzCalibration";
  t.columns = {{"Id", ""},
               {"ModelType", ""},
               {"DigitizerTimebase", ""},
               {"DigitizerDelay", ""},
               {"T1", ""},
               {"T2", ""},
               {"dC1", ""},
               {"dC2", ""}};
  addCoefficientColumns(t, coefficients);
  return t;
}

Table koraCalibrationTable(unsigned int coefficients) {
  Table t;
  t.name = "KoraCalibration";
  t.columns = {{"Id", ""}, {"ModelType", ""}};
  addCoefficientColumns(t, coefficients);
  return t;
}

void GlobalMetadata::set(const std::string& key, SqlValue value) {
  auto first =
      std::find_if(rows_.begin(), rows_.end(), [&](const auto& row) { return row.first == key; });
  if (first == rows_.end()) {
    rows_.emplace_back(key, std::move(value));
    return;
  }
  first->second = std::move(value);
  rows_.erase(
      std::remove_if(first + 1, rows_.end(), [&](const auto& row) { return row.first == key; }),
      rows_.end());
}

void GlobalMetadata::append(const std::string& key, SqlValue value) {
  rows_.emplace_back(key, std::move(value));
}

void GlobalMetadata::erase(const std::string& key) {
  rows_.erase(
      std::remove_if(rows_.begin(), rows_.end(), [&](const auto& row) { return row.first == key; }),
      rows_.end());
}

const SqlValue* GlobalMetadata::find(const std::string& key) const {
  for (const auto& row : rows_) {
    if (row.first == key) return &row.second;
  }
  return nullptr;
}

Table metadataTable(const GlobalMetadata& m) {
  Table t{"GlobalMetadata", {{"Key", "TEXT"}, {"Value", ""}}, {}};
  for (const auto& kv : m.rows()) t.rows.push_back({kv.first, kv.second});
  return t;
}

AnalysisSpec AnalysisSpec::make(int schema_major, int compression_type, uint32_t num_bins) {
  AnalysisSpec spec;
  spec.schemaMajor = schema_major;
  spec.compressionType = compression_type;
  spec.metadata.set("SchemaVersionMajor", std::to_string(schema_major));
  spec.metadata.set("SchemaVersionMinor", "0");
  spec.metadata.set("KoraCompressionType", std::to_string(compression_type));
  spec.metadata.set("PeakListIndexScaleFactor", "1");
  spec.metadata.set("DigitizerNumSamples", std::to_string(num_bins));
  return spec;
}

FrameRow& AnalysisSpec::addFrame(FrameBlock block) {
  blocks.push_back(std::move(block));
  return addFrameRow(blocks.size() - 1);
}

FrameRow& AnalysisSpec::addFrameRow(size_t block) {
  FrameRow row;
  row.id = static_cast<int64_t>(frames.size()) + 1;
  row.block = block;
  frames.push_back(row);
  return frames.back();
}

FrameRow& AnalysisSpec::addFrame(std::vector<Scan> scans) {
  FrameBlock block;
  block.scans = std::move(scans);
  return addFrame(std::move(block));
}

}  // namespace writer
}  // namespace lumo
