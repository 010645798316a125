#include "calibration_core/factory/calibration_transformator_factory.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "calibration_core/decorators/calibration_transformator_index_bounds_checker.h"
#include "calibration_core/decorators/calibration_transformator_raw_bounds_checker.h"
#include "calibration_core/ftms/calibration_transformator_ftms.h"
#include "calibration_core/halyard/calibration_transformator_halyard.h"
#include "calibration_core/linear/calibration_transformator_linear.h"
#include "calibration_core/testing/test_models.h"
#include "calibration_core/zrk/calibration_polynomial_zrk.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;  // the models and constants of the tests

const ICalibrationTransformatorFactory& factory() { return transformatorFactory(); }

// The concrete model the factory makes of the pair.
std::string made(const ICalibrationConstantsFunctionalPtr& functional,
                 const ICalibrationConstantsPhysicalPtr& physical = digitizer()) {
  const ICalibrationTransformatorPtr t = factory().createTransformator(functional, physical);
  return t->DumpData().substr(0, t->DumpData().find('['));
}

TEST(TransformatorFactory, Tof1ChoosesLinearOnlyForAnExactZeroC2) {
  EXPECT_EQ("CalibrationTransformatorTOFQuadratic", made(tof1(2000.0, 1000.0, 1e-300)));
  EXPECT_EQ("CalibrationTransformatorTOFLinear", made(tof1(2000.0, 1000.0, 0.0)));
  EXPECT_EQ("CalibrationTransformatorTOFLinear", made(tof1(2000.0, 1000.0, -0.0)));
}

TEST(TransformatorFactory, Tof2ChoosesCubicForAShiftOrC3ThenQuadraticForC2) {
  EXPECT_EQ("CalibrationTransformatorTOF2Cubic", made(tof2(0.0, 0.0, 0.0, 0.0, 1e-9)));
  EXPECT_EQ("CalibrationTransformatorTOF2Cubic", made(tof2(2000.0, 1000.0, 0.0, 1e-12, 0.0)));
  EXPECT_EQ("CalibrationTransformatorTOF2Quadratic", made(tof2(2000.0, 1000.0, 0.01, 0.0, -0.0)));
  EXPECT_EQ("CalibrationTransformatorTOF2Linear", made(tof2(2000.0, 1000.0, -0.0, -0.0, 0.0)));
}

TEST(TransformatorFactory, TrapDecidesByAThresholdRelativeToTheSlope) {
  const ICalibrationConstantsPhysicalPtr axis = rawMassAxis(0.0, 10.0);
  EXPECT_EQ("CalibrationTransformatorHalyardLinear", made(halyard(0.0, 1000.0, 1e-6), axis));
  EXPECT_EQ("CalibrationTransformatorHalyardLinear", made(halyard(0.0, 1000.0, -1e-6), axis));
  EXPECT_EQ("CalibrationTransformatorHalyardQuadratic", made(halyard(0.0, 1000.0, 1.1e-6), axis));
  EXPECT_EQ("CalibrationTransformatorHalyardQuadratic", made(halyard(0.0, -1000.0, 0.0), axis));
}

TEST(TransformatorFactory, LinearAndFtmsModes) {
  EXPECT_EQ("CalibrationTransformatorLinear", made(linear(1.0, 2.0), line(0.0, 1.0)));
  EXPECT_EQ("CalibrationTransformatorFTMS04", made(ftms04(1e8), transient()));
  EXPECT_EQ("CalibrationTransformatorFTMS15", made(ftms1356(1.0, 1e8), transient()));
  ICalibrationConstantsFunctionalPtr mode5 = ftms1356(1.0, 1e8);
  mode5->SetCalibMode(5);
  EXPECT_EQ("CalibrationTransformatorFTMS15", made(mode5, transient()));
  ICalibrationConstantsFunctionalPtr mode0 = ftms04(1e8);
  mode0->SetCalibMode(0);
  EXPECT_EQ("CalibrationTransformatorFTMS04", made(mode0, transient()));
}

TEST(TransformatorFactory, FtmsModesWithoutAModelFail) {
  ICalibrationConstantsFunctionalPtr mode3 = ftms1356(1.0, 1e8);
  mode3->SetCalibMode(3);
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformatorIcr: mode 3 and 6 not supported [WT]",
      thrownText<std::invalid_argument>([&] { made(mode3, transient()); }));
  mode3->SetCalibMode(6);
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformatorIcr: mode 3 and 6 not supported [WT]",
      thrownText<std::invalid_argument>([&] { made(mode3, transient()); }));
  // Constants accept any mode at construction; SetCalibMode would refuse 2.
  const ICalibrationConstantsFunctionalPtr mode2 =
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(1e8, 0.0, 2, 2);
  EXPECT_EQ("CalibrationTransformatorFactory::createTransformatorIcr: mode 2 not supported [WT]",
            thrownText<std::invalid_argument>([&] { made(mode2, transient()); }));
  const ICalibrationConstantsFunctionalPtr mode7 =
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(1e8, 0.0, 7, 7);
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformatorIcr: unknown ftms mode. Expected 0..6, "
      "but CalibMode = 7",
      thrownText<std::runtime_error>([&] { made(mode7, transient()); }));
}

TEST(TransformatorFactory, PhysicalConstantsOfAnotherFamilyDiffer) {
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformator: invalid calibration constants: types "
      "differ",
      thrownText<std::invalid_argument>([] { made(tof1(0.0, 1000.0, 0.0), rawMassAxis(0, 1)); }));
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformator: invalid calibration constants: types "
      "differ",
      thrownText<std::invalid_argument>([] { made(ftms04(1e8), digitizer()); }));
}

class UnknownConstants
    : public Constants::detail::FunctionalConstantsBase<UnknownConstants,
                                                        ICalibrationConstantsFunctional, 6> {
 public:
  UnknownConstants() : FunctionalConstantsBase(-1) {}
  std::string Dump() const override { return ""; }
  bool FieldsEqual(const ICalibrationConstantsFunctional&) const { return true; }
};

TEST(TransformatorFactory, ConstantsOfNoFamilyAreUnknown) {
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformator: invalid transformator: type unknown",
      thrownText<std::invalid_argument>(
          [] { made(boost::make_shared<UnknownConstants>(), digitizer()); }));
}

TEST(TransformatorFactory, FamilyOperationsRefuseOtherFamilies) {
  const ICalibrationConstantsPhysicalTOFPtr tof =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalTOF>(digitizer());
  const std::string scope = "lumo::calibration::Transformation::CalibrationTransformatorFactory::";
  EXPECT_EQ(scope +
                "createTransformatorTof: funcConsts is not of type "
                "ICalibrationConstantsFunctionalTOF1",
            thrownText<std::invalid_argument>(
                [&] { factory().createTransformatorTof(tof2(0, 1, 0, 0, 0), tof); }));
  EXPECT_EQ(scope +
                "createTransformatorTof2: funcConsts is not of type "
                "ICalibrationConstantsFunctionalTOF2",
            thrownText<std::invalid_argument>(
                [&] { factory().createTransformatorTof2(tof1(0, 1, 0), tof); }));
  EXPECT_EQ(scope +
                "createTransformatorTrap: funcConsts is not of type "
                "ICalibrationConstantsFunctionalHalyard",
            thrownText<std::invalid_argument>([&] {
              factory().createTransformatorTrap(linear(0, 1),
                                                ICalibrationConstantsPhysicalHalyardPtr());
            }));
  EXPECT_EQ(scope +
                "createTransformatorLinear: funcConsts is not of type "
                "ICalibrationConstantsFunctionalLinear",
            thrownText<std::invalid_argument>(
                [&] { factory().createTransformatorLinear(halyard(0, 1, 0), nullptr); }));
  EXPECT_EQ(scope + "createTransformatorIcr: expected ICalibrationConstantsFunctionalFTMS",
            thrownText<std::invalid_argument>([&] {
              factory().createTransformatorIcr(linear(0, 1),
                                               ICalibrationConstantsPhysicalFTMSPtr());
            }));
}

TEST(TransformatorFactory, MadeModelConvertsWithTheGivenConstants) {
  const ICalibrationTransformatorPtr t =
      factory().createTransformator(tof1(2000.0, 1000.0, 0.0), digitizer());
  const CalibrationTransformatorTOFLinear direct(tof1(2000.0, 1000.0, 0.0), digitizer());
  EXPECT_EQ(direct.DIndexToMass(12345.5), t->DIndexToMass(12345.5));
  EXPECT_TRUE(t->IsEqual(boost::make_shared<CalibrationTransformatorTOFLinear>(
      tof1(2000.0, 1000.0, 0.0), digitizer())));
}

TEST(TransformatorFactory, VegaModelsCannotBeMade) {
  EXPECT_EQ("CalibrationTransformatorFactory::createTransformatorVega: can't create vegaPolynomial",
            thrownText<std::runtime_error>([] { factory().createTransformatorVega({1.0}); }));
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createTransformatorVega2: can't create vega2Polynomial",
      thrownText<std::runtime_error>([] { factory().createTransformatorVega2({1.0}); }));
}

TEST(TransformatorFactory, DecoratesLikeTheGivenDecorator) {
  const ICalibrationTransformatorPtr tof =
      factory().createTransformator(tof1(0, 1000, 0), digitizer());
  const ICalibrationTransformatorPtr other =
      factory().createTransformator(tof1(9, 1000, 0), digitizer());

  const auto raw = boost::dynamic_pointer_cast<ICalibrationTransformatorRawBoundsChecker>(
      factory().createDecoratedTransformator(
          tof, boost::make_shared<CalibrationTransformatorRawBoundsChecker>(other, 10.0, 20.0)));
  ASSERT_TRUE(raw);
  EXPECT_EQ(10.0, raw->GetLower());
  EXPECT_EQ(20.0, raw->GetUpper());
  EXPECT_TRUE(raw->GetBaseTransformator()->IsEqual(tof));
  EXPECT_NE(tof, raw->GetBaseTransformator());

  const auto index = boost::dynamic_pointer_cast<ICalibrationTransformatorIndexBoundsChecker>(
      factory().createDecoratedTransformator(
          tof, boost::make_shared<CalibrationTransformatorIndexBoundsChecker>(other, 0.0, 100.0)));
  ASSERT_TRUE(index);
  EXPECT_EQ(100.0, index->GetUpper());
  EXPECT_TRUE(index->GetBaseTransformator()->IsEqual(tof));

  const ICalibrationPolynomialZRKPtr polynomial =
      boost::make_shared<CalibrationPolynomialZRK>(std::vector<double>{1e-3}, 0.0, 0.0, 100, 3000);
  const auto given = boost::make_shared<CalibrationTransformatorZRK>(other, polynomial);
  given->SetUseCorrection(false);
  given->SetMinimumSearchWidth(4.5);
  const auto zrk = boost::dynamic_pointer_cast<ICalibrationTransformatorZRK>(
      factory().createDecoratedTransformator(tof, given));
  ASSERT_TRUE(zrk);
  EXPECT_TRUE(zrk->GetBaseTransformator()->IsEqual(tof));
  EXPECT_TRUE(zrk->GetPolynomial()->IsEqual(*polynomial));
  EXPECT_FALSE(zrk->GetUseCorrection());
  EXPECT_EQ(4.5, zrk->GetMinimumSearchWidth());
}

TEST(TransformatorFactory, DecoratesOnlyWithADecorator) {
  const ICalibrationTransformatorPtr tof =
      factory().createTransformator(tof1(0, 1000, 0), digitizer());
  const char* const unknown =
      "CalibrationTransformatorFactory::createDecoratedTransformator: invalid transformator: type "
      "unknown";
  EXPECT_EQ(unknown, thrownText<std::invalid_argument>(
                         [&] { factory().createDecoratedTransformator(tof, tof); }));
  EXPECT_EQ(unknown, thrownText<std::invalid_argument>([&] {
              factory().createDecoratedTransformator(
                  ICalibrationTransformatorPtr(),
                  boost::make_shared<CalibrationTransformatorRawBoundsChecker>(tof, 0.0, 1.0));
            }));
}

TEST(TransformatorFactory, IcrConstantsByMode) {
  const ICalibrationConstantsFunctionalPtr c04 =
      factory().createConstantsFunctionalIcr(0, 4, 1, true, 3.0, 2.0, 5.0);
  EXPECT_TRUE(c04->IsEqual(
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(2.0, 5.0, 4, 0)));
  const ICalibrationConstantsFunctionalPtr c3 =
      factory().createConstantsFunctionalIcr(3, 3, 1, true, 3.0, 2.0, 5.0);
  EXPECT_TRUE(c3->IsEqual(
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS1356>(3.0, 2.0, 5.0, 3, 3)));
  const ICalibrationConstantsFunctionalPtr noAlpha =
      factory().createConstantsFunctionalIcr(6, 1, 1, false, 3.0, 2.0, 5.0);
  EXPECT_TRUE(noAlpha->IsEqual(
      boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS1356>(0.0, 2.0, 5.0, 1, 6)));
  EXPECT_EQ(
      "CalibrationTransformatorFactory::createConstantsFunctionalIcr: mode 2 not supported [WT]",
      thrownText<std::invalid_argument>(
          [] { factory().createConstantsFunctionalIcr(2, 2, 1, true, 0, 1, 1); }));
  EXPECT_EQ("unknown icr mode in serialization", thrownText<std::runtime_error>([] {
              factory().createConstantsFunctionalIcr(7, 2, 1, true, 0, 1, 1);
            }));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
