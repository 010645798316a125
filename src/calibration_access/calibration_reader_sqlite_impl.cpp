#include "calibration_access/calibration_reader_sqlite_impl.h"

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <boost/make_shared.hpp>
#include <stdexcept>

#include "calibration_access/calibration_row_decoders.h"
#include "calibration_access/corrupt_data_error.h"
#include "calibration_core/constants/measurement_mode_info.h"
#include "calibration_core/temperature/temperature_compensation.h"
#include "logging/log_stream.h"
#include "sql/cppsqlite_tools.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace calibration {

namespace fs = boost::filesystem;
using lumo::cppsqlite::simpleCheckedQuery;
using lumo::logging::Level;
using lumo::logging::LogStream;
using MzTrafoPtr = CalibrationReaderSqliteImpl::MzTrafoPtr;

namespace {

// The m/z models of RefMzCalibration and FrameMzCalibration.
enum class MzModel { kTof = 1, kTofZrk = 2, kHalyard = 3, kFtms04 = 4, kFtms1356 = 5 };

MzModel checkedMzModel(int modelType) {
  if (modelType < 1 || modelType > 5)
    LUMO_THROW(
        std::invalid_argument("Unknown m / z calibration model " + std::to_string(modelType)));
  return static_cast<MzModel>(modelType);
}

[[noreturn]] void unknownModel(const char* format, MzModel model) {
  LUMO_THROW(CorruptDataError((boost::format(format) % static_cast<int>(model)).str()));
}

std::string noTrafoText(int64_t id) {
  return "No m/z trafo for id [" + std::to_string(id) + "] available";
}

void setMeasurementMode(const MzTrafoPtr& transformator, bool negative) {
  transformator->SetMeasurementModeInfo(
      boost::make_shared<lumo::calibration::Transformation::MeasurementModeInfo>(2, negative, 0,
                                                                                 0));
}

}  // namespace

void CalibrationReaderSqliteImpl::fail(const std::string& text) const {
  LogStream(logger, Level::ERROR) << text;
  LUMO_THROW(std::runtime_error(text));
}

CalibrationReaderSqliteImpl::CalibrationReaderSqliteImpl(const fs::path& analysisDirectory,
                                                         const CalibrationStateSelector& selector)
    : logger(lumo::logging::Logger::getLogger("io.calibration.CalibrationReaderSqliteImpl")),
      database(std::make_shared<CppSQLite3DB>()) {
  boost::system::error_code ec;
  const fs::file_status status = fs::status(analysisDirectory, ec);
  if (status.type() == fs::status_error || status.type() == fs::file_not_found)
    fail("Specified analysis directory does not exist");
  if (status.type() != fs::directory_file) fail("Specified path is not a directory");
  const fs::path file = analysisDirectory / "calibration.sqlite";
  if (!fs::exists(file, ec)) fail(file.string() + " doesn't exist");

  database->open(file.string());  // paths are UTF-8 on this platform
  const std::string schemaType = simpleCheckedQuery<std::string>(
      *database, "SELECT Value FROM GlobalMetadata WHERE Key='SchemaType'");
  if (schemaType != "CALIBRATION_SQLITE") fail("Schema type '" + schemaType + "' not supported");

  try {
    stateKey = selector.getUUID(*database);
  } catch (const std::exception& e) {
    fail(std::string("No matching calibration state found, reason ") + e.what());
  }
  if (!simpleCheckedQuery<bool>(
          *database, "SELECT COUNT(*) FROM CalibrationState WHERE Key='" + stateKey + "'"))
    fail("Requested calibration state " + stateKey + " does not exist");
  LogStream(logger, Level::DEBUG) << boost::format("Using calibration state %1% for analysis %2%") %
                                         stateKey % analysisDirectory;

  database->execDML("PRAGMA busy_timeout=15000");
  schemaVersionMajor = simpleCheckedQuery<int>(
      *database, "SELECT Value FROM GlobalMetadata WHERE Key='SchemaVersionMajor'");
  schemaVersionMinor = simpleCheckedQuery<int>(
      *database, "SELECT Value FROM GlobalMetadata WHERE Key='SchemaVersionMinor'");
  if (schemaVersionMajor >= 2)
    fail((boost::format("calibration schema version %d.%d not supported.") % schemaVersionMajor %
          schemaVersionMinor)
             .str());

  stateId = simpleCheckedQuery<int>(*database,
                                    "SELECT Id From CalibrationState WHERE Key='" + stateKey + "'");
  refMzTableReader.reset(new CalibrationTableReader(*database, "RefMzCalibration", 4,
                                                    "c.T1, c.T2, c.dC1, c.dC2, ", stateId));
  frameMzTableReader.reset(
      new CalibrationTableReader(*database, "FrameMzCalibration", 0, "", stateId));
  mobilityTableReader.reset(
      new CalibrationTableReader(*database, "KoraCalibration", 0, "", stateId));

  const std::string state = std::to_string(stateId);
  frameCalibrators = simpleCheckedQuery<bool>(
      *database, "SELECT HasFrameCalibrators FROM CalibrationState WHERE Id=" + state);
  CppSQLite3Query digitizer = database->execQuery(
      "SELECT DigitizerTimebase, DigitizerDelay FROM DigitizerConstants WHERE CalibrationState=" +
      state);
  if (!digitizer.eof())
    digitizerConstants.emplace(digitizer.getFloatField(0, 0.0), digitizer.getFloatField(1, 0.0));
  else
    LogStream(logger, Level::INFO) << "No digitizer constants in calibration state " << stateKey;

  // The state id stands between quotes: the column's integer affinity turns
  // the text back into a number.
  frameMappingStatement = database->compileStatement(
      "SELECT FrameMzCalibrationId FROM FrameMzCalibrationMapping WHERE CalibrationState='" +
      state + "' AND FrameId=?");
}

std::unique_ptr<lumo::calibration::kora::ITransformator> CalibrationReaderSqliteImpl::getMobTrafo(
    int64_t frameId) {
  int64_t calibrationId;
  try {
    calibrationId = simpleCheckedQuery<int64_t>(
        *database, (boost::format("SELECT KoraCalibrationId FROM KoraCalibrationMapping WHERE "
                                  "CalibrationState=%d AND FrameId=%d") %
                    stateId % frameId)
                       .str());
  } catch (const std::exception&) {
    LUMO_THROW(std::runtime_error(
        (boost::format("Missing KoraCalibrator mapping for Frame [%d]") % frameId).str()));
  }
  CppSQLite3Query query;
  if (!mobilityTableReader->getRow(calibrationId, query))
    LUMO_THROW(std::runtime_error("No mobility trafo for id [" + std::to_string(calibrationId) +
                                  "] available"));
  const int model = query.getIntField(1, 0);
  if (model != 2)
    LUMO_THROW(
        CorruptDataError((boost::format("Unknown KORA calibration model %d") % model).str()));
  return getMobTrafoLvrT4T3(query, 2);
}

MzTrafoPtr CalibrationReaderSqliteImpl::getMzTrafo(const int64_t frameId) {
  if (!frameCalibrators) LUMO_THROW(std::runtime_error("No frame m/z trafos available"));
  return loadFrameMzTrafo(frameId);
}

MzTrafoPtr CalibrationReaderSqliteImpl::loadFrameMzTrafo(const int64_t frameId) const {
  frameMappingStatement.bind(1, frameId);
  CppSQLite3Query mapping = frameMappingStatement.execQuery();
  if (mapping.eof()) {
    frameMappingStatement.reset();
    LUMO_THROW(std::runtime_error(noTrafoText(frameId)));
  }
  const int64_t calibrationId = mapping.getInt64Field(0, 0);
  frameMappingStatement.reset();

  CppSQLite3Query query;
  if (!frameMzTableReader->getRow(calibrationId, query))
    LUMO_THROW(std::runtime_error(noTrafoText(calibrationId)));
  const MzModel model = checkedMzModel(query.getIntField(1, 0));
  switch (model) {
    case MzModel::kTof:
      if (!digitizerConstants)
        LUMO_THROW(std::runtime_error(
            "Missing digitizer constants, unable to load tof m/z transformators"));
      return getMzTrafoTof(query, 2, digitizerConstants->first, digitizerConstants->second);
    case MzModel::kTofZrk:
      if (!digitizerConstants)
        LUMO_THROW(std::runtime_error(
            "Missing digitizer constants, unable to load tof zrk m/z transformators"));
      return getMzTrafoTofZrk(query, 2, digitizerConstants->first, digitizerConstants->second);
    case MzModel::kHalyard:
      return getMzTrafoHalyard(query, 2);
    case MzModel::kFtms04:
      return getMzTrafoFtms04(query, 2);
    case MzModel::kFtms1356:
      return getMzTrafoFtms1356(query, 2);
  }
  unknownModel("Unknown m/z calibration model %d", model);
}

boost::optional<CalibrationReaderSqliteImpl::ReferenceMzTrafo>
CalibrationReaderSqliteImpl::loadRefMzTrafo(bool negative) const {
  CppSQLite3Query reference = database->execQuery(
      (boost::format("SELECT %s FROM CalibrationState WHERE Id=%d") %
       (negative ? "NegativeReferenceCalibratorId" : "PositiveReferenceCalibratorId") % stateId)
          .str());
  if (reference.eof() || reference.fieldIsNull(0)) return boost::none;
  const int64_t calibrationId = reference.getInt64Field(0, 0);

  CppSQLite3Query query;
  if (!refMzTableReader->getRow(calibrationId, query))
    LUMO_THROW(std::runtime_error(noTrafoText(calibrationId)));
  const MzModel model = checkedMzModel(query.getIntField(1, 0));
  // Columns: Id, ModelType, T1, T2, dC1, dC2, C0, ...
  details::MzCalibTemperatureInfo temperatures;
  MzTrafoPtr transformator;
  switch (model) {
    case MzModel::kTof:
    case MzModel::kTofZrk:
      if (!digitizerConstants)
        LUMO_THROW(std::runtime_error(
            "Missing digitizer constants, unable to load tof m/z transformators"));
      transformator =
          model == MzModel::kTof
              ? getMzTrafoTof(query, 6, digitizerConstants->first, digitizerConstants->second)
              : getMzTrafoTofZrk(query, 6, digitizerConstants->first, digitizerConstants->second);
      temperatures.T1 = query.getFloatField(2, 0.0);
      temperatures.T2 = query.getFloatField(3, 0.0);
      temperatures.dC1 = query.getFloatField(4, 0.0);
      temperatures.dC2 = query.getFloatField(5, 0.0);
      transformator = lumo::calibration::addTemperatureCompensationInfo(
          transformator,
          {{temperatures.T1, temperatures.T2}, {temperatures.dC1, temperatures.dC2}, 3});
      break;
    case MzModel::kHalyard:
      // The ion trap's five numbers start at T1, not at C0; its temperature
      // info stays zero.
      transformator = getMzTrafoHalyard(query, 2);
      break;
    case MzModel::kFtms04:
      LUMO_THROW(std::runtime_error("FTMS04 as reference trafo is not supported."));
    case MzModel::kFtms1356:
      LUMO_THROW(std::runtime_error("FTMS1356 as reference trafo is not supported."));
    default:
      unknownModel("Unknown m/z calibration model %d", model);
  }
  setMeasurementMode(transformator, negative);
  return ReferenceMzTrafo(transformator, temperatures);
}

const CalibrationReaderSqliteImpl::ReferenceMzTrafo& CalibrationReaderSqliteImpl::getRefMzTrafo(
    bool negative) const {
  ReferenceSlot& slot = referenceSlots[negative ? 1 : 0];
  // A failure leaves the flag unset: the next call tries again.
  slot.loaded.call([&] { slot.trafo = loadRefMzTrafo(negative); });
  if (!slot.trafo)
    LUMO_THROW(
        std::runtime_error((boost::format("no reference calibration available for %s polarity") %
                            (negative ? "negative" : "positive"))
                               .str()));
  return *slot.trafo;
}

MzTrafoPtr CalibrationReaderSqliteImpl::getMzTrafo(int64_t frameId, bool negative, double T1,
                                                   double T2, bool attachTemperatures) {
  if (frameCalibrators) {
    MzTrafoPtr transformator = getMzTrafo(frameId);
    if (attachTemperatures)
      transformator =
          lumo::calibration::addTemperatureCompensationInfo(transformator, {{T1, T2}, {}, 3});
    return transformator;
  }
  // The stored reference itself, not a clone: its constants keep the
  // temperatures of the last call until the next one sets its own.
  const ReferenceMzTrafo& reference = getRefMzTrafo(negative);
  return detail::applyFrameTemperatures(std::get<0>(reference), std::get<1>(reference), T1, T2,
                                        logger,
                                        "Not performing temperature compensation, as coefficients "
                                        "are 0.0");
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
