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
  CREATE TABLE letters (ID INTEGER PRIMARY KEY, PatientRef TEXT, PatientCode TEXT);
  INSERT INTO letters VALUES (200, '1', 'a1'), (201, '3.0', 'B2'), (202, ' 3', NULL),
    (203, 'x', 'c3'), (204, '1', 'zz');
  CREATE TABLE days (D DATE);
  INSERT INTO days VALUES ('2024-03-05');
  CREATE TABLE notes (T TEXT);
  INSERT INTO notes VALUES ('2024-03-05'), ('03/05/2024'), ('2024-03-06');
)sql";

constexpr const char* kPatients = "{Select ID, Name, Code From patients Order By ID}";
constexpr const char* kVisits = "{Select ID, PatientID From visits Order By ID}";

// UnderPatients: a SHAPE statement giving every patient the chapter child,
// named when a name is given.
std::string UnderPatients(const std::string& child, const std::string& name = "") {
  return std::string("SHAPE ") + kPatients + " APPEND (" + child + ")" +
         (name.empty() ? "" : " AS " + name);
}

class ShapeResult : public ::testing::Test {
 protected:
  ShapeResult() { db_.Run(kPractice); }

  std::shared_ptr<Recordset> Open(const std::string& shape, LockTypeEnum lock = adLockReadOnly) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(shape, db_.Connection(), adOpenKeyset, lock);
    return rs;
  }
  // OpenError: the Error that opening shape into rs raises (number 0 when none).
  Error OpenError(Recordset& rs, const std::string& shape) {
    try {
      rs.Open(shape, db_.Connection());
    } catch (const Error& e) {
      return e;
    }
    return Error(0, "");
  }

  TestDatabase db_;
};

TEST_F(ShapeResult, RelatesRowsWhoseKeysHaveTheSameValue) {
  const struct {
    std::string shape, tree;
  } cases[] = {
      // Visits 10 and 12 share patient 1; 13 (patient 99) and 14 (no patient) have none.
      {std::string("SHAPE ") + kVisits + " APPEND (" + kPatients + " RELATE PatientID TO ID)",
       "10[1],11[3],12[1],13[],14[],15[4]"},
      // Null on both sides meets nothing; texts compare without regard to case.
      {UnderPatients("{Select ID, PatientCode From letters} RELATE Code TO PatientCode"),
       "1[200],2[],3[201],4[203]"},
      // Whole numbers meet text that reads as the number; 'x' meets nothing.
      {UnderPatients("{Select ID, PatientRef From letters} RELATE ID TO PatientRef"),
       "1[200,204],2[],3[201,202],4[]"},
      // Real numbers meet whole ones.
      {"SHAPE {Select ID * 1.0 AS K From patients Order By ID} APPEND (" + std::string(kVisits) +
           " RELATE K TO PatientID)",
       "1[10,12],2[],3[11],4[15]"},
      // Several pairs must all match.
      {UnderPatients("{Select ID, PatientRef, PatientCode From letters} RELATE ID TO PatientRef, "
                     "Code TO PatientCode"),
       "1[200],2[],3[201],4[]"},
      // Dates meet text that reads as the same date.
      {"SHAPE {Select D From days} APPEND ({Select T From notes} RELATE D TO T)",
       "03/05/2024[2024-03-05,03/05/2024]"},
      // Relate columns are found without regard to case, quoting or their table.
      {UnderPatients(std::string(kVisits) +
                     " RELATE 'id' TO [PATIENTID], patients.Id TO visits.PatientID"),
       "1[10,12],2[],3[11],4[15]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shape);
    EXPECT_EQ(ShapeTree(*Open(c.shape)), c.tree);
  }

  // Parents that share a key get separate recordsets, each with its own position.
  auto rs = Open(cases[0].shape);
  auto first = rs->Fields(2).Value().ObjectAs<Recordset>();
  rs->Find("ID = 12");
  EXPECT_NE(rs->Fields(2).Value().ObjectAs<Recordset>(), first);
}

TEST_F(ShapeResult, EveryLevelIsAFullRecordset) {
  const std::string shape =
      UnderPatients(std::string(kVisits) + " AS V RELATE ID TO PatientID", "Visits");
  auto rs = Open(shape);
  EXPECT_EQ(rs->Source(), shape);
  ASSERT_EQ(rs->FieldCount(), 4);
  EXPECT_EQ(rs->Fields(3).Name(), "Visits");
  EXPECT_EQ(rs->Fields("Visits").Type(), adChapter);

  // A parent without children has an open, empty chapter with the child's fields.
  rs->Find("ID = 2");
  auto none = rs->Fields("Visits").Value().ObjectAs<Recordset>();
  ASSERT_TRUE(none);
  EXPECT_EQ(none->State(), adStateOpen);
  EXPECT_TRUE(none->Bof() && none->Eof());
  EXPECT_EQ(none->Fields(1).Name(), "PatientID");
  EXPECT_EQ(none->Source(), "Select ID, PatientID From visits Order By ID");

  rs->Filter("Name LIKE '*EE*' OR ID = 1");
  EXPECT_EQ(rs->RecordCount(), 2);
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

  // Execute runs it too; visits 13 (patient 99) and 14 (no patient) are under
  // nobody, and no error. MaxRecords limits the parents only.
  EXPECT_EQ(ShapeTree(*db_.Connection()->Execute(shape)), "1[10,12],2[],3[11],4[15]");
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

// Rows: every field but the chapters, "|" between fields, ";" between rows.
std::string Rows(Recordset& rs) {
  std::string text;
  for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
    std::string row;
    for (int32_t i = 0; i < rs.FieldCount(); ++i) {
      if (rs.Fields(i).Type() == adChapter) continue;
      row += (row.empty() ? "" : "|") + TextOf(rs.Fields(i).Value());
    }
    text += (text.empty() ? "" : ";") + row;
  }
  return text;
}

TEST_F(ShapeResult, ComputedColumnsAggregateEachRowsChapter) {
  // Relate and parameter children give the same aggregates.
  const std::string aggregates =
      ", COUNT(V) AS N, COUNT(V.PatientID), SUM(V.ID) AS S, MIN(V.Reason) AS Lo, MAX(V.ID), "
      "AVG(V.ID) AS Mean, ANY(V.PatientID) AS P, STDEV(V.ID) AS Sd, NEW adInteger AS Extra";
  for (const std::string& child :
       {std::string("{Select ID, PatientID, Reason From visits Order By ID} RELATE ID TO "
                    "PatientID"),
        std::string("{Select ID, PatientID, Reason From visits Where PatientID = ? Order By ID} "
                    "RELATE ID TO PARAMETER 0")}) {
    SCOPED_TRACE(child);
    auto rs = Open("SHAPE {Select ID From patients Order By ID} APPEND (" + child + ") AS V" +
                   aggregates);
    EXPECT_EQ(ShapeTree(*rs), "1[10,12],2[],3[11],4[15]");
    rs->MoveFirst();
    EXPECT_NEAR(CDbl(rs->Fields("Sd").Value()), 1.41421356, 1e-6);  // of 10 and 12
    EXPECT_EQ(rs->Fields("MAX(V.ID)").Type(), rs->Fields("ID").Type());
    EXPECT_EQ(rs->Fields("N").Type(), adInteger);
    EXPECT_EQ(rs->Fields("Extra").Type(), adInteger);
    rs->Filter("Sd = Null");  // Sd takes two values at least
    EXPECT_EQ(Rows(*rs), "2|0|0|||||||;3|1|1|11|flu|11|11|3||;4|1|1|15|cut|15|15|4||");
  }
  // CALC reads the row's fields, computed ones included.
  auto calc = Open(UnderPatients(std::string(kVisits) + " RELATE ID TO PatientID") +
                   " AS V, COUNT(V) AS N, CALC(UCase(Left(Name, 3)) & '-' & N * 10) AS Tag");
  EXPECT_EQ(Rows(*calc),
            "1|Smith|A1|2|SMI-20;2|Jones||0|JON-0;3|Brown|b2|1|BRO-10;4|Green|C3|1|GRE-10");
  // An aggregate reads a chapter of its own level only.
  Recordset rs;
  EXPECT_EQ(OpenError(rs, UnderPatients(std::string(kVisits) + " RELATE ID TO PatientID") +
                              " AS V, SUM(W.ID)")
                .Description(),
            "SHAPE command: SUM reads the chapter W, which the level does not have");
}

TEST_F(ShapeResult, ComputeGroupsRowsByTheByFields) {
  // Groups in the order their first row comes; a Null key is a group too.
  auto rs = Open(
      "SHAPE {Select ID, PatientID From visits Order By ID} AS V COMPUTE V AS Visits, COUNT(V) AS "
      "N, SUM(V.ID) AS Total BY PatientID");
  ASSERT_EQ(rs->FieldCount(), 4);
  EXPECT_EQ(rs->Fields(0).Name(), "Visits");
  EXPECT_EQ(rs->Fields(3).Name(), "PatientID");
  EXPECT_EQ(Rows(*rs), "2|22|1;1|11|3;1|13|99;1|14|;1|15|4");
  rs->Find("PatientID = 1", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  EXPECT_EQ(ShapeTree(*rs->Fields("Visits").Value().ObjectAs<Recordset>()), "10,12");

  // Without BY, one row over all of them; TABLE reads a whole table.
  auto all = Open("SHAPE TABLE visits AS V COMPUTE V, MAX(V.ID) AS Top, MIN(V.Reason) AS First");
  EXPECT_EQ(Rows(*all), "15|checkup");
  all->MoveFirst();
  EXPECT_EQ(all->Fields("V").Value().ObjectAs<Recordset>()->RecordCount(), 6);
}

TEST_F(ShapeResult, AFailingLevelLeavesTheRecordsetClosed) {
  Recordset rs;
  const Error e = OpenError(rs, UnderPatients("{Select * From nowhere} RELATE ID TO X"));
  EXPECT_EQ(e.Description(), "no such table: nowhere");
  EXPECT_EQ(e.Statement(), "Select * From nowhere");
  EXPECT_EQ(rs.State(), adStateClosed);
  EXPECT_EQ(db_.Connection()->Errors().size(), 1u);
  const struct {
    std::string shape, message;
  } cases[] = {
      {UnderPatients(std::string(kVisits) + " AS V RELATE ID TO Patient", "V"),
       "SHAPE command: RELATE names the column 'Patient', which the child level V does not "
       "return"},
      {"SHAPE {Update patients Set Name = Name} AS U",
       "SHAPE command: the command of level U returns no rows"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(OpenError(rs, c.shape).Description(), c.message);
    EXPECT_EQ(rs.State(), adStateClosed) << c.shape;
  }
}

}  // namespace
}  // namespace kelvary::testing
