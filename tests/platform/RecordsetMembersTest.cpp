// The recordset members a host script reaches beyond navigation, Find and
// Filter: settings before Open, the states in which a member refuses, field
// lists, reading rows in bulk, what a recordset says it supports, and the
// fields' metadata. Connections and commands are in ConnectionTest.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

const Variant kFirst(int32_t{adBookmarkFirst});
const Variant kLast(int32_t{adBookmarkLast});

class RecordsetMembers : public PatientsTest {
 protected:
  int32_t Count(const std::string& where) {
    auto rs = Open("SELECT COUNT(*) FROM patients WHERE " + where);
    return CLng(rs->Fields(0).Value());
  }
};
KELVARY_ON_EVERY_BACKEND(RecordsetMembers);

TEST_P(RecordsetMembers, SettingsGivenBeforeOpenAreWhatOpenUses) {
  Recordset rs;
  EXPECT_EQ(rs.CursorLocation(), adUseServer);
  EXPECT_EQ(rs.FieldCount(), 0);
  rs.Filter("ParentID = 3");  // kept until the rows are there
  rs.Source("SELECT * FROM patients ORDER BY ID");
  rs.ActiveConnection(db_.Connection());
  rs.LockType(adLockOptimistic);
  rs.CursorType(adOpenKeyset);
  rs.Open();
  EXPECT_EQ(Ids(rs), "4,5");
  EXPECT_EQ(rs.LockType(), adLockOptimistic);
  EXPECT_EQ(rs.CursorType(), adOpenStatic);  // every cursor here is a static client cursor
  EXPECT_EQ(rs.CursorLocation(), adUseClient);
  EXPECT_EQ(rs.Source(), "SELECT * FROM patients ORDER BY ID");
  for (const auto& set : std::vector<std::function<void()>>{
           [&] { rs.LockType(adLockReadOnly); }, [&] { rs.Source("x"); },
           [&] { rs.ActiveConnection(nullptr); }, [&] { rs.AppendField("x", adInteger); }}) {
    EXPECT_EQ(ErrorOf(set).Number(), kErrObjectOpen);
  }
  rs.Close();
  EXPECT_EQ(ErrorOf([&] { rs.FieldCount(); }).Number(), kErrObjectClosed);
  EXPECT_EQ(rs.Source(), "SELECT * FROM patients ORDER BY ID");  // still readable
}

TEST_P(RecordsetMembers, EditModeAndCloseNeedARowAndNoPendingEdit) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID", adLockOptimistic);
  auto none = Open("SELECT * FROM patients WHERE ID < 0");
  for (const auto& at_end : std::vector<std::function<void()>>{
           [&] { none->EditMode(); }, [&] { rs->MoveLast(), rs->MoveNext(), rs->EditMode(); },
           [&] { rs->MoveFirst(), rs->MovePrevious(), rs->EditMode(); }}) {
    EXPECT_EQ(ErrorOf(at_end).Number(), kErrNoCurrentRecord);
  }
  rs->MoveFirst();
  EXPECT_EQ(rs->EditMode(), adEditNone);
  rs->Fields("FirstName").Value("Jon");
  EXPECT_EQ(ErrorOf([&] { rs->Close(); }).Number(), 3219);
  EXPECT_EQ(rs->State(), adStateOpen);
  rs->CancelUpdate();
  rs->AddNew();
  EXPECT_EQ(ErrorOf([&] { rs->Close(); }).Number(), 3219);
  rs->CancelUpdate();
  rs->Close();
  EXPECT_EQ(Count("FirstName = 'Jon'"), 0);
}

TEST_P(RecordsetMembers, PositionsAndMovesFromAStart) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID");
  auto id = [&] { return CLng(rs->Fields("ID").Value()); };
  rs->AbsolutePosition(3);
  EXPECT_EQ(id(), 3);
  for (int32_t outside : {0, 7, -2}) {
    EXPECT_EQ(ErrorOf([&] { rs->AbsolutePosition(outside); }).Number(), kErrInvalidArgument);
  }
  rs->Move(2, kFirst);
  EXPECT_EQ(id(), 3);
  rs->Move(-1, kLast);
  EXPECT_EQ(id(), 5);
  rs->Move(1, Variant(int16_t{adBookmarkFirst}));  // a script's literal is an Integer
  EXPECT_EQ(id(), 2);
  rs->Move(0, Variant(int16_t{adBookmarkLast}));
  EXPECT_EQ(id(), 6);
  rs->AbsolutePosition(2);
  const Variant two = rs->Bookmark();
  rs->MoveLast();
  rs->Move(1, two);
  EXPECT_EQ(id(), 3);
  rs->Move(10, two);
  EXPECT_TRUE(rs->Eof());
}

TEST_P(RecordsetMembers, GetRowsAndGetStringReadRowsFromTheCursorOn) {
  auto rs = Open("SELECT ID, LastName, FirstName FROM patients ORDER BY ID");
  const auto first_two = rs->GetRows(2, kFirst, {"lastname", "ID"});
  ASSERT_EQ(first_two.size(), 2u);
  EXPECT_EQ(first_two[0], (std::vector<Variant>{Variant("Smith"), Variant("O'Brien")}));
  EXPECT_EQ(CLng(first_two[1][1]), 2);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 3);  // after the last row read
  EXPECT_EQ(rs->GetRows()[0].size(), 4u);        // the rest
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(ErrorOf([&] { rs->GetRows(); }).Number(), kErrNoCurrentRecord);
  EXPECT_EQ(ErrorOf([&] { rs->GetRows(1, kFirst, {"Nope"}); }).Number(), kErrItemNotFound);

  rs->Filter("ID >= 3 AND ID <= 5");
  EXPECT_EQ(rs->GetString(adClipString, 2, ",", ";", "-"), "3,smithers,Paul;4,Jones,-;");
  EXPECT_EQ(rs->GetString(), "5\tBrown\tAnn\r");
  EXPECT_EQ(ErrorOf([&] { rs->GetString(); }).Number(), kErrNoCurrentRecord);
}

TEST_P(RecordsetMembers, FieldListsWriteTheRowAtOnce) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID", adLockOptimistic);
  rs->AddNew({"ID", "LastName", "FirstName"},
             {Variant(int32_t{7}), Variant("Gray"), Variant("Al")});
  EXPECT_EQ(rs->EditMode(), adEditNone);
  EXPECT_EQ(Count("LastName = 'Gray' AND FirstName = 'Al'"), 1);
  rs->Update({"FirstName", "Balance"}, {Variant("Bo"), Variant(2.5)});
  EXPECT_EQ(Count("FirstName = 'Bo' AND Balance = 2.5"), 1);
  EXPECT_EQ(ErrorOf([&] { rs->Update({"FirstName"}, {}); }).Number(), kErrInvalidArgument);
  EXPECT_EQ(ErrorOf([&] { rs->AddNew({"Nope"}, {Variant(1)}); }).Number(), kErrItemNotFound);
  EXPECT_EQ(rs->RecordCount(), 7);  // the refused new row is gone again

  // Delete with AffectRecords: the filtered rows, then every row.
  rs->Filter("ParentID = 3");
  rs->Delete(adAffectGroup);
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(Count("ParentID = 3"), 0);
  EXPECT_EQ(Count("ID > 0"), 5);
  rs->Filter("ID = 1");
  rs->Delete(adAffectAll);
  EXPECT_EQ(Count("ID > 0"), 0);
  EXPECT_EQ(rs->Filter(), "ID = 1");
}

TEST_P(RecordsetMembers, SupportsSaysWhatTheRecordsetCanDo) {
  auto read_only = Open("SELECT * FROM patients");
  auto writable = Open("SELECT * FROM patients", adLockOptimistic);
  EXPECT_TRUE(read_only->Supports(adBookmark | adFind | adMovePrevious | adApproxPosition));
  for (int32_t option : {adAddNew, adDelete, adUpdate}) {
    EXPECT_FALSE(read_only->Supports(option)) << option;
    EXPECT_TRUE(writable->Supports(option)) << option;
  }
  for (int32_t option : {adUpdateBatch, adResync, adNotify}) {
    EXPECT_FALSE(writable->Supports(option)) << option;
  }
  writable->Close();
  EXPECT_EQ(ErrorOf([&] { writable->Supports(adBookmark); }).Number(), kErrObjectClosed);
}

TEST_P(RecordsetMembers, FieldsDescribeTheirTypeAndWhatMayBeWritten) {
  auto read_only = Open("SELECT ID, LastName, Balance FROM patients");
  auto writable = Open("SELECT ID, LastName, Balance FROM patients", adLockOptimistic);
  const Field& balance = writable->Fields("Balance");
  EXPECT_EQ(balance.Precision(), 15);
  EXPECT_EQ(balance.NumericScale(), 255);
  EXPECT_EQ(writable->Fields("ID").NumericScale(), 0);
  EXPECT_EQ(writable->Fields("LastName").Precision(), 255);
  EXPECT_TRUE(balance.Attributes() & adFldUpdatable);
  EXPECT_TRUE(balance.Attributes() & adFldIsNullable);
  EXPECT_TRUE(balance.Attributes() & adFldFixed);
  EXPECT_FALSE(writable->Fields("LastName").Attributes() & adFldIsNullable);  // NOT NULL
  EXPECT_FALSE(read_only->Fields("Balance").Attributes() & adFldUpdatable);
  writable->Find("ID = 5");
  writable->Fields("Balance").Value(1.0);
  EXPECT_EQ(CDbl(writable->Fields("Balance").UnderlyingValue()), 99.0);
  EXPECT_EQ(CDbl(writable->Fields("Balance").OriginalValue()), 99.0);
  writable->CancelUpdate();
}

TEST_P(RecordsetMembers, SortOrdersTheRowsAndFilterAndFindFollowIt) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID");
  const std::pair<const char*, const char*> cases[] = {
      {"LastName DESC, ID", "3,1,6,2,4,5"},  // texts without regard to case; ties by ID
      {"[Balance] ASC", "4,3,2,6,1,5"},      // Null first
      {"Balance DESC", "5,1,6,2,3,4"},       // and last descending
      {"  ", "1,2,3,4,5,6"},
  };
  for (const auto& [sort, ids] : cases) {
    rs->Sort(sort);
    EXPECT_EQ(Ids(*rs), ids) << sort;
  }
  rs->Sort("Balance");
  rs->Filter("Active = True");
  EXPECT_EQ(Ids(*rs), "4,2,6,1");
  rs->Find("Balance > 5", 0, adSearchForward, kFirst);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 6);
  const Variant six = rs->Bookmark();
  rs->Find("Balance > 5", 1);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 1);
  rs->Bookmark(six);
  EXPECT_EQ(rs->AbsolutePosition(), 3);
  rs->Sort("");
  EXPECT_EQ(Ids(*rs), "1,2,4,6");  // the filter stays
  EXPECT_EQ(rs->Sort(), "");
  for (const auto& [sort, number] :
       std::vector<std::pair<const char*, int32_t>>{{"Nope", kErrItemNotFound},
                                                    {"ID DOWN", kErrInvalidArgument},
                                                    {"ID,", kErrInvalidArgument}}) {
    EXPECT_EQ(ErrorOf([&] { rs->Sort(sort); }).Number(), number) << sort;
  }
}

TEST_P(RecordsetMembers, ClonesShareBookmarksButKeepTheirOwnPosition) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID", adLockOptimistic);
  rs->Filter("ID > 2");
  rs->Find("ID = 5");
  const Variant five = rs->Bookmark();
  auto clone = rs->Clone();
  EXPECT_EQ(CLng(clone->Fields("ID").Value()), 1);  // its own position, no filter
  EXPECT_EQ(clone->RecordCount(), 6);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 5);
  clone->Bookmark(five);
  EXPECT_EQ(CLng(clone->Fields("ID").Value()), 5);
  clone->MoveFirst();  // row 1 is filtered out of rs
  EXPECT_EQ(ErrorOf([&] { rs->Bookmark(clone->Bookmark()); }).Number(), kErrInvalidArgument);
  clone->MoveLast();
  rs->Bookmark(clone->Bookmark());
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 6);
  EXPECT_TRUE(clone->Supports(adUpdate));
  EXPECT_FALSE(rs->Clone(adLockReadOnly)->Supports(adUpdate));

  // A bookmark of another recordset, even of the same rows, is refused.
  auto other = Open("SELECT * FROM patients ORDER BY ID");
  const Variant foreign = other->Bookmark();
  EXPECT_EQ(ErrorOf([&] { rs->Bookmark(foreign); }).Number(), kErrInvalidArgument);
  EXPECT_EQ(ErrorOf([&] { rs->Find("ID = 3", 0, adSearchForward, foreign); }).Number(),
            kErrInvalidArgument);
  EXPECT_EQ(ErrorOf([&] { rs->Bookmark(Variant(2.0)); }).Number(), kErrInvalidArgument);
}

TEST_P(RecordsetMembers, FilterTakesBookmarksAndFilterGroups) {
  auto rs = Open("SELECT * FROM patients ORDER BY ID");
  rs->AbsolutePosition(5);
  const Variant five = rs->Bookmark();
  rs->AbsolutePosition(2);
  rs->Filter(std::vector<Variant>{five, rs->Bookmark()});
  EXPECT_EQ(Ids(*rs), "2,5");
  rs->Sort("ID DESC");
  EXPECT_EQ(Ids(*rs), "5,2");
  EXPECT_EQ(ErrorOf([&] { rs->Filter(std::vector<Variant>{Variant(1.0)}); }).Number(),
            kErrInvalidArgument);
  rs->Filter(adFilterNone);
  EXPECT_EQ(rs->RecordCount(), 6);
  for (FilterGroupEnum group :
       {adFilterPendingRecords, adFilterAffectedRecords, adFilterConflictingRecords}) {
    rs->Filter(group);
    EXPECT_EQ(rs->RecordCount(), 0) << group;  // changes are written at once: none waits
  }
  rs->Filter(adFilterFetchedRecords);
  EXPECT_EQ(Ids(*rs), "6,5,4,3,2,1");
}

TEST(InMemoryRecordset, AppendedFieldsOpenWithoutAConnection) {
  Recordset rs;
  rs.AppendField("ID", adInteger, 0, adFldKeyColumn);
  rs.AppendField("Name", adVarWChar, 20, adFldIsNullable);
  EXPECT_EQ(ErrorOf([&] { rs.AppendField("name", adInteger); }).Number(), 3367);
  EXPECT_EQ(rs.FieldCount(), 2);
  rs.LockType(adLockOptimistic);
  rs.Open();
  EXPECT_TRUE(rs.Bof() && rs.Eof());
  EXPECT_EQ(rs.Fields("Name").DefinedSize(), 20);
  EXPECT_TRUE(rs.Fields("ID").Attributes() & adFldKeyColumn);
  for (int32_t id : {3, 1, 2})
    rs.AddNew({"ID", "Name"}, {Variant(id), Variant("n" + std::to_string(id))});
  rs.Filter("ID >= 2");
  EXPECT_EQ(Ids(rs), "3,2");
  rs.Filter("");
  rs.MoveFirst();
  rs.Delete();
  EXPECT_EQ(rs.RecordCount(), 2);

  Recordset read_only;  // the default lock keeps it read-only, as the platform does
  read_only.AppendField("ID", adInteger);
  read_only.Open();
  EXPECT_EQ(ErrorOf([&] { read_only.AddNew(); }).Number(), kErrOperationNotSupported);
}

TEST_P(RecordsetMembers, SeekFindsByAKeyFieldInTheOrderOfItsValues) {
  auto rs = Open("SELECT ID, LastName FROM patients ORDER BY LastName");
  EXPECT_TRUE(rs->Supports(adIndex | adSeek));
  EXPECT_EQ(ErrorOf([&] { rs->Seek({Variant(int32_t{4})}); }).Number(), kErrOperationNotSupported);
  for (const char* not_an_index : {"LastName", "Nope"}) {
    EXPECT_EQ(ErrorOf([&] { rs->Index(not_an_index); }).Number(), kErrItemNotFound);
  }
  rs->Index("id");
  struct Case {
    Variant key;
    SeekEnum option;
    const char* lands_on;  // the ID, or "EOF"
  };
  const Case cases[] = {
      {Variant(int32_t{4}), adSeekFirstEQ, "4"},    {Variant("4"), adSeekLastEQ, "4"},
      {Variant(int32_t{4}), adSeekAfter, "5"},      {Variant(4.5), adSeekAfterEQ, "5"},
      {Variant(int32_t{4}), adSeekBefore, "3"},     {Variant(4.5), adSeekBeforeEQ, "4"},
      {Variant(int32_t{99}), adSeekFirstEQ, "EOF"}, {Variant(int32_t{6}), adSeekAfter, "EOF"},
      {Variant(int32_t{1}), adSeekBefore, "EOF"},
  };
  for (const Case& c : cases) {
    rs->Seek({c.key}, c.option);
    EXPECT_EQ(rs->Eof() ? "EOF" : CStr(rs->Fields("ID").Value()), c.lands_on)
        << CStr(c.key) << " " << c.option;
  }
  rs->Filter("ID <> 5");  // Seek sees the rows the filter shows
  rs->Seek({Variant(int32_t{5})}, adSeekAfterEQ);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 6);
  EXPECT_EQ(ErrorOf([&] {
              rs->Seek({Variant(int32_t{1}), Variant(int32_t{2})});
            }).Number(),
            kErrInvalidArgument);
  EXPECT_EQ(ErrorOf([&] { rs->Seek({Variant(int32_t{1})}, static_cast<SeekEnum>(3)); }).Number(),
            kErrInvalidArgument);

  // Rows holding the same key value keep the order shown: the first of them
  // or the last.
  Recordset memory;
  memory.AppendField("Code", adInteger, 0, adFldKeyColumn);
  memory.AppendField("Name", adVarWChar, 10);
  memory.LockType(adLockOptimistic);
  memory.Open();
  for (auto [code, name] : {std::pair{2, "a"}, {1, "b"}, {2, "c"}, {3, "d"}}) {
    memory.AddNew({"Code", "Name"}, {Variant(int32_t{code}), Variant(name)});
  }
  memory.Index("Code");
  const std::pair<SeekEnum, const char*> ties[] = {
      {adSeekFirstEQ, "a"}, {adSeekLastEQ, "c"}, {adSeekBeforeEQ, "c"}, {adSeekAfterEQ, "a"}};
  for (auto [option, name] : ties) {
    memory.Seek({Variant(int32_t{2})}, option);
    EXPECT_EQ(CStr(memory.Fields("Name").Value()), name) << option;
  }
  memory.Seek({Variant(int32_t{3})}, adSeekBefore);
  EXPECT_EQ(CStr(memory.Fields("Name").Value()), "c");

  auto no_key = Open("SELECT LastName, Balance * 2 AS Twice FROM patients");
  EXPECT_FALSE(no_key->Supports(adIndex));
  EXPECT_FALSE(no_key->Supports(adSeek));
  EXPECT_EQ(ErrorOf([&] { no_key->Seek({Variant("Smith")}); }).Number(), kErrOperationNotSupported);
}

}  // namespace
}  // namespace kelvary::testing
