#include "logging/rolling_file_sink.h"

#include <boost/filesystem/operations.hpp>
#include <boost/property_tree/ptree.hpp>
#include <boost/regex.hpp>
#include <cerrno>
#include <chrono>
#include <climits>

#include "logging/diagnostic.h"
#include "logging/path_expansion.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace impl {
namespace {

namespace fs = boost::filesystem;

constexpr std::int64_t kDefaultMaxFileSize = 1024000;
constexpr std::int64_t kMinMaxFileSize = 10240;
constexpr int kDefaultMaxBackups = 10;

bool isSpace(char c) {
  return c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r' || c == ' ';
}

// Power of 1024 of a unit letter; -1 for none. There is no P: E, Z, Y follow
// T directly.
int unitPower(char c) {
  switch (c) {
    case 'B':
      return 0;
    case 'K':
    case 'k':
      return 1;
    case 'M':
      return 2;
    case 'G':
      return 3;
    case 'T':
      return 4;
    case 'E':
      return 5;
    case 'Z':
      return 6;
    case 'Y':
      return 7;
    default:
      return -1;
  }
}

boost::optional<int> parseMaxBackups(const std::string& text) {
  static const boost::regex integer("[+-]?[0-9]+");
  if (!boost::regex_match(text, integer)) return boost::none;
  errno = 0;
  const long value = std::strtol(text.c_str(), nullptr, 10);
  if (errno == ERANGE || value < INT_MIN || value > INT_MAX) return boost::none;
  return static_cast<int>(value);
}

std::string displacedName(const fs::path& backup) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return backup.string() +
         std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace

boost::optional<std::int64_t> parseFileSize(const std::string& text) {
  std::size_t i = 0;
  const std::size_t n = text.size();
  while (i < n && isSpace(text[i])) ++i;
  if (i == n) return boost::none;
  bool negative = false;
  if (text[i] == '+' || text[i] == '-') negative = text[i++] == '-';
  const std::size_t digits = i;
  std::int64_t value = 0;
  while (i < n && text[i] >= '0' && text[i] <= '9') {
    const int d = text[i++] - '0';
    if (value > (INT64_MAX - d) / 10) return boost::none;
    value = value * 10 + d;
  }
  if (i == digits) return boost::none;
  if (negative && value != 0) return boost::none;
  while (i < n && isSpace(text[i])) ++i;
  if (i == n) return value;
  const int power = unitPower(text[i++]);
  if (power < 0) return boost::none;
  if (i < n && text[i] == 'i') ++i;
  if (i < n) {
    if (text[i] == '\t' || text[i] == ' ' || text[i] == 'B') ++i;
    while (i < n && isSpace(text[i])) ++i;
    if (i != n) return boost::none;
  }
  std::uint64_t result = static_cast<std::uint64_t>(value);
  for (int p = 0; p < power; ++p) result *= 1024;  // no overflow check
  return static_cast<std::int64_t>(result);
}

fs::path backupPath(const fs::path& path, int index) {
  fs::path backup = path;
  backup.replace_extension(".bak_" + std::to_string(index) + path.extension().string());
  return backup;
}

RollingFileSink::RollingFileSink(const boost::property_tree::ptree& node)
    : filePath_(expandPathVariables(node.get<std::string>("file-path"))),
      maxFileSize_(kDefaultMaxFileSize),
      maxBackups_(kDefaultMaxBackups),
      backupIndex_(0),
      rollingType_(RESET_OLDEST) {
  // A bare file name has an empty parent, which this call refuses.
  fs::create_directories(filePath_.parent_path());
  stream_.open(filePath_.string(), std::ios::out | std::ios::app);
  if (!stream_) {
    LUMO_THROW_NO_TRACE(
        fs::filesystem_error("Failed to open file for writing", filePath_,
                             boost::system::error_code(EIO, boost::system::generic_category())));
  }
  if (boost::optional<std::string> text = node.get_optional<std::string>("max-file-size")) {
    if (boost::optional<std::int64_t> size = parseFileSize(*text)) maxFileSize_ = *size;
  }
  if (maxFileSize_ < 0 || (maxFileSize_ > 0 && maxFileSize_ < kMinMaxFileSize)) {
    maxFileSize_ = kMinMaxFileSize;
  }
  if (boost::optional<std::string> text = node.get_optional<std::string>("max-backups")) {
    boost::optional<int> backups = parseMaxBackups(*text);
    if (backups && *backups >= 1) maxBackups_ = *backups;
  }
  if (boost::optional<std::string> text = node.get_optional<std::string>("rolling-type")) {
    if (*text == "steady-rotate") {
      rollingType_ = STEADY_ROTATE;
    } else if (*text != "reset-oldest") {
      LUMO_REPORT_DIAGNOSTIC(1, ("Invalid rolling-type provided: " + *text + "\n").c_str());
    }
  }
}

void RollingFileSink::write(const LogEvent& event) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (maxFileSize_ != 0 && !filePath_.empty()) {
    boost::system::error_code ec;
    const boost::uintmax_t size = fs::file_size(filePath_, ec);
    if (!ec && size > static_cast<boost::uintmax_t>(maxFileSize_)) {
      if (rollingType_ == STEADY_ROTATE) {
        doRollOverSteadyRotate();
      } else {
        doRollOverResetOldest();
      }
    }
  }
  if (stream_.is_open()) {
    stream_.write(event.text.data(), static_cast<std::streamsize>(event.text.size()));
    stream_.flush();
  } else {
    writeDiagnosticOutput(2, event.text.c_str());
  }
}

boost::system::error_code RollingFileSink::removeBackup(const fs::path& backup) {
  boost::system::error_code ec;
  if (!fs::exists(backup, ec)) return boost::system::error_code();
  fs::remove(backup, ec);
  if (!ec) return ec;
  LUMO_REPORT_DIAGNOSTIC(
      2, ("Error when trying to delete old log file: " + backup.string() + "\n").c_str());
  const fs::path displaced(displacedName(backup));
  fs::rename(backup, displaced, ec);
  if (ec) {
    LUMO_REPORT_DIAGNOSTIC(2, "And we also cannot rename it!\n");
  } else {
    LUMO_REPORT_DIAGNOSTIC(1,
                           ("So we rename it to filename: " + displaced.string() + "\n").c_str());
  }
  return ec;
}

void RollingFileSink::reopen() {
  stream_.clear();
  stream_.open(filePath_.string(), std::ios::out | std::ios::app);
  if (!stream_.is_open()) {
    LUMO_REPORT_DIAGNOSTIC(2, ("Failed to open file for writing: " + filePath_.string() +
                               "\nFalling back to output into error channel instead\n")
                                  .c_str());
  }
}

void RollingFileSink::doRollOverResetOldest() {
  const fs::path backup = backupPath(filePath_, backupIndex_);
  removeBackup(backup);
  stream_.close();
  boost::system::error_code ec;
  fs::rename(filePath_, backup, ec);
  if (ec) LUMO_REPORT_DIAGNOSTIC(2, "Error when trying to rename log file to backup one.\n");
  reopen();
  backupIndex_ = (backupIndex_ + 1) % maxBackups_;
}

void RollingFileSink::doRollOverSteadyRotate() {
  int i = maxBackups_ - 1;
  boost::system::error_code ec = removeBackup(backupPath(filePath_, i));
  for (;;) {
    --i;
    if (ec) {
      LUMO_REPORT_DIAGNOSTIC(2, ("Failed to rotate: " + filePath_.string() +
                                 "\nThe original file will still be used regardless of file "
                                 "size excess.\n")
                                    .c_str());
      return;
    }
    if (i == -1) break;
    const fs::path newer = backupPath(filePath_, i);
    boost::system::error_code existsError;
    if (fs::exists(newer, existsError)) {
      const fs::path older = backupPath(filePath_, i + 1);
      fs::rename(newer, older, ec);
      if (ec) {
        LUMO_REPORT_DIAGNOSTIC(2, ("Error when trying to rename log file: " + newer.string() +
                                   " to " + older.string() + "\n")
                                      .c_str());
      }
    }
  }
  stream_.close();
  const fs::path newest = backupPath(filePath_, 0);
  fs::rename(filePath_, newest, ec);
  if (ec) {
    LUMO_REPORT_DIAGNOSTIC(2, ("Error when trying to rename log file: " + filePath_.string() +
                               " to " + newest.string() + "\n")
                                  .c_str());
  }
  reopen();
}

}  // namespace impl
}  // namespace logging
}  // namespace lumo
