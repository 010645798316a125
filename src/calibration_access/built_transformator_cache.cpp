#include "calibration_access/built_transformator_cache.h"

#include <cstring>
#include <utility>

#include "calibration_core/cloneable.h"
#include "sql/cppsqlite3.h"

namespace lumo {
namespace io {
namespace calibration {

namespace {

// Storage classes of a field, as SQLite numbers them.
enum FieldType { kInteger = 1, kFloat = 2, kNull = 5 };

std::uint64_t bitsOf(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

bool sameInputs(const BuiltTransformatorCache::Inputs& a,
                const BuiltTransformatorCache::Inputs& b) {
  return a.withFrameTemperature == b.withFrameTemperature && a.negative == b.negative &&
         bitsOf(a.T1) == bitsOf(b.T1) && bitsOf(a.T2) == bitsOf(b.T2) && a.row == b.row;
}

}  // namespace

bool BuiltTransformatorCache::readRow(const CppSQLite3Query& query, Inputs& inputs) {
  const int fields = query.numFields();
  inputs.row.clear();
  inputs.row.reserve(2 * static_cast<std::size_t>(fields));
  for (int i = 0; i < fields; ++i) {
    const int type = query.fieldType(i);
    std::uint64_t bits = 0;
    if (type == kInteger)
      bits = static_cast<std::uint64_t>(query.getInt64Field(i));
    else if (type == kFloat)
      bits = bitsOf(query.getFloatField(i));
    else if (type != kNull)
      return false;
    inputs.row.push_back(static_cast<std::uint64_t>(type));
    inputs.row.push_back(bits);
  }
  return true;
}

boost::shared_ptr<lumo::calibration::ICalibrationTransformator> BuiltTransformatorCache::find(
    const Inputs& inputs, bool* logsLine) const {
  if (!kept_ || !sameInputs(inputs, inputs_)) return nullptr;
  *logsLine = logsLine_;
  return lumo::calibration::cloneAs(kept_);
}

void BuiltTransformatorCache::keep(
    Inputs inputs, const boost::shared_ptr<lumo::calibration::ICalibrationTransformator>& built,
    bool logsLine) {
  inputs_ = std::move(inputs);
  kept_ = lumo::calibration::cloneAs(built);
  logsLine_ = logsLine;
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
