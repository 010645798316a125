#include "calibration_access/calibration_row_decoders.h"

#include <boost/make_shared.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <cstdint>
#include <vector>

#include "calibration_access/corrupt_data_error.h"
#include "calibration_core/constants/calibration_constants_functional_other.h"
#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/ftms/calibration_transformator_ftms.h"
#include "calibration_core/halyard/calibration_transformator_halyard.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "mobility/linear_voltage_ramp.h"
#include "sql/cppsqlite3.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace calibration {

namespace C = lumo::calibration::Constants;
namespace T = lumo::calibration::Transformation;
using lumo::calibration::ICalibrationTransformatorPtr;

namespace {

uint16_t readUint16(CppSQLite3Query& query, int col) {
  return boost::numeric_cast<uint16_t>(query.getIntField(col, 0));
}

}  // namespace

std::unique_ptr<lumo::calibration::kora::ILinearVoltageRampBasedTransformator> getMobTrafoLvrT4T3(
    CppSQLite3Query& query, int col) {
  const uint16_t ndelay = readUint16(query, col);
  const uint16_t ncycles = readUint16(query, col + 1);
  const double vStart = query.getFloatField(col + 2, 0.0);
  const double vEnd = query.getFloatField(col + 3, 0.0);
  const double scanNumOffset = query.getFloatField(col + 4, 0.0);
  const uint16_t degree = readUint16(query, col + 5);
  if (degree != 1) LUMO_THROW(CorruptDataError("LVR: unsupported degree != 1."));
  const std::vector<double> coefficients = {
      query.getFloatField(col + 6, 0.0), query.getFloatField(col + 7, 0.0),
      query.getFloatField(col + 8, 0.0), query.getFloatField(col + 9, 0.0)};
  return lumo::calibration::kora::createLinearVoltageRampBasedTransformator(
      lumo::calibration::kora::LinearVoltageRamp(ndelay, ncycles, vStart, vEnd), scanNumOffset,
      coefficients);
}

ICalibrationTransformatorPtr getMzTrafoTof(CppSQLite3Query& query, int col, double timeBase,
                                           double delay) {
  double c[5];
  for (int i = 0; i < 5; ++i) c[i] = query.getFloatField(col + i, 0.0);
  const auto physical = boost::make_shared<C::CalibrationConstantsPhysicalTOF>(timeBase, delay);
  if (c[3] == 0.0 && c[4] == 0.0)
    return boost::make_shared<T::CalibrationTransformatorTOFQuadratic>(
        boost::make_shared<C::CalibrationConstantsFunctionalTOF1>(c[0], c[1], c[2]), physical);
  return boost::make_shared<T::CalibrationTransformatorTOF2Cubic>(
      boost::make_shared<C::CalibrationConstantsFunctionalTOF2>(c[0], c[1], c[2], c[3], c[4]),
      physical);
}

ICalibrationTransformatorPtr getMzTrafoHalyard(CppSQLite3Query& query, int col) {
  const double c0 = query.getFloatField(col, 0.0);
  const double c1 = query.getFloatField(col + 1, 0.0);
  const double c2 = query.getFloatField(col + 2, 0.0);
  const auto physical = boost::make_shared<C::CalibrationConstantsPhysicalHalyard>(
      query.getFloatField(col + 3, 0.0), query.getFloatField(col + 4, 0.0));
  const auto functional = boost::make_shared<C::CalibrationConstantsFunctionalHalyard>(c0, c1, c2);
  if (c2 == 0.0)
    return boost::make_shared<T::CalibrationTransformatorHalyardLinear>(functional, physical);
  return boost::make_shared<T::CalibrationTransformatorHalyardQuadratic>(functional, physical);
}

ICalibrationTransformatorPtr getMzTrafoFtms04(CppSQLite3Query& query, int col) {
  const int calibMode = query.getIntField(col, 0);
  const auto functional = boost::make_shared<C::CalibrationConstantsFunctionalFTMS04>(
      query.getFloatField(col + 1, 0.0), query.getFloatField(col + 2, 0.0), 4, calibMode);
  const auto physical = boost::make_shared<C::CalibrationConstantsPhysicalFTMS>(
      query.getFloatField(col + 3, 0.0), query.getFloatField(col + 4, 0.0),
      query.getIntField(col + 5, 0));
  return boost::make_shared<T::CalibrationTransformatorFTMS04>(functional, physical);
}

ICalibrationTransformatorPtr getMzTrafoFtms1356(CppSQLite3Query& query, int col) {
  const int calibMode = query.getIntField(col, 0);
  const auto functional = boost::make_shared<C::CalibrationConstantsFunctionalFTMS1356>(
      query.getFloatField(col + 1, 0.0), query.getFloatField(col + 2, 0.0),
      query.getFloatField(col + 3, 0.0), 1, calibMode);
  const auto physical = boost::make_shared<C::CalibrationConstantsPhysicalFTMS>(
      query.getFloatField(col + 4, 0.0), query.getFloatField(col + 5, 0.0),
      query.getIntField(col + 6, 0));
  return boost::make_shared<T::CalibrationTransformatorFTMS15>(functional, physical);
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
