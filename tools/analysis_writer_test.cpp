#include "tools/analysis_writer.h"

#include <gtest/gtest.h>
#include <lzf.h>
#include <sqlite3.h>
#include <zstd.h>

#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <iterator>

#include "tools/calibration_rows.h"
#include "tools/calibration_store.h"
#include "tools/data_generator.h"
#include "tools/frame_encoding.h"

namespace lumo {
namespace writer {
namespace {

namespace fs = boost::filesystem;

class TempDir {
 public:
  TempDir() : path_(fs::temp_directory_path() / fs::unique_path("kora-writer-%%%%-%%%%")) {}
  ~TempDir() { fs::remove_all(path_); }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

Bytes readFile(const fs::path& p) {
  std::ifstream in(p.string(), std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

uint32_t le32(const Bytes& b, size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<uint32_t>(b[at + 3]) << 24;
}

// Every row of `sql` as text, columns joined by '|', NULL shown as "NULL".
std::vector<std::string> query(const fs::path& db_path, const std::string& sql) {
  sqlite3* db = nullptr;
  EXPECT_EQ(sqlite3_open_v2(db_path.string().c_str(), &db, SQLITE_OPEN_READONLY, nullptr),
            SQLITE_OK);
  sqlite3_stmt* stmt = nullptr;
  EXPECT_EQ(sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr), SQLITE_OK) << sql;
  std::vector<std::string> rows;
  while (stmt && sqlite3_step(stmt) == SQLITE_ROW) {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(stmt); ++i) {
      if (i) row += "|";
      const unsigned char* t = sqlite3_column_text(stmt, i);
      row += t ? reinterpret_cast<const char*>(t) : "NULL";
    }
    rows.push_back(row);
  }
  sqlite3_finalize(stmt);
  sqlite3_close(db);
  return rows;
}

using Rows = std::vector<std::string>;

TEST(MetadataWriter, DefaultsAreTextValues) {
  TempDir dir;
  writeAnalysis(AnalysisSpec::make(3, 2, 400000), dir.path());
  EXPECT_EQ(
      query(dir.path() / "analysis.oxa",
            "SELECT Key, Value, typeof(Value) FROM GlobalMetadata ORDER BY rowid"),
      (Rows{"SchemaVersionMajor|3|text", "SchemaVersionMinor|0|text", "KoraCompressionType|2|text",
            "PeakListIndexScaleFactor|1|text", "DigitizerNumSamples|400000|text"}));
  EXPECT_TRUE(fs::exists(dir.path() / "analysis.oxa_bin"));
  EXPECT_EQ(fs::file_size(dir.path() / "analysis.oxa_bin"), 0u);
}

TEST(MetadataWriter, ValuesKeepTheirStorageClassAndMayBeOmittedOrRepeated) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(2, 1);
  spec.metadata.set("SchemaVersionMinor", 3.5);
  spec.metadata.set("DigitizerNumSamples", SqlValue());
  spec.metadata.set("PeakListIndexScaleFactor", 4);
  spec.metadata.erase("KoraCompressionType");
  spec.metadata.append("SchemaVersionMajor", "7");
  spec.metadata.set("Blob", Bytes{0x33});
  spec.metadata.set("Count", static_cast<size_t>(7));
  writeAnalysis(spec, dir.path());
  EXPECT_EQ(query(dir.path() / "analysis.oxa",
                  "SELECT Key, Value, typeof(Value) FROM GlobalMetadata ORDER BY rowid"),
            (Rows{"SchemaVersionMajor|2|text", "SchemaVersionMinor|3.5|real",
                  "PeakListIndexScaleFactor|4|integer", "DigitizerNumSamples|NULL|null",
                  "SchemaVersionMajor|7|text", "Blob|3|blob", "Count|7|integer"}));
}

TEST(FramesWriter, ColumnsFollowTheSchemaMajor) {
  TempDir one, three;
  writeAnalysis(AnalysisSpec::make(1, 1), one.path());
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  spec.omitFrameColumns = {"KoraCalibration"};
  writeAnalysis(spec, three.path());
  const std::string columns = "SELECT name FROM pragma_table_info('Frames')";
  EXPECT_EQ(query(one.path() / "analysis.oxa", columns),
            (Rows{"Id", "KoraId", "Polarity", "T1", "T2", "MzCalibration", "KoraCalibration"}));
  EXPECT_EQ(query(three.path() / "analysis.oxa", columns),
            (Rows{"Id", "KoraId", "AccumulationTime", "RampTime", "Polarity", "T1", "T2",
                  "MzCalibration"}));
}

TEST(FramesWriter, KoraIdsPointAtBlocksWithGapsSharingAndNull) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  FrameBlock gapped;
  gapped.noPayload = true;
  gapped.gapBefore = 5;
  spec.addFrame(gapped);                     // frame 1 -> block 0 at 5
  spec.addFrame(std::vector<Scan>{Scan{}});  // frame 2 -> block 1 at 13
  spec.frames.push_back(spec.frames[0]);     // frame 3 shares block 0
  spec.frames.back().id = 3;
  spec.frames.push_back(FrameRow{});  // frame 4: NULL KoraId
  spec.frames.back().id = 4;
  spec.frames.back().accumulationTime = "slow";
  spec.frames[1].koraIdDelta = 1000;
  const WrittenAnalysis w = writeAnalysis(spec, dir.path());
  EXPECT_EQ(w.blockOffsets, (std::vector<uint64_t>{5, 13}));
  EXPECT_EQ(w.binSize, fs::file_size(dir.path() / "analysis.oxa_bin"));
  EXPECT_EQ(
      query(dir.path() / "analysis.oxa",
            "SELECT Id, KoraId, AccumulationTime, typeof(AccumulationTime), Polarity "
            "FROM Frames ORDER BY Id"),
      (Rows{"1|5|100.0|real|+", "2|1013|100.0|real|+", "3|5|100.0|real|+", "4|NULL|slow|text|+"}));
  const Bytes bin = readFile(dir.path() / "analysis.oxa_bin");
  EXPECT_EQ(Bytes(bin.begin(), bin.begin() + 5), Bytes(5, 0xEE));
}

TEST(FramesWriter, CalibrationTablesAndOmittedFiles) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  spec.koraCalibration = koraCalibrationTable(2);
  spec.koraCalibration.rows.push_back({1, 2, 7.5});
  spec.omitTables = {"MzCalibration"};
  spec.writeOxaBin = false;
  writeAnalysis(spec, dir.path());
  EXPECT_FALSE(fs::exists(dir.path() / "analysis.oxa_bin"));
  EXPECT_EQ(query(dir.path() / "analysis.oxa", "SELECT * FROM KoraCalibration"),
            (Rows{"1|2|7.5|NULL"}));
  EXPECT_EQ(query(dir.path() / "analysis.oxa",
                  "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            (Rows{"Frames", "GlobalMetadata", "KoraCalibration"}));
  EXPECT_EQ(mzCalibrationTable(2).columns.size(), 10u);
  EXPECT_EQ(mzCalibrationTable(2).columns[9].name, "C1");
}

// Form 1 scans are read back through liblzf, form 2 frames through Zstandard.
Bytes lzfExpand(const Bytes& bin, size_t at, size_t size) {
  Bytes out(1 << 16);
  const unsigned int n = lzf_decompress(bin.data() + at, static_cast<unsigned int>(size),
                                        out.data(), static_cast<unsigned int>(out.size()));
  out.resize(n);
  return out;
}

TEST(LzfBlockWriter, HeaderOffsetTableAndContiguousScans) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 1);
  FrameBlock block;
  block.headerWord = 0xCAFE;
  block.scans = {Scan{{3, 4}, {9, 8}}, Scan{}, Scan{{0}, {1}}};
  block.storedScans[1] = Bytes{0x1F};  // a literal run that promises 32 bytes
  spec.addFrame(block);
  writeAnalysis(spec, dir.path());
  const Bytes bin = readFile(dir.path() / "analysis.oxa_bin");
  EXPECT_EQ(le32(bin, 0), 0xCAFEu);
  EXPECT_EQ(le32(bin, 4), 3u);
  const uint32_t o0 = le32(bin, 8), o1 = le32(bin, 12), o2 = le32(bin, 16), o3 = le32(bin, 20);
  EXPECT_EQ(o0, 24u);
  EXPECT_EQ(o1 - o0, 13u);  // 12 bytes as one literal run
  EXPECT_EQ(o2 - o1, 1u);
  EXPECT_EQ(bin[o1], 0x1F);
  EXPECT_EQ(o3, bin.size());
  EXPECT_EQ(lzfExpand(bin, o0, o1 - o0), wordsToBytes(std::vector<int32_t>{-3, 9, 8}));
  EXPECT_EQ(lzfExpand(bin, o2, o3 - o2), wordsToBytes(std::vector<int32_t>{1}));
}

TEST(LzfBlockWriter, ClaimedScanCountPadsTheTableAndTruncationCutsTheBlock) {
  FrameBlock block;
  block.scans = {Scan{{0}, {5}}};
  block.numScans = 3;
  const Bytes full = encodeBlock(block, 1);
  EXPECT_EQ(le32(full, 4), 3u);
  EXPECT_EQ(le32(full, 8), 24u);
  EXPECT_EQ(le32(full, 12), 29u);  // one word as a literal run of 4
  EXPECT_EQ(le32(full, 16), 29u);
  EXPECT_EQ(le32(full, 20), 29u);
  EXPECT_EQ(full.size(), 29u);
  block.truncateTo = 10;
  EXPECT_EQ(encodeBlock(block, 1), Bytes(full.begin(), full.begin() + 10));
  block.truncateTo.reset();
  block.scanOffsets = std::vector<uint32_t>{16, 12};
  const Bytes reversed = encodeBlock(block, 1);
  EXPECT_EQ(reversed.size(), 21u);
  EXPECT_EQ(le32(reversed, 8), 16u);
  EXPECT_EQ(le32(reversed, 12), 12u);
}

TEST(ZstdBlockWriter, SizeCountAndByteplaneTable) {
  FrameBlock block;
  block.scans = {Scan{{2, 3}, {40, 50}}, Scan{}};
  const Bytes bytes = encodeBlock(block, 2);
  EXPECT_EQ(le32(bytes, 0), bytes.size());
  EXPECT_EQ(le32(bytes, 4), 2u);
  const unsigned long long d = ZSTD_getFrameContentSize(bytes.data() + 8, bytes.size() - 8);
  ASSERT_EQ(d, 24u);
  Bytes planes(d);
  ASSERT_EQ(ZSTD_decompress(planes.data(), d, bytes.data() + 8, bytes.size() - 8), d);
  EXPECT_EQ(planes, toBytePlanes({2, 4, 3, 40, 1, 50}));
}

TEST(ZstdBlockWriter, DamageKnobs) {
  FrameBlock block;
  block.scans = {Scan{{0}, {1}}};
  block.noPayload = true;
  EXPECT_EQ(encodeBlock(block, 2), (Bytes{8, 0, 0, 0, 1, 0, 0, 0}));
  block.noPayload = false;
  block.omitContentSize = true;
  block.frameSize = 0x40000001;
  block.numScans = 0;
  const Bytes bytes = encodeBlock(block, 2);
  EXPECT_EQ(le32(bytes, 0), 0x40000001u);
  EXPECT_EQ(le32(bytes, 4), 0u);
  EXPECT_EQ(ZSTD_getFrameContentSize(bytes.data() + 8, bytes.size() - 8), ZSTD_CONTENTSIZE_UNKNOWN);
  block.storedPayload = Bytes{1, 2, 3};
  EXPECT_EQ(encodeBlock(block, 2), (Bytes{1, 0, 0, 0x40, 0, 0, 0, 0, 1, 2, 3}));
  block.rawBlock = Bytes{7};
  EXPECT_EQ(encodeBlock(block, 2), Bytes{7});
  try {
    encodeBlock(FrameBlock{}, 3);
    ADD_FAILURE() << "no error";
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "Compression type must be 1 or 2, not 3.");
  }
}

TEST(CalibrationRows, CellsInColumnOrder) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  spec.addFrame(std::vector<Scan>{});
  spec.addFrame(std::vector<Scan>{});
  MzCalibrationHead head;
  head.dC2 = 1e-9;
  spec.mzCalibration.rows.push_back(mzTofRow(1, head, {1, 2, 3, 4, 5}));
  spec.mzCalibration.rows.push_back(
      mzTofZrkRow(2, MzCalibrationHead(), {1, 2, 3}, {4, 5, 6, 7}, {8.5, 9.5}));
  addSampleCalibration(spec, 400);
  writeAnalysis(spec, dir.path());
  EXPECT_EQ(query(dir.path() / "analysis.oxa",
                  "SELECT Id, ModelType, DigitizerTimebase, DigitizerDelay, T1, T2, dC1, dC2, C0, "
                  "C1, C2, C3, C4, C5, C6, C7, typeof(C7), C8, C9, C10 FROM MzCalibration"),
            (Rows{"1|1|0.25|20000.0|25.0|25.0|0.0|1.0e-09|1.0|2.0|3.0|4.0|5.0|NULL|NULL|NULL|null|"
                  "NULL|NULL|NULL",
                  "2|2|0.25|20000.0|25.0|25.0|0.0|0.0|1.0|2.0|3.0|4.0|5.0|6.0|7.0|2|integer|8.5|"
                  "9.5|NULL",
                  "1|1|0.25|20000.0|25.0|24.0|12.0|-4.0|10000.0|377.0|0.5|0.0|0.0|NULL|NULL|NULL|"
                  "null|NULL|NULL|NULL"}));
  EXPECT_EQ(
      query(dir.path() / "analysis.oxa", "SELECT *, typeof(C0), typeof(C5) FROM KoraCalibration"),
      (Rows{"1|2|0|400|200.0|60.0|0.0|1|0.001|120.0|50.0|210.0|integer|integer"}));
  // The sample's frames are measured away from the reference temperatures.
  EXPECT_EQ(query(dir.path() / "analysis.oxa",
                  "SELECT Id, Polarity, T1, T2, MzCalibration, KoraCalibration FROM Frames"),
            (Rows{"1|+|25.25|23.9|1|1", "2|+|25.5|23.8|1|1"}));
}

TEST(CalibrationRows, IonTrapAndFtmsModelsKeepTheirIntegerCells) {
  EXPECT_EQ(halyardModel(1, 2, 3, 4, 5).modelType, 3);
  EXPECT_EQ(halyardModel(1, 2, 3, 4, 5).coefficients, (Row{1.0, 2.0, 3.0, 4.0, 5.0}));
  const MzModel ftms04 = ftms04Model(4, 1.5, 2.5, 3.5, 4.5, 1024);
  EXPECT_EQ(ftms04.modelType, 4);
  EXPECT_EQ(ftms04.coefficients, (Row{4, 1.5, 2.5, 3.5, 4.5, 1024}));
  const MzModel ftms1356 = ftms1356Model(3, 0.5, 1.5, 2.5, 3.5, 4.5, 2048);
  EXPECT_EQ(ftms1356.modelType, 5);
  EXPECT_EQ(ftms1356.coefficients, (Row{3, 0.5, 1.5, 2.5, 3.5, 4.5, 2048}));
  EXPECT_EQ(tofZrkModel({1, 2, 3}, {4, 5, 6, 7}, {}).coefficients,
            (Row{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 0}));
}

TEST(AnalysisWriter, RewritingADirectoryReplacesBothFilesByteForByte) {
  TempDir dir;
  GeneratorOptions o;
  o.numFrames = 3;
  for (int form : {1, 2}) {
    AnalysisSpec spec = generateAnalysis(o, 3, form);
    writeAnalysis(spec, dir.path());
    const Bytes first = readFile(dir.path() / "analysis.oxa_bin");
    spec.metadata.set("SchemaVersionMinor", "9");
    writeAnalysis(spec, dir.path());
    EXPECT_EQ(readFile(dir.path() / "analysis.oxa_bin"), first);
    EXPECT_EQ(query(dir.path() / "analysis.oxa",
                    "SELECT Value FROM GlobalMetadata WHERE Key='SchemaVersionMinor'"),
              Rows{"9"});
    EXPECT_EQ(query(dir.path() / "analysis.oxa", "SELECT COUNT(*) FROM Frames"), Rows{"3"});
  }
}

TEST(AnalysisWriter, StreamedBlocksGiveTheFilesOfTheInMemoryWrite) {
  GeneratorOptions sparse;
  sparse.numFrames = 5;
  sparse.emptyFrames = {2};  // an empty frame in a slot that held a full one
  for (const GeneratorOptions& o : {sparse, GeneratorOptions::realistic(3, 3)}) {
    for (int form : {1, 2}) {
      TempDir whole, streamed;
      const AnalysisSpec spec = generateAnalysis(o, 3, form);
      const WrittenAnalysis w = writeAnalysis(spec, whole.path());
      GeneratedBlocks blocks(o);
      const WrittenAnalysis s =
          writeAnalysis(generatedAnalysisRows(o, 3, form), blocks, streamed.path());
      EXPECT_EQ(s.blockOffsets, w.blockOffsets);
      EXPECT_EQ(s.binSize, w.binSize);
      const Bytes bin = readFile(streamed.path() / "analysis.oxa_bin");
      EXPECT_EQ(bin, readFile(whole.path() / "analysis.oxa_bin"));
      EXPECT_EQ(readFile(streamed.path() / "analysis.oxa"), readFile(whole.path() / "analysis.oxa"));
      // A compression context kept from frame to frame changes no byte.
      uint64_t peaks = 0;
      for (size_t b = 0; b < spec.blocks.size(); ++b) {
        const Bytes alone = encodeBlock(spec.blocks[b], form);
        ASSERT_LE(w.blockOffsets[b] + alone.size(), bin.size());
        EXPECT_EQ(Bytes(bin.begin() + w.blockOffsets[b],
                        bin.begin() + w.blockOffsets[b] + alone.size()),
                  alone);
        for (const Scan& scan : spec.blocks[b].scans) peaks += scan.size();
      }
      EXPECT_EQ(blocks.peaks(), peaks);
      EXPECT_EQ(blocks.next(), nullptr);
    }
  }
}

TEST(AnalysisWriter, FrameRowPointingPastTheStreamedBlocksIsRefused) {
  TempDir dir;
  GeneratorOptions o;
  o.numFrames = 2;
  AnalysisSpec spec = generatedAnalysisRows(o, 3, 2);
  spec.addFrameRow(2);
  GeneratedBlocks blocks(o);
  EXPECT_THROW(writeAnalysis(spec, blocks, dir.path()), std::out_of_range);
}

TEST(AnalysisWriter, CalibrationStoreHoldsExactlyTheGivenTables) {
  TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  GlobalMetadata store;
  store.set("SchemaType", "CALIBRATION_SQLITE");
  Table states{"CalibrationState", {{"Id", ""}, {"Key", ""}}, {{1, "abc"}}};
  spec.calibrationStore = std::vector<Table>{metadataTable(store), states};
  writeAnalysis(spec, dir.path());
  const fs::path file = dir.path() / "calibration.sqlite";
  EXPECT_EQ(query(file, "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            (Rows{"CalibrationState", "GlobalMetadata"}));
  EXPECT_EQ(query(file, "SELECT * FROM GlobalMetadata"), Rows{"SchemaType|CALIBRATION_SQLITE"});
  EXPECT_EQ(query(file, "SELECT * FROM CalibrationState"), Rows{"1|abc"});
  spec.calibrationStore.reset();
  writeAnalysis(spec, dir.path());
  EXPECT_FALSE(fs::exists(file));
}

TEST(CalibrationStore, StatesWithReferencesFrameCalibratorsMappingsAndDigitizerConstants) {
  TempDir dir;
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  ReferenceTemperatures reference;
  reference.dC1 = 2.0;
  store.addState("key-a", "lab")
      .addReference(false, 7, reference, tofModel({1, 2, 3, 0, 0}))
      .addMobilityCalibration(3, MobilityRamp(), frameIds(2));
  CalibrationStateSpec& b = store.addState("key-b", "recal");
  b.addFrameCalibration(11, tofZrkModel({1, 2, 3}, {4, 5, 6, 7}, {0.5}), {1})
      .addFrameCalibration(12, ftms04Model(4, 1, 2, 3, 4, 5), {2});
  b.referenceCalibrations.push_back(halyardReferenceRow(8, 1, 2, 3, 4, 5));
  b.negativeReferenceCalibratorId = 8;
  b.digitizer.reset();
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  spec.calibrationStore = store.tables();
  writeAnalysis(spec, dir.path());

  const fs::path file = dir.path() / "calibration.sqlite";
  EXPECT_EQ(
      query(file, "SELECT Key, Value FROM GlobalMetadata ORDER BY rowid"),
      (Rows{"SchemaType|CALIBRATION_SQLITE", "SchemaVersionMajor|1", "SchemaVersionMinor|0"}));
  EXPECT_EQ(query(file, "SELECT * FROM CalibrationState"),
            (Rows{"1|key-a|lab|0|7|NULL", "2|key-b|recal|1|NULL|8"}));
  EXPECT_EQ(query(file, "SELECT name FROM pragma_table_info('RefMzCalibration')"),
            (Rows{"Id", "ModelType", "CalibrationState", "T1", "T2", "dC1", "dC2", "C0", "C1", "C2",
                  "C3", "C4"}));
  EXPECT_EQ(query(file, "SELECT * FROM RefMzCalibration"),
            (Rows{"7|1|1|25.0|25.0|2.0|0.0|1.0|2.0|3.0|0.0|0.0",
                  "8|3|2|1.0|2.0|3.0|4.0|5.0|NULL|NULL|NULL|NULL"}));
  // The correction's row is the longest and decides the coefficient columns.
  EXPECT_EQ(query(file, "SELECT COUNT(*) FROM pragma_table_info('FrameMzCalibration')"),
            Rows{"12"});
  EXPECT_EQ(query(file,
                  "SELECT Id, ModelType, CalibrationState, C7, typeof(C7), C8 FROM "
                  "FrameMzCalibration"),
            (Rows{"11|2|2|1|integer|0.5", "12|4|2|NULL|null|NULL"}));
  EXPECT_EQ(query(file, "SELECT * FROM FrameMzCalibrationMapping"), (Rows{"2|1|11", "2|2|12"}));
  EXPECT_EQ(query(file, "SELECT * FROM KoraCalibration"),
            (Rows{"3|2|1|0|918|200.0|60.0|0.0|1|0.0|125.0|50.0|210.0"}));
  EXPECT_EQ(query(file, "SELECT * FROM KoraCalibrationMapping"), (Rows{"1|1|3", "1|2|3"}));
  EXPECT_EQ(query(file, "SELECT * FROM DigitizerConstants"), Rows{"1|0.25|20000.0"});
}

TEST(CalibrationStore, BrokenStoresLackTablesOrCarryWrongMetadataAndNullCells) {
  TempDir dir;
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  store.metadata.set("SchemaType", "OTHER");
  store.metadata.set("SchemaVersionMajor", "2");
  CalibrationStateSpec& state = store.addState("k", "s");
  state.addReference(true, 1, ReferenceTemperatures(), tofModel({1, 2, 3, 4, 5}));
  state.referenceCalibrations[0][2] = SqlValue();
  state.source = SqlValue();
  state.digitizer->second = SqlValue();
  store.omitTables = {"KoraCalibrationMapping", "FrameMzCalibration"};
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  spec.calibrationStore = store.tables();
  writeAnalysis(spec, dir.path());

  const fs::path file = dir.path() / "calibration.sqlite";
  EXPECT_EQ(query(file, "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            (Rows{"CalibrationState", "DigitizerConstants", "FrameMzCalibrationMapping",
                  "GlobalMetadata", "KoraCalibration", "RefMzCalibration"}));
  EXPECT_EQ(query(file, "SELECT Value FROM GlobalMetadata ORDER BY rowid"),
            (Rows{"OTHER", "2", "0"}));
  EXPECT_EQ(query(file, "SELECT * FROM CalibrationState"), Rows{"1|k|NULL|0|NULL|1"});
  EXPECT_EQ(query(file, "SELECT Id, T1, typeof(T1), T2 FROM RefMzCalibration"),
            Rows{"1|NULL|null|25.0"});
  EXPECT_EQ(query(file, "SELECT * FROM DigitizerConstants"), Rows{"1|0.25|NULL"});
}

}  // namespace
}  // namespace writer
}  // namespace lumo
