#include "sql/read_transaction.h"

namespace lumo {
namespace cppsqlite {

// Through execQuery, so that both statements are compiled once per connection.
ReadTransaction::ReadTransaction(CppSQLite3DB& db) : db_(db) { db_.execQuery("BEGIN"); }

ReadTransaction::~ReadTransaction() {
  try {
    db_.execQuery("COMMIT");
  } catch (...) {
    try {
      db_.execQuery("ROLLBACK");
    } catch (...) {
    }
  }
}

}  // namespace cppsqlite
}  // namespace lumo
