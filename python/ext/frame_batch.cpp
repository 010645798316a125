#include "frame_batch.h"

#include <cstring>
#include <numeric>

#include "scan_layout.h"

namespace koradata_py {

size_t FrameBatch::append(size_t position) {
  const int64_t frame = request_.frames[position];
  const int64_t scans = request_.numScans[position];
  const uint32_t end = scans < 0 ? 1 : static_cast<uint32_t>(scans);
  StoredFrame s{position, words_.size(), end, 0, invMobility_.size(), mz_.size()};
  const QueryColumns& wanted = request_.columns;
  try {
    connection_.appendScans(frame, 0, end, request_.raw, words_);
    if (scans < 0) throw LibraryError("Number of scans of the frame unknown.");
    s.peaks = peakCount(words_.size() - s.word, end);
    if (wanted.invMobility) {
      invMobility_.resize(s.scanValue + end);
      double* values = invMobility_.data() + s.scanValue;
      std::iota(values, values + end, 0.0);
      connection_.convert(Conversion::kScanToInvMobility, frame, values, values, end);
    }
    if (wanted.mz) {
      mz_.resize(s.peakValue + s.peaks);
      double* values = mz_.data() + s.peakValue;
      indicesAsDoubles(words_.data() + s.word, end, values);
      connection_.convert(Conversion::kIndexToMz, frame, values, values, s.peaks);
    }
  } catch (...) {
    words_.resize(s.word);
    invMobility_.resize(s.scanValue);
    mz_.resize(s.peakValue);
    throw;
  }
  frames_.push_back(s);
  return s.peaks;
}

void FrameBatch::clear() {
  frames_.clear();
  words_.resize(0);
  invMobility_.resize(0);
  mz_.resize(0);
}

void FrameBatch::writeRows(const StoredFrame& s, PeakTable& to, size_t first) const {
  const QueryColumns& wanted = request_.columns;
  PeakColumns out;
  out.frame = wanted.frame ? to.frame.data() + first : nullptr;
  out.frameId = request_.frames[s.position];
  out.scan = wanted.scan ? to.scan.data() + first : nullptr;
  out.tof = wanted.tof ? to.tof.data() + first : nullptr;
  out.intensity = wanted.intensity ? to.intensity.data() + first : nullptr;
  out.invMobility = wanted.invMobility ? to.invMobility.data() + first : nullptr;
  const double* invMobilityOfScan = wanted.invMobility ? invMobility_.data() + s.scanValue : nullptr;
  scatterScans(words_.data() + s.word, s.scans, 0, invMobilityOfScan, out);
  if (wanted.mz) {
    std::memcpy(to.mz.data() + first, mz_.data() + s.peakValue, s.peaks * sizeof(double));
  }
}

}  // namespace koradata_py
