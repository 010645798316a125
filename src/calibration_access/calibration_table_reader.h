// Fetches one calibration row by id from a table whose head is Id, ModelType
// (CalibrationState when the table belongs to a state of calibration.sqlite)
// and `fixedColumns` named columns, followed by coefficient columns C0, C1,
// ... without a gap. A fetched row holds, in this order: Id (column 0),
// ModelType (1), the named columns of the prefix, then C0, C1, ...
//
// Thread-compatible: one thread at a time, as the connection it reads.
#ifndef KORA_CALIBRATION_ACCESS_CALIBRATION_TABLE_READER_H_
#define KORA_CALIBRATION_ACCESS_CALIBRATION_TABLE_READER_H_

#include <boost/optional.hpp>
#include <cstdint>
#include <string>

class CppSQLite3DB;
class CppSQLite3Query;

namespace lumo {
namespace io {
namespace calibration {

class CalibrationTableReader {
 public:
  // Counts the columns of `table` once and builds the statement. `db` must
  // outlive the reader. `columnPrefix` names the fixed columns as they stand
  // in the select list, each as "c.<name>, ". Throws std::runtime_error "Too
  // few columns in table <table>" when the table has no column beyond the
  // reserved ones (Id, ModelType and, with a state, CalibrationState);
  // failures of the SQL layer pass through. A table with fewer columns than
  // the reserved and fixed ones together is not refused: the count of
  // coefficient columns wraps around, the statement names no coefficient
  // column after the comma-terminated prefix, and every getRow fails with
  // the SQL syntax error.
  CalibrationTableReader(CppSQLite3DB& db, const std::string& table, unsigned int fixedColumns,
                         const std::string& columnPrefix, boost::optional<int> calibrationState);

  // Runs the statement for `id` into `query`. True when a row was found whose
  // Id is not NULL; a missing row is no failure.
  bool getRow(int64_t id, CppSQLite3Query& query) const;

  unsigned int coefficientColumns() const { return coefficientColumns_; }

 private:
  CppSQLite3DB& db_;
  boost::optional<int> calibrationState_;
  unsigned int coefficientColumns_;
  unsigned int reservedColumns_;
  std::string queryPrefix_;  // everything but the id
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CALIBRATION_TABLE_READER_H_
