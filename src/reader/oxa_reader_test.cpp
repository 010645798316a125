#include "reader/oxa_reader.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <boost/exception/diagnostic_information.hpp>
#include <boost/filesystem.hpp>
#include <fstream>
#include <string>

#include "reader/corrupt_data_error.h"
#include "testing/temp_dir.h"
#include "tools/analysis_writer.h"

namespace {

using lumo::io::kora::OxaReader;
using lumo::writer::AnalysisSpec;
using lumo::writer::SqlValue;
namespace fs = boost::filesystem;

std::string openError(const fs::path& dir) {
  try {
    OxaReader reader(dir, boost::none);
  } catch (const std::exception& e) {
    return e.what();
  }
  return "<opened>";
}

std::string metadataQuery(const std::string& key) {
  return "SELECT Value FROM GlobalMetadata WHERE Key='" + key + "'";
}

class OxaReaderOpen : public ::testing::Test {
 protected:
  std::string openWith(const AnalysisSpec& spec) {
    lumo::writer::writeAnalysis(spec, dir.path());
    return openError(dir.path());
  }
  kora_testing::TempDir dir;
  AnalysisSpec spec = AnalysisSpec::make(3, 2, 400000);
};

TEST_F(OxaReaderOpen, ChecksDirectoryAndFilesInOrder) {
  EXPECT_EQ("Specified analysis directory does not exist.", openError(dir / "missing"));
  std::ofstream(dir / "plain-file") << "x";
  EXPECT_EQ("Specified path is not a directory.", openError(dir / "plain-file"));
  EXPECT_EQ((dir / "analysis.oxa").generic_string() + " doesn't exist.", openError(dir.path()));
  // The frame file is looked for before the database is opened: a database
  // that is no database does not matter yet.
  std::ofstream(dir / "analysis.oxa") << "not a database";
  EXPECT_EQ((dir / "analysis.oxa_bin").generic_string() + " doesn't exist.", openError(dir.path()));
  std::ofstream(dir / "analysis.oxa_bin");
  EXPECT_EQ("UNKNOWN_ERROR[26]: file is not a database", openError(dir.path()));
}

TEST_F(OxaReaderOpen, OpensASoundAnalysis) {
  spec.metadata.set("PeakListIndexScaleFactor", "4");
  spec.metadata.set("DigitizerNumSamples", "100000");
  ASSERT_EQ("<opened>", openWith(spec));
  OxaReader reader(dir.path(), boost::none);
  EXPECT_EQ(2, reader.getCompressionType());
  EXPECT_EQ(400000u, reader.getNumBins());
}

TEST_F(OxaReaderOpen, GatesOnTheSchemaMajorOnly) {
  spec.metadata.set("SchemaVersionMinor", "99");
  EXPECT_EQ("<opened>", openWith(spec));
  spec.metadata.set("SchemaVersionMajor", "4");
  spec.metadata.set("SchemaVersionMinor", "0");
  EXPECT_EQ("OXA schema version 4.0 not supported.", openWith(spec));
  spec.metadata.set("SchemaVersionMajor", "0");
  EXPECT_EQ("<opened>", openWith(spec));
  spec.metadata.set("SchemaVersionMajor", "-3");
  EXPECT_EQ("<opened>", openWith(spec));
}

TEST_F(OxaReaderOpen, RequiresCheckedIntegersForSchemaAndCompression) {
  spec.metadata.erase("SchemaVersionMajor");
  EXPECT_EQ("Query result unexpectedly empty: " + metadataQuery("SchemaVersionMajor"),
            openWith(spec));
  spec.metadata.set("SchemaVersionMajor", "3");
  spec.metadata.set("SchemaVersionMinor", SqlValue());
  EXPECT_EQ("Query result unexpectedly NULL: " + metadataQuery("SchemaVersionMinor"),
            openWith(spec));
  spec.metadata.set("SchemaVersionMinor", 1.5);
  EXPECT_EQ("Query result has wrong type: " + metadataQuery("SchemaVersionMinor"), openWith(spec));
  spec.metadata.set("SchemaVersionMinor", 0);
  spec.metadata.append("KoraCompressionType", "2");
  EXPECT_EQ("Query resulted in more than one result: " + metadataQuery("KoraCompressionType"),
            openWith(spec));
  spec.metadata.set("KoraCompressionType", 3);
  EXPECT_EQ("KoraCompressionType 3 not supported.", openWith(spec));
}

TEST_F(OxaReaderOpen, EarlierChecksWin) {
  spec.metadata.set("SchemaVersionMajor", "5");
  spec.metadata.set("KoraCompressionType", "7");
  spec.metadata.set("DigitizerNumSamples", "0");
  EXPECT_EQ("OXA schema version 5.0 not supported.", openWith(spec));
  spec.metadata.set("SchemaVersionMajor", "3");
  EXPECT_EQ("KoraCompressionType 7 not supported.", openWith(spec));
}

TEST_F(OxaReaderOpen, ChecksTheDigitizerSettings) {
  spec.metadata.set("DigitizerNumSamples", "0");
  EXPECT_EQ("Unreasonable digitizer timing settings in global metadata.", openWith(spec));
  spec.metadata.set("DigitizerNumSamples", "1000");
  spec.metadata.set("PeakListIndexScaleFactor", "abc");
  EXPECT_EQ("Global metadatum PeakListIndexScaleFactor not interpretable as desired type.",
            openWith(spec));
  spec.metadata.set("PeakListIndexScaleFactor", SqlValue());
  EXPECT_EQ("Global metadatum PeakListIndexScaleFactor not set but required.", openWith(spec));
  spec.metadata.set("PeakListIndexScaleFactor", "1");
  spec.metadata.erase("DigitizerNumSamples");
  EXPECT_EQ("Global metadatum DigitizerNumSamples not set but required.", openWith(spec));
  // Only a zero product is refused: a negative factor wraps and passes.
  spec.metadata.set("DigitizerNumSamples", "1000");
  spec.metadata.set("PeakListIndexScaleFactor", "-1");
  ASSERT_EQ("<opened>", openWith(spec));
  EXPECT_EQ(4294966296u, OxaReader(dir.path(), boost::none).getNumBins());
  // 65536 x 65536 wraps to exactly 0.
  spec.metadata.set("DigitizerNumSamples", "65536");
  spec.metadata.set("PeakListIndexScaleFactor", "65536");
  EXPECT_EQ("Unreasonable digitizer timing settings in global metadata.", openWith(spec));
}

TEST_F(OxaReaderOpen, ThrownErrorsCarryLocationAndStackTrace) {
  try {
    OxaReader reader(dir / "missing", boost::none);
    FAIL() << "opened a missing directory";
  } catch (const std::exception& e) {
    const std::string info = boost::diagnostic_information(e);
    EXPECT_NE(std::string::npos, info.find("oxa_reader_impl.cpp(")) << info;
    EXPECT_NE(std::string::npos, info.find("Throw in function lumo::io::kora::OxaReaderImpl::"))
        << info;
    EXPECT_NE(std::string::npos, info.find("std::runtime_error")) << info;
    EXPECT_NE(std::string::npos,
              info.find("std::exception::what: Specified analysis directory does not exist."))
        << info;
    EXPECT_NE(std::string::npos, info.find(" at line ")) << info;
  }
}

class OxaReaderMetadata : public OxaReaderOpen {};

TEST_F(OxaReaderMetadata, AbsentAndNullValuesAreEmpty) {
  spec.metadata.set("Nothing", SqlValue());
  spec.metadata.set("Word", "abc");
  lumo::writer::writeAnalysis(spec, dir.path());
  OxaReader reader(dir.path(), boost::none);
  EXPECT_FALSE(reader.getGlobalMetadatum("Absent"));
  EXPECT_FALSE(reader.getGlobalMetadatum("Nothing"));
  EXPECT_EQ("abc", reader.getGlobalMetadatum("Word").value());
  EXPECT_EQ("abc", reader.getGlobalMetadatumRequiredString("Word"));
  EXPECT_EQ(400000, reader.getGlobalMetadatumRequired<int>("DigitizerNumSamples"));
}

class OxaReaderFrameInfo : public OxaReaderOpen {
 protected:
  // One frame row per schema, with Id 7, KoraId NULL, times 12.5 and 40.
  OxaReader& openSchema(int major) {
    spec = AnalysisSpec::make(major, 2, 400000);
    lumo::writer::FrameRow row;
    row.id = 7;
    row.koraId = SqlValue();
    row.accumulationTime = 12.5;
    row.rampTime = 40.0;
    spec.frames.push_back(row);
    lumo::writer::FrameRow nullTimes;
    nullTimes.id = 8;
    nullTimes.koraId = 4096;
    nullTimes.accumulationTime = SqlValue();
    nullTimes.rampTime = SqlValue();
    spec.frames.push_back(nullTimes);
    lumo::writer::writeAnalysis(spec, dir.path());
    reader.reset(new OxaReader(dir.path(), boost::none));
    return *reader;
  }
  std::unique_ptr<OxaReader> reader;
};

TEST_F(OxaReaderFrameInfo, SchemaOneReadsOnlyTheOffset) {
  OxaReader& r = openSchema(1);
  EXPECT_EQ(0, r.getFrameInfo(7).koraId);
  EXPECT_EQ(0.0, r.getFrameInfo(7).accumulationTime);
  EXPECT_EQ(0.0, r.getFrameInfo(7).rampTime);
  EXPECT_EQ(4096, r.getFrameInfo(8).koraId);
}

TEST_F(OxaReaderFrameInfo, LaterSchemasMarkAMissingOffsetAndReadTimes) {
  for (int major : {2, 3}) {
    OxaReader& r = openSchema(major);
    EXPECT_EQ(-1, r.getFrameInfo(7).koraId) << major;
    EXPECT_EQ(12.5, r.getFrameInfo(7).accumulationTime) << major;
    EXPECT_EQ(40.0, r.getFrameInfo(7).rampTime) << major;
    EXPECT_EQ(4096, r.getFrameInfo(8).koraId) << major;
    EXPECT_EQ(0.0, r.getFrameInfo(8).accumulationTime) << major;
    EXPECT_EQ(0.0, r.getFrameInfo(8).rampTime) << major;
  }
}

TEST_F(OxaReaderFrameInfo, MissingFrameAndUnknownSchemaFail) {
  OxaReader& r = openSchema(3);
  try {
    r.getFrameInfo(99);
    FAIL();
  } catch (const lumo::io::kora::CorruptFrameDataError& e) {
    EXPECT_STREQ("CorruptFrameDataError for FrameId=99: Frame doesn't exist", e.what());
  }
  OxaReader& zero = openSchema(0);
  try {
    zero.getFrameInfo(7);
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Schema version not implemented in OxaReader::getFrameInfo()", e.what());
  }
}

TEST_F(OxaReaderFrameInfo, SecondLookupRunsNoQuery) {
  OxaReader& r = openSchema(3);
  EXPECT_EQ(40.0, r.getFrameInfo(7).rampTime);
  sqlite3* db = nullptr;
  ASSERT_EQ(SQLITE_OK, sqlite3_open((dir / "analysis.oxa").string().c_str(), &db));
  ASSERT_EQ(SQLITE_OK, sqlite3_exec(db, "UPDATE Frames SET RampTime = 1.0 WHERE Id = 7", nullptr,
                                    nullptr, nullptr));
  sqlite3_close(db);
  EXPECT_EQ(40.0, r.getFrameInfo(7).rampTime);
  const auto& info = r.getFrameInfo(7);
  EXPECT_EQ(&info, &r.getFrameInfo(7));
}

}  // namespace
