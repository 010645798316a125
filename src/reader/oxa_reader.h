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
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "calibration_access/calibration_state_selector.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "logging/logger.h"
#include "mobility/transformation.h"
#include "reader/byte_buffer.h"
#include "reader/frame_info.h"
#include "reader/intensity_normalizer.h"

namespace lumo {
namespace io {
namespace kora {

class OxaReaderImpl;

class OxaReader : boost::noncopyable {
 public:
  // The most bytes one scan of a per-scan compressed frame may expand to.
  static constexpr unsigned int kMaxLzfExpansion = 4194304;
  // The size the scratch buffer of those expansions starts with; it grows
  // as scans need and keeps its size.
  static constexpr size_t kInitialLzfBufferSize = 1000;
  // The most 32-bit words a read-out of scans may have.
  static constexpr uint64_t kMaxReadoutWords = 0x3FFFFFFF;

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

  // --- Calibration source, chosen at opening.

  // The mass transformator of `frame_id`; empty when the frame's calibration
  // row does not exist. The exported conversions pass `flag` true; with the
  // analysis's own calibration it is ignored. With a recalibration state the
  // frame's polarity and temperatures are read ("Frame <id> does not exist."
  // as std::invalid_argument when there is no frame row), unless `flag` is
  // false and the state has its own calibration per frame.
  // Throws the failures of the calibration readers.
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> getMzTrafo(int64_t frame_id,
                                                                             bool flag);
  // The mobility transformator of `frame_id`, owned by the caller; may be
  // empty. Throws the failures of the calibration readers.
  std::unique_ptr<lumo::calibration::kora::ITransformator> getMobTrafo(int64_t frame_id);

  // --- Read path.

  // The read-out of scans [scan_begin, scan_end) of `frame_id`, N of them:
  // N peak counts, then per scan its indices and then its intensities, all
  // as 32-bit words in the machine's byte order, nothing between. Returns its
  // size in bytes, and writes it to `out` only when that is at most
  // `capacity`; on failure nothing is written. `normalization` as in
  // decodeScanRange.
  // REQUIRES: scan_begin < scan_end.
  // Throws std::runtime_error "Maximum decompressed frame size exceeded." for
  // more than kMaxReadoutWords words, and the errors of decodeScanRange.
  uint32_t readScans(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                     NormalizationType normalization, void* out, uint32_t capacity);

  // Template definitions are in reader/oxa_reader_decoding.h.

  // Decodes scans [scan_begin, scan_end) of `frame_id` in order: for each
  // scan, sink(index, intensity) per peak in stored order, then
  // afterScan(scan). `normalization` Default is resolved by the schema major
  // version; the normalisation wraps `sink`.
  // Sink: callable as void(uint32_t, uint32_t); AfterScan: void(unsigned int).
  // Throws std::runtime_error "decodeScanRange() : Unknown NormalizationType"
  // for a value above 4, and every error of the frame file and its decoders.
  template <class Sink, class AfterScan>
  void decodeScanRange(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end, Sink sink,
                       AfterScan afterScan, NormalizationType normalization);
  // The peaks of one scan, without normalisation.
  template <class Sink>
  void decodeScan(int64_t frame_id, unsigned int scan, Sink sink);

  // Compression type 1: the stored bytes of one scan, (nullptr, 0) for an
  // empty scan, from the cache or by a read of that scan alone (at most
  // 64 KiB). Valid until the next read of the frame file.
  std::pair<const unsigned char*, unsigned int> getScanBlob(int64_t frame_id, unsigned int scan);
  // Announces that scans [scan_begin, scan_end) of `frame_id` come next.
  // Compression type 1: reads the run with one read (at most 1 GiB), always.
  // Compression type 2: does nothing.
  void hintWillReadScanRange(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end);
  // Compression type 2: the expanded frame and the word range of `scan`;
  // the frame is expanded once while its scans are read one after another.
  const detail::ByteBuffer& getDecompressedScanData(int64_t frame_id, unsigned int scan,
                                                    unsigned int& first, unsigned int& last);

  int32_t getSchemaVersionMajor() const;
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
  // Scratch of readScans where the read-out cannot be written in place: it
  // keeps its allocation over calls.
  detail::WordBuffer readout;

  // readScans by compression type, after the normalisation is resolved.
  uint32_t readScansPerScanLzf(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                               detail::CountScale scale, void* out, uint32_t capacity);
  uint32_t readScansPerFrameZstd(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                                 detail::CountScale scale, void* out, uint32_t capacity);
};

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_READER_H_
