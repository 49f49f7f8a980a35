// Golden texts of the date-range clauses: every combination of present ends,
// same and different days, times of day, the three dialects and formula mode.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/sql/DateRangeClauses.h"

namespace kelvary::sql {
namespace {

// The host's date control: holds a date or Null.
class FixedDateControl : public DateControl {
 public:
  explicit FixedDateControl(Variant value) : value_(std::move(value)) {}
  Variant Value() const override { return value_; }

 private:
  Variant value_;
};

// Functions rather than globals: dates are not built during static start-up.
Variant Morning5() {
  return DateTimeOf(2024, 3, 5, 10, 30, 0);
}
Variant Evening5() {
  return DateTimeOf(2024, 3, 5, 18, 0, 0);
}
Variant Late7() {
  return DateTimeOf(2024, 3, 7, 23, 59, 59);
}
Variant NewYearsEve() {
  return DateSerial(2024, 12, 31);
}
Variant Open() {
  return Variant::Null();
}

struct ValuesCase {
  const char* what;
  StdDBTypes db;
  bool formula;
  Variant from, to;
  std::string expected;
};

TEST(GetDateSqlFromValues, EveryCombinationOfEndsInEachDialect) {
  const std::vector<ValuesCase> cases = {
      {"both, different days", sdbAccess, false, Morning5(), Late7(),
       " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
      {"both, different days", sdbSQLServer, false, Morning5(), Late7(),
       " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
      {"both, different days", sdbOracle, false, Morning5(), Late7(),
       " ( VisitDate Between TO_Date('05-Mar-2024','DD-Mon-YYYY')  And "
       "TO_Date('08-Mar-2024','DD-Mon-YYYY') )"},
      {"both, same day", sdbAccess, false, Morning5(), Evening5(),
       " ( (Month(VisitDate)  = 3)  And (Day(VisitDate) =  5 )  And (Year(VisitDate) =  2024 )  )"},
      {"both, same day", sdbOracle, false, Morning5(), Evening5(),
       " ( (Month(VisitDate)  = 3)  And (Day(VisitDate) =  5 )  And (Year(VisitDate) =  2024 )  )"},
      {"from only", sdbAccess, false, Morning5(), Open(), " ( VisitDate >= #03/05/2024# )"},
      {"from only", sdbOracle, false, Morning5(), Variant(),
       " ( VisitDate >= TO_Date('05-Mar-2024','DD-Mon-YYYY') )"},
      {"to only, year end", sdbAccess, false, Open(), NewYearsEve(),
       " ( VisitDate < #01/01/2025# ) "},
      {"to only", sdbOracle, false, Variant(), Late7(),
       " ( VisitDate < TO_Date('08-Mar-2024','DD-Mon-YYYY') ) "},
      {"neither", sdbAccess, false, Open(), Variant(), ""},
      {"formula, different days", sdbAccess, true, Morning5(), Late7(),
       " ( {VisitDate} in CDate(2024 , 3 , 5)  to CDate(2024 , 3 , 7) )"},
      {"formula, same day", sdbAccess, true, Morning5(), Evening5(),
       "( ( Day({VisitDate}) = 5 ) and ( Month({VisitDate}) = 3 )  and ( Year({VisitDate}) = 2024 "
       "))"},
      {"formula, from only, SQL literal", sdbAccess, true, Morning5(), Open(),
       " ( {VisitDate} >= #03/05/2024# )"},
      {"formula, from only, SQL literal", sdbOracle, true, Morning5(), Open(),
       " ( {VisitDate} >= TO_Date('05-Mar-2024','DD-Mon-YYYY') )"},
      {"formula, to only", sdbOracle, true, Open(), NewYearsEve(),
       " ( {VisitDate} <= CDate(2024 , 12 , 31) ) "},
      {"formula, neither", sdbAccess, true, Open(), Open(), ""},
      {"text that reads as dates", sdbAccess, false, Variant("2024-03-05"), Variant("3/7/2024"),
       " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
      {"non-dates are open ends", sdbAccess, false, Variant("soon"), Variant(45000), ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        GetDateSqlFromValues(c.db, "VisitDate", drsUserSpecifiedDates, c.from, c.to, c.formula),
        c.expected)
        << c.what << ", dialect " << c.db;
  }
}

TEST(GetDateSqlFromValues, AllDatesGivesNothingAndNoChoiceStillRestricts) {
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsAllDates, Morning5(), Late7()), "");
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsAllDates, Morning5(), Open(), true), "");
  EXPECT_EQ(
      GetDateSqlFromValues(sdbAccess, "D", static_cast<DateRangeSpecs>(0), Morning5(), Open()),
      " ( D >= #03/05/2024# )");
  // Any other choice is treated alike, and formula mode is off unless passed.
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsLast7Days, Open(), Late7()),
            " ( D < #03/08/2024# ) ");
}

TEST(GetDateSqlFromControls, EveryCombinationAlwaysWithHashLiterals) {
  struct Case {
    Variant from, to;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {Open(), Open(), ""},
      {Open(), NewYearsEve(), " ( VisitDate < #01/01/2025# ) "},
      {Evening5(), Open(), " ( VisitDate >= #03/05/2024# )"},
      {Morning5(), Evening5(),
       "( ( Day(VisitDate) = 5 ) and ( Month(VisitDate) = 3 )  and ( Year(VisitDate) = 2024 ))"},
      {Evening5(), Late7(), " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
  };
  for (const auto& c : cases) {
    const FixedDateControl from(c.from), to(c.to);
    EXPECT_EQ(GetDateSqlFromControls("VisitDate", drsUserSpecifiedDates, from, to), c.expected)
        << c.from << " .. " << c.to;
  }
}

TEST(GetDateSqlFromControls, AllDatesAndNoChoiceGiveNothing) {
  const FixedDateControl from(Morning5()), to(Late7());
  EXPECT_EQ(GetDateSqlFromControls("D", drsAllDates, from, to), "");
  EXPECT_EQ(GetDateSqlFromControls("D", static_cast<DateRangeSpecs>(0), from, to), "");
  EXPECT_EQ(GetDateSqlFromControls("D", drsToday, from, to),
            " ( D Between #03/05/2024#  And #03/08/2024# )");
}

}  // namespace
}  // namespace kelvary::sql
