// One cell of an SQLite table as the writer stores it: NULL, a 64-bit
// integer, a double, a text or a blob. The writer binds each cell with the
// storage class it holds, so a test chooses exactly what a reader will see,
// including values of the wrong type.
#ifndef KORA_TOOLS_SQL_VALUE_H_
#define KORA_TOOLS_SQL_VALUE_H_

#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace lumo {
namespace writer {

// A value type; thread-compatible: one thread at a time.
class SqlValue {
 public:
  using Blob = std::vector<unsigned char>;

  // NULL.
  SqlValue() = default;
  // Any integer is stored as a 64-bit signed integer (unsigned values above
  // INT64_MAX wrap).
  template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
  SqlValue(T v) : value_(static_cast<int64_t>(v)) {}
  SqlValue(double v) : value_(v) {}
  SqlValue(const char* v) : value_(std::string(v)) {}
  SqlValue(std::string v) : value_(std::move(v)) {}
  SqlValue(Blob v) : value_(std::move(v)) {}

  static SqlValue null() { return SqlValue(); }

  bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
  bool isInteger() const { return std::holds_alternative<int64_t>(value_); }
  bool isReal() const { return std::holds_alternative<double>(value_); }
  bool isText() const { return std::holds_alternative<std::string>(value_); }
  bool isBlob() const { return std::holds_alternative<Blob>(value_); }

  // REQUIRES: the matching is...() is true.
  int64_t integer() const { return std::get<int64_t>(value_); }
  double real() const { return std::get<double>(value_); }
  const std::string& text() const { return std::get<std::string>(value_); }
  const Blob& blob() const { return std::get<Blob>(value_); }

  bool operator==(const SqlValue& other) const { return value_ == other.value_; }
  bool operator!=(const SqlValue& other) const { return !(*this == other); }

 private:
  std::variant<std::monostate, int64_t, double, std::string, Blob> value_;
};

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_SQL_VALUE_H_
