#include "logging/rolling_file_sink.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <sstream>

namespace lumo {
namespace logging {
namespace impl {
namespace {

namespace fs = boost::filesystem;
using boost::property_tree::ptree;

TEST(FileSize, UnitsArePowersOf1024) {
  EXPECT_EQ(0, parseFileSize("0").value());
  EXPECT_EQ(12345, parseFileSize(" \t12345\n").value());
  EXPECT_EQ(12345, parseFileSize("+12345").value());
  EXPECT_EQ(100, parseFileSize("100B").value());
  EXPECT_EQ(102400, parseFileSize("100K").value());
  EXPECT_EQ(102400, parseFileSize("100 KB").value());
  EXPECT_EQ(102400, parseFileSize("100KiB").value());
  EXPECT_EQ(102400, parseFileSize("100 k").value());
  EXPECT_EQ(102400, parseFileSize("100 KiB ").value());
  EXPECT_EQ(3LL << 20, parseFileSize("3M").value());
  EXPECT_EQ(2LL << 30, parseFileSize("2G").value());
  EXPECT_EQ(1LL << 40, parseFileSize("1T").value());
  EXPECT_EQ(1LL << 50, parseFileSize("1E").value());  // E follows T directly
}

TEST(FileSize, InvalidTexts) {
  for (const char* text :
       {"", "  ", "abc", "-1", "K", "10P", "10 KX", "10Kx", "10 K B x", "99999999999999999999"}) {
    EXPECT_FALSE(parseFileSize(text)) << text;
  }
}

TEST(FileSize, HugeUnitsWrapWithoutCheck) {
  // 8 * 1024^7 = 2^73 wraps to 0 in 64 bits; 1 Y is 2^70.
  EXPECT_EQ(0, parseFileSize("8Y").value());
  EXPECT_EQ(1LL << 60, parseFileSize("1Z").value());
}

TEST(BackupPath, ExtensionIsKeptBehindTheNumber) {
  EXPECT_EQ(fs::path("/var/log/server.bak_0.log"), backupPath("/var/log/server.log", 0));
  EXPECT_EQ(fs::path("/var/log/server.bak_12"), backupPath("/var/log/server", 12));
  EXPECT_EQ(fs::path("/a/b.c/trace.bak_3.txt"), backupPath("/a/b.c/trace.txt", 3));
}

class RollingFileSinkTest : public ::testing::Test {
 protected:
  RollingFileSinkTest()
      : dir_(fs::temp_directory_path() / fs::unique_path("kora-rolling-%%%%%%%%")) {}
  ~RollingFileSinkTest() override { fs::remove_all(dir_); }

  ptree config(const std::string& fileName, const char* maxSize = nullptr,
               const char* maxBackups = nullptr, const char* type = nullptr) {
    ptree node;
    node.put("file-path", (dir_ / fileName).string());
    if (maxSize) node.put("max-file-size", maxSize);
    if (maxBackups) node.put("max-backups", maxBackups);
    if (type) node.put("rolling-type", type);
    return node;
  }

  static void writeLine(RollingFileSink& sink, char fill, std::size_t size = 10241) {
    sink.write(LogEvent{std::string(size - 1, fill) + "\n", Level::INFO});
  }

  // The fill character of a file written by writeLine, '?' if mixed, '-' if
  // missing.
  static char contentOf(const fs::path& path) {
    if (!fs::exists(path)) return '-';
    std::ifstream in(path.string());
    std::stringstream ss;
    ss << in.rdbuf();
    const std::string text = ss.str();
    if (text.size() < 2) return '?';
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
      if (text[i] != text[0]) return '?';
    }
    return text[0];
  }

  std::string contents(const std::string& fileName, int backups) {
    std::string result(1, contentOf(dir_ / fileName));
    for (int i = 0; i < backups; ++i) result += contentOf(backupPath(dir_ / fileName, i));
    return result;
  }

  fs::path dir_;
};

TEST_F(RollingFileSinkTest, SizeAndBackupSettings) {
  struct Case {
    const char* text;
    std::int64_t expected;
  } cases[] = {{"0", 0},           {"1", 10240},     {"10239", 10240}, {"10240", 10240},
               {"-1", 1024000},    {"abc", 1024000}, {"1K", 10240},    {"10P", 1024000},
               {"2 MiB", 2097152}, {"8Y", 0},        {"8192E", 10240}};  // 2^63: top bit set,
                                                                         // counts as negative
  for (const Case& c : cases) {
    EXPECT_EQ(c.expected, RollingFileSink(config("a.log", c.text)).maxFileSize()) << c.text;
  }
  EXPECT_EQ(1024000, RollingFileSink(config("a.log")).maxFileSize());
  for (const char* text : {"0", "-3", "x", "2x", " 2"}) {
    EXPECT_EQ(10, RollingFileSink(config("a.log", nullptr, text)).maxBackups()) << text;
  }
  EXPECT_EQ(1, RollingFileSink(config("a.log", nullptr, "1")).maxBackups());
  EXPECT_EQ(7, RollingFileSink(config("a.log", nullptr, "+7")).maxBackups());
  EXPECT_EQ(RollingFileSink::STEADY_ROTATE,
            RollingFileSink(config("a.log", nullptr, nullptr, "steady-rotate")).rollingType());
  EXPECT_EQ(RollingFileSink::RESET_OLDEST,
            RollingFileSink(config("a.log", nullptr, nullptr, "reset-oldest")).rollingType());
}

TEST_F(RollingFileSinkTest, UnknownRollingTypeIsReportedAndResetOldestStays) {
  testing::internal::CaptureStderr();
  RollingFileSink sink(config("a.log", nullptr, nullptr, "Steady-Rotate"));
  const std::string report = testing::internal::GetCapturedStderr();
  EXPECT_EQ(RollingFileSink::RESET_OLDEST, sink.rollingType());
  EXPECT_EQ(0u, report.find(">>>>>>>>|- WARN in [lumo-logconf:rolling_file_sink.cpp:"));
  EXPECT_NE(std::string::npos, report.find("] - Invalid rolling-type provided: Steady-Rotate\n"))
      << report;
}

TEST_F(RollingFileSinkTest, DirectoriesAreCreatedAndBareNameFails) {
  RollingFileSink sink(config("deep/er/x.log"));
  sink.write(LogEvent{"line\n", Level::INFO});
  EXPECT_EQ(5u, fs::file_size(dir_ / "deep/er/x.log"));
  ptree bare;
  bare.put("file-path", "bare.log");
  EXPECT_THROW(RollingFileSink{bare}, fs::filesystem_error);
  EXPECT_THROW(RollingFileSink{ptree()}, boost::property_tree::ptree_bad_path);
}

TEST_F(RollingFileSinkTest, UnopenableFileFails) {
  fs::create_directories(dir_ / "taken.log");
  try {
    RollingFileSink sink(config("taken.log"));
    FAIL();
  } catch (const fs::filesystem_error& e) {
    EXPECT_EQ(EIO, e.code().value());
    EXPECT_EQ(dir_ / "taken.log", e.path1());
    EXPECT_EQ(0u, std::string(e.what()).find("Failed to open file for writing")) << e.what();
  }
}

TEST_F(RollingFileSinkTest, ZeroMaxSizeNeverRolls) {
  RollingFileSink sink(config("a.log", "0"));
  for (char c : {'a', 'b', 'c'}) writeLine(sink, c, 20000);
  EXPECT_EQ(60000u, fs::file_size(dir_ / "a.log"));
  EXPECT_FALSE(fs::exists(backupPath(dir_ / "a.log", 0)));
}

TEST_F(RollingFileSinkTest, RollsOnlyWhenStrictlyAboveLimitBeforeTheWrite) {
  RollingFileSink sink(config("a.log", "10240"));
  writeLine(sink, 'a', 10240);  // exactly the limit
  writeLine(sink, 'b', 10);
  EXPECT_EQ(10250u, fs::file_size(dir_ / "a.log"));
  EXPECT_FALSE(fs::exists(backupPath(dir_ / "a.log", 0)));
  writeLine(sink, 'c', 10);  // the file is now above: rolled before this line
  EXPECT_EQ(10250u, fs::file_size(backupPath(dir_ / "a.log", 0)));
  EXPECT_EQ('c', contentOf(dir_ / "a.log"));
}

TEST_F(RollingFileSinkTest, ResetOldestUsesRing) {
  RollingFileSink sink(config("server.log", "10240", "3"));
  writeLine(sink, '1');
  EXPECT_EQ("1---", contents("server.log", 3));
  writeLine(sink, '2');
  EXPECT_EQ("21--", contents("server.log", 3));
  writeLine(sink, '3');
  EXPECT_EQ("312-", contents("server.log", 3));
  writeLine(sink, '4');
  EXPECT_EQ("4123", contents("server.log", 3));
  writeLine(sink, '5');
  EXPECT_EQ("5423", contents("server.log", 3));  // slot 0 again
  writeLine(sink, '6');
  EXPECT_EQ("6453", contents("server.log", 3));
}

TEST_F(RollingFileSinkTest, SteadyRotateKeepsNewestInBackupZero) {
  RollingFileSink sink(config("server.log", "10K", "3", "steady-rotate"));
  for (char c : {'1', '2', '3', '4'}) writeLine(sink, c);
  EXPECT_EQ("4321", contents("server.log", 3));
  writeLine(sink, '5');
  EXPECT_EQ("5432", contents("server.log", 3));
}

TEST_F(RollingFileSinkTest, OneBackupIsReplacedAtEveryRoll) {
  RollingFileSink sink(config("trace", "10240", "1"));
  for (char c : {'1', '2', '3'}) writeLine(sink, c);
  EXPECT_EQ("32", contents("trace", 1));
  EXPECT_TRUE(fs::exists(dir_ / "trace.bak_0"));
}

TEST_F(RollingFileSinkTest, NewRunAppendsAndStartsRingAtSlotZero) {
  {
    RollingFileSink sink(config("server.log", "10240", "3"));
    for (char c : {'1', '2', '3'}) writeLine(sink, c);
    EXPECT_EQ("312-", contents("server.log", 3));
  }
  RollingFileSink sink(config("server.log", "10240", "3"));
  // The file kept '3' and is above the limit: the first line rolls it into
  // slot 0, which held '1'.
  writeLine(sink, '4');
  EXPECT_EQ("432-", contents("server.log", 3));
}

TEST_F(RollingFileSinkTest, BackupThatCannotBeRemovedIsRenamedAside) {
  const fs::path blocked = backupPath(dir_ / "server.log", 0);
  fs::create_directories(blocked / "inside");
  RollingFileSink sink(config("server.log", "10240", "3"));
  writeLine(sink, '1');
  testing::internal::CaptureStderr();
  writeLine(sink, '2');
  const std::string report = testing::internal::GetCapturedStderr();
  EXPECT_NE(std::string::npos,
            report.find("] - Error when trying to delete old log file: " + blocked.string() + "\n"))
      << report;
  EXPECT_NE(std::string::npos,
            report.find(">>>>>>>>|- WARN in [lumo-logconf:rolling_file_sink.cpp:"))
      << report;
  EXPECT_NE(std::string::npos, report.find("] - So we rename it to filename: " + blocked.string()))
      << report;
  EXPECT_EQ("21--", contents("server.log", 3));
  int displaced = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir_)) {
    const std::string name = entry.path().filename().string();
    if (name.size() > 16 && name.compare(0, 16, "server.bak_0.log") == 0) {
      EXPECT_EQ(std::string::npos, name.find_first_not_of("0123456789", 16)) << name;
      EXPECT_TRUE(fs::exists(entry.path() / "inside"));
      ++displaced;
    }
  }
  EXPECT_EQ(1, displaced);
}

}  // namespace
}  // namespace impl
}  // namespace logging
}  // namespace lumo
