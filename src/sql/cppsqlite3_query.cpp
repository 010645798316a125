#include <sqlite3.h>

#include <utility>

#include "sql/cppsqlite3.h"
#include "sql/statement_cache.h"
#include "sys/throw.h"

CppSQLite3Query::CppSQLite3Query()
    : db_(nullptr), vm_(nullptr), eof_(true), cols_(0), ownVM_(false) {}

CppSQLite3Query::CppSQLite3Query(sqlite3* db, sqlite3_stmt* vm, bool eof, bool ownVM)
    : db_(db), vm_(vm), eof_(eof), cols_(sqlite3_column_count(vm)), ownVM_(ownVM) {}

CppSQLite3Query::CppSQLite3Query(sqlite3* db, sqlite3_stmt* vm, bool eof,
                                 std::shared_ptr<lumo::cppsqlite::StatementCache> cache,
                                 std::string sql)
    : db_(db),
      vm_(vm),
      eof_(eof),
      cols_(sqlite3_column_count(vm)),
      ownVM_(true),
      cache_(std::move(cache)),
      sql_(std::move(sql)) {}

CppSQLite3Query::CppSQLite3Query(CppSQLite3Query&& other) noexcept
    : db_(other.db_),
      vm_(other.vm_),
      eof_(other.eof_),
      cols_(other.cols_),
      ownVM_(other.ownVM_),
      cache_(std::move(other.cache_)),
      sql_(std::move(other.sql_)) {
  other.vm_ = nullptr;
}

CppSQLite3Query& CppSQLite3Query::operator=(CppSQLite3Query&& other) {
  if (this != &other) {
    finalize();
    db_ = other.db_;
    vm_ = std::exchange(other.vm_, nullptr);
    eof_ = other.eof_;
    cols_ = other.cols_;
    ownVM_ = other.ownVM_;
    cache_ = std::move(other.cache_);
    sql_ = std::move(other.sql_);
  }
  return *this;
}

CppSQLite3Query::~CppSQLite3Query() {
  try {
    finalize();
  } catch (...) {
  }
}

int CppSQLite3Query::numFields() const {
  checkVM();
  return cols_;
}

bool CppSQLite3Query::eof() const {
  checkVM();
  return eof_;
}

void CppSQLite3Query::nextRow() {
  checkVM();
  const int rc = sqlite3_step(vm_);
  if (rc == SQLITE_DONE) {
    eof_ = true;
  } else if (rc != SQLITE_ROW) {
    // A statement owned by a CppSQLite3Statement is only reset; it finalises
    // its statement itself.
    // A failed statement is not given back to a cache.
    const int code = ownVM_ ? sqlite3_finalize(vm_) : sqlite3_reset(vm_);
    vm_ = nullptr;
    cache_.reset();
    LUMO_THROW(CppSQLite3Exception(code, sqlite3_errmsg(db_)));
  }
}

int CppSQLite3Query::fieldType(int i) const {
  checkField(i);
  return sqlite3_column_type(vm_, i);
}

bool CppSQLite3Query::fieldIsNull(int i) const { return fieldType(i) == SQLITE_NULL; }

const char* CppSQLite3Query::fieldValue(int i) const {
  checkField(i);
  return reinterpret_cast<const char*>(sqlite3_column_text(vm_, i));
}

int CppSQLite3Query::getIntField(int i, int nullValue) const {
  return fieldIsNull(i) ? nullValue : sqlite3_column_int(vm_, i);
}

int64_t CppSQLite3Query::getInt64Field(int i, int64_t nullValue) const {
  return fieldIsNull(i) ? nullValue : sqlite3_column_int64(vm_, i);
}

double CppSQLite3Query::getFloatField(int i, double nullValue) const {
  return fieldIsNull(i) ? nullValue : sqlite3_column_double(vm_, i);
}

const char* CppSQLite3Query::getStringField(int i, const char* nullValue) const {
  return fieldIsNull(i) ? nullValue : fieldValue(i);
}

void CppSQLite3Query::finalize() {
  if (vm_ && ownVM_) {
    sqlite3_stmt* vm = std::exchange(vm_, nullptr);
    const int rc = cache_ ? cache_->giveBack({std::move(sql_), vm}) : sqlite3_finalize(vm);
    cache_.reset();
    if (rc != SQLITE_OK) LUMO_THROW(CppSQLite3Exception(rc, sqlite3_errmsg(db_)));
  }
}

void CppSQLite3Query::checkVM() const {
  if (!vm_) LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Null Virtual Machine pointer"));
}

void CppSQLite3Query::checkField(int i) const {
  checkVM();
  if (i < 0 || i >= cols_)
    LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Invalid field index requested"));
}
