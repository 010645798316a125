// Checked single-value queries.
#ifndef KORA_SQL_CPPSQLITE_TOOLS_H_
#define KORA_SQL_CPPSQLITE_TOOLS_H_

#include <string>

#include "sql/cppsqlite3.h"

namespace lumo {
namespace cppsqlite {

// Runs `sql`, which must yield exactly one row with one non-NULL value in
// column 0, and converts the text of that value to T (boost::lexical_cast;
// std::string takes the text as it is). Checks, in this order, each a
// std::runtime_error with `sql` appended:
//   no row           "Query result unexpectedly empty: "
//   NULL value       "Query result unexpectedly NULL: "
//   not convertible  "Query result has wrong type: "
//   a second row     "Query resulted in more than one result: "
// CppSQLite3Exception passes through.
// Instantiated for int, int64_t, bool and std::string.
template <class T>
T simpleCheckedQuery(CppSQLite3DB& db, const std::string& sql);

}  // namespace cppsqlite
}  // namespace lumo

#endif  // KORA_SQL_CPPSQLITE_TOOLS_H_
