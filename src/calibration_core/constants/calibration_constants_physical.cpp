#include "calibration_core/constants/calibration_constants_physical.h"

#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Constants {

namespace {

std::ostringstream& dumpStream(std::ostringstream& os) {
  os.precision(std::numeric_limits<double>::max_digits10);
  return os;
}

// "\t<className>[ <first> = <a>, <second> = <b> ]", doubles with all digits.
std::string twoFieldDump(const char* className, const char* first, double a, const char* second,
                         double b) {
  std::ostringstream os;
  dumpStream(os) << "\t" << className << "[ " << first << " = " << a << ", " << second << " = "
                 << b << " ]";
  return os.str();
}

void checkIcrMode(int mode, const char* where) {
  if (mode < 0 || mode > 6) {
    LUMO_THROW(std::runtime_error(std::string(where) +
                                  "(): invalid calibration constants: icr mode unknown. Expected "
                                  "0..6, but got " +
                                  std::to_string(mode)));
  }
}

}  // namespace

CalibrationConstantsPhysicalTOF::CalibrationConstantsPhysicalTOF(double timeBase, double timeDelay)
    : timeDelay_(timeDelay), timeBase_(timeBase) {}

bool CalibrationConstantsPhysicalTOF::IsEqual(const ICalibrationConstantsPhysicalPtr& other) const {
  ICalibrationConstantsPhysicalTOFPtr o =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalTOF>(other);
  return o && o->GetTimeDelay() == timeDelay_ && o->GetTimeBase() == timeBase_;
}

std::string CalibrationConstantsPhysicalTOF::Dump() const {
  return twoFieldDump("CalibrationConstantsPhysicalTOF", "time delay", timeDelay_, "time base",
                      timeBase_);
}

CalibrationConstantsPhysicalLinear::CalibrationConstantsPhysicalLinear(double a0, double a1)
    : a0_(a0), a1_(a1) {}

bool CalibrationConstantsPhysicalLinear::IsEqual(
    const ICalibrationConstantsPhysicalPtr& other) const {
  boost::shared_ptr<CalibrationConstantsPhysicalLinear> o =
      boost::dynamic_pointer_cast<CalibrationConstantsPhysicalLinear>(other);
  return o && o->GetA0() == a0_ && o->GetA1() == a1_;
}

std::string CalibrationConstantsPhysicalLinear::Dump() const {
  return twoFieldDump("CalibrationConstantsPhysicalLinear", "a0", a0_, "a1", a1_);
}

CalibrationConstantsPhysicalHalyard::CalibrationConstantsPhysicalHalyard(
    double beginRawMass, double measurementsPerRawMass)
    : beginRawMass_(beginRawMass), measurementsPerRawMass_(measurementsPerRawMass) {}

bool CalibrationConstantsPhysicalHalyard::IsEqual(
    const ICalibrationConstantsPhysicalPtr& other) const {
  ICalibrationConstantsPhysicalHalyardPtr o =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalHalyard>(other);
  return o && o->GetBeginRawMass() == beginRawMass_ &&
         o->GetMeasurementsPerRawMass() == measurementsPerRawMass_;
}

std::string CalibrationConstantsPhysicalHalyard::Dump() const {
  return twoFieldDump("CalibrationConstantsPhysicalHalyard", "measurements per raw mass",
                      measurementsPerRawMass_, "begin raw mass", beginRawMass_);
}

CalibrationConstantsPhysicalFTMS::CalibrationConstantsPhysicalFTMS(double freqLow, double freqWidth,
                                                                   int size, int calibMode,
                                                                   int ftmsRawMode)
    : freqLow_(freqLow),
      freqWidth_(freqWidth),
      size_(size),
      calibMode_(calibMode),
      ftmsRawMode_(ftmsRawMode) {}

bool CalibrationConstantsPhysicalFTMS::IsEqual(
    const ICalibrationConstantsPhysicalPtr& other) const {
  ICalibrationConstantsPhysicalFTMSPtr o =
      boost::dynamic_pointer_cast<ICalibrationConstantsPhysicalFTMS>(other);
  return o && o->GetFreqLow() == freqLow_ && o->GetFreqWidth() == freqWidth_ &&
         o->GetSize() == size_ && o->GetCalibMode() == calibMode_ &&
         o->GetFtmsRawMode() == ftmsRawMode_;
}

double CalibrationConstantsPhysicalFTMS::GetA0() const {
  checkIcrMode(calibMode_, "CalibrationConstantsPhysicalFTMS::GetA0");
  return freqLow_;
}

double CalibrationConstantsPhysicalFTMS::GetA1() const {
  checkIcrMode(calibMode_, "CalibrationConstantsPhysicalFTMS::GetA1");
  return freqWidth_ / size_;
}

void CalibrationConstantsPhysicalFTMS::AssimilateIndexOffset(double indexOffset) {
  checkIcrMode(calibMode_, "CalibrationConstantsPhysicalFTMS::AssimilateIndexOffset");
  freqLow_ = indexOffset * (freqWidth_ / size_) + freqLow_;
}

void CalibrationConstantsPhysicalFTMS::SetRawRangeStart(double raw, double index) {
  freqLow_ = raw - index * (freqWidth_ / size_);
}

std::string CalibrationConstantsPhysicalFTMS::Dump() const {
  std::ostringstream os;
  dumpStream(os) << "\tCalibrationConstantsPhysicalFTMS[ \n"
                 << "\t\ta0 = " << freqLow_ << ", a1 = " << freqWidth_ / size_ << "\n"
                 << "\t\tcalib mode = " << calibMode_ << "\n"
                 << "\t\tfreq low = " << freqLow_ << ", freq width = " << freqWidth_
                 << ", ftms raw mode = " << ftmsRawMode_ << ", size = " << size_ << " ]";
  return os.str();
}

}  // namespace Constants
}  // namespace calibration
}  // namespace lumo
