// Golden texts of the dialect helpers in the three dialects.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/sql/DialectHelpers.h"
#include "support/ErrorNumber.h"

namespace kelvary::sql {
namespace {

TEST(GetSQLEntityName, RemovesTheElevenPunctuationCharactersAndNothingElse) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Pt's (No.)", "PtsNo"},
      {"", ""},
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
}

TEST(FormatDateToDBStr, OracleUsesToDateOthersTheHashLiteralDayOnly) {
  const Date march5 = DateTimeOf(2024, 3, 5, 18, 45, 10);
  EXPECT_EQ(FormatDateToDBStr(sdbAccess, march5), "#03/05/2024#");
  EXPECT_EQ(FormatDateToDBStr(sdbSQLServer, march5), "#03/05/2024#");
  EXPECT_EQ(FormatDateToDBStr(sdbOracle, march5), "TO_Date('05-Mar-2024','DD-Mon-YYYY')");
  EXPECT_EQ(FormatDateToDBStr(sdbOracle, DateSerial(2025, 12, 31)),
            "TO_Date('31-Dec-2025','DD-Mon-YYYY')");
  // The year is padded to two digits only.
  EXPECT_EQ(FormatDateToDBStr(sdbAccess, DateSerial(999, 1, 2)), "#01/02/999#");
}

TEST(CreateCheckForNullStmt, SameInEveryDialect) {
  EXPECT_EQ(CreateCheckForNullStmt("Phone"), " (Isnull(Phone) = true ) ");
}

TEST(GetNameClause, ComposesTheNamePartsPerDialectAndThePrefixKeepsItsPlusSign) {
  struct Case {
    StdDBTypes db;
    NameFields fields;
    const char* table;
    const char* prefix;
    std::string expected;
  };
  const NameFields standard;
  const NameFields own{"Given", "Middle", "Family"};
  const std::vector<Case> cases = {
      {sdbAccess, standard, "", "", "FirstName +  ' '  + MiddleName +  '  '  + LastName As N"},
      {sdbSQLServer, standard, "", "", "FirstName +  ' '  + MiddleName +  '  '  + LastName As N"},
      {sdbOracle, standard, "", "", "FirstName ||  ' '  || MiddleName ||  '  '  || LastName As N"},
      {sdbAccess, standard, "p", "",
       "p.FirstName +  ' '  +  p.MiddleName +  '  '  +   p.LastName As N"},
      {sdbOracle, standard, "p", "",
       "p.FirstName ||  ' '  ||  p.MiddleName ||  '  '  ||   p.LastName As N"},
      {sdbAccess, own, "", "Title", "Title +  ' ' + Given +  ' '  + Middle +  '  '  + Family As N"},
      {sdbOracle, own, "t", "Title",
       "Title ||  ' ' + t.Given ||  ' '  ||  t.Middle ||  '  '  ||   t.Family As N"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(GetNameClause(c.db, c.fields, c.table, c.prefix, "N"), c.expected) << c.expected;
}

TEST(CreateAlphaClause, FiltersOnTheTabLetterExceptTheLastTab) {
  EXPECT_EQ(CreateAlphaClause(sdbAccess, "LastName", 1), " ( Ucase$(LastName) Like 'A%' )");
  EXPECT_EQ(CreateAlphaClause(sdbSQLServer, "LastName", 3), " ( LastName Like 'C%' )");
  EXPECT_EQ(CreateAlphaClause(sdbOracle, "p.LastName", 26), " ( p.LastName Like 'Z%' )");
  for (const auto db : {sdbAccess, sdbOracle, sdbSQLServer})
    EXPECT_EQ(CreateAlphaClause(db, "LastName", 27), "");
  // A tab beyond the character codes fails.
  EXPECT_EQ(testing::ErrorNumberOf([] { CreateAlphaClause(sdbAccess, "LastName", 200); }),
            kErrInvalidProcedureCall);
}

TEST(GetCombinedPhone, TrimsTheFirstAndJoinsWithTheCommaSeparator) {
  EXPECT_EQ(GetCombinedPhone("  555-1234 ", ""), "555-1234");
  EXPECT_EQ(GetCombinedPhone("", "555"), "555");
  EXPECT_EQ(GetCombinedPhone(" 1 ", " 2 "), "1  ,   2 ");
  // The separator test looks at the untrimmed first number.
  EXPECT_EQ(GetCombinedPhone("   ", "2"), "  ,  2");
}

}  // namespace
}  // namespace kelvary::sql
