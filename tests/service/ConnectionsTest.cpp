#include <gtest/gtest.h>

#include "kelvary/platform/Date.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

using testing::BackendDatabase;
using testing::MessageRecorder;

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

  BackendDatabase main_db_;
  BackendDatabase system_db_;
  MessageRecorder messages_;
  std::shared_ptr<Connection> none_main_;
  std::shared_ptr<Connection> none_system_;
};
KELVARY_ON_EVERY_BACKEND(ConnectDefaultTest);

TEST(InfoLinkSettings, DefaultsAndTheUpperCaseRule) {
  InfoLink link;
  EXPECT_EQ(link.LogFileEntrySetting, 0);
  EXPECT_EQ(link.ORDERFIELD1, "FirstName");
  EXPECT_EQ(link.ORDERFIELD2, "MiddleName");
  EXPECT_EQ(link.ORDERFIELD3, "LastName");
  EXPECT_EQ(link.MainDBType, sdbAccess);
  EXPECT_EQ(link.GenCodeMethod, cgmDefault);
  EXPECT_FALSE(link.UseSafeDelete);
  EXPECT_EQ(link.AppDataXion(), nullptr);
  link.CoreDataTable("patients");
  EXPECT_EQ(link.CoreDataTable(), "PATIENTS");
  link.CoreDataTable("");
  EXPECT_EQ(link.CoreDataTable(), "");
}

TEST_P(ConnectDefaultTest, OpensBothConnectionsFromDataSourceNamesAndBecomesActive) {
  {
    InfoLink link;
    ASSERT_TRUE(link.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                                    system_db_.DataSource()));
    EXPECT_EQ(link.AppDataXion()->ConnectionString(), Shaped(main_db_.DataSource()));
    EXPECT_EQ(link.ConfigsXion()->ConnectionString(), Shaped(system_db_.DataSource()));
    EXPECT_EQ(link.AppDataXion()->CursorLocation(), adUseClient);
    EXPECT_EQ(ActiveInfoLink(), &link);
    // The caller's variables are left as they were.
    EXPECT_EQ(none_main_, nullptr);
    // An empty direct string is the same as none.
    InfoLink second;
    ASSERT_TRUE(second.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                                      system_db_.DataSource(), std::string()));
    EXPECT_EQ(second.AppDataXion()->ConnectionString(), Shaped(main_db_.DataSource()));
    EXPECT_EQ(ActiveInfoLink(), &second);
  }
  EXPECT_EQ(ActiveInfoLink(), nullptr);
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_P(ConnectDefaultTest, DirectStringServesMainAndSequenceConnectionsNeverTheSystemOne) {
  InfoLink link;
  link.GenCodeMethod = cgmPhysicalLocationWise;
  const std::string direct = main_db_.ConnectionString();
  ASSERT_TRUE(
      link.ConnectDefault(none_main_, none_system_, "ignored", system_db_.DataSource(), direct));
  EXPECT_EQ(link.AppDataXion()->ConnectionString(), direct);
  EXPECT_EQ(link.ConfigsXion()->ConnectionString(), Shaped(system_db_.DataSource()));
  // The sequence-generator connection reads the main database.
  std::shared_ptr<Recordset> rs;
  EXPECT_FALSE(link.FillRecordSet(pdsSequenceGenerator, rs, "Select * from LocationTableKeys",
                                  adOpenForwardOnly, adLockReadOnly));
  EXPECT_EQ(rs->State(), adStateOpen);
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST_P(ConnectDefaultTest, WithoutLocationKeysThereIsNoSequenceConnection) {
  InfoLink link;
  ASSERT_TRUE(link.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                                  system_db_.DataSource()));
  std::shared_ptr<Recordset> rs;
  EXPECT_FALSE(link.FillRecordSet(pdsSequenceGenerator, rs, "Select * from LocationTableKeys",
                                  adOpenForwardOnly, adLockReadOnly));
  ASSERT_EQ(messages_.Texts().size(), 1u);
  EXPECT_EQ(messages_.Texts()[0].rfind(
                "Error while Loading Records :  with sql Select * from LocationTableKeys\r\n", 0),
            0u);
}

TEST_P(ConnectDefaultTest, GivenConnectionsAreSharedNotReopened) {
  InfoLink link;
  auto main = main_db_.Connection();
  auto system = system_db_.Connection();
  ASSERT_TRUE(link.ConnectDefault(main, system, "unused", "unused"));
  EXPECT_EQ(link.AppDataXion(), main);
  EXPECT_EQ(link.ConfigsXion(), system);
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

TEST_P(ConnectDefaultTest, TerminationStampsTheSessionLogoutThroughTheMainConnection) {
  main_db_.Run(
      "INSERT INTO UserSessions (ID, UserID) VALUES (5, 1); "
      "INSERT INTO UserSessions (ID, UserID) VALUES (6, 1)");
  const Clock previous = SetClock([] { return DateTimeOf(2024, 3, 5, 18, 30, 0); });
  std::vector<std::string> history;
  {
    InfoLink link;
    link.CurrentUserSessionID = 5;
    link.LogFileEntrySetting = lfetSelectSQL;
    link.SetSQLHistoryObserver(
        [&](LogFileEntryTypes, const std::string& sql) { history.push_back(sql); });
    ASSERT_TRUE(link.ConnectDefault(none_main_, none_system_, main_db_.DataSource(),
                                    system_db_.DataSource()));
    history.clear();
  }
  SetClock(previous);
  EXPECT_EQ(history, std::vector<std::string>{"Select * from UserSessions where Id = 5"});
  auto rs = std::make_shared<Recordset>();
  rs->Open("Select ID, LogoutDateTime from UserSessions order by ID", main_db_.Connection());
  EXPECT_EQ(rs->Fields("LogoutDateTime").Value(), Variant(DateTimeOf(2024, 3, 5, 18, 30, 0)));
  rs->MoveNext();
  EXPECT_TRUE(rs->Fields("LogoutDateTime").Value().IsNull());
  EXPECT_TRUE(messages_.Texts().empty());
}

TEST(InfoLinkTermination, WithoutAMainConnectionNothingIsRead) {
  MessageRecorder messages;
  std::vector<std::string> history;
  {
    InfoLink link;
    link.LogFileEntrySetting = lfetSelectSQL;
    link.SetSQLHistoryObserver(
        [&](LogFileEntryTypes, const std::string& sql) { history.push_back(sql); });
  }
  EXPECT_TRUE(history.empty());
  EXPECT_TRUE(messages.Texts().empty());
}

}  // namespace
}  // namespace kelvary
