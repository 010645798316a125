// Two connections on one fresh database file holding a table `t (a INTEGER)`;
// `other` gives up at once when it meets a lock. For tests only.
#ifndef KORA_SQL_TWO_CONNECTIONS_FIXTURE_H_
#define KORA_SQL_TWO_CONNECTIONS_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>

#include "sql/cppsqlite3.h"
#include "testing/temp_dir.h"

namespace kora_testing {

class TwoConnections : public ::testing::Test {
 protected:
  // `values` is the VALUES list of the rows `t` starts with, e.g. "(1), (2)".
  void openWith(const std::string& values) {
    const std::string path = (dir / "t.db").string();
    db.open(path);
    db.execDML("CREATE TABLE t (a INTEGER)");
    db.execDML(("INSERT INTO t VALUES " + values).c_str());
    other.setBusyTimeout(0);
    other.open(path);
  }
  void TearDown() override {
    db.close();
    other.close();
  }
  TempDir dir;
  CppSQLite3DB db;
  CppSQLite3DB other;
};

}  // namespace kora_testing

#endif  // KORA_SQL_TWO_CONNECTIONS_FIXTURE_H_
