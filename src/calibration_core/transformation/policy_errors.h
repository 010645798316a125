// The failures of the conversion policies, thrown out of line so that the
// inlined conversions stay small.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_POLICY_ERRORS_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_POLICY_ERRORS_H_

namespace lumo {
namespace calibration {
namespace Transformation {

extern const char* const kComplexSolutionText;

// std::logic_error(kComplexSolutionText), thrown plainly: it is the failure
// of a single conversion on the hot path.
[[noreturn]] void throwComplexSolution();

// std::invalid_argument with location and stack trace: the functional
// constants do not answer the computation interface `interfaceName` that
// `policy` reads.
[[noreturn]] void throwWrongFunctionalConstants(const char* policy, const char* interfaceName);

// std::invalid_argument with location and stack trace: the physical
// constants are not ICalibrationConstantsPhysicalLinear.
[[noreturn]] void throwWrongPhysicalConstants();

// std::runtime_error with location and stack trace:
// "<function>() not yet implemented for this particular transformator."
[[noreturn]] void throwRangeNotImplemented(const char* function);

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_POLICY_ERRORS_H_
