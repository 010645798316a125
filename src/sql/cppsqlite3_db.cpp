#include <sqlite3.h>

#include <utility>

#include "sql/cppsqlite3.h"
#include "sql/statement_cache.h"
#include "sys/throw.h"

CppSQLite3DB::CppSQLite3DB() : db_(nullptr), busyTimeoutMs_(60000) {}

CppSQLite3DB::~CppSQLite3DB() {
  try {
    close();
  } catch (...) {
  }
}

void CppSQLite3DB::open(const std::string& path) {
  const int rc = sqlite3_open(path.c_str(), &db_);
  if (rc != SQLITE_OK) {
    const std::string message = sqlite3_errmsg(db_);
    sqlite3_close(db_);
    db_ = nullptr;
    LUMO_THROW(CppSQLite3Exception(rc, message.c_str()));
  }
  sqlite3_busy_timeout(db_, busyTimeoutMs_);
  statements_ = std::make_shared<lumo::cppsqlite::StatementCache>();
}

void CppSQLite3DB::close() {
  if (!db_) return;
  statements_->close();
  if (sqlite3_close(db_) != SQLITE_OK) {
    // A cursor still holds a statement: the connection stays open and usable.
    statements_ = std::make_shared<lumo::cppsqlite::StatementCache>();
    LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Unable to close database"));
  }
  statements_.reset();
  db_ = nullptr;
}

int CppSQLite3DB::execDML(const char* sql) {
  checkDB();
  char* error = nullptr;
  const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, &error);
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, error, true));
  return sqlite3_changes(db_);
}

CppSQLite3Query CppSQLite3DB::execQuery(const char* sql) {
  checkDB();
  lumo::cppsqlite::StatementCache::Entry entry = statements_->take(sql);
  sqlite3_stmt* vm = entry.vm ? entry.vm : compile(sql);
  const int rc = sqlite3_step(vm);
  if (rc == SQLITE_DONE || rc == SQLITE_ROW)
    return CppSQLite3Query(db_, vm, rc == SQLITE_DONE, statements_, std::move(entry.sql));
  const int finalizeRc = sqlite3_finalize(vm);
  LUMO_THROW(CppSQLite3Exception(finalizeRc, sqlite3_errmsg(db_)));
}

CppSQLite3Statement CppSQLite3DB::compileStatement(const std::string& sql) {
  checkDB();
  return CppSQLite3Statement(db_, compile(sql.c_str()));
}

CppSQLite3Table CppSQLite3DB::getTable(const char* sql) {
  checkDB();
  char** results = nullptr;
  char* error = nullptr;
  int rows = 0;
  int cols = 0;
  const int rc = sqlite3_get_table(db_, sql, &results, &rows, &cols, &error);
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, error, true));
  return CppSQLite3Table(results, rows, cols);
}

void CppSQLite3DB::checkDB() const {
  if (!db_) LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Database not open"));
}

sqlite3_stmt* CppSQLite3DB::compile(const char* sql) {
  sqlite3_stmt* vm = nullptr;
  const int rc = sqlite3_prepare_v2(db_, sql, -1, &vm, nullptr);
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, sqlite3_errmsg(db_)));
  return vm;
}
