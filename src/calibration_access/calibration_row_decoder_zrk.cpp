// The row decoder of the TOF model under a ZRK correction.
#include <boost/make_shared.hpp>
#include <vector>

#include "calibration_access/calibration_row_decoders.h"
#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/zrk/calibration_polynomial_zrk.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"
#include "sql/cppsqlite3.h"

namespace lumo {
namespace io {
namespace calibration {

namespace C = lumo::calibration::Constants;
namespace T = lumo::calibration::Transformation;

lumo::calibration::ICalibrationTransformatorPtr getMzTrafoTofZrk(CppSQLite3Query& query, int col,
                                                                 double timeBase, double delay) {
  const auto base = boost::make_shared<T::CalibrationTransformatorTOFQuadratic>(
      boost::make_shared<C::CalibrationConstantsFunctionalTOF1>(query.getFloatField(col, 0.0),
                                                                query.getFloatField(col + 1, 0.0),
                                                                query.getFloatField(col + 2, 0.0)),
      boost::make_shared<C::CalibrationConstantsPhysicalTOF>(timeBase, delay));
  // c2, c0, minMass, maxMass of the polynomial, in stored order.
  const double c2 = query.getFloatField(col + 3, 0.0);
  const double c0 = query.getFloatField(col + 4, 0.0);
  const double minMass = query.getFloatField(col + 5, 0.0);
  const double maxMass = query.getFloatField(col + 6, 0.0);
  const int64_t count = query.getInt64Field(col + 7, 0);
  std::vector<double> coefficients;
  for (int64_t i = 0; i < count; ++i)
    coefficients.push_back(query.getFloatField(col + 8 + static_cast<int>(i), 0.0));
  return boost::make_shared<T::CalibrationTransformatorZRK>(
      base,
      boost::make_shared<T::CalibrationPolynomialZRK>(coefficients, c2, c0, minMass, maxMass));
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
