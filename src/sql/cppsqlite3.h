// A thin layer over the SQLite C interface. Each class owns one raw SQLite
// object and turns every non-success code into a CppSQLite3Exception; there is
// no pooling, and the only transactions are those of read_transaction.h. A
// connection keeps the compiled statements of its finished queries and runs
// a query whose text it has seen with the statement it kept
// (statement_cache.h): the same SQL, without compiling it again.
//
// Error code 1000 ("CPPSQLITE_ERROR") is the layer's own, for misuse.
//
// Thread-safety: thread-compatible. A connection and everything made from it
// belong to one thread at a time.
#ifndef KORA_SQL_CPPSQLITE3_H_
#define KORA_SQL_CPPSQLITE3_H_

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace lumo {
namespace cppsqlite {
class StatementCache;
}  // namespace cppsqlite
}  // namespace lumo

// The layer's own error code for misuse of the wrapper.
constexpr int CPPSQLITE_ERROR = 1000;

// what() is "<code name>[<code>]: <message>", e.g.
// "SQLITE_CANTOPEN[14]: unable to open database file".
class CppSQLite3Exception : public std::runtime_error {
 public:
  // When `deleteMessage` is true, `message` was allocated by SQLite and is
  // freed here with sqlite3_free. A null message reads as "".
  CppSQLite3Exception(int errorCode, const char* message, bool deleteMessage = false);
  virtual ~CppSQLite3Exception() = default;

  int errorCode() const { return errorCode_; }

  // "SQLITE_OK", ..., "CPPSQLITE_ERROR", or "UNKNOWN_ERROR".
  static const char* errorCodeAsString(int errorCode);

 private:
  int errorCode_;
};

// A cursor over the rows of one statement, positioned on its first row (or at
// eof) from the start. Movable, not copyable; a moved-from query has no
// statement. A cursor that owns its statement ends it in finalize() or its
// destructor: it finalises it, or, when it came from a connection's cache,
// resets it and gives it back; either way the statement's lock is released.
class CppSQLite3Query {
 public:
  CppSQLite3Query();
  CppSQLite3Query(sqlite3* db, sqlite3_stmt* vm, bool eof, bool ownVM = true);
  // Owns `vm`, compiled from `sql`, and gives it back to `cache` at the end.
  CppSQLite3Query(sqlite3* db, sqlite3_stmt* vm, bool eof,
                  std::shared_ptr<lumo::cppsqlite::StatementCache> cache, std::string sql);
  CppSQLite3Query(CppSQLite3Query&& other) noexcept;
  CppSQLite3Query& operator=(CppSQLite3Query&& other);
  CppSQLite3Query(const CppSQLite3Query&) = delete;
  CppSQLite3Query& operator=(const CppSQLite3Query&) = delete;
  virtual ~CppSQLite3Query();

  int numFields() const;
  bool eof() const;
  // Steps to the next row; at the end eof() becomes true.
  void nextRow();

  // REQUIRES for the field accessors: 0 <= i < numFields(), else
  // "Invalid field index requested".
  int fieldType(int i) const;
  bool fieldIsNull(int i) const;
  const char* fieldValue(int i) const;  // text form; null for NULL

  // `nullValue` for a NULL field, else the column in that type (SQLite's own
  // conversions).
  int getIntField(int i, int nullValue = 0) const;
  int64_t getInt64Field(int i, int64_t nullValue = 0) const;
  double getFloatField(int i, double nullValue = 0.0) const;
  const char* getStringField(int i, const char* nullValue = "") const;

  void finalize();

 private:
  void checkVM() const;
  void checkField(int i) const;

  sqlite3* db_;
  sqlite3_stmt* vm_;
  bool eof_;
  int cols_;
  bool ownVM_;
  std::shared_ptr<lumo::cppsqlite::StatementCache> cache_;  // null: finalise
  std::string sql_;                                         // the text of vm_ when cached
};

// A compiled statement with bindings; the cursors it yields do not own it.
class CppSQLite3Statement {
 public:
  CppSQLite3Statement();
  CppSQLite3Statement(sqlite3* db, sqlite3_stmt* vm);
  CppSQLite3Statement(CppSQLite3Statement&& other) noexcept;
  CppSQLite3Statement& operator=(CppSQLite3Statement&& other);
  CppSQLite3Statement(const CppSQLite3Statement&) = delete;
  CppSQLite3Statement& operator=(const CppSQLite3Statement&) = delete;
  virtual ~CppSQLite3Statement();

  // `index` is 1-based, as in SQLite.
  void bind(int index, int64_t value);
  CppSQLite3Query execQuery();
  void reset();
  void finalize();

 private:
  void checkVM() const;

  sqlite3* db_;
  sqlite3_stmt* vm_;
};

// The whole result of a query held in memory (sqlite3_get_table).
class CppSQLite3Table {
 public:
  CppSQLite3Table();
  CppSQLite3Table(char** results, int rows, int cols);
  CppSQLite3Table(CppSQLite3Table&& other) noexcept;
  CppSQLite3Table& operator=(CppSQLite3Table&& other);
  CppSQLite3Table(const CppSQLite3Table&) = delete;
  CppSQLite3Table& operator=(const CppSQLite3Table&) = delete;
  virtual ~CppSQLite3Table();

  int numRows() const;
  int numFields() const;

 private:
  int cols_;
  int rows_;
  int currentRow_;
  char** results_;
};

// One connection. Opening does not test for existence: sqlite3_open would
// create a missing file, so callers check first.
class CppSQLite3DB {
 public:
  CppSQLite3DB();
  CppSQLite3DB(const CppSQLite3DB&) = delete;
  CppSQLite3DB& operator=(const CppSQLite3DB&) = delete;
  virtual ~CppSQLite3DB();

  // `path` is UTF-8. Applies the busy timeout (60000 ms unless changed).
  void open(const std::string& path);
  void close();

  // Runs `sql`, returns sqlite3_changes.
  int execDML(const char* sql);
  // Runs `sql` up to its first row, with the statement kept from an earlier
  // query of the same text when there is one.
  CppSQLite3Query execQuery(const char* sql);
  CppSQLite3Query execQuery(const std::string& sql) { return execQuery(sql.c_str()); }
  CppSQLite3Statement compileStatement(const std::string& sql);
  CppSQLite3Table getTable(const char* sql);

  // Takes effect at the next open().
  void setBusyTimeout(int ms) { busyTimeoutMs_ = ms; }

 private:
  void checkDB() const;
  sqlite3_stmt* compile(const char* sql);

  sqlite3* db_;
  int busyTimeoutMs_;
  // Made at open, closed before the connection; shared with the cursors that
  // hold its statements, so that a cursor may outlive the connection.
  std::shared_ptr<lumo::cppsqlite::StatementCache> statements_;
};

#endif  // KORA_SQL_CPPSQLITE3_H_
