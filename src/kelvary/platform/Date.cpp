#include "kelvary/platform/Date.h"

#include <array>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary {
namespace {

constexpr std::array<const char*, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<const char*, 7> kDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
constexpr int64_t kSecondsPerDay = 86400;

// The epoch of the automation date, 1899-12-30, in days from 1970-01-01.
constexpr int64_t kEpochOffset = DaysFromCivil(1899, 12, 30);

// Splits a serial into its day number and the seconds of its time of day.
struct Parts {
  int64_t day;
  int64_t seconds;
};

[[noreturn]] void ThrowOverflow() {
  throw Error(kErrOverflow, "Overflow");
}

Parts Split(Date d) {
  const double serial = d.Serial();
  // Far beyond any calendar date (the years 100 to 9999 are about 3.6 million
  // days); the bound keeps the day count and its year inside their integers.
  if (!(std::fabs(serial) < 1e11)) ThrowOverflow();
  // The conversion truncates towards zero, as trunc does, without the call.
  int64_t day = static_cast<int64_t>(serial);
  const auto whole = static_cast<double>(day);
  // Most dates read from a database have no time of day: no rounding to do.
  if (whole == serial) return {day, 0};
  double fraction = std::fabs(serial - whole);
  int64_t seconds = std::llround(fraction * kSecondsPerDay);
  if (seconds >= kSecondsPerDay) {  // rounding reached the next midnight
    seconds -= kSecondsPerDay;
    day += serial < 0 ? -1 : 1;
  }
  return {day, seconds};
}

Date Join(int64_t day, double time_fraction) {
  const double d = static_cast<double>(day);
  return Date(day >= 0 ? d + time_fraction : d - time_fraction);
}

void CheckYear(int64_t day) {
  // The first and last day of those years, as day numbers: dates are built
  // row by row from what databases hand over, so no calendar is worked out.
  constexpr int64_t kFirst = DaysFromCivil(100, 1, 1) - kEpochOffset;
  constexpr int64_t kLast = DaysFromCivil(9999, 12, 31) - kEpochOffset;
  if (day < kFirst || day > kLast) {
    throw Error(kErrInvalidProcedureCall, "Date out of range (years 100 to 9999)");
  }
}

std::mutex clock_mutex;
Clock& ClockSlot() {
  static Clock clock;
  return clock;
}

Date SystemNow() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t t = system_clock::to_time_t(now);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &t);
#else
  localtime_r(&t, &local);
#endif
  return DateTimeOf(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                    local.tm_min, local.tm_sec);
}

std::string Pad(int value, int width) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%0*d", width, value);
  return buffer;
}

// FixedText: value with that many decimals, exactly as the double holds it,
// at whatever length that takes.
std::string FixedText(int decimals, double value) {
  const int length = std::snprintf(nullptr, 0, "%.*f", decimals, value);
  std::string out(static_cast<size_t>(length) + 1, '\0');
  std::snprintf(out.data(), out.size(), "%.*f", decimals, value);
  out.pop_back();
  return out;
}

size_t RunLength(std::string_view text, size_t pos, char lower) {
  size_t n = 0;
  while (pos + n < text.size() && AsciiLower(text[pos + n]) == lower) {
    ++n;
  }
  return n;
}

// A small scanner for ParseDate.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool AtEnd() const { return pos_ >= text_.size(); }
  void SkipBlanks() {
    while (!AtEnd() && text_[pos_] == ' ')
      ++pos_;
  }
  bool Eat(char c) {
    if (!AtEnd() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }
  // Reads 1 to max_digits digits.
  std::optional<int> Number(size_t max_digits) {
    size_t start = pos_;
    int value = 0;
    while (!AtEnd() && pos_ - start < max_digits &&
           std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
      value = value * 10 + (text_[pos_] - '0');
      ++pos_;
    }
    if (pos_ == start) return std::nullopt;
    last_digits_ = pos_ - start;
    return value;
  }
  size_t LastDigits() const { return last_digits_; }
  std::string Word() {
    std::string word;
    while (!AtEnd() && std::isalpha(static_cast<unsigned char>(text_[pos_]))) {
      word += AsciiLower(text_[pos_]);
      ++pos_;
    }
    return word;
  }
  size_t Position() const { return pos_; }
  void Reset(size_t pos) { pos_ = pos; }

 private:
  std::string_view text_;
  size_t pos_ = 0;
  size_t last_digits_ = 0;
};

int DaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month == 2 && ((year % 4 == 0 && year % 100 != 0) || year % 400 == 0)) return 29;
  return kDays[month - 1];
}

int WindowYear(int year, size_t digits) {
  if (digits > 2) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<Date> ValidDate(int year, int month, int day) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
      day > DaysInMonth(year, month)) {
    return std::nullopt;
  }
  // Checked above, so DateSerial's rolling and range check are not needed;
  // stored dates are read through here row by row.
  return Date(static_cast<double>(
      DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) -
      kEpochOffset));
}

// Reads an optional time of day: hh:mm[:ss] [AM|PM]. Returns the fraction
// of a day, 0 when there is no time, nullopt when a time is malformed.
std::optional<double> ParseTime(Scanner& s, bool required) {
  s.SkipBlanks();
  if (s.AtEnd()) {
    if (required) return std::nullopt;
    return 0.0;
  }
  auto hour = s.Number(2);
  if (!hour || !s.Eat(':')) return std::nullopt;
  auto minute = s.Number(2);
  if (!minute) return std::nullopt;
  int second = 0;
  if (s.Eat(':')) {
    auto sec = s.Number(2);
    if (!sec) return std::nullopt;
    second = *sec;
  }
  s.SkipBlanks();
  int h = *hour;
  std::string meridiem = s.Word();
  if (!meridiem.empty()) {
    if (h < 1 || h > 12) return std::nullopt;
    if (meridiem == "am") {
      if (h == 12) h = 0;
    } else if (meridiem == "pm") {
      if (h != 12) h += 12;
    } else {
      return std::nullopt;
    }
  }
  s.SkipBlanks();
  if (!s.AtEnd() || h > 23 || *minute > 59 || second > 59) return std::nullopt;
  return (h * 3600.0 + *minute * 60.0 + second) / kSecondsPerDay;
}

std::optional<int> MonthFromName(const std::string& word) {
  if (word.size() < 3) return std::nullopt;
  for (int i = 0; i < 12; ++i) {
    const std::string name = LowerCase(kMonthNames[i]);
    if (word == name || word == name.substr(0, 3)) return i + 1;
  }
  return std::nullopt;
}

std::optional<Date> WithTime(std::optional<Date> day, Scanner& s) {
  if (!day) return std::nullopt;
  auto time = ParseTime(s, false);
  if (!time) return std::nullopt;
  return Join(static_cast<int64_t>(day->Serial()), *time);
}

}  // namespace

Date DateSerial(int year, int month, int day) {
  int64_t y = year;
  if (y >= 0 && y < 30) {
    y += 2000;
  } else if (y >= 30 && y < 100) {
    y += 1900;
  }
  // Roll the month into the year first, then let the day roll freely.
  int64_t m0 = static_cast<int64_t>(month) - 1;
  y += m0 >= 0 ? m0 / 12 : -((11 - m0) / 12);
  m0 = ((m0 % 12) + 12) % 12;
  const int64_t days =
      DaysFromCivil(y, static_cast<unsigned>(m0 + 1), 1) + (static_cast<int64_t>(day) - 1);
  const int64_t serial_day = days - kEpochOffset;
  CheckYear(serial_day);
  return Date(static_cast<double>(serial_day));
}

Date TimeSerial(int hour, int minute, int second) {
  const int64_t total = static_cast<int64_t>(hour) * 3600 + static_cast<int64_t>(minute) * 60 +
                        static_cast<int64_t>(second);
  const int64_t day =
      total >= 0 ? total / kSecondsPerDay : -((kSecondsPerDay - 1 - total) / kSecondsPerDay);
  const int64_t rest = total - day * kSecondsPerDay;
  return Join(day, static_cast<double>(rest) / kSecondsPerDay);
}

Date DateTimeOf(int year, int month, int day, int hour, int minute, int second) {
  const Date d = DateSerial(year, month, day);
  const int64_t total = static_cast<int64_t>(hour) * 3600 + static_cast<int64_t>(minute) * 60 +
                        static_cast<int64_t>(second);
  int64_t extra_days =
      total >= 0 ? total / kSecondsPerDay : -((kSecondsPerDay - 1 - total) / kSecondsPerDay);
  const int64_t rest = total - extra_days * kSecondsPerDay;
  return Join(static_cast<int64_t>(d.Serial()) + extra_days,
              static_cast<double>(rest) / kSecondsPerDay);
}

int Year(Date d) {
  return CivilFromDays(Split(d).day + kEpochOffset).year;
}
int Month(Date d) {
  return CivilFromDays(Split(d).day + kEpochOffset).month;
}
int Day(Date d) {
  return CivilFromDays(Split(d).day + kEpochOffset).day;
}
int Hour(Date d) {
  return static_cast<int>(Split(d).seconds / 3600);
}
int Minute(Date d) {
  return static_cast<int>(Split(d).seconds / 60 % 60);
}
int Second(Date d) {
  return static_cast<int>(Split(d).seconds % 60);
}
bool HasTime(Date d) {
  return Split(d).seconds != 0;
}

int Weekday(Date d) {
  // 30 December 1899 was a Saturday (7).
  const int64_t day = Split(d).day;
  return static_cast<int>(((day + 6) % 7 + 7) % 7) + 1;
}

Date DateOnly(Date d) {
  return DateSerial(Year(d), Month(d), Day(d));
}

Date AddDays(Date d, int days) {
  const Parts p = Split(d);
  const int64_t day = p.day + days;
  CheckYear(day);
  return Join(day, static_cast<double>(p.seconds) / kSecondsPerDay);
}

Clock SetClock(Clock clock) {
  std::lock_guard<std::mutex> lock(clock_mutex);
  Clock previous = std::move(ClockSlot());
  ClockSlot() = std::move(clock);
  return previous;
}

Date Now() {
  Clock clock;
  {
    std::lock_guard<std::mutex> lock(clock_mutex);
    clock = ClockSlot();
  }
  return clock ? clock() : SystemNow();
}

Date Today() {
  return DateOnly(Now());
}

std::string Format(Date d, std::string_view picture) {
  const Parts p = Split(d);
  const CivilDay c = CivilFromDays(p.day + kEpochOffset);
  const int hour = static_cast<int>(p.seconds / 3600);
  const int minute = static_cast<int>(p.seconds / 60 % 60);
  const int second = static_cast<int>(p.seconds % 60);
  const bool twelve_hour = picture.find("AM/PM") != std::string_view::npos ||
                           picture.find("am/pm") != std::string_view::npos;
  std::string out;
  bool after_hour = false;
  size_t i = 0;
  while (i < picture.size()) {
    const char lower = AsciiLower(picture[i]);
    if (StartsWithNoCase(picture, i, "am/pm")) {
      out += hour < 12 ? "AM" : "PM";
      i += 5;
      continue;
    }
    size_t n = 0;
    switch (lower) {
      case 'y':
        n = RunLength(picture, i, 'y');
        out += n >= 3 ? Pad(c.year, 4) : Pad(c.year % 100, 2);
        break;
      case 'm':
        n = RunLength(picture, i, 'm');
        if (after_hour && n <= 2) {
          out += n == 2 ? Pad(minute, 2) : std::to_string(minute);
        } else if (n >= 4) {
          out += kMonthNames[c.month - 1];
        } else if (n == 3) {
          out += std::string(kMonthNames[c.month - 1]).substr(0, 3);
        } else {
          out += n == 2 ? Pad(c.month, 2) : std::to_string(c.month);
        }
        after_hour = false;
        break;
      case 'd': {
        n = RunLength(picture, i, 'd');
        const int wd = Weekday(d) - 1;
        if (n >= 4) {
          out += kDayNames[wd];
        } else if (n == 3) {
          out += std::string(kDayNames[wd]).substr(0, 3);
        } else {
          out += n == 2 ? Pad(c.day, 2) : std::to_string(c.day);
        }
        after_hour = false;
        break;
      }
      case 'h': {
        n = RunLength(picture, i, 'h');
        int h = hour;
        if (twelve_hour) h = h % 12 == 0 ? 12 : h % 12;
        out += n >= 2 ? Pad(h, 2) : std::to_string(h);
        after_hour = true;
        break;
      }
      case 'n':
        n = RunLength(picture, i, 'n');
        out += n >= 2 ? Pad(minute, 2) : std::to_string(minute);
        after_hour = false;
        break;
      case 's':
        n = RunLength(picture, i, 's');
        out += n >= 2 ? Pad(second, 2) : std::to_string(second);
        after_hour = false;
        break;
      default:
        n = 1;
        out += picture[i];
        break;
    }
    i += n;
  }
  return out;
}

std::string FormatNumber(double value, std::string_view picture) {
  const size_t point = picture.find('.');
  const std::string_view whole_part = picture.substr(0, point);
  const std::string_view decimal_part =
      point == std::string_view::npos ? std::string_view() : picture.substr(point + 1);
  int min_digits = 0;
  for (char c : whole_part)
    min_digits += c == '0';
  int decimals = 0;
  int min_decimals = 0;
  for (char c : decimal_part) {
    if (c == '0' || c == '#') ++decimals;
    if (c == '0') ++min_decimals;
  }
  if (!std::isfinite(value)) throw Error(kErrOverflow, "Overflow");
  const double scale = std::pow(10.0, decimals);
  double scaled = std::round(std::fabs(value) * scale);  // halves away from zero
  // The scaled value is a whole number: its digits are written out and the
  // point placed in the text, so no size of number overflows an integer.
  // With more decimals than the scaling can hold, the value's own expansion.
  std::string units;
  if (scaled >= 1e15 && std::isfinite(scaled)) {
    // Fifteen significant digits, as a double is written everywhere else;
    // the digits past them would only show the binary value's noise.
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.14e", scaled);
    units = std::string(1, buffer[0]) + std::string(buffer + 2, 14);
    units.append(static_cast<size_t>(std::atoi(buffer + 17) - 14), '0');
  } else if (std::isfinite(scaled)) {
    units = FixedText(0, scaled);
  } else {
    scaled = std::fabs(value);
    units = FixedText(decimals, scaled);
    units.erase(units.find('.'), 1);
  }
  const bool negative = value < 0 && scaled != 0;
  if (units.size() <= static_cast<size_t>(decimals)) {
    units.insert(0, static_cast<size_t>(decimals) + 1 - units.size(), '0');
  }
  const size_t whole_length = units.size() - static_cast<size_t>(decimals);
  std::string digits = units.substr(0, whole_length);
  if (digits == "0" && min_digits == 0) digits.clear();
  while (static_cast<int>(digits.size()) < min_digits)
    digits.insert(digits.begin(), '0');
  std::string out = negative ? "-" + digits : digits;
  if (decimals > 0) {
    std::string frac = units.substr(whole_length);
    while (static_cast<int>(frac.size()) > min_decimals && frac.back() == '0')
      frac.pop_back();
    if (!frac.empty() || point != std::string_view::npos) {
      if (!frac.empty()) out += "." + frac;
    }
  }
  return out;
}

std::optional<Date> ParseDate(std::string_view text) {
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  if (text.empty()) return std::nullopt;
  // The stored form, yyyy-mm-dd, read without the scanner: databases hand
  // over dates in it row after row.
  if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    int digits[8];
    int n = 0;
    for (size_t i = 0; i < 10 && n < 8; ++i) {
      if (i == 4 || i == 7) continue;
      if (text[i] < '0' || text[i] > '9') break;
      digits[n++] = text[i] - '0';
    }
    if (n == 8) {
      return ValidDate(digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3],
                       digits[4] * 10 + digits[5], digits[6] * 10 + digits[7]);
    }
  }
  Scanner s(text);

  auto first = s.Number(4);
  if (!first) return std::nullopt;
  const size_t first_digits = s.LastDigits();

  if (first_digits == 4 && s.Eat('-')) {  // ISO yyyy-mm-dd
    auto month = s.Number(2);
    if (!month || !s.Eat('-')) return std::nullopt;
    auto day = s.Number(2);
    if (!day) return std::nullopt;
    s.Eat('T');
    return WithTime(ValidDate(*first, *month, *day), s);
  }
  if (first_digits <= 2 && s.Eat('/')) {  // m/d/yyyy
    auto day = s.Number(2);
    if (!day || !s.Eat('/')) return std::nullopt;
    auto year = s.Number(4);
    if (!year) return std::nullopt;
    return WithTime(ValidDate(WindowYear(*year, s.LastDigits()), *first, *day), s);
  }
  if (first_digits <= 2 && (s.Eat('-') || s.Eat(' '))) {  // d-Mon-yyyy
    auto month = MonthFromName(s.Word());
    if (!month || !(s.Eat('-') || s.Eat(' '))) return std::nullopt;
    auto year = s.Number(4);
    if (!year) return std::nullopt;
    return WithTime(ValidDate(WindowYear(*year, s.LastDigits()), *month, *first), s);
  }
  if (first_digits <= 2) {  // a time alone
    s.Reset(0);
    auto time = ParseTime(s, true);
    if (!time) return std::nullopt;
    return Date(*time);
  }
  return std::nullopt;
}

}  // namespace kelvary
