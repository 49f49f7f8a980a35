#include "kelvary/sql/DialectHelpers.h"

#include <string_view>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::sql {

namespace {

// The runtime's Replace: every occurrence, scanning from the first character.
std::string ReplaceAll(std::string text, std::string_view find, std::string_view with) {
  std::string::size_type at = 0;
  while ((at = text.find(find, at)) != std::string::npos) {
    text.replace(at, find.size(), with);
    at += with.size();
  }
  return text;
}

// The runtime's Chr for codes 0 to 255, written as UTF-8.
std::string CharacterOfCode(int code) {
  if (code < 0 || code > 255) {
    throw Error(kErrInvalidProcedureCall, "Invalid procedure call or argument");
  }
  if (code < 0x80) return std::string(1, static_cast<char>(code));
  return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
}

}  // namespace

std::string GetSQLEntityName(const std::string& SrcStr) {
  std::string result = SrcStr;
  for (const char removed : {'\'', '"', '[', '/', '\\', '.', '-', ']', ' ', ')', '('}) {
    std::erase(result, removed);
  }
  return result;
}

std::string GetInvertedCommaSafeString(const std::string& OrgStr) {
  return ReplaceAll(OrgStr, "'", "''");
}

std::string FormatDateToDBStr(StdDBTypes db_type, Date SrcDate) {
  if (db_type == sdbOracle) {
    return "TO_Date('" + Format(SrcDate, "DD-MMM-YYYY") + "','DD-Mon-YYYY')";
  }
  // SQL Server gets the same month-first #-literal as Access on purpose: the
  // rest of the library's SQL Server text is built on it.
  return "#" + FormatNumber(Month(SrcDate), "00") + "/" + FormatNumber(Day(SrcDate), "00") + "/" +
         FormatNumber(Year(SrcDate), "00") + "#";
}

std::string CreateCheckForNullStmt(const std::string& FldName) {
  return " (Isnull(" + FldName + ") = true ) ";
}

std::string GetNameClause(StdDBTypes db_type, const NameFields& fields, const std::string& TblName,
                          const std::string& PrefixFld, const std::string& alias) {
  const std::string op = db_type == sdbOracle ? " || " : " + ";
  std::string result;
  if (TblName.empty()) {
    result = fields.first + op + " ' ' " + op + fields.middle + op + " '  ' " + op + fields.last +
             " As " + alias;
  } else {
    const std::string& t = TblName;
    result = t + "." + fields.first + op + " ' ' " + op + " " + t + "." + fields.middle + op +
             " '  ' " + op + "  " + t + "." + fields.last + " As " + alias;
  }
  // The " ' ' + " keeps its plus sign under Oracle too; callers' texts rely on it.
  if (!PrefixFld.empty()) result = PrefixFld + op + " ' ' + " + result;
  return result;
}

std::string CreateAlphaClause(StdDBTypes db_type, const std::string& ComparisionField, int16_t tb) {
  const std::string letter = CharacterOfCode(tb + 64);
  const std::string clause = db_type == sdbAccess
                                 ? " ( Ucase$(" + ComparisionField + ") Like '" + letter + "%' )"
                                 : " ( " + ComparisionField + " Like '" + letter + "%' )";
  return tb == 27 ? "" : clause;
}

std::string GetCombinedPhone(const std::string& Ph1, const std::string& Ph2) {
  std::string result = TrimBlanks(Ph1);
  // The separator test looks at Ph1 before trimming, so a Ph1 of blanks alone
  // still yields the separator: kept as the system has it.
  if (!Ph2.empty()) result += (Ph1.empty() ? "" : "  ,  ") + Ph2;
  return result;
}

}  // namespace kelvary::sql
