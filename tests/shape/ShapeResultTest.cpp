// SHAPE statements opened on real SQLite files: which child rows each parent
// row gets, how keys compare, and that every level is a full recordset.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ShapeTree.h"
#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

// Patient 2 has no visits; visit 13 belongs to no patient and visit 14 has
// no patient at all; letters name their patient as text.
constexpr const char* kPractice = R"sql(
  CREATE TABLE patients (ID INTEGER PRIMARY KEY, Name TEXT, Code TEXT);
  INSERT INTO patients VALUES (1, 'Smith', 'A1'), (2, 'Jones', NULL), (3, 'Brown', 'b2'),
    (4, 'Green', 'C3');
  CREATE TABLE visits (ID INTEGER PRIMARY KEY, PatientID INTEGER, Reason TEXT);
  INSERT INTO visits VALUES (10, 1, 'checkup'), (11, 3, 'flu'), (12, 1, 'x-ray'),
    (13, 99, 'orphan'), (14, NULL, 'walk-in'), (15, 4, 'cut');
  CREATE TABLE invoices (ID INTEGER PRIMARY KEY, VisitID INTEGER, Amount DOUBLE);
  INSERT INTO invoices VALUES (100, 10, 50), (101, 12, 20), (102, 10, 5.5), (103, 77, 1);
  CREATE TABLE letters (ID INTEGER PRIMARY KEY, PatientRef TEXT, PatientCode TEXT);
  INSERT INTO letters VALUES (200, '1', 'a1'), (201, '3.0', 'B2'), (202, ' 3', NULL),
    (203, 'x', 'c3'), (204, '1', 'zz');
  CREATE TABLE days (D DATE);
  INSERT INTO days VALUES ('2024-03-05');
  CREATE TABLE notes (T TEXT);
  INSERT INTO notes VALUES ('2024-03-05'), ('03/05/2024'), ('2024-03-06');
)sql";

class ShapeResult : public ::testing::Test {
 protected:
  ShapeResult() { db_.Run(kPractice); }

  std::shared_ptr<Recordset> Open(const std::string& shape, LockTypeEnum lock = adLockReadOnly) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(shape, db_.Connection(), adOpenKeyset, lock);
    return rs;
  }
  std::string TreeOf(const std::string& shape) { return ShapeTree(*Open(shape)); }
  // OpenError: the Error that opening shape into rs raises (number 0 when none).
  Error OpenError(Recordset& rs, const std::string& shape) {
    try {
      rs.Open(shape, db_.Connection());
    } catch (const Error& e) {
      return e;
    }
    return Error(0, "");
  }

  static constexpr const char* kPatients = "{Select ID, Name, Code From patients Order By ID}";
  static constexpr const char* kVisits = "{Select ID, PatientID From visits Order By ID}";

  TestDatabase db_;
};

TEST_F(ShapeResult, RelatesEveryParentToItsChildRowsInTheirOrder) {
  auto rs = Open(std::string("SHAPE ") + kPatients + " AS P APPEND (" + kVisits +
                 " AS V RELATE ID TO PatientID) AS Visits");
  ASSERT_EQ(rs->FieldCount(), 4);
  EXPECT_EQ(rs->Fields(3).Name(), "Visits");
  EXPECT_EQ(rs->Fields("Visits").Type(), adChapter);
  EXPECT_EQ(static_cast<int>(adChapter), 136);
  // Visits 13 (patient 99) and 14 (no patient) are under nobody, and no error.
  EXPECT_EQ(ShapeTree(*rs), "1[10,12],2[],3[11],4[15]");

  // A parent without children has an open, empty chapter with the child's fields.
  rs->MoveFirst();
  rs->Find("ID = 2");
  auto none = rs->Fields("Visits").Value().ObjectAs<Recordset>();
  ASSERT_TRUE(none);
  EXPECT_EQ(none->State(), adStateOpen);
  EXPECT_EQ(none->RecordCount(), 0);
  EXPECT_TRUE(none->Bof() && none->Eof());
  EXPECT_EQ(none->Fields(1).Name(), "PatientID");
  EXPECT_EQ(none->Source(), "Select ID, PatientID From visits Order By ID");
}

TEST_F(ShapeResult, NestsToAnyDepthWithSiblingChapters) {
  // Visits with their invoices, and letters beside them, as the query
  // interpreter writes such a statement.
  EXPECT_EQ(TreeOf(" SHAPE { Select ID From patients  } as Patients APPEND ((SHAPE {Select "
                   "ID,PatientID From visits  }   as Visits APPEND ({Select ID,VisitID From "
                   "invoices  }   as Invoices RELATE 'ID' TO  'VisitID' ) AS Invoices) RELATE "
                   "'ID' TO  'PatientID' ) AS Visits APPEND ({Select ID,PatientRef From letters  "
                   "}   as Letters RELATE 'ID' TO  'PatientRef' ) AS Letters"),
            "1[10[100,102],12[101]][200,204],2[][],3[11[]][201,202],4[15[]][]");
}

TEST_F(ShapeResult, ParentsThatShareAKeyEachGetTheRowsAndNullKeysRelateToNothing) {
  // Visits 10 and 12 share patient 1; visit 14's patient is Null; patient 2
  // is nobody's.
  auto rs = Open(std::string("SHAPE ") + kVisits + " APPEND (" + kPatients +
                 " RELATE PatientID TO ID) AS Patient");
  EXPECT_EQ(ShapeTree(*rs), "10[1],11[3],12[1],13[],14[],15[4]");
  // The shared rows are separate recordsets, each with its own position.
  rs->MoveFirst();
  auto first = rs->Fields("Patient").Value().ObjectAs<Recordset>();
  rs->Find("ID = 12");
  EXPECT_NE(rs->Fields("Patient").Value().ObjectAs<Recordset>(), first);

  // Null on both sides: Jones (no code) gets nothing, letter 202 (no code)
  // belongs to nobody.
  EXPECT_EQ(TreeOf(std::string("SHAPE ") + kPatients +
                   " APPEND ({Select ID, PatientCode From letters} RELATE Code TO PatientCode)"),
            "1[200],2[],3[201],4[203]");
}

TEST_F(ShapeResult, KeysCompareByValue) {
  // Whole numbers meet text that reads as the number ('1', '3.0', ' 3');
  // text that does not ('x') meets nothing.
  EXPECT_EQ(TreeOf(std::string("SHAPE ") + kPatients +
                   " APPEND ({Select ID, PatientRef From letters} RELATE ID TO PatientRef)"),
            "1[200,204],2[],3[201,202],4[]");
  // Real numbers meet whole ones.
  EXPECT_EQ(TreeOf("SHAPE {Select ID * 1.0 AS K From patients Order By ID} APPEND (" +
                   std::string(kVisits) + " RELATE K TO PatientID)"),
            "1[10,12],2[],3[11],4[15]");
  // Texts compare without regard to case; several pairs must all match.
  EXPECT_EQ(TreeOf(std::string("SHAPE ") + kPatients +
                   " APPEND ({Select ID, PatientRef, PatientCode From letters} RELATE ID TO "
                   "PatientRef, Code TO PatientCode)"),
            "1[200],2[],3[201],4[]");
  // Dates meet text that reads as the same date.
  EXPECT_EQ(TreeOf("SHAPE {Select D From days} APPEND ({Select T From notes} RELATE D TO T)"),
            "03/05/2024[2024-03-05,03/05/2024]");
}

TEST_F(ShapeResult, FindsRelateColumnsWithoutRegardToCaseOrTheirTable) {
  EXPECT_EQ(TreeOf(std::string("SHAPE ") + kPatients + " APPEND (" + kVisits +
                   " RELATE 'id' TO [PATIENTID], patients.Id TO visits.PatientID) AS V"),
            "1[10,12],2[],3[11],4[15]");
  Recordset rs;
  EXPECT_EQ(OpenError(rs, std::string("SHAPE ") + kPatients + " APPEND (" + kVisits +
                              " AS V RELATE ID TO Patient) AS V")
                .Description(),
            "SHAPE command: RELATE names the column 'Patient', which the child level V does not "
            "return");
  EXPECT_EQ(rs.State(), adStateClosed);
}

TEST_F(ShapeResult, EveryLevelIsAFullRecordset) {
  const std::string shape = std::string("SHAPE ") + kPatients + " APPEND (" + kVisits +
                            " RELATE ID TO PatientID) AS Visits";
  auto rs = Open(shape);
  EXPECT_EQ(rs->Source(), shape);
  rs->Filter("Name LIKE '*n' OR ID = 1");
  EXPECT_EQ(rs->RecordCount(), 3);
  rs->MoveLast();
  EXPECT_EQ(TextOf(rs->Fields("Name").Value()), "Green");
  rs->Filter("");
  rs->Find("Code = 'A1'");
  auto visits = rs->Fields("Visits").Value().ObjectAs<Recordset>();
  EXPECT_EQ(visits->RecordCount(), 2);
  visits->Find("ID = 12");
  EXPECT_EQ(visits->AbsolutePosition(), 2);
  visits->Filter("ID < 12");
  EXPECT_EQ(visits->RecordCount(), 1);
  visits->MovePrevious();
  EXPECT_TRUE(visits->Bof());

  // Execute runs it too; MaxRecords limits the parents only.
  auto executed = db_.Connection()->Execute(shape);
  EXPECT_EQ(ShapeTree(*executed), "1[10,12],2[],3[11],4[15]");
  auto limited = std::make_shared<Recordset>();
  limited->MaxRecords(1);
  limited->Open(shape, db_.Connection());
  EXPECT_EQ(ShapeTree(*limited), "1[10,12]");
}

TEST_F(ShapeResult, WritesChangesOfAnUpdatableShapeToTheBaseTables) {
  auto rs = Open(std::string("SHAPE {Select ID, Name From patients Order By ID} APPEND ({Select "
                             "ID, PatientID, Reason From visits Order By ID} RELATE ID TO "
                             "PatientID) AS V"),
                 adLockOptimistic);
  rs->Fields("Name").Value(Variant("Smyth"));
  rs->Update();

  // The chapters of one level share the child rows until one of them
  // changes; a bookmark taken before still finds its row after.
  auto visits = rs->Fields("V").Value().ObjectAs<Recordset>();
  visits->MoveLast();
  const Variant last = visits->Bookmark();
  visits->MoveFirst();
  visits->Fields("Reason").Value(Variant("follow-up"));
  visits->Update();
  visits->Bookmark(last);
  EXPECT_EQ(CLng(visits->Fields("ID").Value()), 12);
  visits->Delete();
  visits->AddNew();
  visits->Fields("ID").Value(Variant(int32_t{16}));
  visits->Fields("PatientID").Value(Variant(int32_t{1}));
  visits->Fields("Reason").Value(Variant("new"));
  visits->Update();
  EXPECT_EQ(ShapeTree(*visits), "10,16");

  rs->Find("ID = 3");
  auto other = rs->Fields("V").Value().ObjectAs<Recordset>();
  EXPECT_EQ(TextOf(other->Fields("Reason").Value()), "flu");

  auto check = db_.Connection()->Execute(
      "Select group_concat(p.Name || ':' || v.ID || ':' || v.Reason, ',') From patients p Join "
      "visits v On v.PatientID = p.ID Where p.ID = 1 Order By v.ID");
  EXPECT_EQ(TextOf(check->Fields(0).Value()), "Smyth:10:follow-up,Smyth:16:new");
}

TEST_F(ShapeResult, AFailingLevelLeavesTheRecordsetClosed) {
  Recordset rs;
  const Error e = OpenError(
      rs, std::string("SHAPE ") + kPatients + " APPEND ({Select * From nowhere} RELATE ID TO X)");
  EXPECT_EQ(e.Description(), "no such table: nowhere");
  EXPECT_EQ(e.Statement(), "Select * From nowhere");
  EXPECT_EQ(rs.State(), adStateClosed);
  EXPECT_EQ(db_.Connection()->Errors().size(), 1u);
  EXPECT_EQ(OpenError(rs, "SHAPE {Update patients Set Name = Name} AS U").Description(),
            "SHAPE command: the command of level U returns no rows");
  EXPECT_EQ(rs.State(), adStateClosed);
}

}  // namespace
}  // namespace kelvary::testing
