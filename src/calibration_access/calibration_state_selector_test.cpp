#include "calibration_access/calibration_state_selector.h"

#include <gtest/gtest.h>

#include <string>

#include "sql/cppsqlite3.h"
#include "testing/thrown_text.h"

namespace {

using kora_testing::thrownText;
using lumo::io::calibration::CalibrationStateSelector;

// A store of calibration states in memory: only the tables and columns the
// selector reads.
class SelectorStore : public ::testing::Test {
 protected:
  void SetUp() override {
    db.open(":memory:");
    db.execDML(
        "CREATE TABLE CalibrationState (Id INTEGER PRIMARY KEY, Key TEXT, Source TEXT, "
        "HasFrameCalibrators INTEGER, PositiveReferenceCalibratorId INTEGER, "
        "NegativeReferenceCalibratorId INTEGER)");
    db.execDML(
        "CREATE TABLE FrameMzCalibrationMapping (CalibrationState INTEGER, FrameId INTEGER, "
        "FrameMzCalibrationId INTEGER)");
    db.execDML(
        "CREATE TABLE KoraCalibrationMapping (CalibrationState INTEGER, FrameId INTEGER, "
        "KoraCalibrationId INTEGER)");
  }

  // A state with frame calibrators for frames 1 .. mzFrames and mobility
  // calibrations for frames 1 .. mobilityFrames.
  void frameState(int id, const std::string& key, const std::string& source, int mzFrames,
                  int mobilityFrames) {
    state(id, key, source, 1, "NULL", "NULL");
    mapFrames("FrameMzCalibrationMapping", id, 1, mzFrames);
    mapFrames("KoraCalibrationMapping", id, 1, mobilityFrames);
  }
  // A state with reference calibrators ("NULL" for none) and mobility
  // calibrations for frames 1 .. mobilityFrames.
  void referenceState(int id, const std::string& key, const std::string& source,
                      const std::string& positive, const std::string& negative,
                      int mobilityFrames) {
    state(id, key, source, 0, positive, negative);
    mapFrames("KoraCalibrationMapping", id, 1, mobilityFrames);
  }
  void state(int id, const std::string& key, const std::string& source, int hasFrameCalibrators,
             const std::string& positive, const std::string& negative) {
    db.execDML(("INSERT INTO CalibrationState VALUES (" + std::to_string(id) + ", '" + key +
                "', '" + source + "', " + std::to_string(hasFrameCalibrators) + ", " + positive +
                ", " + negative + ")")
                   .c_str());
  }
  void mapFrames(const std::string& table, int state, int first, int last) {
    for (int f = first; f <= last; ++f)
      db.execDML(("INSERT INTO " + table + " VALUES (" + std::to_string(state) + ", " +
                  std::to_string(f) + ", " + std::to_string(100 + f) + ")")
                     .c_str());
  }

  static CalibrationStateSelector complete(bool latest, boost::optional<std::string> source,
                                           int64_t frames, bool positive, bool negative) {
    CalibrationStateSelector s(boost::none, latest, std::move(source), false);
    s.setAnalysisInfo(frames, positive, negative, true);
    return s;
  }
  std::string failure(const CalibrationStateSelector& s) {
    return thrownText<std::runtime_error>([&] { s.getUUID(db); });
  }

  CppSQLite3DB db;
};

TEST_F(SelectorStore, KeyMustNameExactlyOneState) {
  referenceState(1, "abc", "lab", "1", "NULL", 0);
  referenceState(2, "abc", "lab", "1", "NULL", 0);
  referenceState(3, "def", "lab", "1", "NULL", 0);
  // The analysis info is not looked at: the frame count stays unset.
  EXPECT_EQ("def",
            CalibrationStateSelector(std::string("def"), true, boost::none, false).getUUID(db));
  EXPECT_EQ("Calibration state [abc] does not exist",
            failure(CalibrationStateSelector(std::string("abc"), true, boost::none, false)));
  EXPECT_EQ("Calibration state [xyz] does not exist",
            failure(CalibrationStateSelector(std::string("xyz"), true, boost::none, false)));
}

TEST_F(SelectorStore, NeedsAnalysisInfoOnlyWithoutKeyAndWithCompletenessTest) {
  EXPECT_TRUE(CalibrationStateSelector().needsAnalysisInfo());
  EXPECT_FALSE(
      CalibrationStateSelector(std::string("k"), true, boost::none, false).needsAnalysisInfo());
  EXPECT_FALSE(CalibrationStateSelector(boost::none, true, boost::none, true).needsAnalysisInfo());
}

TEST_F(SelectorStore, IncompleteAllowedPicksLatestOrFirstOfTheSource) {
  referenceState(1, "a1", "lab", "NULL", "NULL", 0);
  referenceState(2, "b2", "other", "NULL", "NULL", 0);
  referenceState(3, "a3", "lab", "NULL", "NULL", 0);
  referenceState(4, "b4", "other", "NULL", "NULL", 0);
  EXPECT_EQ("a3",
            CalibrationStateSelector(boost::none, true, std::string("lab"), true).getUUID(db));
  EXPECT_EQ("a1",
            CalibrationStateSelector(boost::none, false, std::string("lab"), true).getUUID(db));
  EXPECT_EQ("Found no latest calibration state with source 'none'",
            failure(CalibrationStateSelector(boost::none, true, std::string("none"), true)));
}

TEST_F(SelectorStore, IncompleteAllowedWithoutSourceFindsNothing) {
  // The statement has an empty WHERE, which SQLite refuses.
  referenceState(1, "a1", "lab", "1", "1", 0);
  EXPECT_EQ("Found no latest calibration state",
            failure(CalibrationStateSelector(boost::none, true, boost::none, true)));
  EXPECT_EQ("Found no first calibration state",
            failure(CalibrationStateSelector(boost::none, false, boost::none, true)));
}

TEST_F(SelectorStore, SourceWithQuoteBreaksTheStatementAndFindsNothing) {
  referenceState(1, "a1", "o''hara", "1", "1", 3);  // stored as o'hara
  EXPECT_EQ("Found no latest calibration state with source 'o'hara'",
            failure(CalibrationStateSelector(boost::none, true, std::string("o'hara"), true)));
  EXPECT_EQ("Found no complete latest calibration state with source 'o'hara'",
            failure(complete(true, std::string("o'hara"), 3, true, false)));
}

TEST_F(SelectorStore, CompletenessTestNeedsAnalysisInfo) {
  referenceState(1, "a1", "lab", "1", "1", 3);
  EXPECT_EQ("Failed to set Analysis Info frame count before calling getUUID",
            failure(CalibrationStateSelector()));
  CalibrationStateSelector noPolarity;
  noPolarity.setAnalysisInfo(3, false, false, true);
  EXPECT_EQ("Failed to set Analysis Info polarity before calling getUUID", failure(noPolarity));
}

TEST_F(SelectorStore, FrameCalibratorsMustMapEveryFrame) {
  frameState(1, "all", "lab", 3, 3);
  frameState(2, "short", "lab", 2, 3);        // frame 3 missing
  frameState(3, "nomob", "lab", 3, 2);        // mobility of frame 3 missing
  state(4, "gap", "lab", 1, "NULL", "NULL");  // frames 1, 3, 4: MAX 4, COUNT 3
  mapFrames("FrameMzCalibrationMapping", 4, 1, 1);
  mapFrames("FrameMzCalibrationMapping", 4, 3, 4);
  mapFrames("KoraCalibrationMapping", 4, 1, 3);
  EXPECT_EQ("all", complete(true, boost::none, 3, true, true).getUUID(db));
  EXPECT_EQ("all", complete(false, boost::none, 3, true, true).getUUID(db));
}

TEST_F(SelectorStore, LatestAndFirstDifferByIdAmongCompleteStates) {
  frameState(1, "first", "lab", 2, 2);
  frameState(2, "incomplete", "lab", 1, 2);
  frameState(3, "middle", "other", 2, 2);
  frameState(4, "last", "lab", 2, 2);
  frameState(5, "incomplete2", "lab", 2, 1);
  EXPECT_EQ("last", complete(true, boost::none, 2, true, false).getUUID(db));
  EXPECT_EQ("first", complete(false, boost::none, 2, true, false).getUUID(db));
  EXPECT_EQ("middle", complete(true, std::string("other"), 2, true, false).getUUID(db));
  EXPECT_EQ("Found no complete first calibration state with source 'nobody'",
            failure(complete(false, std::string("nobody"), 2, true, false)));
}

TEST_F(SelectorStore, ReferenceCalibratorsMustCoverEveryPolarityPresent) {
  referenceState(1, "both", "lab", "10", "11", 2);
  referenceState(2, "pos", "lab", "12", "NULL", 2);
  referenceState(3, "neg", "lab", "NULL", "13", 2);
  // A state with both reference calibrators serves a single-polarity analysis.
  EXPECT_EQ("both", complete(false, boost::none, 2, true, false).getUUID(db));
  EXPECT_EQ("both", complete(false, boost::none, 2, false, true).getUUID(db));
  EXPECT_EQ("pos", complete(true, boost::none, 2, true, false).getUUID(db));
  EXPECT_EQ("neg", complete(true, boost::none, 2, false, true).getUUID(db));
  EXPECT_EQ("both", complete(true, boost::none, 2, true, true).getUUID(db));
}

TEST_F(SelectorStore, MixedPolarityRefusesAStateWithOnePolarityOnly) {
  referenceState(1, "pos", "lab", "12", "NULL", 2);
  EXPECT_EQ("pos", complete(true, boost::none, 2, true, false).getUUID(db));
  EXPECT_EQ("Found no complete latest calibration state",
            failure(complete(true, boost::none, 2, true, true)));
}

TEST_F(SelectorStore, NoFramesMatchesNoFrameCalibratorState) {
  frameState(1, "frames", "lab", 0, 0);
  EXPECT_EQ("Found no complete latest calibration state",
            failure(complete(true, boost::none, 0, true, false)));
  // Without mobility mappings demanded, a reference state of no frames
  // qualifies; with them, MAX over no rows is NULL and nothing does.
  referenceState(2, "ref", "lab", "1", "NULL", 0);
  CalibrationStateSelector noMobility(boost::none, true, boost::none, false);
  noMobility.setAnalysisInfo(0, true, false, false);
  EXPECT_EQ("ref", noMobility.getUUID(db));
  EXPECT_EQ("Found no complete latest calibration state",
            failure(complete(true, boost::none, 0, true, false)));
}

}  // namespace
