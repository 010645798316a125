// Builders of calibration rows for the tables of mzCalibrationTable() and
// koraCalibrationTable(), column for column. The results are plain rows:
// a test may change any cell afterwards (NULL, a wrong type) before it
// appends the row to the table. A row longer than the table's columns needs
// a table made with more coefficient columns.
#ifndef KORA_TOOLS_CALIBRATION_ROWS_H_
#define KORA_TOOLS_CALIBRATION_ROWS_H_

#include <array>
#include <cstdint>
#include <vector>

#include "tools/sql_value.h"

namespace lumo {
namespace writer {

using Row = std::vector<SqlValue>;

// The head of a MzCalibration row: digitizer time base and delay (the raw
// flight time of index i is i * timebase + delay), reference temperatures
// T1, T2 and temperature coefficients dC1, dC2.
struct MzCalibrationHead {
  double timebase = 0.25;
  double delay = 20000.0;
  double t1 = 25.0;
  double t2 = 25.0;
  double dC1 = 0.0;
  double dC2 = 0.0;
};

// ModelType 1, time-of-flight model: coefficients C0 .. C4 (c0, c1, c2, c3,
// c4); c3 and c4 both 0 select the quadratic form.
// Columns: Id, ModelType, head, C0 .. C4 (13 cells).
Row mzTofRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 5>& c);

// ModelType 2, time-of-flight model with a correction polynomial: C0 .. C2
// the base model's c0, c1, c2; C3 .. C6 the polynomial's four parameters in
// stored order; C7 the number n of polynomial coefficients; C8 .. C<7+n>
// the coefficients. Columns: Id, ModelType, head, then 8 + n cells.
Row mzTofZrkRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 3>& c,
                const std::array<double, 4>& polynomial_parameters,
                const std::vector<double>& coefficients);

// The parameters of a KoraCalibration row of ModelType 2: a linear voltage
// ramp of `ncycles` scans after `ndelay` scans, from vStart to vEnd volts;
// a scan number offset; the law 1/K0 = x / (c0 * x + c1) for voltage
// magnitudes x between vMin and vMax; the degree of the law (1).
struct MobilityRamp {
  int64_t ndelay = 0;
  int64_t ncycles = 918;
  double vStart = 200.0;
  double vEnd = 60.0;
  double scanNumOffset = 0.0;
  int64_t degree = 1;
  double c0 = 0.0;
  double c1 = 125.0;
  double vMin = 50.0;
  double vMax = 210.0;
};

// Columns: Id, ModelType (2), C0 .. C9 (12 cells).
Row koraRampRow(int64_t id, const MobilityRamp& ramp);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_CALIBRATION_ROWS_H_
