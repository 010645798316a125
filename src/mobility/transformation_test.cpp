#include "mobility/transformation.h"

#include <gtest/gtest.h>

#include <boost/function.hpp>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "testing/thrown_text.h"

namespace {

using lumo::calibration::kora::createLinearVoltageRampBasedTransformator;
using lumo::calibration::kora::ILinearVoltageRampBasedTransformator;
using lumo::calibration::kora::LinearVoltageRamp;
using lumo::calibration::kora::rangeTransform;

std::string creationError(const std::vector<double>& coefficients) {
  return kora_testing::thrownText<std::invalid_argument>([&] {
    createLinearVoltageRampBasedTransformator(LinearVoltageRamp(0, 100, 200.0, 100.0), 0.0,
                                              coefficients);
  });
}

// 1/K0 = |v| / 100 between 50 V and 200 V, slopes 0.01 at both ends.
std::unique_ptr<ILinearVoltageRampBasedTransformator> proportional(const LinearVoltageRamp& ramp,
                                                                   double offset) {
  return createLinearVoltageRampBasedTransformator(ramp, offset, {0.0, 100.0, 50.0, 200.0});
}

// A law with real curvature: c0 = 0.3, c1 = 250 between 80 V and 240 V.
const std::vector<double> kCurved{0.3, 250.0, 80.0, 240.0};

TEST(RangeTransform, FillsAscendingFromBegin) {
  std::vector<double> out{7.0, 7.0, 7.0, 7.0, 7.0, 7.0};
  std::vector<double> seen;
  rangeTransform(out, -2, 2, [&](double s) {
    seen.push_back(s);
    return s * 10.0;
  });
  EXPECT_EQ((std::vector<double>{-20.0, -10.0, 0.0, 10.0}), out);
  EXPECT_EQ((std::vector<double>{-2.0, -1.0, 0.0, 1.0}), seen);
}

TEST(RangeTransform, EmptyRangeEmptiesAndNeverCalls) {
  std::vector<double> out{1.0, 2.0};
  int calls = 0;
  rangeTransform(out, -5, -5, [&](double) { return ++calls; });
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(0, calls);
  // An empty function is fine as long as there is nothing to call it for.
  rangeTransform(out, 3, 3, boost::function<double(double)>());
}

TEST(RangeTransform, Failures) {
  std::vector<double> out{1.0, 2.0};
  EXPECT_EQ("end must be >= begin.", kora_testing::thrownText<std::invalid_argument>([&] {
              rangeTransform(out, 4, 3, [](double s) { return s; });
            }));
  EXPECT_EQ((std::vector<double>{1.0, 2.0}), out);
  EXPECT_EQ("call to empty boost::function",
            kora_testing::thrownText<boost::bad_function_call>(
                [&] { rangeTransform(out, 0, 3, boost::function<double(double)>()); }));
  EXPECT_EQ(3u, out.size());
  // A throwing function leaves the earlier elements written.
  EXPECT_EQ("stop", kora_testing::thrownText<std::runtime_error>([&] {
              rangeTransform(out, 0, 3, [](double s) {
                if (s == 1.0) throw std::runtime_error("stop");
                return 5.0;
              });
            }));
  EXPECT_EQ(5.0, out[0]);
}

TEST(LinearVoltageRampBasedTransformator, ProportionalLawAndItsStraightParts) {
  auto t = proportional(LinearVoltageRamp(0, 100, 200.0, 100.0), 0.0);
  EXPECT_DOUBLE_EQ(1.0, t->voltageToOneOverK0(100.0));
  EXPECT_DOUBLE_EQ(0.5, t->voltageToOneOverK0(50.0));
  EXPECT_DOUBLE_EQ(2.5, t->voltageToOneOverK0(250.0));
  EXPECT_DOUBLE_EQ(0.0, t->voltageToOneOverK0(0.0));
  EXPECT_DOUBLE_EQ(-0.2, t->voltageToOneOverK0(-20.0));
  EXPECT_DOUBLE_EQ(100.0, t->oneOverK0ToVoltage(1.0));
  EXPECT_DOUBLE_EQ(300.0, t->oneOverK0ToVoltage(3.0));
  EXPECT_DOUBLE_EQ(-20.0, t->oneOverK0ToVoltage(-0.2));
  EXPECT_EQ(2, t->getModelType());
  EXPECT_EQ(1, t->getDegree());
}

TEST(LinearVoltageRampBasedTransformator, CurvedLawContinuesByTangents) {
  auto t = createLinearVoltageRampBasedTransformator(LinearVoltageRamp(0, 100, 300.0, 50.0), 0.0,
                                                     kCurved);
  // Inside: x / (c0 x + c1).
  EXPECT_DOUBLE_EQ(160.0 / (0.3 * 160.0 + 250.0), t->voltageToOneOverK0(160.0));
  // Beyond vmax: tangent at 240 V, slope c1 / (c0 vmax + c1)^2.
  const double y1 = 1.0 / (250.0 / 240.0 + 0.3);
  const double slope1 = 250.0 / std::pow(240.0 * 0.3 + 250.0, 2.0);
  EXPECT_DOUBLE_EQ(y1 + 60.0 * slope1, t->voltageToOneOverK0(300.0));
  // Below vmin: tangent at 80 V.
  const double y0 = 1.0 / (250.0 / 80.0 + 0.3);
  const double slope0 = 250.0 / std::pow(80.0 * 0.3 + 250.0, 2.0);
  EXPECT_DOUBLE_EQ(y0 - 30.0 * slope0, t->voltageToOneOverK0(50.0));
  EXPECT_DOUBLE_EQ(50.0, t->oneOverK0ToVoltage(y0 - 30.0 * slope0));
}

TEST(LinearVoltageRampBasedTransformator, NegativeRampMirrorsThePositiveOne) {
  auto pos = createLinearVoltageRampBasedTransformator(LinearVoltageRamp(0, 100, 300.0, 50.0), 0.0,
                                                       kCurved);
  auto neg = createLinearVoltageRampBasedTransformator(LinearVoltageRamp(0, 100, -300.0, -50.0),
                                                       0.0, kCurved);
  for (double v : {10.0, 80.0, 123.0, 240.0, 280.0}) {
    EXPECT_EQ(pos->voltageToOneOverK0(v), neg->voltageToOneOverK0(-v)) << v;
    EXPECT_EQ(-pos->oneOverK0ToVoltage(pos->voltageToOneOverK0(v)),
              neg->oneOverK0ToVoltage(neg->voltageToOneOverK0(-v)))
        << v;
  }
  EXPECT_GT(0.0, neg->oneOverK0ToVoltage(0.5));
  EXPECT_EQ(pos->scanNumToOneOverK0(40.0), neg->scanNumToOneOverK0(40.0));
}

// scan -> 1/K0 -> scan and scan -> voltage -> scan, inside the ramp, beyond
// both ends of the ramp and beyond vmin/vmax of the law.
TEST(LinearVoltageRampBasedTransformator, RoundTripsInsideAndOutsideTheRamp) {
  const LinearVoltageRamp ramps[] = {LinearVoltageRamp(10, 400, 280.0, 60.0),
                                     LinearVoltageRamp(10, 400, -280.0, -60.0)};
  for (const LinearVoltageRamp& ramp : ramps) {
    for (double offset : {0.0, 3.75, -12.5}) {
      auto t = createLinearVoltageRampBasedTransformator(ramp, offset, kCurved);
      for (double s = -300.0; s <= 900.0; s += 7.3) {
        const double k0 = t->scanNumToOneOverK0(s);
        EXPECT_TRUE(std::isfinite(k0));
        EXPECT_NEAR(s, t->oneOverK0ToScanNum(k0), 1e-8) << s << " offset " << offset;
        EXPECT_NEAR(s, t->voltageToScanNum(t->scanNumToVoltage(s)), 1e-9) << s;
      }
    }
  }
}

TEST(LinearVoltageRampBasedTransformator, OffsetShiftsStoredScanNumbers) {
  const LinearVoltageRamp ramp(0, 100, 200.0, 100.0);
  auto t = proportional(ramp, 2.5);
  EXPECT_EQ(200.0, t->scanNumToVoltage(2.5));
  EXPECT_EQ(150.0, t->scanNumToVoltage(52.5));
  EXPECT_EQ(52.5, t->voltageToScanNum(150.0));
  EXPECT_DOUBLE_EQ(1.5, t->scanNumToOneOverK0(52.5));
  EXPECT_DOUBLE_EQ(52.5, t->oneOverK0ToScanNum(1.5));
}

TEST(LinearVoltageRampBasedTransformator, TablesMatchTheScalarForms) {
  auto t = proportional(LinearVoltageRamp(0, 100, 200.0, 100.0), 0.0);
  std::vector<double> volts;
  std::vector<double> k0;
  t->scanNumToVoltage(volts, -1, 3);
  t->scanNumToOneOverK0(k0, 98, 101);
  EXPECT_EQ((std::vector<double>{201.0, 200.0, 199.0, 198.0}), volts);
  ASSERT_EQ(3u, k0.size());
  EXPECT_DOUBLE_EQ(1.02, k0[0]);
  EXPECT_DOUBLE_EQ(1.01, k0[1]);
  EXPECT_DOUBLE_EQ(1.0, k0[2]);
  EXPECT_EQ("end must be >= begin.", kora_testing::thrownText<std::invalid_argument>(
                                         [&] { t->scanNumToVoltage(volts, 1, 0); }));
}

TEST(LinearVoltageRampBasedTransformator, Accessors) {
  auto t = createLinearVoltageRampBasedTransformator(LinearVoltageRamp(5, 10, 100.0, 50.0), 0.25,
                                                     kCurved);
  EXPECT_EQ(std::make_pair(5, 16), t->getScanNumRange());
  t->setScanNumOffset(-0.5);
  EXPECT_EQ(-0.5, t->getScanNumOffset());
  EXPECT_EQ(std::make_pair(4, 15), t->getScanNumRange());
  EXPECT_EQ(kCurved, t->getCoefficients());

  const double before = t->voltageToOneOverK0(150.0);
  t->setVoltageRamp(LinearVoltageRamp(0, 20, -200.0, -100.0));
  EXPECT_EQ(-200.0, t->getVoltageRamp().Vstart());
  EXPECT_EQ(before, t->voltageToOneOverK0(-150.0));
  EXPECT_EQ(kCurved, t->getCoefficients());
}

TEST(LinearVoltageRampBasedTransformator, InvalidCoefficients) {
  EXPECT_EQ("Only polynomials of degree 1 supported currently.", creationError({0.0, 100.0, 50.0}));
  EXPECT_EQ("Only polynomials of degree 1 supported currently.",
            creationError({0.0, -1.0, 50.0, 200.0, 1.0}));
  EXPECT_EQ("c1, vmin and vmax must be strictly positive.", creationError({0.0, 0.0, 50.0, 200.0}));
  EXPECT_EQ("c1, vmin and vmax must be strictly positive.", creationError({0.0, 1.0, 0.0, 200.0}));
  EXPECT_EQ("c1, vmin and vmax must be strictly positive.", creationError({0.0, 1.0, 5.0, -2.0}));
  EXPECT_EQ("vmax must be larger than vmin.", creationError({0.0, 100.0, 200.0, 200.0}));
  EXPECT_EQ("vmax is too large.", creationError({-1.0, 100.0, 50.0, 100.0}));
  EXPECT_EQ("<nothing thrown>", creationError({-1.0, 100.0, 50.0, 99.0}));
  EXPECT_EQ("<nothing thrown>", creationError({0.0, 100.0, 50.0, 1e300}));
  EXPECT_EQ("<nothing thrown>", creationError({5.0, 100.0, 50.0, 1e12}));
  // Huge c0 drives the slopes to zero.
  EXPECT_EQ("Slopes at vmin and vmax must be strictly positive.",
            creationError({1e200, 1.0, 50.0, 200.0}));
}

TEST(LinearVoltageRampBasedTransformator, FailedSetCoefficientsChangesNothing) {
  auto t = proportional(LinearVoltageRamp(0, 100, 200.0, 100.0), 0.0);
  EXPECT_EQ("vmax is too large.", kora_testing::thrownText<std::invalid_argument>([&] {
              t->setCoefficients({-1.0, 100.0, 50.0, 150.0});
            }));
  EXPECT_EQ((std::vector<double>{0.0, 100.0, 50.0, 200.0}), t->getCoefficients());
  EXPECT_DOUBLE_EQ(2.5, t->voltageToOneOverK0(250.0));
  t->setCoefficients(kCurved);
  EXPECT_EQ(kCurved, t->getCoefficients());
  EXPECT_DOUBLE_EQ(160.0 / (0.3 * 160.0 + 250.0), t->voltageToOneOverK0(160.0));
}

}  // namespace
