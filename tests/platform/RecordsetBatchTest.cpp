// Batch updating: changes kept in memory and written, or taken back, at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

class RecordsetBatch : public PatientsTest {
 protected:
  std::shared_ptr<Recordset> Batch(const std::string& sql = kAllPatients) {
    return Open(sql, adLockBatchOptimistic);
  }
};
KELVARY_ON_EVERY_BACKEND(RecordsetBatch);

constexpr const char* kAll = "SELECT ID, LastName, Balance FROM patients ORDER BY ID";

TEST_P(RecordsetBatch, ChangesWaitInMemoryUntilUpdateBatchWritesThem) {
  const std::string before = StoredRows(kAll);
  auto rs = Batch();
  EXPECT_TRUE(rs->Supports(adUpdateBatch));
  EXPECT_EQ(rs->Status(), adRecUnmodified);
  Go(*rs, 2);
  rs->Fields("Balance").Value(int32_t{40});
  rs->MoveNext();  // moving off the row keeps it pending, writes nothing
  Go(*rs, 5);
  rs->Delete();
  EXPECT_EQ(rs->Status(), adRecDeleted);
  rs->AddNew({"LastName", "Balance"}, {Variant("Nguyen"), Variant(int32_t{12})});
  EXPECT_EQ(rs->Status(), adRecNew);
  EXPECT_TRUE(rs->Fields("ID").Value().IsNull());  // no key until written
  EXPECT_EQ(rs->RecordCount(), 6);
  EXPECT_EQ(StoredRows(kAll), before);

  Go(*rs, 2);
  EXPECT_EQ(rs->Status(), adRecModified);
  EXPECT_EQ(rs->Fields("Balance").Value(), Variant(40.0));
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(0.0));  // as read, until sent
  rs->Fields("LastName").Value("Byrne");                           // a second edit of a pending row
  rs->Update();
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(0.0));

  rs->Filter(adFilterPendingRecords);  // the deleted row shows too
  EXPECT_EQ(Names(*rs), "Byrne,Brown,Nguyen");
  Go(*rs, "LastName = 'Brown'");
  EXPECT_EQ(rs->Status(), adRecDeleted);
  EXPECT_EQ(ErrorOf([&] { rs->Fields("Balance").Value(int32_t{1}); }).Number(),
            kErrNoCurrentRecord);

  rs->UpdateBatch();
  EXPECT_EQ(StoredRows(kAll),
            "1|Smith|10.5,2|Byrne|40,3|smithers|-3.25,4|Jones|,6|Smith|7,7|Nguyen|12");
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(rs->RecordCount(), 0);  // nothing is pending any more
  rs->Filter(adFilterAffectedRecords);
  EXPECT_EQ(Names(*rs), "Byrne,Brown,Nguyen");
  rs->Filter(adFilterNone);
  EXPECT_EQ(rs->RecordCount(), 6);
  rs->MoveLast();
  EXPECT_EQ(rs->Status(), adRecOK);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 7);  // the key the database gave it
  rs->MoveFirst();
  EXPECT_EQ(rs->Status(), adRecUnmodified);
  Go(*rs, 2);
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(40.0));

  // The new row can be changed and sent again: it is located by its key.
  Go(*rs, 7);
  rs->Fields("Balance").Value(int32_t{13});
  rs->UpdateBatch();
  EXPECT_EQ(StoredRows("SELECT Balance FROM patients WHERE ID = 7"), "13");
}

TEST_P(RecordsetBatch, ARowChangedOrDeletedElsewhereIsAConflictAndTheRestIsWritten) {
  auto rs = Batch();
  for (int32_t id : {1, 2, 3}) {
    Go(*rs, id);
    rs->Fields("Balance").Value(id * 100);
  }
  Go(*rs, 4);
  rs->Delete();
  Other()->Execute("UPDATE patients SET Balance = 50 WHERE ID = 2");
  Other()->Execute("DELETE FROM patients WHERE ID = 3");

  const Error e = ErrorOf([&] { rs->UpdateBatch(); });
  EXPECT_EQ(e.Number(), kErrRowChanged);
  EXPECT_THAT(e.Description(), ::testing::StartsWith("Row cannot be located for updating. Some "
                                                     "values may have been changed since it was "
                                                     "last read."));
  EXPECT_EQ(StoredRows(kAll), "1|Smith|100,2|O'Brien|50,5|Brown|99,6|Smith|7");

  rs->Filter(adFilterConflictingRecords);
  EXPECT_EQ(Ids(*rs), "2,3");
  rs->MoveFirst();
  EXPECT_EQ(rs->Status(), adRecModified | adRecConcurrencyViolation);
  rs->Filter(adFilterAffectedRecords);  // every row the batch tried
  EXPECT_EQ(Ids(*rs), "1,2,3,4");
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(Ids(*rs), "2,3");

  // Sent again, they conflict again; taken back, they read as they were read.
  EXPECT_EQ(ErrorOf([&] { rs->UpdateBatch(); }).Number(), kErrRowChanged);
  rs->CancelBatch();
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(rs->RecordCount(), 0);
  rs->Filter(adFilterNone);
  Go(*rs, 2);
  EXPECT_EQ(rs->Fields("Balance").Value(), Variant(0.0));
  EXPECT_EQ(rs->Status(), adRecUnmodified);
}

TEST_P(RecordsetBatch, CancelBatchTakesBackWhatItsAffectNames) {
  const std::string before = StoredRows(kAll);
  auto rs = Batch();
  Go(*rs, 1);
  rs->Fields("LastName").Value("Smyth");
  Go(*rs, 3);
  rs->Delete();
  rs->AddNew({"LastName"}, {Variant("Nguyen")});
  Go(*rs, 6);
  rs->Fields("Balance").Value(int32_t{1});  // an edit in progress goes too

  // adAffectCurrent: the current row only.
  rs->CancelBatch(adAffectCurrent);
  EXPECT_EQ(rs->Fields("Balance").Value(), Variant(7.0));
  EXPECT_EQ(rs->EditMode(), adEditNone);
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(Names(*rs), "Smyth,smithers,Nguyen");

  // adAffectGroup: the rows the filter shows.
  rs->Filter("LastName LIKE 'S*'");
  rs->CancelBatch(adAffectGroup);
  rs->Filter(adFilterAffectedRecords);
  EXPECT_EQ(Names(*rs), "Smith");
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(Names(*rs), "smithers,Nguyen");

  rs->CancelBatch();
  rs->Filter("");
  EXPECT_EQ(Ids(*rs), "1,2,3,4,5,6");  // the new row gone, the deleted one back
  EXPECT_EQ(Names(*rs), "Smith,O'Brien,smithers,Jones,Brown,Smith");
  rs->UpdateBatch();  // nothing left to send
  EXPECT_EQ(StoredRows(kAll), before);
}

TEST_P(RecordsetBatch, ARefusalOtherThanAConflictRollsTheWholeBatchBack) {
  const std::string before = StoredRows(kAll);
  auto rs = Batch();
  Go(*rs, 1);
  rs->Fields("Balance").Value(int32_t{5});
  rs->AddNew({"ID", "LastName"}, {Variant(int32_t{2}), Variant("Twice")});  // a key that is taken
  const Error e = ErrorOf([&] { rs->UpdateBatch(); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_EQ(StoredRows(kAll), before);  // row 1 went back with it
  EXPECT_EQ(rs->Status(), adRecNew | adRecIntegrityViolation);
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(Names(*rs), "Smith,Twice");

  // Put right, the same batch goes through.
  Go(*rs, "LastName = 'Twice'");
  rs->Fields("ID").Value(int32_t{9});
  rs->UpdateBatch();
  EXPECT_EQ(StoredRows("SELECT ID, Balance FROM patients WHERE ID IN (1, 9) ORDER BY ID"),
            "1|5,9|");
}

TEST_P(RecordsetBatch, TheConnectionsOwnTransactionHoldsTheBatch) {
  auto rs = Batch();
  rs->Fields("LastName").Value("Smyth");
  rs->Update();
  db_.Connection()->BeginTrans();
  rs->UpdateBatch();
  db_.Connection()->RollbackTrans();
  EXPECT_EQ(StoredRows("SELECT LastName FROM patients WHERE ID = 1"), "Smith");

  // Without batch updating the calls only settle a pending edit.
  auto immediate = OpenRecordset(db_.Connection(), kAll, adLockOptimistic);
  EXPECT_FALSE(immediate->Supports(adUpdateBatch));
  immediate->Fields("LastName").Value("Smythe");
  EXPECT_EQ(immediate->Status(), adRecUnmodified);
  immediate->UpdateBatch();
  EXPECT_EQ(StoredRows("SELECT LastName FROM patients WHERE ID = 1"), "Smythe");
  immediate->Filter(adFilterPendingRecords);
  EXPECT_EQ(immediate->RecordCount(), 0);

  auto read_only = OpenRecordset(db_.Connection(), kAll);
  EXPECT_EQ(ErrorOf([&] { read_only->UpdateBatch(); }).Number(), kErrOperationNotSupported);
  EXPECT_EQ(ErrorOf([&] { rs->UpdateBatch(static_cast<AffectEnum>(9)); }).Number(),
            kErrInvalidArgument);
}

}  // namespace
}  // namespace kelvary::testing
