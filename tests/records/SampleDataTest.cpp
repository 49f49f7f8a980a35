#include <gtest/gtest.h>

#include "records/RecordsFixture.h"

namespace kelvary {
namespace {

using testing::RecordsTest;
using Strings = std::vector<std::string>;

class SampleDataTest : public RecordsTest {
 protected:
  void SetUp() override {
    RecordsTest::SetUp();
    if (IsSkipped()) return;
    main_db_.Run(
        "INSERT INTO patients (ID) VALUES (1), (2), (3), (4); "
        "INSERT INTO visits (ID, PatientID) VALUES (1, 1), (10, 3), (11, 4); "
        "INSERT INTO Cities (ID) VALUES (1), (2); "
        "INSERT INTO SelectedRecords (ID, DataTableID, RecordID) VALUES (1, 5, 3), (2, 6, 10)");
  }
  std::string Ids(const std::string& table) {
    return Rows(main_db_, "SELECT ID FROM " + table + " ORDER BY ID");
  }
  // MarkSamples: patients from 3 and visits from 10 on are sample data.
  void MarkSamples() {
    system_db_.Run(
        "UPDATE DataTables SET FirstSampleDataID = 3 WHERE ID = 5; "
        "UPDATE DataTables SET FirstSampleDataID = 10 WHERE ID = 6");
  }
  std::string Marks() {
    return Rows(system_db_, "SELECT ID, FirstSampleDataID FROM DataTables ORDER BY ID");
  }
};
KELVARY_ON_EVERY_BACKEND(SampleDataTest);

TEST_P(SampleDataTest, DeletesFromEveryMarkedTableAndResetsMarksOnlyOnYes) {
  auto link = Connect(cgmDefault);
  EXPECT_FALSE(link->DoesSampleDataExist());
  link->DeleteSampleData();
  ExpectMessages({"No sample data found"});
  EXPECT_EQ(Ids("patients"), "1,2,3,4");
  EXPECT_EQ(Rows(main_db_, "SELECT count(*) FROM SelectedRecords"), "2");

  MarkSamples();
  EXPECT_TRUE(link->DoesSampleDataExist());
  link->DeleteSampleData();  // the recorder answers No
  EXPECT_EQ(Ids("patients") + " " + Ids("visits") + " " + Ids("Cities"), "1,2 1 1,2");
  EXPECT_EQ(Rows(main_db_, "SELECT count(*) FROM SelectedRecords"), "0");
  EXPECT_EQ(messages_.Messages()[0].buttons, vbYesNo);
  ExpectMessages({"Reset the sample data marks of the data tables ?", "Sample data deleted"});
  EXPECT_EQ(Marks(), "5|3,6|10,7|0");
  EXPECT_TRUE(link->DoesSampleDataExist());

  messages_.AnswerNext(vbYes);
  link->DeleteSampleData();
  EXPECT_EQ(Marks(), "5|0,6|0,7|0");
  EXPECT_FALSE(link->DoesSampleDataExist());
  ExpectMessages({"Reset the sample data marks of the data tables ?", "Sample data deleted"});
}

TEST_P(SampleDataTest, ATableWhoseDeleteFailsKeepsItsRowsAndItsMark) {
  // The last sample visit refuses to go (a row elsewhere refers to it):
  // the whole table stays as it was.
  main_db_.Run(
      "CREATE TABLE VisitLocks (VisitID INTEGER REFERENCES visits (ID));"
      "INSERT INTO VisitLocks VALUES (11)");
  MarkSamples();
  auto link = Connect(cgmDefault);
  messages_.AnswerNext(vbOK);  // the failure
  messages_.AnswerNext(vbYes);
  link->DeleteSampleData();
  EXPECT_EQ(Ids("visits"), "1,10,11");
  EXPECT_EQ(Ids("patients"), "1,2");
  EXPECT_EQ(Marks(), "5|0,6|10,7|0");
  const Strings texts = messages_.Texts();
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_EQ(texts[0].rfind("Error executing sql : Delete from visits where ID >= 10\r\n", 0), 0u)
      << texts[0];
  EXPECT_EQ(texts[1], "Reset the sample data marks of the data tables ?");
  EXPECT_EQ(texts[2], "Sample data could not be deleted from : visits");
  messages_.Clear();
}

}  // namespace
}  // namespace kelvary
