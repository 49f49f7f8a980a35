// Golden texts of the date-range clauses: every combination of present ends,
// same and different days, times of day, the dialects and formula mode.
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

// The dates are members: they are not built during static start-up.
class DateRangeClauses : public ::testing::Test {
 protected:
  const Variant morning5 = DateTimeOf(2024, 3, 5, 10, 30, 0);
  const Variant evening5 = DateTimeOf(2024, 3, 5, 18, 0, 0);
  const Variant late7 = DateTimeOf(2024, 3, 7, 23, 59, 59);
  const Variant new_years_eve = DateSerial(2024, 12, 31);
  const Variant open = Variant::Null();
};

TEST_F(DateRangeClauses, FromValuesEveryCombinationOfEndsInEachDialect) {
  struct Case {
    const char* what;
    StdDBTypes db;
    bool formula;
    Variant from, to;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"both, different days", sdbAccess, false, morning5, late7,
       " ( D Between #03/05/2024#  And #03/08/2024# )"},
      {"both, different days", sdbOracle, false, morning5, late7,
       " ( D Between TO_Date('05-Mar-2024','DD-Mon-YYYY')  And "
       "TO_Date('08-Mar-2024','DD-Mon-YYYY') )"},
      {"both, same day", sdbAccess, false, morning5, evening5,
       " ( (Month(D)  = 3)  And (Day(D) =  5 )  And (Year(D) =  2024 )  )"},
      {"both, same day", sdbOracle, false, morning5, evening5,
       " ( (Month(D)  = 3)  And (Day(D) =  5 )  And (Year(D) =  2024 )  )"},
      {"from only", sdbAccess, false, morning5, open, " ( D >= #03/05/2024# )"},
      {"from only", sdbOracle, false, morning5, Variant(),
       " ( D >= TO_Date('05-Mar-2024','DD-Mon-YYYY') )"},
      {"to only, year end", sdbAccess, false, open, new_years_eve, " ( D < #01/01/2025# ) "},
      {"to only", sdbOracle, false, Variant(), late7,
       " ( D < TO_Date('08-Mar-2024','DD-Mon-YYYY') ) "},
      {"neither", sdbAccess, false, open, Variant(), ""},
      {"formula, different days", sdbAccess, true, morning5, late7,
       " ( {D} in CDate(2024 , 3 , 5)  to CDate(2024 , 3 , 7) )"},
      {"formula, same day", sdbAccess, true, morning5, evening5,
       "( ( Day({D}) = 5 ) and ( Month({D}) = 3 )  and ( Year({D}) = 2024 ))"},
      {"formula, from only, SQL literal", sdbAccess, true, morning5, open,
       " ( {D} >= #03/05/2024# )"},
      {"formula, from only, SQL literal", sdbOracle, true, morning5, open,
       " ( {D} >= TO_Date('05-Mar-2024','DD-Mon-YYYY') )"},
      {"formula, to only", sdbOracle, true, open, new_years_eve,
       " ( {D} <= CDate(2024 , 12 , 31) ) "},
      {"formula, neither", sdbAccess, true, open, open, ""},
      {"text that reads as dates", sdbAccess, false, Variant("2024-03-05"), Variant("3/7/2024"),
       " ( D Between #03/05/2024#  And #03/08/2024# )"},
      {"non-dates are open ends", sdbAccess, false, Variant("soon"), Variant(45000), ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(GetDateSqlFromValues(c.db, "D", drsUserSpecifiedDates, c.from, c.to, c.formula),
              c.expected)
        << c.what << ", dialect " << c.db;
  }
}

TEST_F(DateRangeClauses, FromValuesAllDatesGivesNothingAndNoChoiceStillRestricts) {
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsAllDates, morning5, late7), "");
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsAllDates, morning5, open, true), "");
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", static_cast<DateRangeSpecs>(0), morning5, open),
            " ( D >= #03/05/2024# )");
  // Any other choice is treated alike, and formula mode is off unless passed.
  EXPECT_EQ(GetDateSqlFromValues(sdbAccess, "D", drsLast7Days, open, late7),
            " ( D < #03/08/2024# ) ");
}

TEST_F(DateRangeClauses, FromControlsEveryCombinationAlwaysWithHashLiterals) {
  struct Case {
    DateRangeSpecs choice;
    Variant from, to;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {drsUserSpecifiedDates, open, open, ""},
      {drsUserSpecifiedDates, open, new_years_eve, " ( D < #01/01/2025# ) "},
      {drsUserSpecifiedDates, evening5, open, " ( D >= #03/05/2024# )"},
      {drsUserSpecifiedDates, morning5, evening5,
       "( ( Day(D) = 5 ) and ( Month(D) = 3 )  and ( Year(D) = 2024 ))"},
      {drsUserSpecifiedDates, evening5, late7, " ( D Between #03/05/2024#  And #03/08/2024# )"},
      {drsToday, morning5, late7, " ( D Between #03/05/2024#  And #03/08/2024# )"},
      {drsAllDates, morning5, late7, ""},
      {static_cast<DateRangeSpecs>(0), morning5, late7, ""},  // no choice
  };
  for (const auto& c : cases) {
    const FixedDateControl from(c.from), to(c.to);
    EXPECT_EQ(GetDateSqlFromControls("D", c.choice, from, to), c.expected)
        << "choice " << c.choice << ", " << c.from << " .. " << c.to;
  }
}

}  // namespace
}  // namespace kelvary::sql
