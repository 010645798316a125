#include "calibration_core/transformation/policy_errors.h"

#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace {

const char* const kThirteenTabs = "\t\t\t\t\t\t\t\t\t\t\t\t\t";

}  // namespace

const char* const kComplexSolutionText =
    "complex valued solution in computation due to invalid calibration constants/value range";

void throwComplexSolution() { throw std::logic_error(kComplexSolutionText); }

void throwWrongFunctionalConstants(const char* policy, const char* interfaceName) {
  LUMO_THROW(std::invalid_argument(
      std::string("lumo::calibration::Transformation::") + policy +
      "::UpdateFunctionalConstants(const ICalibrationConstantsFunctionalPtr funConsts):\n" +
      kThirteenTabs + "funConsts is not of type " + interfaceName + "."));
}

void throwWrongPhysicalConstants() {
  LUMO_THROW(std::invalid_argument(
      std::string("lumo::calibration::Transformation::RILinear::UpdatePhysicalConstants(const "
                  "ICalibrationConstantsPhysicalPtr funConsts):\n") +
      kThirteenTabs + "funConsts is not of type ICalibrationConstantsPhysicalLinearPtr."));
}

void throwRangeNotImplemented(const char* function) {
  LUMO_THROW(std::runtime_error(std::string(function) +
                                "() not yet implemented for this particular transformator."));
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
