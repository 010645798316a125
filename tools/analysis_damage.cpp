#include "tools/analysis_damage.h"

#include <sqlite3.h>

#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "sys/throw.h"
#include "tools/data_generator.h"
#include "tools/file_damage.h"

namespace lumo {
namespace writer {

namespace {

namespace fs = boost::filesystem;

// Runs statements on analysis.oxa. Thread-compatible.
class Database {
 public:
  explicit Database(const fs::path& file) : file_(file.string()) {
    if (sqlite3_open_v2(file_.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
      fail("open");
  }
  ~Database() { sqlite3_close(db_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void exec(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(sql);
  }

  // The first column of every row of `sql`, as integers (NULL as -1).
  std::vector<int64_t> integers(const std::string& sql) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK) fail(sql);
    std::vector<int64_t> values;
    while (sqlite3_step(stmt) == SQLITE_ROW)
      values.push_back(sqlite3_column_type(stmt, 0) == SQLITE_NULL ? -1
                                                                   : sqlite3_column_int64(stmt, 0));
    sqlite3_finalize(stmt);
    return values;
  }

 private:
  [[noreturn]] void fail(const std::string& what) {
    LUMO_THROW_NO_TRACE(std::runtime_error("Cannot damage " + file_ + ": " + what + ": " +
                                           (db_ ? sqlite3_errmsg(db_) : "no connection")));
  }

  std::string file_;
  sqlite3* db_ = nullptr;
};

template <class T, size_t N>
const T& pick(Random& rng, const T (&choices)[N]) {
  return choices[rng.below(N)];
}

std::string hex(uint64_t v) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(v));
  return text;
}

// An offset somewhere in the file, or near a frame block's start, where a
// damage does most harm.
uint64_t someOffset(Random& rng, uint64_t size, const std::vector<int64_t>& blocks) {
  if (!blocks.empty() && rng.below(2) == 0) {
    const int64_t start = blocks[rng.below(blocks.size())];
    const uint64_t at = static_cast<uint64_t>(start) + rng.below(64);
    if (start >= 0 && at < size) return at;
  }
  return rng.below(size);
}

std::string flip(Random& rng, const fs::path& bin, uint64_t size,
                 const std::vector<int64_t>& blocks) {
  std::string done;
  for (uint64_t n = 1 + rng.below(4); n > 0; --n) {
    const uint64_t at = someOffset(rng, size, blocks);
    const unsigned char mask = static_cast<unsigned char>(1 + rng.below(255));
    flipByte(bin, at, mask);
    done += (done.empty() ? "flip " : ", ") + hex(mask) + " at " + std::to_string(at);
  }
  return done;
}

std::string overwrite(Random& rng, const fs::path& bin, uint64_t size,
                      const std::vector<int64_t>& blocks) {
  const uint64_t at = someOffset(rng, size, blocks);
  const uint64_t n = std::min<uint64_t>(1 + rng.below(64), size - at);
  const int fill = static_cast<int>(rng.below(3));  // 0x00, 0xFF or noise
  std::vector<unsigned char> bytes(n, fill == 0 ? 0x00 : 0xFF);
  if (fill == 2) {
    for (unsigned char& b : bytes) b = static_cast<unsigned char>(rng.below(256));
  }
  overwriteBytes(bin, at, bytes);
  return "overwrite " + std::to_string(n) + " bytes at " + std::to_string(at) + " with " +
         (fill == 0   ? "0x00"
          : fill == 1 ? "0xFF"
                      : "noise");
}

// Sizes and counts that lie: zero, tiny, at and beyond the reader's limits,
// the largest values of 31 and 32 bits.
std::string sizeWord(Random& rng, const fs::path& bin, uint64_t size,
                     const std::vector<int64_t>& blocks) {
  static const uint32_t kLies[] = {0,          1,          7,          8,          9,
                                   0x7FFF,     0x20000,    0x20001,    0x3FFFFF,   0x400000,
                                   0x10000000, 0x40000000, 0x40000001, 0x7FFFFFFF, 0x80000000,
                                   0xFFFFFFF0, 0xFFFFFFFF};
  const uint64_t at = someOffset(rng, size, blocks);
  if (at + 4 > size) return "size word beyond the end: none";
  const uint32_t value = rng.below(4) == 0 ? static_cast<uint32_t>(rng.next()) : pick(rng, kLies);
  overwriteLe32(bin, at, value);
  return "size word " + hex(value) + " at " + std::to_string(at);
}

// A literal of SQL for a REAL that SQLite keeps exactly.
std::string realLiteral(double v) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", v);
  return text;
}

std::string framesValue(Random& rng, Database& db, const std::vector<int64_t>& blocks,
                        uint64_t size) {
  const std::vector<int64_t> ids = db.integers("SELECT Id FROM Frames");
  if (ids.empty()) return "frames: none";
  const std::string id = std::to_string(ids[rng.below(ids.size())]);
  std::string column;
  std::string value;
  switch (rng.below(4)) {
    case 0: {
      column = "KoraId";
      const int64_t other = blocks.empty() ? 0 : blocks[rng.below(blocks.size())];
      const std::string choices[] = {"NULL",
                                     "-1",
                                     "-2",
                                     std::to_string(other),
                                     std::to_string(other + 1 + rng.below(16)),
                                     std::to_string(size),
                                     std::to_string(size + rng.below(1 << 20)),
                                     "1099511627776",
                                     "9223372036854775807",
                                     "'text'"};
      value = pick(rng, choices);
      break;
    }
    case 1:
    case 2: {
      column = rng.below(2) == 0 ? "AccumulationTime" : "RampTime";
      const std::string choices[] = {
          "0.0",  "-0.0",   "-1.0",         realLiteral(1e-320), "1e308", "-1e308",
          "NULL", "'text'", "4294967296.0", realLiteral(5e-324), "1e-300"};
      value = pick(rng, choices);
      break;
    }
    default: {
      column = "Id";
      const std::string choices[] = {"0", "-1", std::to_string(ids.front()),
                                     std::to_string(ids.back() + 1), "NULL"};
      value = pick(rng, choices);
      break;
    }
  }
  db.exec("UPDATE Frames SET " + column + " = " + value + " WHERE Id = " + id);
  return "frames " + column + " = " + value + " for Id " + id;
}

std::string metadataValue(Random& rng, Database& db) {
  static const char* const kKeys[] = {"SchemaVersionMajor", "SchemaVersionMinor",
                                      "KoraCompressionType", "PeakListIndexScaleFactor",
                                      "DigitizerNumSamples"};
  static const char* const kValues[] = {"'0'",          "'1'",     "'2'",  "'3'",  "'4'",
                                        "'-1'",         "'x'",     "''",   "NULL", "'4294967295'",
                                        "'2147483648'", "'65536'", "'1.5'"};
  const std::string key = pick(rng, kKeys);
  if (rng.below(8) == 0) {
    db.exec("DELETE FROM GlobalMetadata WHERE Key = '" + key + "'");
    return "metadata " + key + " removed";
  }
  const std::string value = pick(rng, kValues);
  db.exec("UPDATE GlobalMetadata SET Value = " + value + " WHERE Key = '" + key + "'");
  return "metadata " + key + " = " + value;
}

}  // namespace

std::string damageAnalysis(const fs::path& dir, uint64_t seed) {
  Random rng(seed);
  const fs::path bin = dir / "analysis.oxa_bin";
  Database db(dir / "analysis.oxa");
  const std::vector<int64_t> blocks = db.integers("SELECT KoraId FROM Frames");

  std::string done;
  for (uint64_t n = 1 + rng.below(3); n > 0; --n) {
    const uint64_t size = fs::file_size(bin);
    // Weights: the frame file 10 of 14, the database 4 of 14.
    const uint64_t kind = rng.below(14);
    std::string what;
    if (size == 0 && kind < 10) {
      what = "frame file empty: none";
    } else if (kind < 3) {
      what = flip(rng, bin, size, blocks);
    } else if (kind < 4) {
      const uint64_t keep = rng.below(size);
      truncateFile(bin, keep);
      what = "truncate to " + std::to_string(keep);
    } else if (kind < 6) {
      what = overwrite(rng, bin, size, blocks);
    } else if (kind < 10) {
      what = sizeWord(rng, bin, size, blocks);
    } else if (kind < 13) {
      what = framesValue(rng, db, blocks, size);
    } else {
      what = metadataValue(rng, db);
    }
    done += (done.empty() ? "" : "; ") + what;
  }
  return done;
}

}  // namespace writer
}  // namespace lumo
