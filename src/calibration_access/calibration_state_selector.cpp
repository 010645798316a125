#include "calibration_access/calibration_state_selector.h"

#include <boost/format.hpp>
#include <stdexcept>

#include "sql/cppsqlite3.h"
#include "sql/cppsqlite_tools.h"
#include "sys/throw.h"

namespace lumo {
namespace io {
namespace calibration {

using lumo::cppsqlite::simpleCheckedQuery;

void CalibrationStateSelector::setAnalysisInfo(int64_t frameCount, bool hasPositive,
                                               bool hasNegative, bool hasMobility) {
  frameCount_ = frameCount;
  hasPositiveFrames_ = hasPositive;
  hasNegativeFrames_ = hasNegative;
  hasMobility_ = hasMobility;
}

std::string CalibrationStateSelector::getUUID(CppSQLite3DB& db) const {
  if (key_) {
    const std::string sql = "SELECT COUNT(*) FROM CalibrationState WHERE Key='" + *key_ + "'";
    if (simpleCheckedQuery<int>(db, sql) != 1)
      LUMO_THROW(std::runtime_error("Calibration state [" + *key_ + "] does not exist"));
    return *key_;
  }

  const char* const order = latest_ ? "DESC" : "ASC";
  const char* const which = latest_ ? "latest" : "first";
  const std::string withSource = source_ ? " with source '" + *source_ + "'" : std::string();

  if (allowIncomplete_) {
    // Without a source nothing stands between WHERE and ORDER BY, which SQLite
    // refuses: this rule then always ends in "Found no ...".
    const std::string filter = source_ ? "c.Source='" + *source_ + "'" : std::string();
    const std::string sql =
        (boost::format("SELECT c.Key FROM CalibrationState c WHERE %s ORDER BY Id %s LIMIT 1") %
         filter % order)
            .str();
    try {
      return simpleCheckedQuery<std::string>(db, sql);
    } catch (const std::exception&) {
      LUMO_THROW(std::runtime_error(
          (boost::format("Found no %s calibration state%s") % which % withSource).str()));
    }
  }

  if (frameCount_ < 0)
    LUMO_THROW(
        std::runtime_error("Failed to set Analysis Info frame count before calling getUUID"));
  if (!hasPositiveFrames_ && !hasNegativeFrames_)
    LUMO_THROW(std::runtime_error("Failed to set Analysis Info polarity before calling getUUID"));

  // The first argument of the frame calibrator clause has no directive and
  // no effect; the source is filtered by the clause further down. "%1s" and
  // "%2s" are printf widths, so an absent polarity leaves blanks.
  std::string sql = "SELECT c.Key FROM CalibrationState c WHERE (";
  sql += (boost::format("(c.HasFrameCalibrators=1 AND (SELECT MAX(FrameId) FROM "
                        "FrameMzCalibrationMapping mp WHERE mp.CalibrationState=c.Id)=%2$d AND "
                        "(SELECT COUNT(*) FROM FrameMzCalibrationMapping mp WHERE "
                        "mp.CalibrationState=c.Id)=%2$d)") %
          (source_ ? "c.Source='" + *source_ + "' AND " : std::string()) % frameCount_)
             .str();
  sql += (boost::format(" OR (c.HasFrameCalibrators=0 %1s %2s) )") %
          (hasPositiveFrames_ ? "AND c.PositiveReferenceCalibratorId IS NOT NULL" : "") %
          (hasNegativeFrames_ ? "AND c.NegativeReferenceCalibratorId IS NOT NULL" : ""))
             .str();
  if (hasMobility_)
    sql += (boost::format(" AND (SELECT MAX(FrameId) FROM KoraCalibrationMapping WHERE "
                          "KoraCalibrationMapping.CalibrationState=c.Id)=%1$d AND (SELECT "
                          "COUNT(*) FROM KoraCalibrationMapping WHERE "
                          "KoraCalibrationMapping.CalibrationState=c.Id)=%1$d") %
            frameCount_)
               .str();
  if (source_) sql += " AND c.Source='" + *source_ + "'";
  sql += (boost::format(" ORDER BY Id %1$s LIMIT 1") % order).str();
  try {
    return simpleCheckedQuery<std::string>(db, sql);
  } catch (const std::exception&) {
    LUMO_THROW(std::runtime_error(
        (boost::format("Found no complete %s calibration state%s") % which % withSource).str()));
  }
}

}  // namespace calibration
}  // namespace io
}  // namespace lumo
