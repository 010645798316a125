// What the synthetic analysis writer writes: the rows of analysis.oxa and the
// frame blocks of analysis.oxa_bin, each value settable, omittable or of a
// wrong type, and each block optionally damaged, so that tests can build
// sound and broken analyses alike.
//
// The writer is an independent implementation of the file layout described
// in doc/file_format.md; it shares no code with the reader.
#ifndef KORA_TOOLS_ANALYSIS_SPEC_H_
#define KORA_TOOLS_ANALYSIS_SPEC_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/sql_value.h"

namespace lumo {
namespace writer {

// The peaks of one scan, in stored order.
// Invariant of a sound scan: indices.size() == intensities.size(), indices
// strictly increasing; under compression type 1 every intensity is at most
// 0x7FFFFFFF (it is stored as a non-negative signed word).
struct Scan {
  std::vector<uint32_t> indices;
  std::vector<uint32_t> intensities;

  size_t size() const { return indices.size(); }
  bool empty() const { return indices.empty(); }
  bool operator==(const Scan& o) const {
    return indices == o.indices && intensities == o.intensities;
  }
};

using Bytes = std::vector<unsigned char>;

// One frame block of analysis.oxa_bin. The block is encoded in the form of
// AnalysisSpec::compressionType from `scans`; every optional field replaces
// one piece of the encoding, for broken files. Fields of the other form are
// ignored.
struct FrameBlock {
  std::vector<Scan> scans;

  // --- Both forms ---
  // Number of scans written in the header instead of scans.size().
  std::optional<uint32_t> numScans;
  // Filler bytes (0xEE) written before the block, so blocks need not be
  // adjacent.
  uint64_t gapBefore = 0;
  // Keep only the first truncateTo bytes of the encoded block. Reads run
  // short only if the block is the last one in the file.
  std::optional<uint64_t> truncateTo;
  // The whole block, written as it stands; nothing is encoded.
  std::optional<Bytes> rawBlock;

  // --- Form 1: per-scan LZF ---
  // First header word; never interpreted by a reader.
  uint32_t headerWord = 0;
  // Offset table written instead of the computed one (numScans + 1 entries
  // are expected by a reader, but any length is written as given).
  std::optional<std::vector<uint32_t>> scanOffsets;
  // Store every scan as LZF literal runs, without back references.
  bool literalOnly = false;
  // scan -> bytes that are LZF-compressed in place of the scan's encoded
  // words (e.g. a length that is no multiple of 4).
  std::map<uint32_t, Bytes> expandedScans;
  // scan -> stored bytes written as they stand in place of the compressed
  // scan (e.g. a broken LZF stream).
  std::map<uint32_t, Bytes> storedScans;

  // --- Form 2: per-frame Zstandard ---
  // frameSize header word instead of the true block size.
  std::optional<uint32_t> frameSize;
  // Compress without the content size in the Zstandard frame header.
  bool omitContentSize = false;
  // Write only the 8-byte header (frameSize 8): a frame of empty scans.
  bool noPayload = false;
  // scans whose word run gets one extra word (0) appended, so that it has an
  // odd number of words.
  std::set<uint32_t> oddWordScans;
  // Word table compressed in place of the encoded one (before byte planes).
  std::optional<std::vector<uint32_t>> wordTable;
  // Bytes compressed in place of the byte-plane table (e.g. a size that is
  // no multiple of 4).
  std::optional<Bytes> expandedPayload;
  // Payload written as it stands in place of the Zstandard frame.
  std::optional<Bytes> storedPayload;
};

// One row of table Frames. Each column value is written with the storage
// class it holds (see SqlValue); columns absent from the table (by schema
// version or AnalysisSpec::omitFrameColumns) are not written.
struct FrameRow {
  int64_t id = 1;
  // When set, KoraId is the file offset of AnalysisSpec::blocks[block] plus
  // koraIdDelta, and `koraId` is ignored.
  std::optional<size_t> block;
  int64_t koraIdDelta = 0;
  SqlValue koraId;  // used when `block` is not set; NULL by default
  SqlValue accumulationTime = 100.0;
  SqlValue rampTime = 100.0;
  SqlValue polarity = "+";
  SqlValue t1 = 25.0;
  SqlValue t2 = 25.0;
  SqlValue mzCalibration = 1;
  SqlValue koraCalibration = 1;
};

// A table column: name and declared SQL type. The writer's own tables
// declare no type, so that every cell keeps the storage class it was given;
// a declared type ("INTEGER", "REAL", "TEXT") lets SQLite convert on insert.
struct Column {
  std::string name;
  std::string type;
};

// A generic table. A row shorter than `columns` is completed with NULLs.
struct Table {
  std::string name;
  std::vector<Column> columns;
  std::vector<std::vector<SqlValue>> rows;
};

// Appends the untyped columns C0 .. C<coefficients - 1> to `t`.
void addCoefficientColumns(Table& t, unsigned int coefficients);

// Table MzCalibration: Id, ModelType, DigitizerTimebase, DigitizerDelay, T1,
// T2, dC1, dC2, then C0 .. C<coefficients - 1>; no rows.
Table mzCalibrationTable(unsigned int coefficients = 12);
// Table KoraCalibration: Id, ModelType, then C0 .. C<coefficients - 1>; no
// rows.
Table koraCalibrationTable(unsigned int coefficients = 10);

// The rows of GlobalMetadata (Key, Value), in insertion order. Keys may
// repeat through append(); set() keeps one row per key.
// Thread-compatible: one thread at a time.
class GlobalMetadata {
 public:
  // Replaces every row of `key` with one row holding `value` (in the place
  // of the first such row), or appends it.
  void set(const std::string& key, SqlValue value);
  // Adds a further row, even if the key is present.
  void append(const std::string& key, SqlValue value);
  // Removes every row of `key`.
  void erase(const std::string& key);
  // The value of the first row of `key`, or nullptr.
  const SqlValue* find(const std::string& key) const;

  const std::vector<std::pair<std::string, SqlValue>>& rows() const { return rows_; }

 private:
  std::vector<std::pair<std::string, SqlValue>> rows_;
};

// Table GlobalMetadata (Key TEXT, Value untyped) with the rows of `m`.
Table metadataTable(const GlobalMetadata& m);

// Everything that makes one analysis directory. Thread-compatible.
struct AnalysisSpec {
  // Decides the Frames columns: AccumulationTime and RampTime from 2 on.
  int schemaMajor = 3;
  // Form of the frame blocks: 1 per-scan LZF, 2 per-frame Zstandard.
  int compressionType = 2;

  GlobalMetadata metadata;
  std::vector<FrameRow> frames;
  std::vector<FrameBlock> blocks;  // written in this order
  Table mzCalibration = mzCalibrationTable();
  Table koraCalibration = koraCalibrationTable();
  std::vector<Table> extraTables;

  // Frames columns left out (e.g. "KoraCalibration").
  std::set<std::string> omitFrameColumns;
  // Tables not created: any of "GlobalMetadata", "Frames", "MzCalibration",
  // "KoraCalibration".
  std::set<std::string> omitTables;
  // When set, calibration.sqlite is written with exactly these tables (e.g.
  // metadataTable(...) and the recalibration tables); when not set, a
  // calibration.sqlite in the directory is removed.
  std::optional<std::vector<Table>> calibrationStore;
  // Files not written (and removed if present).
  bool writeOxa = true;
  bool writeOxaBin = true;
  // Bytes (0xEE) after the last block.
  uint64_t trailingBytes = 0;

  // A sound analysis without frames: the metadata SchemaVersionMajor =
  // `schema_major`, SchemaVersionMinor = 0, KoraCompressionType =
  // `compression_type`, PeakListIndexScaleFactor = 1, DigitizerNumSamples =
  // `num_bins`, all as text; empty calibration tables.
  static AnalysisSpec make(int schema_major = 3, int compression_type = 2,
                           uint32_t num_bins = 400000);

  // Appends a block holding `block` and a frame row pointing at it, with
  // id = number of frames + 1; returns the new row for further settings.
  FrameRow& addFrame(FrameBlock block);
  FrameRow& addFrame(std::vector<Scan> scans);
  // Appends a frame row pointing at block `block`, with id = number of
  // frames + 1, and returns it.
  FrameRow& addFrameRow(size_t block);
};

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_ANALYSIS_SPEC_H_
