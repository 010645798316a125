#include "sql/statement_cache.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

#include "sql/cppsqlite3.h"
#include "sql/two_connections_fixture.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::cppsqlite::StatementCache;

class StatementCacheTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(SQLITE_OK, sqlite3_open(":memory:", &db)); }
  void TearDown() override {
    cache.close();
    EXPECT_EQ(SQLITE_OK, sqlite3_close(db));  // nothing left unfinalised
  }
  sqlite3_stmt* compile(const char* sql) {
    sqlite3_stmt* vm = nullptr;
    EXPECT_EQ(SQLITE_OK, sqlite3_prepare_v2(db, sql, -1, &vm, nullptr));
    return vm;
  }
  sqlite3* db = nullptr;
  StatementCache cache;
};

TEST_F(StatementCacheTest, GivesBackOnlyForTheSameText) {
  sqlite3_stmt* vm = compile("SELECT 1");
  ASSERT_EQ(SQLITE_ROW, sqlite3_step(vm));
  EXPECT_EQ(SQLITE_OK, cache.giveBack({"SELECT 1", vm}));
  EXPECT_EQ(nullptr, cache.take("SELECT 1 ").vm);
  EXPECT_EQ(nullptr, cache.take("SELECT 2").vm);
  const StatementCache::Entry entry = cache.take("SELECT 1");
  EXPECT_EQ(vm, entry.vm);
  EXPECT_EQ("SELECT 1", entry.sql);
  EXPECT_EQ(0u, cache.size());
  // Given back reset: it runs again from its first row.
  ASSERT_EQ(SQLITE_ROW, sqlite3_step(vm));
  EXPECT_EQ(1, sqlite3_column_int(vm, 0));
  EXPECT_EQ(SQLITE_OK, cache.giveBack({"SELECT 1", vm}));
  EXPECT_EQ("SELECT 2", cache.take("SELECT 2").sql);  // a miss carries the text
}

TEST_F(StatementCacheTest, HoldsAtMostItsCapacityAndDropsTheOldestFirst) {
  for (std::size_t i = 0; i <= StatementCache::kCapacity; ++i) {
    const std::string sql = "SELECT " + std::to_string(i);
    EXPECT_EQ(SQLITE_OK, cache.giveBack({sql, compile(sql.c_str())}));
  }
  EXPECT_EQ(StatementCache::kCapacity, cache.size());
  EXPECT_EQ(nullptr, cache.take("SELECT 0").vm);
  const StatementCache::Entry newest = cache.take("SELECT 16");
  EXPECT_NE(nullptr, newest.vm);
  sqlite3_finalize(newest.vm);
}

TEST_F(StatementCacheTest, FinalisesAFailedStatementAndEverythingAfterClose) {
  sqlite3_exec(db, "CREATE TABLE t (a NOT NULL)", nullptr, nullptr, nullptr);
  sqlite3_stmt* failing = compile("INSERT INTO t VALUES (NULL)");
  ASSERT_EQ(SQLITE_CONSTRAINT, sqlite3_step(failing));
  EXPECT_EQ(SQLITE_CONSTRAINT, cache.giveBack({"INSERT INTO t VALUES (NULL)", failing}));
  EXPECT_EQ(0u, cache.size());

  cache.close();
  EXPECT_EQ(SQLITE_OK, cache.giveBack({"SELECT 1", compile("SELECT 1")}));
  EXPECT_EQ(0u, cache.size());
  EXPECT_EQ(nullptr, cache.take("SELECT 1").vm);
}

// A connection runs a text it has seen with its kept statement: the rows are
// those of the database now, and a finished cursor leaves no lock behind.
class ConnectionStatementsTest : public kora_testing::TwoConnections {
 protected:
  void SetUp() override { openWith("(1), (2)"); }
};

TEST_F(ConnectionStatementsTest, RepeatedQuerySeesChangesOfOtherConnections) {
  const char* sql = "SELECT SUM(a) FROM t";
  EXPECT_EQ(3, db.execQuery(sql).getIntField(0));
  other.execDML("INSERT INTO t VALUES (4)");
  EXPECT_EQ(7, db.execQuery(sql).getIntField(0));
  other.execDML("ALTER TABLE t ADD COLUMN b");
  other.execDML("UPDATE t SET a = 10 WHERE a = 4");
  EXPECT_EQ(13, db.execQuery(sql).getIntField(0));
}

TEST_F(ConnectionStatementsTest, AFinishedCursorHoldsNoLock) {
  const char* sql = "SELECT a FROM t ORDER BY a";
  {
    CppSQLite3Query q = db.execQuery(sql);
    ASSERT_FALSE(q.eof());
    // The open cursor reads: a writer cannot commit.
    EXPECT_EQ("SQLITE_BUSY[5]: database is locked",
              thrownText<CppSQLite3Exception>([&] { other.execDML("BEGIN EXCLUSIVE"); }));
  }
  other.execDML("INSERT INTO t VALUES (9)");
  CppSQLite3Query q = db.execQuery(sql);
  EXPECT_EQ(1, q.getIntField(0));
  q.finalize();
  other.execDML("INSERT INTO t VALUES (10)");
}

TEST_F(ConnectionStatementsTest, TwoCursorsOfTheSameTextRunSideBySide) {
  const char* sql = "SELECT a FROM t ORDER BY a";
  CppSQLite3Query first = db.execQuery(sql);
  first.nextRow();
  CppSQLite3Query second = db.execQuery(sql);
  EXPECT_EQ(2, first.getIntField(0));
  EXPECT_EQ(1, second.getIntField(0));
}

TEST_F(ConnectionStatementsTest, ACursorMayOutliveItsConnection) {
  CppSQLite3Query q = db.execQuery("SELECT a FROM t");
  EXPECT_EQ("CPPSQLITE_ERROR[1000]: Unable to close database",
            thrownText<CppSQLite3Exception>([&] { db.close(); }));
  EXPECT_EQ(1, q.getIntField(0));
  q.finalize();
  db.close();
  EXPECT_EQ("CPPSQLITE_ERROR[1000]: Database not open",
            thrownText<CppSQLite3Exception>([&] { db.execQuery("SELECT a FROM t"); }));
}

}  // namespace
