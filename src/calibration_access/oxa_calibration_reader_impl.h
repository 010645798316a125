// The instrument calibration of an analysis: per frame, the m/z and the
// mobility transformator that analysis.oxa itself holds (tables Frames,
// MzCalibration and KoraCalibration). Every call queries anew and returns a
// new transformator that the caller owns; the last m/z transformator built is
// kept with the values it was built from, and a call that reads the same
// values returns a copy of it rather than building again.
//
// Thread-compatible: one thread at a time, as the connection it shares.
#ifndef KORA_CALIBRATION_ACCESS_OXA_CALIBRATION_READER_IMPL_H_
#define KORA_CALIBRATION_ACCESS_OXA_CALIBRATION_READER_IMPL_H_

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>

#include "calibration_access/built_transformator_cache.h"
#include "calibration_access/calibration_table_reader.h"
#include "calibration_core/transformation/calibration_transformator.h"
#include "logging/logger.h"
#include "mobility/transformation.h"

class CppSQLite3DB;

namespace lumo {
namespace io {
namespace kora_calibration {

class OxaCalibrationReaderImpl : boost::noncopyable {
 public:
  // `db` is the open connection of analysis.oxa, shared with the analysis
  // reader. Throws when MzCalibration or KoraCalibration has too few columns
  // ("Too few columns in table <name>") or is missing.
  explicit OxaCalibrationReaderImpl(std::shared_ptr<CppSQLite3DB> db);

  // The mobility transformator of the frame; empty when the frame's
  // KoraCalibration row does not exist. Throws std::runtime_error "Frame
  // [<id>] does not exist or is missing KoraCalibration" for an unknown frame
  // or a NULL KoraCalibration, lumo::io::kora::CorruptDataError "Unknown KORA
  // calibration model <n>" for a ModelType other than 2.
  std::unique_ptr<lumo::calibration::kora::ITransformator> getMobTrafo(int64_t frameId) const;

  // The m/z transformator of the frame, with the temperature coefficients of
  // its calibration row; empty when the frame's MzCalibration row does not
  // exist. With `withFrameTemperature` the frame's T1, T2 are applied (the
  // calibration compensated for them, or only recorded when both
  // coefficients are 0.0); without, the transformator carries a measurement
  // mode of the frame's polarity instead. Throws std::runtime_error "Frame
  // <id> does not exists or is missing MzCalibration/Polarity", "Polarity has
  // wrong format in OXA." (before the calibration row is read), and
  // lumo::io::kora::CorruptDataError "Unknown m/z calibration model <n>" for
  // a ModelType other than 1 and 2.
  boost::shared_ptr<lumo::calibration::ICalibrationTransformator> getMzTrafo(
      int64_t frameId, bool withFrameTemperature) const;

 private:
  lumo::logging::Logger logger;
  std::shared_ptr<CppSQLite3DB> database;
  lumo::io::calibration::CalibrationTableReader mzTableReader;
  lumo::io::calibration::CalibrationTableReader mobilityTableReader;
  mutable lumo::io::calibration::BuiltTransformatorCache builtMzTrafo;
};

}  // namespace kora_calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_OXA_CALIBRATION_READER_IMPL_H_
