// ISO 8601 extended text of a boost::posix_time::ptime, as used in log lines:
// "2025-01-31 14:05:09.123456".
//
// Thread-safety: thread-safe (no state).
#ifndef KORA_SYS_ISO_TIME_H_
#define KORA_SYS_ISO_TIME_H_

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <string>

namespace lumo {
namespace sys {
namespace posix {

// Bit 0 selects "T" as date/time separator instead of a blank; bit 1 adds six
// fraction digits (microseconds), bit 2 three (milliseconds, cut) and takes
// precedence. Values 6 and 7 are invalid.
struct FormatOption {
  enum type : int {
    BLANK = 0,
    T_SEPARATOR = 1,
    BLANK_MICROSECONDS = 2,
    T_SEPARATOR_MICROSECONDS = 3,
    BLANK_MILLISECONDS = 4,
    T_SEPARATOR_MILLISECONDS = 5
  };
};

// "YYYY-MM-DD<sep>hh:mm:ss[.fraction]"; a special value gives its name alone:
// "not-a-date-time", "-infinity", "+infinity".
// Throws std::runtime_error "Invalid format option (value: N)" for an option
// above 5.
std::string toIsoExtendedString(boost::posix_time::ptime time, FormatOption::type option);

}  // namespace posix

namespace date_time {
namespace internal {

// Appends "YYYY-MM-DD", zero-padded. Throws std::runtime_error
// "string generation failure: Invalid year|month|day in date".
void append_iso_date(const boost::gregorian::date& date, std::string& out);

// Appends "hh:mm:ss" from the absolute values of the parts of `time`, and with
// bit 1 or 2 of `option` "." and the fraction (see FormatOption). Throws
// std::runtime_error "string generation failure: Invalid <field> in time".
void append_iso_time(const boost::posix_time::time_duration& time, std::string& out,
                     posix::FormatOption::type option);

}  // namespace internal
}  // namespace date_time
}  // namespace sys
}  // namespace lumo

#endif  // KORA_SYS_ISO_TIME_H_
