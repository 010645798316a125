// The six conversion exports on analyses calibrated in analysis.oxa itself.
// Expected values are worked out here from the laws of the stored
// calibrations, never through the library's own models.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "api/conversion_test_support.h"
#include "koradata.h"
#include "testing/temp_dir.h"
#include "tools/analysis_writer.h"
#include "tools/calibration_rows.h"
#include "tools/data_generator.h"

namespace {

using kora_testing::closeTo;
using kora_testing::conversions;
using kora_testing::OpenAnalysis;
using lumo::writer::AnalysisSpec;
using lumo::writer::MobilityRamp;
using lumo::writer::MzCalibrationHead;

constexpr uint32_t kScans = 100;

// The sample's m/z law at the temperatures of a frame. The flight time of
// fractional index x is t = x * timebase + delay, and t = c0 + sqrt(a1 * m) +
// c2 * m with a1 = 1e12 / c1^2. A frame measured at T1, T2 away from the
// reference has a1 and c2 divided by s = 1 + sum_i (Tref_i - T_i) * dC_i / 1e6.
struct TofLaw {
  MzCalibrationHead head = lumo::writer::sampleMzCalibrationHead();
  std::array<double, 5> c = lumo::writer::kSampleTofCoefficients;
  double s = 1.0;

  TofLaw(double frameT1, double frameT2) {
    s = 1.0 + ((head.t1 - frameT1) * head.dC1 + (head.t2 - frameT2) * head.dC2) / 1e6;
  }
  double a1() const { return 1e12 / (c[1] * c[1]) / s; }
  double c2() const { return c[2] / s; }
  double mz(double index) const {
    const double t = index * head.timebase + head.delay;
    const double w = (-std::sqrt(a1()) + std::sqrt(a1() + 4.0 * c2() * (t - c[0]))) / (2.0 * c2());
    return w * w;
  }
  double index(double mz) const {
    const double t = c[0] + std::sqrt(a1() * mz) + c2() * mz;
    return (t - head.delay) / head.timebase;
  }
};

// The sample's mobility law: the ramp voltage falls linearly from vStart at
// scan ndelay + offset to vEnd ncycles scans later; 1/K0 = V / (c0 V + c1)
// between vMin and vMax, continued by the tangents at both ends.
struct RampLaw {
  MobilityRamp r = lumo::writer::sampleMobilityRamp(kScans);

  double voltage(double scan) const {
    return r.vStart + (r.vEnd - r.vStart) * (scan - r.scanNumOffset - r.ndelay) / r.ncycles;
  }
  double scan(double v) const {
    return (v - r.vStart) * r.ncycles / (r.vEnd - r.vStart) + r.ndelay + r.scanNumOffset;
  }
  double law(double v) const { return v / (r.c0 * v + r.c1); }
  double slope(double v) const { return r.c1 / ((r.c0 * v + r.c1) * (r.c0 * v + r.c1)); }
  double oneOverK0(double v) const {
    if (v <= r.vMin) return law(r.vMin) + (v - r.vMin) * slope(r.vMin);
    if (v >= r.vMax) return law(r.vMax) + (v - r.vMax) * slope(r.vMax);
    return law(v);
  }
};

// Three frames of the sample calibration at their own temperatures.
class SampleConversions : public ::testing::Test {
 protected:
  void SetUp() override {
    lumo::writer::GeneratorOptions options;
    options.scansPerFrame = kScans;
    AnalysisSpec spec = lumo::writer::generateAnalysis(options);
    lumo::writer::addSampleCalibration(spec, kScans);
    for (const auto& frame : spec.frames) {
      temperatures.push_back({frame.t1.real(), frame.t2.real()});
    }
    lumo::writer::writeAnalysis(spec, dir.path());
  }
  TofLaw tofOf(int64_t frame) const {
    return TofLaw(temperatures[frame - 1].first, temperatures[frame - 1].second);
  }

  kora_testing::TempDir dir;
  std::vector<std::pair<double, double>> temperatures;  // T1, T2 of frames 1, 2, ...
};

TEST_F(SampleConversions, IndexAndMzFollowTheTofLawAtEachFramesTemperatures) {
  OpenAnalysis a(dir.str(), 0);
  const std::vector<double> indices = {0.0, 1.5, 1000.0, 123456.75, 399999.0};
  for (int64_t frame : {1, 2, 3}) {
    const TofLaw law = tofOf(frame);
    ASSERT_NE(law.s, 1.0);
    const std::vector<double> mz = a.convert(kora_index_to_mz, frame, indices);
    for (size_t i = 0; i < indices.size(); ++i) {
      EXPECT_TRUE(closeTo(mz[i], law.mz(indices[i]))) << "frame " << frame << " index " << i;
    }
    const std::vector<double> masses = {14.5, 100.0, 622.25, 1693.0};
    const std::vector<double> back = a.convert(kora_mz_to_index, frame, masses);
    for (size_t i = 0; i < masses.size(); ++i) {
      EXPECT_TRUE(closeTo(back[i], law.index(masses[i]), 1e-11)) << "frame " << frame;
    }
  }
  // The temperatures matter: frames 1 and 2 differ at the same index.
  EXPECT_NE(a.convert(kora_index_to_mz, 1, 300000.0), a.convert(kora_index_to_mz, 2, 300000.0));
}

TEST_F(SampleConversions, BatchesOfAHundredAndMoreGiveTheSameMasses) {
  OpenAnalysis a(dir.str(), 0);
  std::vector<double> indices;
  for (int i = 0; i < 1000; ++i) indices.push_back(397.5 * i);
  const std::vector<double> mz = a.convert(kora_index_to_mz, 2, indices);
  const TofLaw law = tofOf(2);
  for (size_t i = 0; i < indices.size(); i += 111) {
    EXPECT_TRUE(closeTo(mz[i], law.mz(indices[i])));
  }
  EXPECT_EQ(mz[500], a.convert(kora_index_to_mz, 2, indices[500]));
}

TEST_F(SampleConversions, ScanVoltageAndOneOverK0FollowTheRampAndItsLaw) {
  OpenAnalysis a(dir.str(), 0);
  const RampLaw law;
  // Inside the ramp, before it and after it, where the law goes on along
  // its tangents.
  const std::vector<double> scans = {0.0, 10.5, 50.0, 99.0, -10.0, 110.0};
  const std::vector<double> volts = a.convert(kora_scannum_to_voltage, 1, scans);
  const std::vector<double> k0 = a.convert(kora_scannum_to_oneoverk0, 1, scans);
  for (size_t i = 0; i < scans.size(); ++i) {
    EXPECT_TRUE(closeTo(volts[i], law.voltage(scans[i]))) << scans[i];
    EXPECT_TRUE(closeTo(k0[i], law.oneOverK0(law.voltage(scans[i])))) << scans[i];
  }
  EXPECT_TRUE(closeTo(volts[0], 200.0));
  EXPECT_LT(law.voltage(110.0), law.r.vMin);
  EXPECT_GT(law.voltage(-10.0), law.r.vMax);

  const std::vector<double> v = {200.0, 130.0, 61.0};
  const std::vector<double> s = a.convert(kora_voltage_to_scannum, 3, v);
  for (size_t i = 0; i < v.size(); ++i) EXPECT_TRUE(closeTo(s[i], law.scan(v[i])));
  const std::vector<double> y = {1.6, 1.0, 0.55};
  const std::vector<double> sy = a.convert(kora_oneoverk0_to_scannum, 3, y);
  for (size_t i = 0; i < y.size(); ++i) {
    const double x = law.r.c1 / (1.0 / y[i] - law.r.c0);  // the law's inverse
    EXPECT_TRUE(closeTo(sy[i], law.scan(x), 1e-11)) << y[i];
  }
}

TEST_F(SampleConversions, CountZeroReturnsOneEvenForAFrameThatDoesNotExist) {
  OpenAnalysis a(dir.str(), 0);
  for (const auto& c : conversions()) {
    EXPECT_EQ(1u, c.function(a.handle(), 999, nullptr, nullptr, 0)) << c.name;
  }
  EXPECT_EQ("Frame 999 does not exists or is missing MzCalibration/Polarity",
            a.failure(kora_index_to_mz, 999));
}

TEST_F(SampleConversions, InPlaceGivesTheSameResultsAsSeparateBuffers) {
  OpenAnalysis a(dir.str(), 0);
  std::vector<double> values;
  for (int i = 0; i < 150; ++i) values.push_back(0.5 + i);  // 150: the batch may run in parallel
  for (const auto& c : conversions()) {
    const std::vector<double> separate = a.convert(c.function, 2, values);
    std::vector<double> inPlace = values;
    ASSERT_EQ(1u, c.function(a.handle(), 2, inPlace.data(), inPlace.data(), 150)) << c.name;
    EXPECT_EQ(separate, inPlace) << c.name;
  }
}

// Long batches are copied in and out on the conversion's threads; short ones
// between them keep scratch of their own.
TEST_F(SampleConversions, LongBatchesGiveTheValuesOfSingleConversionsOnAnyThreadCount) {
  OpenAnalysis a(dir.str(), 0);
  std::vector<double> indices;
  for (int i = 0; i < 100003; ++i) indices.push_back(3.25 * i);
  const std::vector<double> masses = a.convert(kora_index_to_mz, 2, indices);
  EXPECT_TRUE(closeTo(masses[50000], tofOf(2).mz(indices[50000])));
  for (const uint32_t threads : {1u, 2u, 3u}) {
    kora_set_num_threads(threads);
    for (const auto& [f, in] :
         {std::make_pair(kora_index_to_mz, indices), std::make_pair(kora_mz_to_index, masses)}) {
      const std::vector<double> separate = a.convert(f, 2, in);
      for (const size_t i : {size_t{0}, size_t{77777}, in.size() - 1})
        EXPECT_EQ(separate[i], a.convert(f, 2, in[i])) << i << " on " << threads << " threads";
      std::vector<double> inPlace = in;
      ASSERT_EQ(1u, f(a.handle(), 2, inPlace.data(), inPlace.data(),
                      static_cast<uint32_t>(inPlace.size())));
      EXPECT_EQ(separate, inPlace) << threads << " threads";
    }
  }
  kora_set_num_threads(std::thread::hardware_concurrency());  // OpenMP's default
}

// One analysis with a frame for each way a conversion fails.
class ConversionFailures : public ::testing::Test {
 protected:
  void SetUp() override {
    AnalysisSpec spec = AnalysisSpec::make(3, 2);
    for (int i = 0; i < 8; ++i) spec.addFrame(std::vector<lumo::writer::Scan>(1));
    lumo::writer::addSampleCalibration(spec, kScans);
    auto& f = spec.frames;
    f[1].mzCalibration = 9;  // frame 2: no such rows
    f[1].koraCalibration = 9;
    f[2].polarity = "+-";                      // frame 3
    f[3].polarity = lumo::writer::SqlValue();  // frame 4
    f[3].koraCalibration = lumo::writer::SqlValue();
    f[4].mzCalibration = 2;  // frame 5: unknown models
    f[4].koraCalibration = 2;
    f[5].mzCalibration = 3;    // frame 6: a law that fails for late flight times
    f[5].koraCalibration = 3;  // and a law of degree 2
    f[6].koraCalibration = 4;  // frame 7: a ramp without scans
    f[7].koraCalibration = 5;  // frame 8: a delay beyond 16 bits
    lumo::writer::Row unknown = lumo::writer::mzTofRow(2, MzCalibrationHead(), {1, 2, 3, 0, 0});
    unknown[1] = 3;
    spec.mzCalibration.rows.push_back(unknown);
    spec.mzCalibration.rows.push_back(
        lumo::writer::mzTofRow(3, MzCalibrationHead(), {10000.0, 377.0, -100.0, 0.0, 0.0}));
    MobilityRamp ramp;
    spec.koraCalibration.rows.push_back(lumo::writer::koraRampRow(2, ramp));
    spec.koraCalibration.rows.back()[1] = 1;
    ramp.degree = 2;
    spec.koraCalibration.rows.push_back(lumo::writer::koraRampRow(3, ramp));
    ramp.degree = 1;
    ramp.ncycles = 0;
    spec.koraCalibration.rows.push_back(lumo::writer::koraRampRow(4, ramp));
    ramp.ncycles = 100;
    ramp.ndelay = 70000;
    spec.koraCalibration.rows.push_back(lumo::writer::koraRampRow(5, ramp));
    lumo::writer::writeAnalysis(spec, dir.path());
  }
  kora_testing::TempDir dir;
};

TEST_F(ConversionFailures, MassConversionsReportEachFailureByItsText) {
  OpenAnalysis a(dir.str(), 0);
  for (auto f : {kora_index_to_mz, kora_mz_to_index}) {
    EXPECT_EQ("No m/z trafo available.", a.failure(f, 2));
    EXPECT_EQ("Polarity has wrong format in OXA.", a.failure(f, 3));
    EXPECT_EQ("Polarity has wrong format in OXA.", a.failure(f, 4));
    EXPECT_EQ("Unknown m/z calibration model 3", a.failure(f, 5));
    EXPECT_EQ("Frame 9 does not exists or is missing MzCalibration/Polarity", a.failure(f, 9));
    EXPECT_EQ("Frame -1 does not exists or is missing MzCalibration/Polarity", a.failure(f, -1));
  }
  // Late flight times have no real root: alone, and in a batch that runs in
  // parallel.
  EXPECT_EQ(
      "complex valued solution in computation due to invalid calibration "
      "constants/value range",
      a.failure(kora_index_to_mz, 6, {100.0, 390000.0}));
  EXPECT_EQ("Transformation failed, most likely due to bad calibration constants.",
            a.failure(kora_index_to_mz, 6, std::vector<double>(100, 390000.0)));
  EXPECT_EQ("<succeeded>", a.failure(kora_index_to_mz, 6, {100.0}));
}

TEST_F(ConversionFailures, MobilityConversionsReportEachFailureByItsText) {
  OpenAnalysis a(dir.str(), 0);
  for (const auto& c : conversions()) {
    if (c.function == kora_index_to_mz || c.function == kora_mz_to_index) continue;
    EXPECT_EQ("No mobility trafo available.", a.failure(c.function, 2)) << c.name;
    EXPECT_EQ("Frame [4] does not exist or is missing KoraCalibration", a.failure(c.function, 4));
    EXPECT_EQ("Unknown KORA calibration model 1", a.failure(c.function, 5));
    EXPECT_EQ("LVR: unsupported degree != 1.", a.failure(c.function, 6));
    EXPECT_EQ("ncycles must be > 0.", a.failure(c.function, 7));
    EXPECT_EQ("bad numeric conversion: positive overflow", a.failure(c.function, 8));
    EXPECT_EQ("Frame [9] does not exist or is missing KoraCalibration", a.failure(c.function, 9));
    // The polarity plays no part in a mobility conversion.
    EXPECT_EQ("<succeeded>", a.failure(c.function, 3));
  }
}

}  // namespace
