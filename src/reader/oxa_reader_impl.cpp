#include "reader/oxa_reader_impl.h"

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <boost/lexical_cast.hpp>
#include <stdexcept>

#include "sql/cppsqlite3.h"
#include "sql/cppsqlite_tools.h"
#include "calibration_access/calibration_reader_sqlite.h"
#include "calibration_access/oxa_calibration_reader_impl.h"
#include "reader/corrupt_data_error.h"
#include "reader/oxa_frame_reader.h"
#include "reader/oxa_reader_cache.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace fs = boost::filesystem;
using lumo::cppsqlite::simpleCheckedQuery;

namespace {

// A single scan read outside a hinted run.
constexpr uint64_t kMaxScanRead = 0x10000;
// A hinted run of scans.
constexpr uint64_t kMaxRunRead = detail::believedSizeLimit(0x40000000);

bool missing(const fs::file_status& status) {
  return status.type() == fs::status_error || status.type() == fs::file_not_found;
}

fs::file_status statusOf(const fs::path& path) {
  boost::system::error_code ec;
  return fs::status(path, ec);
}

}  // namespace

std::string globalMetadatumQuery(const std::string& key) {
  return "SELECT Value FROM GlobalMetadata WHERE Key='" + key + "'";
}

OxaReaderImpl::OxaReaderImpl(const fs::path& dir,
                             boost::optional<CalibrationStateSelector> selector)
    : logger(lumo::logging::Logger::getLogger("lumo.io.kora.OxaReaderImpl")),
      db(std::make_shared<CppSQLite3DB>()),
      schemaVersionMajor(-1),
      schemaVersionMinor(-1) {
  const fs::file_status dirStatus = statusOf(dir);
  if (missing(dirStatus))
    LUMO_THROW(std::runtime_error("Specified analysis directory does not exist."));
  if (dirStatus.type() != fs::directory_file)
    LUMO_THROW(std::runtime_error("Specified path is not a directory."));

  const fs::path oxaPath = dir / "analysis.oxa";
  const fs::path binPath = dir / "analysis.oxa_bin";
  if (missing(statusOf(oxaPath)))
    LUMO_THROW(std::runtime_error(oxaPath.generic_string() + " doesn't exist."));
  if (missing(statusOf(binPath)))
    LUMO_THROW(std::runtime_error(binPath.generic_string() + " doesn't exist."));

  // Paths are UTF-8 on this platform already.
  db->open(oxaPath.string());
  db->execDML("PRAGMA busy_timeout=15000");

  schemaVersionMajor = simpleCheckedQuery<int>(*db, globalMetadatumQuery("SchemaVersionMajor"));
  schemaVersionMinor = simpleCheckedQuery<int>(*db, globalMetadatumQuery("SchemaVersionMinor"));
  if (schemaVersionMajor > 3) {
    LUMO_THROW(std::runtime_error((boost::format("OXA schema version %d.%d not supported.") %
                                   schemaVersionMajor % schemaVersionMinor)
                                      .str()));
  }

  // Unbuffered: the reads are of a frame's header, its scan table or a whole
  // block, each used once, and a seek comes before every block; a stream
  // buffer would only add a copy of the kilobytes behind each header.
  binaryFile.rdbuf()->pubsetbuf(nullptr, 0);
  binaryFile.open(binPath.string(), std::ios::in | std::ios::binary);
  if (!binaryFile.is_open()) {
    LUMO_THROW(
        std::runtime_error("Can't open file: " + binPath.generic_string() + " for reading."));
  }

  const int compressionType =
      simpleCheckedQuery<int>(*db, globalMetadatumQuery("KoraCompressionType"));
  if (compressionType != 1 && compressionType != 2) {
    LUMO_THROW(std::runtime_error(
        (boost::format("KoraCompressionType %d not supported.") % compressionType).str()));
  }
  if (compressionType == 1)
    scanCache.reset(new OxaReaderCache);
  else
    frameReader.reset(new OxaFrameReader);

  chooseCalibrationSource(dir, std::move(selector));
}

OxaReaderImpl::~OxaReaderImpl() = default;

boost::optional<std::string> OxaReaderImpl::getGlobalMetadatum(const std::string& key) {
  try {
    CppSQLite3Query q = db->execQuery(globalMetadatumQuery(key));
    if (q.eof() || q.fieldIsNull(0)) return boost::none;
    return std::string(q.fieldValue(0));
  } catch (const CppSQLite3Exception& e) {
    LUMO_THROW(CorruptDataError(
        (boost::format("SQLite error retrieving global metadatum %s: %s") % key % e.what()).str()));
  }
}

std::string OxaReaderImpl::getGlobalMetadatumRequiredString(const std::string& key) {
  boost::optional<std::string> value = getGlobalMetadatum(key);
  if (!value) {
    LUMO_THROW(
        CorruptDataError((boost::format("Global metadatum %s not set but required.") % key).str()));
  }
  return *value;
}

template <class T>
T OxaReaderImpl::getGlobalMetadatumRequired(const std::string& key) {
  const std::string text = getGlobalMetadatumRequiredString(key);
  try {
    return boost::lexical_cast<T>(text);
  } catch (const boost::bad_lexical_cast&) {
    LUMO_THROW(CorruptDataError(
        (boost::format("Global metadatum %s not interpretable as desired type.") % key).str()));
  }
}

template int OxaReaderImpl::getGlobalMetadatumRequired<int>(const std::string&);
template unsigned int OxaReaderImpl::getGlobalMetadatumRequired<unsigned int>(const std::string&);

const detail::FrameInfo& OxaReaderImpl::getFrameInfo(int64_t frame_id) {
  if (lastFrameInfo && lastFrameInfo->first == frame_id) return lastFrameInfo->second;
  const auto hit = frameInfoCache.find(frame_id);
  if (hit != frameInfoCache.end()) {
    lastFrameInfo = &*hit;
    return hit->second;
  }

  std::string sql;
  if (schemaVersionMajor == 1) {
    sql = (boost::format("SELECT KoraId FROM Frames WHERE Id = %1%") % frame_id).str();
  } else if (schemaVersionMajor == 2 || schemaVersionMajor == 3) {
    sql = (boost::format("SELECT KoraId, AccumulationTime, RampTime FROM Frames WHERE Id = %1%") %
           frame_id)
              .str();
  } else {
    LUMO_THROW(std::runtime_error("Schema version not implemented in OxaReader::getFrameInfo()"));
  }

  CppSQLite3Query q = db->execQuery(sql);
  if (q.eof()) LUMO_THROW(CorruptFrameDataError(frame_id, "Frame doesn't exist"));

  detail::FrameInfo info;
  if (schemaVersionMajor == 1) {
    info.koraId = q.getInt64Field(0, 0);
  } else {
    info.koraId = q.getInt64Field(0, -1);
    info.accumulationTime = q.getFloatField(1, 0.0);
    info.rampTime = q.getFloatField(2, 0.0);
  }
  lastFrameInfo = &*frameInfoCache.emplace(frame_id, info).first;
  return lastFrameInfo->second;
}

std::pair<const unsigned char*, unsigned int> OxaReaderImpl::getScanBlob(int64_t frame_id,
                                                                         unsigned int scan) {
  if (!scanCache)
    LUMO_THROW(
        std::runtime_error("Unexpected call to getScanBlob for analysis with frame compression"));
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  if (!scanCache->contains(info.koraId, scan)) {
    scanCache->fill(
        binaryFile, frame_id, info.koraId, scan, scan + 1,
        [&](uint64_t bytes) {
          if (bytes > kMaxScanRead)
            LUMO_THROW(CorruptScanDataError(frame_id, scan, "Compressed scan size too large."));
        },
        [&] { LUMO_THROW(CorruptScanDataError(frame_id, scan, "Error seeking to scan data.")); },
        [&] { LUMO_THROW(CorruptScanDataError(frame_id, scan, "Error reading scan data.")); });
  }
  return scanCache->getScan(scan);
}

void OxaReaderImpl::hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin,
                                          unsigned int scan_end) {
  if (scan_end < scan_begin) LUMO_THROW(std::invalid_argument("scan_end must be >= scan_begin."));
  if (!scanCache) return;
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  scanCache->fill(
      binaryFile, frame_id, info.koraId, scan_begin, scan_end,
      [&](uint64_t bytes) {
        if (bytes > kMaxRunRead)
          LUMO_THROW(CorruptFrameDataError(frame_id, "Compressed scan-range size too large."));
      },
      [&] { LUMO_THROW(CorruptFrameDataError(frame_id, "Error seeking to scan-range data.")); },
      [&] { LUMO_THROW(CorruptFrameDataError(frame_id, "Error reading scan-range data.")); });
}

const OxaFrameReader& OxaReaderImpl::loadFrame(int64_t frame_id) {
  if (!frameReader)
    LUMO_THROW(std::runtime_error(
        "Unexpected call to getDecompressedScanData for analysis with scan compression"));
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  frameReader->fill(binaryFile, frame_id, info.koraId);
  return *frameReader;
}

const detail::ByteBuffer& OxaReaderImpl::getDecompressedScanData(int64_t frame_id,
                                                                 unsigned int scan,
                                                                 unsigned int& first,
                                                                 unsigned int& last) {
  return loadFrame(frame_id).get(scan, first, last);
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
