#include "sql/read_transaction.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "sql/two_connections_fixture.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::cppsqlite::ReadTransaction;

// `other` writes while `db` reads.
class ReadTransactionTest : public kora_testing::TwoConnections {
 protected:
  void SetUp() override { openWith("(1)"); }
  int sum() { return db.execQuery("SELECT SUM(a) FROM t").getIntField(0); }
};

TEST_F(ReadTransactionTest, QueriesSeeOneStateAndTheLockEndsWithTheTransaction) {
  {
    ReadTransaction transaction(db);
    other.execDML("INSERT INTO t VALUES (2)");  // deferred: nothing locked yet
    EXPECT_EQ(3, sum());
    EXPECT_EQ("SQLITE_BUSY[5]: database is locked",
              thrownText<CppSQLite3Exception>([&] { other.execDML("INSERT INTO t VALUES (4)"); }));
    EXPECT_EQ(3, sum());
  }
  other.execDML("INSERT INTO t VALUES (4)");
  EXPECT_EQ(7, sum());
}

TEST_F(ReadTransactionTest, EndsWhenAQueryInsideFails) {
  EXPECT_EQ("SQLITE_ERROR[1]: no such table: missing", thrownText<CppSQLite3Exception>([&] {
              ReadTransaction transaction(db);
              sum();
              db.execQuery("SELECT * FROM missing");
            }));
  other.execDML("INSERT INTO t VALUES (2)");
  ReadTransaction again(db);  // not inside a transaction any more
  EXPECT_EQ(3, sum());
}

TEST_F(ReadTransactionTest, RefusesToBeginInsideATransaction) {
  ReadTransaction outer(db);
  EXPECT_EQ("SQLITE_ERROR[1]: cannot start a transaction within a transaction",
            thrownText<CppSQLite3Exception>([&] { ReadTransaction inner(db); }));
}

}  // namespace
