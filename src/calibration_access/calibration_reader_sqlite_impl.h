// The state behind CalibrationReaderSqlite: the connection to
// calibration.sqlite, the chosen state and what was read of it at opening,
// the table readers, the prepared frame mapping statement and the two
// reference transformator slots. See calibration_reader_sqlite.h for the
// operations and their failures.
//
// Thread-compatible, apart from the reference slots (std::call_once each,
// through detail::RetryingOnce).
#ifndef KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_IMPL_H_
#define KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_IMPL_H_

#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>

#include "calibration_access/calibration_state_selector.h"
#include "calibration_access/calibration_table_reader.h"
#include "calibration_access/frame_temperatures.h"
#include "calibration_access/retrying_once.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "logging/logger.h"
#include "mobility/transformation.h"
#include "sql/cppsqlite3.h"

namespace lumo {
namespace io {
namespace calibration {

class CalibrationReaderSqliteImpl : boost::noncopyable {
 public:
  using MzTrafoPtr = boost::shared_ptr<lumo::calibration::ICalibrationTransformator>;
  // A reference transformator with the temperatures and coefficients of its
  // calibration.
  using ReferenceMzTrafo = std::tuple<MzTrafoPtr, details::MzCalibTemperatureInfo>;

  CalibrationReaderSqliteImpl(const boost::filesystem::path& analysisDirectory,
                              const CalibrationStateSelector& selector);

  std::unique_ptr<lumo::calibration::kora::ITransformator> getMobTrafo(int64_t frameId);
  MzTrafoPtr getMzTrafo(const int64_t frameId);
  MzTrafoPtr getMzTrafo(int64_t frameId, bool negative, double T1, double T2,
                        bool attachTemperatures);
  bool hasFrameCalibrators() const { return frameCalibrators; }
  const std::string& getCalibrationStateKey() const { return stateKey; }

 private:
  // The frame's own transformator through the mapping statement.
  MzTrafoPtr loadFrameMzTrafo(const int64_t frameId) const;
  // The stored reference of the polarity, loaded on first use.
  const ReferenceMzTrafo& getRefMzTrafo(bool negative) const;
  boost::optional<ReferenceMzTrafo> loadRefMzTrafo(bool negative) const;
  // Throws on failure, after logging at ERROR.
  [[noreturn]] void fail(const std::string& text) const;

  struct ReferenceSlot {
    detail::RetryingOnce loaded;
    boost::optional<ReferenceMzTrafo> trafo;
  };

  lumo::logging::Logger logger;
  std::shared_ptr<CppSQLite3DB> database;
  int stateId = 0;
  std::string stateKey;
  int schemaVersionMajor = 0;
  int schemaVersionMinor = 0;
  bool frameCalibrators = false;
  boost::optional<std::pair<double, double>> digitizerConstants;  // time base, delay
  std::unique_ptr<CalibrationTableReader> refMzTableReader;
  std::unique_ptr<CalibrationTableReader> frameMzTableReader;
  std::unique_ptr<CalibrationTableReader> mobilityTableReader;
  // One parameter, the frame id. Executed by const operations: statement
  // state is not part of the reader's observable state.
  mutable CppSQLite3Statement frameMappingStatement;
  // Index 0 positive, 1 negative.
  mutable ReferenceSlot referenceSlots[2];
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CALIBRATION_READER_SQLITE_IMPL_H_
