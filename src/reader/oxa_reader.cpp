#include "reader/oxa_reader.h"

#include <algorithm>
#include <boost/format.hpp>
#include <cassert>
#include <cstring>
#include <stdexcept>

#include "reader/corrupt_data_error.h"
#include "reader/oxa_frame_reader.h"
#include "reader/oxa_reader_impl.h"
#include "reader/rle2_decoder.h"
#include "reader/uimf_decompression.h"
#include "sql/cppsqlite_tools.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora {

namespace {

// The size in bytes of a read-out of `words` words.
// Throws std::runtime_error "Maximum decompressed frame size exceeded." above
// OxaReader::kMaxReadoutWords.
uint32_t readoutBytes(uint64_t words) {
  if (words > OxaReader::kMaxReadoutWords)
    LUMO_THROW(std::runtime_error("Maximum decompressed frame size exceeded."));
  return static_cast<uint32_t>(4 * words);
}

void scaleInPlace(uint32_t* intensities, size_t n, detail::CountScale scale) {
  if (!detail::keepsCounts(scale.factor))
    detail::scaleCounts(intensities, intensities, n, scale.factor, scale.rounding);
}

}  // namespace

OxaReader::OxaReader(const boost::filesystem::path& dir,
                     boost::optional<lumo::io::calibration::CalibrationStateSelector> selector)
    : impl(new OxaReaderImpl(dir, selector)),
      logger(lumo::logging::Logger::getLogger("lumo.io.kora.OxaReader")),
      compressionType(0),
      numBins(0),
      lzfBuffer(kInitialLzfBufferSize, 0) {
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

int32_t OxaReader::getSchemaVersionMajor() const { return impl->getSchemaVersionMajor(); }

std::pair<const unsigned char*, unsigned int> OxaReader::getScanBlob(int64_t frame_id,
                                                                     unsigned int scan) {
  return impl->getScanBlob(frame_id, scan);
}

void OxaReader::hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin,
                                      unsigned int scan_end) {
  impl->hintWillReadScanRange(frame_id, scan_begin, scan_end);
}

const detail::ByteBuffer& OxaReader::getDecompressedScanData(int64_t frame_id, unsigned int scan,
                                                             unsigned int& first,
                                                             unsigned int& last) {
  return impl->getDecompressedScanData(frame_id, scan, first, last);
}

// The read-out takes the same steps, in the same order, as decodeScanRange
// with a sink that collects the layout, so that it fails where and as that
// does; only where the peaks are written differs.
uint32_t OxaReader::readScans(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                              NormalizationType normalization, void* out, uint32_t capacity) {
  assert(scan_begin < scan_end);
  normalization = resolveNormalization(normalization, getSchemaVersionMajor());
  detail::CountScale scale{1.0, 0.0};
  if (normalization != NormalizationType::None) {
    const detail::FrameInfo& info = getFrameInfo(frame_id);
    scale = detail::countScale(normalization, info.accumulationTime, info.rampTime);
  }
  if (compressionType == 1)
    return readScansPerScanLzf(frame_id, scan_begin, scan_end, scale, out, capacity);
  return readScansPerFrameZstd(frame_id, scan_begin, scan_end, scale, out, capacity);
}

// Each scan is expanded and walked straight into `readout` in its final
// place; the size is known only when the last scan is done, so the read-out
// reaches `out` by one copy.
uint32_t OxaReader::readScansPerScanLzf(int64_t frame_id, unsigned int scan_begin,
                                        unsigned int scan_end, detail::CountScale scale,
                                        void* out, uint32_t capacity) {
  // The range is checked against the frame's scans here, before the counts
  // take any room.
  impl->hintWillReadScanRange(frame_id, scan_begin, scan_end);
  const size_t scans = scan_end - scan_begin;
  if (readout.size() < scans) readout.resize(scans);
  size_t end = scans;  // words of the read-out so far
  for (unsigned int scan = scan_begin; scan < scan_end; ++scan) {
    const std::pair<const unsigned char*, unsigned int> blob = impl->getScanBlob(frame_id, scan);
    size_t kept = 0;
    if (blob.second != 0) {
      const size_t words = detail::expandLzfScan(blob.first, static_cast<int>(blob.second),
                                                 lzfBuffer, kMaxLzfExpansion, frame_id, scan);
      if (readout.size() < end + 2 * words) readout.resize(end + 2 * words);
      // Indices go to their place, intensities behind room for every word
      // being a peak, then move down behind the indices.
      uint32_t* const indices = readout.data() + end;
      uint32_t* const intensities = indices + words;
      kept = detail::walkUimfScan(lzfBuffer.data(), lzfBuffer.data() + 4 * words, numBins,
                                  &binOverflowLogged, indices, intensities);
      if (kept != words) std::memmove(indices + kept, intensities, 4 * kept);
      scaleInPlace(indices + kept, kept, scale);
    }
    readout[scan - scan_begin] = static_cast<uint32_t>(kept);
    end += 2 * kept;
  }
  const uint32_t bytes = readoutBytes(end);
  if (bytes <= capacity) std::memcpy(out, readout.data(), bytes);
  return bytes;
}

// The frame is expanded once; its scan table gives every count, and so the
// size and every failure, before a peak is decoded. The peaks are then
// decoded straight into `out` when it is large enough (through `readout`
// only when `out` is not aligned to words), and not at all when it is not.
uint32_t OxaReader::readScansPerFrameZstd(int64_t frame_id, unsigned int scan_begin,
                                          unsigned int scan_end, detail::CountScale scale,
                                          void* out, uint32_t capacity) {
  const OxaFrameReader& frame = impl->loadFrame(frame_id);
  const detail::ByteBuffer& data = frame.expanded();
  const size_t scans = scan_end - scan_begin;
  // The counts, in `readout`, which grows with the scans found in the frame.
  uint64_t words = scans;
  // Scans past the frame's last one fail in get, after every scan before
  // them has been checked.
  const unsigned int listed = std::min(scan_end, std::max(scan_begin, frame.scanCount()));
  for (unsigned int scan = scan_begin; scan < scan_end; ++scan) {
    unsigned int first = 0;
    unsigned int last = 0;
    if (scan < listed) {
      frame.scanWords(scan, first, last);
    } else {
      frame.get(scan, first, last);
    }
    const size_t peaks = decoding::rle2ScanPeaks(frame_id, scan, data.size(), first, last);
    const size_t i = scan - scan_begin;
    if (i == readout.size()) readout.resize(std::max<size_t>(2 * i, 1024));
    readout[i] = static_cast<uint32_t>(peaks);
    words += 2 * uint64_t{peaks};
  }
  const uint32_t bytes = readoutBytes(words);
  if (bytes > capacity) return bytes;

  uint32_t* words_out = static_cast<uint32_t*>(out);
  const bool aligned = reinterpret_cast<uintptr_t>(out) % alignof(uint32_t) == 0;
  if (!aligned) {
    if (readout.size() < words) readout.resize(words);
    words_out = readout.data();
  } else {
    std::memcpy(words_out, readout.data(), 4 * scans);
  }
  const size_t w = data.size() / 4;
  size_t end = scans;
  for (unsigned int scan = scan_begin; scan < scan_end; ++scan) {
    unsigned int first = 0;
    unsigned int last = 0;
    frame.scanWords(scan, first, last);
    const size_t peaks = readout[scan - scan_begin];
    uint32_t index = 0;
    detail::decodePairs(data.data() + first, w, peaks, index, words_out + end,
                        words_out + end + peaks);
    scaleInPlace(words_out + end + peaks, peaks, scale);
    end += 2 * peaks;
  }
  if (!aligned) std::memcpy(out, words_out, bytes);
  return bytes;
}

}  // namespace kora
}  // namespace io
}  // namespace lumo
