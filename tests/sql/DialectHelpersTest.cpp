// Golden texts of the dialect helpers in the three dialects.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/sql/DialectHelpers.h"

namespace kelvary::sql {
namespace {

TEST(GetSQLEntityName, RemovesTheElevenPunctuationCharactersAndNothingElse) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Pt's (No.)", "PtsNo"},
      {"", ""},
      {"Date of Birth", "DateofBirth"},
      {"[Pt.No]", "PtNo"},
      {"'\"[/\\.-] )(", ""},
      {"a_b#1!,Z", "a_b#1!,Z"},
  };
  for (const auto& [in, out] : cases)
    EXPECT_EQ(GetSQLEntityName(in), out) << in;
}

TEST(GetInvertedCommaSafeString, DoublesEveryApostrophe) {
  EXPECT_EQ(GetInvertedCommaSafeString("O'Neil"), "O''Neil");
  EXPECT_EQ(GetInvertedCommaSafeString("''x'"), "''''x''");
  EXPECT_EQ(GetInvertedCommaSafeString("no quote"), "no quote");
  EXPECT_EQ(GetInvertedCommaSafeString(""), "");
}

TEST(FormatDateToDBStr, OracleUsesToDateOthersTheHashLiteralDayOnly) {
  const Date march5 = DateTimeOf(2024, 3, 5, 18, 45, 10);
  EXPECT_EQ(FormatDateToDBStr(sdbAccess, march5), "#03/05/2024#");
  EXPECT_EQ(FormatDateToDBStr(sdbSQLServer, march5), "#03/05/2024#");
  EXPECT_EQ(FormatDateToDBStr(sdbOracle, march5), "TO_Date('05-Mar-2024','DD-Mon-YYYY')");
  EXPECT_EQ(FormatDateToDBStr(sdbAccess, DateSerial(2025, 12, 31)), "#12/31/2025#");
  EXPECT_EQ(FormatDateToDBStr(sdbOracle, DateSerial(2025, 12, 31)),
            "TO_Date('31-Dec-2025','DD-Mon-YYYY')");
  // The year is padded to two digits only.
  EXPECT_EQ(FormatDateToDBStr(sdbAccess, DateSerial(999, 1, 2)), "#01/02/999#");
}

TEST(CreateCheckForNullStmt, SameInEveryDialect) {
  EXPECT_EQ(CreateCheckForNullStmt("Phone"), " (Isnull(Phone) = true ) ");
}

TEST(GetNameClause, ComposesTheThreeNamePartsPerDialect) {
  const NameFields fields;
  EXPECT_EQ(GetNameClause(sdbAccess, fields, "", "", "PName"),
            "FirstName +  ' '  + MiddleName +  '  '  + LastName As PName");
  EXPECT_EQ(GetNameClause(sdbSQLServer, fields, "", "", "PName"),
            "FirstName +  ' '  + MiddleName +  '  '  + LastName As PName");
  EXPECT_EQ(GetNameClause(sdbOracle, fields, "", "", "PName"),
            "FirstName ||  ' '  || MiddleName ||  '  '  || LastName As PName");
  EXPECT_EQ(GetNameClause(sdbAccess, fields, "p", "", "N"),
            "p.FirstName +  ' '  +  p.MiddleName +  '  '  +   p.LastName As N");
  EXPECT_EQ(GetNameClause(sdbOracle, fields, "p", "", "N"),
            "p.FirstName ||  ' '  ||  p.MiddleName ||  '  '  ||   p.LastName As N");
}

TEST(GetNameClause, PrefixKeepsItsPlusSignEvenOnOracle) {
  const NameFields fields{"Given", "Middle", "Family"};
  EXPECT_EQ(GetNameClause(sdbAccess, fields, "", "Title", "N"),
            "Title +  ' ' + Given +  ' '  + Middle +  '  '  + Family As N");
  EXPECT_EQ(GetNameClause(sdbOracle, fields, "t", "Title", "N"),
            "Title ||  ' ' + t.Given ||  ' '  ||  t.Middle ||  '  '  ||   t.Family As N");
}

TEST(CreateAlphaClause, FiltersOnTheTabLetterExceptTheLastTab) {
  EXPECT_EQ(CreateAlphaClause(sdbAccess, "LastName", 1), " ( Ucase$(LastName) Like 'A%' )");
  EXPECT_EQ(CreateAlphaClause(sdbSQLServer, "LastName", 3), " ( LastName Like 'C%' )");
  EXPECT_EQ(CreateAlphaClause(sdbOracle, "p.LastName", 26), " ( p.LastName Like 'Z%' )");
  for (const auto db : {sdbAccess, sdbOracle, sdbSQLServer}) {
    EXPECT_EQ(CreateAlphaClause(db, "LastName", 27), "");
  }
  try {
    CreateAlphaClause(sdbAccess, "LastName", 200);
    ADD_FAILURE() << "a tab beyond the character codes must fail";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), kErrInvalidProcedureCall);
  }
}

TEST(GetCombinedPhone, TrimsTheFirstAndJoinsWithTheCommaSeparator) {
  EXPECT_EQ(GetCombinedPhone("  555-1234 ", ""), "555-1234");
  EXPECT_EQ(GetCombinedPhone("", "555"), "555");
  EXPECT_EQ(GetCombinedPhone("1", "2"), "1  ,  2");
  EXPECT_EQ(GetCombinedPhone(" 1 ", " 2 "), "1  ,   2 ");
  // The separator test looks at the untrimmed first number.
  EXPECT_EQ(GetCombinedPhone("   ", "2"), "  ,  2");
}

}  // namespace
}  // namespace kelvary::sql
