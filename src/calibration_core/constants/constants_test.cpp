#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string>
#include <utility>

#include "calibration_core/constants/calibration_constants_functional_other.h"
#include "calibration_core/constants/calibration_constants_functional_tof.h"
#include "calibration_core/constants/calibration_constants_physical.h"
#include "calibration_core/constants/measurement_mode_info.h"
#include "testing/thrown_text.h"

namespace lumo {
namespace calibration {
namespace {

using Constants::CalibrationConstantsFunctionalFTMS04;
using Constants::CalibrationConstantsFunctionalFTMS1356;
using Constants::CalibrationConstantsFunctionalTOF1;
using Constants::CalibrationConstantsFunctionalTOF2;
using Constants::CalibrationConstantsPhysicalFTMS;
using Constants::CalibrationConstantsPhysicalHalyard;
using Constants::CalibrationConstantsPhysicalTOF;
using Transformation::MeasurementModeInfo;

using kora_testing::thrownText;

TEST(FunctionalConstantsTOF1, DefaultsAndSlopeTerm) {
  CalibrationConstantsFunctionalTOF1 c(0.25, 1000.0, 0.0);
  EXPECT_EQ(-1, c.GetCalibMode());
  EXPECT_EQ(1, c.GetCalibrationType());
  EXPECT_EQ(1e6, c.GetA1());
  c.SetC1(-1000.0);
  EXPECT_EQ(1e6, c.GetA1());
  EXPECT_EQ(1e6, c.GetA1FromStoredC1());
}

TEST(FunctionalConstantsTOF1, SetA1StoresMatchingC1KeepingItsSign) {
  CalibrationConstantsFunctionalTOF1 c(0.0, -2000.0, 0.0);
  c.SetA1(1e6);
  EXPECT_EQ(-1000.0, c.GetC1());
  EXPECT_EQ(1e6, c.GetA1());
}

TEST(FunctionalConstantsTOF2, ShiftIsC4) {
  CalibrationConstantsFunctionalTOF2 c(1.0, 1000.0, 2.0, 3.0, 4.5, 7);
  EXPECT_EQ(12, c.GetCalibrationType());
  EXPECT_EQ(4.5, c.GetDm());
  c.SetDm(-1.5);
  EXPECT_EQ(-1.5, c.GetC4());
  EXPECT_EQ(1e6, c.GetA1());
}

TEST(FunctionalConstants, ClonesStayIndependentOfTheirSource) {
  ICalibrationConstantsFunctionalTOF2Ptr source =
      boost::make_shared<CalibrationConstantsFunctionalTOF2>(1.0, 1000.0, 2.0, 3.0, 4.0, 5);
  ICalibrationConstantsFunctionalTOF2Ptr copy = cloneAs(source);
  ASSERT_NE(source.get(), copy.get());
  EXPECT_TRUE(copy->IsEqual(source));
  copy->SetC0(10.0);
  copy->SetC3(-1.0);
  copy->SetCalibMode(9);
  EXPECT_EQ(1.0, source->GetC0());
  EXPECT_EQ(3.0, source->GetC3());
  EXPECT_EQ(5, source->GetCalibMode());
  EXPECT_FALSE(copy->IsEqual(source));
  source->SetC2(-7.0);
  EXPECT_EQ(2.0, copy->GetC2());
}

TEST(FunctionalConstants, IsEqualNeedsTheSameFamily) {
  ICalibrationConstantsFunctionalPtr tof1 =
      boost::make_shared<CalibrationConstantsFunctionalTOF1>(1.0, 1000.0, 2.0);
  ICalibrationConstantsFunctionalPtr tof2 =
      boost::make_shared<CalibrationConstantsFunctionalTOF2>(1.0, 1000.0, 2.0, 0.0, 0.0);
  EXPECT_FALSE(tof1->IsEqual(tof2));
  EXPECT_FALSE(tof2->IsEqual(tof1));
  EXPECT_FALSE(tof1->IsEqual(ICalibrationConstantsFunctionalPtr()));
}

TEST(FunctionalConstants, ComputationNumbersOfTheOtherFamilies) {
  Constants::CalibrationConstantsFunctionalHalyard halyard(1.0, 2.0, 3.0);
  EXPECT_EQ(2.0, halyard.GetA1());
  Constants::CalibrationConstantsFunctionalLinear linear(1.0, 2.0);
  EXPECT_EQ(1.0, linear.GetC0());
  EXPECT_EQ(2.0, linear.GetA1());
  CalibrationConstantsFunctionalFTMS1356 ftms(5.0, 7.0, 3.0, 1, 1);
  EXPECT_EQ(0.0, ftms.GetC0());
  EXPECT_EQ(7.0, ftms.GetA1());
  EXPECT_EQ(5.0, ftms.GetC2());
}

TEST(FunctionalConstantsFTMS, ModeChecks) {
  CalibrationConstantsFunctionalFTMS04 ftms04(2.0, 3.0);
  EXPECT_NO_THROW(ftms04.SetCalibMode(4));
  EXPECT_NO_THROW(ftms04.SetCalibMode(0));
  EXPECT_EQ(
      "CalibrationConstantsFunctionalFTMS04::SetCalibMode: Invalid FTMS mode: 0 or 4 are possible",
      thrownText<std::invalid_argument>([&] { ftms04.SetCalibMode(1); }));
  EXPECT_EQ(0, ftms04.GetCalibMode());

  CalibrationConstantsFunctionalFTMS1356 ftms1356(1.0, 2.0, 3.0, 1, 5);
  EXPECT_EQ(
      "CalibrationConstantsFunctionalFTMS1356::SetCalibMode: Invalid FTMS Mode: 1, 3, 5 and 6 are "
      "valid",
      thrownText<std::invalid_argument>([&] { ftms1356.SetCalibMode(4); }));
  EXPECT_EQ(5, ftms1356.GetCalibMode());
  EXPECT_NO_THROW(ftms1356.SetCalibMode(6));
  EXPECT_EQ(
      "CalibrationConstantsFunctionalFTMS1356 c'tor: Invalid FTMS Mode: 1, 3, 5 and 6 are valid",
      thrownText<std::invalid_argument>(
          [] { CalibrationConstantsFunctionalFTMS1356(1.0, 2.0, 3.0, 1, 2); }));
}

TEST(PhysicalConstantsTOF, ConstructorTakesTimeBaseFirst) {
  CalibrationConstantsPhysicalTOF p(0.5, 100.0);
  EXPECT_EQ(0.5, p.GetTimeBase());
  EXPECT_EQ(100.0, p.GetTimeDelay());
  EXPECT_EQ(100.0, p.GetA0());
  EXPECT_EQ(0.5, p.GetA1());
}

// Each family's dumps, the functional constants' and the physical ones':
// {Dump(), expected}.
TEST(Constants, Dumps) {
  const std::pair<std::string, std::string> dumps[] = {
      {CalibrationConstantsFunctionalTOF1(0.5, 1000.0, 0.25, 3).Dump(),
       "\tCalibrationConstantsFunctionalTOF1[ c0 = 0.5, c1 = 1000 (corresponding to a1 = 1000000, "
       "c2 = 0.25, calibMode = 3 ]"},
      {CalibrationConstantsPhysicalTOF(0.5, 100.0).Dump(),
       "\tCalibrationConstantsPhysicalTOF[ time delay = 100, time base = 0.5 ]"},
      {CalibrationConstantsFunctionalTOF2(1.0, 2.0, 3.0, 4.0, 5.0).Dump(),
       "\tCalibrationConstantsFunctionalTOF2[ c0 = 1, c1 = 2, c2 = 3, c3 = 4, c4 = 5, calibMode = "
       "-1 ]"},
      {Constants::CalibrationConstantsFunctionalHalyard(1.0, 2.0, 3.0, 4).Dump(),
       "\tCalibrationConstantsFunctionalHalyard[ c0 = 1, c1 = 2, c2 = 3, calibMode = 4 ]"},
      {CalibrationConstantsPhysicalHalyard(10.0, 4.0).Dump(),
       "\tCalibrationConstantsPhysicalHalyard[ measurements per raw mass = 4, begin raw mass = 10 "
       "]"},
      {Constants::CalibrationConstantsFunctionalLinear(1.5, 2.0).Dump(),
       "\tCalibrationConstantsFunctionalLinear[ c0 = 1.5, c1 = 2, calibMode = -1 ]"},
      {Constants::CalibrationConstantsPhysicalLinear(1.0, 0.5).Dump(),
       "\tCalibrationConstantsPhysicalLinear[ a0 = 1, a1 = 0.5 ]"},
      {CalibrationConstantsFunctionalFTMS04(2.0, 3.0, 4, 0).Dump(),
       "\tCalibrationConstantsFunctionalFTMS04[ \n\t\tbeta = 2, freq high = 3, ftms raw mode = 4, "
       "calib mode = 0 ]"},
      {CalibrationConstantsFunctionalFTMS1356(1.0, 2.0, 3.0, 5, 6).Dump(),
       "\tCalibrationConstantsFunctionalFTMS1356[ \n\t\talpha = 1, beta = 2, freq high = 3, ftms "
       "raw mode = 5, calib mode = 6 ]"},
      {CalibrationConstantsPhysicalFTMS(1000.0, 500.0, 100, 2, 3).Dump(),
       "\tCalibrationConstantsPhysicalFTMS[ \n\t\ta0 = 1000, a1 = 5\n\t\tcalib mode = 2\n\t\tfreq "
       "low = 1000, freq width = 500, ftms raw mode = 3, size = 100 ]"},
  };
  for (const auto& dump : dumps) EXPECT_EQ(dump.second, dump.first);
}

TEST(PhysicalConstants, AssimilateIndexOffsetKeepsTheAxis) {
  CalibrationConstantsPhysicalTOF tof(0.5, 100.0);
  tof.AssimilateIndexOffset(4.0);
  EXPECT_EQ(102.0, tof.GetA0());
  EXPECT_EQ(0.5, tof.GetA1());

  CalibrationConstantsPhysicalHalyard halyard(10.0, 4.0);
  halyard.AssimilateIndexOffset(2.0);
  EXPECT_EQ(10.5, halyard.GetA0());
  EXPECT_EQ(0.25, halyard.GetA1());
}

TEST(PhysicalConstants, SetRawRangeStartMovesOnlyTheStart) {
  CalibrationConstantsPhysicalTOF tof(0.5, 100.0);
  tof.SetRawRangeStart(200.0, 10.0);
  EXPECT_EQ(195.0, tof.GetTimeDelay());
  EXPECT_EQ(0.5, tof.GetTimeBase());
}

TEST(PhysicalConstantsFTMS, IcrModeChecks) {
  CalibrationConstantsPhysicalFTMS p(1000.0, 500.0, 100, 7);
  EXPECT_EQ(
      "CalibrationConstantsPhysicalFTMS::GetA0(): invalid calibration constants: icr mode "
      "unknown. Expected 0..6, but got 7",
      thrownText<std::runtime_error>([&] { p.GetA0(); }));
  EXPECT_EQ(
      "CalibrationConstantsPhysicalFTMS::GetA1(): invalid calibration constants: icr mode "
      "unknown. Expected 0..6, but got 7",
      thrownText<std::runtime_error>([&] { p.GetA1(); }));
  EXPECT_EQ(
      "CalibrationConstantsPhysicalFTMS::AssimilateIndexOffset(): invalid calibration constants: "
      "icr mode unknown. Expected 0..6, but got 7",
      thrownText<std::runtime_error>([&] { p.AssimilateIndexOffset(1.0); }));
  p.SetCalibMode(6);
  EXPECT_EQ(1000.0, p.GetA0());
  EXPECT_EQ(5.0, p.GetA1());
}

TEST(PhysicalConstants, ClonesStayIndependentOfTheirSource) {
  ICalibrationConstantsPhysicalPtr source =
      boost::make_shared<CalibrationConstantsPhysicalTOF>(0.5, 100.0);
  ICalibrationConstantsPhysicalPtr copy = cloneAs(source);
  EXPECT_TRUE(copy->IsEqual(source));
  copy->AssimilateIndexOffset(2.0);
  EXPECT_FALSE(copy->IsEqual(source));
  EXPECT_EQ(100.0,
            boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalTOF>(source)->GetTimeDelay());
}

TEST(MeasurementModeInfoTest, ConstructorOrderCloneAndDump) {
  IMeasurementModeInfoPtr info = boost::make_shared<MeasurementModeInfo>(2, 1, 0, 0);
  EXPECT_EQ(1, info->GetPolarity());
  EXPECT_EQ(2, info->GetAcquisitionMode());
  EXPECT_EQ(
      "\tMeasurementModeInfo[ Polarity = 1, AcquisitionMode = TOF reflector, ScanMode = MS, "
      "MSMSLevel = 0] ",
      info->Dump());
  IMeasurementModeInfoPtr copy = cloneAs(info);
  copy->SetScanMode(7);
  copy->SetAcquisitionMode(1);
  EXPECT_EQ(0, info->GetScanMode());
  EXPECT_EQ(
      "\tMeasurementModeInfo[ Polarity = 1, AcquisitionMode = TOF linear, ScanMode = ? (7), "
      "MSMSLevel = 0] ",
      copy->Dump());
}

// A class whose Clone() returns an object of another kind.
class BadClone : public virtual ICalibrationConstantsPhysical {
 public:
  ICloneablePtr Clone() const override {
    return boost::make_shared<MeasurementModeInfo>(0, 0, 0, 0);
  }
  bool IsEqual(const ICalibrationConstantsPhysicalPtr&) const override { return false; }
  void AssimilateIndexOffset(double) override {}
  void SetRawRangeStart(double, double) override {}
  std::string Dump() const override { return ""; }
};

TEST(Cloneable, CloneOfAnotherKindFails) {
  ICalibrationConstantsPhysicalPtr bad = boost::make_shared<BadClone>();
  EXPECT_EQ(
      "Error while cloning an object. It is not of type ICloneable. This means there's an error "
      "in an object's Clone() implementation.",
      thrownText<std::runtime_error>([&] { cloneAs(bad); }));
  EXPECT_FALSE(cloneAs(ICalibrationConstantsPhysicalPtr()));
}

}  // namespace
}  // namespace calibration
}  // namespace lumo
