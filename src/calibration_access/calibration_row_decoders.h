// Row decoders: each turns a calibration row fetched by CalibrationTableReader
// into a transformator. `col` is the column of the row's first coefficient
// (C0). A NULL cell reads as 0 (0.0); the decoders fail only as stated and
// through the validation of the models they build. Shared by the readers of
// analysis.oxa and calibration.sqlite.
#ifndef KORA_CALIBRATION_ACCESS_CALIBRATION_ROW_DECODERS_H_
#define KORA_CALIBRATION_ACCESS_CALIBRATION_ROW_DECODERS_H_

#include <boost/shared_ptr.hpp>
#include <memory>

#include "calibration_core/transformation/calibration_transformator.h"
#include "mobility/transformation.h"

class CppSQLite3Query;

namespace lumo {
namespace io {
namespace calibration {

// The mobility law on a linear voltage ramp. C0 ndelay, C1 ncycles and C5 the
// degree are integers of 0 .. 65535 (boost::numeric::negative_overflow or
// positive_overflow otherwise); C2 Vstart, C3 Vend, C4 the scan number
// offset, then C6 .. C9 c0, c1, vmin, vmax, read only when the degree is 1
// (CorruptDataError "LVR: unsupported degree != 1." otherwise).
std::unique_ptr<lumo::calibration::kora::ILinearVoltageRampBasedTransformator> getMobTrafoLvrT4T3(
    CppSQLite3Query& query, int col);

// TOF: C0 .. C4 c0 .. c4 on the digitizer line (time base, delay). c3 and
// c4 both exactly 0.0 give the TOF1 quadratic model, anything else the TOF2
// cubic one.
lumo::calibration::ICalibrationTransformatorPtr getMzTrafoTof(CppSQLite3Query& query, int col,
                                                              double timeBase, double delay);

// TOF1 quadratic model (C0 .. C2) under a ZRK correction: C3 .. C6 c2, c0,
// minMass, maxMass of the correction polynomial, C7 the number n of its
// coefficients (64-bit; none when not positive), C8 .. C<7 + n> the
// coefficients.
lumo::calibration::ICalibrationTransformatorPtr getMzTrafoTofZrk(CppSQLite3Query& query, int col,
                                                                 double timeBase, double delay);

// Ion trap: C0 .. C2 c0, c1, c2, then begin raw mass and measurements per
// raw mass. c2 exactly 0.0 gives the linear model, else the quadratic one.
lumo::calibration::ICalibrationTransformatorPtr getMzTrafoHalyard(CppSQLite3Query& query, int col);

// FTMS, raw modes 0 and 4: C0 the calibration mode (int), C1 beta, C2 the
// high frequency, C3 the low frequency, C4 the frequency width, C5 the
// transient size (int).
lumo::calibration::ICalibrationTransformatorPtr getMzTrafoFtms04(CppSQLite3Query& query, int col);

// FTMS, raw modes 1, 3, 5 and 6: C0 the calibration mode (int), C1 alpha,
// C2 beta, C3 the high frequency, C4 the low frequency, C5 the frequency
// width, C6 the transient size (int).
lumo::calibration::ICalibrationTransformatorPtr getMzTrafoFtms1356(CppSQLite3Query& query, int col);

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CALIBRATION_ROW_DECODERS_H_
