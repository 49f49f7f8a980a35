// The record subsystems built on their own, over a fake service port: the
// statements they send, the events they raise and the transactions they
// hold, with the settings they are given.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/records/KeyGenerator.h"
#include "kelvary/records/SafeDelete.h"
#include "kelvary/records/SampleData.h"
#include "records/RecordsFixture.h"
#include "support/FakeServicePort.h"
#include "support/MessageRecorder.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordsAlone : public ::testing::Test {
 protected:
  void SetUp() override {
    system_.RunFile("system_schema.sql");
    main_.RunFile("main_schema.sql");
    port_.databases[pdssystem] = system_.Connection();
    port_.databases[pdsmaindata] = main_.Connection();
    port_.sinks.push_back(events_);
  }
  int32_t Count(const std::string& sql) {
    return CLng(main_.Connection()->Execute(sql)->Fields(0).Value());
  }

  TestDatabase system_{"system.db"};
  TestDatabase main_{"main.db"};
  FakeServicePort port_;
  std::shared_ptr<EventLog> events_ = std::make_shared<EventLog>();
  MessageRecorder messages_;
  lookups::MetadataCache cache_{port_};
  lookups::ValueLookups values_{port_};
};

TEST_F(RecordsAlone, KeysFollowTheModeInTheSettings) {
  records::KeyGenerator keys(port_, cache_);
  main_.Run("INSERT INTO patients (ID) VALUES (41)");
  EXPECT_EQ(keys.GenerateNumericCode(pdsmaindata, "patients", "ID", std::nullopt), 42);
  EXPECT_THAT(port_.calls, ElementsAre("read 1: Select Max(ID)  As Max_Value From patients"));

  // The host answers; nothing reaches the database.
  port_.settings.GenCodeMethod = cgmNetworkServer;
  events_->remote_id = 7;
  port_.calls.clear();
  EXPECT_EQ(keys.GenerateNumericCode(pdsmaindata, "patients", "ID", std::string("limit")), 7);
  EXPECT_EQ(keys.GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID", std::nullopt), 7.5);
  EXPECT_THAT(port_.calls, IsEmpty());
  EXPECT_THAT(events_->lines,
              ElementsAre("Request 1 patients ID limit", "RequestAsDouble 1 patients ID "));

  // Location counters: committed on the sequence-generator connection,
  // behind the location's prefix.
  port_.settings.GenCodeMethod = cgmPhysicalLocationWise;
  port_.settings.CurrentPhysicalLocationID = 3;
  port_.settings.CurrPhysLocIDPrefix = 12;
  port_.databases[pdsSequenceGenerator] = main_.Connect();
  cache_.StoreTableKey("patients", Variant(int32_t{5}));
  EXPECT_EQ(keys.GenerateNumericCode(pdsmaindata, "patients", "ID", std::nullopt), 121);
  EXPECT_EQ(keys.GenerateNumericCode(pdsmaindata, "patients", "ID", std::nullopt), 122);
  EXPECT_EQ(Count("SELECT CurrentMaxID FROM LocationTableKeys WHERE DataTableID = 5 AND "
                  "LocationID = 3"),
            2);
  EXPECT_THAT(messages_.Texts(), IsEmpty());
}

TEST_F(RecordsAlone, SafeDeleteMarksOrDeletesByTheSettingAndTellsTheHost) {
  records::SafeDelete removal(port_, cache_, values_);
  main_.Run("INSERT INTO patients (ID) VALUES (7), (8)");
  std::shared_ptr<Recordset> none;
  port_.settings.UseSafeDelete = true;
  removal.SafeDeleteRecord(pdsmaindata, 5, "patients", 3, 7, 0, "ID", "", none);
  EXPECT_EQ(removal.GetShowableRecordClause("patients", true),
            " AND  ( patients.RecordStatus <> 1 ) ");
  port_.settings.UseSafeDelete = false;
  removal.SafeDeleteRecord(pdsmaindata, 5, "patients", 3, 8, 0, "ID", "", none);
  EXPECT_EQ(removal.GetShowableRecordClause("patients", true), "");

  EXPECT_THAT(port_.calls,
              ElementsAre("run 1: Update patients set RecordStatus = 1 where  ( ID = 7 ) ",
                          "run 1: Delete from patients  where  ( ID = 8 ) "));
  EXPECT_EQ(Count("SELECT COUNT(*) FROM patients WHERE RecordStatus = 1"), 1);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM patients"), 1);
  EXPECT_THAT(
      events_->lines,
      ElementsAre("Before 1 3 5 patients 3 7 0 ID  continue", "After 1 3 5 patients 3 7 0 ID ",
                  "Before 1 3 5 patients 3 8 0 ID  continue", "After 1 3 5 patients 3 8 0 ID "));
}

TEST_F(RecordsAlone, SampleDataGoesTableByTableAndAFailingTableKeepsItsRows) {
  records::SampleData samples(port_);
  EXPECT_FALSE(samples.DoesSampleDataExist());
  system_.Run(
      "INSERT INTO DataTables (ID, ValuesTable, FirstSampleDataID, TableLocation) VALUES "
      "(1, 'Cities', 10, 1), (2, 'Missing', 1, 1), (3, 'patients', 5, 1)");
  main_.Run(
      "INSERT INTO Cities (ID, Description) VALUES (1, 'kept'), (10, 'sample');"
      "INSERT INTO patients (ID) VALUES (4), (5), (6)");
  EXPECT_TRUE(samples.DoesSampleDataExist());
  messages_.AnswerNext(vbYes);
  samples.DeleteSampleData();

  EXPECT_EQ(Count("SELECT COUNT(*) FROM Cities"), 1);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM patients"), 1);
  EXPECT_THAT(messages_.Texts(), ElementsAre("Reset the sample data marks of the data tables ?",
                                             "Sample data could not be deleted from : Missing"));
  const auto marks = system_.Connection()->Execute(
      "SELECT group_concat(FirstSampleDataID) FROM (SELECT FirstSampleDataID FROM DataTables "
      "ORDER BY ID)");
  EXPECT_EQ(CStr(marks->Fields(0).Value()), "0,1,0");
}

}  // namespace
}  // namespace kelvary::testing
