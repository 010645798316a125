#include "calibration_core/transformation/functors.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "calibration_core/testing/test_models.h"

namespace lumo {
namespace calibration {
namespace Transformation {
namespace {

using namespace testing;

// c2 < 0: RawToMass fails beyond c0 + 2.5e7 time units (and as far below c0),
// IndexToMass from index 49998000 on.
boost::shared_ptr<CalibrationTransformatorTOFQuadratic> turningModel() {
  return model<CalibrationTransformatorTOFQuadratic>(tof1(0.0, 1000.0, -0.01));
}

std::vector<double> raws(size_t n, double first, double step) {
  std::vector<double> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = first + step * i;
  return v;
}

// Raw times 1000, 1001, ... of `n` samples, with one at `failing` that the
// turning model cannot convert.
std::vector<double> rawsFailingAt(size_t n, size_t failing) {
  std::vector<double> v = raws(n, 1000.0, 1.0);
  v[failing] = 3e7;
  return v;
}

// The what() of the E that the turning model's RawToMass(in, out) throws for
// rawsFailingAt(n, failing); `out`, filled with 7.0 before, is left as the
// batch left it.
template <class E>
std::string failedBatchText(size_t n, size_t failing, std::vector<double>& out) {
  const std::vector<double> in = rawsFailingAt(n, failing);
  out.assign(n, 7.0);
  return thrownText<E>([&] { turningModel()->RawToMass(in, out); });
}

TEST(BatchTransformation, SerialAndParallelPathsGiveTheScalarResults) {
  auto m = turningModel();
  for (size_t n : {1u, 99u, 100u, 5000u}) {
    const std::vector<double> in = raws(n, 1000.0, 37.5);
    std::vector<double> out{1.0, 2.0};
    m->RawToMass(in, out);
    ASSERT_EQ(n, out.size());
    std::vector<double> inPlace = in;
    m->RawToMass(inPlace);
    std::vector<double> aliased = in;
    m->RawToMass(aliased, aliased);
    for (size_t i = 0; i < n; ++i) {
      EXPECT_EQ(m->RawToMass(in[i]), out[i]) << n << " " << i;
      EXPECT_EQ(out[i], inPlace[i]);
      EXPECT_EQ(out[i], aliased[i]);
    }
  }
}

TEST(BatchTransformation, EveryBatchFormMatchesItsScalar) {
  auto m = turningModel();
  const std::vector<double> masses = raws(300, 50.0, 3.25);
  std::vector<std::int32_t> indexes;
  m->MassToIndex(masses, indexes);
  std::vector<double> dindexes;
  m->MassToDIndex(masses, dindexes);
  std::vector<double> back;
  m->DIndexToMass(dindexes, back);
  std::vector<double> fromIndexes;
  m->IndexToMass(indexes, fromIndexes);
  std::vector<double> rawOfIndexes;
  m->IndexToRaw(indexes, rawOfIndexes);
  std::vector<std::int32_t> indexesOfRaws;
  m->RawToIndex(rawOfIndexes, indexesOfRaws);
  for (size_t i = 0; i < masses.size(); ++i) {
    EXPECT_EQ(m->MassToIndex(masses[i]), indexes[i]);
    EXPECT_EQ(m->MassToDIndex(masses[i]), dindexes[i]);
    EXPECT_EQ(m->DIndexToMass(dindexes[i]), back[i]);
    EXPECT_EQ(m->IndexToMass(indexes[i]), fromIndexes[i]);
    EXPECT_EQ(indexes[i], indexesOfRaws[i]);
  }
}

TEST(BatchTransformation, EmptyInputClearsTheOutput) {
  auto m = turningModel();
  std::vector<double> out{1.0, 2.0, 3.0};
  m->DIndexToMass(std::vector<double>(), out);
  EXPECT_TRUE(out.empty());
  std::vector<double> none;
  m->DIndexToMass(none);
  EXPECT_TRUE(none.empty());
}

TEST(BatchTransformation, SerialFailureIsTheModelsOwnAndStopsAtOnce) {
  auto m = turningModel();
  std::vector<double> out;
  EXPECT_EQ(kComplex, failedBatchText<std::logic_error>(99, 50, out));
  ASSERT_EQ(99u, out.size());
  EXPECT_EQ(m->RawToMass(1049.0), out[49]);
  EXPECT_EQ(0.0, out[51]);
  std::vector<double> below = raws(10, -3e7, 1.0);
  EXPECT_EQ(kComplex, thrownText<std::logic_error>([&] { m->RawToMass(below); }));
}

TEST(BatchTransformation, ParallelFailureIsTheGeneralOne) {
  std::vector<double> out;
  EXPECT_EQ(kFailed, failedBatchText<std::runtime_error>(100, 70, out));
  std::vector<double> in = rawsFailingAt(100, 70);
  EXPECT_EQ(kFailed, thrownText<std::runtime_error>([&] { turningModel()->RawToMass(in); }));
}

TEST(BatchTransformation, AfterAParallelFailureEachElementIsComputedOrZero) {
  auto m = turningModel();
  std::vector<double> out;
  EXPECT_EQ(kFailed, failedBatchText<std::runtime_error>(5000, 2500, out));
  ASSERT_EQ(5000u, out.size());
  EXPECT_EQ(0.0, out[2500]);
  for (size_t i = 0; i < out.size(); ++i) {
    if (out[i] != 0.0) {
      EXPECT_EQ(m->RawToMass(1000.0 + i), out[i]) << i;
    }
  }
}

TEST(BatchTransformation, InsideAParallelRegionRunsSerially) {
  auto m = turningModel();
  const std::vector<double> in = rawsFailingAt(500, 300);
  std::vector<std::string> texts(2);
#pragma omp parallel num_threads(2)
  {
    std::vector<double> out;
    texts[omp_get_thread_num()] = thrownText<std::logic_error>([&] { m->RawToMass(in, out); });
  }
  EXPECT_EQ(kComplex, texts[0]);
  if (omp_get_max_threads() > 1) {
    EXPECT_EQ(kComplex, texts[1]);
  }
}

TEST(RangeTransformation, SerialAndParallelRangesGiveTheScalarResults) {
  auto m = turningModel();
  for (int n : {1, 7, 8, 1000}) {
    std::vector<double> out{5.0};
    m->IndexToMass(-3, -3 + n - 1, out);
    ASSERT_EQ(static_cast<size_t>(n), out.size());
    for (int i = 0; i < n; ++i) EXPECT_EQ(m->IndexToMass(-3 + i), out[i]);
  }
}

TEST(RangeTransformation, LastBeforeFirstFails) {
  auto m = turningModel();
  std::vector<double> out;
  EXPECT_EQ(
      "Lumo::CCO::Functors::RangeTransformation(TTransformationFunctor transFunctor, "
      "boost::int32_t first, boost::int32_t last, TDest & dest): invalid transformation: range "
      "invalid: last < first with last = 4 and first = 5",
      thrownText<std::invalid_argument>([&] { m->IndexToMass(5, 4, out); }));
}

TEST(RangeTransformation, FailuresOfBothPaths) {
  auto m = turningModel();
  std::vector<double> out;
  EXPECT_EQ(kFailed,
            thrownText<std::runtime_error>([&] { m->IndexToMass(49997990, 49998010, out); }));
  EXPECT_EQ(kComplex,
            thrownText<std::logic_error>([&] { m->IndexToMass(49998000, 49998006, out); }));
}

}  // namespace
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
