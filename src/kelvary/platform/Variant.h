// Variant: the automation value that crosses every interface of the system,
// and the one module that converts it. Empty (never assigned) and Null (no
// value, as read from a NULL column) are different kinds everywhere.
//
// Conversions follow the classic automation rules: booleans are -1/0 as
// numbers and True/False as text, conversion to the integer kinds rounds
// halves to even, and a value that does not fit raises Error 6 (overflow),
// one that cannot be read raises Error 13 (type mismatch), and Null raises
// Error 94 (invalid use of Null). TextOf is the null-safe text join that
// the system uses wherever it reads a string column.
//
// A Variant is a value type; an Object kind shares its object.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "kelvary/platform/Date.h"

namespace kelvary {

// Object: the base of everything a Variant can hold by reference
// (recordsets, host objects).
class Object {
 public:
  virtual ~Object() = default;
};

// The kinds, numbered as the automation runtime numbers them.
enum VariantType : int16_t {
  vbEmpty = 0,
  vbNull = 1,
  vbInteger = 2,
  vbLong = 3,
  vbSingle = 4,
  vbDouble = 5,
  vbCurrency = 6,
  vbDate = 7,
  vbString = 8,
  vbObject = 9,
  vbBoolean = 11,
  vbLongLong = 20,
};

// Currency: a fixed-point number with four decimals, held as value x 10000.
struct Currency {
  int64_t scaled = 0;

  static Currency FromDouble(double value);  // halves to even at the fourth decimal
  double ToDouble() const { return static_cast<double>(scaled) / 10000.0; }
  friend bool operator==(Currency a, Currency b) = default;
  friend auto operator<=>(Currency a, Currency b) = default;
};

class Variant {
 public:
  struct NullTag {
    friend bool operator==(NullTag, NullTag) = default;
  };

  Variant() = default;  // Empty
  Variant(bool value) : value_(value) {}
  Variant(int16_t value) : value_(value) {}
  Variant(int32_t value) : value_(value) {}
  Variant(int64_t value) : value_(value) {}
  Variant(float value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(Currency value) : value_(value) {}
  Variant(Date value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(std::shared_ptr<Object> value) : value_(std::move(value)) {}
  template <class T>
  requires(std::is_base_of_v<Object, T> && !std::is_same_v<T, Object>)
      Variant(std::shared_ptr<T> value)
      : value_(std::shared_ptr<Object>(std::move(value))) {}

  static Variant Null() {
    Variant v;
    v.value_ = NullTag{};
    return v;
  }

  VariantType Type() const;
  bool IsEmpty() const { return value_.index() == 0; }
  bool IsNull() const { return std::holds_alternative<NullTag>(value_); }
  bool IsObject() const { return std::holds_alternative<std::shared_ptr<Object>>(value_); }
  bool IsString() const { return std::holds_alternative<std::string>(value_); }
  // IsNumber: Integer, Long, LongLong, Single, Double or Currency.
  bool IsNumber() const;

  // Raw access to the held value; nullptr when the kind differs.
  template <class T>
  const T* Get() const {
    return std::get_if<T>(&value_);
  }
  // The held object (nullptr when not an object or an empty reference).
  std::shared_ptr<Object> ObjectValue() const;
  template <class T>
  std::shared_ptr<T> ObjectAs() const {
    return std::dynamic_pointer_cast<T>(ObjectValue());
  }

  // Strict equality: same kind and same value (Empty equals Empty, Null
  // equals Null, objects by identity). For comparisons by value across
  // kinds use CompareValues.
  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  std::variant<std::monostate, NullTag, bool, int16_t, int32_t, int64_t, float, double, Currency,
               Date, std::string, std::shared_ptr<Object>>
      value_;
};

// Conversions. Each throws Error 94 for Null, 13 for a value it cannot read
// and 6 for one that does not fit; Empty converts to 0, "", False or the
// zero date.
std::string CStr(const Variant& v);
int16_t CInt(const Variant& v);
int32_t CLng(const Variant& v);
int64_t CLngLng(const Variant& v);
float CSng(const Variant& v);
double CDbl(const Variant& v);
Currency CCur(const Variant& v);
bool CBool(const Variant& v);
Date CDate(const Variant& v);

// TextOf: "" & v, the null-safe text join: Null and Empty give "", anything
// else its CStr.
std::string TextOf(const Variant& v);

// IsDate: a Date, or text that reads as one (see ParseDate).
bool IsDate(const Variant& v);
// IsNumeric: a number, a boolean, Empty, or text that reads as a number.
bool IsNumeric(const Variant& v);

// NumberText: a double in its shortest decimal form, as CStr writes it
// (15 significant digits, exponent form for very large or small values).
std::string NumberText(double value);
// DateText: a date as CStr writes it: mm/dd/yyyy, then hh:nn:ss when there
// is a time of day (the time alone for day zero).
std::string DateText(Date d);

// RoundHalfEven: rounds to the nearest whole number, halves to the even one.
double RoundHalfEven(double value);

// CompareValues orders two values for sorting and criteria: numbers
// (booleans and dates included) by value, texts case-insensitively, a
// number against text that reads as a number by value, otherwise by text.
// Null and Empty sort first. Returns <0, 0 or >0.
int CompareValues(const Variant& a, const Variant& b);

// For test failure output and logs: the kind and the value.
std::ostream& operator<<(std::ostream& os, const Variant& v);
void PrintTo(const Variant& v, std::ostream* os);

}  // namespace kelvary
