#include "tools/calibration_rows.h"

namespace lumo {
namespace writer {

namespace {

// The row is sized once up front, so that no cell is moved by a reallocation.
Row mzHead(int64_t id, int64_t model, const MzCalibrationHead& h, size_t coefficients) {
  Row row;
  row.reserve(8 + coefficients);
  for (const SqlValue& v : {SqlValue(id), SqlValue(model), SqlValue(h.timebase), SqlValue(h.delay),
                            SqlValue(h.t1), SqlValue(h.t2), SqlValue(h.dC1), SqlValue(h.dC2)}) {
    row.push_back(v);
  }
  return row;
}

template <class Range>
void append(Row& row, const Range& values) {
  for (double v : values) row.emplace_back(v);
}

}  // namespace

Row mzTofRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 5>& c) {
  Row row = mzHead(id, 1, head, c.size());
  append(row, c);
  return row;
}

Row mzTofZrkRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 3>& c,
                const std::array<double, 4>& polynomial_parameters,
                const std::vector<double>& coefficients) {
  Row row = mzHead(id, 2, head, 8 + coefficients.size());
  append(row, c);
  append(row, polynomial_parameters);
  row.emplace_back(static_cast<int64_t>(coefficients.size()));
  append(row, coefficients);
  return row;
}

Row koraRampRow(int64_t id, const MobilityRamp& r) {
  return {id,       2,    r.ndelay, r.ncycles, r.vStart, r.vEnd, r.scanNumOffset,
          r.degree, r.c0, r.c1,     r.vMin,    r.vMax};
}

}  // namespace writer
}  // namespace lumo
