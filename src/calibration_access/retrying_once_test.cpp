#include "calibration_access/retrying_once.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace lumo {
namespace io {
namespace calibration {
namespace detail {
namespace {

// A reference that failed to load is tried again on the next call; one that
// loaded is never loaded again. Under ThreadSanitizer this is the build in
// which a throwing std::call_once used to hang the second call.
TEST(RetryingOnce, ThrowingLoadIsRetriedAndSuccessIsFinal) {
  RetryingOnce once;
  int runs = 0;
  EXPECT_THROW(once.call([&] {
    ++runs;
    throw std::runtime_error("no reference calibration available for positive polarity");
  }),
               std::runtime_error);
  EXPECT_EQ(runs, 1);
  once.call([&] { ++runs; });
  EXPECT_EQ(runs, 2);
  once.call([&] { ++runs; });
  EXPECT_EQ(runs, 2);
}

TEST(RetryingOnce, ConcurrentCallersRunTheLoadOnce) {
  RetryingOnce once;
  std::atomic<int> runs{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back([&] { once.call([&] { ++runs; }); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(runs.load(), 1);
}

}  // namespace
}  // namespace detail
}  // namespace calibration
}  // namespace io
}  // namespace lumo
