#include "tools/oxa_database_writer.h"

#include <sqlite3.h>

#include <boost/filesystem/operations.hpp>
#include <cassert>
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

  // Inserts one row per entry of `rows` into `table` with `columns`.
  void insertRows(const std::string& table, const std::vector<std::string>& columns,
                  const std::vector<std::vector<SqlValue>>& rows) {
    if (columns.empty() || rows.empty()) return;
    std::string sql = "INSERT INTO " + quote(table) + " (";
    std::string marks;
    for (size_t i = 0; i < columns.size(); ++i) {
      sql += (i ? ", " : "") + quote(columns[i]);
      marks += i ? ", ?" : "?";
    }
    sql += ") VALUES (" + marks + ")";
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK) fail(sql);
    for (const auto& row : rows) {
      for (size_t i = 0; i < columns.size(); ++i) {
        const SqlValue none;
        const int rc = bind(stmt, static_cast<int>(i) + 1, i < row.size() ? row[i] : none);
        if (rc != SQLITE_OK) {
          sqlite3_finalize(stmt);
          fail(sql);
        }
      }
      if (sqlite3_step(stmt) != SQLITE_DONE) {
        sqlite3_finalize(stmt);
        fail(sql);
      }
      sqlite3_reset(stmt);
    }
    sqlite3_finalize(stmt);
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

void createTable(Connection& c, const Table& t) {
  std::string sql = "CREATE TABLE " + Connection::quote(t.name) + " (";
  for (size_t i = 0; i < t.columns.size(); ++i) {
    sql += (i ? ", " : "") + Connection::quote(t.columns[i].name);
    if (!t.columns[i].type.empty()) sql += " " + t.columns[i].type;
  }
  sql += ")";
  c.exec(sql);
  std::vector<std::string> names;
  for (const Column& col : t.columns) names.push_back(col.name);
  c.insertRows(t.name, names, t.rows);
}

SqlValue frameCell(const FrameRow& row, const std::string& column,
                   const std::vector<uint64_t>& block_offsets) {
  if (column == "Id") return row.id;
  if (column == "KoraId") {
    if (!row.block) return row.koraId;
    assert(*row.block < block_offsets.size());
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
  assert(block_offsets.size() == spec.blocks.size());
  boost::filesystem::remove(file);
  Connection c(file.string());
  c.exec("BEGIN");

  if (!spec.omitTables.count("GlobalMetadata")) createTable(c, metadataTable(spec.metadata));
  if (!spec.omitTables.count("Frames")) {
    Table t{"Frames", {}, {}};
    const std::vector<std::string> columns = frameColumns(spec);
    for (const std::string& name : columns) t.columns.push_back({name, ""});
    t.rows.reserve(spec.frames.size());
    for (const FrameRow& row : spec.frames) {
      std::vector<SqlValue> cells;
      for (const std::string& name : columns) cells.push_back(frameCell(row, name, block_offsets));
      t.rows.push_back(std::move(cells));
    }
    createTable(c, t);
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
