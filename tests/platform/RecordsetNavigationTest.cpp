// Cursor position and record counts of the client-side cursor.
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

class RecordsetNavigation : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    db_ = NewDatabase();
    db_.Run(PatientsSql(Traits()));
  }
  std::shared_ptr<Recordset> Open(const std::string& sql) {
    return OpenRecordset(db_.Connection(), sql);
  }
  BackendDatabase db_;
};
KELVARY_ON_EVERY_BACKEND(RecordsetNavigation);

TEST_P(RecordsetNavigation, EmptyResultIsAtBothEndsAndHasNoCurrentRecord) {
  auto rs = Open("SELECT * FROM patients WHERE ID > 100");
  EXPECT_EQ(rs->State(), adStateOpen);
  EXPECT_TRUE(rs->Bof());
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(rs->AbsolutePosition(), -1);
  EXPECT_EQ(rs->FieldCount(), 7);  // the columns are there without rows
  EXPECT_EQ(ErrorOf([&] { rs->MoveFirst(); }).Number(), kErrNoCurrentRecord);
  EXPECT_EQ(ErrorOf([&] { rs->MoveLast(); }).Number(), kErrNoCurrentRecord);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }).Number(), kErrNoCurrentRecord);
  EXPECT_EQ(ErrorOf([&] { rs->MovePrevious(); }).Number(), kErrNoCurrentRecord);
  const Error e = ErrorOf([&] { rs->Fields("ID").Value(); });
  EXPECT_EQ(e.Number(), kErrNoCurrentRecord);
  EXPECT_EQ(e.Description(),
            "Either BOF or EOF is True, or the current record has been deleted. Requested "
            "operation requires a current record.");
}

TEST_P(RecordsetNavigation, MovingPastEitherEndSetsTheFlagThenFails) {
  auto rs = Open("SELECT * FROM patients WHERE ID = 4");
  ASSERT_EQ(rs->RecordCount(), 1);
  EXPECT_FALSE(rs->Bof());
  EXPECT_FALSE(rs->Eof());
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 4);
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_FALSE(rs->Bof());
  EXPECT_EQ(rs->AbsolutePosition(), -3);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }).Number(), kErrNoCurrentRecord);
  rs->MovePrevious();  // back from EOF onto the last row
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 4);
  rs->MovePrevious();
  EXPECT_TRUE(rs->Bof());
  EXPECT_FALSE(rs->Eof());
  EXPECT_EQ(rs->AbsolutePosition(), -2);
  EXPECT_EQ(ErrorOf([&] { rs->MovePrevious(); }).Number(), kErrNoCurrentRecord);
  rs->MoveNext();  // from BOF onto the first row
  EXPECT_EQ(rs->AbsolutePosition(), 1);
  rs->Move(5);  // beyond the end stops at EOF
  EXPECT_TRUE(rs->Eof());
}

TEST_P(RecordsetNavigation, WalksEveryRowInBothDirections) {
  auto rs = Open("SELECT ID FROM patients ORDER BY ID");
  EXPECT_EQ(Ids(*rs), "1,2,3,4,5,6");
  rs->MoveLast();
  std::string backwards;
  while (!rs->Bof()) {
    backwards += CStr(rs->Fields(0).Value());
    rs->MovePrevious();
  }
  EXPECT_EQ(backwards, "654321");
  rs->MoveFirst();
  rs->Move(2);
  EXPECT_EQ(CLng(rs->Fields(0).Value()), 3);
  rs->Move(-1);
  EXPECT_EQ(CLng(rs->Fields(0).Value()), 2);
  const Variant mark = rs->Bookmark();
  rs->MoveLast();
  rs->Bookmark(mark);
  EXPECT_EQ(CLng(rs->Fields(0).Value()), 2);
  EXPECT_EQ(rs->AbsolutePosition(), 2);
}

TEST_P(RecordsetNavigation, RecordCountIsExactWhateverCursorTypeIsAsked) {
  for (CursorTypeEnum cursor :
       {adOpenUnspecified, adOpenForwardOnly, adOpenKeyset, adOpenDynamic, adOpenStatic}) {
    for (LockTypeEnum lock : {adLockReadOnly, adLockOptimistic}) {
      auto rs = OpenRecordset(db_.Connection(), "SELECT * FROM patients", lock, cursor);
      EXPECT_EQ(rs->RecordCount(), 6) << "cursor " << cursor << " lock " << lock;
      EXPECT_EQ(rs->CursorType(), adOpenStatic);
      EXPECT_EQ(rs->CursorLocation(), adUseClient);
      EXPECT_EQ(rs->LockType(), lock);
      rs->MoveLast();
      rs->MoveFirst();  // a forward-only request still scrolls
      EXPECT_EQ(CLng(rs->Fields("ID").Value()), 1);
    }
  }
  auto unspecified = OpenRecordset(db_.Connection(), "SELECT * FROM patients", adLockUnspecified);
  EXPECT_EQ(unspecified->LockType(), adLockReadOnly);
}

TEST_P(RecordsetNavigation, FieldsAreFoundByNameWithoutCaseAndByOrdinal) {
  auto rs = Open("SELECT ID, LastName AS Surname, FirstName FROM patients WHERE ID = 2");
  EXPECT_EQ(rs->Fields("surname").Value(), Variant("O'Brien"));
  EXPECT_EQ(rs->Fields("SURNAME").Name(), Traits().Name("Surname"));
  EXPECT_EQ(rs->Fields(2).Value(), Variant("Mary"));
  EXPECT_EQ(rs->Fields(1).Name(), Traits().Name("Surname"));
  EXPECT_TRUE(rs->HasField("firstname"));
  EXPECT_FALSE(rs->HasField("LastName"));
  EXPECT_EQ(ErrorOf([&] { rs->Fields("LastName"); }).Number(), kErrItemNotFound);
  EXPECT_EQ(ErrorOf([&] { rs->Fields(3); }).Number(), kErrItemNotFound);
  EXPECT_EQ(ErrorOf([&] { rs->Fields(-1); }).Number(), kErrItemNotFound);
}

TEST_P(RecordsetNavigation, ClosedAndOpenRecordsetsRefuseWhatNeedsTheOtherState) {
  auto rs = std::make_shared<Recordset>();
  EXPECT_EQ(rs->State(), adStateClosed);
  for (const auto& call : std::vector<std::function<void()>>{
           [&] { rs->RecordCount(); }, [&] { rs->Eof(); }, [&] { rs->Bof(); },
           [&] { rs->MoveNext(); }, [&] { rs->Fields("ID"); }, [&] { rs->Close(); },
           [&] { rs->EditMode(); }, [&] { rs->Filter("ID = 1"); }}) {
    EXPECT_EQ(ErrorOf(call).Number(), kErrObjectClosed);
  }
  rs->MaxRecords(2);
  rs->Open("SELECT * FROM patients", db_.Connection());
  EXPECT_EQ(rs->RecordCount(), 2);  // MaxRecords limits what Open fetches
  EXPECT_EQ(ErrorOf([&] { rs->Open("SELECT 1", db_.Connection()); }).Number(), kErrObjectOpen);
  EXPECT_EQ(ErrorOf([&] { rs->MaxRecords(0); }).Number(), kErrObjectOpen);
  rs->Cancel();  // nothing runs asynchronously: harmless
  rs->Close();
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(ErrorOf([&] { rs->RecordCount(); }).Number(), kErrObjectClosed);
  // The same object opens again, with the earlier settings kept.
  rs->MaxRecords(0);
  rs->Open("SELECT * FROM patients", db_.Connection());
  EXPECT_EQ(rs->RecordCount(), 6);
}

TEST_P(RecordsetNavigation, AStatementWithoutRowsRunsAndLeavesTheRecordsetClosed) {
  auto rs = Open("UPDATE patients SET Balance = 1 WHERE ID = 1");
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(CDbl(Open("SELECT Balance FROM patients WHERE ID = 1")->Fields(0).Value()), 1.0);

  auto closed = std::make_shared<Connection>();
  EXPECT_EQ(ErrorOf([&] { OpenRecordset(closed, "SELECT 1"); }).Number(), 3709);
}

}  // namespace
}  // namespace kelvary::testing
