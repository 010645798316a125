#include "tools/file_damage.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <iterator>
#include <vector>

#include "testing/thrown_text.h"

namespace lumo {
namespace writer {
namespace {

namespace fs = boost::filesystem;

class FileDamage : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ofstream out(path_.string(), std::ios::binary);
    out.write("\x01\x02\x03\x04\x05\x06", 6);
  }
  void TearDown() override { fs::remove(path_); }

  std::vector<unsigned char> bytes() const {
    std::ifstream in(path_.string(), std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>());
  }

  fs::path path_ = fs::temp_directory_path() / fs::unique_path("kora-damage-%%%%-%%%%");
};

TEST_F(FileDamage, TruncateFlipAndOverwriteInPlace) {
  flipByte(path_, 1);
  EXPECT_EQ(bytes(), (std::vector<unsigned char>{1, 0xFD, 3, 4, 5, 6}));
  flipByte(path_, 5, 0x80);
  overwriteLe32(path_, 1, 0xAABBCCDD);
  EXPECT_EQ(bytes(), (std::vector<unsigned char>{1, 0xDD, 0xCC, 0xBB, 0xAA, 0x86}));
  overwriteBytes(path_, 4, {0x00, 0x11});
  EXPECT_EQ(bytes(), (std::vector<unsigned char>{1, 0xDD, 0xCC, 0xBB, 0x00, 0x11}));
  truncateFile(path_, 2);
  EXPECT_EQ(bytes(), (std::vector<unsigned char>{1, 0xDD}));
}

TEST_F(FileDamage, RefusesToWorkBeyondTheEnd) {
  const std::string in = " in " + path_.string();
  EXPECT_EQ(kora_testing::thrownText<std::runtime_error>([&] { truncateFile(path_, 7); }),
            "Cannot truncate beyond the end" + in);
  EXPECT_EQ(kora_testing::thrownText<std::runtime_error>([&] { flipByte(path_, 6); }),
            "Cannot flip a byte beyond the end" + in);
  EXPECT_EQ(kora_testing::thrownText<std::runtime_error>([&] { overwriteLe32(path_, 3, 0); }),
            "Cannot write a word beyond the end" + in);
  EXPECT_EQ(kora_testing::thrownText<std::runtime_error>([&] {
              overwriteBytes(path_, 5, {1, 2});
            }),
            "Cannot overwrite bytes beyond the end" + in);
  EXPECT_EQ(bytes().size(), 6u);
}

}  // namespace
}  // namespace writer
}  // namespace lumo
