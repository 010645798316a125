#include "calibration_access/calibration_row_decoders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/numeric/conversion/cast.hpp>
#include <cmath>
#include <memory>
#include <string>

#include "calibration_access/calibration_table_reader.h"
#include "calibration_access/corrupt_data_error.h"
#include "calibration_access/test_calibration_law.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "sql/cppsqlite3.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::expectTofLaw;
using kora_testing::expectZrkLaw;
using kora_testing::indexOfTime;
using kora_testing::kDelay;
using kora_testing::kTimeBase;
using kora_testing::kTofCoefficients;
using kora_testing::kZrkCoefficients;
using kora_testing::thrownText;
using lumo::calibration::ICalibrationTransformatorPtr;
using lumo::io::calibration::CalibrationTableReader;
namespace io = lumo::io::calibration;
namespace T = lumo::calibration::Transformation;

// One table Rows (Id, ModelType, C0 .. C15); `row` fetches a row, its first
// coefficient in column 2.
class RowDecoders : public ::testing::Test {
 protected:
  void SetUp() override {
    db.open(":memory:");
    std::string columns;
    for (int i = 0; i < 16; ++i) columns += ", C" + std::to_string(i);
    db.execDML(("CREATE TABLE Rows (Id, ModelType" + columns + ")").c_str());
    reader.reset(new CalibrationTableReader(db, "Rows", 0, "", boost::none));
  }
  // `cells`: the SQL values of C0, C1, ... separated by commas.
  CppSQLite3Query& row(const std::string& cells) {
    db.execDML("DELETE FROM Rows");
    const int n = static_cast<int>(std::count(cells.begin(), cells.end(), ',')) + 1;
    std::string names = "Id, ModelType";
    for (int i = 0; i < n; ++i) names += ", C" + std::to_string(i);
    db.execDML(("INSERT INTO Rows (" + names + ") VALUES (1, 1, " + cells + ")").c_str());
    EXPECT_TRUE(reader->getRow(1, query));
    return query;
  }

  CppSQLite3DB db;
  std::unique_ptr<CalibrationTableReader> reader;
  CppSQLite3Query query;
};

// --- Mobility -------------------------------------------------------------

TEST_F(RowDecoders, MobilityRowFollowsTheRampAndTheLaw) {
  // ndelay 4, ncycles 200, 180 V down to 80 V, offset 1.5; law with c0 0.1,
  // c1 150 between 50 and 200 V.
  auto t = io::getMobTrafoLvrT4T3(row("4, 200, 180.0, 80.0, 1.5, 1, 0.1, 150.0, 50.0, 200.0"), 2);
  const double slope = (180.0 - 80.0) / (4.0 - 204.0);
  const double intercept = (4.0 * 80.0 - 204.0 * 180.0) / (4.0 - 204.0);
  const double scan = 101.5;
  const double volts = slope * (scan - 1.5) + intercept;
  EXPECT_DOUBLE_EQ(volts, t->scanNumToVoltage(scan));
  EXPECT_DOUBLE_EQ(volts / (0.1 * volts + 150.0), t->scanNumToOneOverK0(scan));
  EXPECT_EQ(std::make_pair(5, 206), t->getScanNumRange());
}

TEST_F(RowDecoders, MobilityIntegersMustFitSixteenBits) {
  const std::string law = ", 180.0, 80.0, 0.0, 1, 0.0, 150.0, 50.0, 200.0";
  EXPECT_EQ("bad numeric conversion: positive overflow",
            thrownText<boost::numeric::positive_overflow>(
                [&] { io::getMobTrafoLvrT4T3(row("70000, 200" + law), 2); }));
  EXPECT_EQ("bad numeric conversion: negative overflow",
            thrownText<boost::numeric::negative_overflow>(
                [&] { io::getMobTrafoLvrT4T3(row("0, -1" + law), 2); }));
  EXPECT_EQ("bad numeric conversion: positive overflow",
            thrownText<boost::numeric::positive_overflow>([&] {
              io::getMobTrafoLvrT4T3(row("0, 200, 180.0, 80.0, 0.0, 65537, 0.0, 150.0"), 2);
            }));
}

TEST_F(RowDecoders, MobilityDegreeOtherThanOneIsRefusedBeforeTheLaw) {
  // The law (C6 .. C9) would be invalid too; the degree is reported.
  EXPECT_EQ("LVR: unsupported degree != 1.", thrownText<io::CorruptDataError>([&] {
              io::getMobTrafoLvrT4T3(row("0, 200, 180.0, 80.0, 0.0, 2, 0.0, -1.0, 0.0, 0.0"), 2);
            }));
}

TEST_F(RowDecoders, MobilityRampAndLawFailuresPassThrough) {
  EXPECT_EQ("ncycles must be > 0.", thrownText<std::invalid_argument>([&] {
              io::getMobTrafoLvrT4T3(row("0, 0, 180.0, 80.0, 0.0, 1, 0.0, 150.0, 50.0, 200.0"), 2);
            }));
  // NULL cells read as zero: c1 = 0 is refused by the law.
  EXPECT_EQ("c1, vmin and vmax must be strictly positive.", thrownText<std::invalid_argument>([&] {
              io::getMobTrafoLvrT4T3(row("0, 200, 180.0, 80.0, 0.0, 1, 0.0, NULL, 50.0, 200.0"), 2);
            }));
}

// --- Mass models ------------------------------------------------------------

TEST_F(RowDecoders, TofRowWithoutCubicTermsIsTheSquareRootLaw) {
  auto t = io::getMzTrafoTof(row(kTofCoefficients), 2, kTimeBase, kDelay);
  EXPECT_TRUE(boost::dynamic_pointer_cast<T::CalibrationTransformatorTOFQuadratic>(t));
  expectTofLaw(t, 1.0);
}

TEST_F(RowDecoders, TofRowWithAnyCubicTermIsTheCubicModel) {
  auto tof1 = io::getMzTrafoTof(row("100.0, 745.0, 0.0, 0.0, NULL"), 2, kTimeBase, kDelay);
  EXPECT_TRUE(boost::dynamic_pointer_cast<T::CalibrationTransformatorTOFQuadratic>(tof1));

  auto shifted = io::getMzTrafoTof(row("100.0, 745.0, 0.0, 0.0, 1e-12"), 2, kTimeBase, kDelay);
  EXPECT_TRUE(boost::dynamic_pointer_cast<T::CalibrationTransformatorTOF2Cubic>(shifted));

  const double c0 = 100.0, c1 = 745.0, c2 = 0.01, c3 = 1e-5, dm = 0.5;
  auto cubic = io::getMzTrafoTof(row("100.0, 745.0, 0.01, 1e-5, 0.5"), 2, kTimeBase, kDelay);
  ASSERT_TRUE(boost::dynamic_pointer_cast<T::CalibrationTransformatorTOF2Cubic>(cubic));
  const double k1 = std::sqrt(1e12 / (c1 * c1));
  for (double m : {150.0, 1200.0}) {
    const double w = std::sqrt(m + dm);
    const double time = c0 + k1 * w + c2 * w * w + c3 * w * w * w;
    EXPECT_NEAR(time, cubic->MassToRaw(m), 1e-9 * time);
    EXPECT_NEAR(m, cubic->DIndexToMass(indexOfTime(time)), 1e-7 * m);
  }
}

TEST_F(RowDecoders, ZrkRowCorrectsTheSquareRootLaw) {
  // A third coefficient after the count of two is not read.
  expectZrkLaw(
      io::getMzTrafoTofZrk(row(std::string(kZrkCoefficients) + ", 7.0"), 2, kTimeBase, kDelay),
      1.0);
}

TEST_F(RowDecoders, IonTrapRowIsAPolynomialOfTheRawMass) {
  // raw mass r = 50 + index / 20; mass = c2 r^2 + c1 r + c0.
  auto quadratic = io::getMzTrafoHalyard(row("0.5, 1.01, 2e-5, 50.0, 20.0"), 2);
  auto linear = io::getMzTrafoHalyard(row("0.5, 1.01, 0.0, 50.0, 20.0"), 2);
  EXPECT_EQ(2, quadratic->GetCalibrationType());
  for (double index : {0.0, 1000.0, 33333.0}) {
    const double r = 50.0 + index / 20.0;
    EXPECT_NEAR(2e-5 * r * r + 1.01 * r + 0.5, quadratic->DIndexToMass(index), 1e-9);
    EXPECT_NEAR(1.01 * r + 0.5, linear->DIndexToMass(index), 1e-9);
  }
}

TEST_F(RowDecoders, FtmsRowsAreReciprocalLawsOnTheFrequencyAxis) {
  // Frequency f = 10000 + index * (90000 / 1024), index kept in [0, 1023].
  auto ftms04 = io::getMzTrafoFtms04(row("4, 5e7, 1e5, 10000.0, 90000.0, 1024"), 2);
  auto ftms15 = io::getMzTrafoFtms1356(row("1, 2e6, 5e7, 1e5, 10000.0, 90000.0, 1024"), 2);
  EXPECT_EQ(3, ftms04->GetCalibrationType());
  for (double index : {0.0, 100.0, 1023.0}) {
    const double f = 10000.0 + index * (90000.0 / 1024.0);
    EXPECT_NEAR(5e7 / f, ftms04->DIndexToMass(index), 1e-9 * (5e7 / f));
  }
  for (double m : {600.0, 2500.0}) {
    const double f = 2e6 / (m * m) + 5e7 / m;
    const double index = (f - 10000.0) / (90000.0 / 1024.0);
    EXPECT_NEAR(m, ftms15->DIndexToMass(index), 1e-9 * m);
  }
  // Past the transient the index is held at its last point.
  EXPECT_NEAR(5e7 / (10000.0 + 1023.0 * (90000.0 / 1024.0)), ftms04->DIndexToMass(5000.0), 1e-9);
}

TEST_F(RowDecoders, FtmsModesAreValidatedByTheConstants) {
  EXPECT_EQ(
      "CalibrationConstantsFunctionalFTMS1356 c'tor: Invalid FTMS Mode: 1, 3, 5 and 6 are valid",
      thrownText<std::invalid_argument>(
          [&] { io::getMzTrafoFtms1356(row("4, 2e6, 5e7, 1e5, 10000.0, 90000.0, 1024"), 2); }));
}

}  // namespace
