// Clones: recordsets over one set of rows. A change made through any of them
// is seen by all; each keeps its own position, filter and sort; bookmarks
// work across them; closing one leaves the others open.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

class RecordsetClones : public PatientsTest {
 protected:
  std::shared_ptr<Recordset> Open(LockTypeEnum lock = adLockOptimistic) {
    return PatientsTest::Open(kAllPatients, lock);
  }
};
KELVARY_ON_EVERY_BACKEND(RecordsetClones);

TEST_P(RecordsetClones, AChangeThroughAnyCloneIsSeenByAll) {
  auto rs = Open();
  auto clone = rs->Clone();
  auto second = clone->Clone();  // a clone of a clone holds the same rows

  // Update of a field, either way.
  Go(*clone, 2);
  clone->Fields("LastName").Value("Byrne");
  clone->Update();
  Go(*rs, 3);
  rs->Fields("FirstName").Value("Pauline");
  rs->Update();
  EXPECT_EQ(Names(*rs), "Smith,Byrne,smithers,Jones,Brown,Smith");
  Go(*second, 3);
  EXPECT_EQ(CStr(second->Fields("FirstName").Value()), "Pauline");
  EXPECT_EQ(StoredRows("SELECT LastName, FirstName FROM patients WHERE ID IN (2, 3) ORDER BY ID"),
            "Byrne|Mary,smithers|Pauline");

  // AddNew: at once in a clone that shows every row, at the end, with the
  // key the database gave it; a filtered one shows it once its filter is set
  // again.
  second->Filter("Balance > 5");
  EXPECT_EQ(Names(*second), "Smith,Brown,Smith");
  rs->MoveFirst();
  clone->AddNew({"LastName", "Balance"}, {Variant("Nguyen"), Variant(int32_t{12})});
  EXPECT_EQ(rs->RecordCount(), 7);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 1);  // its position stays where it was
  rs->MoveLast();
  EXPECT_EQ(CStr(rs->Fields("LastName").Value()), "Nguyen");
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 7);
  EXPECT_EQ(second->RecordCount(), 3);
  second->Filter("Balance > 5");
  EXPECT_EQ(Names(*second), "Smith,Brown,Smith,Nguyen");

  // Delete: the row leaves every clone; one that stood on it is on a
  // deleted row until it moves, and moves on to the row after it.
  Go(*rs, 5);
  Go(*second, 5);
  clone->MoveLast();
  Go(*clone, 5);
  clone->Delete();
  for (Recordset* each : {rs.get(), second.get()}) {
    EXPECT_EQ(each->EditMode(), adEditDelete);
    EXPECT_EQ(ErrorOf([&] { each->Fields("ID").Value(); }).Number(), kErrNoCurrentRecord);
    each->MoveNext();
  }
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 6);
  EXPECT_EQ(CLng(second->Fields("ID").Value()), 6);
  EXPECT_EQ(rs->RecordCount(), 6);
  EXPECT_EQ(second->RecordCount(), 3);
  EXPECT_EQ(StoredRows("SELECT COUNT(*) FROM patients WHERE ID = 5"), "0");

  // A new row taken back leaves the others as it came.
  rs->AddNew();
  rs->Fields("LastName").Value("Kowalski");
  clone->MoveLast();
  EXPECT_EQ(CStr(clone->Fields("LastName").Value()), "Kowalski");
  rs->CancelUpdate();
  EXPECT_EQ(Ids(*clone), "1,2,3,4,6,7");
  EXPECT_EQ(StoredRows("SELECT COUNT(*) FROM patients"), "6");
}

// Two clones editing one row: each Update writes, and CancelUpdate takes
// back, only the fields that clone set.
TEST_P(RecordsetClones, EditsOfOneRowInTwoClonesKeepEachOthersFields) {
  auto rs = Open();
  auto clone = rs->Clone();
  Go(*rs, 2);
  Go(*clone, 2);
  rs->Fields("LastName").Value("Byrne");
  clone->Fields("FirstName").Value("Maria");
  clone->Update();
  rs->CancelUpdate();
  for (Recordset* each : {rs.get(), clone.get()}) {
    EXPECT_EQ(CStr(each->Fields("LastName").Value()), "O'Brien");
    EXPECT_EQ(CStr(each->Fields("FirstName").Value()), "Maria");
  }
  EXPECT_EQ(StoredRows("SELECT LastName, FirstName FROM patients WHERE ID = 2"), "O'Brien|Maria");

  // The other way round: the first clone's Update comes after the second's.
  Go(*rs, 3);
  Go(*clone, 3);
  rs->Fields("LastName").Value("Smithson");
  clone->Fields("FirstName").Value("Paula");
  clone->Update();
  rs->Update();
  EXPECT_EQ(StoredRows("SELECT LastName, FirstName FROM patients WHERE ID = 3"), "Smithson|Paula");
  EXPECT_EQ(CStr(clone->Fields("LastName").Value()), "Smithson");

  // The same field set in both: the second to write finds the first one's
  // value where it read another, and is refused; the first writes.
  Go(*rs, 4);
  Go(*clone, 4);
  rs->Fields("LastName").Value("Jonas");
  clone->Fields("LastName").Value("Janes");
  EXPECT_EQ(ErrorOf([&] { clone->Update(); }).Number(), kErrRowChanged);
  clone->CancelUpdate();
  rs->Update();
  EXPECT_EQ(StoredRows("SELECT LastName FROM patients WHERE ID = 4"), "Jonas");
  EXPECT_EQ(CStr(clone->Fields("LastName").Value()), "Jonas");
}

TEST_P(RecordsetClones, EachKeepsItsOwnPositionFilterAndSortAndTheBookmarksOfAll) {
  auto rs = Open();
  rs->Filter("ParentID = 3 OR ParentID = 1");
  rs->Sort("LastName DESC");
  auto clone = rs->Clone();
  EXPECT_EQ(Ids(*rs), "3,2,4,5");
  EXPECT_EQ(Ids(*clone), "1,2,3,4,5,6");  // no filter or sort of its own yet
  clone->Sort("Balance");
  EXPECT_EQ(Ids(*clone), "4,3,2,6,1,5");
  EXPECT_EQ(Ids(*rs), "3,2,4,5");

  // A bookmark taken in one names the same row in the other, new rows too.
  clone->AddNew({"LastName", "ParentID"}, {Variant("Adams"), Variant(int32_t{1})});
  const Variant added = clone->Bookmark();
  rs->Filter("ParentID = 1");
  EXPECT_EQ(Names(*rs), "smithers,O'Brien,Adams");
  rs->Bookmark(added);
  EXPECT_EQ(CStr(rs->Fields("LastName").Value()), "Adams");
  Go(*rs, 2);
  clone->Bookmark(rs->Bookmark());
  EXPECT_EQ(CLng(clone->Fields("ID").Value()), 2);
  Go(*clone, 1);  // filtered out of rs
  EXPECT_EQ(ErrorOf([&] { rs->Bookmark(clone->Bookmark()); }).Number(), kErrInvalidArgument);

  // A sort in one orders by the values another clone wrote.
  Go(*clone, 4);
  clone->Fields("Balance").Value(int32_t{1000});
  clone->Update();
  rs->Filter("");
  rs->Sort("Balance DESC");
  rs->MoveFirst();
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 4);
}

TEST_P(RecordsetClones, ClosingOneLeavesTheOthersOpenOnTheSameRows) {
  auto rs = Open();
  auto clone = rs->Clone();
  auto read_only = rs->Clone(adLockReadOnly);
  Go(*clone, 4);
  clone->Fields("FirstName").Value("Ann-Marie");
  EXPECT_EQ(ErrorOf([&] { clone->Close(); }).Number(), 3219);
  clone->CancelUpdate();
  clone->Close();
  EXPECT_EQ(clone->State(), adStateClosed);
  EXPECT_EQ(rs->RecordCount(), 6);
  Go(*rs, 4);
  EXPECT_TRUE(rs->Fields("FirstName").Value().IsNull());
  rs->Fields("FirstName").Value("Eve");
  rs->Update();
  rs->Close();
  Go(*read_only, 4);
  EXPECT_EQ(CStr(read_only->Fields("FirstName").Value()), "Eve");
  EXPECT_EQ(ErrorOf([&] { read_only->Fields("FirstName").Value("Zoe"); }).Number(),
            kErrOperationNotSupported);
  EXPECT_EQ(Ids(*read_only), "1,2,3,4,5,6");

  // A repeated Find builds an index in one clone; a change through another
  // must not leave it stale.
  auto first = Open();
  auto second = first->Clone();
  for (int i = 0; i < 3; ++i) {
    first->Find("Balance = 7", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
    EXPECT_EQ(CLng(first->Fields("ID").Value()), 6);
  }
  Go(*second, 2);
  second->Fields("Balance").Value(int32_t{7});
  second->Update();
  first->Find("Balance = 7", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  EXPECT_EQ(CLng(first->Fields("ID").Value()), 2);
  second->AddNew({"LastName", "Balance"}, {Variant("Nguyen"), Variant(int32_t{7})});
  std::string found;
  first->Find("Balance = 7", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  while (!first->Eof()) {
    found += (found.empty() ? "" : ",") + CStr(first->Fields("LastName").Value());
    first->Find("Balance = 7", 1);
  }
  EXPECT_EQ(found, "O'Brien,Smith,Nguyen");
}

TEST_P(RecordsetClones, BatchChangesArePendingInEveryClone) {
  const std::string all = "SELECT ID, LastName, Balance FROM patients ORDER BY ID";
  const std::string before = StoredRows(all);
  auto rs = Open(adLockBatchOptimistic);
  auto clone = rs->Clone();
  Go(*clone, 2);
  clone->Fields("Balance").Value(int32_t{40});
  clone->Update();
  Go(*clone, 5);
  clone->Delete();
  rs->AddNew({"LastName"}, {Variant("Nguyen")});
  rs->Update();

  Go(*rs, 2);
  EXPECT_EQ(rs->Status(), adRecModified);
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(0.0));
  clone->Filter(adFilterPendingRecords);
  EXPECT_EQ(Names(*clone), "O'Brien,Brown,Nguyen");
  rs->Filter(adFilterPendingRecords);
  EXPECT_EQ(Names(*rs), "O'Brien,Brown,Nguyen");
  EXPECT_EQ(StoredRows(all), before);

  // Taken back through one, the deleted row comes back in the other and
  // the new one goes.
  clone->Filter(adFilterNone);
  EXPECT_EQ(clone->RecordCount(), 6);
  rs->CancelBatch();
  EXPECT_EQ(Ids(*clone), "1,2,3,4,5,6");
  EXPECT_EQ(Names(*clone), "Smith,O'Brien,smithers,Jones,Brown,Smith");

  // Sent through one, written once, and no longer pending in the other.
  Go(*clone, 6);
  clone->Fields("LastName").Value("Smythe");
  clone->Update();
  rs->Filter(adFilterNone);
  rs->UpdateBatch();
  EXPECT_EQ(StoredRows("SELECT LastName FROM patients WHERE ID = 6"), "Smythe");
  clone->Filter(adFilterPendingRecords);
  EXPECT_EQ(clone->RecordCount(), 0);
  clone->Filter(adFilterAffectedRecords);
  EXPECT_EQ(Names(*clone), "Smythe");
}

}  // namespace
}  // namespace kelvary::testing
