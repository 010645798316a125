#include "calibration_core/temperature/temperature_compensation_constants.h"

#include <boost/pointer_cast.hpp>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Constants {

namespace {

void writeList(std::ostream& os, const std::vector<double>& values) {
  for (size_t i = 0; i < values.size(); ++i) os << (i ? ", " : "") << values[i];
}

// 1 with one measured temperature, 3 with more. Throws std::runtime_error
// with `emptyText` without any.
int adaptedMode(const std::vector<double>& measured, const char* emptyText) {
  if (measured.empty()) LUMO_THROW(std::runtime_error(emptyText));
  return measured.size() == 1 ? 1 : 3;
}

}  // namespace

namespace detail {

template <class Derived, class Family, int kCalibrationType>
std::string TemperatureCompensated<Derived, Family, kCalibrationType>::DumpCompensation(
    const char* head, const char* afterMode) const {
  DumpStream os;
  os << head << mode_ << afterMode;
  writeList(os, measTemp_);
  os << "), correction factors: (";
  writeList(os, factors_);
  os << ")\n" << Family::Dump() << " ]";
  return os.str();
}

template <class Derived, class Family, int kCalibrationType>
double TemperatureCompensated<Derived, Family, kCalibrationType>::ScaleFrom(
    const std::vector<double>& referenceTemperatures,
    const std::vector<double>& temperatureFactors) const {
  double sum = 0.0;
  for (size_t i = 0; i < measTemp_.size(); ++i) {
    sum = sum + (referenceTemperatures[i] - measTemp_[i]) * temperatureFactors[i];
  }
  return sum / 1000000.0 + 1.0;
}

}  // namespace detail

std::string CalibrationConstantsFunctionalTOF1TemperatureCompensation::Dump() const {
  return DumpCompensation(
      "\tCalibrationConstantsFunctionalTOF1TemperatureCompensation[ compensation mode = ",
      ", temperatures: (");
}

void CalibrationConstantsFunctionalTOF1TemperatureCompensation::AdaptToReference(
    ICalibrationConstantsFunctionalTemperatureCompensationPtr referenceConstants,
    std::vector<double> referenceTemperatures, std::vector<double> temperatureFactors) {
  const ICalibrationConstantsFunctionalTOF1Ptr reference =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(referenceConstants);
  if (!reference) {
    LUMO_THROW(
        std::invalid_argument("lumo::calibration::Transformation::"
                              "CalibrationConstantsFunctionalTOF1TemperatureCompensation"
                              "::AdaptToReference: referenceConstants is not of type "
                              "ICalibrationConstantsFunctionalTOF1"));
  }
  mode_ =
      adaptedMode(measTemp_,
                  "CalibrationConstantsFunctionalTOF1TemperatureCompensation::AdaptToReference: "
                  "empty temperatures vector");
  const size_t n = measTemp_.size();
  if (referenceTemperatures.size() != n || temperatureFactors.size() != n) return;
  const double s = ScaleFrom(referenceTemperatures, temperatureFactors);
  SetC0(reference->GetC0());
  SetA1(reference->GetA1() / s);
  SetC2(reference->GetC2() / s);
}

std::string CalibrationConstantsFunctionalTOF2TemperatureCompensation::Dump() const {
  return DumpCompensation(
      "\tCalibrationConstantsFunctionalTOF2TemperatureCompensation[ compensation mode = ",
      " temperatures: (");
}

void CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference(
    ICalibrationConstantsFunctionalTemperatureCompensationPtr referenceConstants,
    std::vector<double> referenceTemperatures, std::vector<double> temperatureFactors) {
  const ICalibrationConstantsFunctionalTOF2Ptr tof2 =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(referenceConstants);
  ICalibrationConstantsFunctionalComputationQuadraticPtr reference = tof2;
  if (!reference) {
    reference =
        boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(referenceConstants);
  }
  if (!reference) {
    LUMO_THROW(std::invalid_argument(
        "lumo::calibration::Transformation::"
        "CalibrationConstantsFunctionalTOF2TemperatureCompensation"
        "::AdaptToReference:  is not of type ICalibrationConstantsFunctionalTOF1"));
  }
  mode_ =
      adaptedMode(measTemp_,
                  "CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference: "
                  "Temperature vector is empty.");
  const size_t n = measTemp_.size();
  if (referenceTemperatures.size() != n || temperatureFactors.size() != n) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference: Parameter "
        "vectors have inappropriate size: \t\t\t\t\tm_measTemp.size() = " +
        std::to_string(n) +
        ", referenceTemperatures.size() = " + std::to_string(referenceTemperatures.size()) +
        ", temperatureFactors.size() = " + std::to_string(temperatureFactors.size())));
  }
  const double s = ScaleFrom(referenceTemperatures, temperatureFactors);
  SetC0(reference->GetC0());
  SetA1(reference->GetA1() / s);
  SetC2(reference->GetC2() / s);
  SetC3(tof2 ? tof2->GetC3() / s : 0.0);
  SetDm(tof2 ? tof2->GetDm() : 0.0);
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
