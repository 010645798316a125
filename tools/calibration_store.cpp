#include "tools/calibration_store.h"

#include <algorithm>

namespace lumo {
namespace writer {

namespace {

// Ids, model numbers and flags are declared INTEGER, as in the store's own
// schema: the reader compares them with quoted numbers (CalibrationState='2'),
// which only an INTEGER column converts. Every other column is untyped, so
// that a cell keeps the storage class it was given.
const char kKey[] = "INTEGER";

// A calibration table: Id, ModelType, CalibrationState, the named columns,
// then C0 .. with at least `coefficients` columns and as many as the longest
// row of any state needs.
Table calibrationTable(const std::string& name, const std::vector<std::string>& named,
                       unsigned int coefficients, const std::vector<CalibrationStateSpec>& states,
                       std::vector<Row> CalibrationStateSpec::*rows) {
  Table t{name, {{"Id", kKey}, {"ModelType", kKey}, {"CalibrationState", kKey}}, {}};
  for (const std::string& column : named) t.columns.push_back({column, ""});
  size_t needed = coefficients;
  for (const CalibrationStateSpec& state : states) {
    for (const Row& row : state.*rows) {
      const size_t head = 2 + named.size();
      if (row.size() > head) needed = std::max(needed, row.size() - head);
      const SqlValue stateCell(state.id);
      Row cells;
      cells.reserve(row.size() + 1);
      for (size_t i = 0; i < row.size(); ++i) {
        if (i == 2) cells.push_back(stateCell);
        cells.push_back(row[i]);
      }
      if (row.size() < 3) cells.push_back(stateCell);
      t.rows.push_back(std::move(cells));
    }
  }
  addCoefficientColumns(t, static_cast<unsigned int>(needed));
  return t;
}

Table mappingTable(const std::string& name, const std::string& target,
                   const std::vector<CalibrationStateSpec>& states,
                   std::vector<std::pair<int64_t, int64_t>> CalibrationStateSpec::*mapping) {
  Table t{name, {{"CalibrationState", kKey}, {"FrameId", kKey}, {target, kKey}}, {}};
  for (const CalibrationStateSpec& state : states) {
    for (const auto& m : state.*mapping) t.rows.push_back({state.id, m.first, m.second});
  }
  return t;
}

}  // namespace

CalibrationStateSpec& CalibrationStateSpec::addReference(bool negative, int64_t calibration_id,
                                                         const ReferenceTemperatures& reference,
                                                         const MzModel& model) {
  Row row{calibration_id, model.modelType, reference.t1,
          reference.t2,   reference.dC1,   reference.dC2};
  row.insert(row.end(), model.coefficients.begin(), model.coefficients.end());
  referenceCalibrations.push_back(std::move(row));
  (negative ? negativeReferenceCalibratorId : positiveReferenceCalibratorId) = calibration_id;
  return *this;
}

CalibrationStateSpec& CalibrationStateSpec::addFrameCalibration(
    int64_t calibration_id, const MzModel& model, const std::vector<int64_t>& frame_ids) {
  Row row{calibration_id, model.modelType};
  row.insert(row.end(), model.coefficients.begin(), model.coefficients.end());
  frameCalibrations.push_back(std::move(row));
  for (int64_t frame : frame_ids) frameCalibrationMapping.emplace_back(frame, calibration_id);
  hasFrameCalibrators = 1;
  return *this;
}

CalibrationStateSpec& CalibrationStateSpec::addMobilityCalibration(
    int64_t calibration_id, const MobilityRamp& ramp, const std::vector<int64_t>& frame_ids) {
  mobilityCalibrations.push_back(koraRampRow(calibration_id, ramp));
  for (int64_t frame : frame_ids) mobilityMapping.emplace_back(frame, calibration_id);
  return *this;
}

Row halyardReferenceRow(int64_t id, double c0, double c1, double c2, double beginRawMass,
                        double measurementsPerRawMass) {
  return {id, 3, c0, c1, c2, beginRawMass, measurementsPerRawMass};
}

std::vector<int64_t> frameIds(int64_t n) {
  std::vector<int64_t> ids;
  for (int64_t i = 1; i <= n; ++i) ids.push_back(i);
  return ids;
}

CalibrationStoreSpec CalibrationStoreSpec::make() {
  CalibrationStoreSpec store;
  store.metadata.set("SchemaType", "CALIBRATION_SQLITE");
  store.metadata.set("SchemaVersionMajor", "1");
  store.metadata.set("SchemaVersionMinor", "0");
  return store;
}

CalibrationStateSpec& CalibrationStoreSpec::addState(const std::string& key,
                                                     const std::string& source,
                                                     const MzCalibrationHead& head) {
  CalibrationStateSpec state;
  state.id = static_cast<int64_t>(states.size()) + 1;
  state.key = key;
  state.source = source;
  state.digitizer.emplace(head.timebase, head.delay);
  states.push_back(std::move(state));
  return states.back();
}

std::vector<Table> CalibrationStoreSpec::tables() const {
  std::vector<Table> all;
  all.push_back(metadataTable(metadata));

  Table stateTable{"CalibrationState",
                   {{"Id", kKey},
                    {"Key", "TEXT"},
                    {"Source", "TEXT"},
                    {"HasFrameCalibrators", kKey},
                    {"PositiveReferenceCalibratorId", kKey},
                    {"NegativeReferenceCalibratorId", kKey}},
                   {}};
  for (const CalibrationStateSpec& s : states) {
    stateTable.rows.push_back({s.id, s.key, s.source, s.hasFrameCalibrators,
                               s.positiveReferenceCalibratorId, s.negativeReferenceCalibratorId});
  }
  all.push_back(std::move(stateTable));

  all.push_back(calibrationTable("RefMzCalibration", {"T1", "T2", "dC1", "dC2"},
                                 referenceCoefficients, states,
                                 &CalibrationStateSpec::referenceCalibrations));
  all.push_back(calibrationTable("FrameMzCalibration", {}, frameCoefficients, states,
                                 &CalibrationStateSpec::frameCalibrations));
  all.push_back(mappingTable("FrameMzCalibrationMapping", "FrameMzCalibrationId", states,
                             &CalibrationStateSpec::frameCalibrationMapping));
  all.push_back(calibrationTable("KoraCalibration", {}, mobilityCoefficients, states,
                                 &CalibrationStateSpec::mobilityCalibrations));
  all.push_back(mappingTable("KoraCalibrationMapping", "KoraCalibrationId", states,
                             &CalibrationStateSpec::mobilityMapping));

  Table digitizer{"DigitizerConstants",
                  {{"CalibrationState", kKey}, {"DigitizerTimebase", ""}, {"DigitizerDelay", ""}},
                  {}};
  for (const CalibrationStateSpec& s : states) {
    if (s.digitizer) digitizer.rows.push_back({s.id, s.digitizer->first, s.digitizer->second});
  }
  all.push_back(std::move(digitizer));

  all.erase(std::remove_if(all.begin(), all.end(),
                           [&](const Table& t) { return omitTables.count(t.name) > 0; }),
            all.end());
  return all;
}

}  // namespace writer
}  // namespace lumo
