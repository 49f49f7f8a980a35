// Golden texts of the comparison clauses: every group of field data types,
// every operator, reversal, formula mode, the messages of the refused cases,
// and the reliance on the active service object.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/service/InfoLink.h"
#include "kelvary/sql/DataLinx.h"
#include "support/ErrorNumber.h"
#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

using DataLinx::GetComparisionClause;
using DataLinx::GetComparisionClauseForDefEqual;
using testing::ErrorNumberOf;
using testing::MessageRecorder;
using Texts = std::vector<std::string>;

struct Case {
  FieldDataTypes type;
  CompareTypes cmp;
  Variant v1, v2;
  bool reverse;
  bool xtal;
  std::string expected;
  Texts messages = {};
};

class ComparisonClauses : public ::testing::Test {
 protected:
  ComparisonClauses() { internal::SetActiveInfoLink(&link_); }
  ~ComparisonClauses() override { internal::SetActiveInfoLink(nullptr); }

  // Each case compares field F and shows exactly its messages.
  void ExpectCases(const std::vector<Case>& cases) {
    for (const auto& c : cases) {
      SCOPED_TRACE(::testing::Message() << "type " << c.type << ", operator " << c.cmp << ", "
                                        << c.v1 << ", " << c.v2 << (c.reverse ? ", reversed" : ""));
      messages_.Clear();
      EXPECT_EQ(GetComparisionClause("F", c.type, c.cmp, 0, c.v1, c.v2, c.reverse, c.xtal),
                c.expected);
      EXPECT_EQ(messages_.Texts(), c.messages);
    }
  }

  InfoLink link_;
  MessageRecorder messages_;
};

const Variant kNone;  // Empty: no value chosen

std::string Equals(int type, const Variant& value) {
  return GetComparisionClause("F", static_cast<FieldDataTypes>(type), cmpEquals, 0, value, kNone,
                              false, false);
}

TEST_F(ComparisonClauses, NumericTypesWriteTheValueAsItStands) {
  for (int type : {1, 2, 5, 6, 7, 8, 9, 12, 13, 14, 15, 16, 17, 21})
    EXPECT_EQ(Equals(type, Variant(7)), "F = 7") << "type " << type;
  ExpectCases({
      {fdtLong, cmpEquals, 7, kNone, true, false, "F <> 7"},
      {fdtLong, cmpEquals, kNone, kNone, true, false, ""},
      {fdtLong, cmpGreaterThan, 2.5, kNone, false, true, "F > 2.5"},
      {fdtLong, cmpGreaterThan, 7, kNone, true, false, " NOT ( F > 7 ) "},
      {fdtLong, cmpLessThan, int16_t{-3}, kNone, false, false, "F < -3"},
      {fdtLong, cmpLessThan, kNone, 9, false, false, ""},
      {fdtLong, cmpBetween, 1, 5, false, false, "( F >= 1 ) AND ( F <=  5 )"},
      {fdtLong, cmpBetween, 1, 5, true, false, " NOT ( ( F >= 1 ) AND ( F <=  5 ) ) "},
      {fdtLong, cmpBetween, 1, kNone, false, false, "F >= 1 "},
      {fdtLong, cmpBetween, kNone, 5, false, false, "F <= 5"},
      {fdtLong, cmpBetween, kNone, kNone, false, false, ""},
      {fdtLong, cmpBeginsWith, 7, kNone, false, false, ""},
      {fdtLong, cmpEndsWith, 7, kNone, false, false, ""},
      {fdtLong, cmpContains, 7, kNone, false, false, ""},
      {fdtLong, cmpSoundsLike, 7, kNone, false, false, "", {"Correct here"}},
      {fdtLong, static_cast<CompareTypes>(9), 7, kNone, false, false, ""},
  });
}

TEST_F(ComparisonClauses, TextTypesQuoteTheValueAndUseTheDialectWildcard) {
  for (int type : {3, 4, 10, 11, 22, 23})
    EXPECT_EQ(Equals(type, Variant("O'Neil")), "F = 'O''Neil'") << "type " << type;
  ExpectCases({
      {fdtText, cmpEquals, "B", kNone, true, false, "F <> 'B'"},
      {fdtText, cmpEquals, kNone, kNone, true, false, ""},
      {fdtText, cmpEquals, "", kNone, false, false, "F = ''"},
      {fdtText, cmpGreaterThan, "B", kNone, true, false, " NOT ( F > 'B' ) "},
      {fdtText, cmpLessThan, "B", kNone, false, false, "F < 'B'"},
      {fdtText, cmpLessThan, kNone, kNone, false, false, ""},
      {fdtText, cmpBetween, "A'x", "M'y", false, false, "( F >=  'A''x' ) AND ( F <=  'M''y' )"},
      {fdtText, cmpBetween, "A'x", kNone, false, false, "F >=  'A''x'  "},
      {fdtText, cmpBetween, kNone, "M'y", false, false, "F <=  'M'y'  "},
      {fdtText, cmpBetween, kNone, kNone, true, false, ""},
      {fdtText, cmpBeginsWith, "Sm", kNone, false, false, "F Like 'Sm%'"},
      {fdtText, cmpBeginsWith, "Sm", kNone, false, true, "F Like 'Sm*'"},
      {fdtText, cmpEndsWith, "th", kNone, false, false, "F Like '%th'"},
      {fdtText, cmpEndsWith, "th", kNone, true, true, " NOT ( F Like '*th' ) "},
      {fdtText, cmpContains, "O'Ne", kNone, false, false, "F Like '%O''Ne%'"},
      {fdtText, cmpContains, "O'Ne", kNone, false, true, "F Like '*O''Ne*'"},
      {fdtText, cmpContains, kNone, kNone, false, false, "F Like '%%'"},
      {fdtText, cmpSoundsLike, "Smyth", kNone, false, false, "", {"Correct here", "Correct here"}},
      {fdtText, static_cast<CompareTypes>(0), "B", kNone, false, false, ""},
  });
}

TEST_F(ComparisonClauses, DateTypesBecomeRangesInTheActiveDialect) {
  const Variant from = DateTimeOf(2024, 3, 5, 9, 0, 0);
  const Variant to = DateSerial(2024, 3, 7);
  for (int type : {18, 19, 20}) {
    EXPECT_EQ(GetComparisionClause("V.Seen", static_cast<FieldDataTypes>(type), cmpEquals,
                                   drsUserSpecifiedDates, from, to, false, false),
              " ( V.Seen Between #03/05/2024#  And #03/08/2024# )")
        << "type " << type;
  }
  // The operator plays no part; the range choice rides in SUBOperator.
  EXPECT_EQ(
      GetComparisionClause("V.Seen", fdtDate, cmpSoundsLike, drsAllDates, from, to, false, false),
      "");
  EXPECT_EQ(GetComparisionClause("V.Seen", fdtDate, cmpLessThan, drsToday, kNone, to, true, false),
            " NOT (  ( V.Seen < #03/08/2024# )  ) ");
  // Formula mode: the braces of the field reference are replaced by the range's own.
  EXPECT_EQ(
      GetComparisionClause("{V.Seen}", fdtDateTime, cmpEquals, drsLast7Days, from, to, false, true),
      " ( {V.Seen} in CDate(2024 , 3 , 5)  to CDate(2024 , 3 , 7) )");
  link_.MainDBType = sdbOracle;
  EXPECT_EQ(GetComparisionClause("Seen", fdtTime, cmpEquals, drsToday, from, kNone, false, false),
            " ( Seen >= TO_Date('05-Mar-2024','DD-Mon-YYYY') )");
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_F(ComparisonClauses, BooleansAndTheQuotedEqualityType) {
  ExpectCases({
      {fdtBoolean, cmpEquals, true, kNone, false, false, "F = True"},
      {fdtBoolean, cmpGreaterThan, int16_t{0}, kNone, false, true, "F = False"},
      {fdtBoolean, cmpEquals, -1, kNone, true, false, "F <> True"},
      {fdtBoolean, cmpEquals, kNone, kNone, true, false, ""},
      {fdtGender, cmpEquals, "M", kNone, false, false, "F = 'M'"},
      {fdtGender, cmpEquals, "O'x", kNone, true, false, "F <> 'O'x'"},
      {fdtGender, cmpEquals, kNone, kNone, false, false, ""},
      {fdtGender, cmpContains, "M", kNone, false, false, "", {"Not handled"}},
  });
  EXPECT_EQ(link_.GetBooleanCompareClause("Active", cmpLessThan, false, true), "Active = False");
}

TEST_F(ComparisonClauses, RefusedTypesSayWhichWay) {
  const auto expect_refused = [&](int type, const std::string& message) {
    messages_.Clear();
    EXPECT_EQ(Equals(type, Variant(1)), "") << "type " << type;
    EXPECT_EQ(messages_.Texts(), Texts{message}) << "type " << type;
  };
  for (int type : {0, 24, 26, 27, 28, 29, 30, 31, 32, 34, 35, 39, 40, 41, 42}) {
    expect_refused(type, "Unhandled");
  }
  for (int type : {36, 37, 38, 43, 44, 100, -1})
    expect_refused(type, "unhandled");
}

TEST_F(ComparisonClauses, DefaultEqualityByGeneralType) {
  EXPECT_EQ(GetComparisionClauseForDefEqual("Code", gdtText, Variant("O'Neil"), true, true),
            "Code Like  'O''Neil'");
  EXPECT_EQ(GetComparisionClauseForDefEqual("ID", gdtNumber, Variant(12), false, false),
            "ID =  12");
  EXPECT_EQ(link_.GetComparisionClauseForDefEqual(
                "Seen", gdtDate, Variant(DateTimeOf(2024, 3, 5, 8, 0, 0)), false, false),
            "Seen =  #03/05/2024#");
  link_.MainDBType = sdbOracle;
  EXPECT_EQ(GetComparisionClauseForDefEqual("Seen", gdtDate, Variant("2024-03-05"), false, false),
            "Seen =  TO_Date('05-Mar-2024','DD-Mon-YYYY')");
  EXPECT_TRUE(messages_.Texts().empty());
  EXPECT_EQ(GetComparisionClauseForDefEqual("Seen", static_cast<GeneralDataTypes>(4), Variant(1),
                                            false, false),
            "");
  EXPECT_EQ(messages_.Texts(), Texts{"Comparision for Seen not handled !"});
}

TEST_F(ComparisonClauses, QuotingDatesAndRangesNeedTheActiveServiceObject) {
  internal::SetActiveInfoLink(nullptr);
  const Variant day = DateSerial(2024, 1, 1);
  EXPECT_EQ(ErrorNumberOf(
                [] { GetComparisionClause("F", fdtText, cmpEquals, 0, "a", kNone, false, false); }),
            kErrObjectVariableNotSet);
  EXPECT_EQ(ErrorNumberOf([&] {
              GetComparisionClause("F", fdtDate, cmpEquals, drsToday, day, kNone, false, false);
            }),
            kErrObjectVariableNotSet);
  EXPECT_EQ(
      ErrorNumberOf([&] { GetComparisionClauseForDefEqual("F", gdtDate, day, false, false); }),
      kErrObjectVariableNotSet);
  // The default text equality writes the raw value instead; numbers need no quoting.
  EXPECT_EQ(GetComparisionClauseForDefEqual("F", gdtText, Variant("O'Neil"), false, false),
            "F Like  'O'Neil'");
  EXPECT_EQ(Equals(fdtLong, Variant(7)), "F = 7");
  // A Null value cannot be written.
  EXPECT_EQ(ErrorNumberOf([] {
              GetComparisionClause("F", fdtLong, cmpGreaterThan, 0, Variant::Null(), kNone, false,
                                   false);
            }),
            kErrInvalidUseOfNull);
}

TEST_F(ComparisonClauses, InfoLinkMembersUseTheirOwnSettingsAndTheActiveObjectForComparisons) {
  InfoLink other;
  other.MainDBType = sdbOracle;
  other.ORDERFIELD1 = "Given";
  EXPECT_EQ(other.FormatDateToDBStr(DateSerial(2024, 3, 5)),
            "TO_Date('05-Mar-2024','DD-Mon-YYYY')");
  EXPECT_EQ(other.GetNameClause("", "", "N"),
            "Given ||  ' '  || MiddleName ||  '  '  || LastName As N");
  EXPECT_EQ(other.CreateAlphaClause("LastName", 2), " ( LastName Like 'B%' )");
  EXPECT_EQ(other.GetDateSqlFromValues("D", drsToday, kNone, DateSerial(2024, 3, 5)),
            " ( D < TO_Date('06-Mar-2024','DD-Mon-YYYY') ) ");
  // Comparisons go through the active object (Access here), as the query
  // interpreter's calls do.
  EXPECT_EQ(other.GetComparisionClause("D", fdtDate, cmpEquals, drsToday, kNone,
                                       DateSerial(2024, 3, 5), false, false),
            " ( D < #03/06/2024# ) ");
}

}  // namespace
}  // namespace kelvary
