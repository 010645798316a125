#include "sql/cppsqlite3.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;

class SqlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db.open(":memory:");
    db.execDML("CREATE TABLE t (a INTEGER, b TEXT, c REAL)");
    db.execDML("INSERT INTO t VALUES (1, 'one', 1.5), (NULL, NULL, NULL), (3, '3', 2.25)");
  }
  CppSQLite3DB db;
};

TEST(CppSQLite3Exception, FormatsNameCodeAndMessage) {
  EXPECT_STREQ("SQLITE_CANTOPEN[14]: unable to open database file",
               CppSQLite3Exception(14, "unable to open database file").what());
  EXPECT_STREQ("CPPSQLITE_ERROR[1000]: ", CppSQLite3Exception(1000, nullptr).what());
  EXPECT_STREQ("UNKNOWN_ERROR[26]: x", CppSQLite3Exception(26, "x").what());
  EXPECT_STREQ("SQLITE_DONE", CppSQLite3Exception::errorCodeAsString(101));
  EXPECT_EQ(14, CppSQLite3Exception(14, "").errorCode());
}

TEST(CppSQLite3DB, RefusesEveryOperationBeforeOpen) {
  CppSQLite3DB closed;
  const std::string notOpen = "CPPSQLITE_ERROR[1000]: Database not open";
  EXPECT_EQ(notOpen, thrownText<CppSQLite3Exception>([&] { closed.execDML("SELECT 1"); }));
  EXPECT_EQ(notOpen, thrownText<CppSQLite3Exception>([&] { closed.execQuery("SELECT 1"); }));
  EXPECT_EQ(notOpen, thrownText<CppSQLite3Exception>([&] { closed.compileStatement("SELECT 1"); }));
  EXPECT_EQ(notOpen, thrownText<CppSQLite3Exception>([&] { closed.getTable("SELECT 1"); }));
  closed.close();  // closing a closed connection does nothing
}

TEST(CppSQLite3DB, ReportsOpenAndSqlFailuresWithSqliteText) {
  CppSQLite3DB bad;
  EXPECT_EQ("SQLITE_CANTOPEN[14]: unable to open database file",
            thrownText<CppSQLite3Exception>([&] { bad.open("/nonexistent-dir/x/analysis.oxa"); }));
  CppSQLite3DB db;
  db.open(":memory:");
  EXPECT_EQ("SQLITE_ERROR[1]: no such table: missing",
            thrownText<CppSQLite3Exception>([&] { db.execQuery("SELECT * FROM missing"); }));
  EXPECT_EQ("SQLITE_ERROR[1]: near \"NONSENSE\": syntax error",
            thrownText<CppSQLite3Exception>([&] { db.execDML("NONSENSE"); }));
  EXPECT_EQ(0, db.execDML("PRAGMA busy_timeout=15000"));
}

TEST_F(SqlTest, QueryCursorWalksRowsAndStopsAtEof) {
  CppSQLite3Query q = db.execQuery("SELECT a, b, c FROM t ORDER BY rowid");
  ASSERT_FALSE(q.eof());
  EXPECT_EQ(3, q.numFields());
  EXPECT_EQ(1, q.getIntField(0, 7));
  EXPECT_STREQ("one", q.getStringField(1, "null"));
  EXPECT_DOUBLE_EQ(1.5, q.getFloatField(2, -1.0));
  q.nextRow();
  EXPECT_TRUE(q.fieldIsNull(0));
  EXPECT_EQ(7, q.getIntField(0, 7));
  EXPECT_EQ(-9, q.getInt64Field(0, -9));
  EXPECT_STREQ("null", q.getStringField(1, "null"));
  EXPECT_DOUBLE_EQ(-1.0, q.getFloatField(2, -1.0));
  EXPECT_EQ(nullptr, q.fieldValue(1));
  q.nextRow();
  EXPECT_EQ(3, q.getIntField(1, 0));  // text '3' through SQLite's conversion
  q.nextRow();
  EXPECT_TRUE(q.eof());
}

TEST_F(SqlTest, EmptyResultIsAValidCursorAtEof) {
  CppSQLite3Query q = db.execQuery("SELECT a FROM t WHERE a = 42");
  EXPECT_TRUE(q.eof());
  EXPECT_EQ(1, q.numFields());
}

TEST_F(SqlTest, FieldIndexIsChecked) {
  CppSQLite3Query q = db.execQuery("SELECT a FROM t");
  const std::string invalid = "CPPSQLITE_ERROR[1000]: Invalid field index requested";
  EXPECT_EQ(invalid, thrownText<CppSQLite3Exception>([&] { q.getIntField(1, 7); }));
  EXPECT_EQ(invalid, thrownText<CppSQLite3Exception>([&] { q.fieldValue(-1); }));
  EXPECT_EQ(invalid, thrownText<CppSQLite3Exception>([&] { q.fieldType(1); }));
}

TEST_F(SqlTest, MovedFromQueryHasNoStatement) {
  CppSQLite3Query q = db.execQuery("SELECT a FROM t");
  CppSQLite3Query r = std::move(q);
  EXPECT_FALSE(r.eof());
  const std::string nullVm = "CPPSQLITE_ERROR[1000]: Null Virtual Machine pointer";
  EXPECT_EQ(nullVm, thrownText<CppSQLite3Exception>([&] { q.eof(); }));
  EXPECT_EQ(nullVm, thrownText<CppSQLite3Exception>([&] { q.getIntField(0, 0); }));
  EXPECT_EQ(nullVm, thrownText<CppSQLite3Exception>([&] { q.nextRow(); }));
}

TEST_F(SqlTest, StatementBindsAndYieldsCursorsItKeeps) {
  CppSQLite3Statement st = db.compileStatement("SELECT b FROM t WHERE a = ?");
  st.bind(1, 3);
  {
    CppSQLite3Query q = st.execQuery();
    ASSERT_FALSE(q.eof());
    EXPECT_STREQ("3", q.fieldValue(0));
  }
  st.reset();
  st.bind(1, 1);
  CppSQLite3Query q = st.execQuery();
  EXPECT_STREQ("one", q.fieldValue(0));
  st.reset();
  EXPECT_EQ("SQLITE_RANGE[25]: Error binding int64 param",
            thrownText<CppSQLite3Exception>([&] { st.bind(5, 1); }));
  st.finalize();
  EXPECT_EQ("CPPSQLITE_ERROR[1000]: Null Virtual Machine pointer",
            thrownText<CppSQLite3Exception>([&] { st.execQuery(); }));
}

TEST_F(SqlTest, TableHoldsTheWholeResult) {
  CppSQLite3Table table = db.getTable("SELECT a, b FROM t");
  EXPECT_EQ(3, table.numRows());
  EXPECT_EQ(2, table.numFields());
  CppSQLite3Table none;
  EXPECT_EQ("CPPSQLITE_ERROR[1000]: Null Results pointer",
            thrownText<CppSQLite3Exception>([&] { none.numRows(); }));
}

}  // namespace
