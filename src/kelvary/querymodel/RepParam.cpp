#include "kelvary/querymodel/RepParam.h"

#include <array>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/service/FieldDataTypeGroups.h"

// The phrases below are shown right after a parameter's title without
// trimming: every leading, trailing and doubled blank is deliberate, and so
// are the odd ones out ("Is  greater than" without a leading blank, "Equals "
// without one while " Does not equal " has one, " is " in lower case for
// gender, "Unhandled" against "unhandled").

namespace kelvary {
namespace {

// The range part of a date condition for one DateRangeSpecs value from 1001:
// lead + (if_reverse or if_not, by the reverse flag) + tail. A single-date
// range writes one date rather than a between form.
struct RangeText {
  const char* lead;
  const char* if_reverse;
  const char* if_not;
  const char* tail;
  bool single_date;
};

constexpr int32_t kFirstRange = drsUserSpecifiedDates;
constexpr std::array<RangeText, 33> kRangeTexts = {{
    {"User Specified Dates", "", "", "", false},                                  // 1001
    {"Is ", " not ", "", "  Today", true},                                        // 1002
    {"Is ", " not ", "", " Yesterday", true},                                     // 1003
    {"Is ", " not ", "", " Tomorrow", true},                                      // 1004
    {"Is any date ", " excluding ", " in ", " Week To Date From Sunday", false},  // 1005
    {"Is any date ", " excluding ", " in ", " Month To Date ", false},            // 1006
    {"Is any date ", " excluding ", " in ", " Year To Date", false},              // 1007
    {"Is any date ", " excluding ", " in ", " Last 7 Days", false},               // 1008
    {"Is any date ", " excluding ", " in ", " Last 4 Weeks To Sunday", false},    // 1009
    {"Is any date ", " excluding ", " in ", " Last Full Week", false},            // 1010
    {"Is any date ", " excluding ", " in ", " Last Full Month", false},           // 1011
    {"Is any date  ", " after  ", " To ", " Today", false},                       // 1012
    {"Is any date  ", " after  ", " To ", " Yesterday", false},                   // 1013
    {"Is any date ", " To  ", " after ", " Today", false},                        // 1014
    {"Is any date ", " To  ", " after ", " Tomorrow", false},                     // 1015
    {"Is any date ", " Not  ", "", " Aged 0 To 30 Days", false},                  // 1016
    {"Is any date ", " Not  ", "", " Aged 31 To 60 Days", false},                 // 1017
    {"Is any date ", " Not  ", "", " Aged 61 To 90 Days", false},                 // 1018
    {"Is any date ", " Not  ", "", " Over 90 Days", false},                       // 1019
    {"Is any date ", " Not  ", "", " in the next 30 Days", false},                // 1020
    {"Is any date ", " Not  ", "", " in the next 31 To 60 Days", false},          // 1021
    {"Is any date ", " Not  ", "", " in the next 61 To 90 Days", false},          // 1022
    {"Is any date ", " Not  ", "", " in the next 91 To 365 Days", false},         // 1023
    {"Is any date ", " Not  ", "", " in the First Quarter", false},               // 1024
    {"Is any date ", " Not  ", "", " in the Second Quarter", false},              // 1025
    {"Is any date ", " Not  ", "", " in the Third Quarter", false},               // 1026
    {"Is any date ", " Not  ", "", " in the Fourth Quarter", false},              // 1027
    {"Is any date ", " Not  ", "", " First Half of Calendar", false},             // 1028
    {"Is any date ", " Not  ", "", " Second Half of Calendar", false},            // 1029
    {"Last Year MTD", "", "", "", false},                                         // 1030
    {"Last Year YTD", "", "", "", false},                                         // 1031
    {"Financial YTD", "", "", "", false},                                         // 1032
    {"Last Financial YTD", "", "", "", false},                                    // 1033
}};

// ConvertsToTrue: whether v reads as true; Null and values that cannot be
// read as a boolean do not.
bool ConvertsToTrue(const Variant& v) {
  if (v.IsNull()) return false;
  try {
    return CBool(v);
  } catch (const Error&) {
    return false;
  }
}

// DayText: the calendar day of a date (or of text that reads as one), time
// dropped, as mm/dd/yyyy.
std::string DayText(const Variant& v) {
  return Format(DateOnly(CDate(v)), "mm/dd/yyyy");
}

std::string Not(bool reverse) {
  return reverse ? " not " : "";
}

}  // namespace

std::string RepParam::GetSimpleText() {
  switch (GroupOfFieldDataType(DataFormat)) {
    case FieldDataTypeGroup::kNumeric:
    case FieldDataTypeGroup::kText:
      return ValuePhrase();
    case FieldDataTypeGroup::kDate:
      // Describing a date condition settles an open date on today; callers
      // read the stored date back afterwards.
      if (Value1.IsNull()) Value1 = Today();
      if (Value2.IsNull()) Value2 = Today();
      return DateRangePhrase(SUBOperator, Value1, Value2, CStr(Variant(Reverse)));
    case FieldDataTypeGroup::kCodedValue:
      if (Value1.IsEmpty()) return "";
      return " Is " + Not(Reverse) + Value1Description;
    case FieldDataTypeGroup::kBoolean:
      if (Value1.IsEmpty()) return "";
      return " Is " + Not(Reverse) + (ConvertsToTrue(Value1) ? "Yes" : "No");
    case FieldDataTypeGroup::kGender:
      if (Value1.IsEmpty()) return "";
      return " is " + Not(Reverse) + (TextOf(Value1) == "M" ? "Male" : "Female");
    case FieldDataTypeGroup::kUnhandled:
      MsgBox("Unhandled");
      return "";
    case FieldDataTypeGroup::kUnhandledLC:
      break;
  }
  MsgBox("unhandled");
  return "";
}

std::string RepParam::OperatorPhrase() const {
  switch (Operator) {
    case cmpEquals:
      switch (static_cast<int32_t>(DataFormat)) {
        case 2:
        case 4:
        case 21:
        case 22:
        case 25:
          return " Is " + Not(Reverse);
        default:
          return Reverse ? " Does not equal " : "Equals ";
      }
    case cmpGreaterThan:
      return "Is " + Not(Reverse) + " greater than ";
    case cmpLessThan:
      return " Is " + Not(Reverse) + " less than ";
    case cmpBetween:
      return " Is " + Not(Reverse) + " between range ";
    case cmpBeginsWith:
      return std::string(Reverse ? " Does not begin " : " Begins") + " with ";
    case cmpEndsWith:
      return std::string(Reverse ? " Does not end " : " Ends") + " with ";
    case cmpContains:
      return Reverse ? " Does not contain " : " Contains ";
    case cmpSoundsLike:
      return std::string(Reverse ? " Does not sound " : " Sounds ") + " like ";
    default:
      return "";
  }
}

std::string RepParam::ValuePhrase() const {
  // The raw values, not their descriptions.
  const std::string phrase = OperatorPhrase() + " ";
  if (Operator == cmpBetween) return phrase + TextOf(Value1) + " and " + TextOf(Value2);
  return phrase + TextOf(Value1);
}

std::string RepParam::DateRangePhrase(int32_t SubOperator, const Variant& FromValue,
                                      const Variant& ToValue, const std::string& ReverseText) {
  if (SubOperator == drsAllDates) return "All Dates";
  const bool reverse = CBool(Variant(ReverseText));

  std::string range;
  bool single_date = false;
  if (SubOperator >= kFirstRange &&
      SubOperator < kFirstRange + static_cast<int32_t>(kRangeTexts.size())) {
    const RangeText& row = kRangeTexts[static_cast<size_t>(SubOperator - kFirstRange)];
    range = std::string(row.lead) + (reverse ? row.if_reverse : row.if_not) + row.tail;
    single_date = row.single_date;
  }

  const bool from_is_date = IsDate(FromValue);
  const bool to_is_date = IsDate(ToValue);
  std::string dates;
  if (from_is_date && to_is_date) {
    dates = single_date ? "  " + DayText(FromValue) + " "
                        : "  " + std::string(" Between ") + DayText(FromValue) + "  And " +
                              DayText(ToValue) + " ";
  } else if (from_is_date) {
    dates = "  " + std::string(" >= ") + DayText(FromValue);
  } else if (to_is_date) {
    dates = "  " + std::string(" <= ") + DayText(ToValue) + " ";
  }

  if (dates.empty()) return range;
  return range + " ( " + dates + " ) ";
}

std::shared_ptr<RepParam> RepParams::Add(int32_t ID, int32_t DataFieldID, bool Hidden,
                                         bool Essential, const std::string& sKey) {
  auto param = std::make_shared<RepParam>();
  param->DataFieldID = DataFieldID;
  param->ID = ID;
  param->Hidden = Hidden;
  param->Essential = Essential;
  return Insert(std::move(param), sKey);
}

}  // namespace kelvary
