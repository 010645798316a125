#include "sql/read_transaction.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::cppsqlite::ReadTransaction;

// Two connections on one file; `writer` gives up at once on a lock.
class ReadTransactionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/koradata-sql-XXXXXX";
    const int fd = mkstemp(name);
    ASSERT_NE(-1, fd);
    close(fd);
    path = name;
    db.open(path);
    db.execDML("CREATE TABLE t (a INTEGER)");
    db.execDML("INSERT INTO t VALUES (1)");
    writer.setBusyTimeout(0);
    writer.open(path);
  }
  void TearDown() override {
    db.close();
    writer.close();
    unlink(path.c_str());
  }
  int sum() { return db.execQuery("SELECT SUM(a) FROM t").getIntField(0); }
  std::string path;
  CppSQLite3DB db;
  CppSQLite3DB writer;
};

TEST_F(ReadTransactionTest, QueriesSeeOneStateAndTheLockEndsWithTheTransaction) {
  {
    ReadTransaction transaction(db);
    writer.execDML("INSERT INTO t VALUES (2)");  // deferred: nothing locked yet
    EXPECT_EQ(3, sum());
    EXPECT_EQ("SQLITE_BUSY[5]: database is locked",
              thrownText<CppSQLite3Exception>([&] { writer.execDML("INSERT INTO t VALUES (4)"); }));
    EXPECT_EQ(3, sum());
  }
  writer.execDML("INSERT INTO t VALUES (4)");
  EXPECT_EQ(7, sum());
}

TEST_F(ReadTransactionTest, EndsWhenAQueryInsideFails) {
  EXPECT_EQ("SQLITE_ERROR[1]: no such table: missing", thrownText<CppSQLite3Exception>([&] {
              ReadTransaction transaction(db);
              sum();
              db.execQuery("SELECT * FROM missing");
            }));
  writer.execDML("INSERT INTO t VALUES (2)");
  ReadTransaction again(db);  // not inside a transaction any more
  EXPECT_EQ(3, sum());
}

TEST_F(ReadTransactionTest, RefusesToBeginInsideATransaction) {
  ReadTransaction outer(db);
  EXPECT_EQ("SQLITE_ERROR[1]: cannot start a transaction within a transaction",
            thrownText<CppSQLite3Exception>([&] { ReadTransaction inner(db); }));
}

}  // namespace
