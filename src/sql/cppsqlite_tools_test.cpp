#include "sql/cppsqlite_tools.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using lumo::cppsqlite::simpleCheckedQuery;

class SimpleCheckedQuery : public ::testing::Test {
 protected:
  void SetUp() override {
    db.open(":memory:");
    db.execDML("CREATE TABLE kv (Key TEXT, Value)");
    db.execDML(
        "INSERT INTO kv VALUES ('int', 42), ('text', '17'), ('plus', '+5'), "
        "('big', '2147483648'), ('frac', 1.5), ('null', NULL), ('word', 'abc'), "
        "('twice', 1), ('twice', 2), ('badtwice', 'x'), ('badtwice', 2), "
        "('int64', 9000000000), ('bool', 1)");
  }
  std::string query(const std::string& key) {
    return "SELECT Value FROM kv WHERE Key='" + key + "'";
  }
  template <class T>
  std::string error(const std::string& key) {
    try {
      simpleCheckedQuery<T>(db, query(key));
    } catch (const std::runtime_error& e) {
      return e.what();
    }
    return "<no exception>";
  }
  CppSQLite3DB db;
};

TEST_F(SimpleCheckedQuery, ConvertsTheTextForm) {
  EXPECT_EQ(42, simpleCheckedQuery<int>(db, query("int")));
  EXPECT_EQ(17, simpleCheckedQuery<int>(db, query("text")));
  EXPECT_EQ(5, simpleCheckedQuery<int>(db, query("plus")));
  EXPECT_EQ(9000000000LL, simpleCheckedQuery<int64_t>(db, query("int64")));
  EXPECT_TRUE(simpleCheckedQuery<bool>(db, query("bool")));
  EXPECT_EQ("abc", simpleCheckedQuery<std::string>(db, query("word")));
  EXPECT_EQ("1.5", simpleCheckedQuery<std::string>(db, query("frac")));
}

TEST_F(SimpleCheckedQuery, ReportsEachFailureWithTheQuery) {
  EXPECT_EQ("Query result unexpectedly empty: " + query("none"), error<int>("none"));
  EXPECT_EQ("Query result unexpectedly NULL: " + query("null"), error<int>("null"));
  EXPECT_EQ("Query result has wrong type: " + query("big"), error<int>("big"));
  EXPECT_EQ("Query result has wrong type: " + query("frac"), error<int>("frac"));
  EXPECT_EQ("Query result has wrong type: " + query("word"), error<bool>("word"));
  EXPECT_EQ("Query resulted in more than one result: " + query("twice"), error<int>("twice"));
}

TEST_F(SimpleCheckedQuery, TypeErrorWinsOverSecondRow) {
  EXPECT_EQ("Query result has wrong type: " + query("badtwice"), error<int>("badtwice"));
}

TEST_F(SimpleCheckedQuery, SqlErrorsPassThrough) {
  EXPECT_THROW(simpleCheckedQuery<int>(db, "SELECT Value FROM nowhere"), CppSQLite3Exception);
}

}  // namespace
