// The frames one thread of a query has read and converted, kept until their
// rows are written into the columns of the result: the library's words of
// each frame behind one another, and the converted values the query wants.
// Reading (which calls the library and may fail) and writing rows (which only
// moves memory and cannot fail) are apart, so that rows can be written once
// their place in the result is known.
#ifndef KORA_PYTHON_EXT_FRAME_BATCH_H_
#define KORA_PYTHON_EXT_FRAME_BATCH_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "connection.h"
#include "frame_query.h"
#include "malloc_vector.h"

namespace koradata_py {

// The growable columns of a query result; one row per peak.
struct PeakTable {
  MallocVector<int64_t> frame;
  MallocVector<uint32_t> scan, tof, intensity;
  MallocVector<double> mz, invMobility;

  // Calls op(column) for each wanted column.
  template <class Op>
  void forWanted(const QueryColumns& wanted, Op op) {
    if (wanted.frame) op(frame);
    if (wanted.scan) op(scan);
    if (wanted.tof) op(tof);
    if (wanted.intensity) op(intensity);
    if (wanted.mz) op(mz);
    if (wanted.invMobility) op(invMobility);
  }
};

// Where one frame stands in a FrameBatch.
struct StoredFrame {
  size_t position;   // in QueryRequest::frames
  size_t word;       // its first word in the batch's words
  uint32_t scans;    // scans read
  size_t peaks;
  size_t scanValue;  // its first 1/K0 (one per scan), when wanted
  size_t peakValue;  // its first m/z (one per peak), when wanted
};

// Thread-compatible; the connection is used by this batch's thread alone.
class FrameBatch {
 public:
  FrameBatch(const QueryRequest& request, Connection& connection)
      : request_(request), connection_(connection) {
    // Room from the block cache, so that the words of a batch live on across
    // queries instead of going back to a thread's arena, which gives their
    // pages back to the system and faults them in again in the next query.
    words_.reserve(kMinCachedBytes / sizeof(uint32_t));
  }

  // Reads frame `position`, converts what the query wants, appends it and
  // returns its peaks. Throws LibraryError, leaving the batch as it was.
  // REQUIRES: request.numScans[position] != 0.
  size_t append(size_t position);

  // Forgets every frame, keeping the memory.
  void clear();

  const std::vector<StoredFrame>& frames() const { return frames_; }

  // Writes the rows of `stored` (a frame of this batch) to rows
  // [first, first + stored.peaks) of the wanted columns of `to`.
  // REQUIRES: those rows exist in every wanted column. Thread-safe against
  // other writers of other rows.
  void writeRows(const StoredFrame& stored, PeakTable& to, size_t first) const;

 private:
  const QueryRequest& request_;
  Connection& connection_;
  std::vector<StoredFrame> frames_;
  WordBuffer words_;
  MallocVector<double> invMobility_;  // per scan of each frame, V s / cm^2
  MallocVector<double> mz_;           // per peak of each frame
};

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_FRAME_BATCH_H_
