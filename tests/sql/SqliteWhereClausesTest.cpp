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
  // Controls always write hash literals, the texts of the values in the Access
  // dialect above, except for a single day, which has a form of its own.
  const DateValue d_same(same), d_from(from);
  ExpectRows({{"controls, same day",
               link_.GetDateSqlFromControls("VisitDate", drsToday, d_same, d_from), "2,3"}});
}

TEST_F(SqliteWhereClauses, ComparisonsAndHelpersSelectTheirRows) {
  const auto clause = [](const char* field, FieldDataTypes type, CompareTypes op, const Variant& v1,
                         const Variant& v2 = {}, bool reverse = false, bool formula = false) {
    return DataLinx::GetComparisionClause(field, type, op, 0, v1, v2, reverse, formula);
  };
  ExpectRows({
      {"number range", clause("Amount", fdtLong, cmpBetween, 20, 40), "2,3,4"},
      {"reversed number", clause("Amount", fdtLong, cmpGreaterThan, 30, {}, true), "1,2,3"},
      {"quoted text", clause("LastName", fdtText, cmpEquals, "O'Neil"), "2"},
      {"begins with", clause("LastName", fdtText, cmpBeginsWith, "Sm"), "1,3"},
      {"contains, formula wildcard",
       clause("LastName", fdtText, cmpContains, "ith", {}, false, true), "1,7"},
      {"text range", clause("LastName", fdtText, cmpBetween, "B", "K"), "4,6"},
      {"quoted equality", clause("Sex", fdtGender, cmpEquals, "F", {}, true), "2,3,5,7"},
      {"boolean", DataLinx::GetBooleanCompareClause("Paid", cmpEquals, true, false), "1,3,6"},
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
