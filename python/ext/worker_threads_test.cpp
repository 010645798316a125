#include "worker_threads.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace koradata_py {
namespace {

cpu_set_t processorsOfThisThread() {
  cpu_set_t set;
  CPU_ZERO(&set);
  EXPECT_EQ(0, pthread_getaffinity_np(pthread_self(), sizeof(set), &set));
  return set;
}

// Restricts the calling thread to its first allowed processor for the
// lifetime of the object.
class OneProcessor {
 public:
  OneProcessor() : before_(processorsOfThisThread()) {
    cpu_set_t one;
    CPU_ZERO(&one);
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
      if (CPU_ISSET(cpu, &before_)) {
        CPU_SET(cpu, &one);
        break;
      }
    }
    EXPECT_EQ(0, pthread_setaffinity_np(pthread_self(), sizeof(one), &one));
    mask_ = one;
  }
  ~OneProcessor() { pthread_setaffinity_np(pthread_self(), sizeof(before_), &before_); }
  const cpu_set_t& mask() const { return mask_; }

 private:
  cpu_set_t before_;
  cpu_set_t mask_;
};

TEST(RunOnThreads, RunsEveryItemOnceEachOnItsOwnThreadItemZeroOnTheCaller) {
  for (size_t count : {0, 1, 2, 5}) {
    std::mutex mutex;
    std::vector<std::thread::id> threadOf(count);
    std::vector<int> runs(count, 0);
    runOnThreads(count, [&](size_t item) {
      std::lock_guard<std::mutex> lock(mutex);
      threadOf.at(item) = std::this_thread::get_id();
      ++runs.at(item);
    });
    EXPECT_EQ(std::vector<int>(count, 1), runs) << count << " items";
    EXPECT_EQ(count, std::set<std::thread::id>(threadOf.begin(), threadOf.end()).size());
    if (count > 0) {
      EXPECT_EQ(std::this_thread::get_id(), threadOf[0]);
    }
  }
}

TEST(RunOnThreads, RethrowsAFailureOnlyOnceEveryOtherItemIsDone) {
  std::atomic<int> finished{0};
  try {
    runOnThreads(4, [&](size_t item) {
      if (item == 2) throw std::runtime_error("item 2 failed");
      ++finished;
    });
    FAIL() << "the failure of item 2 was not rethrown";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("item 2 failed", e.what());
  }
  EXPECT_EQ(3, finished.load());
}

// Threads are placed on one processor each only to start them: a thread
// left there would compete with the other work of that processor for the
// rest of the query.
TEST(RunOnThreads, ThreadsMayRunWhereverTheCallerMay) {
  auto expectCallersProcessors = [](const cpu_set_t& caller) {
    std::mutex mutex;
    std::vector<cpu_set_t> seen;
    runOnThreads(3, [&](size_t) {
      const cpu_set_t mine = processorsOfThisThread();
      std::lock_guard<std::mutex> lock(mutex);
      seen.push_back(mine);
    });
    ASSERT_EQ(3u, seen.size());
    for (const cpu_set_t& set : seen) EXPECT_TRUE(CPU_EQUAL(&caller, &set));
  };
  expectCallersProcessors(processorsOfThisThread());
  const OneProcessor restricted;
  expectCallersProcessors(restricted.mask());
}

}  // namespace
}  // namespace koradata_py
