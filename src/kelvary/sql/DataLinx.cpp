#include "kelvary/sql/DataLinx.h"

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/service/FieldDataTypeGroups.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::DataLinx {

namespace {

// The clause builders see the numeric and coded types alike.
enum class ClauseGroup {
  kNumeric,
  kText,
  kDate,
  kBoolean,
  kQuotedEquality,
  kRefused,        // "Unhandled"
  kRefusedOthers,  // "unhandled": the rest, every later type and negative numbers too
};

ClauseGroup GroupOf(FieldDataTypes type) {
  switch (GroupOfFieldDataType(type)) {
    case FieldDataTypeGroup::kNumeric:
    case FieldDataTypeGroup::kCodedValue:
      return ClauseGroup::kNumeric;
    case FieldDataTypeGroup::kText:
      return ClauseGroup::kText;
    case FieldDataTypeGroup::kDate:
      return ClauseGroup::kDate;
    case FieldDataTypeGroup::kBoolean:
      return ClauseGroup::kBoolean;
    case FieldDataTypeGroup::kGender:
      return ClauseGroup::kQuotedEquality;
    case FieldDataTypeGroup::kUnhandled:
      return ClauseGroup::kRefused;
    case FieldDataTypeGroup::kUnhandledLC:
      break;
  }
  return ClauseGroup::kRefusedOthers;
}

InfoLink& RequireActiveInfoLink() {
  InfoLink* link = ActiveInfoLink();
  if (link == nullptr) {
    throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set",
                "DataLinx");
  }
  return *link;
}

// The operator text of a comparison. Between has none (the range is built
// from >= and <=) and sounds-like is not implemented: both say so, as the
// system does.
std::string OperatorText(CompareTypes compare_type) {
  switch (compare_type) {
    case cmpEquals:
      return " = ";
    case cmpGreaterThan:
      return " > ";
    case cmpLessThan:
      return " < ";
    case cmpBetween:
      MsgBox("Correct here");
      return "";
    case cmpBeginsWith:
    case cmpEndsWith:
    case cmpContains:
      return " Like ";
    case cmpSoundsLike:
      MsgBox("Correct here");
      return " Like ";
  }
  return "";
}

// The numeric clauses; sets negatable to False where the clause carries its
// own negation (or none).
std::string NumericClause(const std::string& f, CompareTypes compare_type, const Variant& v1,
                          const Variant& v2, bool reverse, bool& negatable) {
  const std::string op = compare_type == cmpBetween ? "" : OperatorText(compare_type);
  switch (compare_type) {
    case cmpEquals:
      negatable = false;
      if (v1.IsEmpty()) return "";
      return f + (reverse ? " <> " : op) + CStr(v1);
    case cmpGreaterThan:
    case cmpLessThan:
      return v1.IsEmpty() ? "" : f + op + CStr(v1);
    case cmpBetween:
      if (!v1.IsEmpty() && !v2.IsEmpty()) {
        return "( " + f + " >= " + CStr(v1) + " ) AND ( " + f + " <= " + " " + CStr(v2) + " )";
      }
      if (!v1.IsEmpty()) return f + " >= " + CStr(v1) + " ";
      if (!v2.IsEmpty()) return f + " <= " + CStr(v2);
      return "";
    default:
      return "";
  }
}

std::string TextClause(const std::string& f, CompareTypes compare_type, const Variant& v1,
                       const Variant& v2, bool reverse, bool use_xtal, bool& negatable) {
  InfoLink& link = RequireActiveInfoLink();
  const std::string q1 = link.GetInvertedCommaSafeString(CStr(v1));
  // As for numbers, Between asks for no operator text (and so shows no
  // message); sounds-like does, and then says so again below.
  const std::string op = compare_type == cmpBetween ? "" : OperatorText(compare_type);
  const std::string w = use_xtal ? "*" : "%";
  switch (compare_type) {
    case cmpEquals:
      negatable = false;
      if (v1.IsEmpty()) return "";
      return f + (reverse ? " <> " : op) + "'" + q1 + "'";
    case cmpGreaterThan:
    case cmpLessThan:
      return v1.IsEmpty() ? "" : f + op + "'" + q1 + "'";
    case cmpBetween:
      if (!v1.IsEmpty() && !v2.IsEmpty()) {
        const std::string q2 = link.GetInvertedCommaSafeString(CStr(v2));
        return "( " + f + " >= " + " '" + q1 + "' ) AND ( " + f + " <= " + " '" + q2 + "' )";
      }
      if (!v1.IsEmpty()) return f + " >= " + " '" + q1 + "'  ";
      // The upper end alone is not quoted for apostrophes: kept as the system has it.
      if (!v2.IsEmpty()) return f + " <= " + " '" + CStr(v2) + "'  ";
      return "";
    // The Like patterns do not test for a value: an empty one matches anything.
    case cmpBeginsWith:
      return f + " Like " + "'" + q1 + w + "'";
    case cmpEndsWith:
      return f + " Like " + "'" + w + q1 + "'";
    case cmpContains:
      return f + " Like " + "'" + w + q1 + w + "'";
    case cmpSoundsLike:
      MsgBox("Correct here");
      return "";
    default:
      return "";
  }
}

}  // namespace

std::string GetComparisionClause(const std::string& FldName, FieldDataTypes DType,
                                 CompareTypes CompareType, int32_t SUBOperator,
                                 const Variant& CompareValue1, const Variant& CompareValue2,
                                 bool bReverse, bool bUseXtal) {
  const std::string& f = FldName;
  const Variant& v1 = CompareValue1;
  std::string result;
  bool negatable = true;
  switch (GroupOf(DType)) {
    case ClauseGroup::kNumeric:
      result = NumericClause(f, CompareType, v1, CompareValue2, bReverse, negatable);
      break;
    case ClauseGroup::kText:
      result = TextClause(f, CompareType, v1, CompareValue2, bReverse, bUseXtal, negatable);
      break;
    case ClauseGroup::kDate: {
      // A formula's field reference arrives in braces; the range adds its own.
      const std::string field =
          bUseXtal ? (f.size() >= 2 ? f.substr(1, f.size() - 2) : std::string()) : f;
      result = RequireActiveInfoLink().GetDateSqlFromValues(
          field, static_cast<DateRangeSpecs>(SUBOperator), v1, CompareValue2, bUseXtal);
      break;
    }
    case ClauseGroup::kBoolean:
      if (!v1.IsEmpty()) {
        result = f + (bReverse ? " <> " : " = ") + CStr(Variant(CBool(v1)));
        negatable = false;
      }
      break;
    case ClauseGroup::kQuotedEquality:
      if (CompareType != cmpEquals) {
        MsgBox("Not handled");
      } else if (!v1.IsEmpty()) {
        result = f + (bReverse ? " <> " : " = ") + "'" + CStr(v1) + "'";
        negatable = false;
      }
      break;
    case ClauseGroup::kRefused:
      MsgBox("Unhandled");
      break;
    case ClauseGroup::kRefusedOthers:
      MsgBox("unhandled");
      break;
  }
  if (!result.empty() && bReverse && negatable) result = " NOT ( " + result + " ) ";
  return result;
}

std::string GetBooleanCompareClause(const std::string& FldName, CompareTypes CompareType,
                                    bool booleanVal, bool bUseXtal) {
  return GetComparisionClause(FldName, fdtBoolean, CompareType, 0, Variant(booleanVal), Variant(),
                              false, bUseXtal);
}

std::string GetComparisionClauseForDefEqual(const std::string& FldName, GeneralDataTypes GDType,
                                            const Variant& CompareValue, bool /*bReverse*/,
                                            bool /*bUseXtal*/) {
  switch (GDType) {
    case gdtText: {
      // Without an active service object the value goes in as it stands.
      InfoLink* link = ActiveInfoLink();
      const std::string text = CStr(CompareValue);
      return FldName + " Like  '" + (link ? link->GetInvertedCommaSafeString(text) : text) + "'";
    }
    case gdtNumber:
      return FldName + " =  " + CStr(CompareValue);
    case gdtDate:
      return FldName + " =  " + RequireActiveInfoLink().FormatDateToDBStr(CDate(CompareValue));
  }
  MsgBox("Comparision for " + FldName + " not handled !");
  return "";
}

}  // namespace kelvary::DataLinx
