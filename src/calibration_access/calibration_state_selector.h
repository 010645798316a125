// Which calibration state of a recalibration store is wanted: by key, or the
// latest or first one, optionally of a given source, optionally only if it is
// complete for the analysis at hand. A copyable value; thread-compatible.
#ifndef KORA_CALIBRATION_ACCESS_CALIBRATION_STATE_SELECTOR_H_
#define KORA_CALIBRATION_ACCESS_CALIBRATION_STATE_SELECTOR_H_

#include <boost/optional.hpp>
#include <cstdint>
#include <string>

class CppSQLite3DB;

namespace lumo {
namespace io {
namespace calibration {

class CalibrationStateSelector {
 public:
  // The default selector: the latest complete state of any source.
  CalibrationStateSelector() = default;
  CalibrationStateSelector(boost::optional<std::string> key, bool latest,
                           boost::optional<std::string> source, bool allowIncomplete)
      : key_(std::move(key)),
        latest_(latest),
        source_(std::move(source)),
        allowIncomplete_(allowIncomplete) {}

  // What the analysis holds; needed for the completeness test.
  void setAnalysisInfo(int64_t frameCount, bool hasPositive, bool hasNegative, bool hasMobility);

  // True when neither a key nor allowIncomplete is set: the one case in which
  // the analysis info must be given before a state is chosen.
  bool needsAnalysisInfo() const { return !key_ && !allowIncomplete_; }

  // The key of the chosen state of the store `db`, by the first rule that
  // applies:
  //   1. a key is set: the key, if exactly one state has it;
  //   2. allowIncomplete: the state of highest (latest) or lowest (first) Id,
  //      of the source if one is set;
  //   3. otherwise the same among the states complete for the analysis: with
  //      frame m/z calibrators, one mapping for each of the frames 1 .. frame
  //      count; without, a reference calibrator for each polarity present;
  //      with hasMobility, also a mobility mapping for each frame.
  // Keys and sources go into the statements unescaped, between single quotes.
  // Throws std::runtime_error: "Calibration state [<key>] does not exist",
  // "Found no [complete ]latest|first calibration state[ with source '<s>']",
  // and for rule 3 without analysis info "Failed to set Analysis Info frame
  // count before calling getUUID" or "... polarity ...". Remembers nothing.
  std::string getUUID(CppSQLite3DB& db) const;

  const boost::optional<std::string>& key() const { return key_; }
  bool latest() const { return latest_; }
  const boost::optional<std::string>& source() const { return source_; }
  bool allowIncomplete() const { return allowIncomplete_; }
  int64_t frameCount() const { return frameCount_; }
  bool hasPositiveFrames() const { return hasPositiveFrames_; }
  bool hasNegativeFrames() const { return hasNegativeFrames_; }
  bool hasMobility() const { return hasMobility_; }

 private:
  boost::optional<std::string> key_;
  bool latest_ = true;
  boost::optional<std::string> source_;
  bool allowIncomplete_ = false;
  int64_t frameCount_ = -1;  // negative: not set
  bool hasPositiveFrames_ = false;
  bool hasNegativeFrames_ = false;
  bool hasMobility_ = false;
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CALIBRATION_STATE_SELECTOR_H_
