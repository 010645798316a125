// The exported functions, through the public header only (plus our writer to
// make analyses).
#include "koradata.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "testing/temp_dir.h"
#include "tools/analysis_writer.h"

extern "C" uint32_t kora_c_last_error_size(void);
extern "C" uint64_t kora_c_open(const char* path);

namespace {

// This thread's last error text, fetched the way a careful caller does.
std::string lastError() {
  const uint32_t size = kora_get_last_error_string(nullptr, 0);
  std::vector<char> buf(size);
  EXPECT_EQ(size, kora_get_last_error_string(buf.data(), size));
  return std::string(buf.data());
}

// Runs `f` on a new thread and waits for it.
template <class F>
void onFreshThread(F f) {
  std::thread t(f);
  t.join();
}

void failOpen(const std::string& path) { EXPECT_EQ(0u, kora_open(path.c_str(), 0)); }

class KoraOpen : public ::testing::Test {
 protected:
  void writeSound() {
    lumo::writer::writeAnalysis(lumo::writer::AnalysisSpec::make(3, 2, 400000), dir.path());
  }
  kora_testing::TempDir dir;
};

TEST(KoraLastError, ThreadWithoutErrorGetsNoErrorText) {
  onFreshThread([] {
    EXPECT_EQ(11u, kora_get_last_error_string(nullptr, 0));
    char buf[32];
    std::fill(buf, buf + sizeof buf, 'x');
    EXPECT_EQ(11u, kora_get_last_error_string(buf, sizeof buf));
    EXPECT_STREQ("<no error>", buf);
  });
}

TEST(KoraLastError, CutsToTheBufferAndAlwaysTerminates) {
  onFreshThread([] {
    failOpen("/nonexistent-koradata-dir");
    const std::string text = "Specified analysis directory does not exist.";
    const uint32_t L = static_cast<uint32_t>(text.size());
    std::vector<char> buf(L + 8, 'x');
    EXPECT_EQ(L + 1, kora_get_last_error_string(buf.data(), 1));
    EXPECT_EQ('\0', buf[0]);
    EXPECT_EQ('x', buf[1]);
    EXPECT_EQ(L + 1, kora_get_last_error_string(buf.data(), L));
    EXPECT_EQ(text.substr(0, L - 1), std::string(buf.data()));
    EXPECT_EQ(L + 1, kora_get_last_error_string(buf.data(), L + 1));
    EXPECT_EQ(text, std::string(buf.data()));
    // Nothing is written when len is 0.
    buf[0] = 'y';
    EXPECT_EQ(L + 1, kora_get_last_error_string(buf.data(), 0));
    EXPECT_EQ('y', buf[0]);
  });
}

TEST_F(KoraOpen, LastErrorIsOverwrittenByFailuresOnlyAndPerThread) {
  writeSound();
  onFreshThread([this] {
    failOpen((dir / "missing").string());
    EXPECT_EQ("Specified analysis directory does not exist.", lastError());
    const uint64_t h = kora_open(dir.str().c_str(), 0);
    ASSERT_NE(0u, h);
    kora_close(h);
    EXPECT_EQ("Specified analysis directory does not exist.", lastError());
    onFreshThread([this] { failOpen((dir / "analysis.oxa").string()); });
    EXPECT_EQ("Specified analysis directory does not exist.", lastError());
    failOpen((dir / "analysis.oxa").string());
    EXPECT_EQ("Specified path is not a directory.", lastError());
  });
}

TEST_F(KoraOpen, RefusesMalformedUtf8) {
  onFreshThread([] {
    EXPECT_EQ(0u, kora_open("/tmp/bad\xff"
                            "dir",
                            0));
    EXPECT_EQ("Invalid UTF-8", lastError());
    // A sequence cut off by the end of the string is utfcpp's "not enough
    // room" rather than an invalid byte.
    EXPECT_EQ(0u, kora_open("/tmp/cut\xe2\x82", 1));
    EXPECT_EQ("Not enough space", lastError());
  });
}

TEST_F(KoraOpen, ReportsOpenFailuresThroughTheBoundary) {
  auto spec = lumo::writer::AnalysisSpec::make(3, 2, 400000);
  spec.metadata.set("SchemaVersionMajor", "4");
  lumo::writer::writeAnalysis(spec, dir.path());
  onFreshThread([this] {
    failOpen(dir.str());
    EXPECT_EQ("OXA schema version 4.0 not supported.", lastError());
  });
}

TEST_F(KoraOpen, OpensWithAnyRecalibrationFlagAndHasNoRecalibratedState) {
  writeSound();
  for (uint32_t flag : {0u, 1u, 2u}) {
    const uint64_t h = kora_open(dir.str().c_str(), flag);
    ASSERT_NE(0u, h) << lastError();
    EXPECT_EQ(0u, kora_has_recalibrated_state(h));
    kora_close(h);
  }
  // Two handles on one directory are independent.
  const uint64_t a = kora_open(dir.str().c_str(), 0);
  const uint64_t b = kora_open(dir.str().c_str(), 0);
  ASSERT_NE(0u, a);
  ASSERT_NE(0u, b);
  EXPECT_NE(a, b);
  kora_close(a);
  kora_close(b);
  kora_close(0);
  EXPECT_EQ(0u, kora_has_recalibrated_state(0));
}

TEST_F(KoraOpen, HeaderIsUsableFromC) {
  writeSound();
  onFreshThread([this] {
    EXPECT_EQ(11u, kora_c_last_error_size());
    const uint64_t h = kora_c_open(dir.str().c_str());
    EXPECT_NE(0u, h);
    kora_close(h);
    EXPECT_EQ(0u, kora_c_open((dir / "nope").string().c_str()));
    EXPECT_EQ(45u, kora_c_last_error_size());
  });
}

TEST(KoraSetNumThreads, AcceptsAnyCount) {
  kora_set_num_threads(1);
  kora_set_num_threads(2);
}

}  // namespace
