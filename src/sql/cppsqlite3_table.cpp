#include <sqlite3.h>

#include <utility>

#include "sql/cppsqlite3.h"
#include "sys/throw.h"

CppSQLite3Table::CppSQLite3Table() : cols_(0), rows_(0), currentRow_(0), results_(nullptr) {}

CppSQLite3Table::CppSQLite3Table(char** results, int rows, int cols)
    : cols_(cols), rows_(rows), currentRow_(0), results_(results) {}

CppSQLite3Table::CppSQLite3Table(CppSQLite3Table&& other) noexcept
    : cols_(other.cols_),
      rows_(other.rows_),
      currentRow_(other.currentRow_),
      results_(std::exchange(other.results_, nullptr)) {}

CppSQLite3Table& CppSQLite3Table::operator=(CppSQLite3Table&& other) {
  if (this != &other) {
    if (results_) sqlite3_free_table(results_);
    cols_ = other.cols_;
    rows_ = other.rows_;
    currentRow_ = other.currentRow_;
    results_ = std::exchange(other.results_, nullptr);
  }
  return *this;
}

CppSQLite3Table::~CppSQLite3Table() {
  if (results_) sqlite3_free_table(results_);
}

int CppSQLite3Table::numRows() const {
  if (!results_) LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Null Results pointer"));
  return rows_;
}

int CppSQLite3Table::numFields() const {
  if (!results_) LUMO_THROW(CppSQLite3Exception(CPPSQLITE_ERROR, "Null Results pointer"));
  return cols_;
}
