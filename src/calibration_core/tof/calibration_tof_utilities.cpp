#include "calibration_core/tof/calibration_tof_utilities.h"

#include <boost/pointer_cast.hpp>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace calibration {

namespace {

// The functional constants of `transformer` as the family F; throws
// std::invalid_argument(failureText) for none or another family.
template <class F>
boost::shared_ptr<F> familyOf(const ICalibrationTransformatorPtr& transformer,
                              const std::string& failureText) {
  boost::shared_ptr<F> constants;
  if (transformer) {
    constants = boost::dynamic_pointer_cast<F>(transformer->GetFunctionalConstants());
  }
  if (!constants) LUMO_THROW(std::invalid_argument(failureText));
  return constants;
}

// The failure texts of the Get and Set operations: `parameters` follow the
// transformer in the signature, `family` is the interface the model lacks.
std::string getFailureText(const char* parameters, const char* family) {
  return std::string(
             "lumo::calibration::CalibrationTOFUtilities::GetMainCalibConstants( "
             "\t\t\t\t\tICalibrationTransformatorPtr transformer, ") +
         parameters + ")\n: calibration transformer is not of type " + family + "Ptr";
}

// c0, c1 and c2, which both TOF families store.
template <class F>
void getC0C1C2(const F& from, double& c0, double& c1, double& c2) {
  c0 = from.GetC0();
  c1 = from.GetC1();
  c2 = from.GetC2();
}

template <class F>
void setC0C1C2(F& to, double c0, double c1, double c2) {
  to.SetC0(c0);
  to.SetC1(c1);
  to.SetC2(c2);
}

std::string setFailureText(const char* parameters, const char* family) {
  return std::string(
             "lumo::calibration::CalibrationTOFUtilities::SetMainCalibConstants("
             "ICalibrationTransformatorPtr transformer, ") +
         parameters + ")\n: calibration transformer not of type " + family + "Ptr.";
}

}  // namespace

double CalibrationTOFUtilities::ConvertC1ToA1(double c1) const { return 1e12 / c1; }

double CalibrationTOFUtilities::ConvertA1ToC1(double a1) const { return 1e12 / a1; }

void CalibrationTOFUtilities::GetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double& c0, double& c1, double& c2) const {
  ICalibrationConstantsFunctionalTOF1Ptr tof1 = familyOf<ICalibrationConstantsFunctionalTOF1>(
      transformer, getFailureText("double & c0, double & c1, double & c2",
                                  "ICalibrationConstantsFunctionalTOF1"));
  getC0C1C2(*tof1, c0, c1, c2);
}

void CalibrationTOFUtilities::GetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double& c0, double& c1, double& c2, double& c3,
                                                    double& dm) const {
  ICalibrationConstantsFunctionalTOF2Ptr tof2 = familyOf<ICalibrationConstantsFunctionalTOF2>(
      transformer, getFailureText("double & c0, double & c1, double & c2, double c3, double dm",
                                  "ICalibrationConstantsFunctionalTOF2"));
  getC0C1C2(*tof2, c0, c1, c2);
  c3 = tof2->GetC3();
  dm = tof2->GetDm();
}

void CalibrationTOFUtilities::SetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double c0, double c1, double c2) const {
  ICalibrationConstantsFunctionalTOF1Ptr tof1 = familyOf<ICalibrationConstantsFunctionalTOF1>(
      transformer,
      setFailureText("double c0, double c1, double c2", "ICalibrationConstantsFunctionalTOF1"));
  setC0C1C2(*tof1, c0, c1, c2);
  transformer->SetFunctionalConstants(tof1);
}

void CalibrationTOFUtilities::SetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double c0, double c1, double c2, double c3,
                                                    double dm) const {
  ICalibrationConstantsFunctionalTOF2Ptr tof2 = familyOf<ICalibrationConstantsFunctionalTOF2>(
      transformer, setFailureText("double c0, double c1, double c2, double c3, double dm",
                                  "ICalibrationConstantsFunctionalTOF2"));
  setC0C1C2(*tof2, c0, c1, c2);
  tof2->SetC3(c3);
  tof2->SetDm(dm);
  transformer->SetFunctionalConstants(tof2);
}

}  // namespace calibration
}  // namespace lumo
