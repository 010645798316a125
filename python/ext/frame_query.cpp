#include "frame_query.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "frame_batch.h"
#include "koradata.h"

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

// Hands out frame positions until every one is taken: ascending from the
// front to the front reader, descending from the back to the others. The
// front reader's frames are thus a prefix of the query, whose rows start at
// row 0. Thread-safe.
class FrameClaims {
 public:
  explicit FrameClaims(size_t count) : back_(count), none_(count) {}

  // The next position, or the frame count once all are taken.
  size_t take(bool fromFront) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (front_ == back_) return none_;
    return fromFront ? front_++ : --back_;
  }

 private:
  std::mutex mutex_;
  size_t front_ = 0;  // guarded by mutex_
  size_t back_;       // guarded by mutex_
  const size_t none_;
};

// A frame kept by a back reader, to be written at its row.
struct PendingFrame {
  const FrameBatch* batch;
  const StoredFrame* stored;
};

// Writes the pending frames to their rows of `table` on `threads` threads,
// each taking a contiguous run of about equal rows, so that each page of the
// columns is first touched by the thread that fills it.
// `firstRow[p]`: the first row of the frame at position p.
void writeRowsOnThreads(std::vector<PendingFrame>& pending, const std::vector<size_t>& firstRow,
                        size_t threads, PeakTable& table) {
  std::sort(pending.begin(), pending.end(), [](const PendingFrame& a, const PendingFrame& b) {
    return a.stored->position < b.stored->position;
  });
  size_t rows = 0;
  for (const PendingFrame& f : pending) rows += f.stored->peaks;
  // Run t holds the frames whose rows begin in [t * rows / threads, ...).
  std::vector<size_t> runBegin(threads + 1, pending.size());
  size_t row = 0;
  size_t run = 0;
  for (size_t i = 0; i < pending.size(); ++i) {
    while (run < threads && row >= run * rows / threads) runBegin[run++] = i;
    row += pending[i].stored->peaks;
  }
  onThreads(threads, [&](size_t t) {
    for (size_t i = runBegin[t]; i < runBegin[t + 1]; ++i) {
      const StoredFrame& s = *pending[i].stored;
      pending[i].batch->writeRows(s, table, firstRow[s.position]);
    }
  });
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
  const QueryColumns& wanted = request.columns;
  PeakTable table;
  size_t frontRows = 0;  // rows of the front reader's frames, written to `table`
  std::vector<std::unique_ptr<FrameBatch>> batches(workers);
  detail::FrameClaims claims(count);
  std::mutex errorsMutex;
  // Position of the first failed frame under stopOnError: frames behind it
  // are not read, frames before it still are, so that the first failure in
  // frame order is found whatever the timing.
  std::atomic<size_t> stopAt{count};
  std::atomic<bool> cancelled{false};
  detail::ProgressBoard board;
  std::exception_ptr openFailure;

  // Reader 0 writes each frame's rows into `table` at once, behind the rows
  // before it; the others keep their frames until all are read and the
  // rows of every frame are known.
  auto read = [&](size_t w) {
    if (!pool[w]) pool[w] = std::make_unique<Connection>(directory, recalibrated);
    // The batch m/z conversion may start threads of its own; beside
    // other readers it runs on this one alone (the setting is per thread).
    if (workers > 1) kora_set_num_threads(1);
    const bool front = w == 0;
    batches[w] = std::make_unique<FrameBatch>(request, *pool[w], front ? 1 : count / workers);
    FrameBatch& batch = *batches[w];
    for (size_t i = claims.take(front); i < count && !cancelled.load(); i = claims.take(front)) {
      if (request.numScans[i] != 0 && i < stopAt.load()) {
        try {
          if (front) batch.clear();
          result.peaks[i] = batch.append(i);
        } catch (const LibraryError& e) {
          std::lock_guard<std::mutex> lock(errorsMutex);
          result.errors.push_back({i, e.what()});
          if (request.stopOnError && i < stopAt.load()) stopAt.store(i);
        }
        if (front && !batch.frames().empty()) {
          const size_t peaks = batch.frames().front().peaks;
          // Room for all frames, guessed from the first.
          if (frontRows == 0) {
            table.forWanted(wanted, [&](auto& c) { c.reserve(peaks * count + peaks * count / 8); });
          }
          table.forWanted(wanted, [&](auto& c) { c.resize(frontRows + peaks); });
          batch.writeRows(batch.frames().front(), table, frontRows);
          frontRows += peaks;
        }
      }
      board.frameDone();
    }
  };
  auto failedEarly = [&] {
    if (cancelled.load()) return true;
    std::lock_guard<std::mutex> lock(errorsMutex);
    return request.stopOnError && !result.errors.empty();
  };
  // The rows of the back readers' frames, once the rows of all are known.
  auto writeBack = [&] {
    std::vector<size_t> firstRow(count + 1, 0);
    for (size_t i = 0; i < count; ++i) firstRow[i + 1] = firstRow[i] + result.peaks[i];
    result.rows = firstRow[count];
    table.forWanted(wanted, [&](auto& c) {
      c.reserve(result.rows);
      c.resize(result.rows);
    });
    std::vector<detail::PendingFrame> pending;
    for (size_t w = 1; w < workers; ++w) {
      for (const StoredFrame& s : batches[w]->frames()) pending.push_back({batches[w].get(), &s});
    }
    detail::writeRowsOnThreads(pending, firstRow, workers, table);
  };
  std::thread readers([&] {
    try {
      detail::onThreads(workers, read);
      if (!failedEarly()) writeBack();
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
  if (failedEarly()) return result;

  if (wanted.frame) result.frame = table.frame.release();
  if (wanted.scan) result.scan = table.scan.release();
  if (wanted.tof) result.tof = table.tof.release();
  if (wanted.intensity) result.intensity = table.intensity.release();
  if (wanted.mz) result.mz = table.mz.release();
  if (wanted.invMobility) result.invMobility = table.invMobility.release();
  return result;
}

}  // namespace koradata_py
