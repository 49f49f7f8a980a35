#include <gtest/gtest.h>

#include "kelvary/platform/Error.h"
#include "records/RecordsFixture.h"

namespace kelvary {
namespace {

using testing::RecordsTest;
using Strings = std::vector<std::string>;

class SafeDeleteTest : public RecordsTest {
 protected:
  void SetUp() override {
    RecordsTest::SetUp();
    if (IsSkipped()) return;
    main_db_.Run("INSERT INTO patients (ID, LastName) VALUES (7, 'a'), (8, 'b'), (9, 'b')");
    // Each Before event says whether its row is still there and how it is
    // marked, read through another connection.
    events_->check = [this] {
      return Rows(main_db_, "SELECT count(*), max(RecordStatus) FROM patients WHERE ID = " +
                                std::to_string(current_key_));
    };
  }
  int32_t current_key_ = 7;
};
KELVARY_ON_EVERY_BACKEND(SafeDeleteTest);

TEST_P(SafeDeleteTest, KeyAndShowableClauses) {
  auto link = Connect(cgmDefault);
  EXPECT_EQ(link->GetKeyFieldSQL(true, "patients", 7, 0, "ID", ""), " ( ID = 7 ) ");
  EXPECT_EQ(link->GetKeyFieldSQL(true, "t", 1, 2, "A", "B"), " ( A = 1 )  AND  ( B = 2 ) ");
  EXPECT_EQ(link->GetKeyFieldSQL(false, "t", 0, 2.5, "", "B"),
            "Select * from t Where  ( B = 2.5 ) ");
  EXPECT_EQ(link->GetKeyFieldSQL(false, "t", 1, 2, "", ""), "");
  ExpectMessages({"No Key Fields defined for table : t"});
  EXPECT_EQ(link->GetShowableRecordClause("P", true), "");
  link->UseSafeDelete = true;
  EXPECT_EQ(link->GetShowableRecordClause("P", true), " AND  ( P.RecordStatus <> 1 ) ");
  EXPECT_EQ(link->GetShowableRecordClause("", false), " ( RecordStatus <> 1 ) ");
}

TEST_P(SafeDeleteTest, SingleRecordByStatementMarksOrDeletesThenPostsMarkedAsDeleted) {
  auto link = Connect(cgmDefault, lfetUpdateSQL | lfetDeleteStmts);
  std::shared_ptr<Recordset> none;
  link->UseSafeDelete = true;
  EXPECT_EQ(link->SafeDeleteRecord(pdsmaindata, 0, "patients", 12, 7, 0, "ID", "", none), 0);
  link->UseSafeDelete = false;
  current_key_ = 8;
  // The statement goes to the main data even for another source.
  link->SafeDeleteRecord(pdsSequenceGenerator, 5, "patients", 12, 8, 0, "ID", "", none);
  EXPECT_EQ(statements_, (Strings{"Update patients set RecordStatus = 1 where  ( ID = 7 ) ",
                                  "Delete from patients  where  ( ID = 8 ) "}));
  EXPECT_EQ(Rows(main_db_, "SELECT ID, RecordStatus FROM patients ORDER BY ID"), "7|1,9|0");
  EXPECT_EQ(
      events_->lines,
      (Strings{"Before 1 3 5 patients 12 7 0 ID  continue 1|1", "After 1 3 5 patients 12 7 0 ID ",
               "Before 3 3 5 patients 12 8 0 ID  continue 0|", "After 3 3 5 patients 12 8 0 ID "}));
  // Configuration rows are deleted but never audited.
  events_->lines.clear();
  link->SafeDeleteRecord(pdssystem, 0, "patients", 12, 9, 0, "ID", "", none);
  EXPECT_TRUE(events_->lines.empty());
}

TEST_P(SafeDeleteTest, SingleRecordOnTheCallersRecordset) {
  auto link = Connect(cgmDefault);
  std::shared_ptr<Recordset> rs;
  ASSERT_TRUE(link->FillRecordSet(pdsmaindata, rs, "Select * from patients where ID >= 8",
                                  adOpenStatic, adLockOptimistic));
  link->UseSafeDelete = true;
  current_key_ = 8;
  link->SafeDeleteRecord(pdsmaindata, 5, "patients", 1, 8, 0, "ID", "", rs);
  rs->MoveNext();
  link->UseSafeDelete = false;
  current_key_ = 9;
  link->SafeDeleteRecord(pdsmaindata, 5, "patients", 1, 9, 0, "ID", "", rs);
  EXPECT_EQ(Rows(main_db_, "SELECT ID, RecordStatus FROM patients ORDER BY ID"), "7|0,8|1");
  EXPECT_EQ(
      events_->lines,
      (Strings{"Before 1 3 5 patients 1 8 0 ID  continue 1|1", "After 1 3 5 patients 1 8 0 ID ",
               "Before 1 3 5 patients 1 9 0 ID  continue 0|", "After 1 3 5 patients 1 9 0 ID "}));
}

TEST_P(SafeDeleteTest, MassDeletePostsEachRowBeforeItGoesWithUserMinusOne) {
  system_db_.Run(
      "INSERT INTO DataTableFields (ID, DataTableID, FieldName, Flags) VALUES "
      "(1, 5, 'LastName', 2), (2, 5, 'ID', 129)");
  auto link = Connect(cgmDefault);
  events_->check = [this] { return Rows(main_db_, "SELECT count(*) FROM patients"); };
  // The unique key (ID) comes from the catalogue; DTableId 0 is passed on
  // as 0 and resolved by the history itself.
  link->MassSafeDeleteEntries(pdsmaindata, 0, "patients", 42, 0, 0, "LastName = 'b'", "", "");
  EXPECT_EQ(
      events_->lines,
      (Strings{"Before 1 2 5 patients -1 8 0 ID  continue 3", "After 1 2 5 patients -1 8 0 ID ",
               "Before 1 2 5 patients -1 9 0 ID  continue 2", "After 1 2 5 patients -1 9 0 ID "}));
  EXPECT_EQ(Rows(main_db_, "SELECT ID FROM patients ORDER BY ID"), "7");
  // Key fields given, no row selected: nothing happens at all.
  events_->lines.clear();
  link->MassSafeDeleteEntries(pdsmaindata, 5, "patients", 42, 99, 0, "", "ID", "");
  EXPECT_TRUE(events_->lines.empty());
}

TEST_P(SafeDeleteTest, MassSafeDeleteMarksRowsOfTheCallersRecordsetAndClosesIt) {
  auto link = Connect(cgmDefault);
  link->UseSafeDelete = true;
  events_->check = [this] { return Rows(main_db_, "SELECT sum(RecordStatus) FROM patients"); };
  // The key values are the rows' own; a text key reads as a number.
  main_db_.Run("UPDATE patients SET LastName = '4'");
  std::shared_ptr<Recordset> rs;
  ASSERT_TRUE(link->FillRecordSet(pdsmaindata, rs, "Select * from patients where ID <= 8",
                                  adOpenStatic, adLockOptimistic));
  link->MassSafeDeleteEntries(pdsmaindata, 6, "patients", 42, 0, 0, "", "ID", "LastName", &rs);
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(Rows(main_db_, "SELECT ID, RecordStatus FROM patients ORDER BY ID"), "7|1,8|1,9|0");
  EXPECT_EQ(events_->lines, (Strings{"Before 1 3 6 patients -1 7 4 ID LastName continue 1",
                                     "After 1 3 6 patients -1 7 4 ID LastName",
                                     "Before 1 3 6 patients -1 8 4 ID LastName continue 2",
                                     "After 1 3 6 patients -1 8 4 ID LastName"}));
}

TEST_P(SafeDeleteTest, MassDeleteWithoutUniqueKeysTouchesNothing) {
  system_db_.Run(
      "INSERT INTO DataTableFields (ID, DataTableID, FieldName, Flags) VALUES "
      "(1, 6, 'A', 1), (2, 6, 'B', 128), (3, 6, 'C', 128)");
  auto link = Connect(cgmDefault);
  events_->check = nullptr;
  link->MassSafeDeleteEntries(pdsmaindata, 5, "patients", 1, 0, 0, "ID > 0", "", "");
  ExpectMessages({"Unique keys not found for patients"});
  EXPECT_EQ(Rows(main_db_, "SELECT count(*) FROM patients"), "3");
  EXPECT_TRUE(events_->lines.empty());
  // More than two unique fields: the first two serve, after a message.
  main_db_.Run(
      "CREATE TABLE visits2 (A INTEGER PRIMARY KEY, B INTEGER, C INTEGER); "
      "INSERT INTO visits2 VALUES (1, 2, 3)");
  link->MassSafeDeleteEntries(pdsmaindata, 6, "visits2", 1, 0, 0, "C = 3", "", "");
  ExpectMessages({"Not handled more than 2 fields for a unique value combination"});
  EXPECT_EQ(events_->lines.front(), "Before 1 2 6 visits2 -1 1 2 A B continue");
}

TEST_P(SafeDeleteTest, ActionHistoryResolvesTheTableAndHonoursBContinue) {
  auto link = Connect(cgmPhysicalLocationWise);
  // The catalogue changes after connecting: the location-wise mode keeps
  // the ID it loaded, other modes look the name up again.
  system_db_.Run("UPDATE DataTables SET ID = 50 WHERE ID = 5");
  auto by_name = Connect(cgmDefault);
  events_->check = nullptr;
  EXPECT_EQ(
      link->PostRecordActionHistory(pdsmaindata, dbratAdded, 0, "patients", 3, 1, 2, "ID", ""),
      Variant(true));
  by_name->PostRecordActionHistoryAsDouble(pdsmaindata, dbratUpdated, 0, "patients", 3, 1.5, 2,
                                           "ID", "");
  // A given ID is used as it is, a known name or not.
  link->PostRecordActionHistory(pdsmaindata, dbratAdded, 44, "nosuchtable", 3, 1, 2, "ID", "");
  EXPECT_EQ(events_->lines,
            (Strings{"Before 1 0 5 patients 3 1 2 ID  continue", "After 1 0 5 patients 3 1 2 ID ",
                     "BeforeAsDouble 1 1 50 patients 3 1.5 2 ID  continue",
                     "AfterAsDouble 1 1 50 patients 3 1.5 2 ID ",
                     "Before 1 0 44 nosuchtable 3 1 2 ID  continue",
                     "After 1 0 44 nosuchtable 3 1 2 ID "}));

  // An unknown table stops the action; a handler that clears bContinue
  // stops the After event (the next sink sees it cleared).
  events_->lines.clear();
  EXPECT_EQ(
      link->PostRecordActionHistory(pdsmaindata, dbratAdded, 0, "nosuchtable", 3, 1, 2, "ID", ""),
      Variant(false));
  ExpectMessages({"Use Dravent to define nosuchtable"});
  auto second = std::make_shared<testing::EventLog>();
  link->Advise(second);
  events_->clear_continue = true;
  link->PostRecordActionHistory(pdsmaindata, dbratAdded, 5, "patients", 3, 1, 2, "ID", "");
  EXPECT_EQ(events_->lines, Strings{"Before 1 0 5 patients 3 1 2 ID  continue"});
  EXPECT_EQ(second->lines, Strings{"Before 1 0 5 patients 3 1 2 ID  stopped"});
}

TEST_P(SafeDeleteTest, HandlerFailuresAreShownNotThrown) {
  struct Failing : InfoLinkEvents {
    void AfterPostActionHistory(ProjectDataSources, DBRecordActionTypes, int32_t,
                                const std::string&, int32_t, int32_t, int32_t, const std::string&,
                                const std::string&) override {
      throw Error(3000, "audit table is read-only");
    }
  };
  auto link = Connect(cgmDefault);
  link->Advise(std::make_shared<Failing>());
  EXPECT_EQ(
      link->PostRecordActionHistory(pdsmaindata, dbratAdded, 5, "patients", 3, 1, 2, "ID", ""),
      Variant(false));
  ExpectMessages({"Error Encountered while Transferring Records\r\naudit table is read-only"});
}

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
