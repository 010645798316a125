#include "frame_query.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "frame_batch.h"
#include "koradata.h"
#include "row_plan.h"
#include "worker_threads.h"

namespace koradata_py {
namespace detail {

// Frames finished by the workers, looked at by the calling thread every
// 100 ms and when the workers are done. A worker only counts: waking the
// caller for every frame would take a processor from a worker whenever there
// are as many workers as processors. Thread-safe.
class ProgressBoard {
 public:
  void frameDone() { done_.fetch_add(1, std::memory_order_relaxed); }
  void finish() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      finished_ = true;
    }
    changed_.notify_one();
  }
  // Waits up to 100 ms for the workers to finish and sets `done`; false
  // once they have (`done` is then the final count).
  bool wait(size_t& done) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, std::chrono::milliseconds(100), [&] { return finished_; });
    done = done_.load(std::memory_order_relaxed);
    return !finished_;
  }

 private:
  std::atomic<size_t> done_{0};
  std::mutex mutex_;
  std::condition_variable changed_;
  bool finished_ = false;  // guarded by mutex_
};

// The columns of the result, written by every reader at once, each to the
// rows of its own frames, so that each page is first touched by the thread
// that fills it. They grow (and may move) only while no one writes.
// Thread-safe.
class SharedColumns {
 public:
  SharedColumns(const QueryColumns& wanted, size_t frames) : wanted_(wanted), frames_(frames) {}

  // Writes the rows of the one frame of `batch` from row `first` on; `plan`
  // gives the peaks per frame so far, from which the rows of all frames are
  // guessed when the columns must grow.
  void write(const FrameBatch& batch, size_t first, RowPlan& plan) {
    const StoredFrame& stored = batch.frames().front();
    const size_t end = first + stored.peaks;
    {
      std::shared_lock<std::shared_mutex> lock(mutex_);
      if (end <= rows_) {
        batch.writeRows(stored, table_, first);
        return;
      }
    }
    std::unique_lock<std::shared_mutex> lock(mutex_);
    if (end > rows_) {
      const size_t framesKnown = std::max<size_t>(plan.framesKnown(), 1);
      const size_t guess = plan.rowsKnown() / framesKnown * (frames_ + frames_ / 8);
      rows_ = std::max({end, guess, rows_ + rows_ / 2});
      table_.forWanted(wanted_, [&](auto& c) { c.resize(rows_); });
    }
    batch.writeRows(stored, table_, first);
  }

  // The columns, cut to `rows`. REQUIRES: no writer left.
  PeakTable& finish(size_t rows) {
    table_.forWanted(wanted_, [&](auto& c) { c.resize(rows); });
    return table_;
  }

 private:
  const QueryColumns& wanted_;
  const size_t frames_;
  std::shared_mutex mutex_;
  PeakTable table_;  // each wanted column rows_ long; guarded by mutex_
  size_t rows_ = 0;  // guarded by mutex_
};

// Frames read by one reader and not yet written, each in a batch of its own
// so that its place in the result need not be known when it is read.
// Thread-compatible.
class ReaderSlots {
 public:
  // A reader rarely gets more than a frame ahead of the frames before its
  // own; beyond this many frames waiting it waits itself.
  static constexpr size_t kMaxSlots = 3;

  ReaderSlots(const QueryRequest& request, Connection& connection)
      : request_(request), connection_(connection) {}

  // An empty batch, once a waiting frame is written if all are taken.
  FrameBatch& free(SharedColumns& columns, RowPlan& plan) {
    if (free_.empty()) {
      if (slots_.size() < kMaxSlots) {
        slots_.push_back(std::make_unique<FrameBatch>(request_, connection_));
        free_.push_back(slots_.back().get());
      } else {
        writeOldest(columns, plan, plan.waitFirstRow(position(*waiting_.front())));
      }
    }
    free_.back()->clear();
    return *free_.back();
  }

  // Keeps the frame just read into the batch free() gave, to be written.
  void keep() {
    waiting_.push_back(free_.back());
    free_.pop_back();
  }

  // Writes the waiting frames whose first rows are known; with `all`, waits
  // until each one's is.
  void write(SharedColumns& columns, RowPlan& plan, bool all) {
    while (!waiting_.empty()) {
      size_t first = 0;
      if (all) {
        first = plan.waitFirstRow(position(*waiting_.front()));
      } else if (!plan.firstRow(position(*waiting_.front()), first)) {
        return;
      }
      writeOldest(columns, plan, first);
    }
  }

 private:
  static size_t position(const FrameBatch& batch) { return batch.frames().front().position; }

  void writeOldest(SharedColumns& columns, RowPlan& plan, size_t first) {
    FrameBatch* batch = waiting_.front();
    columns.write(*batch, first, plan);
    waiting_.pop_front();
    free_.push_back(batch);
  }

  const QueryRequest& request_;
  Connection& connection_;
  std::vector<std::unique_ptr<FrameBatch>> slots_;
  std::vector<FrameBatch*> free_;
  std::deque<FrameBatch*> waiting_;  // ascending by position
};

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
  RowPlan plan(count);
  detail::SharedColumns columns(wanted, count);
  std::mutex errorsMutex;
  // Position of the first failed frame under stopOnError: frames behind it
  // are not read, frames before it still are, so that the first failure in
  // frame order is found whatever the timing.
  std::atomic<size_t> stopAt{count};
  std::atomic<bool> cancelled{false};
  detail::ProgressBoard board;
  std::exception_ptr openFailure;

  // Each reader takes the next frame, reads it, tells its peaks and writes
  // it to its rows once the peaks of all frames before it are told.
  auto read = [&](size_t w) {
    if (!pool[w]) pool[w] = std::make_unique<Connection>(directory, recalibrated);
    // The batch m/z conversion may start threads of its own; beside
    // other readers it runs on this one alone (the setting is per thread).
    if (workers > 1) kora_set_num_threads(1);
    detail::ReaderSlots slots(request, *pool[w]);
    for (size_t i = plan.take(); i < count; i = plan.take()) {
      size_t peaks = 0;
      try {
        FrameBatch& batch = slots.free(columns, plan);
        if (request.numScans[i] != 0 && i < stopAt.load() && !cancelled.load()) {
          try {
            peaks = batch.append(i);
            slots.keep();
          } catch (const LibraryError& e) {
            std::lock_guard<std::mutex> lock(errorsMutex);
            result.errors.push_back({i, e.what()});
            if (request.stopOnError && i < stopAt.load()) stopAt.store(i);
          }
        }
      } catch (...) {
        plan.tell(i, 0);
        throw;
      }
      result.peaks[i] = peaks;
      plan.tell(i, peaks);
      board.frameDone();
      slots.write(columns, plan, false);
    }
    slots.write(columns, plan, true);
  };
  auto failedEarly = [&] {
    if (cancelled.load()) return true;
    std::lock_guard<std::mutex> lock(errorsMutex);
    return request.stopOnError && !result.errors.empty();
  };
  std::thread readers([&] {
    try {
      runOnThreads(workers, read);
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

  result.rows = plan.rowsKnown();
  PeakTable& table = columns.finish(result.rows);

  if (wanted.frame) result.frame = table.frame.release();
  if (wanted.scan) result.scan = table.scan.release();
  if (wanted.tof) result.tof = table.tof.release();
  if (wanted.intensity) result.intensity = table.intensity.release();
  if (wanted.mz) result.mz = table.mz.release();
  if (wanted.invMobility) result.invMobility = table.invMobility.release();
  return result;
}

}  // namespace koradata_py
