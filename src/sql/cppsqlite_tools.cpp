#include "sql/cppsqlite_tools.h"

#include <boost/lexical_cast.hpp>
#include <cstdint>

#include "sys/throw.h"

namespace lumo {
namespace cppsqlite {
namespace {

template <class T>
T convert(const char* text) {
  return boost::lexical_cast<T>(text);
}
template <>
std::string convert<std::string>(const char* text) {
  return text;
}

}  // namespace

template <class T>
T simpleCheckedQuery(CppSQLite3DB& db, const std::string& sql) {
  CppSQLite3Query q = db.execQuery(sql);
  if (q.eof()) LUMO_THROW(std::runtime_error("Query result unexpectedly empty: " + sql));
  if (q.fieldIsNull(0)) LUMO_THROW(std::runtime_error("Query result unexpectedly NULL: " + sql));
  T value;
  try {
    value = convert<T>(q.fieldValue(0));
  } catch (const boost::bad_lexical_cast&) {
    LUMO_THROW(std::runtime_error("Query result has wrong type: " + sql));
  }
  q.nextRow();
  if (!q.eof()) LUMO_THROW(std::runtime_error("Query resulted in more than one result: " + sql));
  return value;
}

template int simpleCheckedQuery<int>(CppSQLite3DB&, const std::string&);
template int64_t simpleCheckedQuery<int64_t>(CppSQLite3DB&, const std::string&);
template bool simpleCheckedQuery<bool>(CppSQLite3DB&, const std::string&);
template std::string simpleCheckedQuery<std::string>(CppSQLite3DB&, const std::string&);

}  // namespace cppsqlite
}  // namespace lumo
