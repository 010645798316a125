#include "tools/calibration_rows.h"

namespace lumo {
namespace writer {

namespace {

template <class Range>
void append(Row& row, const Range& values) {
  for (double v : values) row.emplace_back(v);
}

}  // namespace

MzModel tofModel(const std::array<double, 5>& c) {
  MzModel m{1, {}};
  append(m.coefficients, c);
  return m;
}

MzModel tofZrkModel(const std::array<double, 3>& c,
                    const std::array<double, 4>& polynomial_parameters,
                    const std::vector<double>& coefficients) {
  MzModel m{2, {}};
  m.coefficients.reserve(8 + coefficients.size());
  append(m.coefficients, c);
  append(m.coefficients, polynomial_parameters);
  m.coefficients.emplace_back(static_cast<int64_t>(coefficients.size()));
  append(m.coefficients, coefficients);
  return m;
}

MzModel halyardModel(double c0, double c1, double c2, double beginRawMass,
                     double measurementsPerRawMass) {
  return {3, {c0, c1, c2, beginRawMass, measurementsPerRawMass}};
}

MzModel ftms04Model(int64_t calibMode, double beta, double freqHigh, double freqLow,
                    double freqWidth, int64_t size) {
  return {4, {calibMode, beta, freqHigh, freqLow, freqWidth, size}};
}

MzModel ftms1356Model(int64_t calibMode, double alpha, double beta, double freqHigh, double freqLow,
                      double freqWidth, int64_t size) {
  return {5, {calibMode, alpha, beta, freqHigh, freqLow, freqWidth, size}};
}

Row mzCalibrationRow(int64_t id, const MzCalibrationHead& h, const MzModel& model) {
  Row row{id, model.modelType, h.timebase, h.delay, h.t1, h.t2, h.dC1, h.dC2};
  row.insert(row.end(), model.coefficients.begin(), model.coefficients.end());
  return row;
}

Row mzTofRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 5>& c) {
  return mzCalibrationRow(id, head, tofModel(c));
}

Row mzTofZrkRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 3>& c,
                const std::array<double, 4>& polynomial_parameters,
                const std::vector<double>& coefficients) {
  return mzCalibrationRow(id, head, tofZrkModel(c, polynomial_parameters, coefficients));
}

Row koraRampRow(int64_t id, const MobilityRamp& r) {
  return {id,       2,    r.ndelay, r.ncycles, r.vStart, r.vEnd, r.scanNumOffset,
          r.degree, r.c0, r.c1,     r.vMin,    r.vMax};
}

}  // namespace writer
}  // namespace lumo
