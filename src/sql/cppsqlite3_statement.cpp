#include <sqlite3.h>

#include <utility>

#include "sql/cppsqlite3.h"
#include "sys/throw.h"

CppSQLite3Statement::CppSQLite3Statement() : db_(nullptr), vm_(nullptr) {}

CppSQLite3Statement::CppSQLite3Statement(sqlite3* db, sqlite3_stmt* vm) : db_(db), vm_(vm) {}

CppSQLite3Statement::CppSQLite3Statement(CppSQLite3Statement&& other) noexcept
    : db_(other.db_), vm_(std::exchange(other.vm_, nullptr)) {}

CppSQLite3Statement& CppSQLite3Statement::operator=(CppSQLite3Statement&& other) {
  if (this != &other) {
    finalize();
    db_ = other.db_;
    vm_ = std::exchange(other.vm_, nullptr);
  }
  return *this;
}

CppSQLite3Statement::~CppSQLite3Statement() {
  try {
    finalize();
  } catch (...) {
  }
}

void CppSQLite3Statement::bind(int index, int64_t value) {
  checkVM();
  const int rc = sqlite3_bind_int64(vm_, index, value);
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, "Error binding int64 param"));
}

CppSQLite3Query CppSQLite3Statement::execQuery() {
  checkVM();
  const int rc = sqlite3_step(vm_);
  if (rc == SQLITE_DONE) return CppSQLite3Query(db_, vm_, true, false);
  if (rc == SQLITE_ROW) return CppSQLite3Query(db_, vm_, false, false);
  const int resetRc = sqlite3_reset(vm_);
  LUMO_THROW(CppSQLite3Exception(resetRc, sqlite3_errmsg(db_)));
}

void CppSQLite3Statement::reset() {
  checkVM();
  const int rc = sqlite3_reset(vm_);
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, sqlite3_errmsg(db_)));
}

void CppSQLite3Statement::finalize() {
  if (!vm_) return;
  const int rc = sqlite3_finalize(vm_);
  vm_ = nullptr;
  if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, sqlite3_errmsg(db_)));
}

void CppSQLite3Statement::checkVM() const {
  if (!vm_) LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Null Virtual Machine pointer"));
}
