// The decoding templates of OxaReader: a range of scans of one frame, peak by
// peak, into a sink chosen by the caller. Include this where
// decodeScanRange or decodeScan is called. Each sink type (and each
// normaliser around it) gets its own instantiation of the decoders, so the
// per-peak loop makes no indirect call.
#ifndef KORA_READER_OXA_READER_DECODING_H_
#define KORA_READER_OXA_READER_DECODING_H_

#include <boost/optional.hpp>

#include "reader/intensity_normalizer.h"
#include "reader/oxa_reader.h"
#include "reader/rle2_decoder.h"
#include "reader/uimf_decompression.h"

namespace lumo {
namespace io {
namespace kora {

template <class Sink, class AfterScan>
void OxaReader::decodeScanRange(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                                Sink sink, AfterScan afterScan, NormalizationType normalization) {
  normalization = resolveNormalization(normalization, getSchemaVersionMajor());

  auto decodeAll = [&](auto scanSink) {
    hintWillReadScanRange(frame_id, scan_begin, scan_end);
    for (unsigned int scan = scan_begin; scan < scan_end; ++scan) {
      decodeScan(frame_id, scan, scanSink);
      afterScan(scan);
    }
  };
  if (normalization == NormalizationType::None) {
    decodeAll(sink);
    return;
  }
  const detail::FrameInfo& info = getFrameInfo(frame_id);
  detail::withNormalizer(normalization, info.accumulationTime, info.rampTime, sink, decodeAll);
}

template <class Sink>
void OxaReader::decodeScan(int64_t frame_id, unsigned int scan, Sink sink) {
  if (compressionType == 1) {
    const std::pair<const unsigned char*, unsigned int> blob = getScanBlob(frame_id, scan);
    if (blob.second != 0)
      decompressUimf(blob.first, static_cast<int>(blob.second), sink, lzfBuffer, kMaxLzfExpansion,
                     boost::optional<unsigned int>(numBins), &binOverflowLogged, frame_id, scan);
    return;
  }
  unsigned int first = 0;
  unsigned int last = 0;
  const detail::ByteBuffer& data = getDecompressedScanData(frame_id, scan, first, last);
  decoding::decodeRLE2(frame_id, scan, data, first, last, sink);
}

}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_OXA_READER_DECODING_H_
