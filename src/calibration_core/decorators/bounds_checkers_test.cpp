#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "calibration_core/decorators/calibration_transformator_index_bounds_checker.h"
#include "calibration_core/decorators/calibration_transformator_raw_bounds_checker.h"
#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// t = sqrt(m) and index = t: mass 100 is raw 10 and index 10.
boost::shared_ptr<CalibrationTransformatorTOF2Linear> rootModel() {
  return model<CalibrationTransformatorTOF2Linear>(tof2(0.0, 1e6, 0.0, 0.0, 0.0),
                                                   digitizer(1.0, 0.0));
}

boost::shared_ptr<CalibrationTransformatorRawBoundsChecker> rawChecker(double lower = 10.0,
                                                                       double upper = 20.0) {
  return boost::make_shared<CalibrationTransformatorRawBoundsChecker>(rootModel(), lower, upper);
}

boost::shared_ptr<CalibrationTransformatorIndexBoundsChecker> indexChecker(double lower = 0.0,
                                                                           double upper = 100.0) {
  return boost::make_shared<CalibrationTransformatorIndexBoundsChecker>(rootModel(), lower, upper);
}

typedef void (ICalibrationTransformator::*OutOfPlace)(const Doubles&, Doubles&) const;
typedef void (ICalibrationTransformator::*InPlace)(Doubles&) const;

// One batch conversion in both forms: the out-of-place form gives `expected`
// and leaves its input alone, the in-place form gives `expected` too.
void expectBatchForms(const ICalibrationTransformator& c, OutOfPlace outOfPlace, InPlace inPlace,
                      const Doubles& source, const Doubles& expected) {
  Doubles values = source;
  Doubles out;
  (c.*outOfPlace)(values, out);
  EXPECT_EQ(expected, out);
  EXPECT_EQ(source, values);
  (c.*inPlace)(values);
  EXPECT_EQ(expected, values);
}

TEST(RawBoundsChecker, RawResultsAreClamped) {
  auto c = rawChecker();
  EXPECT_EQ(20.0, c->MassToRaw(1e6));
  EXPECT_EQ(10.0, c->MassToRaw(0.0));
  EXPECT_EQ(15.0, c->MassToRaw(225.0));
  expectBatchForms(*c, &ICalibrationTransformator::MassToRaw, &ICalibrationTransformator::MassToRaw,
                   {0.0, 225.0, 1e6}, {10.0, 15.0, 20.0});

  EXPECT_EQ(10.0, c->IndexToRaw(5));
  EXPECT_EQ(20.0, c->IndexToRaw(500));
  Doubles raws;
  c->IndexToRaw(Ints{5, 12, 500}, raws);
  EXPECT_EQ(Doubles({10.0, 12.0, 20.0}), raws);
  EXPECT_EQ(12.5, c->DIndexToRaw(12.5));
  EXPECT_EQ(20.0, c->DIndexToRaw(20.5));
  expectBatchForms(*c, &ICalibrationTransformator::DIndexToRaw,
                   &ICalibrationTransformator::DIndexToRaw, {9.5, 12.5, 20.5}, {10.0, 12.5, 20.0});
}

TEST(RawBoundsChecker, RawToMassClampsItsInput) {
  auto c = rawChecker();
  EXPECT_EQ(c->RawToMass(10.0), c->RawToMass(5.0));
  EXPECT_EQ(100.0, c->RawToMass(5.0));
  EXPECT_EQ(400.0, c->RawToMass(25.0));
  expectBatchForms(*c, &ICalibrationTransformator::RawToMass, &ICalibrationTransformator::RawToMass,
                   {5.0, 15.0, 25.0}, {100.0, 225.0, 400.0});
}

TEST(RawBoundsChecker, RawToIndexClampsInBatchesOnly) {
  auto c = rawChecker();
  EXPECT_EQ(5, c->RawToIndex(5.0));
  EXPECT_EQ(5.0, c->RawToDIndex(5.0));
  EXPECT_EQ(25.0, c->RawToDIndex(25.0));

  const Doubles source{5.0, 15.25, 25.0};
  Ints indexes;
  c->RawToIndex(source, indexes);
  EXPECT_EQ(Ints({10, 15, 20}), indexes);
  expectBatchForms(*c, &ICalibrationTransformator::RawToDIndex,
                   &ICalibrationTransformator::RawToDIndex, source, {10.0, 15.25, 20.0});
}

TEST(RawBoundsChecker, ConversionsWithoutARawValueAreForwarded) {
  auto c = rawChecker();
  EXPECT_EQ(1000, c->MassToIndex(1e6));
  EXPECT_EQ(1000.0, c->MassToDIndex(1e6));
  EXPECT_EQ(1e6, c->DIndexToMass(1000.0));
  EXPECT_EQ(1e6, c->IndexToMass(1000));
  const Doubles values{1.0, 1e6};
  expectBatchForms(*c, &ICalibrationTransformator::MassToDIndex,
                   &ICalibrationTransformator::MassToDIndex, values, {1.0, 1000.0});
  Ints indexes;
  c->MassToIndex(values, indexes);
  EXPECT_EQ(Ints({1, 1000}), indexes);
  Doubles out;
  c->IndexToMass(Ints{1, 1000}, out);
  EXPECT_EQ(Doubles({1.0, 1e6}), out);
  c->IndexToMass(999, 1000, out);
  EXPECT_EQ(Doubles({998001.0, 1e6}), out);
}

TEST(IndexBoundsChecker, IndexResultsAreClamped) {
  auto c = indexChecker();
  EXPECT_EQ(100, c->MassToIndex(1e6));
  EXPECT_EQ(12.5, c->MassToDIndex(156.25));
  EXPECT_EQ(100.0, c->MassToDIndex(1e6));
  EXPECT_EQ(0, c->RawToIndex(-3.0));
  EXPECT_EQ(100, c->RawToIndex(1000.0));
  EXPECT_EQ(0.0, c->RawToDIndex(-3.0));
  EXPECT_EQ(100.0, c->RawToDIndex(1000.0));

  const Doubles masses{-1.0, 156.25, 1e6};
  Ints indexes;
  c->MassToIndex(masses, indexes);
  EXPECT_EQ(Ints({0, 13, 100}), indexes);
  expectBatchForms(*c, &ICalibrationTransformator::MassToDIndex,
                   &ICalibrationTransformator::MassToDIndex, masses, {0.0, 12.5, 100.0});

  const Doubles raws{-3.0, 12.5, 1000.0};
  c->RawToIndex(raws, indexes);
  EXPECT_EQ(Ints({0, 13, 100}), indexes);
  expectBatchForms(*c, &ICalibrationTransformator::RawToDIndex,
                   &ICalibrationTransformator::RawToDIndex, raws, {0.0, 12.5, 100.0});
}

// The scalar rounds the clamped dindex; the batches clamp whole indexes to
// the truncated bounds.
TEST(IndexBoundsChecker, FractionalBoundsRoundInScalarsAndTruncateInBatches) {
  auto c = indexChecker(2.7, 100.9);
  EXPECT_EQ(3, c->MassToIndex(0.0));
  EXPECT_EQ(101, c->MassToIndex(1e6));
  Ints indexes;
  c->MassToIndex(Doubles{0.0, 1e6}, indexes);
  EXPECT_EQ(Ints({2, 100}), indexes);
  EXPECT_EQ(2, c->RawToIndex(0.0));
  EXPECT_EQ(100, c->RawToIndex(1000.0));
}

TEST(IndexBoundsChecker, FromAnIndexNothingIsClamped) {
  auto c = indexChecker();
  EXPECT_EQ(1e6, c->IndexToMass(1000));
  EXPECT_EQ(1e6, c->DIndexToMass(1000.0));
  EXPECT_EQ(1000.0, c->IndexToRaw(1000));
  EXPECT_EQ(1000.0, c->DIndexToRaw(1000.0));
  EXPECT_EQ(1000.0, c->MassToRaw(1e6));
  EXPECT_EQ(1e6, c->RawToMass(1000.0));
  Doubles raws;
  c->IndexToRaw(Ints{-5, 1000}, raws);
  EXPECT_EQ(Doubles({-5.0, 1000.0}), raws);
  Doubles masses;
  c->IndexToMass(Ints{1000}, masses);
  EXPECT_EQ(Doubles({1e6}), masses);
}

TEST(BoundsCheckers, NaNStaysInBatchesAndBecomesLowerInScalars) {
  auto c = rawChecker();
  EXPECT_EQ(10.0, c->MassToRaw(std::nan("")));
  Doubles values{std::nan("")};
  c->MassToRaw(values);
  EXPECT_TRUE(std::isnan(values[0]));
}

TEST(BoundsCheckers, LowerAboveUpperGivesUpper) {
  auto c = rawChecker(20.0, 10.0);
  EXPECT_EQ(10.0, c->MassToRaw(0.0));
  EXPECT_EQ(10.0, c->MassToRaw(1e6));
  Doubles values{0.0, 1e6};
  c->MassToRaw(values);
  EXPECT_EQ(Doubles({10.0, 10.0}), values);
}

TEST(BoundsCheckers, WidthsUseTheClampedConversions) {
  // dindex 1000 is clamped to 100: the width is taken around mass 10000.
  EXPECT_EQ(200.0, indexChecker()->IndexWidthToMassWidth(1e6, 1.0));
  EXPECT_EQ(2000.0, rootModel()->IndexWidthToMassWidth(1e6, 1.0));
  EXPECT_EQ(0.0, indexChecker()->MassWidthToIndexWidth(1e6, 2000.0));
}

TEST(BoundsCheckers, UsableMassRangeIsNotForwardedMonotonicMassRangeIs) {
  const char* const text =
      "usableMassRange() not yet implemented for this particular transformator.";
  auto m = rootModel();
  ASSERT_NO_THROW(m->usableMassRange(100.0, 0.0));
  EXPECT_EQ(text,
            thrownText<std::runtime_error>([] { rawChecker()->usableMassRange(100.0, 0.0); }));
  EXPECT_EQ(text,
            thrownText<std::runtime_error>([] { indexChecker()->usableMassRange(100.0, 0.0); }));
  EXPECT_EQ(m->monotonicMassRange(100.0), rawChecker()->monotonicMassRange(100.0));
  EXPECT_EQ(m->monotonicMassRange(100.0), indexChecker()->monotonicMassRange(100.0));
}

TEST(BoundsCheckers, IsEqualNeedsTheSameKindExactBoundsAndEqualModels) {
  EXPECT_TRUE(rawChecker()->IsEqual(rawChecker()));
  EXPECT_TRUE(indexChecker()->IsEqual(indexChecker()));
  EXPECT_FALSE(rawChecker()->IsEqual(rawChecker(10.0, std::nextafter(20.0, 30.0))));
  EXPECT_FALSE(rawChecker()->IsEqual(rawChecker(std::nextafter(10.0, 0.0), 20.0)));
  EXPECT_FALSE(indexChecker()->IsEqual(indexChecker(0.0, std::nextafter(100.0, 0.0))));
  EXPECT_FALSE(rawChecker(0.0, 100.0)->IsEqual(indexChecker(0.0, 100.0)));
  EXPECT_FALSE(rawChecker()->IsEqual(rootModel()));
  auto other = boost::make_shared<CalibrationTransformatorRawBoundsChecker>(
      model<CalibrationTransformatorTOF2Linear>(tof2(0.0, 2e6, 0.0, 0.0, 0.0), digitizer(1.0, 0.0)),
      10.0, 20.0);
  EXPECT_FALSE(rawChecker()->IsEqual(other));
}

TEST(BoundsCheckers, CloneCopiesTheWrappedModelAndTheBounds) {
  auto c = rawChecker();
  auto copy = boost::dynamic_pointer_cast<CalibrationTransformatorRawBoundsChecker>(c->Clone());
  ASSERT_TRUE(copy);
  EXPECT_TRUE(copy->IsEqual(c));
  EXPECT_NE(c->GetBaseTransformator(), copy->GetBaseTransformator());
  copy->SetUpper(30.0);
  copy->GetBaseTransformator()->SetIndexOffset(1.0);
  EXPECT_EQ(20.0, c->GetUpper());
  EXPECT_EQ(0.0, c->GetIndexOffset());
  EXPECT_EQ(30.0, copy->MassToRaw(1e6));
}

TEST(BoundsCheckers, ConstantsAndModesAreThoseOfTheWrappedModel) {
  auto inner = rawChecker();
  CalibrationTransformatorIndexBoundsChecker chain(inner, 0.0, 100.0);
  EXPECT_EQ(12, chain.GetCalibrationType());
  EXPECT_TRUE(chain.GetFunctionalConstants()->IsEqual(rootModel()->GetFunctionalConstants()));
  chain.SetBaseCalibMode(3);
  EXPECT_EQ(3, chain.GetBaseCalibMode());
  EXPECT_EQ(3, chain.GetCalibMode());
  EXPECT_EQ(12.0, chain.MassToDIndex(144.0));
  chain.SetIndexOffset(2.0);
  EXPECT_EQ(2.0, chain.GetIndexOffset());
  EXPECT_EQ(10.0, chain.MassToDIndex(144.0));
  chain.AssimilateIndexOffset();
  EXPECT_EQ(0.0, chain.GetIndexOffset());
  EXPECT_EQ(10.0, chain.MassToDIndex(144.0));
  EXPECT_EQ(-1, inner->GetBaseCalibMode());
}

TEST(BoundsCheckers, DumpNamesTheBoundsAndTheWrappedModel) {
  auto m = rootModel();
  EXPECT_EQ("CalibrationTransformatorRawBoundsChecker[ V1\nraw bounds: [10, 20] " + m->DumpData(),
            rawChecker()->DumpData());
  EXPECT_EQ(
      "CalibrationTransformatorIndexBoundsChecker[ V1\nindex bounds: [0, 100.5] " + m->DumpData(),
      indexChecker(0.0, 100.5)->DumpData());
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
