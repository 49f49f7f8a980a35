#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "kelvary/platform/Date.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

using History = std::vector<std::pair<LogFileEntryTypes, std::string>>;

class RecordAccessTest : public testing::BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    db_ = NewDatabase();
    db_.Run(
        "CREATE TABLE items (ID INTEGER PRIMARY KEY, Name VARCHAR(20), Qty INTEGER, "
        "Price DOUBLE PRECISION, Done BOOLEAN, Seen DATE);"
        "INSERT INTO items VALUES (1, 'one', 1, 1.5, FALSE, '2024-03-05');"
        "INSERT INTO items VALUES (2, NULL, NULL, NULL, NULL, NULL);");
    link_.AppDataXion(db_.Connection());
    link_.ConfigsXion(db_.Connection());
    link_.SetSQLHistoryObserver([this](LogFileEntryTypes code, const std::string& sql) {
      history_.emplace_back(code, sql);
    });
  }

  // Open: the rows of items matching where, opened for change.
  std::shared_ptr<Recordset> Open(const std::string& where = "1 = 1") {
    std::shared_ptr<Recordset> rs;
    link_.FillRecordSet(pdsmaindata, rs, "Select * from items where " + where, adOpenStatic,
                        adLockOptimistic);
    return rs;
  }
  int32_t CountRows(const std::string& where) {
    return CLng(
        db_.Connection()->Execute("Select count(*) from items where " + where)->Fields(0).Value());
  }

  testing::BackendDatabase db_;
  testing::MessageRecorder messages_;
  InfoLink link_;
  History history_;
};
KELVARY_ON_EVERY_BACKEND(RecordAccessTest);

TEST_P(RecordAccessTest, FillRecordSetTellsWhetherRowsCameBackAndShowsItsFailures) {
  std::shared_ptr<Recordset> rs;
  EXPECT_TRUE(link_.FillRecordSet(pdsmaindata, rs, "Select * from items order by ID",
                                  adOpenForwardOnly, adLockReadOnly));
  EXPECT_EQ(rs->Fields("Name").Value(), Variant("one"));
  // The same recordset is reused: closed, then opened again.
  EXPECT_FALSE(link_.FillRecordSet(pdssystem, rs, "Select * from items where ID = 99", adOpenStatic,
                                   adLockReadOnly));
  EXPECT_EQ(rs->State(), adStateOpen);
  EXPECT_TRUE(rs->Eof());
  EXPECT_TRUE(messages_.Texts().empty());
  EXPECT_TRUE(history_.empty());  // LogFileEntrySetting 0 passes nothing on

  // Failures are shown, and not passed to the history.
  EXPECT_FALSE(
      link_.FillRecordSet(pdsRawData, rs, "Select * from items", adOpenStatic, adLockReadOnly));
  ASSERT_EQ(messages_.Texts().size(), 2u);
  EXPECT_EQ(messages_.Texts()[0], "No Raw Connection available");
  EXPECT_EQ(messages_.Texts()[1].rfind(
                "Error while Loading Records :  with sql Select * from items\r\n", 0),
            0u);
  messages_.Clear();
  link_.LogFileEntrySetting = lfetSelectSQL;
  EXPECT_FALSE(
      link_.FillRecordSet(pdsmaindata, rs, "Select * from nowhere", adOpenStatic, adLockReadOnly));
  ASSERT_EQ(messages_.Texts().size(), 1u);
  EXPECT_NE(messages_.Texts()[0].find(Traits().MissingTable("nowhere")), std::string::npos);
  EXPECT_TRUE(history_.empty());
}

TEST_P(RecordAccessTest, APendingChangeIsDroppedWhenTheRecordsetIsReopenedOrClosed) {
  auto rs = Open();
  rs->AddNew();
  rs->Fields("ID").Value(Variant(3));
  ASSERT_EQ(rs->EditMode(), adEditAdd);
  rs = Open();
  EXPECT_EQ(rs->RecordCount(), 2);
  rs->Fields("Name").Value(Variant("changed"));
  link_.SafelyCloseRecordSet(rs);
  EXPECT_EQ(rs->State(), adStateClosed);
  link_.SafelyCloseRecordSet(rs);  // closing twice is harmless
  link_.SafelyCloseRecordSet(nullptr);
  EXPECT_EQ(CountRows("ID = 3 or Name = 'changed'"), 0);
}

TEST_P(RecordAccessTest, HistoryClassifiesStatementsByTheirFirstWord) {
  struct Case {
    int32_t setting;
    std::string sql;
    History expected;
  };
  const std::vector<Case> cases = {
      {lfetDeleteStmts,
       "  delete from items where ID = 99",
       {{lfetDeleteStmts, "delete from items where ID = 99"}}},
      {lfetInsertStmts, "  delete from items where ID = 99", {}},
      {lfetInsertStmts,
       "Insert into items (ID) values (10)",
       {{lfetInsertStmts, "Insert into items (ID) values (10)"}}},
      {lfetUpdateSQL | lfetDeleteStmts,
       "UPDATE items set Qty = 2 where ID = 10",
       {{lfetUpdateSQL, "UPDATE items set Qty = 2 where ID = 10"}}},
      // A statement of no known kind is passed on with code 0 whenever
      // anything is logged at all.
      {lfetInsertStmts,
       "   CREATE TABLE extra (ID INTEGER)",
       {{lfetNone, "CREATE TABLE extra (ID INTEGER)"}}},
      {lfetNone, "DROP TABLE extra", {}},
  };
  for (const auto& c : cases) {
    history_.clear();
    link_.LogFileEntrySetting = c.setting;
    EXPECT_TRUE(link_.ExecuteSQL(pdsmaindata, c.sql));
    EXPECT_EQ(history_, c.expected) << c.sql;
  }
  EXPECT_TRUE(messages_.Texts().empty());
  EXPECT_EQ(CountRows("ID = 10 and Qty = 2"), 1);
}

TEST_P(RecordAccessTest, ExecuteSQLShowsItsFailuresAndStillReturnsTrue) {
  link_.LogFileEntrySetting = lfetErrorMsgs;
  EXPECT_TRUE(link_.ExecuteSQL(pdsmaindata, "Update nowhere set x = 1"));
  ASSERT_EQ(messages_.Texts().size(), 1u);
  EXPECT_EQ(messages_.Texts()[0].rfind("Error executing sql : Update nowhere set x = 1\r\n", 0),
            0u);
  EXPECT_NE(messages_.Texts()[0].find(Traits().MissingTable("nowhere")), std::string::npos);
  // The failure came before the statement was classified: the text is "".
  EXPECT_EQ(history_, (History{{lfetErrorMsgs, ""}}));
  messages_.Clear();
  history_.clear();
  link_.LogFileEntrySetting = lfetDeleteStmts;
  EXPECT_TRUE(link_.ExecuteSQL(pdsRawData, " Delete from items"));
  EXPECT_EQ(messages_.Texts(), std::vector<std::string>{"No Raw Connection available"});
  EXPECT_EQ(history_, (History{{lfetDeleteStmts, "Delete from items"}}));
  EXPECT_EQ(CountRows("1 = 1"), 2);  // nothing was executed
}

TEST_P(RecordAccessTest, IsValidRecordNeedsAnOpenRecordsetOnARow) {
  EXPECT_FALSE(link_.IsValidRecord(std::make_shared<Recordset>()));  // closed
  EXPECT_FALSE(link_.IsValidRecord(nullptr));
  EXPECT_FALSE(link_.IsValidRecord(Open("ID = 0")));  // empty
  auto rs = Open();
  EXPECT_TRUE(link_.IsValidRecord(rs));
  rs->MoveLast();
  rs->MoveNext();
  EXPECT_FALSE(link_.IsValidRecord(rs));  // after the last row
}

TEST_P(RecordAccessTest, RemoveNonNullsZeroesNumbersFalsifiesBooleansAndLeavesTheRest) {
  auto rs = Open("ID = 2");
  link_.RemoveNonNulls(rs);
  // The zero is stored in the field's own type.
  EXPECT_EQ(rs->Fields("Qty").Value(), Variant(0));
  EXPECT_EQ(rs->Fields("Price").Value(), Variant(0.0));
  EXPECT_EQ(rs->Fields("Done").Value(), Variant(false));
  EXPECT_TRUE(rs->Fields("Name").Value().IsNull());
  EXPECT_TRUE(rs->Fields("Seen").Value().IsNull());
  EXPECT_EQ(rs->EditMode(), adEditInProgress);  // written into the row, not updated
}

TEST_P(RecordAccessTest, AssignFieldValuesToAllRecsCommitsEachRowByMovingOn) {
  auto rs = Open();
  link_.AssignFieldValuesToAllRecs(rs, "Qty", Variant(7));
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(CountRows("Qty = 7"), 2);
}

TEST_P(RecordAccessTest, InterpretRecordErrorStatusNamesTheFieldsOfAFailedUpdate) {
  auto rs = Open("ID = 1");
  EXPECT_EQ(link_.InterpretRecordErrorStatus(pdsmaindata, nullptr, rs), "");
  rs->Fields("Qty").Value(Variant(5));
  db_.Connect()->Execute("Update items set Qty = 9 where ID = 1");  // another user got there first
  try {
    rs->Update();
    FAIL() << "the changed row should conflict";
  } catch (const Error& e) {
    EXPECT_EQ(link_.InterpretRecordErrorStatus(pdsmaindata, &e, rs),
              "\r\nOffending Fields " + Traits().Name("Qty") + " ( 8 ) ");
  }
}

std::string Shaped(const std::string& dsn) {
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + dsn +
         ";Data Provider=MSDASQL";
}

class ConnectDefaultTest : public testing::BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    main_db_ = NewDatabase("main.db");
    system_db_ = NewDatabase("system.db");
    system_db_.RunFile("system_schema.sql");
    main_db_.RunFile("main_schema.sql");
  }
  // ConnectByName: ConnectDefault from the two data-source names.
  bool ConnectByName(InfoLink& link) {
    return link.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                               system_db_.DataSource());
  }

  testing::BackendDatabase main_db_;
  testing::BackendDatabase system_db_;
  testing::MessageRecorder messages_;
  std::shared_ptr<Connection> none_main_;
  std::shared_ptr<Connection> none_system_;
};
KELVARY_ON_EVERY_BACKEND(ConnectDefaultTest);

TEST_P(ConnectDefaultTest, OpensWhatIsNotGivenSharesWhatIsAndBecomesActive) {
  {
    InfoLink link;
    ASSERT_TRUE(ConnectByName(link));
    EXPECT_EQ(link.AppDataXion()->ConnectionString(), Shaped(main_db_.DataSource()));
    EXPECT_EQ(link.ConfigsXion()->ConnectionString(), Shaped(system_db_.DataSource()));
    EXPECT_EQ(link.AppDataXion()->CursorLocation(), adUseClient);
    EXPECT_EQ(ActiveInfoLink(), &link);
    EXPECT_EQ(none_main_, nullptr);  // the caller's variables are left alone
    // An empty direct string is the same as none.
    InfoLink second;
    ASSERT_TRUE(second.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                                      system_db_.DataSource(), std::string()));
    EXPECT_EQ(second.AppDataXion()->ConnectionString(), Shaped(main_db_.DataSource()));
    EXPECT_EQ(ActiveInfoLink(), &second);
    auto main = main_db_.Connection();
    auto system = system_db_.Connection();
    InfoLink given;
    ASSERT_TRUE(given.ConnectDefault(main, system, "unused", "unused"));
    EXPECT_EQ(given.AppDataXion(), main);
    EXPECT_EQ(given.ConfigsXion(), system);
    given.CoreDataTable("patients");  // kept in upper case
    EXPECT_EQ(given.CoreDataTable(), "PATIENTS");
  }
  EXPECT_EQ(ActiveInfoLink(), nullptr);
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_P(ConnectDefaultTest, OnlyLocationKeysOpenASequenceConnectionFromTheDirectString) {
  InfoLink link;
  link.GenCodeMethod = cgmPhysicalLocationWise;
  const std::string direct = main_db_.ConnectionString();
  ASSERT_TRUE(
      link.ConnectDefault(none_main_, none_system_, "ignored", system_db_.DataSource(), direct));
  EXPECT_EQ(link.AppDataXion()->ConnectionString(), direct);
  EXPECT_EQ(link.ConfigsXion()->ConnectionString(), Shaped(system_db_.DataSource()));
  const std::string sql = "Select * from LocationTableKeys";
  std::shared_ptr<Recordset> rs;
  EXPECT_FALSE(
      link.FillRecordSet(pdsSequenceGenerator, rs, sql, adOpenForwardOnly, adLockReadOnly));
  EXPECT_EQ(rs->State(), adStateOpen);  // it reads the main database
  EXPECT_TRUE(messages_.Texts().empty());

  InfoLink plain;
  ASSERT_TRUE(ConnectByName(plain));
  EXPECT_FALSE(
      plain.FillRecordSet(pdsSequenceGenerator, rs, sql, adOpenForwardOnly, adLockReadOnly));
  ASSERT_EQ(messages_.Texts().size(), 1u);
  EXPECT_EQ(
      messages_.Texts()[0].rfind("Error while Loading Records :  with sql " + sql + "\r\n", 0), 0u);
}

TEST_P(ConnectDefaultTest, AFailedOpenReturnsFalseSilentlyAndKeepsWhatWasAssigned) {
  InfoLink link;
  const std::string missing = TheBackend().MissingDataSource();
  EXPECT_FALSE(link.ConnectDefault(none_main_, none_system_, missing, system_db_.DataSource()));
  EXPECT_NE(link.AppDataXion(), nullptr);  // created and assigned before the failure
  EXPECT_EQ(link.AppDataXion()->State(), adStateClosed);
  EXPECT_EQ(link.ConfigsXion(), nullptr);
  EXPECT_EQ(ActiveInfoLink(), nullptr);
  // The system side fails the same way once the main one is given.
  auto main = main_db_.Connection();
  InfoLink other;
  EXPECT_FALSE(other.ConnectDefault(main, none_system_, "", missing));
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_P(ConnectDefaultTest, TerminationStampsTheSessionLogoutThroughTheMainConnectionIfAny) {
  main_db_.Run("INSERT INTO UserSessions (ID, UserID) VALUES (5, 1), (6, 1)");
  const Clock previous = SetClock([] { return DateTimeOf(2024, 3, 5, 18, 30, 0); });
  std::vector<std::string> history;
  const auto record = [&](LogFileEntryTypes, const std::string& sql) { history.push_back(sql); };
  {
    InfoLink link, unconnected;
    for (InfoLink* l : {&link, &unconnected}) {
      l->CurrentUserSessionID = 5;
      l->LogFileEntrySetting = lfetSelectSQL;
      l->SetSQLHistoryObserver(record);
    }
    ASSERT_TRUE(ConnectByName(link));
    history.clear();
  }
  SetClock(previous);
  EXPECT_EQ(history, std::vector<std::string>{"Select * from UserSessions where Id = 5"});
  EXPECT_EQ(testing::Rows(main_db_.Connection(),
                          "Select ID, LogoutDateTime from UserSessions order by ID"),
            "5|" + TextOf(Variant(DateTimeOf(2024, 3, 5, 18, 30, 0))) + ",6|");
  EXPECT_TRUE(messages_.Texts().empty());
}

}  // namespace
}  // namespace kelvary
