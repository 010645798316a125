// A fresh, uniquely named directory under the system's temporary directory,
// removed with everything in it when the object goes. For tests only.
#ifndef KORA_TESTING_TEMP_DIR_H_
#define KORA_TESTING_TEMP_DIR_H_

#include <boost/filesystem.hpp>
#include <string>

namespace kora_testing {

class TempDir {
 public:
  TempDir()
      : path_(boost::filesystem::temp_directory_path() /
              boost::filesystem::unique_path("koradata-test-%%%%-%%%%-%%%%")) {
    boost::filesystem::create_directories(path_);
  }
  ~TempDir() {
    boost::system::error_code ec;
    boost::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const boost::filesystem::path& path() const { return path_; }
  boost::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  std::string str() const { return path_.string(); }

 private:
  boost::filesystem::path path_;
};

}  // namespace kora_testing

#endif  // KORA_TESTING_TEMP_DIR_H_
