#include "calibration_core/zrk/calibration_transformator_zrk.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/testing/test_models.h"
#include "calibration_core/zrk/calibration_polynomial_zrk.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

const char* const kNotInvertible = "zrk polynomial could not be inverted in a unique way";
const char* const kBatchFailed =
    "a transformation failed, most likely due to bad calibration constants";

// t = 20000 + 3000 sqrt(m) + 0.01 m on a digitizer of 0.2 per sample with
// delay 20000: index 0 is mass 0.
ICalibrationTransformatorPtr tofQuadratic() {
  return model<CalibrationTransformatorTOFQuadratic>(tof1(20000.0, 333.0, 0.01),
                                                     digitizer(0.2, 20000.0));
}

ICalibrationPolynomialZRKPtr polynomial(const Doubles& coefficients, double minMass = 100.0,
                                        double maxMass = 3000.0) {
  return boost::make_shared<CalibrationPolynomialZRK>(coefficients, 0.25, 0.5, minMass, maxMass);
}

boost::shared_ptr<CalibrationTransformatorZRK> zrk(const ICalibrationPolynomialZRKPtr& p) {
  return boost::make_shared<CalibrationTransformatorZRK>(tofQuadratic(), p);
}

// A correction of a few ppm: the first-order inverse is always close enough.
ICalibrationPolynomialZRKPtr ppmCorrection() { return polynomial({1e-3, 2e-6, -1e-9}); }
// A correction of up to 3.4 mass units: the inverse needs the search.
ICalibrationPolynomialZRKPtr largeCorrection() { return polynomial({0.4, 1e-3}); }
// f(x) = x - 1 - 0.001 (x - 500)^2 on [100, 1000]: below 500 at 500, with a
// maximum of 499 there, so the mass 500 has no precise mass near it.
ICalibrationPolynomialZRKPtr foldedCorrection() {
  return polynomial({-251.0, 1.0, -0.001}, 100.0, 1000.0);
}

// A grid from 0 to 4500 with steps of 0.37: across and beyond [100, 3000].
Doubles grid() {
  Doubles masses;
  for (double m = 0.0; m < 4500.0; m += 0.37) masses.push_back(m);
  return masses;
}

TEST(ZRKCorrection, RoundTripAcrossAndBeyondTheMassRange) {
  for (const auto& p : {ppmCorrection(), largeCorrection()}) {
    auto z = zrk(p);
    double previous = -1.0;
    for (double m : grid()) {
      const double mass = z->PreciseMassToMass(m);
      EXPECT_LT(previous, mass) << m;
      previous = mass;
      EXPECT_NEAR(m, z->MassToPreciseMass(mass), 1e-5) << m;
    }
  }
}

TEST(ZRKCorrection, StoredCoefficientsAreDeltasFromTheIdentity) {
  auto z = zrk(largeCorrection());
  EXPECT_DOUBLE_EQ(100.5, z->PreciseMassToMass(100.0));
  EXPECT_DOUBLE_EQ(1001.4, z->PreciseMassToMass(1000.0));
  // One coefficient: a shift.
  z = zrk(polynomial({0.25}));
  EXPECT_EQ(500.25, z->PreciseMassToMass(500.0));
  EXPECT_EQ(500.0, z->MassToPreciseMass(500.25));
  EXPECT_EQ(3000.25, z->PreciseMassToMass(3000.0));
}

// Outside the range the correction decays as exp(-c d^2) at a distance d
// from the bound, c = e / (4 pick^2) for the larger edge correction pick,
// and at most 1.0.
TEST(ZRKCorrection, TailWidthFollowsTheLargerEdgeCorrection) {
  auto small = zrk(polynomial({0.25}));
  EXPECT_DOUBLE_EQ(3001.0 + std::exp(-1.0) * 0.25, small->PreciseMassToMass(3001.0));
  EXPECT_DOUBLE_EQ(98.0 + std::exp(-4.0) * 0.25, small->PreciseMassToMass(98.0));

  auto large = zrk(largeCorrection());
  const double c = std::exp(1.0) * 0.25 / (3.4 * 3.4);
  EXPECT_NEAR(3002.0 + std::exp(-4.0 * c) * 3.4, large->PreciseMassToMass(3002.0), 1e-9);
  EXPECT_NEAR(98.0 + std::exp(-4.0 * c) * 0.5, large->PreciseMassToMass(98.0), 1e-9);
  EXPECT_EQ(5000.0, large->PreciseMassToMass(5000.0));
}

TEST(ZRKCorrection, ConversionsComposeTheBaseAndTheCorrection) {
  auto z = zrk(largeCorrection());
  ICalibrationTransformatorPtr base = z->GetBaseTransformator();
  const double m = 1234.5;
  EXPECT_EQ(base->MassToRaw(z->PreciseMassToMass(m)), z->MassToRaw(m));
  EXPECT_EQ(base->MassToDIndex(z->PreciseMassToMass(m)), z->MassToDIndex(m));
  EXPECT_EQ(base->MassToIndex(z->PreciseMassToMass(m)), z->MassToIndex(m));
  EXPECT_EQ(z->MassToPreciseMass(base->RawToMass(123456.0)), z->RawToMass(123456.0));
  EXPECT_EQ(z->MassToPreciseMass(base->DIndexToMass(5000.5)), z->DIndexToMass(5000.5));
  EXPECT_EQ(z->MassToPreciseMass(base->IndexToMass(5000)), z->IndexToMass(5000));
  EXPECT_EQ(base->IndexToRaw(5000), z->IndexToRaw(5000));
  EXPECT_EQ(base->RawToDIndex(30000.0), z->RawToDIndex(30000.0));

  const Doubles masses{150.0, 1234.5, 3500.0};
  Doubles expected;
  for (double x : masses) expected.push_back(base->MassToDIndex(z->PreciseMassToMass(x)));
  Doubles values = masses;
  Doubles out;
  z->MassToDIndex(values, out);
  EXPECT_EQ(expected, out);
  EXPECT_EQ(masses, values);
  z->MassToDIndex(values);
  EXPECT_EQ(expected, values);
  Ints indexes;
  z->MassToIndex(masses, indexes);
  EXPECT_EQ(base->MassToIndex(z->PreciseMassToMass(3500.0)), indexes[2]);
  z->MassToRaw(masses, out);
  EXPECT_EQ(z->MassToRaw(150.0), out[0]);

  const Doubles dindexes{100.25, 5000.5, 60000.0};
  expected.clear();
  for (double x : dindexes) expected.push_back(z->MassToPreciseMass(base->DIndexToMass(x)));
  values = dindexes;
  z->DIndexToMass(values, out);
  EXPECT_EQ(expected, out);
  EXPECT_EQ(dindexes, values);
  z->DIndexToMass(values);
  EXPECT_EQ(expected, values);
  z->IndexToMass(4999, 5000, out);
  EXPECT_EQ(Doubles({z->IndexToMass(4999), z->IndexToMass(5000)}), out);
  z->IndexToMass(Ints{5000}, out);
  EXPECT_EQ(Doubles({z->IndexToMass(5000)}), out);
  z->RawToMass(Doubles{123456.0}, out);
  EXPECT_EQ(Doubles({z->RawToMass(123456.0)}), out);
}

TEST(ZRKCorrection, WithoutTheCorrectionItForwards) {
  auto z = zrk(largeCorrection());
  z->SetUseCorrection(false);
  auto none = zrk(ICalibrationPolynomialZRKPtr());
  ICalibrationTransformatorPtr base = tofQuadratic();
  for (const auto& t : {boost::static_pointer_cast<CalibrationTransformatorZRK>(z), none}) {
    EXPECT_EQ(1234.5, t->PreciseMassToMass(1234.5));
    EXPECT_EQ(1234.5, t->MassToPreciseMass(1234.5));
    EXPECT_EQ(base->MassToRaw(1234.5), t->MassToRaw(1234.5));
    EXPECT_EQ(base->MassToDIndex(1234.5), t->MassToDIndex(1234.5));
    EXPECT_EQ(base->MassToIndex(1234.5), t->MassToIndex(1234.5));
    EXPECT_EQ(base->RawToMass(123456.0), t->RawToMass(123456.0));
    EXPECT_EQ(base->DIndexToMass(5000.5), t->DIndexToMass(5000.5));
    EXPECT_EQ(base->IndexToMass(5000), t->IndexToMass(5000));
    Doubles expected;
    Doubles out;
    const Doubles masses{150.0, 1234.5, 3500.0};
    base->MassToDIndex(masses, expected);
    t->MassToDIndex(masses, out);
    EXPECT_EQ(expected, out);
    base->MassToRaw(masses, expected);
    t->MassToRaw(masses, out);
    EXPECT_EQ(expected, out);
    const Doubles dindexes{100.25, 5000.5, 60000.0};
    base->DIndexToMass(dindexes, expected);
    t->DIndexToMass(dindexes, out);
    EXPECT_EQ(expected, out);
    Doubles values = dindexes;
    t->DIndexToMass(values);
    EXPECT_EQ(expected, values);
    base->IndexToMass(10, 20, expected);
    t->IndexToMass(10, 20, out);
    EXPECT_EQ(expected, out);
    t->MassesToPreciseMasses(masses, out);
    EXPECT_EQ(masses, out);
    t->PreciseMassesToMasses(masses, out);
    EXPECT_EQ(masses, out);
  }
}

TEST(ZRKCorrection, RangesAreNotAnswered) {
  auto z = zrk(ppmCorrection());
  ASSERT_NO_THROW(z->GetBaseTransformator()->monotonicMassRange(1000.0));
  EXPECT_EQ("monotonicMassRange() not yet implemented for this particular transformator.",
            thrownText<std::runtime_error>([&] { z->monotonicMassRange(1000.0); }));
  EXPECT_EQ("usableMassRange() not yet implemented for this particular transformator.",
            thrownText<std::runtime_error>([&] { z->usableMassRange(1000.0, 0.0); }));
}

TEST(ZRKCorrection, AMassWithoutAPreciseMassFails) {
  auto z = zrk(foldedCorrection());
  EXPECT_EQ(499.0, z->PreciseMassToMass(500.0));
  EXPECT_EQ(kNotInvertible, thrownText<std::logic_error>([&] { z->MassToPreciseMass(500.0); }));
  Doubles masses(300, 200.0);
  masses[150] = 500.0;
  Doubles out;
  EXPECT_EQ(kBatchFailed,
            thrownText<std::logic_error>([&] { z->MassesToPreciseMasses(masses, out); }));
  EXPECT_EQ(kBatchFailed, thrownText<std::logic_error>([&] { z->MassesToPreciseMasses(masses); }));
  const double dindex = z->GetBaseTransformator()->MassToDIndex(500.0);
  EXPECT_EQ(kBatchFailed,
            thrownText<std::logic_error>([&] { z->DIndexToMass(Doubles{dindex}, out); }));
  EXPECT_EQ(kNotInvertible, thrownText<std::logic_error>([&] { z->DIndexToMass(dindex); }));

  // Inside a parallel region the loop is serial and lets the scalar's
  // failure out.
  std::string insideText;
  ASSERT_TRUE(inParallelRegion([&] {
    insideText = thrownText<std::logic_error>([&] { z->MassesToPreciseMasses(masses, out); });
  }));
  EXPECT_EQ(kNotInvertible, insideText);
}

TEST(ZRKCorrection, SerialAndParallelLoopsAgree) {
  auto z = zrk(largeCorrection());
  const Doubles masses = grid();
  Doubles parallelPrecise;
  Doubles parallelMasses;
  z->MassesToPreciseMasses(masses, parallelPrecise);
  z->PreciseMassesToMasses(masses, parallelMasses);
  Doubles serialPrecise;
  Doubles serialMasses;
  ASSERT_TRUE(inParallelRegion([&] {
    z->MassesToPreciseMasses(masses, serialPrecise);
    z->PreciseMassesToMasses(masses, serialMasses);
  }));
  EXPECT_EQ(serialPrecise, parallelPrecise);
  EXPECT_EQ(serialMasses, parallelMasses);
  EXPECT_EQ(z->MassToPreciseMass(masses[7000]), parallelPrecise[7000]);
}

// The out-of-place conversions run the base and the correction block by
// block on the threads: the results are those of the two steps one after
// the other, and those of the serial loops inside a parallel region.
TEST(ZRKCorrection, ConversionsOnTheThreadsAreTheTwoStepsInTurn) {
  auto z = zrk(largeCorrection());
  const ICalibrationTransformatorPtr base = z->GetBaseTransformator();
  const Doubles masses = grid();
  Doubles dindexes;
  base->MassToDIndex(masses, dindexes);
  Ints indexes;
  for (double d : dindexes) indexes.push_back(static_cast<std::int32_t>(d));

  Doubles step, toMass, toDIndex, toRaw;
  Ints toIndex;
  base->DIndexToMass(dindexes, step);
  z->MassesToPreciseMasses(step, toMass);
  z->PreciseMassesToMasses(masses, step);
  base->MassToDIndex(step, toDIndex);
  base->MassToIndex(step, toIndex);
  base->MassToRaw(step, toRaw);

  Doubles out;
  Ints outIndexes;
  z->DIndexToMass(dindexes, out);
  EXPECT_EQ(toMass, out);
  z->MassToDIndex(masses, out);
  EXPECT_EQ(toDIndex, out);
  z->MassToIndex(masses, outIndexes);
  EXPECT_EQ(toIndex, outIndexes);
  z->MassToRaw(masses, out);
  EXPECT_EQ(toRaw, out);
  z->RawToMass(toRaw, out);
  Doubles expected;
  base->RawToMass(toRaw, expected);
  z->MassesToPreciseMasses(expected);
  EXPECT_EQ(expected, out);
  z->IndexToMass(indexes, out);
  base->IndexToMass(indexes, expected);
  z->MassesToPreciseMasses(expected);
  EXPECT_EQ(expected, out);

  Doubles serialMass, serialDIndex;
  ASSERT_TRUE(inParallelRegion([&] {
    z->DIndexToMass(dindexes, serialMass);
    z->MassToDIndex(masses, serialDIndex);
  }));
  EXPECT_EQ(toMass, serialMass);
  EXPECT_EQ(toDIndex, serialDIndex);
}

// A failure of the base is the base's own, also when the correction fails
// elsewhere; a failure of the correction alone is the batch text.
TEST(ZRKCorrection, ABaseFailureOnTheThreadsIsTheBasesOwn) {
  // c2 < 0: RawToMass fails for raws beyond 2.5e7.
  const ICalibrationTransformatorPtr base =
      model<CalibrationTransformatorTOFQuadratic>(tof1(0.0, 1000.0, -0.01));
  Doubles raws(5000, base->MassToRaw(200.0));
  raws[2500] = 3e7;
  Doubles out;
  CalibrationTransformatorZRK ppm(base, ppmCorrection());
  EXPECT_EQ(kFailed, thrownText<std::runtime_error>([&] { ppm.RawToMass(raws, out); }));
  CalibrationTransformatorZRK folded(base, foldedCorrection());
  raws[100] = base->MassToRaw(500.0);
  EXPECT_EQ(kFailed, thrownText<std::runtime_error>([&] { folded.RawToMass(raws, out); }));
  raws[2500] = raws[0];
  EXPECT_EQ(kBatchFailed, thrownText<std::logic_error>([&] { folded.RawToMass(raws, out); }));
}

TEST(ZRKCorrection, CopiesAreEqualAndIndependent) {
  auto z = zrk(largeCorrection());
  z->SetMinimumSearchWidth(2.5);
  auto copy = boost::dynamic_pointer_cast<CalibrationTransformatorZRK>(z->Clone());
  ASSERT_TRUE(copy);
  EXPECT_TRUE(copy->IsEqual(z));
  EXPECT_EQ(2.5, copy->GetMinimumSearchWidth());
  EXPECT_TRUE(copy->GetUseCorrection());
  EXPECT_EQ(z->PreciseMassToMass(3002.0), copy->PreciseMassToMass(3002.0));
  EXPECT_NE(z->GetBaseTransformator(), copy->GetBaseTransformator());
  EXPECT_TRUE(copy->GetPolynomial()->IsEqual(*largeCorrection()));

  copy->SetPolynomial(ppmCorrection());
  EXPECT_FALSE(copy->IsEqual(z));
  EXPECT_FALSE(zrk(ICalibrationPolynomialZRKPtr())->IsEqual(z));
  EXPECT_TRUE(zrk(ICalibrationPolynomialZRKPtr())->IsEqual(zrk(ICalibrationPolynomialZRKPtr())));
  EXPECT_FALSE(z->IsEqual(tofQuadratic()));
  EXPECT_EQ(1.0, zrk(ppmCorrection())->GetMinimumSearchWidth());
}

TEST(ZRKCorrection, ConstantsAreThoseOfTheBase) {
  auto z = zrk(ppmCorrection());
  EXPECT_EQ(1, z->GetCalibrationType());
  z->SetFunctionalConstants(tof1(20000.0, 333.0, 0.02));
  EXPECT_TRUE(
      z->GetBaseTransformator()->GetFunctionalConstants()->IsEqual(tof1(20000.0, 333.0, 0.02)));
  z->SetBaseCalibMode(7);
  EXPECT_EQ(7, z->GetCalibMode());
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
