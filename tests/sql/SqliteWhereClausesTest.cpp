// The generated clauses run as WHERE clauses on the embedded database: the
// date literals (#...# and TO_Date), Isnull, Ucase$, Month/Day/Year, the
// Like wildcards and the next-day upper bound select the rows they mean to.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"
#include "kelvary/sql/DataLinx.h"
#include "support/MessageRecorder.h"
#include "support/TestDatabase.h"

namespace kelvary {
namespace {

class DateValue : public DateControl {
 public:
  explicit DateValue(Variant value) : value_(std::move(value)) {}
  Variant Value() const override { return value_; }

 private:
  Variant value_;
};

class SqliteWhereClauses : public ::testing::Test {
 protected:
  SqliteWhereClauses() {
    db_.Run(R"(
      CREATE TABLE Visits (ID INTEGER PRIMARY KEY, FirstName TEXT, MiddleName TEXT,
                           LastName TEXT, Amount DOUBLE, VisitDate DATETIME, Paid BOOLEAN,
                           Sex TEXT);
      INSERT INTO Visits VALUES (1, 'Ann', 'B', 'Smith', 10.5, '2024-03-04 23:59:59', 1, 'F');
      INSERT INTO Visits VALUES (2, 'Bob', '', 'O''Neil', 20, '2024-03-05', 0, 'M');
      INSERT INTO Visits VALUES (3, 'Cy', NULL, 'smythe', 30, '2024-03-05 10:30:00', 1, 'M');
      INSERT INTO Visits VALUES (4, 'Di', 'E', 'Jones', 40, '2024-03-07 18:00:00', 0, 'F');
      INSERT INTO Visits VALUES (5, 'Ed', 'F', 'Adams', 50, '2024-03-08', 0, 'M');
      INSERT INTO Visits VALUES (6, 'Flo', 'G', 'Baker', 60, '2024-03-08 09:00:00', 1, 'F');
      INSERT INTO Visits VALUES (7, 'Gus', 'H', 'Keith', NULL, NULL, 0, 'M');
    )");
    link_.AppDataXion(db_.Connection());
    internal::SetActiveInfoLink(&link_);
  }
  ~SqliteWhereClauses() override { internal::SetActiveInfoLink(nullptr); }

  // The IDs of the rows the clause selects, as "1,2,3".
  std::string Select(const std::string& where) {
    std::shared_ptr<Recordset> rs;
    std::string ids;
    if (link_.FillRecordSet(pdsmaindata, rs,
                            "SELECT ID FROM Visits WHERE " + where + " ORDER BY ID", adOpenStatic,
                            adLockReadOnly)) {
      for (; !rs->Eof(); rs->MoveNext()) {
        ids += (ids.empty() ? "" : ",") + CStr(rs->Fields("ID").Value());
      }
    }
    link_.SafelyCloseRecordSet(rs);
    return ids;
  }

  struct Case {
    const char* what;
    std::string clause;
    std::string ids;
  };
  void ExpectRows(const std::vector<Case>& cases) {
    for (const auto& c : cases) {
      EXPECT_EQ(Select(c.clause), c.ids) << c.what << ": " << c.clause;
    }
    EXPECT_TRUE(messages_.Texts().empty()) << messages_.Texts().front();
  }

  testing::MessageRecorder messages_;
  testing::TestDatabase db_;
  InfoLink link_;
};

const Variant kOpen = Variant::Null();

TEST_F(SqliteWhereClauses, DateRangesSelectWholeDaysInBothDialects) {
  const Variant from = DateTimeOf(2024, 3, 5, 14, 0, 0);
  const Variant to = DateTimeOf(2024, 3, 7, 8, 0, 0);
  const Variant same = DateSerial(2024, 3, 5);
  for (const auto dialect : {sdbAccess, sdbOracle}) {
    link_.MainDBType = dialect;
    // The next-day bound takes in the row stamped at midnight after the range (5),
    // on purpose.
    ExpectRows({
        {"range", link_.GetDateSqlFromValues("VisitDate", drsToday, from, to), "2,3,4,5"},
        {"same day", link_.GetDateSqlFromValues("VisitDate", drsToday, from, same), "2,3"},
        {"from", link_.GetDateSqlFromValues("VisitDate", drsToday, to, kOpen), "4,5,6"},
        {"to", link_.GetDateSqlFromValues("VisitDate", drsToday, kOpen, same), "1,2,3"},
        {"date comparison",
         DataLinx::GetComparisionClause("VisitDate", fdtDate, cmpEquals, drsToday, from, to, true,
                                        false),
         "1,6"},
        {"default date equality",
         DataLinx::GetComparisionClauseForDefEqual("VisitDate", gdtDate, same, false, false), "2"},
    });
  }
  const DateValue d_from(from), d_to(to), d_same(same), d_open(kOpen);
  ExpectRows({
      {"controls, range", link_.GetDateSqlFromControls("VisitDate", drsToday, d_from, d_to),
       "2,3,4,5"},
      {"controls, same day", link_.GetDateSqlFromControls("VisitDate", drsToday, d_same, d_from),
       "2,3"},
      {"controls, from", link_.GetDateSqlFromControls("VisitDate", drsToday, d_to, d_open),
       "4,5,6"},
      {"controls, to", link_.GetDateSqlFromControls("VisitDate", drsToday, d_open, d_same),
       "1,2,3"},
  });
}

TEST_F(SqliteWhereClauses, ComparisonsAndHelpersSelectTheirRows) {
  const Variant none;
  ExpectRows({
      {"number range",
       DataLinx::GetComparisionClause("Amount", fdtLong, cmpBetween, 0, 20, 40, false, false),
       "2,3,4"},
      {"reversed number",
       DataLinx::GetComparisionClause("Amount", fdtLong, cmpGreaterThan, 0, 30, none, true, false),
       "1,2,3"},
      {"quoted text",
       DataLinx::GetComparisionClause("LastName", fdtText, cmpEquals, 0, "O'Neil", none, false,
                                      false),
       "2"},
      {"begins with",
       DataLinx::GetComparisionClause("LastName", fdtText, cmpBeginsWith, 0, "Sm", none, false,
                                      false),
       "1,3"},
      {"contains, formula wildcard",
       DataLinx::GetComparisionClause("LastName", fdtText, cmpContains, 0, "ith", none, false,
                                      true),
       "1,7"},
      {"text range",
       DataLinx::GetComparisionClause("LastName", fdtText, cmpBetween, 0, "B", "K", false, false),
       "4,6"},
      {"boolean", DataLinx::GetBooleanCompareClause("Paid", cmpEquals, true, false), "1,3,6"},
      {"quoted equality",
       DataLinx::GetComparisionClause("Sex", fdtGender, cmpEquals, 0, "F", none, true, false),
       "2,3,5,7"},
      {"default text equality",
       DataLinx::GetComparisionClauseForDefEqual("LastName", gdtText, "o'neil", false, false), "2"},
      {"null test", link_.CreateCheckForNullStmt("VisitDate"), "7"},
      {"initial letter", link_.CreateAlphaClause("LastName", 19), "1,3"},
  });
  link_.MainDBType = sdbOracle;
  ExpectRows({{"initial letter", link_.CreateAlphaClause("LastName", 10), "4"}});
}

TEST_F(SqliteWhereClauses, OracleNameCompositionRuns) {
  link_.MainDBType = sdbOracle;
  std::shared_ptr<Recordset> rs;
  ASSERT_TRUE(link_.FillRecordSet(
      pdsmaindata, rs,
      "SELECT " + link_.GetNameClause("v", "", "PName") + " FROM Visits v WHERE ID = 1",
      adOpenStatic, adLockReadOnly));
  EXPECT_EQ(rs->Fields("PName").Value(), Variant("Ann B  Smith"));
  link_.SafelyCloseRecordSet(rs);
}

}  // namespace
}  // namespace kelvary
