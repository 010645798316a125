// Where the rows of each frame of a query go: frame positions are handed out
// in ascending order, each reader tells how many peaks its frame has once it
// is read, and the first row of a frame is known as soon as the peaks of
// every frame before it are. A reader can then write its frame straight to
// its rows of the result while the others still read theirs.
#ifndef KORA_PYTHON_EXT_ROW_PLAN_H_
#define KORA_PYTHON_EXT_ROW_PLAN_H_

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace koradata_py {

// Thread-safe.
class RowPlan {
 public:
  explicit RowPlan(size_t count) : count_(count), peaks_(count, 0), told_(count, false),
                                   firstRow_(count + 1, 0) {}

  // The next position, ascending; count or more once all are taken. Every
  // position taken must be told, or readers of later positions wait forever.
  size_t take() { return next_.fetch_add(1); }

  // Records the peaks of the frame at `position` (0 for a frame left out).
  // REQUIRES: position taken and not told before.
  void tell(size_t position, size_t peaks) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      peaks_[position] = peaks;
      told_[position] = true;
      if (position != known_) return;
      while (known_ < count_ && told_[known_]) {
        firstRow_[known_ + 1] = firstRow_[known_] + peaks_[known_];
        ++known_;
      }
    }
    advanced_.notify_all();
  }

  // Whether the first row of `position` is known yet; then it is `first`.
  bool firstRow(size_t position, size_t& first) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (position >= known_) return false;
    first = firstRow_[position];
    return true;
  }

  // The first row of `position`, once known.
  size_t waitFirstRow(size_t position) {
    std::unique_lock<std::mutex> lock(mutex_);
    advanced_.wait(lock, [&] { return position < known_; });
    return firstRow_[position];
  }

  // Rows of all frames before the first one not yet told.
  size_t rowsKnown() {
    std::lock_guard<std::mutex> lock(mutex_);
    return firstRow_[known_];
  }

  // Frames before the first one not yet told.
  size_t framesKnown() {
    std::lock_guard<std::mutex> lock(mutex_);
    return known_;
  }

 private:
  const size_t count_;
  std::atomic<size_t> next_{0};
  std::mutex mutex_;
  std::condition_variable advanced_;
  std::vector<size_t> peaks_;     // guarded by mutex_
  std::vector<bool> told_;        // guarded by mutex_
  std::vector<size_t> firstRow_;  // [p] known for p <= known_; guarded by mutex_
  size_t known_ = 0;              // guarded by mutex_
};

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_ROW_PLAN_H_
