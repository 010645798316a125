// RollingFileSink: appends lines to a file and, when the file has grown past
// a limit, moves it aside into one of a fixed number of backups:
//   reset-oldest   backups 0, 1, .., N-1, 0, .. are overwritten in a ring;
//   steady-rotate  backup 0 is always the newest, all others shift by one.
// Backup N of "dir/server.log" is "dir/server.bak_N.log". A backup that cannot
// be removed is renamed aside to its path followed by the UTC time in
// milliseconds since 1970. A logging sink never brings the program down:
// failures of rolling are reported on the diagnostic channel, and lines that
// cannot reach the file go to the error channel.
//
// Configuration (element text): file-path (required, with the variables of
// path_expansion.h), max-file-size (bytes, units B K M G T E Z Y of powers of
// 1024, default 1024000, 0 for no rolling, else at least 10240), max-backups
// (default 10), rolling-type (reset-oldest or steady-rotate).
//
// Thread-safety: thread-safe (one mutex per sink). Two sinks or processes on
// one file are not coordinated.
#ifndef KORA_LOGGING_ROLLING_FILE_SINK_H_
#define KORA_LOGGING_ROLLING_FILE_SINK_H_

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdint>
#include <fstream>
#include <mutex>
#include <string>

#include "logging/sink.h"

namespace lumo {
namespace logging {
namespace impl {

// The size of a max-file-size text: optional white space, digits with an
// optional sign, optional white space, an optional unit letter with an
// optional "i" and an optional "B". Empty when invalid (no digits, overflow,
// negative, unknown unit, trailing text). Large units multiply without
// overflow check.
boost::optional<std::int64_t> parseFileSize(const std::string& text);

// Backup `index` of `path`: the extension replaced by ".bak_<index>" and the
// old extension.
boost::filesystem::path backupPath(const boost::filesystem::path& path, int index);

class RollingFileSink : public ISink {
 public:
  enum RollingType { RESET_OLDEST = 0, STEADY_ROTATE = 1 };

  // Creates the directories of the path and opens the file for appending.
  // Throws the property tree's "No such node (file-path)",
  // boost::filesystem::filesystem_error (directories, or "Failed to open file
  // for writing" with error 5), boost::system::system_error (home lookups).
  explicit RollingFileSink(const boost::property_tree::ptree& node);

  void write(const LogEvent& event) override;

  const boost::filesystem::path& filePath() const { return filePath_; }
  std::int64_t maxFileSize() const { return maxFileSize_; }
  int maxBackups() const { return maxBackups_; }
  RollingType rollingType() const { return rollingType_; }

 private:
  // REQUIRES: mutex_ held.
  void doRollOverResetOldest();
  void doRollOverSteadyRotate();
  // Removes an existing backup; on failure renames it aside. Returns the error
  // of the last file operation.
  boost::system::error_code removeBackup(const boost::filesystem::path& backup);
  void reopen();

  boost::filesystem::path filePath_;
  std::ofstream stream_;
  std::int64_t maxFileSize_;  // 0: no rolling
  int maxBackups_;            // at least 1
  int backupIndex_;           // next slot of the reset-oldest ring
  RollingType rollingType_;
  std::mutex mutex_;
};

}  // namespace impl
}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_ROLLING_FILE_SINK_H_
