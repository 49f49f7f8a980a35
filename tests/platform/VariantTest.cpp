#include "kelvary/platform/Variant.h"

#include <gtest/gtest.h>

#include <limits>

#include "kelvary/platform/Error.h"
#include "support/ErrorNumber.h"

namespace kelvary {
namespace {

using testing::ErrorNumberOf;

TEST(Variant, EmptyAndNullAreDifferentKinds) {
  Variant empty;
  Variant null = Variant::Null();
  EXPECT_EQ(empty.Type(), vbEmpty);
  EXPECT_EQ(null.Type(), vbNull);
  EXPECT_TRUE(empty.IsEmpty() && !empty.IsNull());
  EXPECT_TRUE(null.IsNull() && !null.IsEmpty());
  EXPECT_NE(empty, null);
  // Empty converts to the zero of every kind; Null converts to nothing.
  EXPECT_EQ(CStr(empty), "");
  EXPECT_EQ(CLng(empty), 0);
  EXPECT_FALSE(CBool(empty));
  EXPECT_EQ(ErrorNumberOf([&] { CStr(null); }), kErrInvalidUseOfNull);
  EXPECT_EQ(ErrorNumberOf([&] { CLng(null); }), kErrInvalidUseOfNull);
  EXPECT_EQ(ErrorNumberOf([&] { CDate(null); }), kErrInvalidUseOfNull);
  // The text join reads both as "".
  EXPECT_EQ(TextOf(null), "");
  EXPECT_EQ(TextOf(empty), "");
  EXPECT_EQ(TextOf(Variant(int32_t{7})), "7");
}

TEST(Variant, KindsFollowTheConstructorArgument) {
  EXPECT_EQ(Variant(true).Type(), vbBoolean);
  EXPECT_EQ(Variant(int16_t{1}).Type(), vbInteger);
  EXPECT_EQ(Variant(1).Type(), vbLong);
  EXPECT_EQ(Variant(int64_t{1}).Type(), vbLongLong);
  EXPECT_EQ(Variant(1.0f).Type(), vbSingle);
  EXPECT_EQ(Variant(1.0).Type(), vbDouble);
  EXPECT_EQ(Variant(Currency{10000}).Type(), vbCurrency);
  EXPECT_EQ(Variant(DateSerial(2024, 3, 5)).Type(), vbDate);
  EXPECT_EQ(Variant("x").Type(), vbString);
  EXPECT_EQ(Variant(std::make_shared<Object>()).Type(), vbObject);
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

TEST(Variant, ToTextWritesTheRuntimeForms) {
  EXPECT_EQ(CStr(Variant(true)), "True");
  EXPECT_EQ(CStr(Variant(false)), "False");
  EXPECT_EQ(CStr(Variant(-42)), "-42");
  EXPECT_EQ(CStr(Variant(2.5)), "2.5");
  EXPECT_EQ(CStr(Variant(0.1 + 0.2)), "0.3");  // fifteen significant digits
  EXPECT_EQ(CStr(Variant(100.0)), "100");
  EXPECT_EQ(CStr(Variant(1e15)), "1E+15");
  EXPECT_EQ(CStr(Variant(1.5e-7)), "1.5E-07");
  EXPECT_EQ(CStr(Variant(0.000001)), "0.000001");
  EXPECT_EQ(CStr(Variant(0.1f)), "0.1");
  EXPECT_EQ(CStr(Variant(Currency::FromDouble(12.5))), "12.5");
  EXPECT_EQ(CStr(Variant(Currency::FromDouble(-0.0001))), "-0.0001");
  EXPECT_EQ(CStr(Variant(DateSerial(2024, 3, 5))), "03/05/2024");
  EXPECT_EQ(CStr(Variant(DateTimeOf(2024, 3, 5, 14, 7, 9))), "03/05/2024 14:07:09");
  EXPECT_EQ(CStr(Variant(TimeSerial(10, 30, 0))), "10:30:00");
}

TEST(Variant, IntegerConversionRoundsHalvesToEven) {
  EXPECT_EQ(CLng(Variant(2.5)), 2);
  EXPECT_EQ(CLng(Variant(3.5)), 4);
  EXPECT_EQ(CLng(Variant(-2.5)), -2);
  EXPECT_EQ(CLng(Variant(2.4999)), 2);
  EXPECT_EQ(CInt(Variant(0.5)), 0);
  EXPECT_EQ(CInt(Variant(1.5)), 2);
  EXPECT_EQ(CLng(Variant(" 12 ")), 12);
  EXPECT_EQ(CLng(Variant("2.5")), 2);
  EXPECT_EQ(CLng(Variant("&H10")), 16);
  EXPECT_EQ(CLng(Variant(true)), -1);
  EXPECT_EQ(CLng(Variant(DateSerial(1900, 1, 1))), 2);
  EXPECT_EQ(CLngLng(Variant(int64_t{9007199254740993})), 9007199254740993);
}

TEST(Variant, ConversionFailuresRaiseOverflowOrTypeMismatch) {
  EXPECT_EQ(ErrorNumberOf([] { CLng(Variant(2147483647.5)); }), kErrOverflow);
  EXPECT_EQ(ErrorNumberOf([] { CLng(Variant(int64_t{1} << 40)); }), kErrOverflow);
  EXPECT_EQ(ErrorNumberOf([] { CInt(Variant(32768)); }), kErrOverflow);
  EXPECT_EQ(CInt(Variant(-32768)), -32768);
  EXPECT_EQ(ErrorNumberOf([] { CSng(Variant(1e300)); }), kErrOverflow);
  EXPECT_EQ(ErrorNumberOf([] { CLng(Variant("abc")); }), kErrTypeMismatch);
  EXPECT_EQ(ErrorNumberOf([] { CLng(Variant("")); }), kErrTypeMismatch);
  EXPECT_EQ(ErrorNumberOf([] { CDbl(Variant("1,5")); }), kErrTypeMismatch);
  EXPECT_EQ(ErrorNumberOf([] { CDbl(Variant("inf")); }), kErrTypeMismatch);
  EXPECT_EQ(ErrorNumberOf([] { CBool(Variant("yes")); }), kErrTypeMismatch);
  EXPECT_EQ(ErrorNumberOf([] { CDate(Variant("31/31/2024")); }), kErrTypeMismatch);
}

TEST(Variant, BooleanConversionReadsWordsAndNumbers) {
  EXPECT_TRUE(CBool(Variant("True")));
  EXPECT_TRUE(CBool(Variant(" true ")));
  EXPECT_FALSE(CBool(Variant("FALSE")));
  EXPECT_TRUE(CBool(Variant("-1")));
  EXPECT_FALSE(CBool(Variant("0")));
  EXPECT_TRUE(CBool(Variant(0.1)));
  EXPECT_FALSE(CBool(Variant(int16_t{0})));
}

TEST(Variant, DateConversionAndIsDate) {
  EXPECT_EQ(CDate(Variant("2024-03-05")), DateSerial(2024, 3, 5));
  EXPECT_EQ(CDate(Variant("3/5/2024")), DateSerial(2024, 3, 5));
  EXPECT_EQ(CDate(Variant("05-Mar-2024")), DateSerial(2024, 3, 5));
  EXPECT_EQ(CDate(Variant(2.0)), DateSerial(1900, 1, 1));
  EXPECT_TRUE(IsDate(Variant(DateSerial(2024, 1, 1))));
  EXPECT_TRUE(IsDate(Variant("2024-02-29 10:15")));
  EXPECT_FALSE(IsDate(Variant("2023-02-29")));
  EXPECT_FALSE(IsDate(Variant(45000.0)));  // a number is not a date
  EXPECT_FALSE(IsDate(Variant::Null()));
  EXPECT_FALSE(IsDate(Variant()));
}

TEST(Variant, IsNumericAcceptsNumbersBooleansAndNumericText) {
  EXPECT_TRUE(IsNumeric(Variant(" 1.5e3 ")));
  EXPECT_TRUE(IsNumeric(Variant(true)));
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_FALSE(IsNumeric(Variant("12a")));
  EXPECT_FALSE(IsNumeric(Variant(DateSerial(2024, 1, 1))));
}

TEST(Variant, CompareValuesOrdersByValueAcrossKinds) {
  EXPECT_EQ(CompareValues(Variant(2), Variant(10.0)), -1);
  EXPECT_EQ(CompareValues(Variant(int64_t{10}), Variant("10")), 0);  // text that reads as a number
  EXPECT_EQ(CompareValues(Variant("abc"), Variant("ABD")), -1);      // text without case
  EXPECT_EQ(CompareValues(Variant("Smith"), Variant("smith")), 0);
  EXPECT_EQ(CompareValues(Variant(DateSerial(2024, 3, 5)), Variant("2024-03-05")), 0);
  EXPECT_EQ(CompareValues(Variant::Null(), Variant(0)), -1);
  EXPECT_EQ(CompareValues(Variant::Null(), Variant()), 0);
  EXPECT_EQ(CompareValues(Variant(true), Variant(-1)), 0);
}

}  // namespace
}  // namespace kelvary
