#include "kelvary/platform/internal/drivers/postgres/internal/PostgresValues.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/internal/drivers/ServerResults.h"

namespace kelvary::postgres {
namespace {

constexpr int64_t kMicrosPerDay = 86400LL * 1000000LL;

// The default sizes the ODBC driver reports for text of no declared length.
constexpr int32_t kLongTextSize = 8190;
constexpr int32_t kTextSize = 255;

template <class T>
void AppendBigEndian(T value, std::string& out) {
  using U = std::make_unsigned_t<T>;
  const auto bits = static_cast<U>(value);
  for (size_t i = sizeof(T); i-- > 0;)
    out.push_back(static_cast<char>((bits >> (8 * i)) & 0xFF));
}

// A date or moment outside the years a Date holds, as its ISO text.
Variant OutOfRange(int64_t days, int64_t micros_of_day, bool with_time) {
  const CivilDay c = CivilFromDays(days + kServerEpoch);
  char buffer[64];
  const int64_t seconds = micros_of_day / 1000000;
  if (with_time) {
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02lld:%02lld:%02lld", c.year, c.month,
                  c.day, static_cast<long long>(seconds / 3600),
                  static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60));
  } else {
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", c.year, c.month, c.day);
  }
  return Variant(std::string(buffer));
}

Variant DateValue(int32_t days) {
  if (days == std::numeric_limits<int32_t>::max()) return Variant(std::string("infinity"));
  if (days == std::numeric_limits<int32_t>::min()) return Variant(std::string("-infinity"));
  if (days < kFirstDay || days > kLastDay) return OutOfRange(days, 0, false);
  return Variant(Date(static_cast<double>(days + kServerEpochSerial)));
}

Variant TimestampValue(int64_t micros) {
  if (micros == std::numeric_limits<int64_t>::max()) return Variant(std::string("infinity"));
  if (micros == std::numeric_limits<int64_t>::min()) return Variant(std::string("-infinity"));
  int64_t days = micros / kMicrosPerDay;
  int64_t rest = micros % kMicrosPerDay;
  if (rest < 0) {
    rest += kMicrosPerDay;
    --days;
  }
  if (days < kFirstDay || days > kLastDay) return OutOfRange(days, rest, true);
  // The day's serial, its time of day as a fraction in the serial's own
  // direction (before 1899-12-30 the serial is negative and the time still
  // counts forward): whole seconds first, then microseconds, as DateTimeOf
  // and the ODBC driver build it, so that both read the same double.
  const int64_t day = days + kServerEpochSerial;
  const double seconds = static_cast<double>(rest / 1000000) / 86400;
  double serial =
      day >= 0 ? static_cast<double>(day) + seconds : static_cast<double>(day) - seconds;
  if (const int64_t fraction_us = rest % 1000000; fraction_us != 0) {
    const double fraction = static_cast<double>(fraction_us) / 86400e6;
    serial = serial >= 0 ? serial + fraction : serial - fraction;
  }
  return Variant(Date(serial));
}

// numeric's binary form: digit count, weight (of the first base-10000
// digit), sign, display scale, then the base-10000 digits.
constexpr uint16_t kNumericNegative = 0x4000;
constexpr uint16_t kNumericNaN = 0xC000;
constexpr uint16_t kNumericPlusInfinity = 0xD000;
constexpr uint16_t kNumericMinusInfinity = 0xF000;

struct Numeric {
  uint16_t sign = 0;
  int16_t weight = 0;
  int16_t scale = 0;
  std::vector<int16_t> digits;
};

std::optional<Numeric> ParseNumeric(const char* data, size_t length) {
  if (length < 8) return std::nullopt;
  Numeric n;
  const auto count = BigEndian<int16_t>(data);
  n.weight = BigEndian<int16_t>(data + 2);
  n.sign = BigEndian<uint16_t>(data + 4);
  n.scale = BigEndian<int16_t>(data + 6);
  if (count < 0 || length < 8 + 2 * static_cast<size_t>(count)) return std::nullopt;
  for (int16_t i = 0; i < count; ++i)
    n.digits.push_back(BigEndian<int16_t>(data + 8 + 2 * i));
  return n;
}

// The decimal text of a number, as the server writes it.
std::string NumericText(const Numeric& n) {
  if (n.sign == kNumericNaN) return "NaN";
  if (n.sign == kNumericPlusInfinity) return "Infinity";
  if (n.sign == kNumericMinusInfinity) return "-Infinity";
  const auto digit = [&](int position) -> int {  // base-10000 digit of weight position
    const int index = n.weight - position;
    return index >= 0 && index < static_cast<int>(n.digits.size()) ? n.digits[index] : 0;
  };
  std::string text;
  if (n.sign == kNumericNegative) text += '-';
  if (n.weight < 0) {
    text += '0';
  } else {
    for (int w = n.weight; w >= 0; --w) {
      char group[8];
      std::snprintf(group, sizeof group, w == n.weight ? "%d" : "%04d", digit(w));
      text += group;
    }
  }
  if (n.scale > 0) {
    text += '.';
    std::string fraction;
    for (int w = -1; static_cast<int>(fraction.size()) < n.scale; --w) {
      char group[8];
      std::snprintf(group, sizeof group, "%04d", digit(w));
      fraction += group;
    }
    fraction.resize(static_cast<size_t>(n.scale));
    text += fraction;
  }
  return text;
}

// Exactly in Currency's four decimals and range, or nullopt.
std::optional<Currency> NumericCurrency(const Numeric& n) {
  if (n.sign != 0 && n.sign != kNumericNegative) return std::nullopt;
  constexpr uint64_t kLimit = std::numeric_limits<int64_t>::max();
  uint64_t scaled = 0;
  for (size_t i = 0; i < n.digits.size(); ++i) {
    const int exponent = n.weight - static_cast<int>(i) + 1;  // in units of 1/10000
    if (exponent < 0) {
      if (n.digits[i] != 0) return std::nullopt;
      continue;
    }
    auto term = static_cast<uint64_t>(n.digits[i]);
    for (int e = 0; e < exponent && term != 0; ++e) {
      if (term > kLimit / 10000) return std::nullopt;
      term *= 10000;
    }
    if (term > kLimit - scaled) return std::nullopt;
    scaled += term;
  }
  const auto value = static_cast<int64_t>(scaled);
  return Currency{n.sign == kNumericNegative ? -value : value};
}

Variant NumericValue(const ColumnType& column, const char* data, size_t length) {
  const std::optional<Numeric> n = ParseNumeric(data, length);
  if (!n) return Variant(std::string_view(data, length));
  if (n->sign != 0 && n->sign != kNumericNegative) return Variant(NumericText(*n));
  if (column.currency) {
    if (const std::optional<Currency> value = NumericCurrency(*n)) return Variant(*value);
  }
  const std::string text = NumericText(*n);
  double value = 0;
  const char* begin = text.data();
  const auto [end, ec] = std::from_chars(begin, begin + text.size(), value);
  if (ec == std::errc() && end == begin + text.size()) return Variant(value);
  return Variant(text);
}

std::string UuidText(const char* data, size_t length) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < length; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const auto byte = static_cast<unsigned char>(data[i]);
    text += kHex[byte >> 4];
    text += kHex[byte & 0xF];
  }
  return text;
}

// The server's microseconds from 2000-01-01 for a Date (its time of day
// read as the serial's fraction, whatever the sign).
int64_t ServerMicros(Date date) {
  const double serial = date.Serial();
  const double whole = std::trunc(serial);
  int64_t day = static_cast<int64_t>(whole);
  int64_t micros = std::llround(std::fabs(serial - whole) * static_cast<double>(kMicrosPerDay));
  if (micros >= kMicrosPerDay) {
    micros -= kMicrosPerDay;
    day += serial < 0 ? -1 : 1;
  }
  return (day - kServerEpochSerial) * kMicrosPerDay + micros;
}

}  // namespace

ColumnType TypeOfColumn(uint32_t oid, int32_t modifier) {
  switch (oid) {
    case kOidBool:
      return {adBoolean, 2};
    case kOidInt2:
      return {adSmallInt, 2};
    case kOidInt4:
      return {adInteger, 4};
    case kOidInt8:
    case kOidOid:
      return {adBigInt, 8};
    case kOidFloat4:
      return {adSingle, 4};
    case kOidFloat8:
      return {adDouble, 8};
    case kOidMoney:
      return {adCurrency, 8, true};
    case kOidNumeric: {
      if (modifier < 4) return {adNumeric, 28};  // no declared precision
      const int32_t precision = ((modifier - 4) >> 16) & 0xFFFF;
      const int32_t scale = (modifier - 4) & 0xFFFF;
      return {adNumeric, precision, scale <= 4 && precision <= 19};
    }
    case kOidDate:
      return {adDate, 8};
    case kOidTime:
      return {adDBTime, 8};
    case kOidTimestamp:
    case kOidTimestampTz:
      return {adDBTimeStamp, 16};
    case kOidVarchar:
    case kOidBpchar:
      return {adVarWChar, modifier > 4 ? modifier - 4 : kTextSize};
    case kOidName:
      return {adVarWChar, 63};
    case kOidChar:
      return {adVarWChar, 1};
    case kOidText:
    case kOidJson:
    case kOidJsonb:
    case kOidXml:
      return {adLongVarWChar, kLongTextSize};
    case kOidBytea:
      return {adLongVarBinary, kLongTextSize};
    case kOidUuid:
      return {adVarWChar, 36};
    default:
      return {adVarWChar, kTextSize};
  }
}

Variant ReadValue(uint32_t oid, const ColumnType& column, const char* data, size_t length) {
  const auto fits = [length](size_t bytes) { return length == bytes; };
  switch (oid) {
    case kOidBool:
      if (fits(1)) return Variant(data[0] != 0);
      break;
    case kOidInt2:
      if (fits(2)) return Variant(BigEndian<int16_t>(data));
      break;
    case kOidInt4:
      if (fits(4)) return Variant(BigEndian<int32_t>(data));
      break;
    case kOidInt8:
      if (fits(8)) return Variant(BigEndian<int64_t>(data));
      break;
    case kOidOid:
      if (fits(4)) return Variant(static_cast<int64_t>(BigEndian<uint32_t>(data)));
      break;
    case kOidFloat4:
      if (fits(4)) return Variant(std::bit_cast<float>(BigEndian<uint32_t>(data)));
      break;
    case kOidFloat8:
      if (fits(8)) return Variant(std::bit_cast<double>(BigEndian<uint64_t>(data)));
      break;
    case kOidMoney:
      if (fits(8)) {
        // Cents, in the usual two-decimal locale.
        const int64_t cents = BigEndian<int64_t>(data);
        if (cents > std::numeric_limits<int64_t>::max() / 100 ||
            cents < std::numeric_limits<int64_t>::min() / 100) {
          return Variant(static_cast<double>(cents) / 100);
        }
        return Variant(Currency{cents * 100});
      }
      break;
    case kOidNumeric:
      return NumericValue(column, data, length);
    case kOidDate:
      if (fits(4)) return DateValue(BigEndian<int32_t>(data));
      break;
    case kOidTime:
      if (fits(8)) {
        const int64_t seconds = BigEndian<int64_t>(data) / 1000000;
        return Variant(TimeSerial(static_cast<int>(seconds / 3600),
                                  static_cast<int>(seconds / 60 % 60),
                                  static_cast<int>(seconds % 60)));
      }
      break;
    case kOidTimestamp:
    case kOidTimestampTz:
      if (fits(8)) return TimestampValue(BigEndian<int64_t>(data));
      break;
    case kOidJsonb:
      // A version byte, then the text.
      if (length >= 1) return Variant(std::string_view(data + 1, length - 1));
      break;
    case kOidUuid:
      if (fits(16)) return Variant(UuidText(data, length));
      break;
    default:
      break;
  }
  // Text, bytes, and the server's other types as it sent them.
  return Variant(std::string_view(data, length));
}

bool WriteParameter(const Variant& value, Parameter& out) {
  out = Parameter{};
  switch (value.Type()) {
    case vbEmpty:
    case vbNull:
      out.null = true;
      return true;
    case vbBoolean:
      out.oid = kOidBool;
      out.binary = true;
      out.bytes.push_back(*value.Get<bool>() ? 1 : 0);
      return true;
    case vbInteger:
      out.oid = kOidInt2;
      out.binary = true;
      AppendBigEndian(*value.Get<int16_t>(), out.bytes);
      return true;
    case vbLong:
      out.oid = kOidInt4;
      out.binary = true;
      AppendBigEndian(*value.Get<int32_t>(), out.bytes);
      return true;
    case vbLongLong:
      out.oid = kOidInt8;
      out.binary = true;
      AppendBigEndian(*value.Get<int64_t>(), out.bytes);
      return true;
    case vbSingle:
      out.oid = kOidFloat4;
      out.binary = true;
      AppendBigEndian(std::bit_cast<uint32_t>(*value.Get<float>()), out.bytes);
      return true;
    case vbDouble:
      out.oid = kOidFloat8;
      out.binary = true;
      AppendBigEndian(std::bit_cast<uint64_t>(*value.Get<double>()), out.bytes);
      return true;
    case vbCurrency:
      // Exact decimal text: a double would lose the fourth decimal of large amounts.
      out.oid = kOidNumeric;
      out.bytes = internal::CurrencyText(*value.Get<Currency>());
      return true;
    case vbDate:
      out.oid = kOidTimestamp;
      out.binary = true;
      AppendBigEndian(ServerMicros(*value.Get<Date>()), out.bytes);
      return true;
    case vbString:
      out.bytes = value.Text();
      return true;
    default:
      return false;
  }
}

}  // namespace kelvary::postgres
