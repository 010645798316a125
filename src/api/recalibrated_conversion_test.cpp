// The conversion exports on analyses opened with a recalibration state of
// calibration.sqlite: every m/z model the store knows, reference
// calibrations adapted to the frames' temperatures, and the failures of the
// store. Expected values are worked out here from the stored laws.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "api/conversion_test_support.h"
#include "koradata.h"
#include "testing/temp_dir.h"
#include "tools/analysis_writer.h"
#include "tools/calibration_store.h"
#include "tools/data_generator.h"

namespace {

using kora_testing::closeTo;
using kora_testing::OpenAnalysis;
using lumo::writer::AnalysisSpec;
using lumo::writer::CalibrationStateSpec;
using lumo::writer::CalibrationStoreSpec;
using lumo::writer::frameIds;
using lumo::writer::MobilityRamp;
using lumo::writer::MzCalibrationHead;
using lumo::writer::ReferenceTemperatures;

// The store's digitizer: flight time t = index * 0.5 + 1000.
MzCalibrationHead storeDigitizer() {
  MzCalibrationHead head;
  head.timebase = 0.5;
  head.delay = 1000.0;
  return head;
}

// Time-of-flight law t = c0 + sqrt(a1 m) + c2 m, a1 = 1e12 / c1^2, with a1
// and c2 divided by the temperature factor s.
struct Tof {
  double c0, c1, c2, s = 1.0;
  double a1() const { return 1e12 / (c1 * c1) / s; }
  double mz(double index) const {
    const double t = index * storeDigitizer().timebase + storeDigitizer().delay;
    const double c = c2 / s;
    const double w = (-std::sqrt(a1()) + std::sqrt(a1() + 4.0 * c * (t - c0))) / (2.0 * c);
    return w * w;
  }
  double index(double mz) const {
    const double t = c0 + std::sqrt(a1() * mz) + c2 / s * mz;
    return (t - storeDigitizer().delay) / storeDigitizer().timebase;
  }
};

// A falling negative ramp: -180 V to -40 V over 100 scans, 1/K0 = x / 110
// for the magnitude x between 30 and 200.
MobilityRamp negativeRamp() {
  MobilityRamp r;
  r.ncycles = 100;
  r.vStart = -180.0;
  r.vEnd = -40.0;
  r.c0 = 0.0;
  r.c1 = 110.0;
  r.vMin = 30.0;
  r.vMax = 200.0;
  return r;
}

// An analysis of `n` frames of the sample calibration (positive unless
// `polarities` says otherwise) and `store` as its calibration.sqlite.
void writeAnalysis(const kora_testing::TempDir& dir, const CalibrationStoreSpec& store, int n = 5,
                   const std::vector<std::string>& polarities = {}) {
  AnalysisSpec spec = AnalysisSpec::make(3, 2);
  for (int i = 0; i < n; ++i) spec.addFrame(std::vector<lumo::writer::Scan>(1));
  lumo::writer::addSampleCalibration(spec, 100);
  for (size_t i = 0; i < polarities.size(); ++i) spec.frames[i].polarity = polarities[i];
  spec.calibrationStore = store.tables();
  lumo::writer::writeAnalysis(spec, dir.path());
}

const Tof kStoreTof{2000.0, 400.0, 0.25};

// State "models", the latest: frame calibrations of models 1 to 5 for
// frames 1 to 5. State "first": references only.
CalibrationStoreSpec modelsStore() {
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  store.addState("first", "instrument", storeDigitizer())
      .addReference(false, 1, ReferenceTemperatures(), lumo::writer::tofModel({1, 2, 3, 0, 0}))
      .addMobilityCalibration(1, MobilityRamp(), frameIds(5));
  store.addState("models", "recalibration", storeDigitizer())
      .addFrameCalibration(
          11, lumo::writer::tofModel({kStoreTof.c0, kStoreTof.c1, kStoreTof.c2, 0, 0}), {1})
      .addFrameCalibration(12,
                           lumo::writer::tofZrkModel({kStoreTof.c0, kStoreTof.c1, kStoreTof.c2},
                                                     {0.0, 0.0, 100.0, 1500.0}, {0.01}),
                           {2})
      .addFrameCalibration(13, lumo::writer::halyardModel(5.0, 2.0, 0.001, 50.0, 4.0), {3})
      .addFrameCalibration(14, lumo::writer::ftms04Model(4, 1e8, 1e6, 1e5, 9e5, 1 << 20), {4})
      .addFrameCalibration(15, lumo::writer::ftms1356Model(1, 1e9, 1e8, 1e6, 1e5, 9e5, 1 << 20),
                           {5})
      .addMobilityCalibration(2, negativeRamp(), frameIds(5));
  return store;
}

TEST(RecalibratedConversions, TimeOfFlightFrameCalibrationsUseTheStoresDigitizer) {
  kora_testing::TempDir dir;
  writeAnalysis(dir, modelsStore());
  OpenAnalysis a(dir.str(), 1);

  // 1: the time-of-flight law with the store's digitizer, not analysis.oxa's.
  for (double x : {2500.0, 5000.5, 200000.0}) {
    EXPECT_TRUE(closeTo(a.convert(kora_index_to_mz, 1, x), kStoreTof.mz(x))) << x;
  }
  EXPECT_TRUE(closeTo(a.convert(kora_mz_to_index, 1, 500.0), kStoreTof.index(500.0), 1e-11));

  // The state's negative ramp: -180 V at scan 0, magnitudes on the law x / 110.
  EXPECT_TRUE(closeTo(a.convert(kora_scannum_to_voltage, 3, 0.0), -180.0));
  EXPECT_TRUE(closeTo(a.convert(kora_scannum_to_voltage, 3, 50.0), -110.0));
  EXPECT_TRUE(closeTo(a.convert(kora_scannum_to_oneoverk0, 3, 50.0), 1.0));
  EXPECT_TRUE(closeTo(a.convert(kora_oneoverk0_to_scannum, 3, 1.5), (165.0 - 180.0) / -1.4));
  EXPECT_TRUE(closeTo(a.convert(kora_voltage_to_scannum, 3, -40.0), 100.0));
}

// 2: the same law, corrected by a shift of 0.01 inside 100 .. 1500. The
// frame's temperatures are attached to the law beneath the correction, which
// stays in place.
TEST(RecalibratedConversions, CorrectedTimeOfFlightFrameCalibrationKeepsItsCorrection) {
  kora_testing::TempDir dir;
  writeAnalysis(dir, modelsStore());
  OpenAnalysis a(dir.str(), 1);
  const double x = kStoreTof.index(700.0);
  EXPECT_TRUE(closeTo(a.convert(kora_index_to_mz, 2, x), 700.0 - 0.01, 1e-10));
  EXPECT_TRUE(closeTo(a.convert(kora_mz_to_index, 2, 699.99), x, 1e-10));
  // Outside its mass range the correction fades out.
  EXPECT_TRUE(closeTo(a.convert(kora_index_to_mz, 2, kStoreTof.index(3000.0)), 3000.0, 1e-10));
}

// A frame's own calibration always gets the frame's temperatures attached,
// which only the time-of-flight families can carry.
TEST(RecalibratedConversions, IonTrapAndFtmsFrameCalibrationsRefuseTheFrameTemperatures) {
  kora_testing::TempDir dir;
  writeAnalysis(dir, modelsStore());
  OpenAnalysis a(dir.str(), 1);
  for (int64_t frame : {3, 4, 5}) {
    EXPECT_EQ("Non-supported strategy.", a.failure(kora_index_to_mz, frame)) << frame;
    EXPECT_EQ("Non-supported strategy.", a.failure(kora_mz_to_index, frame)) << frame;
  }
}

// As a reference the ion trap takes its five numbers from T1 on and has no
// temperature coefficients.
TEST(RecalibratedConversions, IonTrapReferenceConvertsUnadapted) {
  kora_testing::TempDir dir;
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  CalibrationStateSpec& state = store.addState("trap", "recalibration");
  state.referenceCalibrations.push_back(
      lumo::writer::halyardReferenceRow(1, 5.0, 2.0, 0.001, 50.0, 4.0));
  state.positiveReferenceCalibratorId = 1;
  state.addMobilityCalibration(1, MobilityRamp(), frameIds(2));
  writeAnalysis(dir, store, 2);
  OpenAnalysis a(dir.str(), 1);
  // mass = 0.001 r^2 + 2 r + 5 of r = 50 + index / 4, on either frame.
  for (int64_t frame : {1, 2}) {
    for (double x : {10.0, 5000.5, 200000.0}) {
      const double r = 50.0 + x / 4.0;
      EXPECT_TRUE(closeTo(a.convert(kora_index_to_mz, frame, x), 0.001 * r * r + 2.0 * r + 5.0))
          << x;
    }
    const double r = (-2.0 + std::sqrt(4.0 - 4.0 * 0.001 * (5.0 - 900.0))) / (2.0 * 0.001);
    EXPECT_TRUE(closeTo(a.convert(kora_mz_to_index, frame, 900.0), (r - 50.0) * 4.0, 1e-11));
  }
}

TEST(RecalibratedConversions, FlagZeroKeepsTheAnalysisCalibration) {
  kora_testing::TempDir dir;
  writeAnalysis(dir, modelsStore());
  OpenAnalysis recalibrated(dir.str(), 1), instrument(dir.str(), 0);
  EXPECT_NE(recalibrated.convert(kora_index_to_mz, 1, 1000.0),
            instrument.convert(kora_index_to_mz, 1, 1000.0));
  EXPECT_TRUE(closeTo(instrument.convert(kora_scannum_to_voltage, 1, 0.0), 200.0));
}

// Reference calibrations per polarity, made at 20 and 30 degrees with
// coefficients 10 and 100 ppm per degree, adapted to each frame.
TEST(RecalibratedConversions, ReferencesAreAdaptedToEachFramesTemperatures) {
  kora_testing::TempDir dir;
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  ReferenceTemperatures reference{20.0, 30.0, 10.0, 100.0};
  const Tof negative{2100.0, 380.0, 0.5};
  store.addState("refs", "recalibration", storeDigitizer())
      .addReference(false, 1, reference, lumo::writer::tofModel({2000.0, 400.0, 0.25, 0, 0}))
      .addReference(true, 2, reference, lumo::writer::tofModel({2100.0, 380.0, 0.5, 0, 0}))
      .addMobilityCalibration(1, MobilityRamp(), frameIds(4));
  writeAnalysis(dir, store, 4, {"+", "-", "+", "-"});
  OpenAnalysis a(dir.str(), 1);
  for (int64_t frame = 1; frame <= 4; ++frame) {
    // The sample's frame temperatures.
    const double t1 = 25.0 + 0.25 * (frame % 8), t2 = 24.0 - 0.1 * (frame % 5);
    Tof law = frame % 2 ? kStoreTof : negative;
    law.s = 1.0 + ((20.0 - t1) * 10.0 + (30.0 - t2) * 100.0) / 1e6;
    EXPECT_TRUE(closeTo(a.convert(kora_index_to_mz, frame, 123456.0), law.mz(123456.0))) << frame;
    EXPECT_TRUE(closeTo(a.convert(kora_mz_to_index, frame, 800.0), law.index(800.0), 1e-11))
        << frame;
  }
}

// One analysis per way the store fails a conversion.
struct StoreFailure {
  const char* what;
  void (*damage)(CalibrationStoreSpec&);
  std::vector<std::string> polarities;
  int64_t frame;
  bool mass;  // a mass conversion, else a mobility conversion
  const char* text;
};

CalibrationStoreSpec referenceStore() {
  CalibrationStoreSpec store = CalibrationStoreSpec::make();
  store.addState("s", "recalibration", storeDigitizer())
      .addReference(false, 1, ReferenceTemperatures(), lumo::writer::tofModel({2000, 400, 0, 0, 0}))
      .addMobilityCalibration(1, MobilityRamp(), frameIds(2));
  return store;
}

CalibrationStateSpec& only(CalibrationStoreSpec& store) { return store.states.at(0); }

const StoreFailure kStoreFailures[] = {
    {"frame beyond the analysis",
     [](CalibrationStoreSpec&) {},
     {},
     3,
     true,
     "Frame 3 does not exist."},
    {"frame beyond the mobility mapping",
     [](CalibrationStoreSpec&) {},
     {},
     3,
     false,
     "Missing KoraCalibrator mapping for Frame [3]"},
    {"mobility row missing",
     [](CalibrationStoreSpec& s) { only(s).mobilityCalibrations.clear(); },
     {},
     1,
     false,
     "No mobility trafo for id [1] available"},
    {"mobility model unknown",
     [](CalibrationStoreSpec& s) { only(s).mobilityCalibrations[0][1] = 1; },
     {},
     1,
     false,
     "Unknown KORA calibration model 1"},
    {"reference row missing",
     [](CalibrationStoreSpec& s) { only(s).referenceCalibrations.clear(); },
     {},
     1,
     true,
     "No m/z trafo for id [1] available"},
    {"no digitizer constants",
     [](CalibrationStoreSpec& s) { only(s).digitizer.reset(); },
     {},
     1,
     true,
     "Missing digitizer constants, unable to load tof m/z transformators"},
    {"FTMS04 reference",
     [](CalibrationStoreSpec& s) {
       only(s).referenceCalibrations.clear();
       only(s).addReference(false, 1, {}, lumo::writer::ftms04Model(4, 1, 2, 3, 4, 5));
     },
     {},
     1,
     true,
     "FTMS04 as reference trafo is not supported."},
    {"FTMS1356 reference",
     [](CalibrationStoreSpec& s) {
       only(s).referenceCalibrations.clear();
       only(s).addReference(false, 1, {}, lumo::writer::ftms1356Model(1, 1, 2, 3, 4, 5, 6));
     },
     {},
     1,
     true,
     "FTMS1356 as reference trafo is not supported."},
    {"unknown reference model",
     [](CalibrationStoreSpec& s) { only(s).referenceCalibrations[0][1] = 6; },
     {},
     1,
     true,
     "Unknown m / z calibration model 6"},
    // A polarity other than "+" and "-" asks for a negative reference when
    // the state is chosen, and is positive when a frame is converted.
    {"odd polarity",
     [](CalibrationStoreSpec& s) {
       only(s).referenceCalibrations[0][0] = 2;
       only(s).positiveReferenceCalibratorId = lumo::writer::SqlValue();
       only(s).negativeReferenceCalibratorId = 2;
     },
     {"x", "x"},
     1,
     true,
     "no reference calibration available for positive polarity"},
    {"frame row missing",
     [](CalibrationStoreSpec& s) {
       only(s).addFrameCalibration(7, lumo::writer::tofModel({1, 2, 3, 0, 0}), {1});
       only(s).frameCalibrationMapping.emplace_back(2, 42);
     },
     {},
     2,
     true,
     "No m/z trafo for id [42] available"},
    {"unknown frame model",
     [](CalibrationStoreSpec& s) {
       lumo::writer::MzModel m;
       m.modelType = 6;
       only(s).addFrameCalibration(7, m, {1, 2});
     },
     {},
     2,
     true,
     "Unknown m / z calibration model 6"},
    {"frame model 2 without digitizer constants",
     [](CalibrationStoreSpec& s) {
       only(s).digitizer.reset();
       only(s).addFrameCalibration(7, lumo::writer::tofZrkModel({2000, 400, 0}, {0, 0, 1, 2}, {}),
                                   {1, 2});
     },
     {},
     1,
     true,
     "Missing digitizer constants, unable to load tof zrk m/z transformators"},
};

TEST(RecalibratedConversions, StoreFailuresReachTheCallerAsTexts) {
  for (const StoreFailure& c : kStoreFailures) {
    kora_testing::TempDir dir;
    CalibrationStoreSpec store = referenceStore();
    c.damage(store);
    writeAnalysis(dir, store, 2, c.polarities);
    OpenAnalysis a(dir.str(), 1);
    if (c.mass) {
      EXPECT_EQ(c.text, a.failure(kora_index_to_mz, c.frame)) << c.what;
      EXPECT_EQ(c.text, a.failure(kora_mz_to_index, c.frame)) << c.what;
    } else {
      EXPECT_EQ(c.text, a.failure(kora_scannum_to_oneoverk0, c.frame)) << c.what;
      EXPECT_EQ(c.text, a.failure(kora_voltage_to_scannum, c.frame)) << c.what;
    }
  }
}

}  // namespace
