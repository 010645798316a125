// The state behind an open analysis: the connection to analysis.oxa, the
// stream on analysis.oxa_bin and the cache of frame rows.
//
// Thread-compatible: one thread at a time (the stream position and the frame
// cache are unprotected).
#ifndef KORA_READER_OXA_READER_IMPL_H_
#define KORA_READER_OXA_READER_IMPL_H_

#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "calibration_access/calibration_state_selector.h"
#include "logging/logger.h"
#include "reader/frame_info.h"
#include "reader/byte_buffer.h"

class CppSQLite3DB;

namespace lumo {
namespace io {
namespace kora {

using lumo::io::calibration::CalibrationStateSelector;
class OxaFrameReader;
class OxaReaderCache;

class OxaReaderImpl : boost::noncopyable {
 public:
  // Checks the directory, opens both files and reads the schema version and
  // the compression type, or throws. `selector` is the calibration state the
  // caller asked for, if any.
  OxaReaderImpl(const boost::filesystem::path& dir,
                boost::optional<CalibrationStateSelector> selector);
  ~OxaReaderImpl();

  // The value of a GlobalMetadata key; empty when the key is absent or NULL.
  boost::optional<std::string> getGlobalMetadatum(const std::string& key);
  // The value, or CorruptDataError "Global metadatum <key> not set but required.".
  std::string getGlobalMetadatumRequiredString(const std::string& key);
  // The value converted to T (int or unsigned int), or CorruptDataError
  // "Global metadatum <key> not interpretable as desired type.".
  template <class T>
  T getGlobalMetadatumRequired(const std::string& key);

  // The row of `frame_id`, queried once and cached for the reader's lifetime;
  // the reference stays valid as long as the reader lives.
  const detail::FrameInfo& getFrameInfo(int64_t frame_id);

  CppSQLite3DB& database() { return *db; }
  int32_t getSchemaVersionMajor() const { return schemaVersionMajor; }
  int32_t getSchemaVersionMinor() const { return schemaVersionMinor; }

  // The read path; see OxaReader.
  std::pair<const unsigned char*, unsigned int> getScanBlob(int64_t frame_id, unsigned int scan);
  void hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end);
  const detail::ByteBuffer& getDecompressedScanData(int64_t frame_id, unsigned int scan,
                                                    unsigned int& first, unsigned int& last);

 private:
  lumo::logging::Logger logger;
  std::shared_ptr<CppSQLite3DB> db;
  int32_t schemaVersionMajor;
  int32_t schemaVersionMinor;
  std::ifstream binaryFile;
  std::unique_ptr<OxaReaderCache> scanCache;    // set for compression type 1
  std::unique_ptr<OxaFrameReader> frameReader;  // set for compression type 2
  std::map<int64_t, detail::FrameInfo> frameInfoCache;
  // The entry of the last lookup, or null: a read asks for the same frame
  // once per scan. Map entries never move, so the pointer stays valid.
  const std::pair<const int64_t, detail::FrameInfo>* lastFrameInfo = nullptr;
};

// The query of one GlobalMetadata key. Keys are constants of the program and
// are not escaped.
std::string globalMetadatumQuery(const std::string& key);

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_READER_IMPL_H_
