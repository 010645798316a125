#include "calibration_core/temperature/temperature_compensation.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/halyard/calibration_transformator_halyard.h"
#include "calibration_core/temperature/calibration_temperature_compensator.h"
#include "calibration_core/testing/test_models.h"
#include "calibration_core/zrk/calibration_polynomial_zrk.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"

namespace lumo {
namespace calibration {
namespace {

using Constants::CalibrationConstantsFunctionalTOF1TemperatureCompensation;
using Constants::CalibrationConstantsFunctionalTOF2TemperatureCompensation;
using TemperatureCompensation::CalibrationTemperatureCompensator;
using namespace testing;
using Transformation::CalibrationTransformatorTOF2Quadratic;
using Transformation::CalibrationTransformatorTOFQuadratic;

typedef std::vector<double> Values;

const Values kReferenceTemperatures = {20.0, 30.0};
const Values kFactors = {10.0, 100.0};

TemperatureCompensationInfo info(const Values& temperatures, const Values& factors = kFactors) {
  return TemperatureCompensationInfo{temperatures, factors, 3};
}

ICalibrationConstantsFunctionalTemperatureCompensationPtr temperatureConstantsOf(
    const ICalibrationTransformatorPtr& t) {
  return boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
      t->GetFunctionalConstants());
}

std::string className(const ICalibrationTransformatorPtr& t) {
  const std::string dump = t->DumpData();
  return dump.substr(0, dump.find('['));
}

// t = 2000 + sqrt(1e6 m) + 0.01 m; the digitizer puts t = 2000 at index 2000.
ICalibrationTransformatorPtr tofQuadratic() {
  return model<CalibrationTransformatorTOFQuadratic>(tof1(2000.0, 1000.0, 0.01));
}

TEST(AddTemperatureCompensationInfo, KeepsTheModelAndCarriesTheInfo) {
  const ICalibrationTransformatorPtr plain = tofQuadratic();
  const ICalibrationTransformatorPtr with = addTemperatureCompensationInfo(plain, info({21, 33}));
  EXPECT_EQ("CalibrationTransformatorTOFQuadratic", className(with));
  EXPECT_EQ(9, with->GetCalibrationType());
  const auto constants = temperatureConstantsOf(with);
  ASSERT_TRUE(constants);
  EXPECT_EQ(Values({21, 33}), constants->GetTemperatures());
  EXPECT_EQ(kFactors, constants->GetCorrectionFactors());
  EXPECT_EQ(3, constants->GetCompensationMode());
  EXPECT_EQ(plain->DIndexToMass(30000.0), with->DIndexToMass(30000.0));

  EXPECT_EQ(1, plain->GetCalibrationType());
  EXPECT_FALSE(temperatureConstantsOf(plain));
  EXPECT_TRUE(plain->IsEqual(tofQuadratic()));
}

TEST(AddTemperatureCompensationInfo, Tof2GivesType13) {
  const ICalibrationTransformatorPtr with = addTemperatureCompensationInfo(
      model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.0)),
      info({21, 33}));
  EXPECT_EQ("CalibrationTransformatorTOF2Quadratic", className(with));
  EXPECT_EQ(13, with->GetCalibrationType());
}

TEST(AddTemperatureCompensationInfo, Failures) {
  const ICalibrationTransformatorPtr with =
      addTemperatureCompensationInfo(tofQuadratic(), info({21}));
  EXPECT_EQ("Already contains temp-comp info.", thrownText<std::runtime_error>([&] {
              addTemperatureCompensationInfo(with, info({21}));
            }));
  const ICalibrationTransformatorPtr trap =
      model<Transformation::CalibrationTransformatorHalyardLinear>(testing::halyard(0.0, 1.0, 0.0),
                                                                   testing::rawMassAxis(0, 1));
  EXPECT_EQ("Non-supported strategy.", thrownText<std::runtime_error>([&] {
              addTemperatureCompensationInfo(trap, info({21}));
            }));
}

ICalibrationTransformatorPtr zrkOver(const ICalibrationTransformatorPtr& base) {
  return boost::make_shared<Transformation::CalibrationTransformatorZRK>(
      base, boost::make_shared<Transformation::CalibrationPolynomialZRK>(Values{1e-3, 2e-6}, 0.0,
                                                                         0.0, 100.0, 3000.0));
}

TEST(AddTemperatureCompensationInfo, ZrkOverTof1KeepsTheCorrection) {
  const ICalibrationTransformatorPtr plain = zrkOver(tofQuadratic());
  const auto with = boost::dynamic_pointer_cast<ICalibrationTransformatorZRK>(
      addTemperatureCompensationInfo(plain, info({21, 33})));
  ASSERT_TRUE(with);
  EXPECT_EQ(9, with->GetCalibrationType());
  EXPECT_EQ("CalibrationTransformatorTOFQuadratic", className(with->GetBaseTransformator()));
  EXPECT_EQ(Values({21, 33}), temperatureConstantsOf(with)->GetTemperatures());
  EXPECT_EQ(plain->DIndexToMass(30000.0), with->DIndexToMass(30000.0));
  EXPECT_EQ(1, plain->GetCalibrationType());
  EXPECT_TRUE(plain->IsEqual(zrkOver(tofQuadratic())));
}

TEST(AddTemperatureCompensationInfo, ZrkOverTof2IsNotSupported) {
  const ICalibrationTransformatorPtr plain =
      zrkOver(model<CalibrationTransformatorTOF2Quadratic>(tof2(2000.0, 1000.0, 0.01, 0.0, 0.0)));
  EXPECT_EQ("TOF2+ZRK not supported.", thrownText<std::runtime_error>([&] {
              addTemperatureCompensationInfo(plain, info({21}));
            }));
}

// The compensated model of a reference at (20, 30) for a frame at `measured`.
ICalibrationTransformatorPtr compensated(const ICalibrationTransformatorPtr& plain,
                                         const Values& measured) {
  const CalibrationTemperatureCompensator compensator(
      addTemperatureCompensationInfo(plain, info(kReferenceTemperatures)), kReferenceTemperatures,
      kFactors);
  return compensator.GetCompensatedTransformator(
      addTemperatureCompensationInfo(plain, info(measured)));
}

TEST(TemperatureCompensator, DividesTheSlopeTermAndC2ByTheScale) {
  const ICalibrationTransformatorPtr t = compensated(tofQuadratic(), {21, 33});
  const double s = 0.99969;  // 1 + ((20 - 21) * 10 + (30 - 33) * 100) / 1e6
  const auto constants = temperatureConstantsOf(t);
  EXPECT_EQ(3, constants->GetCompensationMode());
  EXPECT_TRUE(constants->IsCompensated());
  EXPECT_EQ(Values({21, 33}), constants->GetTemperatures());
  const auto tof = boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(constants);
  EXPECT_EQ(2000.0, tof->GetC0());
  EXPECT_NEAR(1e6 / s, tof->GetA1(), 1e6 * 1e-15);
  EXPECT_EQ(0.01 / s, tof->GetC2());

  // t = c0 + sqrt(a1 m) + c2 m solved for w = sqrt(m) in its stable form.
  const double a1 = 1e6 / s, c2 = 0.01 / s;
  for (double dindex : {2000.5, 2100.0, 30000.0, 123456.25, 400000.0}) {
    const double dt = dindex * 0.5 + 1000.0 - 2000.0;
    const double w = 2.0 * dt / (std::sqrt(a1) + std::sqrt(a1 + 4.0 * c2 * dt));
    const double mass = w * w;
    EXPECT_NEAR(mass, t->DIndexToMass(dindex), std::fabs(mass) * 1e-12) << dindex;
  }
  std::vector<double> batch(1000), masses;
  for (size_t i = 0; i < batch.size(); ++i) batch[i] = 2000.0 + 397.0 * i;
  t->DIndexToMass(batch, masses);
  EXPECT_EQ(t->DIndexToMass(batch[999]), masses[999]);
}

TEST(TemperatureCompensator, EqualTemperaturesGiveTheReferenceBack) {
  const ICalibrationTransformatorPtr t = compensated(tofQuadratic(), kReferenceTemperatures);
  const auto tof =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTOF1>(t->GetFunctionalConstants());
  EXPECT_EQ(2000.0, tof->GetC0());
  EXPECT_EQ(1000.0, tof->GetC1());
  EXPECT_EQ(0.01, tof->GetC2());
  EXPECT_EQ(tofQuadratic()->DIndexToMass(30000.0), t->DIndexToMass(30000.0));
}

TEST(TemperatureCompensator, WithoutTemperaturesOrObjects) {
  const ICalibrationTransformatorPtr reference =
      addTemperatureCompensationInfo(tofQuadratic(), info(kReferenceTemperatures));
  const CalibrationTemperatureCompensator compensator(reference, kReferenceTemperatures, kFactors);
  const ICalibrationTransformatorPtr plain =
      compensator.GetCompensatedTransformator(tofQuadratic());
  EXPECT_TRUE(plain->IsEqual(reference));
  EXPECT_NE(reference, plain);
  EXPECT_FALSE(compensator.GetCompensatedTransformator(ICalibrationTransformatorPtr()));
  EXPECT_FALSE(compensator.GetCompensatedTransformator());
  EXPECT_FALSE(CalibrationTemperatureCompensator().GetCompensatedTransformator(plain));
}

TEST(TemperatureCompensator, ArgumentFreeFormUsesTheCurrentTransformator) {
  CalibrationTemperatureCompensator compensator(
      addTemperatureCompensationInfo(tofQuadratic(), info(kReferenceTemperatures)),
      kReferenceTemperatures, kFactors);
  const ICalibrationTransformatorPtr measured =
      addTemperatureCompensationInfo(tofQuadratic(), info({21, 33}));
  compensator.SetCurrentTransformator(measured);
  EXPECT_TRUE(compensator.GetCompensatedTransformator()->IsEqual(
      compensator.GetCompensatedTransformator(measured)));
}

CalibrationConstantsFunctionalTOF1TemperatureCompensation tof1WithTemperatures(
    const Values& temperatures) {
  CalibrationConstantsFunctionalTOF1TemperatureCompensation c(1.0, 500.0, 0.5, {}, kFactors, 3);
  c.SetTemperatures(temperatures);
  return c;
}

TEST(AdaptToReference, Tof1KeepsItsConstantsOnMismatchedSizesButSetsTheMode) {
  auto reference = boost::make_shared<CalibrationConstantsFunctionalTOF1TemperatureCompensation>(
      2000.0, 1000.0, 0.01, kReferenceTemperatures, kFactors, 3);
  CalibrationConstantsFunctionalTOF1TemperatureCompensation c = tof1WithTemperatures({21, 33});
  EXPECT_EQ(2, c.GetCompensationMode());
  EXPECT_FALSE(c.IsCompensated());
  c.AdaptToReference(reference, kReferenceTemperatures, {10.0});
  EXPECT_EQ(3, c.GetCompensationMode());
  EXPECT_EQ(1.0, c.GetC0());
  EXPECT_EQ(500.0, c.GetC1());
  EXPECT_EQ(0.5, c.GetC2());

  CalibrationConstantsFunctionalTOF1TemperatureCompensation one = tof1WithTemperatures({21});
  one.AdaptToReference(reference, {20.0}, {2.0});
  EXPECT_EQ(1, one.GetCompensationMode());
  EXPECT_EQ(0.01 / (1.0 - 2.0 / 1000000.0), one.GetC2());
}

TEST(AdaptToReference, Tof1Failures) {
  CalibrationConstantsFunctionalTOF1TemperatureCompensation empty = tof1WithTemperatures({});
  auto reference = boost::make_shared<CalibrationConstantsFunctionalTOF1TemperatureCompensation>(
      2000.0, 1000.0, 0.01, kReferenceTemperatures, kFactors, 3);
  EXPECT_EQ(
      "CalibrationConstantsFunctionalTOF1TemperatureCompensation::AdaptToReference: empty "
      "temperatures vector",
      thrownText<std::runtime_error>([&] { empty.AdaptToReference(reference, {}, {}); }));
  auto tof2Reference =
      boost::make_shared<CalibrationConstantsFunctionalTOF2TemperatureCompensation>(
          2000.0, 1000.0, 0.01, 0.0, 0.0, kReferenceTemperatures, kFactors, 3);
  EXPECT_EQ(
      "lumo::calibration::Transformation::CalibrationConstantsFunctionalTOF1TemperatureCompensation"
      "::AdaptToReference: referenceConstants is not of type ICalibrationConstantsFunctionalTOF1",
      thrownText<std::invalid_argument>(
          [&] { empty.AdaptToReference(tof2Reference, kReferenceTemperatures, kFactors); }));
}

TEST(AdaptToReference, Tof2AdaptsEveryCoefficientButTheShiftAndRefusesMismatchedSizes) {
  auto reference = boost::make_shared<CalibrationConstantsFunctionalTOF2TemperatureCompensation>(
      2000.0, 1000.0, 0.01, 1e-5, 0.25, kReferenceTemperatures, kFactors, 3);
  CalibrationConstantsFunctionalTOF2TemperatureCompensation c(0, 1, 0, 0, 0, {}, kFactors, 3);
  c.SetTemperatures({21});
  c.AdaptToReference(reference, {20.0}, {2.0});
  const double s = 1.0 - 2.0 / 1000000.0;
  EXPECT_EQ(1, c.GetCompensationMode());
  EXPECT_EQ(2000.0, c.GetC0());
  EXPECT_NEAR(1e6 / s, c.GetA1(), 1e-9);
  EXPECT_EQ(0.01 / s, c.GetC2());
  EXPECT_EQ(1e-5 / s, c.GetC3());
  EXPECT_EQ(0.25, c.GetDm());

  c.SetTemperatures({21, 33});
  EXPECT_EQ(
      "CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference: Parameter "
      "vectors have inappropriate size: \t\t\t\t\tm_measTemp.size() = 2, "
      "referenceTemperatures.size() = 2, temperatureFactors.size() = 1",
      thrownText<std::invalid_argument>(
          [&] { c.AdaptToReference(reference, kReferenceTemperatures, {10.0}); }));
  EXPECT_EQ(3, c.GetCompensationMode());
  c.SetTemperatures({});
  EXPECT_EQ(
      "CalibrationConstantsFunctionalTOF2TemperatureCompensation::AdaptToReference: Temperature "
      "vector is empty.",
      thrownText<std::runtime_error>([&] { c.AdaptToReference(reference, {}, {}); }));
}

TEST(AdaptToReference, Tof2FromATof1ReferenceHasNoCubicTermAndNoShift) {
  auto reference = boost::make_shared<CalibrationConstantsFunctionalTOF1TemperatureCompensation>(
      2000.0, 1000.0, 0.01, kReferenceTemperatures, kFactors, 3);
  CalibrationConstantsFunctionalTOF2TemperatureCompensation c(0, 1, 0, 7, 7, {20, 30}, kFactors, 3);
  c.AdaptToReference(reference, kReferenceTemperatures, kFactors);
  EXPECT_EQ(0.0, c.GetC3());
  EXPECT_EQ(0.0, c.GetDm());
  EXPECT_EQ(1000.0, c.GetC1());
}

TEST(TemperatureCompensationConstants, CloneKeepsTemperaturesFactorsAndMode) {
  CalibrationConstantsFunctionalTOF1TemperatureCompensation c(1.0, 2.0, 3.0, {21, 33}, kFactors, 1);
  const ICalibrationConstantsFunctionalPtr copy =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctional>(c.Clone());
  const auto t =
      boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(copy);
  ASSERT_TRUE(t);
  EXPECT_EQ(9, copy->GetCalibrationType());
  EXPECT_EQ(Values({21, 33}), t->GetTemperatures());
  EXPECT_EQ(kFactors, t->GetCorrectionFactors());
  EXPECT_EQ(1, t->GetCompensationMode());
  EXPECT_TRUE(copy->IsEqual(
      boost::make_shared<CalibrationConstantsFunctionalTOF1TemperatureCompensation>(c)));
  EXPECT_FALSE(copy->IsEqual(tof1(1.0, 2.0, 3.0)));
  EXPECT_FALSE(
      copy->IsEqual(boost::make_shared<CalibrationConstantsFunctionalTOF1TemperatureCompensation>(
          1.0, 2.0, 3.0, Values{21, 34}, kFactors, 1)));
}

TEST(TemperatureCompensationConstants, Dumps) {
  EXPECT_EQ(
      "\tCalibrationConstantsFunctionalTOF1TemperatureCompensation[ compensation mode = 3, "
      "temperatures: (21, 33), correction factors: (10, 100)\n"
      "\tCalibrationConstantsFunctionalTOF1[ c0 = 1, c1 = 1000 (corresponding to a1 = 1000000, "
      "c2 = 0, calibMode = -1 ] ]",
      CalibrationConstantsFunctionalTOF1TemperatureCompensation(1, 1000, 0, {21, 33}, kFactors, 3)
          .Dump());
  EXPECT_EQ(
      "\tCalibrationConstantsFunctionalTOF2TemperatureCompensation[ compensation mode = 2 "
      "temperatures: (21.5), correction factors: ()\n"
      "\tCalibrationConstantsFunctionalTOF2[ c0 = 1, c1 = 2, c2 = 3, c3 = 4, c4 = 5, calibMode = "
      "-1 ] ]",
      CalibrationConstantsFunctionalTOF2TemperatureCompensation(1, 2, 3, 4, 5, {21.5}, {}, 2)
          .Dump());
}

}  // namespace
}  // namespace calibration
}  // namespace lumo
