// Date: the automation date, a count of days since 30 December 1899 held in a
// double. The whole part is the day (negative before the epoch); the
// fraction is the time of day, counted forwards from midnight even for
// negative days (-1.25 is 29 December 1899, 06:00).
//
// The clock behind Today and Now is process-wide and replaceable so that
// tests can fix "today". All functions here are thread-safe except SetClock,
// which the host calls once at start-up (or a test around its body).
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kelvary {

class Date {
 public:
  constexpr Date() = default;
  constexpr explicit Date(double serial) : serial_(serial) {}

  constexpr double Serial() const { return serial_; }

  friend constexpr bool operator==(Date a, Date b) { return a.serial_ == b.serial_; }
  friend constexpr auto operator<=>(Date a, Date b) { return a.serial_ <=> b.serial_; }

 private:
  double serial_ = 0.0;
};

// DateSerial builds a date from year, month and day with the runtime's
// rules: a month or day outside its range rolls into the neighbouring
// months, and years 0-29 mean 2000-2029, 30-99 mean 1930-1999.
// Throws Error 5 when the result falls outside the years 100 to 9999.
Date DateSerial(int year, int month, int day);
// TimeSerial: the fraction of a day for that time (rolls like DateSerial).
Date TimeSerial(int hour, int minute, int second);
// DateTimeOf: DateSerial and TimeSerial combined.
Date DateTimeOf(int year, int month, int day, int hour, int minute, int second);

// The proleptic Gregorian calendar on a count of days from 1970-01-01 (H.
// Hinnant's algorithms), with no range check: the one calendar arithmetic
// of the system, for dates and for drivers that read a database's day
// counts.
struct CivilDay {
  int year;
  int month;
  int day;
};
constexpr int64_t DaysFromCivil(int64_t year, unsigned month, unsigned day) {
  year -= month <= 2;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yoe = static_cast<unsigned>(year - era * 400);
  const unsigned doy = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}
constexpr CivilDay CivilFromDays(int64_t days) {
  days += 719468;
  const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const auto doe = static_cast<unsigned>(days - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t y = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  const unsigned d = doy - (153 * mp + 2) / 5 + 1;
  const unsigned m = mp < 10 ? mp + 3 : mp - 9;
  return {static_cast<int>(y + (m <= 2)), static_cast<int>(m), static_cast<int>(d)};
}

int Year(Date d);
int Month(Date d);
int Day(Date d);
int Hour(Date d);
int Minute(Date d);
int Second(Date d);
// Weekday: 1 Sunday to 7 Saturday.
int Weekday(Date d);
// HasTime: the date carries a time of day other than midnight.
bool HasTime(Date d);

// DateOnly: the calendar day of d, time of day dropped (the day rebuilt
// from its year, month and day).
Date DateOnly(Date d);
// AddDays: d moved by whole days, the time of day kept.
Date AddDays(Date d, int days);

Date Today();
Date Now();
// SetClock replaces the source of Now (and so of Today) and returns the
// previous one; an empty function restores the system clock.
using Clock = std::function<Date()>;
Clock SetClock(Clock clock);

// Format writes d with a date picture: yyyy, yy, mmmm, mmm, mm, m, dddd, ddd,
// dd, d, hh, h, nn, n, ss, s and AM/PM, in either case ("DD-MMM-YYYY" and
// "dd-mmm-yyyy" are the same); m right after an hour token means minutes;
// anything else is copied. Month and day names are English.
std::string Format(Date d, std::string_view picture);
// FormatNumber writes a number with a numeric picture of 0 and # digits and
// an optional decimal point: "00" pads to two digits, "0000" to four.
// Halves round away from zero, as the runtime's Format does.
std::string FormatNumber(double value, std::string_view picture);

// ParseDate reads text that reads as a date: ISO yyyy-mm-dd with an optional
// time hh:mm[:ss] (blank or T between), m/d/yyyy (or yy) with an optional
// time and AM/PM, d-Mon-yyyy with an English month name or abbreviation, and
// a time alone. Surrounding blanks are ignored. nullopt when the text is not
// a valid date.
std::optional<Date> ParseDate(std::string_view text);

}  // namespace kelvary
