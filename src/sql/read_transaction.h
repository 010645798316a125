// One read transaction over several queries of a connection: the queries see
// one state of the database, and SQLite takes and drops its file lock once
// for all of them instead of once per query.
//
// The transaction begins deferred, so no lock is taken before the first
// query reads, and ends in the destructor, also during unwinding. It never
// writes, so ending it cannot lose anything.
//
// Thread-compatible, as the connection: one thread at a time.
#ifndef KORA_SQL_READ_TRANSACTION_H_
#define KORA_SQL_READ_TRANSACTION_H_

#include "sql/cppsqlite3.h"

namespace lumo {
namespace cppsqlite {

class ReadTransaction {
 public:
  // REQUIRES: `db` is open and not inside a transaction.
  // Throws CppSQLite3Exception when the transaction cannot begin.
  explicit ReadTransaction(CppSQLite3DB& db);
  ReadTransaction(const ReadTransaction&) = delete;
  ReadTransaction& operator=(const ReadTransaction&) = delete;
  // Commits; a commit that fails is rolled back. Never throws.
  ~ReadTransaction();

 private:
  CppSQLite3DB& db_;
};

}  // namespace cppsqlite
}  // namespace lumo

#endif  // KORA_SQL_READ_TRANSACTION_H_
