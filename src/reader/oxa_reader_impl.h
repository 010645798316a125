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
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "calibration_access/calibration_state_selector.h"
#include "logging/logger.h"
#include "reader/byte_buffer.h"
#include "reader/frame_info.h"

class CppSQLite3DB;

namespace lumo {
namespace calibration {
class ICalibrationTransformator;
namespace kora {
class ITransformator;
}  // namespace kora
}  // namespace calibration
namespace io {
namespace calibration {
class CalibrationReaderSqlite;
}  // namespace calibration
namespace kora_calibration {
class OxaCalibrationReaderImpl;
}  // namespace kora_calibration
}  // namespace io
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

  // The transformators of a frame, from the calibration source chosen at
  // opening; see OxaReader.
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> getMzTrafo(int64_t frame_id,
                                                                             bool flag);
  std::unique_ptr<lumo::calibration::kora::ITransformator> getMobTrafo(int64_t frame_id);

  CppSQLite3DB& database() { return *db; }
  int32_t getSchemaVersionMajor() const { return schemaVersionMajor; }
  int32_t getSchemaVersionMinor() const { return schemaVersionMinor; }

  // The read path; see OxaReader.
  std::pair<const unsigned char*, unsigned int> getScanBlob(int64_t frame_id, unsigned int scan);
  void hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end);
  const detail::ByteBuffer& getDecompressedScanData(int64_t frame_id, unsigned int scan,
                                                    unsigned int& first, unsigned int& last);
  // Compression type 2: the frame reader, holding `frame_id` expanded; valid
  // until the next read of the frame file.
  // Throws std::runtime_error "Unexpected call to getDecompressedScanData for
  // analysis with scan compression" under compression type 1, and the errors
  // of getFrameInfo and OxaFrameReader::fill.
  const OxaFrameReader& loadFrame(int64_t frame_id);

 private:
  // The last step of opening: makes exactly one of the two calibration
  // readers. A state of `selector` is read when calibration.sqlite exists and
  // opens; otherwise (a WARN line for a missing file, nothing for a broken
  // one) the instrument calibration of analysis.oxa.
  // Throws std::runtime_error "Unexpectly missing frame information!" or
  // "Unexpectly missing frame polarity information!" when the selector needs
  // the analysis's frames and Frames is empty.
  void chooseCalibrationSource(const boost::filesystem::path& dir,
                               boost::optional<CalibrationStateSelector> selector);

  lumo::logging::Logger logger;
  std::shared_ptr<CppSQLite3DB> db;
  // Exactly one of the two is set once the constructor has returned.
  std::unique_ptr<lumo::io::calibration::CalibrationReaderSqlite> recalibrationReader;
  std::unique_ptr<lumo::io::kora_calibration::OxaCalibrationReaderImpl> analysisCalibrationReader;
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
