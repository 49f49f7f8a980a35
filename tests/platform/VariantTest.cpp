#include "kelvary/platform/Variant.h"

#include <gtest/gtest.h>

#include "kelvary/platform/Error.h"
#include "support/ErrorNumber.h"

namespace kelvary {
namespace {

using testing::ErrorNumberOf;

// Each: f applied to every value, the results as text joined by '|'.
template <typename F>
std::string Each(std::initializer_list<Variant> values, F f) {
  std::string out;
  for (const Variant& v : values)
    out += (out.empty() ? "" : "|") + TextOf(Variant(f(v)));
  return out;
}

TEST(Variant, EmptyConvertsToZeroNullToNothing) {
  const Variant empty, null = Variant::Null();
  EXPECT_TRUE(empty.IsEmpty() && !empty.IsNull() && null.IsNull() && !null.IsEmpty());
  EXPECT_NE(empty, null);
  EXPECT_EQ(CStr(empty) + CStr(Variant(CLng(empty))) + CStr(Variant(CBool(empty))), "0False");
  EXPECT_EQ(ErrorNumberOf([&] { CStr(null); }), kErrInvalidUseOfNull);
  EXPECT_EQ(ErrorNumberOf([&] { CLng(null); }), kErrInvalidUseOfNull);
  EXPECT_EQ(ErrorNumberOf([&] { CDate(null); }), kErrInvalidUseOfNull);
  // The text join reads both as "".
  EXPECT_EQ(TextOf(null) + TextOf(empty) + TextOf(Variant(int32_t{7})), "7");
}

TEST(Variant, ObjectsAreSharedNotCopied) {
  struct Thing : Object {
    int n = 1;
  };
  auto thing = std::make_shared<Thing>();
  Variant v(thing);
  Variant copy = v;
  copy.ObjectAs<Thing>()->n = 5;
  EXPECT_EQ(thing->n, 5);
  EXPECT_EQ(v, copy);
  EXPECT_EQ(ErrorNumberOf([&] { CStr(v); }), kErrTypeMismatch);
}

// Texts of every length (held in the value itself up to a few bytes,
// beyond that in a block copies share) keep their characters through copy,
// move and assignment, and compare by content whatever their length.
TEST(Variant, TextsKeepTheirValueThroughCopyMoveAndAssignment) {
  for (const std::string& text :
       {std::string(), std::string("a"), std::string(14, 'x'), std::string(15, 'y'),
        std::string("with\0nul", 8), std::string(300, 'z')}) {
    SCOPED_TRACE(text.size());
    Variant v(text);
    EXPECT_TRUE(v.IsString());
    EXPECT_EQ(v.Type(), vbString);
    Variant copy = v;
    Variant moved = std::move(copy);
    Variant assigned = Variant(int32_t{1});
    assigned = moved;
    assigned = assigned;      // self-assignment keeps the text
    v = Variant(int32_t{2});  // the first holder lets go; the others keep it
    EXPECT_EQ(moved.Text(), text);
    EXPECT_EQ(assigned.Text(), text);
    EXPECT_EQ(CStr(assigned), text);
    EXPECT_EQ(assigned, Variant(std::string_view(text)));
    EXPECT_NE(assigned, Variant(text + "!"));
  }
  // Equality is strict about the kind: the text "1" is not the number 1.
  EXPECT_NE(Variant("1"), Variant(int32_t{1}));
  EXPECT_NE(Variant(int16_t{1}), Variant(int32_t{1}));
  EXPECT_EQ(Variant(Date(2.5)), Variant(Date(2.5)));
  EXPECT_EQ(Variant(int32_t{3}).Get<double>(), nullptr);
  EXPECT_EQ(Variant(int32_t{3}).Text(), "");
}

TEST(Variant, ToTextWritesTheRuntimeForms) {
  // Doubles keep fifteen significant digits: 0.1 + 0.2 reads "0.3".
  EXPECT_EQ(Each({true, false, -42, 2.5, 0.1 + 0.2, 100.0, 1e15, 1.5e-7, 0.000001, 0.1f},
                 [](const Variant& v) { return CStr(v); }),
            "True|False|-42|2.5|0.3|100|1E+15|1.5E-07|0.000001|0.1");
  EXPECT_EQ(Each({Currency::FromDouble(12.5), Currency::FromDouble(-0.0001), DateSerial(2024, 3, 5),
                  DateTimeOf(2024, 3, 5, 14, 7, 9), TimeSerial(10, 30, 0)},
                 [](const Variant& v) { return CStr(v); }),
            "12.5|-0.0001|03/05/2024|03/05/2024 14:07:09|10:30:00");
}

TEST(Variant, IntegerConversionRoundsHalvesToEvenAndReadsText) {
  EXPECT_EQ(Each({2.5, 3.5, -2.5, 2.4999, " 12 ", "2.5", "&H10", true, DateSerial(1900, 1, 1)},
                 [](const Variant& v) { return CLng(v); }),
            "2|4|-2|2|12|2|16|-1|2");
  EXPECT_EQ(Each({0.5, 1.5, -32768}, [](const Variant& v) { return CInt(v); }), "0|2|-32768");
  EXPECT_EQ(CLngLng(Variant(int64_t{9007199254740993})), 9007199254740993);
  // Whole-number text is read exactly, to the last of 64 bits.
  EXPECT_EQ(Each({"9223372036854775807", "-9223372036854775808", " +9007199254740993 "},
                 [](const Variant& v) { return CLngLng(v); }),
            "9223372036854775807|-9223372036854775808|9007199254740993");
  // Decimal text is a currency to the fourth decimal, halves to even, at any size.
  EXPECT_EQ(Each({"922337203685477.5807", "-922337203685477.5808", "0.00005", "0.00015",
                  "-0.000150001", " 12.5 ", "1e3"},
                 [](const Variant& v) { return CCur(v); }),
            "922337203685477.5807|-922337203685477.5808|0|0.0002|-0.0002|12.5|1000");
}

TEST(Variant, ConversionFailuresRaiseOverflowOrTypeMismatch) {
  const std::function<void()> overflow[] = {
      [] { CLng(Variant(2147483647.5)); }, [] { CLng(Variant(int64_t{1} << 40)); },
      [] { CInt(Variant(32768)); }, [] { CSng(Variant(1e300)); },
      // 2^63 and beyond, as text and as a double (which the largest Long Long
      // itself rounds to)
      [] { CLngLng(Variant("9223372036854775808")); },
      [] { CLngLng(Variant("-9223372036854775809")); },
      [] { CLngLng(Variant(9223372036854775807.0)); }, [] { CLngLng(Variant("9.3e18")); },
      [] { CLng(Variant("2147483648")); }, [] { CCur(Variant("922337203685477.5808")); },
      [] { CCur(Variant("-99999999999999999999")); },
      // numbers taken for dates: as text the same years 100 to 9999 as numbers
      [] { CDate(Variant("1e19")); }, [] { CDate(Variant("100000000")); },
      [] { CDate(Variant(100000000.0)); }, [] { CDate(Variant("-700000")); }};
  const std::function<void()> mismatch[] = {
      [] { CLng(Variant("abc")); },   [] { CLng(Variant("")); },
      [] { CDbl(Variant("1,5")); },   [] { CDbl(Variant("inf")); },
      [] { CBool(Variant("yes")); },  [] { CDate(Variant("31/31/2024")); },
      [] { CLngLng(Variant("+-5")); }};
  for (const auto& call : overflow)
    EXPECT_EQ(ErrorNumberOf(call), kErrOverflow);
  for (const auto& call : mismatch)
    EXPECT_EQ(ErrorNumberOf(call), kErrTypeMismatch);
}

TEST(Variant, BooleanDateAndNumericTests) {
  EXPECT_EQ(Each({"True", " true ", "FALSE", "-1", "0", 0.1, int16_t{0}},
                 [](const Variant& v) { return CBool(v); }),
            "True|True|False|True|False|True|False");
  EXPECT_EQ(Each({"2024-03-05", "3/5/2024", "05-Mar-2024", 2.0},
                 [](const Variant& v) { return CDate(v); }),
            "03/05/2024|03/05/2024|03/05/2024|01/01/1900");
  // A number is not a date, nor is a day that does not exist.
  EXPECT_EQ(Each({DateSerial(2024, 1, 1), "2024-02-29 10:15", "2023-02-29", 45000.0,
                  Variant::Null(), Variant()},
                 [](const Variant& v) { return IsDate(v); }),
            "True|True|False|False|False|False");
  EXPECT_EQ(Each({" 1.5e3 ", true, Variant(), Variant::Null(), "12a", DateSerial(2024, 1, 1)},
                 [](const Variant& v) { return IsNumeric(v); }),
            "True|True|True|False|False|False");
}

TEST(Variant, CompareValuesOrdersByValueAcrossKinds) {
  // Text that reads as a number compares as that number; texts ignore case.
  const std::pair<Variant, Variant> pairs[] = {{2, 10.0},
                                               {int64_t{10}, "10"},
                                               {"abc", "ABD"},
                                               {"Smith", "smith"},
                                               {DateSerial(2024, 3, 5), "2024-03-05"},
                                               {Variant::Null(), 0},
                                               {Variant::Null(), Variant()},
                                               {true, -1}};
  std::string results;
  for (const auto& [a, b] : pairs)
    results += std::to_string(CompareValues(a, b)) + " ";
  EXPECT_EQ(results, "-1 0 -1 0 0 -1 0 0 ");
}

}  // namespace
}  // namespace kelvary
