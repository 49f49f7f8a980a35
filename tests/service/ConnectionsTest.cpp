#include <gtest/gtest.h>

#include "kelvary/platform/Date.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

using testing::BackendDatabase;

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

  BackendDatabase main_db_;
  BackendDatabase system_db_;
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
