// Cursor position and record counts of the client-side cursor.
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

using RecordsetNavigation = PatientsTest;
KELVARY_ON_EVERY_BACKEND(RecordsetNavigation);

TEST_P(RecordsetNavigation, EmptyResultIsAtBothEndsAndHasNoCurrentRecord) {
  auto rs = Open("SELECT * FROM patients WHERE ID > 100");
  EXPECT_TRUE(rs->Bof() && rs->Eof());
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(rs->AbsolutePosition(), -1);
  EXPECT_EQ(rs->FieldCount(), 7);  // the columns are there without rows
  for (const auto& move :
       std::vector<std::function<void()>>{[&] { rs->MoveFirst(); }, [&] { rs->MoveLast(); },
                                          [&] { rs->MoveNext(); }, [&] { rs->MovePrevious(); }}) {
    EXPECT_EQ(ErrorOf(move).Number(), kErrNoCurrentRecord);
  }
  const Error e = ErrorOf([&] { rs->Fields("ID").Value(); });
  EXPECT_EQ(e.Number(), kErrNoCurrentRecord);
  EXPECT_EQ(e.Description(),
            "Either BOF or EOF is True, or the current record has been deleted. Requested "
            "operation requires a current record.");
}

TEST_P(RecordsetNavigation, MovesWalkBothWaysAndStopAtEitherEnd) {
  auto rs = Open("SELECT ID FROM patients ORDER BY ID");
  EXPECT_EQ(Ids(*rs), "1,2,3,4,5,6");  // leaves the cursor at EOF
  EXPECT_FALSE(rs->Bof());
  EXPECT_EQ(rs->AbsolutePosition(), -3);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }).Number(), kErrNoCurrentRecord);
  std::string backwards;  // from EOF back onto the last row
  for (rs->MovePrevious(); !rs->Bof(); rs->MovePrevious())
    backwards += CStr(rs->Fields(0).Value());
  EXPECT_EQ(backwards, "654321");
  EXPECT_FALSE(rs->Eof());
  EXPECT_EQ(rs->AbsolutePosition(), -2);
  EXPECT_EQ(ErrorOf([&] { rs->MovePrevious(); }).Number(), kErrNoCurrentRecord);
  rs->MoveNext();  // from BOF onto the first row
  EXPECT_EQ(rs->AbsolutePosition(), 1);
  rs->Move(2);
  rs->Move(-1);
  EXPECT_EQ(CLng(rs->Fields(0).Value()), 2);
  const Variant mark = rs->Bookmark();
  rs->MoveLast();
  rs->Bookmark(mark);
  EXPECT_EQ(rs->AbsolutePosition(), 2);
  rs->Move(10);  // beyond the end stops at EOF
  EXPECT_TRUE(rs->Eof());
}

TEST_P(RecordsetNavigation, RecordCountIsExactWhateverCursorTypeIsAsked) {
  for (CursorTypeEnum cursor :
       {adOpenUnspecified, adOpenForwardOnly, adOpenKeyset, adOpenDynamic, adOpenStatic}) {
    for (LockTypeEnum lock : {adLockReadOnly, adLockOptimistic}) {
      auto rs = OpenRecordset(db_.Connection(), "SELECT * FROM patients", lock, cursor);
      EXPECT_EQ(rs->RecordCount(), 6) << "cursor " << cursor << " lock " << lock;
      EXPECT_EQ(rs->CursorType(), adOpenStatic);
      rs->MoveLast();
      rs->MoveFirst();  // a forward-only request still scrolls
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
  EXPECT_TRUE(rs->HasField("firstname") && !rs->HasField("LastName"));
  for (const auto& absent : std::vector<std::function<void()>>{
           [&] { rs->Fields("LastName"); }, [&] { rs->Fields(3); }, [&] { rs->Fields(-1); }}) {
    EXPECT_EQ(ErrorOf(absent).Number(), kErrItemNotFound);
  }
}

TEST_P(RecordsetNavigation, ClosedAndOpenRecordsetsRefuseWhatNeedsTheOtherState) {
  auto rs = std::make_shared<Recordset>();
  for (const auto& call : std::vector<std::function<void()>>{
           [&] { rs->RecordCount(); }, [&] { rs->Eof(); }, [&] { rs->Bof(); },
           [&] { rs->MoveNext(); }, [&] { rs->Fields("ID"); }, [&] { rs->Close(); },
           [&] { rs->EditMode(); }, [&] { rs->Sort("ID"); }}) {
    EXPECT_EQ(ErrorOf(call).Number(), kErrObjectClosed);
  }
  rs->MaxRecords(2);
  rs->Open("SELECT * FROM patients", db_.Connection());
  EXPECT_EQ(rs->RecordCount(), 2);  // MaxRecords limits what Open fetches
  EXPECT_EQ(ErrorOf([&] { rs->Open("SELECT 1", db_.Connection()); }).Number(), kErrObjectOpen);
  EXPECT_EQ(ErrorOf([&] { rs->MaxRecords(0); }).Number(), kErrObjectOpen);
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
