#include "sys/iso_time.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace sys {
namespace {

[[noreturn]] void generationFailure(const char* what) {
  LUMO_THROW_NO_TRACE(std::runtime_error(std::string("string generation failure: ") + what));
}

// Appends `value` zero-padded to at least `width` digits.
void appendPadded(std::string& out, long long value, int width, const char* failure) {
  if (value < 0) generationFailure(failure);
  char buffer[32];
  const int n = std::snprintf(buffer, sizeof buffer, "%0*lld", width, value);
  if (n <= 0 || n >= static_cast<int>(sizeof buffer)) generationFailure(failure);
  out.append(buffer, static_cast<std::size_t>(n));
}

long long absolute(long long v) { return v < 0 ? -v : v; }

}  // namespace

namespace date_time {
namespace internal {

void append_iso_date(const boost::gregorian::date& date, std::string& out) {
  const boost::gregorian::date::ymd_type ymd = date.year_month_day();
  appendPadded(out, ymd.year, 4, "Invalid year in date");
  out += '-';
  appendPadded(out, ymd.month, 2, "Invalid month in date");
  out += '-';
  appendPadded(out, ymd.day, 2, "Invalid day in date");
}

void append_iso_time(const boost::posix_time::time_duration& time, std::string& out,
                     posix::FormatOption::type option) {
  appendPadded(out, absolute(time.hours()), 2, "Invalid hours in time");
  out += ':';
  appendPadded(out, absolute(time.minutes()), 2, "Invalid minutes in time");
  out += ':';
  appendPadded(out, absolute(time.seconds()), 2, "Invalid seconds in time");
  if ((option & 6) == 0) return;
  out += '.';
  const long long micros = absolute(time.fractional_seconds()) * 1000000 / time.ticks_per_second();
  if (option & 4) {
    appendPadded(out, micros / 1000, 3, "Invalid fractional seconds in time");
  } else {
    appendPadded(out, micros, 6, "Invalid fractional seconds in time");
  }
}

}  // namespace internal
}  // namespace date_time

namespace posix {

std::string toIsoExtendedString(boost::posix_time::ptime time, FormatOption::type option) {
  if (static_cast<unsigned>(option) > 5) {
    LUMO_THROW_NO_TRACE(std::runtime_error(
        "Invalid format option (value: " + std::to_string(static_cast<int>(option)) + ")"));
  }
  std::string result;
  result.reserve((option & 4) ? 4 : 7);
  if (time.is_not_a_date_time()) return "not-a-date-time";
  if (time.is_neg_infinity()) return "-infinity";
  if (time.is_pos_infinity()) return "+infinity";
  date_time::internal::append_iso_date(time.date(), result);
  result += (option & 1) ? 'T' : ' ';
  date_time::internal::append_iso_time(time.time_of_day(), result, option);
  return result;
}

}  // namespace posix
}  // namespace sys
}  // namespace lumo
