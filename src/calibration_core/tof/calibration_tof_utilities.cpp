#include "calibration_core/tof/calibration_tof_utilities.h"

#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {

namespace {

// The functional constants of `transformer` as the family F; throws
// std::invalid_argument(failureText) for none or another family.
template <class F>
boost::shared_ptr<F> familyOf(const ICalibrationTransformatorPtr& transformer,
                              const char* failureText) {
  boost::shared_ptr<F> constants;
  if (transformer) {
    constants = boost::dynamic_pointer_cast<F>(transformer->GetFunctionalConstants());
  }
  if (!constants) LUMO_THROW(std::invalid_argument(failureText));
  return constants;
}

}  // namespace

double CalibrationTOFUtilities::ConvertC1ToA1(double c1) const { return 1e12 / c1; }

double CalibrationTOFUtilities::ConvertA1ToC1(double a1) const { return 1e12 / a1; }

void CalibrationTOFUtilities::GetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double& c0, double& c1, double& c2) const {
  ICalibrationConstantsFunctionalTOF1Ptr tof1 = familyOf<ICalibrationConstantsFunctionalTOF1>(
      transformer,
      "lumo::calibration::CalibrationTOFUtilities::GetMainCalibConstants( "
      "\t\t\t\t\tICalibrationTransformatorPtr transformer, double & c0, double & c1, double "
      "& c2)\n: calibration transformer is not of type ICalibrationConstantsFunctionalTOF1Ptr");
  c0 = tof1->GetC0();
  c1 = tof1->GetC1();
  c2 = tof1->GetC2();
}

void CalibrationTOFUtilities::GetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double& c0, double& c1, double& c2, double& c3,
                                                    double& dm) const {
  ICalibrationConstantsFunctionalTOF2Ptr tof2 = familyOf<ICalibrationConstantsFunctionalTOF2>(
      transformer,
      "lumo::calibration::CalibrationTOFUtilities::GetMainCalibConstants( "
      "\t\t\t\t\tICalibrationTransformatorPtr transformer, double & c0, double & c1, double & c2, "
      "double c3, double dm)\n: calibration transformer is not of type "
      "ICalibrationConstantsFunctionalTOF2Ptr");
  c0 = tof2->GetC0();
  c1 = tof2->GetC1();
  c2 = tof2->GetC2();
  c3 = tof2->GetC3();
  dm = tof2->GetDm();
}

void CalibrationTOFUtilities::SetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double c0, double c1, double c2) const {
  ICalibrationConstantsFunctionalTOF1Ptr tof1 = familyOf<ICalibrationConstantsFunctionalTOF1>(
      transformer,
      "lumo::calibration::CalibrationTOFUtilities::SetMainCalibConstants("
      "ICalibrationTransformatorPtr transformer, double c0, double c1, double c2)\n: "
      "calibration transformer not of type ICalibrationConstantsFunctionalTOF1Ptr.");
  tof1->SetC0(c0);
  tof1->SetC1(c1);
  tof1->SetC2(c2);
  transformer->SetFunctionalConstants(tof1);
}

void CalibrationTOFUtilities::SetMainCalibConstants(ICalibrationTransformatorPtr transformer,
                                                    double c0, double c1, double c2, double c3,
                                                    double dm) const {
  ICalibrationConstantsFunctionalTOF2Ptr tof2 = familyOf<ICalibrationConstantsFunctionalTOF2>(
      transformer,
      "lumo::calibration::CalibrationTOFUtilities::SetMainCalibConstants("
      "ICalibrationTransformatorPtr transformer, double c0, double c1, double c2, double "
      "c3, double dm)\n: calibration transformer not of type "
      "ICalibrationConstantsFunctionalTOF2Ptr.");
  tof2->SetC0(c0);
  tof2->SetC1(c1);
  tof2->SetC2(c2);
  tof2->SetC3(c3);
  tof2->SetDm(dm);
  transformer->SetFunctionalConstants(tof2);
}

}  // namespace calibration
}  // namespace lumo
