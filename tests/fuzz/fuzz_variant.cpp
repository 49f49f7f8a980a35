// Variant and Date conversions of text: numbers, currency and dates read
// from text, written back with CStr and read again must come back the same;
// a whole number must agree with the same text read as a double; number and
// date pictures must write any value without failing. The input is a value,
// optionally followed by a line break and a picture.
#include <cmath>

#include "FuzzSupport.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Variant.h"

using namespace kelvary;
using kelvary::fuzz::Refused;
using kelvary::fuzz::Violation;

namespace {

template <typename Int>
void CheckWhole(const Variant& text, std::string_view input, Int (*convert)(const Variant&)) {
  Int whole = 0;
  if (Refused([&] { whole = convert(text); })) return;
  double d = 0;
  if (Refused([&] { d = CDbl(text); })) Violation("a whole number that is no number", input);
  if (!(std::fabs(d - static_cast<double>(whole)) <= 0.5 + std::fabs(d) * 1e-15)) {
    Violation("read as " + std::to_string(whole) + " but as a double " + std::to_string(d), input);
  }
}

void CheckNumberRoundTrip(const Variant& text, std::string_view input) {
  double d = 0;
  if (Refused([&] { d = CDbl(text); })) return;
  const std::string once = CStr(Variant(d));
  double again = 0;
  if (Refused([&] { again = CDbl(Variant(once)); })) Violation("CStr wrote " + once, input);
  if (CStr(Variant(again)) != once)
    Violation(once + " read back as " + CStr(Variant(again)), input);
  // The whole part written by a picture reads back as the rounded value.
  const std::string rounded = FormatNumber(d, "0");
  double back = 0;
  if (Refused([&] { back = CDbl(Variant(rounded)); }))
    Violation("FormatNumber wrote " + rounded, input);
  const double expected = std::round(d);
  if (!(std::fabs(back - expected) <= std::fabs(expected) * 1e-14)) {
    Violation("FormatNumber(" + once + ", \"0\") wrote " + rounded, input);
  }
}

void CheckCurrencyRoundTrip(const Variant& text, std::string_view input) {
  Currency c;
  if (Refused([&] { c = CCur(text); })) return;
  const std::string once = CStr(Variant(c));
  Currency again;
  if (Refused([&] { again = CCur(Variant(once)); })) Violation("CStr wrote " + once, input);
  if (again.scaled != c.scaled) Violation(once + " read back as " + CStr(Variant(again)), input);
}

void CheckDateRoundTrip(const Variant& text, std::string_view input, std::string_view picture) {
  Date d;
  if (Refused([&] { d = CDate(text); })) return;
  std::string once;
  if (Refused([&] { once = CStr(Variant(d)); })) Violation("a date CStr cannot write", input);
  Date again;
  if (Refused([&] { again = CDate(Variant(once)); })) Violation("CStr wrote " + once, input);
  if (CStr(Variant(again)) != once)
    Violation(once + " read back as " + CStr(Variant(again)), input);
  if (Year(d) < 100 || Year(d) > 9999) Violation("year " + std::to_string(Year(d)), input);
  Format(d, picture);
  Format(d, "dddd d mmmm yyyy h:nn:ss AM/PM");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > fuzz::kMaxInput) return 0;
  const std::string_view input = fuzz::AsText(data, size);
  const size_t line = input.find('\n');
  const std::string_view value = input.substr(0, line);
  const std::string_view picture =
      line == std::string_view::npos ? std::string_view("0.00") : input.substr(line + 1);
  const Variant text{std::string(value)};

  CheckWhole<int64_t>(text, input, CLngLng);
  CheckWhole<int32_t>(text, input, CLng);
  CheckWhole<int16_t>(text, input, CInt);
  CheckNumberRoundTrip(text, input);
  CheckCurrencyRoundTrip(text, input);
  CheckDateRoundTrip(text, input, picture);
  Refused([&] { CBool(text); });
  Refused([&] { CSng(text); });
  IsNumeric(text);
  IsDate(text);
  Refused([&] { FormatNumber(CDbl(text), picture); });
  for (const Variant& other : {Variant(int32_t{42}), Variant(2.5), Variant(DateSerial(2024, 3, 5)),
                               Variant("42"), Variant::Null()})
    Refused([&] { CompareValues(text, other); });
  return 0;
}
