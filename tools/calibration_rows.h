// Builders of calibration rows, column for column, for both databases: the
// MzCalibration and KoraCalibration tables of analysis.oxa
// (mzCalibrationTable(), koraCalibrationTable()) and the calibration tables
// of calibration.sqlite (tools/calibration_store.h). The results are plain
// rows: a test may change any cell afterwards (NULL, a wrong type) before it
// appends the row to a table. A row longer than a table's columns needs a
// table made with more coefficient columns.
#ifndef KORA_TOOLS_CALIBRATION_ROWS_H_
#define KORA_TOOLS_CALIBRATION_ROWS_H_

#include <array>
#include <cstdint>
#include <vector>

#include "tools/sql_value.h"

namespace lumo {
namespace writer {

using Row = std::vector<SqlValue>;

// The temperatures at which an m/z calibration was made (T1, T2) and its
// temperature coefficients dC1, dC2 in parts per million per degree.
struct ReferenceTemperatures {
  double t1 = 25.0;
  double t2 = 25.0;
  double dC1 = 0.0;
  double dC2 = 0.0;
};

// The head of an analysis.oxa MzCalibration row: the reference temperatures
// and the digitizer time base and delay (the raw flight time of index i is
// i * timebase + delay).
struct MzCalibrationHead : ReferenceTemperatures {
  double timebase = 0.25;
  double delay = 20000.0;
};

// One m/z model: its ModelType number and its coefficient cells C0, C1, ...
struct MzModel {
  int64_t modelType = 1;
  Row coefficients;
};

// ModelType 1, time-of-flight model: C0 .. C4 = c0, c1, c2, c3, c4 (flight
// time t = c0 + sqrt(1e12 / c1^2 * m) + c2 * m for c3 = c4 = 0; otherwise the
// cubic form with c4 the mass shift).
MzModel tofModel(const std::array<double, 5>& c);

// ModelType 2, time-of-flight model with a correction polynomial: C0 .. C2
// the base model's c0, c1, c2; C3 .. C6 the correction polynomial's c2, c0,
// lowest and highest mass (outside that range the correction fades out); C7
// the number n of polynomial coefficients (an integer); C8 .. C<7+n> the
// coefficients, offsets from the identity in rising powers.
MzModel tofZrkModel(const std::array<double, 3>& c,
                    const std::array<double, 4>& polynomial_parameters,
                    const std::vector<double>& coefficients);

// ModelType 3, ion trap: mass = c2 * r^2 + c1 * r + c0 of the raw value r,
// and r = beginRawMass + index / measurementsPerRawMass. C0 .. C4 in this
// order. (As a reference calibration of calibration.sqlite the five numbers
// are read from T1 on: see halyardReferenceRow().)
MzModel halyardModel(double c0, double c1, double c2, double beginRawMass,
                     double measurementsPerRawMass);

// ModelType 4, FTMS with a linear reciprocal law: C0 the calibration mode
// (an integer, 0 or 4), C1 beta, C2 the high frequency, C3 the low
// frequency, C4 the frequency width, C5 the transient size (an integer).
MzModel ftms04Model(int64_t calibMode, double beta, double freqHigh, double freqLow,
                    double freqWidth, int64_t size);

// ModelType 5, FTMS with a quadratic reciprocal law: C0 the calibration mode
// (an integer, 1, 3, 5 or 6), C1 alpha, C2 beta, C3 the high frequency, C4
// the low frequency, C5 the frequency width, C6 the transient size (an
// integer).
MzModel ftms1356Model(int64_t calibMode, double alpha, double beta, double freqHigh, double freqLow,
                      double freqWidth, int64_t size);

// analysis.oxa MzCalibration row. Columns: Id, ModelType, DigitizerTimebase,
// DigitizerDelay, T1, T2, dC1, dC2, then the model's coefficients.
Row mzCalibrationRow(int64_t id, const MzCalibrationHead& head, const MzModel& model);
// mzCalibrationRow() of tofModel(c) and of tofZrkModel(...).
Row mzTofRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 5>& c);
Row mzTofZrkRow(int64_t id, const MzCalibrationHead& head, const std::array<double, 3>& c,
                const std::array<double, 4>& polynomial_parameters,
                const std::vector<double>& coefficients);

// The parameters of a KoraCalibration row of ModelType 2: a linear voltage
// ramp of `ncycles` scans after `ndelay` scans, from vStart to vEnd volts;
// a scan number offset; the law 1/K0 = x / (c0 * x + c1) for voltage
// magnitudes x between vMin and vMax (1/K0 in V·s/cm²), continued by its
// tangents outside; the degree of the law (1).
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

// KoraCalibration row (both databases; calibration.sqlite adds its state
// cell). Columns: Id, ModelType (2), C0 .. C9 (12 cells); C0, C1 and C5 are
// integers.
Row koraRampRow(int64_t id, const MobilityRamp& ramp);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_CALIBRATION_ROWS_H_
