#include "calibration_access/oxa_calibration_reader_impl.h"

#include <boost/format.hpp>
#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string>
#include <utility>

#include "calibration_access/calibration_row_decoders.h"
#include "calibration_access/frame_temperatures.h"
#include "calibration_core/constants/measurement_mode_info.h"
#include "calibration_core/temperature/temperature_compensation.h"
#include "logging/log_stream.h"
#include "reader/corrupt_data_error.h"  // header-only: the analysis data error class
#include "sql/cppsqlite3.h"
#include "sql/cppsqlite_tools.h"
#include "sql/read_transaction.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace kora_calibration {

using lumo::calibration::ICalibrationTransformatorPtr;
using lumo::io::kora::CorruptDataError;
using lumo::logging::Level;
using lumo::logging::LogStream;
namespace access = lumo::io::calibration;

namespace {
// Columns of a fetched MzCalibration row.
enum MzColumn { kModelType = 1, kTimebase, kDelay, kT1, kT2, kDC1, kDC2, kFirstCoefficient };
const char* const kNoCompensationLine =
    "Not performing temperatur compensation, as coeffiecents are 0.0";
}  // namespace

OxaCalibrationReaderImpl::OxaCalibrationReaderImpl(std::shared_ptr<CppSQLite3DB> db)
    : logger(lumo::logging::Logger::getLogger("lumo.io.kora_calibration.OxaCalibrationReaderImpl")),
      database(std::move(db)),
      mzTableReader(*database, "MzCalibration", 6,
                    "c.DigitizerTimebase, c.DigitizerDelay, c.T1, c.T2, c.dC1, c.dC2, ",
                    boost::none),
      mobilityTableReader(*database, "KoraCalibration", 0, "", boost::none) {}

std::unique_ptr<lumo::calibration::kora::ITransformator> OxaCalibrationReaderImpl::getMobTrafo(
    int64_t frameId) const {
  // Both queries in one read: one lock of the file instead of two.
  const lumo::cppsqlite::ReadTransaction transaction(*database);
  int64_t calibrationId;
  try {
    calibrationId = lumo::cppsqlite::simpleCheckedQuery<int64_t>(
        *database, "SELECT KoraCalibration FROM Frames WHERE Id=" + std::to_string(frameId));
  } catch (const std::exception&) {
    const std::string text =
        (boost::format("Frame [%d] does not exist or is missing KoraCalibration") % frameId).str();
    LogStream(logger, Level::ERROR) << text;
    LUMO_THROW(std::runtime_error(text));
  }

  CppSQLite3Query query;
  if (!mobilityTableReader.getRow(calibrationId, query)) return nullptr;
  const int model = query.getIntField(1, 0);
  if (model != 2)
    LUMO_THROW(
        CorruptDataError((boost::format("Unknown KORA calibration model %d") % model).str()));
  return access::getMobTrafoLvrT4T3(query, 2);
}

ICalibrationTransformatorPtr OxaCalibrationReaderImpl::getMzTrafo(int64_t frameId,
                                                                  bool withFrameTemperature) const {
  CppSQLite3Query frame = database->execQuery(
      "SELECT MzCalibration, Polarity, T1, T2 FROM Frames WHERE Id=" + std::to_string(frameId));
  if (frame.eof()) {
    const std::string text = "Frame " + std::to_string(frameId) +
                             " does not exists or is missing MzCalibration/Polarity";
    LogStream(logger, Level::ERROR) << text;
    LUMO_THROW(std::runtime_error(text));
  }
  const int64_t calibrationId = frame.getInt64Field(0, 0);
  const std::string polarity = frame.getStringField(1, "");
  if (polarity != "+" && polarity != "-")
    LUMO_THROW(std::runtime_error("Polarity has wrong format in OXA."));
  const bool negative = polarity == "-";

  CppSQLite3Query query;
  if (!mzTableReader.getRow(calibrationId, query)) return ICalibrationTransformatorPtr();
  // The key is read before any field is converted; T1, T2 of the frame enter
  // the model only at the end, and reading them here cannot fail.
  access::BuiltTransformatorCache::Inputs inputs;
  const bool keyed = access::BuiltTransformatorCache::readRow(query, inputs);
  if (keyed) {
    inputs.withFrameTemperature = withFrameTemperature;
    inputs.negative = negative;
    inputs.T1 = frame.getFloatField(2, 0.0);
    inputs.T2 = frame.getFloatField(3, 0.0);
    bool logsLine = false;
    if (ICalibrationTransformatorPtr built = builtMzTrafo.find(inputs, &logsLine)) {
      if (logsLine) LogStream(logger, Level::TRACE) << kNoCompensationLine;
      return built;
    }
  }
  const int model = query.getIntField(kModelType, 0);
  const double timebase = query.getFloatField(kTimebase, 0.0);
  const double delay = query.getFloatField(kDelay, 0.0);
  access::details::MzCalibTemperatureInfo reference;
  reference.T1 = query.getFloatField(kT1, 0.0);
  reference.T2 = query.getFloatField(kT2, 0.0);
  reference.dC1 = query.getFloatField(kDC1, 0.0);
  reference.dC2 = query.getFloatField(kDC2, 0.0);

  ICalibrationTransformatorPtr transformator;
  if (model == 1)
    transformator = access::getMzTrafoTof(query, kFirstCoefficient, timebase, delay);
  else if (model == 2)
    transformator = access::getMzTrafoTofZrk(query, kFirstCoefficient, timebase, delay);
  else
    LUMO_THROW(CorruptDataError((boost::format("Unknown m/z calibration model %d") % model).str()));

  transformator = lumo::calibration::addTemperatureCompensationInfo(
      transformator, {{reference.T1, reference.T2}, {reference.dC1, reference.dC2}, 3});

  if (!withFrameTemperature) {
    transformator->SetMeasurementModeInfo(
        boost::make_shared<lumo::calibration::Transformation::MeasurementModeInfo>(2, negative, 0,
                                                                                   0));
    return transformator;
  }
  // The frame's temperatures are read only now, once the model is built.
  bool logsLine = false;
  const ICalibrationTransformatorPtr built = access::detail::applyFrameTemperatures(
      transformator, reference, frame.getFloatField(2, 0.0), frame.getFloatField(3, 0.0), logger,
      kNoCompensationLine, &logsLine);
  if (keyed) builtMzTrafo.keep(std::move(inputs), built, logsLine);
  return built;
}

}  // namespace kora_calibration
}  // namespace io
}  // namespace lumo
