#include "frame_query.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <numeric>
#include <thread>

#include "koradata.h"
#include "scan_layout.h"

namespace koradata_py {
namespace detail {

// Runs body(item) for every item in [0, count), one thread per item. The
// first exception of a body is rethrown once all threads are done.
template <class Body>
void onThreads(size_t count, const Body& body) {
  std::exception_ptr failure;
  std::mutex failureMutex;
  auto run = [&](size_t item) {
    try {
      body(item);
    } catch (...) {
      std::lock_guard<std::mutex> lock(failureMutex);
      if (!failure) failure = std::current_exception();
    }
  };
  std::vector<std::thread> threads;
  for (size_t i = 1; i < count; ++i) threads.emplace_back(run, i);
  if (count > 0) run(0);
  for (std::thread& t : threads) t.join();
  if (failure) std::rethrow_exception(failure);
}

// Frames finished by the workers, told to the calling thread. Thread-safe.
class ProgressBoard {
 public:
  void frameDone() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      ++done_;
    }
    changed_.notify_one();
  }
  void finish() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      finished_ = true;
    }
    changed_.notify_one();
  }
  // Waits up to 100 ms for a change and updates `done`; false once finished
  // and the last count was seen.
  bool wait(size_t& done) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, std::chrono::milliseconds(100),
                      [&] { return finished_ || done_ != done; });
    const bool more = !(finished_ && done_ == done);
    done = done_;
    return more;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  size_t done_ = 0;
  bool finished_ = false;
};

// The rows one worker has gathered, for a contiguous run of frames.
struct WorkerRows {
  MallocVector<int64_t> frame;
  MallocVector<uint32_t> scan, tof, intensity;
  MallocVector<double> mz, invMobility;
  size_t rows = 0;

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

// Decodes frames into the rows of one worker. Thread-compatible.
class FrameDecoder {
 public:
  // `frames`: how many frames this decoder is expected to append.
  FrameDecoder(const QueryRequest& request, Connection& connection, WorkerRows& rows, size_t frames)
      : request_(request), connection_(connection), out_(rows), frames_(frames) {}

  // Appends the rows of frame `position` and returns their number. On a
  // failure nothing is appended.
  // REQUIRES: request.numScans[position] != 0.
  size_t append(size_t position) {
    const int64_t frame = request_.frames[position];
    const int64_t scans = request_.numScans[position];
    const uint32_t end = scans < 0 ? 1 : static_cast<uint32_t>(scans);
    connection_.readScans(frame, 0, end, request_.raw, words_);
    if (scans < 0) throw LibraryError("Number of scans of the frame unknown.");
    const QueryColumns& wanted = request_.columns;
    const size_t first = out_.rows;
    const size_t peaks = peakCount(words_.size(), end);
    if (wanted.invMobility) {
      scanValues_.resize(end);
      std::iota(scanValues_.data(), scanValues_.data() + end, 0.0);
      connection_.convert(Conversion::kScanToInvMobility, frame, scanValues_.data(),
                          scanValues_.data(), end);
    }
    // Room for all frames at once, guessed from the first, so that the
    // columns rarely grow (and large blocks come from the block cache).
    const size_t guess = peaks * frames_ + peaks * frames_ / 8;
    if (first == 0) out_.forWanted(wanted, [&](auto& column) { column.reserve(guess); });
    out_.forWanted(wanted, [&](auto& column) { column.resize(first + peaks); });
    PeakColumns to;
    to.scan = wanted.scan ? out_.scan.data() + first : nullptr;
    to.tof = wanted.tof ? out_.tof.data() + first : nullptr;
    to.intensity = wanted.intensity ? out_.intensity.data() + first : nullptr;
    to.invMobility = wanted.invMobility ? out_.invMobility.data() + first : nullptr;
    scatterScans(words_.data(), end, 0, scanValues_.data(), to);
    if (wanted.frame) std::fill_n(out_.frame.data() + first, peaks, frame);
    if (wanted.mz) {
      double* mz = out_.mz.data() + first;
      indicesAsDoubles(words_.data(), end, mz);
      connection_.convert(Conversion::kIndexToMz, frame, mz, mz, peaks);
    }
    out_.rows = first + peaks;
    return peaks;
  }

 private:
  const QueryRequest& request_;
  Connection& connection_;
  WorkerRows& out_;
  const size_t frames_;
  WordBuffer words_;                 // reused over frames
  MallocVector<double> scanValues_;  // scan numbers, then their 1/K0
};

// Moves the rows of all workers, in worker order, into `target`: the
// first worker's block is grown in place, the others are copied behind it in
// parallel.
template <class T>
MallocArray<T> joinColumn(std::vector<WorkerRows>& workers, MallocVector<T> WorkerRows::*column,
                          const std::vector<size_t>& firstRow) {
  MallocVector<T>& head = workers.front().*column;
  head.resize(firstRow.back());
  T* joined = head.data();
  onThreads(workers.size() - 1, [&](size_t i) {
    MallocVector<T>& part = workers[i + 1].*column;
    std::memcpy(joined + firstRow[i + 1], part.data(), workers[i + 1].rows * sizeof(T));
    part = MallocVector<T>();
  });
  return head.release();
}

}  // namespace detail

QueryResult runQuery(const QueryRequest& request, const std::string& directory, bool recalibrated,
                     std::vector<std::unique_ptr<Connection>>& pool,
                     const ProgressCallback& progress) {
  const size_t count = request.frames.size();
  const size_t workers = std::max<size_t>(1, std::min<size_t>(request.threads, count));
  if (pool.size() < workers) pool.resize(workers);

  QueryResult result;
  result.peaks.assign(count, 0);
  std::vector<detail::WorkerRows> rows(workers);
  std::mutex errorsMutex;
  // Position of the first failed frame under stopOnError: frames behind it
  // are not read, frames before it still are, so that the first failure in
  // frame order is found whatever the timing.
  std::atomic<size_t> stopAt{count};
  std::atomic<bool> cancelled{false};
  detail::ProgressBoard board;
  std::exception_ptr openFailure;

  // Worker w reads the contiguous run of frames [begin(w), begin(w + 1)), so
  // that its rows are in frame order and the runs join in worker order.
  auto begin = [&](size_t w) { return w * count / workers; };
  std::thread readers([&] {
    try {
      detail::onThreads(workers, [&](size_t w) {
        if (!pool[w]) pool[w] = std::make_unique<Connection>(directory, recalibrated);
        // The batch m/z conversion may start threads of its own; beside
        // other workers it runs on this one alone (the setting is per thread).
        if (workers > 1) kora_set_num_threads(1);
        // Worker 0's columns grow into the joined ones: room for all frames.
        const size_t frames = w == 0 ? count : begin(w + 1) - begin(w);
        detail::FrameDecoder decoder(request, *pool[w], rows[w], frames);
        for (size_t i = begin(w); i < begin(w + 1) && i < stopAt.load() && !cancelled.load(); ++i) {
          if (request.numScans[i] != 0) {
            try {
              result.peaks[i] = decoder.append(i);
            } catch (const LibraryError& e) {
              std::lock_guard<std::mutex> lock(errorsMutex);
              result.errors.push_back({i, e.what()});
              if (request.stopOnError && i < stopAt.load()) stopAt.store(i);
            }
          }
          board.frameDone();
        }
      });
    } catch (...) {
      openFailure = std::current_exception();
    }
    board.finish();
  });
  size_t done = 0;
  while (board.wait(done)) {
    if (!cancelled.load() && !progress(done)) cancelled.store(true);
  }
  readers.join();
  if (openFailure) std::rethrow_exception(openFailure);
  if (!cancelled.load()) progress(done);
  std::sort(result.errors.begin(), result.errors.end(),
            [](const FrameError& a, const FrameError& b) { return a.position < b.position; });
  if (cancelled.load() || (request.stopOnError && !result.errors.empty())) return result;

  std::vector<size_t> firstRow(workers + 1, 0);
  for (size_t w = 0; w < workers; ++w) firstRow[w + 1] = firstRow[w] + rows[w].rows;
  result.rows = firstRow.back();
  const QueryColumns& c = request.columns;
  using detail::joinColumn;
  using detail::WorkerRows;
  if (c.frame) result.frame = joinColumn(rows, &WorkerRows::frame, firstRow);
  if (c.scan) result.scan = joinColumn(rows, &WorkerRows::scan, firstRow);
  if (c.tof) result.tof = joinColumn(rows, &WorkerRows::tof, firstRow);
  if (c.intensity) result.intensity = joinColumn(rows, &WorkerRows::intensity, firstRow);
  if (c.mz) result.mz = joinColumn(rows, &WorkerRows::mz, firstRow);
  if (c.invMobility) result.invMobility = joinColumn(rows, &WorkerRows::invMobility, firstRow);
  return result;
}

}  // namespace koradata_py
