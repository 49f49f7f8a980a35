// Changes made through a recordset and written to its base table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RecordsetTestSupport.h"

namespace kelvary::testing {
namespace {

class RecordsetWriteBack : public PatientsTest {
 protected:
  std::shared_ptr<Recordset> Editable(const std::string& sql = kAllPatients) {
    return Open(sql, adLockOptimistic);
  }
  // The first value of sql as the database holds it now, read on the
  // second connection.
  Variant Stored(const std::string& sql) {
    auto rs = OpenRecordset(Other(), sql);
    return rs->Eof() ? Variant() : Variant(rs->Fields(0).Value());
  }
};
KELVARY_ON_EVERY_BACKEND(RecordsetWriteBack);

TEST_P(RecordsetWriteBack, AddNewAndUpdateInsertsAndReadsTheGeneratedKeyBack) {
  auto rs = Editable();
  rs->AddNew();
  EXPECT_EQ(rs->EditMode(), adEditAdd);
  EXPECT_EQ(rs->RecordCount(), 7);
  EXPECT_TRUE(rs->Fields("ID").Value().IsNull());  // a new row starts Null
  rs->Fields("LastName").Value("Nguyen");
  rs->Fields("DOB").Value("03/05/2024");  // converted to the field's type
  rs->Fields("Balance").Value(int32_t{12});
  rs->Update();
  EXPECT_EQ(rs->Fields("ID").Value(), Variant(int32_t{7}));
  EXPECT_EQ(rs->Fields("Balance").Value(), Variant(12.0));
  EXPECT_EQ(rs->Fields("Active").Value(), Variant(true));  // the table's default, read back
  EXPECT_EQ(StoredRows("SELECT LastName, DOB, Active FROM patients WHERE ID = 7"),
            "Nguyen|03/05/2024|True");
  // The new row can be changed again at once: it is located by the key read back.
  rs->Fields("FirstName").Value("Lan");
  rs->Update();
  EXPECT_EQ(Stored("SELECT FirstName FROM patients WHERE ID = 7"), Variant("Lan"));
}

TEST_P(RecordsetWriteBack, UpdateChangesOnlyTheRowByKeyAndOriginalValues) {
  auto rs = Editable();
  rs->Find("ID = 3");
  rs->Fields("Balance").Value(1.5);
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(-3.25));
  rs->Fields("DOB").Value(DateTimeOf(2001, 7, 15, 9, 0, 0));
  rs->Fields("FirstName").Value(Variant::Null());
  rs->Update();
  EXPECT_EQ(rs->Fields("Balance").OriginalValue(), Variant(1.5));
  EXPECT_EQ(
      StoredRows("SELECT Balance, DOB, coalesce(FirstName, 'null') FROM patients WHERE ID = 3"),
      "1.5|07/15/2001 09:00:00|null");
  EXPECT_EQ(Stored("SELECT COUNT(*) FROM patients WHERE Balance = 1.5"), Traits().Count(1));
}

TEST_P(RecordsetWriteBack, EachEditWritesItsOwnFieldsWhateverCameBefore) {
  // Edits in a row whose changed fields and Null originals come and go: a
  // statement made for one edit serves the next only when it fits.
  auto rs = Editable();
  struct Edit {
    int32_t id;
    std::vector<std::pair<std::string, Variant>> fields;
  };
  const std::vector<Edit> edits = {
      {1, {{"Balance", Variant(1.0)}}},
      {2, {{"Balance", Variant(2.0)}}},  // the same field again
      {3, {{"FirstName", Variant("Pat")}}},
      {4, {{"Balance", Variant(4.0)}}},  // read as Null
      {5, {{"FirstName", Variant("Anne")}, {"Balance", Variant(5.0)}}},
      {6, {{"Balance", Variant(6.0)}}},
  };
  for (const Edit& edit : edits) {
    rs->Find("ID = " + std::to_string(edit.id));
    for (const auto& [name, value] : edit.fields)
      rs->Fields(name).Value(value);
    rs->Update();
  }
  EXPECT_EQ(StoredRows("SELECT ID, FirstName, Balance FROM patients ORDER BY ID"),
            "1|John|1,2|Mary|2,3|Pat|-3.25,4||4,5|Anne|5,6|Jane|6");

  // A row changed elsewhere is refused by a statement already made.
  rs->MoveFirst();
  db_.Connect()->Execute("UPDATE patients SET Balance = 100 WHERE ID = 1");
  rs->Fields("Balance").Value(7.0);
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }).Number(), kErrRowChanged);
  EXPECT_EQ(rs->Fields("Balance").Status(), adFieldUnavailable);
  rs->CancelUpdate();

  // A table changed elsewhere still takes the statements made before.
  db_.Connect()->Execute("ALTER TABLE patients ADD COLUMN Note VARCHAR(20)");
  rs->Find("ID = 2");
  rs->Fields("Balance").Value(8.0);
  rs->Update();
  EXPECT_EQ(StoredRows("SELECT ID, Balance FROM patients WHERE ID <= 2 ORDER BY ID"), "1|100,2|8");
}

TEST_P(RecordsetWriteBack, MovingOffAChangedRowCommitsIt) {
  auto rs = Editable();
  while (!rs->Eof()) {  // the system's bulk assignment: set, move, never Update
    rs->Fields("Balance").Value(int32_t{0});
    rs->MoveNext();
  }
  EXPECT_EQ(Stored("SELECT SUM(Balance) FROM patients"), Variant(0.0));
  rs->MoveFirst();
  rs->Fields("LastName").Value("Smyth");
  rs->Find("ID = 4");  // Find moves too
  rs->Fields("LastName").Value("Jonas");
  rs->Filter("ID > 0");  // so does setting a filter
  EXPECT_EQ(StoredRows("SELECT LastName FROM patients WHERE ID IN (1, 4) ORDER BY ID"),
            "Smyth,Jonas");
}

TEST_P(RecordsetWriteBack, DeleteRemovesTheRowAndRecordCountDropsAtOnce) {
  db_.Run(
      "INSERT INTO patients (ID, LastName, ParentID) VALUES (7, 'Lee', 9);"
      "INSERT INTO patients (ID, LastName, ParentID) VALUES (8, 'Lee', 9);");
  auto rs = Editable("SELECT * FROM patients WHERE ParentID = 9");
  int deleted = 0;
  while (rs->RecordCount() >= 1) {  // the system's delete loop
    rs->MoveFirst();
    rs->Delete();
    ++deleted;
    EXPECT_EQ(rs->EditMode(), adEditDelete);
    EXPECT_EQ(ErrorOf([&] { rs->Fields("ID").Value(); }).Number(), kErrNoCurrentRecord);
  }
  EXPECT_EQ(deleted, 2);
  EXPECT_EQ(Stored("SELECT COUNT(*) FROM patients WHERE ParentID = 9"), Traits().Count(0));

  // Deleting in the middle: the next move lands on the row after it.
  auto all = Editable();
  all->Find("ID = 3");
  all->Delete();
  EXPECT_FALSE(all->Eof());
  all->MoveNext();
  EXPECT_EQ(CLng(all->Fields("ID").Value()), 4);
  all->MovePrevious();
  EXPECT_EQ(CLng(all->Fields("ID").Value()), 2);
  EXPECT_EQ(Ids(*all), "1,2,4,5,6");
  all->Filter("ParentID = 1");  // a deleted row stays gone under any filter
  EXPECT_EQ(Ids(*all), "2");
}

TEST_P(RecordsetWriteBack, ARowChangedElsewhereIsAConflictAndNothingIsWritten) {
  auto rs = Editable();
  rs->Find("ID = 2");
  db_.Connect()->Execute("UPDATE patients SET Balance = 50 WHERE ID = 2");
  rs->Fields("Balance").Value(int32_t{1});
  rs->Fields("FirstName").Value("Maria");
  const Error e = ErrorOf([&] { rs->Update(); });
  EXPECT_EQ(e.Number(), kErrRowChanged);
  EXPECT_EQ(e.Description(),
            "Row cannot be located for updating. Some values may have been changed since it "
            "was last read.");
  EXPECT_EQ(rs->Fields("Balance").Status(), adFieldUnavailable);  // the one that moved
  EXPECT_EQ(rs->Fields("FirstName").Status(), adFieldOK);
  EXPECT_EQ(rs->EditMode(), adEditInProgress);  // the change waits
  EXPECT_EQ(StoredRows("SELECT Balance, FirstName FROM patients WHERE ID = 2"), "50|Mary");
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }).Number(), kErrRowChanged);  // cannot move off it
  rs->CancelUpdate();
  EXPECT_EQ(rs->Fields("Balance").Value(), Variant(0.0));
  EXPECT_EQ(rs->Fields("Balance").Status(), adFieldOK);
  rs->MoveNext();

  // A row deleted elsewhere: deleting it is a conflict too.
  rs->Find("ID = 5");
  db_.Connect()->Execute("DELETE FROM patients WHERE ID = 5");
  EXPECT_EQ(ErrorOf([&] { rs->Delete(); }).Number(), kErrRowChanged);
  EXPECT_EQ(rs->RecordCount(), 6);
}

TEST_P(RecordsetWriteBack, ARejectedWriteMarksTheFieldsItNames) {
  auto rs = Editable();
  rs->AddNew();
  rs->Fields("FirstName").Value("Nobody");
  const Error e = ErrorOf([&] { rs->Update(); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_THAT(e.Description(), EngineMessage(Traits().NotNullFailed("patients", "LastName")));
  EXPECT_EQ(rs->Fields("LastName").Status(), adFieldSchemaViolation);
  EXPECT_EQ(rs->Fields("FirstName").Status(), adFieldOK);
  EXPECT_EQ(rs->EditMode(), adEditAdd);
  // A key that is taken marks the key.
  rs->Fields("ID").Value(int32_t{2});
  rs->Fields("LastName").Value("Twice");
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }).Number(), kErrProviderFailure);
  EXPECT_EQ(rs->Fields("ID").Status(), adFieldSchemaViolation);
  rs->CancelUpdate();  // the new row goes; the cursor is back where it was
  EXPECT_EQ(rs->RecordCount(), 6);
  EXPECT_EQ(CLng(rs->Fields("ID").Value()), 1);

  // A value the field's type cannot hold is refused at assignment.
  const Error conversion = ErrorOf([&] { rs->Fields("Balance").Value("lots"); });
  EXPECT_EQ(conversion.Number(), kErrInvalidArgument);
  EXPECT_EQ(rs->Fields("Balance").Status(), adFieldCantConvertValue);
  EXPECT_EQ(rs->EditMode(), adEditNone);
}

TEST_P(RecordsetWriteBack, ReadOnlyAndMultiTableRecordsetsRefuseChanges) {
  auto rs = OpenRecordset(db_.Connection(), "SELECT * FROM patients");
  for (const auto& call :
       std::vector<std::function<void()>>{[&] { rs->AddNew(); }, [&] { rs->Delete(); },
                                          [&] { rs->Fields("LastName").Value("X"); }}) {
    const Error e = ErrorOf(call);
    EXPECT_EQ(e.Number(), kErrOperationNotSupported);
    EXPECT_EQ(e.Description(),
              "Current Recordset does not support updating. This may be a limitation of the "
              "provider, or of the selected locktype.");
  }
  rs->Update();  // nothing pending: nothing to do
  rs->CancelUpdate();

  auto joined = Editable(
      "SELECT p.ID, p.LastName, c.LastName AS ChildName FROM patients p, patients c "
      "WHERE c.ParentID = p.ID");
  joined->Fields("LastName").Value("Changed");  // both columns come from patients: allowed
  joined->Update();
  auto expression = Editable("SELECT ID, LastName || '!' AS Shout FROM patients");
  expression->Fields("Shout").Value("x");  // no table holds it: nothing to write
  expression->Update();
  db_.Run(
      "CREATE TABLE visits (ID INTEGER PRIMARY KEY, PatientID INTEGER, Note TEXT);"
      "INSERT INTO visits VALUES (1, 1, 'first');");
  auto two_tables =
      Editable("SELECT p.LastName, v.Note FROM patients p, visits v WHERE v.PatientID = p.ID");
  two_tables->Fields("Note").Value("second");
  EXPECT_EQ(ErrorOf([&] { two_tables->Update(); }).Number(), kErrProviderFailure);
  two_tables->CancelUpdate();
}

TEST_P(RecordsetWriteBack, WithoutItsKeyARowIsLocatedByAllItsValues) {
  auto rs = Editable("SELECT LastName, FirstName FROM patients WHERE ID IN (2, 3)");
  rs->Fields("FirstName").Value("Maire");
  rs->Update();
  EXPECT_EQ(Stored("SELECT FirstName FROM patients WHERE ID = 2"), Variant("Maire"));
  // Two rows that the recordset cannot tell apart are refused rather than both changed.
  auto twins = Editable("SELECT LastName FROM patients WHERE LastName = 'Smith'");
  twins->Fields("LastName").Value("Smithe");
  EXPECT_EQ(ErrorOf([&] { twins->Update(); }).Number(), kErrProviderFailure);
  EXPECT_EQ(Stored("SELECT COUNT(*) FROM patients WHERE LastName = 'Smith'"), Traits().Count(2));
}

}  // namespace
}  // namespace kelvary::testing
