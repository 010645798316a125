#include "reader/oxa_reader.h"

#include <boost/format.hpp>

#include "sql/cppsqlite_tools.h"
#include "reader/corrupt_data_error.h"
#include "reader/oxa_reader_impl.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

OxaReader::OxaReader(const boost::filesystem::path& dir,
                     boost::optional<lumo::io::calibration::CalibrationStateSelector> selector)
    : impl(new OxaReaderImpl(dir, selector)),
      logger(lumo::logging::Logger::getLogger("lumo.io.kora.OxaReader")),
      compressionType(0),
      numBins(0),
      lzfBuffer(1000, 0) {
  compressionType = lumo::cppsqlite::simpleCheckedQuery<int>(
      impl->database(), globalMetadatumQuery("KoraCompressionType"));
  if (compressionType != 1 && compressionType != 2) {
    LUMO_THROW(std::runtime_error(
        (boost::format("KoraCompressionType %d not supported.") % compressionType).str()));
  }
  const int scale = getGlobalMetadatumRequired<int>("PeakListIndexScaleFactor");
  const unsigned int samples = getGlobalMetadatumRequired<unsigned int>("DigitizerNumSamples");
  // A negative scale wraps to a huge product and passes: only 0 is refused.
  numBins = static_cast<uint32_t>(samples) * static_cast<uint32_t>(scale);
  if (numBins == 0)
    LUMO_THROW(CorruptDataError("Unreasonable digitizer timing settings in global metadata."));
  binOverflowLogged.clear();
}

OxaReader::~OxaReader() = default;

boost::optional<std::string> OxaReader::getGlobalMetadatum(const std::string& key) {
  return impl->getGlobalMetadatum(key);
}

std::string OxaReader::getGlobalMetadatumRequiredString(const std::string& key) {
  return impl->getGlobalMetadatumRequiredString(key);
}

template <class T>
T OxaReader::getGlobalMetadatumRequired(const std::string& key) {
  return impl->getGlobalMetadatumRequired<T>(key);
}

template int OxaReader::getGlobalMetadatumRequired<int>(const std::string&);
template unsigned int OxaReader::getGlobalMetadatumRequired<unsigned int>(const std::string&);

const detail::FrameInfo& OxaReader::getFrameInfo(int64_t frame_id) {
  return impl->getFrameInfo(frame_id);
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
