#include "calibration_access/calibration_table_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "sql/cppsqlite3.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::io::calibration::CalibrationTableReader;

class CalibrationTable : public ::testing::Test {
 protected:
  void SetUp() override { db.open(":memory:"); }
  void exec(const std::string& sql) { db.execDML(sql.c_str()); }
  CppSQLite3DB db;
};

TEST_F(CalibrationTable, CountsTheCoefficientColumnsBeyondReservedAndFixedOnes) {
  exec("CREATE TABLE Mz (Id, ModelType, T1, T2, C0, C1, C2)");
  exec("INSERT INTO Mz VALUES (7, 1, 20.5, 21.5, 1.0, 2.0, 3.0)");
  CalibrationTableReader reader(db, "Mz", 2, "c.T1, c.T2, ", boost::none);
  EXPECT_EQ(3u, reader.coefficientColumns());

  CppSQLite3Query q;
  ASSERT_TRUE(reader.getRow(7, q));
  ASSERT_EQ(7, q.numFields());
  EXPECT_EQ(7, q.getIntField(0));
  EXPECT_EQ(1, q.getIntField(1));
  EXPECT_EQ(20.5, q.getFloatField(2));
  EXPECT_EQ(21.5, q.getFloatField(3));
  EXPECT_EQ(1.0, q.getFloatField(4));
  EXPECT_EQ(3.0, q.getFloatField(6));
}

TEST_F(CalibrationTable, SelectsTheCoefficientsByNameNotByPosition) {
  exec("CREATE TABLE Kora (C1, Id, C0, ModelType)");
  exec("INSERT INTO Kora VALUES (11.0, 3, 10.0, 2)");
  CalibrationTableReader reader(db, "Kora", 0, "", boost::none);
  CppSQLite3Query q;
  ASSERT_TRUE(reader.getRow(3, q));
  EXPECT_EQ(2, q.getIntField(1));
  EXPECT_EQ(10.0, q.getFloatField(2));
  EXPECT_EQ(11.0, q.getFloatField(3));
}

TEST_F(CalibrationTable, RowsOfOtherStatesAreNotSeen) {
  exec("CREATE TABLE Frame (Id, ModelType, CalibrationState, C0)");
  exec("INSERT INTO Frame VALUES (1, 1, 5, 100.0), (2, 1, 6, 200.0)");
  CalibrationTableReader reader(db, "Frame", 0, "", 6);
  EXPECT_EQ(1u, reader.coefficientColumns());  // three reserved columns
  CppSQLite3Query q;
  EXPECT_FALSE(reader.getRow(1, q));
  ASSERT_TRUE(reader.getRow(2, q));
  EXPECT_EQ(200.0, q.getFloatField(2));
}

TEST_F(CalibrationTable, MissingRowAndNullIdAreNoRow) {
  exec("CREATE TABLE Kora (Id, ModelType, C0)");
  exec("INSERT INTO Kora VALUES (NULL, 2, 1.0), (-4, 2, 2.0)");
  CalibrationTableReader reader(db, "Kora", 0, "", boost::none);
  CppSQLite3Query q;
  EXPECT_FALSE(reader.getRow(9, q));
  EXPECT_TRUE(q.eof());
  ASSERT_TRUE(reader.getRow(-4, q));
  EXPECT_EQ(2.0, q.getFloatField(2));
  // A row whose Id is NULL is found by no id, yet a NULL Id compares to
  // nothing: the statement finds nothing here either.
  EXPECT_FALSE(reader.getRow(0, q));
}

TEST_F(CalibrationTable, NeedsOneColumnBeyondTheReservedOnes) {
  exec("CREATE TABLE Two (Id, ModelType)");
  exec("CREATE TABLE Three (Id, ModelType, CalibrationState)");
  exec("CREATE TABLE Fixed (Id, ModelType, T1)");
  EXPECT_EQ("Too few columns in table Two", thrownText<std::runtime_error>([&] {
              CalibrationTableReader(db, "Two", 0, "", boost::none);
            }));
  EXPECT_EQ("Too few columns in table Three",
            thrownText<std::runtime_error>([&] { CalibrationTableReader(db, "Three", 0, "", 1); }));
  EXPECT_EQ("Too few columns in table Missing", thrownText<std::runtime_error>([&] {
              CalibrationTableReader(db, "Missing", 0, "", boost::none);
            }));
  // Fixed columns are not counted by the check: no coefficient column at all.
  CalibrationTableReader fixed(db, "Fixed", 1, "c.T1, ", boost::none);
  EXPECT_EQ(0u, fixed.coefficientColumns());
}

TEST_F(CalibrationTable, FewerColumnsThanFixedOnesWrapAroundAndFailOnQuerying) {
  exec("CREATE TABLE Short (Id, ModelType, DigitizerTimebase)");
  exec("INSERT INTO Short VALUES (1, 1, 0.25)");
  CalibrationTableReader reader(db, "Short", 2, "c.DigitizerTimebase, c.DigitizerDelay, ",
                                boost::none);
  EXPECT_EQ(0xFFFFFFFFu, reader.coefficientColumns());
  CppSQLite3Query q;
  EXPECT_EQ("SQLITE_ERROR[1]: near \"FROM\": syntax error",
            thrownText<std::runtime_error>([&] { reader.getRow(1, q); }));
}

}  // namespace
