#include "kelvary/platform/Variant.h"

#include <cctype>
#include <cerrno>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <ostream>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary {
namespace {

[[noreturn]] void ThrowTypeMismatch() {
  throw Error(kErrTypeMismatch, "Type mismatch");
}
[[noreturn]] void ThrowOverflow() {
  throw Error(kErrOverflow, "Overflow");
}
[[noreturn]] void ThrowInvalidNull() {
  throw Error(kErrInvalidUseOfNull, "Invalid use of Null");
}

// Reads text as a number: optional sign, digits with an optional decimal
// point and exponent, or &H hexadecimal. The whole text must be used.
std::optional<double> ParseNumber(std::string_view text) {
  text = TrimSpace(text);
  if (text.empty()) return std::nullopt;
  if (text.size() > 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h')) {
    int64_t value = 0;
    for (char c : text.substr(2)) {
      if (!std::isxdigit(static_cast<unsigned char>(c))) return std::nullopt;
      value = value * 16 +
              (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : AsciiLower(c) - 'a' + 10);
      if (value > 0xFFFFFFFFLL) return std::nullopt;
    }
    return static_cast<double>(value);
  }
  for (char c : text) {  // strtod would also take "inf", "nan" and hex floats
    if (!std::isdigit(static_cast<unsigned char>(c)) && c != '.' && c != '-' && c != '+' &&
        c != 'e' && c != 'E') {
      return std::nullopt;
    }
  }
  std::string copy(text);
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(copy.c_str(), &end);
  if (end != copy.c_str() + copy.size() || errno == ERANGE) return std::nullopt;
  return value;
}

// Reads text made of an optional sign and decimal digits alone as a whole
// number, without the detour through double that loses the last digits of
// large values. nullopt for any other text; Overflow beyond 64 bits.
std::optional<int64_t> ParseWholeNumber(std::string_view text) {
  text = TrimSpace(text);
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range) ThrowOverflow();
  if (error != std::errc()) return std::nullopt;
  return value;
}

// Reads plain decimal text ("-12.3456", "922337203685477.5807") as a
// currency without the detour through double, which cannot hold the
// largest amounts to the fourth decimal; halves to even at the fourth
// decimal as FromDouble. nullopt for any other text (exponents, &H);
// Overflow beyond the currency's range.
std::optional<Currency> ParseCurrency(std::string_view text) {
  text = TrimSpace(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  const size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction =
      point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  auto digits = [](std::string_view d) {
    for (char c : d)
      if (c < '0' || c > '9') return false;
    return true;
  };
  if ((whole.empty() && fraction.empty()) || !digits(whole) || !digits(fraction)) {
    return std::nullopt;
  }
  // Magnitudes are counted in ten-thousandths, in unsigned 64 bits, which
  // hold 2^63 (the most negative amount) with room to spare.
  constexpr uint64_t kLimit = uint64_t{1} << 63;
  uint64_t units = 0;
  for (char c : whole) {
    units = units * 10 + static_cast<uint64_t>(c - '0');
    if (units > kLimit / 10000) ThrowOverflow();
  }
  uint64_t decimals = 0;
  for (size_t i = 0; i < 4; ++i)
    decimals = decimals * 10 + (i < fraction.size() ? static_cast<uint64_t>(fraction[i] - '0') : 0);
  units = units * 10000 + decimals;
  if (fraction.size() > 4) {
    const char next = fraction[4];
    const bool beyond_half = fraction.find_first_not_of('0', 5) != std::string_view::npos;
    if (next > '5' || (next == '5' && (beyond_half || units % 2 == 1))) ++units;
  }
  if (units > kLimit || (units == kLimit && !negative)) ThrowOverflow();
  return Currency{negative ? static_cast<int64_t>(0 - units) : static_cast<int64_t>(units)};
}

// The numeric value of any kind that has one, for the number conversions.
double NumericValue(const Variant& v) {
  switch (v.Type()) {
    case vbEmpty:
      return 0;
    case vbNull:
      ThrowInvalidNull();
    case vbBoolean:
      return *v.Get<bool>() ? -1 : 0;
    case vbInteger:
      return *v.Get<int16_t>();
    case vbLong:
      return *v.Get<int32_t>();
    case vbLongLong:
      return static_cast<double>(*v.Get<int64_t>());
    case vbSingle:
      return *v.Get<float>();
    case vbDouble:
      return *v.Get<double>();
    case vbCurrency:
      return v.Get<Currency>()->ToDouble();
    case vbDate:
      return v.Get<Date>()->Serial();
    case vbString: {
      const std::string_view s = v.Text();
      if (auto n = ParseNumber(s)) return *n;
      ThrowTypeMismatch();
    }
    case vbObject:
    default:
      ThrowTypeMismatch();
  }
}

template <class Int>
Int ToInteger(const Variant& v) {
  if (const auto* i = v.Get<int64_t>()) {  // exact path: no detour through double
    if (*i < std::numeric_limits<Int>::min() || *i > std::numeric_limits<Int>::max()) {
      ThrowOverflow();
    }
    return static_cast<Int>(*i);
  }
  if (v.IsString()) {  // whole-number text too: 2^63 - 1 is exact
    if (const auto i = ParseWholeNumber(v.Text())) {
      if (*i < std::numeric_limits<Int>::min() || *i > std::numeric_limits<Int>::max()) {
        ThrowOverflow();
      }
      return static_cast<Int>(*i);
    }
  }
  const double d = NumericValue(v);
  if (std::isnan(d)) ThrowOverflow();
  const double r = RoundHalfEven(d);
  // The type's minimum is a power of two, exact as a double, and so is its
  // negation, one past the maximum; the maximum itself rounds up to it.
  constexpr double kLowest = static_cast<double>(std::numeric_limits<Int>::min());
  if (r < kLowest || r >= -kLowest) ThrowOverflow();
  return static_cast<Int>(r);
}

// A number taken for a date, as text or as a number alike: only the years
// 100 to 9999 are dates.
Date DateOfSerial(double serial) {
  if (!(serial > -657435.0 && serial < 2958466.0)) ThrowOverflow();
  return Date(serial);
}

std::string TrimmedNumber(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

}  // namespace

Currency Currency::FromDouble(double value) {
  const double scaled = RoundHalfEven(value * 10000.0);
  if (!(scaled >= -9.2233720368547758e18 && scaled < 9.2233720368547758e18)) ThrowOverflow();
  return Currency{static_cast<int64_t>(scaled)};
}

// The held object, in a counted block so that the Variant stays sixteen
// bytes (an object reference is two pointers).
struct Variant::ObjectBox : SharedBlock {
  std::shared_ptr<Object> object;
};

Variant::Variant(std::shared_ptr<Object> value) : Variant(kObject) {
  auto* box = new ObjectBox;
  box->object = std::move(value);
  rep_.wide.value.shared = box;
}

void Variant::SetText(std::string_view text) {
  if (text.size() <= kShortTextMax) {
    new (&rep_.small) Small;
    rep_.small.kind = kShortText;
    rep_.small.size = static_cast<uint8_t>(text.size());
    if (!text.empty()) std::memcpy(rep_.small.chars, text.data(), text.size());
    return;
  }
  void* memory = ::operator new(sizeof(TextBlock) + text.size());
  auto* block = new (memory) TextBlock;
  block->size = text.size();
  std::memcpy(reinterpret_cast<char*>(block + 1), text.data(), text.size());
  rep_.wide.kind = kLongText;
  rep_.wide.value.shared = block;
}

void Variant::ReleaseShared() noexcept {
  SharedBlock* shared = rep_.wide.value.shared;
  if (shared->refs.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  if (Kind() == kObject) {
    delete static_cast<ObjectBox*>(shared);
  } else {
    auto* block = static_cast<TextBlock*>(shared);
    block->~TextBlock();
    ::operator delete(block);
  }
}

bool operator==(const Variant& a, const Variant& b) noexcept {
  using Held = Variant::Held;
  if (a.IsString() || b.IsString()) return a.IsString() && b.IsString() && a.Text() == b.Text();
  if (a.Kind() != b.Kind()) return false;
  const Variant::Payload& x = a.rep_.wide.value;
  const Variant::Payload& y = b.rep_.wide.value;
  switch (a.Kind()) {
    case Held::kBool:
      return x.b == y.b;
    case Held::kInteger:
      return x.i16 == y.i16;
    case Held::kLong:
      return x.i32 == y.i32;
    case Held::kLongLong:
      return x.i64 == y.i64;
    case Held::kSingle:
      return x.f == y.f;
    case Held::kDouble:
      return x.d == y.d;
    case Held::kCurrency:
      return x.currency == y.currency;
    case Held::kDate:
      return x.date == y.date;
    case Held::kObject:
      return a.ObjectValue() == b.ObjectValue();
    default:  // Empty, Null
      return true;
  }
}

bool Variant::IsNumber() const {
  switch (Type()) {
    case vbInteger:
    case vbLong:
    case vbLongLong:
    case vbSingle:
    case vbDouble:
    case vbCurrency:
      return true;
    default:
      return false;
  }
}

std::shared_ptr<Object> Variant::ObjectValue() const {
  if (Kind() != kObject) return nullptr;
  return static_cast<const ObjectBox*>(rep_.wide.value.shared)->object;
}

double RoundHalfEven(double value) {
  // nearbyint rounds in the current mode; the default mode is to-nearest-even.
  const int mode = std::fegetround();
  if (mode != FE_TONEAREST) std::fesetround(FE_TONEAREST);
  const double r = std::nearbyint(value);
  if (mode != FE_TONEAREST) std::fesetround(mode);
  return r;
}

std::string NumberText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
  if (value == 0) return "0";
  // Fifteen significant digits, trailing zeros dropped.
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.14e", value);
  std::string text(buffer);
  const size_t e = text.find('e');
  std::string mantissa = text.substr(0, e);
  const int exponent = std::atoi(text.c_str() + e + 1);
  const bool negative = mantissa[0] == '-';
  if (negative) mantissa.erase(0, 1);
  std::string digits;
  for (char c : mantissa) {
    if (c != '.') digits += c;
  }
  while (digits.size() > 1 && digits.back() == '0')
    digits.pop_back();
  std::string out;
  if (exponent >= 15 || exponent < -6) {
    out = digits.substr(0, 1);
    if (digits.size() > 1) out += "." + digits.substr(1);
    char exp[16];
    std::snprintf(exp, sizeof exp, "E%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
    out += exp;
  } else if (exponent < 0) {
    out = "0." + std::string(static_cast<size_t>(-exponent - 1), '0') + digits;
  } else {
    const size_t whole = static_cast<size_t>(exponent) + 1;
    if (digits.size() <= whole) {
      out = digits + std::string(whole - digits.size(), '0');
    } else {
      out = digits.substr(0, whole) + "." + digits.substr(whole);
    }
  }
  return negative ? "-" + out : out;
}

std::string DateText(Date d) {
  if (!HasTime(d)) return Format(d, "mm/dd/yyyy");
  if (static_cast<int64_t>(d.Serial()) == 0) return Format(d, "hh:nn:ss");
  return Format(d, "mm/dd/yyyy hh:nn:ss");
}

std::string CStr(const Variant& v) {
  switch (v.Type()) {
    case vbEmpty:
      return "";
    case vbNull:
      ThrowInvalidNull();
    case vbBoolean:
      return *v.Get<bool>() ? "True" : "False";
    case vbInteger:
      return std::to_string(*v.Get<int16_t>());
    case vbLong:
      return std::to_string(*v.Get<int32_t>());
    case vbLongLong:
      return std::to_string(*v.Get<int64_t>());
    case vbSingle: {
      std::string s = TrimmedNumber("%.7g", *v.Get<float>());
      // Reuse the double writer on the float's own seven digits.
      return NumberText(std::strtod(s.c_str(), nullptr));
    }
    case vbDouble:
      return NumberText(*v.Get<double>());
    case vbCurrency: {
      const int64_t scaled = v.Get<Currency>()->scaled;
      const uint64_t magnitude =
          scaled < 0 ? 0 - static_cast<uint64_t>(scaled) : static_cast<uint64_t>(scaled);
      std::string out = std::to_string(magnitude / 10000);
      std::string fraction = std::to_string(magnitude % 10000 + 10000).substr(1);
      while (!fraction.empty() && fraction.back() == '0')
        fraction.pop_back();
      if (!fraction.empty()) out += "." + fraction;
      return scaled < 0 ? "-" + out : out;
    }
    case vbDate:
      return DateText(*v.Get<Date>());
    case vbString:
      return std::string(v.Text());
    case vbObject:
    default:
      ThrowTypeMismatch();
  }
}

int16_t CInt(const Variant& v) {
  return ToInteger<int16_t>(v);
}
int32_t CLng(const Variant& v) {
  return ToInteger<int32_t>(v);
}
int64_t CLngLng(const Variant& v) {
  return ToInteger<int64_t>(v);
}

double CDbl(const Variant& v) {
  return NumericValue(v);
}

float CSng(const Variant& v) {
  const double d = CDbl(v);
  if (std::isfinite(d) && std::fabs(d) > std::numeric_limits<float>::max()) ThrowOverflow();
  return static_cast<float>(d);
}

Currency CCur(const Variant& v) {
  if (const auto* c = v.Get<Currency>()) return *c;
  if (v.IsString()) {
    if (const auto c = ParseCurrency(v.Text())) return *c;
  }
  return Currency::FromDouble(CDbl(v));
}

bool CBool(const Variant& v) {
  if (const auto* b = v.Get<bool>()) return *b;
  if (v.IsString()) {
    const std::string_view s = TrimSpace(v.Text());
    if (EqualsNoCase(s, "True")) return true;
    if (EqualsNoCase(s, "False")) return false;
    if (auto n = ParseNumber(s)) return *n != 0;
    ThrowTypeMismatch();
  }
  return NumericValue(v) != 0;
}

Date CDate(const Variant& v) {
  switch (v.Type()) {
    case vbDate:
      return *v.Get<Date>();
    case vbString: {
      const std::string_view s = v.Text();
      if (auto d = ParseDate(s)) return *d;
      if (auto n = ParseNumber(s)) return DateOfSerial(*n);
      ThrowTypeMismatch();
    }
    default:
      return DateOfSerial(NumericValue(v));
  }
}

std::string TextOf(const Variant& v) {
  if (v.IsNull() || v.IsEmpty()) return "";
  return CStr(v);
}

bool IsDate(const Variant& v) {
  if (v.Type() == vbDate) return true;
  if (v.IsString()) return ParseDate(v.Text()).has_value();
  return false;
}

bool IsNumeric(const Variant& v) {
  switch (v.Type()) {
    case vbEmpty:
    case vbBoolean:
      return true;
    case vbString:
      return ParseNumber(v.Text()).has_value();
    default:
      return v.IsNumber();
  }
}

int CompareValues(const Variant& a, const Variant& b) {
  // Two Longs, the usual key column against its criteria: the answer without
  // the general path (criteria compare row by row).
  if (const auto* x = a.Get<int32_t>()) {
    if (const auto* y = b.Get<int32_t>()) return (*x > *y) - (*x < *y);
  }
  const bool a_none = a.IsNull() || a.IsEmpty();
  const bool b_none = b.IsNull() || b.IsEmpty();
  if (a_none || b_none) return static_cast<int>(b_none) - static_cast<int>(a_none);
  auto numeric = [](const Variant& v) -> std::optional<double> {
    if (v.IsNumber() || v.Type() == vbBoolean || v.Type() == vbDate) return NumericValue(v);
    return std::nullopt;
  };
  std::optional<double> na = numeric(a);
  std::optional<double> nb = numeric(b);
  // Text meets a number by the number it reads as, and a date by the date.
  auto text_value = [](std::string_view text, bool as_date) -> std::optional<double> {
    if (!as_date) return ParseNumber(text);
    if (auto d = ParseDate(text)) return d->Serial();
    return std::nullopt;
  };
  if (na && !nb && b.IsString()) nb = text_value(b.Text(), a.Type() == vbDate);
  if (nb && !na && a.IsString()) na = text_value(a.Text(), b.Type() == vbDate);
  if (na && nb) return *na < *nb ? -1 : (*na > *nb ? 1 : 0);
  if (a.IsObject() || b.IsObject()) ThrowTypeMismatch();
  // Texts are compared in place, folded as ASCII as the databases' own
  // case-blind comparisons are (and without a locale look-up per
  // character: criteria compare row by row).
  std::string a_text, b_text;
  const std::string_view ta = a.IsString() ? a.Text() : std::string_view(a_text = CStr(a));
  const std::string_view tb = b.IsString() ? b.Text() : std::string_view(b_text = CStr(b));
  auto fold = [](char c) {
    const auto u = static_cast<unsigned char>(c);
    return (u >= 'A' && u <= 'Z') ? u + ('a' - 'A') : static_cast<int>(u);
  };
  const size_t n = std::min(ta.size(), tb.size());
  for (size_t i = 0; i < n; ++i) {
    const int ca = fold(ta[i]);
    const int cb = fold(tb[i]);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  return ta.size() < tb.size() ? -1 : (ta.size() > tb.size() ? 1 : 0);
}

std::ostream& operator<<(std::ostream& os, const Variant& v) {
  switch (v.Type()) {
    case vbEmpty:
      return os << "Empty";
    case vbNull:
      return os << "Null";
    case vbObject:
      return os << "Object(" << v.ObjectValue().get() << ")";
    case vbString:
      return os << "String(\"" << v.Text() << "\")";
    default:
      return os << "Variant(type " << v.Type() << ": " << CStr(v) << ")";
  }
}

void PrintTo(const Variant& v, std::ostream* os) {
  *os << v;
}

}  // namespace kelvary
