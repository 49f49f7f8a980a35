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

#include <atomic>
#include <compare>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

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

  Variant() noexcept = default;  // Empty
  Variant(bool value) noexcept : Variant(kBool) { rep_.wide.value.b = value; }
  Variant(int16_t value) noexcept : Variant(kInteger) { rep_.wide.value.i16 = value; }
  Variant(int32_t value) noexcept : Variant(kLong) { rep_.wide.value.i32 = value; }
  Variant(int64_t value) noexcept : Variant(kLongLong) { rep_.wide.value.i64 = value; }
  Variant(float value) noexcept : Variant(kSingle) { rep_.wide.value.f = value; }
  Variant(double value) noexcept : Variant(kDouble) { rep_.wide.value.d = value; }
  Variant(Currency value) noexcept : Variant(kCurrency) {
    new (&rep_.wide.value.currency) Currency(value);
  }
  Variant(Date value) noexcept : Variant(kDate) { new (&rep_.wide.value.date) Date(value); }
  Variant(std::string_view value) { SetText(value); }
  Variant(const std::string& value) { SetText(value); }
  Variant(const char* value) { SetText(value); }
  Variant(std::shared_ptr<Object> value);
  template <class T>
  requires(std::is_base_of_v<Object, T> && !std::is_same_v<T, Object>)
      Variant(std::shared_ptr<T> value)
      : Variant(std::shared_ptr<Object>(std::move(value))) {}

  Variant(const Variant& other) noexcept : rep_(other.rep_) { Retain(); }
  Variant(Variant&& other) noexcept : rep_(other.rep_) { other.rep_.wide.kind = kEmpty; }
  Variant& operator=(const Variant& other) noexcept {
    other.Retain();
    Release();
    rep_ = other.rep_;
    return *this;
  }
  Variant& operator=(Variant&& other) noexcept {
    if (this != &other) {
      Release();
      rep_ = other.rep_;
      other.rep_.wide.kind = kEmpty;
    }
    return *this;
  }
  ~Variant() { Release(); }

  static Variant Null() noexcept { return Variant(kNull); }

  VariantType Type() const noexcept {
    static constexpr VariantType kTypes[] = {vbEmpty,    vbNull,   vbBoolean, vbInteger,  vbLong,
                                             vbLongLong, vbSingle, vbDouble,  vbCurrency, vbDate,
                                             vbString,   vbString, vbObject};
    return kTypes[Kind()];
  }
  bool IsEmpty() const noexcept { return Kind() == kEmpty; }
  bool IsNull() const noexcept { return Kind() == kNull; }
  bool IsObject() const noexcept { return Kind() == kObject; }
  bool IsString() const noexcept { return Kind() == kShortText || Kind() == kLongText; }
  // IsNumber: Integer, Long, LongLong, Single, Double or Currency.
  bool IsNumber() const;

  // Raw access to a held number, boolean or date; nullptr when the kind
  // differs. Texts are read with Text(), objects with ObjectValue().
  template <class T>
  const T* Get() const noexcept {
    if constexpr (std::is_same_v<T, bool>) {
      return Kind() == kBool ? &rep_.wide.value.b : nullptr;
    } else if constexpr (std::is_same_v<T, int16_t>) {
      return Kind() == kInteger ? &rep_.wide.value.i16 : nullptr;
    } else if constexpr (std::is_same_v<T, int32_t>) {
      return Kind() == kLong ? &rep_.wide.value.i32 : nullptr;
    } else if constexpr (std::is_same_v<T, int64_t>) {
      return Kind() == kLongLong ? &rep_.wide.value.i64 : nullptr;
    } else if constexpr (std::is_same_v<T, float>) {
      return Kind() == kSingle ? &rep_.wide.value.f : nullptr;
    } else if constexpr (std::is_same_v<T, double>) {
      return Kind() == kDouble ? &rep_.wide.value.d : nullptr;
    } else if constexpr (std::is_same_v<T, Currency>) {
      return Kind() == kCurrency ? &rep_.wide.value.currency : nullptr;
    } else if constexpr (std::is_same_v<T, Date>) {
      return Kind() == kDate ? &rep_.wide.value.date : nullptr;
    } else {
      static_assert(kNotAKind<T>, "Get: texts are read with Text(), objects with ObjectValue()");
      return nullptr;
    }
  }
  // Text: the held text, valid while this Variant holds it unchanged; empty
  // when the value is not a string.
  std::string_view Text() const noexcept {
    if (Kind() == kShortText) return {rep_.small.chars, rep_.small.size};
    if (Kind() == kLongText) {
      const auto* block = static_cast<const TextBlock*>(rep_.wide.value.shared);
      return {reinterpret_cast<const char*>(block + 1), block->size};
    }
    return {};
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
  friend bool operator==(const Variant& a, const Variant& b) noexcept;

 private:
  // The representation: sixteen bytes, a kind and an eight-byte value.
  // Texts up to kShortTextMax bytes sit in the Variant itself; longer texts
  // and objects in a counted block that copies share (texts never change
  // in place, so sharing is invisible).
  enum Held : uint8_t {
    kEmpty,
    kNull,
    kBool,
    kInteger,
    kLong,
    kLongLong,
    kSingle,
    kDouble,
    kCurrency,
    kDate,
    kShortText,
    kLongText,  // kLongText and kObject, the counted kinds, come last
    kObject,
  };
  static constexpr size_t kShortTextMax = 14;
  template <class>
  static constexpr bool kNotAKind = false;

  struct SharedBlock {
    std::atomic<uint32_t> refs{1};
  };
  struct ObjectBox;  // the held object's reference
  struct TextBlock : SharedBlock {
    size_t size = 0;  // the characters follow the block
  };
  union Payload {
    Payload() noexcept : i64(0) {}
    bool b;
    int16_t i16;
    int32_t i32;
    int64_t i64;
    float f;
    double d;
    Currency currency;
    Date date;
    SharedBlock* shared;
  };
  // Wide and Small begin alike with the kind, which either reads.
  struct Wide {
    Held kind;
    Payload value;
  };
  struct Small {
    Held kind;
    uint8_t size;
    char chars[kShortTextMax];
  };
  union Rep {
    Rep() noexcept : wide() { wide.kind = kEmpty; }
    Wide wide;
    Small small;
  };

  explicit Variant(Held kind) noexcept { rep_.wide.kind = kind; }
  Held Kind() const noexcept { return rep_.wide.kind; }
  void SetText(std::string_view text);
  void Retain() const noexcept {
    if (Kind() >= kLongText) rep_.wide.value.shared->refs.fetch_add(1, std::memory_order_relaxed);
  }
  void Release() noexcept {
    if (Kind() >= kLongText) ReleaseShared();
  }
  void ReleaseShared() noexcept;

  Rep rep_;
};

static_assert(sizeof(Variant) == 16, "a Variant is a kind and an eight-byte value");

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
