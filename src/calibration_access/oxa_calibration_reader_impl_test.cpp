#include "calibration_access/oxa_calibration_reader_impl.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "calibration_access/reader_test_log.h"
#include "calibration_access/test_calibration_law.h"
#include "calibration_core/temperature/temperature_compensation_constants.h"
#include "reader/corrupt_data_error.h"
#include "sql/cppsqlite3.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::countLines;
using kora_testing::expectTofLaw;
using kora_testing::expectZrkLaw;
using kora_testing::kTofCoefficients;
using kora_testing::kZrkCoefficients;
using kora_testing::readerTestLog;
using kora_testing::thrownText;
using lumo::calibration::ICalibrationConstantsFunctionalTemperatureCompensation;
using lumo::calibration::ICalibrationConstantsFunctionalTemperatureCompensationPtr;
using lumo::calibration::ICalibrationTransformatorPtr;
using lumo::io::kora_calibration::OxaCalibrationReaderImpl;

const char kNoCompensation[] =
    "[TRACE] lumo.io.kora_calibration.OxaCalibrationReaderImpl: Not performing temperatur "
    "compensation, as coeffiecents are 0.0\n";

// analysis.oxa in memory: the Frames columns and the two calibration tables
// that the reader reads.
class OxaCalibrationReader : public ::testing::Test {
 protected:
  void SetUp() override {
    db = std::make_shared<CppSQLite3DB>();
    db->open(":memory:");
    exec(
        "CREATE TABLE Frames (Id INTEGER PRIMARY KEY, MzCalibration, KoraCalibration, Polarity, "
        "T1, T2)");
    std::string cs;
    for (int i = 0; i < 12; ++i) cs += ", C" + std::to_string(i);
    exec(
        "CREATE TABLE MzCalibration (Id, ModelType, DigitizerTimebase, DigitizerDelay, T1, T2, "
        "dC1, dC2" +
        cs + ")");
    exec("CREATE TABLE KoraCalibration (Id, ModelType, C0, C1, C2, C3, C4, C5, C6, C7, C8, C9)");
  }
  void exec(const std::string& sql) { db->execDML(sql.c_str()); }
  // A frame row; `cells`: MzCalibration, KoraCalibration, Polarity, T1, T2.
  void frame(int id, const std::string& cells) {
    exec("INSERT INTO Frames VALUES (" + std::to_string(id) + ", " + cells + ")");
  }
  // The TOF row of the test law with reference temperatures and factors
  // `temperatures` (T1, T2, dC1, dC2).
  void tofRow(int id, const std::string& temperatures, int model = 1) {
    exec(
        "INSERT INTO MzCalibration (Id, ModelType, DigitizerTimebase, DigitizerDelay, T1, T2, "
        "dC1, dC2, C0, C1, C2, C3, C4) VALUES (" +
        std::to_string(id) + ", " + std::to_string(model) + ", 0.25, 20000.0, " + temperatures +
        ", " + kTofCoefficients + ")");
  }
  static ICalibrationConstantsFunctionalTemperatureCompensationPtr temperatureConstants(
      const ICalibrationTransformatorPtr& t) {
    return boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalTemperatureCompensation>(
        t->GetFunctionalConstants());
  }

  std::shared_ptr<CppSQLite3DB> db;
};

// --- Mobility -------------------------------------------------------------

TEST_F(OxaCalibrationReader, MobilityOfAFrameIsItsRampAndLaw) {
  exec(
      "INSERT INTO KoraCalibration VALUES (5, 2, 0, 100, 200.0, 100.0, 0.0, 1, 0.0, 125.0, 50.0, "
      "210.0)");
  frame(1, "1, 5, '+', 25.0, 25.0");
  frame(2, "1, 6, '+', 25.0, 25.0");  // no row 6
  OxaCalibrationReaderImpl reader(db);
  auto t = reader.getMobTrafo(1);
  ASSERT_TRUE(t);
  // Ramp: 200 V at scan 0 down to 100 V at scan 100; 1/K0 = v / 125.
  EXPECT_DOUBLE_EQ(150.0, t->scanNumToVoltage(50.0));
  EXPECT_DOUBLE_EQ(150.0 / 125.0, t->scanNumToOneOverK0(50.0));
  EXPECT_FALSE(reader.getMobTrafo(2));
}

TEST_F(OxaCalibrationReader, MobilityOfAnUnknownFrameOrNullCalibrationFails) {
  exec(
      "INSERT INTO KoraCalibration VALUES (5, 3, 0, 100, 200.0, 100.0, 0.0, 1, 0.0, 125.0, 50.0, "
      "210.0)");
  frame(1, "1, NULL, '+', 25.0, 25.0");
  frame(2, "1, 5, '+', 25.0, 25.0");
  OxaCalibrationReaderImpl reader(db);
  const size_t before = readerTestLog().size();
  EXPECT_EQ("Frame [1] does not exist or is missing KoraCalibration",
            thrownText<std::runtime_error>([&] { reader.getMobTrafo(1); }));
  EXPECT_EQ("Frame [-7] does not exist or is missing KoraCalibration",
            thrownText<std::runtime_error>([&] { reader.getMobTrafo(-7); }));
  EXPECT_EQ(1u, countLines(readerTestLog().substr(before),
                           "[ERROR] lumo.io.kora_calibration.OxaCalibrationReaderImpl: Frame [-7] "
                           "does not exist or is missing KoraCalibration\n"));
  EXPECT_EQ("Unknown KORA calibration model 3",
            thrownText<lumo::io::kora::CorruptDataError>([&] { reader.getMobTrafo(2); }));
}

// --- Mass: failures ---------------------------------------------------------

TEST_F(OxaCalibrationReader, MassOfAnUnknownFrameFails) {
  OxaCalibrationReaderImpl reader(db);
  const size_t before = readerTestLog().size();
  EXPECT_EQ("Frame 12 does not exists or is missing MzCalibration/Polarity",
            thrownText<std::runtime_error>([&] { reader.getMzTrafo(12, true); }));
  EXPECT_EQ(1u, countLines(readerTestLog().substr(before),
                           "[ERROR] lumo.io.kora_calibration.OxaCalibrationReaderImpl: Frame 12 "
                           "does not exists or is missing MzCalibration/Polarity\n"));
}

TEST_F(OxaCalibrationReader, PolarityIsCheckedBeforeTheCalibrationRow) {
  // Calibration 9 does not exist: a good polarity gives an empty result.
  frame(1, "9, 1, '+-', 25.0, 25.0");
  frame(2, "9, 1, '', 25.0, 25.0");
  frame(3, "9, 1, NULL, 25.0, 25.0");
  frame(4, "9, 1, 'x', 25.0, 25.0");
  frame(5, "9, 1, '-', 25.0, 25.0");
  OxaCalibrationReaderImpl reader(db);
  for (int id = 1; id <= 4; ++id)
    EXPECT_EQ("Polarity has wrong format in OXA.",
              thrownText<std::runtime_error>([&] { reader.getMzTrafo(id, true); }));
  EXPECT_FALSE(reader.getMzTrafo(5, true));
  EXPECT_FALSE(reader.getMzTrafo(5, false));
}

TEST_F(OxaCalibrationReader, OnlyTheTwoTofModelsAreKnown) {
  tofRow(1, "25.0, 25.0, 0.0, 0.0", 3);
  frame(1, "1, 1, '+', 25.0, 25.0");
  OxaCalibrationReaderImpl reader(db);
  EXPECT_EQ("Unknown m/z calibration model 3",
            thrownText<lumo::io::kora::CorruptDataError>([&] { reader.getMzTrafo(1, true); }));
}

// --- Mass: temperatures -----------------------------------------------------

TEST_F(OxaCalibrationReader, ZeroCoefficientsRecordTheFrameTemperaturesWithoutCompensating) {
  tofRow(1, "25.0, 30.0, -0.0, 0.0");
  frame(1, "1, 1, '+', 26.0, 33.0");
  OxaCalibrationReaderImpl reader(db);
  const size_t before = readerTestLog().size();
  const ICalibrationTransformatorPtr t = reader.getMzTrafo(1, true);
  expectTofLaw(t, 1.0);
  const auto constants = temperatureConstants(t);
  ASSERT_TRUE(constants);
  EXPECT_EQ(std::vector<double>({26.0, 33.0}), constants->GetTemperatures());
  EXPECT_EQ(3, constants->GetCompensationMode());
  EXPECT_EQ(1u, countLines(readerTestLog().substr(before), kNoCompensation));
  // A second call of the same frame writes the line again.
  expectTofLaw(reader.getMzTrafo(1, true), 1.0);
  EXPECT_EQ(2u, countLines(readerTestLog().substr(before), kNoCompensation));
}

TEST_F(OxaCalibrationReader, OneNonZeroCoefficientCompensatesForTheFrameTemperatures) {
  // s = 1 + ((25 - 26) * 0 + (30 - 33) * 100) / 1e6.
  tofRow(1, "25.0, 30.0, 0.0, 100.0");
  frame(1, "1, 1, '-', 26.0, 33.0");
  OxaCalibrationReaderImpl reader(db);
  const size_t before = readerTestLog().size();
  const ICalibrationTransformatorPtr t = reader.getMzTrafo(1, true);
  expectTofLaw(t, 1.0 + (-300.0) / 1000000.0);
  const auto constants = temperatureConstants(t);
  ASSERT_TRUE(constants);
  EXPECT_EQ(std::vector<double>({26.0, 33.0}), constants->GetTemperatures());
  EXPECT_EQ(3, constants->GetCompensationMode());
  EXPECT_EQ(0u, countLines(readerTestLog().substr(before), kNoCompensation));
}

TEST_F(OxaCalibrationReader, BothSensorsCount) {
  // s = 1 + ((20 - 21) * 10 + (30 - 33) * 100) / 1e6 = 0.99969.
  tofRow(1, "20.0, 30.0, 10.0, 100.0");
  frame(1, "1, 1, '+', 21.0, 33.0");
  OxaCalibrationReaderImpl reader(db);
  expectTofLaw(reader.getMzTrafo(1, true), 0.99969);
}

TEST_F(OxaCalibrationReader, ZrkModelIsCompensatedUnderItsCorrection) {
  // s as in BothSensorsCount.
  exec(std::string(
           "INSERT INTO MzCalibration (Id, ModelType, DigitizerTimebase, DigitizerDelay, T1, "
           "T2, dC1, dC2, C0, C1, C2, C3, C4, C5, C6, C7, C8, C9) VALUES (1, 2, 0.25, "
           "20000.0, 20.0, 30.0, 10.0, 100.0, ") +
       kZrkCoefficients + ")");
  frame(1, "1, 1, '+', 21.0, 33.0");
  OxaCalibrationReaderImpl reader(db);
  expectZrkLaw(reader.getMzTrafo(1, true), 0.99969);
}

TEST_F(OxaCalibrationReader, NullReferenceCellsReadAsZero) {
  tofRow(1, "NULL, NULL, NULL, NULL");
  frame(1, "1, 1, '+', 26.0, NULL");
  OxaCalibrationReaderImpl reader(db);
  const ICalibrationTransformatorPtr t = reader.getMzTrafo(1, true);
  expectTofLaw(t, 1.0);
  EXPECT_EQ(std::vector<double>({26.0, 0.0}), temperatureConstants(t)->GetTemperatures());
}

TEST_F(OxaCalibrationReader, WithoutFrameTemperatureTheFrameGivesOnlyItsPolarity) {
  tofRow(1, "25.0, 30.0, 10.0, 100.0");
  frame(1, "1, 1, '-', 40.0, 50.0");
  frame(2, "1, 1, '+', 40.0, 50.0");
  OxaCalibrationReaderImpl reader(db);
  const ICalibrationTransformatorPtr negative = reader.getMzTrafo(1, false);
  expectTofLaw(negative, 1.0);
  const auto constants = temperatureConstants(negative);
  ASSERT_TRUE(constants);
  EXPECT_EQ(std::vector<double>({25.0, 30.0}), constants->GetTemperatures());
  EXPECT_EQ(std::vector<double>({10.0, 100.0}), constants->GetCorrectionFactors());
  EXPECT_EQ(3, constants->GetCompensationMode());
  ASSERT_TRUE(negative->GetMeasurementModeInfo());
  EXPECT_EQ(1, negative->GetMeasurementModeInfo()->GetPolarity());
  EXPECT_EQ(2, negative->GetMeasurementModeInfo()->GetAcquisitionMode());
  EXPECT_EQ(0, negative->GetMeasurementModeInfo()->GetScanMode());
  EXPECT_EQ(0, reader.getMzTrafo(2, false)->GetMeasurementModeInfo()->GetPolarity());
}

// --- Repeated calls ---------------------------------------------------------

TEST_F(OxaCalibrationReader, RepeatedCallsSeeEveryChangeOfTheRowsRead) {
  tofRow(1, "20.0, 30.0, 10.0, 100.0");
  frame(1, "1, 1, '+', 21.0, 33.0");
  OxaCalibrationReaderImpl reader(db);
  expectTofLaw(reader.getMzTrafo(1, true), 0.99969);
  expectTofLaw(reader.getMzTrafo(1, true), 0.99969);
  // s = 1 + ((20 - 22) * 10 + (30 - 33) * 100) / 1e6.
  exec("UPDATE Frames SET T1 = 22.0 WHERE Id = 1");
  expectTofLaw(reader.getMzTrafo(1, true), 0.99968);
  exec("UPDATE MzCalibration SET dC1 = 0.0, dC2 = 0.0 WHERE Id = 1");
  expectTofLaw(reader.getMzTrafo(1, true), 1.0);
  // The same cell values stored as integers, then as text, build the same law.
  exec("UPDATE Frames SET T1 = 22, T2 = '33.0' WHERE Id = 1");
  expectTofLaw(reader.getMzTrafo(1, true), 1.0);
  expectTofLaw(reader.getMzTrafo(1, true), 1.0);
  exec("UPDATE MzCalibration SET ModelType = 9 WHERE Id = 1");
  EXPECT_EQ("Unknown m/z calibration model 9", thrownText([&] { reader.getMzTrafo(1, true); }));
  exec("UPDATE Frames SET Polarity = '-' WHERE Id = 1");
  EXPECT_EQ("Unknown m/z calibration model 9", thrownText([&] { reader.getMzTrafo(1, true); }));
}

TEST_F(OxaCalibrationReader, RepeatedCallGivesATransformatorOfItsOwn) {
  OxaCalibrationReaderImpl reader(db);
  tofRow(1, "20.0, 30.0, 10.0, 100.0");
  frame(1, "1, 1, '+', 21.0, 33.0");
  const ICalibrationTransformatorPtr first = reader.getMzTrafo(1, true);
  const ICalibrationTransformatorPtr second = reader.getMzTrafo(1, true);
  ASSERT_NE(first.get(), second.get());
  // Changing what one call returned changes nothing of the next call's.
  first->SetFunctionalConstants(reader.getMzTrafo(1, false)->GetFunctionalConstants());
  EXPECT_EQ(std::vector<double>({20.0, 30.0}), temperatureConstants(first)->GetTemperatures());
  expectTofLaw(reader.getMzTrafo(1, true), 0.99969);
  expectTofLaw(second, 0.99969);
}

TEST_F(OxaCalibrationReader, RepeatedCallOfTheOtherPolarityOrFormIsBuiltForIt) {
  tofRow(1, "25.0, 30.0, 10.0, 100.0");
  frame(1, "1, 1, '-', 40.0, 50.0");
  frame(2, "1, 1, '+', 40.0, 50.0");
  OxaCalibrationReaderImpl reader(db);
  EXPECT_EQ(1, reader.getMzTrafo(1, false)->GetMeasurementModeInfo()->GetPolarity());
  EXPECT_EQ(0, reader.getMzTrafo(2, false)->GetMeasurementModeInfo()->GetPolarity());
  EXPECT_FALSE(reader.getMzTrafo(2, true)->GetMeasurementModeInfo());
  EXPECT_EQ(0, reader.getMzTrafo(2, false)->GetMeasurementModeInfo()->GetPolarity());
}

}  // namespace
