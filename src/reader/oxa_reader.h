// lumo::io::kora::OxaReader: the one object that stands for an open analysis
// directory (analysis.oxa, analysis.oxa_bin, perhaps calibration.sqlite).
// A thin facade; the state lies in OxaReaderImpl.
//
// Thread-compatible: one thread at a time. Different readers, also on the
// same directory, may be used in parallel.
#ifndef KORA_READER_OXA_READER_H_
#define KORA_READER_OXA_READER_H_

#include <atomic>
#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "calibration_access/calibration_state_selector.h"
#include "logging/logger.h"
#include "reader/frame_info.h"

namespace lumo {
namespace io {
namespace kora {

class OxaReaderImpl;

class OxaReader : boost::noncopyable {
 public:
  // Opens the analysis in `dir` or throws (std::runtime_error,
  // CppSQLite3Exception or CorruptDataError, with fixed texts).
  // `selector` only passes through to the choice of the calibration source.
  OxaReader(const boost::filesystem::path& dir,
            boost::optional<lumo::io::calibration::CalibrationStateSelector> selector);
  ~OxaReader();

  boost::optional<std::string> getGlobalMetadatum(const std::string& key);
  std::string getGlobalMetadatumRequiredString(const std::string& key);
  template <class T>
  T getGlobalMetadatumRequired(const std::string& key);

  const detail::FrameInfo& getFrameInfo(int64_t frame_id);

  int32_t getCompressionType() const { return compressionType; }
  // DigitizerNumSamples x PeakListIndexScaleFactor (32-bit, wrapping); never 0.
  uint32_t getNumBins() const { return numBins; }

 private:
  std::unique_ptr<OxaReaderImpl> impl;  // made first, freed last
  lumo::logging::Logger logger;
  int32_t compressionType;  // 1 or 2
  uint32_t numBins;
  std::atomic_flag binOverflowLogged = ATOMIC_FLAG_INIT;
  std::vector<unsigned char> lzfBuffer;
};

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_READER_H_
