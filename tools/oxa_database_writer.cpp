#include "tools/oxa_database_writer.h"

#include <sqlite3.h>

#include <boost/filesystem/operations.hpp>
#include <cassert>
#include <memory>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace writer {

namespace {

// Owns one connection; closes it on every path. Thread-compatible.
class Connection {
 public:
  explicit Connection(const std::string& file) {
    const int rc =
        sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (rc != SQLITE_OK) fail("Cannot create " + file);
  }
  ~Connection() { sqlite3_close(db_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void exec(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(sql);
  }

  // Inserts `count` rows into `table` with `columns`; cell(r, c) is the
  // value of column c in row r.
  template <class Cell>
  void insertRows(const std::string& table, const std::vector<std::string>& columns, size_t count,
                  const Cell& cell) {
    if (columns.empty() || count == 0) return;
    std::string sql = "INSERT INTO " + quote(table) + " (";
    std::string marks;
    for (size_t i = 0; i < columns.size(); ++i) {
      sql += (i ? ", " : "") + quote(columns[i]);
      marks += i ? ", ?" : "?";
    }
    sql += ") VALUES (" + marks + ")";
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &raw, nullptr) != SQLITE_OK) fail(sql);
    // Finalized on every path, also when `cell` throws.
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
    for (size_t r = 0; r < count; ++r) {
      for (size_t i = 0; i < columns.size(); ++i) {
        if (bind(raw, static_cast<int>(i) + 1, cell(r, i)) != SQLITE_OK) fail(sql);
      }
      if (sqlite3_step(raw) != SQLITE_DONE) fail(sql);
      sqlite3_reset(raw);
    }
  }

  static std::string quote(const std::string& name) { return "\"" + name + "\""; }

 private:
  static int bind(sqlite3_stmt* stmt, int i, const SqlValue& v) {
    if (v.isInteger()) return sqlite3_bind_int64(stmt, i, v.integer());
    if (v.isReal()) return sqlite3_bind_double(stmt, i, v.real());
    if (v.isText()) {
      return sqlite3_bind_text(stmt, i, v.text().data(), static_cast<int>(v.text().size()),
                               SQLITE_TRANSIENT);
    }
    if (v.isBlob()) {
      return sqlite3_bind_blob(stmt, i, v.blob().data(), static_cast<int>(v.blob().size()),
                               SQLITE_TRANSIENT);
    }
    assert(v.isNull());
    return sqlite3_bind_null(stmt, i);
  }

  [[noreturn]] void fail(const std::string& what) {
    const std::string msg = what + ": " + (db_ ? sqlite3_errmsg(db_) : "out of memory");
    LUMO_THROW_NO_TRACE(std::runtime_error(msg));
  }

  sqlite3* db_ = nullptr;
};

// Creates table `t` without its rows.
void createEmptyTable(Connection& c, const Table& t) {
  std::string sql = "CREATE TABLE " + Connection::quote(t.name) + " (";
  for (size_t i = 0; i < t.columns.size(); ++i) {
    sql += (i ? ", " : "") + Connection::quote(t.columns[i].name);
    if (!t.columns[i].type.empty()) sql += " " + t.columns[i].type;
  }
  sql += ")";
  c.exec(sql);
}

void createTable(Connection& c, const Table& t) {
  createEmptyTable(c, t);
  std::vector<std::string> names;
  for (const Column& col : t.columns) names.push_back(col.name);
  // A row shorter than the columns is completed with NULLs.
  const SqlValue none;
  c.insertRows(t.name, names, t.rows.size(), [&](size_t r, size_t i) -> const SqlValue& {
    return i < t.rows[r].size() ? t.rows[r][i] : none;
  });
}

SqlValue frameCell(const FrameRow& row, const std::string& column,
                   const std::vector<uint64_t>& block_offsets) {
  if (column == "Id") return row.id;
  if (column == "KoraId") {
    if (!row.block) return row.koraId;
    return static_cast<int64_t>(block_offsets.at(*row.block)) + row.koraIdDelta;
  }
  if (column == "AccumulationTime") return row.accumulationTime;
  if (column == "RampTime") return row.rampTime;
  if (column == "Polarity") return row.polarity;
  if (column == "T1") return row.t1;
  if (column == "T2") return row.t2;
  if (column == "MzCalibration") return row.mzCalibration;
  assert(column == "KoraCalibration");
  return row.koraCalibration;
}

}  // namespace

std::vector<std::string> frameColumns(const AnalysisSpec& spec) {
  std::vector<std::string> all = {"Id", "KoraId"};
  if (spec.schemaMajor >= 2) {
    all.push_back("AccumulationTime");
    all.push_back("RampTime");
  }
  for (const char* c : {"Polarity", "T1", "T2", "MzCalibration", "KoraCalibration"}) {
    all.push_back(c);
  }
  std::vector<std::string> kept;
  for (const std::string& c : all) {
    if (!spec.omitFrameColumns.count(c)) kept.push_back(c);
  }
  return kept;
}

void writeOxaDatabase(const AnalysisSpec& spec, const std::vector<uint64_t>& block_offsets,
                      const boost::filesystem::path& file) {
  boost::filesystem::remove(file);
  Connection c(file.string());
  c.exec("BEGIN");

  if (!spec.omitTables.count("GlobalMetadata")) createTable(c, metadataTable(spec.metadata));
  if (!spec.omitTables.count("Frames")) {
    // Rows are bound straight from spec.frames: no copy of the table is made.
    Table t{"Frames", {}, {}};
    const std::vector<std::string> columns = frameColumns(spec);
    for (const std::string& name : columns) t.columns.push_back({name, ""});
    createEmptyTable(c, t);
    c.insertRows(t.name, columns, spec.frames.size(), [&](size_t r, size_t i) {
      return frameCell(spec.frames[r], columns[i], block_offsets);
    });
    if (!columns.empty() && columns.front() == "Id")
      c.exec("CREATE INDEX FramesById ON Frames (Id)");
  }
  if (!spec.omitTables.count("MzCalibration")) createTable(c, spec.mzCalibration);
  if (!spec.omitTables.count("KoraCalibration")) createTable(c, spec.koraCalibration);
  for (const Table& t : spec.extraTables) createTable(c, t);

  c.exec("COMMIT");
}

void writeDatabase(const std::vector<Table>& tables, const boost::filesystem::path& file) {
  boost::filesystem::remove(file);
  Connection c(file.string());
  c.exec("BEGIN");
  for (const Table& t : tables) createTable(c, t);
  c.exec("COMMIT");
}

}  // namespace writer
}  // namespace lumo
