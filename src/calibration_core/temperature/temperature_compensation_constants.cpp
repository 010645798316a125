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

}  // namespace

namespace detail {

template <class Derived, class Family, int kCalibrationType>
std::string TemperatureCompensated<Derived, Family, kCalibrationType>::Dump() const {
  DumpStream os;
  os << Derived::kDumpHead << mode_ << Derived::kDumpAfterMode;
  writeList(os, measTemp_);
  os << "), correction factors: (";
  writeList(os, factors_);
  os << ")\n" << Family::Dump() << " ]";
  return os.str();
}

template <class Derived, class Family, int kCalibrationType>
bool TemperatureCompensated<Derived, Family, kCalibrationType>::StartAdaptation(
    const char* emptyText, const std::vector<double>& referenceTemperatures,
    const std::vector<double>& temperatureFactors) {
  if (measTemp_.empty()) LUMO_THROW(std::runtime_error(emptyText));
  mode_ = measTemp_.size() == 1 ? 1 : 3;
  return referenceTemperatures.size() == measTemp_.size() &&
         temperatureFactors.size() == measTemp_.size();
}

template <class Derived, class Family, int kCalibrationType>
double TemperatureCompensated<Derived, Family, kCalibrationType>::AdaptQuadratic(
    const ICalibrationConstantsFunctionalComputationQuadratic& reference,
    const std::vector<double>& referenceTemperatures,
    const std::vector<double>& temperatureFactors) {
  const double s = ScaleFrom(referenceTemperatures, temperatureFactors);
  this->SetC0(reference.GetC0());
  this->SetA1(reference.GetA1() / s);
  this->SetC2(reference.GetC2() / s);
  return s;
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
  if (StartAdaptation("CalibrationConstantsFunctionalTOF1TemperatureCompensation::"
                      "AdaptToReference: empty temperatures vector",
                      referenceTemperatures, temperatureFactors)) {
    AdaptQuadratic(*reference, referenceTemperatures, temperatureFactors);
  }
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
  if (!StartAdaptation("CalibrationConstantsFunctionalTOF2TemperatureCompensation::"
                       "AdaptToReference: Temperature vector is empty.",
                       referenceTemperatures, temperatureFactors)) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference: Parameter "
        "vectors have inappropriate size: \t\t\t\t\tm_measTemp.size() = " +
        std::to_string(measTemp_.size()) +
        ", referenceTemperatures.size() = " + std::to_string(referenceTemperatures.size()) +
        ", temperatureFactors.size() = " + std::to_string(temperatureFactors.size())));
  }
  const double s = AdaptQuadratic(*reference, referenceTemperatures, temperatureFactors);
  SetC3(tof2 ? tof2->GetC3() / s : 0.0);
  SetDm(tof2 ? tof2->GetDm() : 0.0);
}

template class detail::TemperatureCompensated<
    CalibrationConstantsFunctionalTOF1TemperatureCompensation, CalibrationConstantsFunctionalTOF1,
    kCalibrationTypeTOFTemperatureCompensation>;
template class detail::TemperatureCompensated<
    CalibrationConstantsFunctionalTOF2TemperatureCompensation, CalibrationConstantsFunctionalTOF2,
    kCalibrationTypeTOF2TemperatureCompensation>;

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
