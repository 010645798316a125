// Reading many frames of one analysis into peak columns on a pool of
// threads, each with its own connection (a handle serves one thread at a
// time). Runs without Python; progress and cancellation go through a
// callback on the calling thread.
#ifndef KORA_PYTHON_EXT_FRAME_QUERY_H_
#define KORA_PYTHON_EXT_FRAME_QUERY_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "connection.h"
#include "malloc_vector.h"

namespace koradata_py {

// Which peak columns to fill. One row per peak, frames in the order asked,
// scans ascending, peaks in stored order.
struct QueryColumns {
  bool frame = false;        // int64: frame id
  bool scan = false;         // uint32: scan number
  bool tof = false;          // uint32: time-of-flight index
  bool intensity = false;    // uint32
  bool mz = false;           // double: m/z of the index
  bool invMobility = false;  // double: 1/K0 of the scan, V s / cm^2
};

struct QueryRequest {
  std::vector<int64_t> frames;
  // Scans per frame, same length as `frames`: 0 reads nothing, -1 (unknown)
  // reads scan 0 only so that the library reports what is wrong.
  std::vector<int64_t> numScans;
  QueryColumns columns;
  bool raw = false;         // intensities as stored, not normalised
  bool stopOnError = true;  // stop at the first failed frame
  unsigned threads = 1;     // at least 1
};

struct FrameError {
  size_t position;  // in QueryRequest::frames
  std::string text;
};

// Columns of all rows; a column not asked for is null.
struct QueryResult {
  size_t rows = 0;
  std::vector<uint64_t> peaks;     // per position of QueryRequest::frames; 0 if failed
  std::vector<FrameError> errors;  // ascending by position
  MallocArray<int64_t> frame;
  MallocArray<uint32_t> scan;
  MallocArray<uint32_t> tof;
  MallocArray<uint32_t> intensity;
  MallocArray<double> mz;
  MallocArray<double> invMobility;
};

// Called on the calling thread with the number of frames finished so far,
// every 100 ms and once all are; returning false cancels the query (runQuery
// then returns what it has, and the caller discards it).
using ProgressCallback = std::function<bool(size_t framesDone)>;

// Decodes the frames of `request` and gathers their peaks. `pool` holds the
// connections of earlier queries and is grown to the number of workers
// (connections to `directory`). Frames that fail are left out and listed in
// QueryResult::errors; under stopOnError the query ends after the first.
// Throws LibraryError if a connection cannot be opened.
// REQUIRES: pool is used by no other thread during the call.
QueryResult runQuery(const QueryRequest& request, const std::string& directory, bool recalibrated,
                     std::vector<std::unique_ptr<Connection>>& pool,
                     const ProgressCallback& progress);

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_FRAME_QUERY_H_
