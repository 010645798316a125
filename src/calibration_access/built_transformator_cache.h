// The last m/z transformator built from a calibration row, kept with every
// value its build read: the row itself, the frame's polarity and its
// temperatures. A build is a function of those values alone, so a call that
// reads the same values again gets a copy of the kept transformator instead
// of building one. The rows are still read on every call; only the build is
// saved.
//
// Thread-compatible: one thread at a time.
#ifndef KORA_CALIBRATION_ACCESS_BUILT_TRANSFORMATOR_CACHE_H_
#define KORA_CALIBRATION_ACCESS_BUILT_TRANSFORMATOR_CACHE_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

#include "calibration_core/transformation/calibration_transformator.h"

class CppSQLite3Query;

namespace lumo {
namespace io {
namespace calibration {

class BuiltTransformatorCache {
 public:
  // What one build read. Doubles and integers are compared bit for bit.
  struct Inputs {
    std::vector<std::uint64_t> row;  // per column: its type, then its bits
    bool withFrameTemperature = false;
    bool negative = false;
    double T1 = 0.0;
    double T2 = 0.0;
  };

  // Sets inputs.row from the current row of `query`. False, leaving the row
  // unusable as a key, when a column holds text or a blob.
  // REQUIRES: no field of the row has been read yet (SQLite reports the
  // type a field was converted to, not its stored type).
  static bool readRow(const CppSQLite3Query& query, Inputs& inputs);

  // A copy of the kept transformator when `inputs` are the kept ones, else
  // null. `*logsLine` is set to what the kept build logged (see keep).
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> find(const Inputs& inputs,
                                                                       bool* logsLine) const;

  // Keeps `built` (a copy of it) for `inputs`, replacing what was kept;
  // `logsLine` tells whether its build wrote the line that a hit repeats.
  void keep(Inputs inputs,
            const boost::shared_ptr<lumo::calibration::ICalibrationTransformator>& built,
            bool logsLine);

 private:
  Inputs inputs_;
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> kept_;
  bool logsLine_ = false;
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_BUILT_TRANSFORMATOR_CACHE_H_
