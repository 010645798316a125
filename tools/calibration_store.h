// What the writer puts into calibration.sqlite, the store of later
// recalibration states of an analysis: its GlobalMetadata and, per state, the
// CalibrationState row, the reference and per-frame m/z calibrations, the
// mobility calibrations, the frame mappings and the digitizer constants.
// Every cell is a SqlValue, so a test can store NULL or a wrong type (ids,
// model numbers and flags are declared INTEGER, as in the store's schema, so
// a number given as text is stored as a number there); tables can be left
// out and the metadata changed, for broken stores.
//
// Use: build a CalibrationStoreSpec, then
//   analysis_spec.calibrationStore = store.tables();
#ifndef KORA_TOOLS_CALIBRATION_STORE_H_
#define KORA_TOOLS_CALIBRATION_STORE_H_

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/analysis_spec.h"
#include "tools/calibration_rows.h"

namespace lumo {
namespace writer {

// One calibration state. The rows of its calibration tables are held
// without their CalibrationState cell, which tables() inserts (third
// column) from `id`. Thread-compatible.
struct CalibrationStateSpec {
  int64_t id = 1;
  SqlValue key;
  SqlValue source;
  SqlValue hasFrameCalibrators = 0;
  SqlValue positiveReferenceCalibratorId;  // NULL: none
  SqlValue negativeReferenceCalibratorId;  // NULL: none

  // The DigitizerConstants row of the state (time base, delay); none when
  // empty.
  std::optional<std::pair<SqlValue, SqlValue>> digitizer;

  // RefMzCalibration rows: Id, ModelType, T1, T2, dC1, dC2, C0, ...
  std::vector<Row> referenceCalibrations;
  // FrameMzCalibration rows: Id, ModelType, C0, ...
  std::vector<Row> frameCalibrations;
  // KoraCalibration rows: Id, ModelType, C0, ...
  std::vector<Row> mobilityCalibrations;
  // FrameMzCalibrationMapping and KoraCalibrationMapping rows: (FrameId,
  // calibration Id).
  std::vector<std::pair<int64_t, int64_t>> frameCalibrationMapping;
  std::vector<std::pair<int64_t, int64_t>> mobilityMapping;

  // Appends the RefMzCalibration row `calibration_id` and names it as the
  // reference calibrator of the polarity.
  CalibrationStateSpec& addReference(bool negative, int64_t calibration_id,
                                     const ReferenceTemperatures& reference, const MzModel& model);
  // Appends the FrameMzCalibration row `calibration_id` (once) and maps each
  // of `frame_ids` to it; sets hasFrameCalibrators to 1.
  CalibrationStateSpec& addFrameCalibration(int64_t calibration_id, const MzModel& model,
                                            const std::vector<int64_t>& frame_ids);
  // Appends the KoraCalibration row `calibration_id` and maps each of
  // `frame_ids` to it.
  CalibrationStateSpec& addMobilityCalibration(int64_t calibration_id, const MobilityRamp& ramp,
                                               const std::vector<int64_t>& frame_ids);
};

// A reference-calibration row of the ion-trap model (ModelType 3) laid out
// for the store's reader, which takes the model's five numbers from the
// columns T1, T2, dC1, dC2, C0: c0, c1, c2, begin raw mass, measurements
// per raw mass, in this order.
Row halyardReferenceRow(int64_t id, double c0, double c1, double c2, double beginRawMass,
                        double measurementsPerRawMass);

// frames 1 .. n, the ids of an analysis whose frames are numbered without
// gaps.
std::vector<int64_t> frameIds(int64_t n);

// The whole of calibration.sqlite. Thread-compatible.
struct CalibrationStoreSpec {
  GlobalMetadata metadata;
  std::vector<CalibrationStateSpec> states;  // CalibrationState rows, in this order

  // Coefficient columns C0 .. of each calibration table: at least this many,
  // more if a row needs them.
  unsigned int referenceCoefficients = 5;
  unsigned int frameCoefficients = 5;
  unsigned int mobilityCoefficients = 10;

  // Tables not written: any of "GlobalMetadata", "CalibrationState",
  // "RefMzCalibration", "FrameMzCalibration", "FrameMzCalibrationMapping",
  // "KoraCalibration", "KoraCalibrationMapping", "DigitizerConstants".
  std::set<std::string> omitTables;

  // A sound store without states: SchemaType "CALIBRATION_SQLITE",
  // SchemaVersionMajor "1", SchemaVersionMinor "0".
  static CalibrationStoreSpec make();

  // Appends a state with id = number of states + 1, the given key and
  // source, and the digitizer constants (timebase, delay) of `head`.
  CalibrationStateSpec& addState(const std::string& key, const std::string& source,
                                 const MzCalibrationHead& head = MzCalibrationHead());

  // The tables, rows included, for AnalysisSpec::calibrationStore.
  std::vector<Table> tables() const;
};

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_CALIBRATION_STORE_H_
