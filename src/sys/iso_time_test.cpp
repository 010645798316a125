#include "sys/iso_time.h"

#include <gtest/gtest.h>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <stdexcept>

namespace lumo {
namespace sys {
namespace posix {
namespace {

using boost::posix_time::ptime;

const ptime kSample(boost::gregorian::date(2025, 1, 31),
                    boost::posix_time::time_duration(14, 5, 9) +
                        boost::posix_time::microseconds(123));

TEST(IsoTime, AllSixOptions) {
  EXPECT_EQ("2025-01-31 14:05:09", toIsoExtendedString(kSample, FormatOption::BLANK));
  EXPECT_EQ("2025-01-31T14:05:09", toIsoExtendedString(kSample, FormatOption::T_SEPARATOR));
  EXPECT_EQ("2025-01-31 14:05:09.000123",
            toIsoExtendedString(kSample, FormatOption::BLANK_MICROSECONDS));
  EXPECT_EQ("2025-01-31T14:05:09.000123",
            toIsoExtendedString(kSample, FormatOption::T_SEPARATOR_MICROSECONDS));
  EXPECT_EQ("2025-01-31 14:05:09.000",
            toIsoExtendedString(kSample, FormatOption::BLANK_MILLISECONDS));
  EXPECT_EQ("2025-01-31T14:05:09.000",
            toIsoExtendedString(kSample, FormatOption::T_SEPARATOR_MILLISECONDS));
}

TEST(IsoTime, MillisecondsAreCutNotRounded) {
  const ptime t(boost::gregorian::date(1999, 12, 3), boost::posix_time::time_duration(0, 0, 0) +
                                                         boost::posix_time::microseconds(999999));
  EXPECT_EQ("1999-12-03 00:00:00.999", toIsoExtendedString(t, FormatOption::BLANK_MILLISECONDS));
  EXPECT_EQ("1999-12-03 00:00:00.999999", toIsoExtendedString(t, FormatOption::BLANK_MICROSECONDS));
}

TEST(IsoTime, InvalidOptionFailsEvenForSpecialValues) {
  for (int option : {6, 7, 8}) {
    try {
      toIsoExtendedString(ptime(), static_cast<FormatOption::type>(option));
      FAIL() << option;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ("Invalid format option (value: " + std::to_string(option) + ")",
                std::string(e.what()));
    }
  }
}

TEST(IsoTime, SpecialValuesGiveTheirNames) {
  for (int option = 0; option <= 5; ++option) {
    const auto o = static_cast<FormatOption::type>(option);
    EXPECT_EQ("not-a-date-time", toIsoExtendedString(ptime(), o));
    EXPECT_EQ("-infinity", toIsoExtendedString(ptime(boost::posix_time::neg_infin), o));
    EXPECT_EQ("+infinity", toIsoExtendedString(ptime(boost::posix_time::pos_infin), o));
  }
}

TEST(IsoTime, AppendTimeUsesAbsoluteValuesOfNegativeDuration) {
  std::string out = "x";
  date_time::internal::append_iso_time(-boost::posix_time::time_duration(1, 2, 3), out,
                                       FormatOption::BLANK);
  EXPECT_EQ("x01:02:03", out);
}

}  // namespace
}  // namespace posix
}  // namespace sys
}  // namespace lumo
