#include "calibration_access/calibration_table_reader.h"

#include <stdexcept>

#include "sql/cppsqlite3.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace calibration {

CalibrationTableReader::CalibrationTableReader(CppSQLite3DB& db, const std::string& table,
                                               unsigned int fixedColumns,
                                               const std::string& columnPrefix,
                                               boost::optional<int> calibrationState)
    : db_(db), calibrationState_(calibrationState), reservedColumns_(calibrationState ? 3 : 2) {
  const std::string pragma = "PRAGMA TABLE_INFO(" + table + ");";
  const unsigned int columns = static_cast<unsigned int>(db_.getTable(pragma.c_str()).numRows());
  if (columns < reservedColumns_ + 1)
    LUMO_THROW(std::runtime_error("Too few columns in table " + table));
  // Unsigned on purpose: no further check (see the header).
  coefficientColumns_ = columns - reservedColumns_ - fixedColumns;

  // A wrapped count names no coefficient column (rather than this loop
  // exhausting memory); the statement is then refused by SQLite.
  const unsigned int listed = columns >= reservedColumns_ + fixedColumns ? coefficientColumns_ : 0;
  std::string columnList;
  for (unsigned int i = 0; i < listed; ++i) {
    if (i > 0) columnList += ", ";
    columnList += "c.C" + std::to_string(i);
  }
  queryPrefix_ = "SELECT c.Id, c.ModelType, " + columnPrefix + columnList + " FROM " + table;
  if (calibrationState_)
    queryPrefix_ +=
        " c WHERE c.CalibrationState=" + std::to_string(*calibrationState_) + " AND c.Id = ";
  else
    queryPrefix_ += " c WHERE c.Id = ";
}

bool CalibrationTableReader::getRow(int64_t id, CppSQLite3Query& query) const {
  query = db_.execQuery(queryPrefix_ + std::to_string(id));
  if (query.eof()) return false;
  return !query.fieldIsNull(0);
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
