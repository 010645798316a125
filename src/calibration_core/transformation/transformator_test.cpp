#include "calibration_core/transformation/transformator.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <stdexcept>
#include <string>

#include "calibration_core/constants/measurement_mode_info.h"
#include "calibration_core/linear/calibration_transformator_linear.h"
#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// Functional constants that answer no computation interface.
class BareFunctional : public virtual ICalibrationConstantsFunctional {
 public:
  ICloneablePtr Clone() const override { return boost::make_shared<BareFunctional>(); }
  int GetCalibMode() const override { return 0; }
  void SetCalibMode(const int&) override {}
  bool IsEqual(const ICalibrationConstantsFunctionalPtr&) const override { return false; }
  int GetCalibrationType() const override { return 0; }
  void AssimilateIndexOffset(double) override {}
  std::string Dump() const override { return ""; }
};

// Physical constants without the straight line of the raw axis.
class BarePhysical : public virtual ICalibrationConstantsPhysical {
 public:
  ICloneablePtr Clone() const override { return boost::make_shared<BarePhysical>(); }
  bool IsEqual(const ICalibrationConstantsPhysicalPtr&) const override { return false; }
  void AssimilateIndexOffset(double) override {}
  void SetRawRangeStart(double, double) override {}
  std::string Dump() const override { return ""; }
};

const std::string kThirteenTabs(13, '\t');

TEST(TransformatorIndexAxis, RawToIndexTruncatesTowardZero) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.0, 1000.0, 0.0), digitizer(1.0, 0.0));
  EXPECT_EQ(0, m->RawToIndex(-0.7));
  EXPECT_EQ(-1, m->RawToIndex(-1.7));
  EXPECT_EQ(3, m->RawToIndex(2.5));
  EXPECT_EQ(2, m->RawToIndex(2.4999));
}

TEST(TransformatorIndexAxis, DigitizerLine) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.0, 1000.0, 0.0), digitizer(0.5, 1000.0));
  EXPECT_EQ(1005.0, m->IndexToRaw(10));
  EXPECT_EQ(1005.25, m->DIndexToRaw(10.5));
  EXPECT_EQ(10.5, m->RawToDIndex(1005.25));
  EXPECT_EQ(11, m->RawToIndex(1005.25));
}

TEST(TransformatorIndexAxis, IndexOffsetShiftsAndAssimilationKeepsConversions) {
  auto plain = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.5));
  auto shifted = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.5),
                                                              digitizer(), 7.0);
  EXPECT_EQ(7.0, shifted->GetIndexOffset());
  for (int i : {0, 100, 5000, 123456}) {
    EXPECT_EQ(plain->IndexToMass(i + 7), shifted->IndexToMass(i));
    EXPECT_DOUBLE_EQ(plain->MassToDIndex(1234.5) - 7.0, shifted->MassToDIndex(1234.5));
  }
  std::vector<double> before;
  shifted->IndexToMass(0, 2000, before);
  shifted->AssimilateIndexOffset();
  EXPECT_EQ(0.0, shifted->GetIndexOffset());
  std::vector<double> after;
  shifted->IndexToMass(0, 2000, after);
  ASSERT_EQ(before.size(), after.size());
  for (size_t i = 0; i < before.size(); ++i)
    EXPECT_NEAR(before[i], after[i], 1e-9 * std::fabs(before[i]));
  auto physical = boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalTOF>(
      shifted->GetPhysicalConstants());
  EXPECT_EQ(1003.5, physical->GetTimeDelay());
}

TEST(TransformatorIndexAxis, SetRawRangeStartMovesTheAxisStart) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.0, 1000.0, 0.0));
  m->SetRawRangeStart(2000.0, 10.0);
  EXPECT_EQ(2000.0, m->DIndexToRaw(10.0));
  EXPECT_EQ(2000.5, m->IndexToRaw(11));
}

TEST(TransformatorWidths, IndexWidthNearIndexZeroIsMovedUp) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.0, 1000.0, 0.0));
  const double mass = m->DIndexToMass(1.0);
  const double nearZero = m->DIndexToMass(4.0) - m->DIndexToMass(0.0);
  EXPECT_NEAR(nearZero, m->IndexWidthToMassWidth(mass, 4.0), 1e-9 * nearZero);
  const double far = m->DIndexToMass(1000.0);
  const double centred = m->DIndexToMass(1002.0) - m->DIndexToMass(998.0);
  EXPECT_NEAR(centred, m->IndexWidthToMassWidth(far, 4.0), 1e-9 * centred);
}

TEST(TransformatorWidths, MassWidthBelowIndexZeroIsMovedUp) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.0, 1000.0, 0.0));
  const double m0 = m->IndexToMass(0);
  EXPECT_DOUBLE_EQ(m->MassToDIndex(m0 + 0.5) - m->MassToDIndex(m0),
                   m->MassWidthToIndexWidth(m0, 0.5));
  EXPECT_DOUBLE_EQ(m->MassToDIndex(100.25) - m->MassToDIndex(99.75),
                   m->MassWidthToIndexWidth(100.0, 0.5));
}

TEST(TransformatorConstants, GettersHandOutClonesAndSettersTakeClones) {
  ICalibrationConstantsFunctionalPtr constants = tof2(2000.0, 1000.0, 0.01, 0.0, 0.5);
  auto m = model<CalibrationTransformatorTOF2Quadratic>(constants);
  const double raw = m->MassToRaw(500.0);
  boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(constants)->SetC0(0.0);
  EXPECT_EQ(raw, m->MassToRaw(500.0));
  auto got =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(m->GetFunctionalConstants());
  got->SetC2(5.0);
  EXPECT_EQ(raw, m->MassToRaw(500.0));
  EXPECT_EQ(0.01, boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF2>(
                      m->GetFunctionalConstants())
                      ->GetC2());
  m->SetFunctionalConstants(got);
  EXPECT_NE(raw, m->MassToRaw(500.0));
}

TEST(TransformatorConstants, EmptySettersAreIgnoredAndEmptyInfoClears) {
  auto m = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.5));
  const double raw = m->MassToRaw(500.0);
  const double index = m->MassToDIndex(500.0);
  m->SetFunctionalConstants(ICalibrationConstantsFunctionalPtr());
  m->SetPhysicalConstants(ICalibrationConstantsPhysicalPtr());
  EXPECT_EQ(raw, m->MassToRaw(500.0));
  EXPECT_EQ(index, m->MassToDIndex(500.0));
  EXPECT_FALSE(m->GetMeasurementModeInfo());
  m->SetMeasurementModeInfo(boost::make_shared<MeasurementModeInfo>(2, 1, 0, 0));
  EXPECT_EQ(1, m->GetMeasurementModeInfo()->GetPolarity());
  m->SetMeasurementModeInfo(IMeasurementModeInfoPtr());
  EXPECT_FALSE(m->GetMeasurementModeInfo());
}

TEST(TransformatorConstants, CalibModeAndTypeForwardToTheConstants) {
  auto m = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.5));
  EXPECT_EQ(12, m->GetCalibrationType());
  EXPECT_EQ(-1, m->GetCalibMode());
  m->SetCalibMode(5);
  EXPECT_EQ(5, m->GetCalibMode());
  EXPECT_EQ(5, m->GetFunctionalConstants()->GetCalibMode());
  EXPECT_EQ(1, model<CalibrationTransformatorTOFLinear>(tof1(0, 1000, 0))->GetCalibrationType());
}

TEST(TransformatorConstants, WrongKindsFailWithTheirTexts) {
  EXPECT_EQ(
      "lumo::calibration::Transformation::RMLinear::UpdateFunctionalConstants(const "
      "ICalibrationConstantsFunctionalPtr funConsts):\n" +
          kThirteenTabs +
          "funConsts is not of type ICalibrationConstantsFunctionalComputationLinear.",
      thrownText<std::invalid_argument>(
          [] { model<CalibrationTransformatorTOFLinear>(boost::make_shared<BareFunctional>()); }));
  EXPECT_EQ(
      "lumo::calibration::Transformation::RILinear::UpdatePhysicalConstants(const "
      "ICalibrationConstantsPhysicalPtr funConsts):\n" +
          kThirteenTabs + "funConsts is not of type ICalibrationConstantsPhysicalLinearPtr.",
      thrownText<std::invalid_argument>([] {
        model<CalibrationTransformatorTOFLinear>(tof1(0, 1000, 0),
                                                 boost::make_shared<BarePhysical>());
      }));
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0, 1000, 0));
  const double index = m->MassToDIndex(100.0);
  EXPECT_THROW(m->SetPhysicalConstants(boost::make_shared<BarePhysical>()), std::invalid_argument);
  EXPECT_EQ(index, m->MassToDIndex(100.0));
}

TEST(TransformatorClone, ClonesStayIndependentOfTheirSource) {
  ICalibrationTransformatorPtr source = model<CalibrationTransformatorTOF2Quadratic>(
      tof2(2000.0, 1000.0, 0.01, 0.0, 0.5), digitizer(), 3.0);
  source->SetMeasurementModeInfo(boost::make_shared<MeasurementModeInfo>(2, 1, 0, 0));
  ICalibrationTransformatorPtr copy = cloneAs(source);
  ASSERT_TRUE(boost::dynamic_pointer_cast<CalibrationTransformatorTOF2Quadratic>(copy));
  EXPECT_TRUE(copy->IsEqual(source));
  EXPECT_EQ(3.0, copy->GetIndexOffset());
  EXPECT_EQ(source->DumpData(), copy->DumpData());
  EXPECT_EQ(source->DIndexToMass(1234.5), copy->DIndexToMass(1234.5));

  const double mass = source->DIndexToMass(1234.5);
  copy->SetFunctionalConstants(tof2(1900.0, 1000.0, 0.01, 0.0, 0.5));
  copy->SetPhysicalConstants(digitizer(0.25, 1000.0));
  copy->SetIndexOffset(0.0);
  copy->SetMeasurementModeInfo(IMeasurementModeInfoPtr());
  EXPECT_EQ(mass, source->DIndexToMass(1234.5));
  EXPECT_EQ(3.0, source->GetIndexOffset());
  EXPECT_TRUE(source->GetMeasurementModeInfo());
  EXPECT_FALSE(copy->IsEqual(source));
}

TEST(TransformatorIsEqual, SameModelAndConstantsOnly) {
  auto quadratic = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000, 1000, 0.01, 0, 0.5));
  auto offset = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000, 1000, 0.01, 0, 0.5),
                                                             digitizer(), 9.0);
  auto linear = model<CalibrationTransformatorTOF2Linear>(tof2(2000, 1000, 0.01, 0, 0.5));
  auto otherDigitizer = model<CalibrationTransformatorTOF2Quadratic>(tof2(2000, 1000, 0.01, 0, 0.5),
                                                                     digitizer(0.5, 999.0));
  EXPECT_TRUE(quadratic->IsEqual(offset));
  EXPECT_FALSE(quadratic->IsEqual(linear));
  EXPECT_FALSE(quadratic->IsEqual(otherDigitizer));
  EXPECT_FALSE(quadratic->IsEqual(ICalibrationTransformatorConstPtr()));
}

TEST(TransformatorDump, Lines) {
  auto m = model<CalibrationTransformatorTOFLinear>(tof1(0.5, 1000.0, 0.0), digitizer(), 2.0);
  EXPECT_EQ(
      "CalibrationTransformatorTOFLinear[ V1\n"
      "\tIndex offset[2]\n]",
      model<CalibrationTransformatorTOFLinear>(ICalibrationConstantsFunctionalPtr(),
                                               ICalibrationConstantsPhysicalPtr(), 2.0)
          ->DumpData());
  m->SetMeasurementModeInfo(boost::make_shared<MeasurementModeInfo>(2, 0, 0, 0));
  EXPECT_EQ(
      "CalibrationTransformatorTOFLinear[ V1\n"
      "\tCalibrationConstantsFunctionalTOF1[ c0 = 0.5, c1 = 1000 (corresponding to a1 = 1000000, "
      "c2 = 0, calibMode = -1 ]\n"
      "\tCalibrationConstantsPhysicalTOF[ time delay = 1000, time base = 0.5 ]\n"
      "\tMeasurementModeInfo[ Polarity = 0, AcquisitionMode = TOF reflector, ScanMode = MS, "
      "MSMSLevel = 0] \n"
      "\tIndex offset[2]\n]",
      m->DumpData());
}

TEST(TransformatorRanges, TemplateRangesAreNotImplemented) {
  // The linear model keeps the template's range functions: m = 2 t + 1.
  CalibrationTransformatorLinear plain(testing::linear(1.0, 2.0), testing::line(0.0, 1.0));
  EXPECT_EQ(7.0, plain.RawToMass(3.0));
  EXPECT_EQ(3.0, plain.MassToRaw(7.0));
  EXPECT_EQ("monotonicMassRange() not yet implemented for this particular transformator.",
            thrownText<std::runtime_error>([&] { plain.monotonicMassRange(1.0); }));
  EXPECT_EQ("usableMassRange() not yet implemented for this particular transformator.",
            thrownText<std::runtime_error>([&] { plain.usableMassRange(1.0, 0.1); }));
}

TEST(TransformatorDegree, OfEachModel) {
  EXPECT_EQ(1, model<CalibrationTransformatorTOFLinear>(tof1(0, 1000, 0))->GetFunctionalDegree());
  EXPECT_EQ(2,
            model<CalibrationTransformatorTOFQuadratic>(tof1(0, 1000, 0))->GetFunctionalDegree());
  EXPECT_EQ(
      1, model<CalibrationTransformatorTOF2Linear>(tof2(0, 1000, 0, 0, 0))->GetFunctionalDegree());
  EXPECT_EQ(
      2,
      model<CalibrationTransformatorTOF2Quadratic>(tof2(0, 1000, 0, 0, 0))->GetFunctionalDegree());
  EXPECT_EQ(
      3, model<CalibrationTransformatorTOF2Cubic>(tof2(0, 1000, 0, 0, 0))->GetFunctionalDegree());
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
