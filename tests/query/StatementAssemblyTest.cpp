// Statement assembly on query models built in memory: the shapes of the
// nesting, the splicing of stored texts, the one-record restriction and the
// condition tree. (Stored definitions, links and rows are covered by the
// cases in cases/.)
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/query/QueryInterpretor.h"

namespace kelvary::testing {
namespace {

// AddLevel: a level with one table "t<id>" and one output field "f<id>", with
// no link fields, so that nothing needs the database.
std::shared_ptr<QueryShapeNest> AddLevel(QueryInterpretor& qi, int32_t id, int32_t parent) {
  auto level =
      qi.ShapeNests()->Add(0, 1, false, id, "N" + std::to_string(id), "", "S" + std::to_string(id));
  level->ParentShapeId = parent;
  const std::string n = std::to_string(id);
  level->OutPutTables()->Add(id, "", id, id, 0, 0, 0, 1, "", "t" + n, "T" + n);
  level->OutPutTables()->Item("T" + n)->OutputFields()->Add(0, "", sfnone, afNone, id, id, "", "",
                                                            "f" + n, "F" + n);
  level->SortedOPFields()->Add(std::make_shared<Variant>("F" + n + "T" + n));
  return level;
}

TEST(EncodeSQLStmt, NestsToAnyDepthWithSiblingsInCollectionOrder) {
  QueryInterpretor qi;
  qi.QueryBuildMethod = qbmDigitalBuild;
  // 1 -> 2 -> 3 -> 4 with 4's sibling 6, and 1 -> 5: siblings follow the
  // order of the collection, each branch whole before the next.
  const int32_t parent[] = {0, 0, 1, 2, 3, 1, 3};
  for (int32_t id = 1; id <= 6; ++id)
    AddLevel(qi, id, parent[id]);
  const std::string expected =
      " SHAPE { Select f1 From t1  } as N1"
      " APPEND ((SHAPE {Select f2 From t2  }   as N2"
      " APPEND ((SHAPE {Select f3 From t3  }   as N3"
      " APPEND ({Select f4 From t4  }   as N4 RELATE '' TO  '' ) AS N4"
      " APPEND ({Select f6 From t6  }   as N6 RELATE '' TO  '' ) AS N6"
      ") RELATE '' TO  '' ) AS N3) RELATE '' TO  '' ) AS N2"
      " APPEND ({Select f5 From t5  }   as N5 RELATE '' TO  '' ) AS N5";
  qi.EncodeSQLStmt();
  EXPECT_EQ(qi.FinalSQLStmt, expected);
  qi.EncodeSQLStmt();  // calling it again rebuilds the same text
  EXPECT_EQ(qi.FinalSQLStmt, expected);
}

TEST(EncodeSQLStmt, LevelsThatCannotBeBuilt) {
  QueryInterpretor empty;
  empty.QueryBuildMethod = qbmDigitalBuild;
  EXPECT_THROW(empty.EncodeSQLStmt(), Error);

  // The root's parent is its own child: the nesting would never end.
  QueryInterpretor cycle;
  cycle.QueryBuildMethod = qbmDigitalBuild;
  AddLevel(cycle, 1, 2);
  AddLevel(cycle, 2, 1);
  EXPECT_THROW(cycle.EncodeSQLStmt(), Error);
}

TEST(SpliceRawSQL, MarkerPositionRules) {
  struct Case {
    QueryBuildMethods method;
    std::string raw, where, expected;
  };
  // Level 7 (the one "!7" names). Whatever follows the marker survives only
  // when it is longer than two characters; only direct queries are spliced.
  const Case cases[] = {
      {qbmDirectADO, "Select x From t !7", "c", "Select x From t  Where c"},
      {qbmDirectADO, "Select x From t !7;", "c", "Select x From t  Where c"},
      {qbmDirectADO, "Select x From t !7 )", "c", "Select x From t  Where c"},
      {qbmDirectADO, "Select x From t !7 ) ", "c", "Select x From t  Where c ) "},
      {qbmDirectADO, "!7 Select", "c", " Where c Select"},
      {qbmDirectADO, "Select x From t", "c", "Select x From t"},
      {qbmDirectADO, "Select x From t !8", "c", "Select x From t !8"},
      // No restriction and no earlier one: nothing spliced, the marker goes.
      {qbmDirectADO, "Select x From t !7 Order by x", "", "Select x From t  Order by x"},
      {qbmAppDefined, "Select x From t !7", "c", "Select x From t !7"},
      {qbmQueryDefStandard, "Select x From t !7", "c", "Select x From t !7"},
      {qbmDirectADOWDigitalSearchTemplate, "Select x From t !7", "c", "Select x From t !7"},
      {qbmXtalReportQuery, "Select x From t !7", "c", "Select x From t !7"},
  };
  for (const auto& c : cases) {
    QueryInterpretor qi;
    qi.QueryBuildMethod = c.method;
    qi.RawSQL = c.raw;
    qi.ShapeNests()->Add(0, 1, false, 7, "", "", "S7")->AssignedWhereClause = c.where;
    qi.EncodeSQLStmt();
    EXPECT_EQ(qi.FinalSQLStmt, c.expected) << c.method << ": " << c.raw;
  }
  // A direct query without levels is left as it is.
  QueryInterpretor bare;
  bare.QueryBuildMethod = qbmDirectADO;
  bare.RawSQL = "Select x From t !1";
  bare.EncodeSQLStmt();
  EXPECT_EQ(bare.FinalSQLStmt, "Select x From t !1");
}

TEST(AssignIDBasedWhereClause, RestrictsTheFirstLevelHoldingTheTable) {
  QueryInterpretor qi;
  qi.QueryBuildMethod = qbmDigitalBuild;
  auto root = AddLevel(qi, 1, 0);
  auto child = AddLevel(qi, 2, 1);
  // Data table 9 is read by both levels; the root, met first, is restricted.
  root->OutPutTables()->Add(9, "pt", 1, 10, 0, 0, 0, 2, "", "patients", "T10");
  child->OutPutTables()->Add(9, "", 2, 11, 0, 0, 0, 2, "", "patients", "T11");
  root->AssignedWhereClause = "earlier";
  qi.AssignIDBasedWhereClause(9, 42, 0, "ID");
  EXPECT_TRUE(qi.bProgramAssignedWhereClause);
  EXPECT_EQ(root->AssignedWhereClause, "  ( pt.ID = 42 ) ");
  EXPECT_EQ(child->AssignedWhereClause, "");

  QueryInterpretor unknown;
  AddLevel(unknown, 1, 0);
  EXPECT_THROW(unknown.AssignIDBasedWhereClause(99, 1, 0, "ID"), Error);
  EXPECT_TRUE(unknown.bProgramAssignedWhereClause);
}

// Conditions on numbers need no service object for quoting.
std::shared_ptr<RepParam> AddNumber(QueryInterpretor& qi, int32_t group, int32_t id,
                                    const Variant& value) {
  auto p = qi.CurrentConditions()
               ->Item("C" + std::to_string(group))
               ->ChildConditions()
               ->Add(id, 0, false, true, "R" + std::to_string(id));
  p->ConditionID = group;
  p->QueryDataTableID = 1;
  p->DataFormat = fdtLong;
  p->Operator = cmpEquals;
  p->FieldName = "n" + std::to_string(id);
  p->Value1 = value;
  return p;
}

TEST(GetConditionString, GroupsFirstThenParametersEachWithItsConnector) {
  QueryInterpretor qi;
  AddLevel(qi, 1, 0);
  auto& groups = *qi.CurrentConditions();
  groups.Add(0, 0, ntall, 1, 1, "C1");
  groups.Add(1, 1, ntAny, 1, 2, "C2");
  groups.Add(1, 1, ntall, 1, 3, "C3");  // only an empty branch below it
  groups.Add(3, 2, ntAny, 1, 4, "C4");  // a parameter without a value
  groups.Add(1, 1, ntAny, 1, 5, "C5");
  AddNumber(qi, 1, 10, Variant(1));
  AddNumber(qi, 1, 11, Variant());  // no value: skipped with its connector
  AddNumber(qi, 1, 12, Variant(2));
  AddNumber(qi, 2, 20, Variant(3));
  AddNumber(qi, 2, 21, Variant(4));
  AddNumber(qi, 4, 40, Variant());
  AddNumber(qi, 5, 50, Variant(5));

  const std::string c2 = " (  ( t1.n20 = 3  OR  t1.n21 = 4 )  ) ";
  const std::string c5 = " (  ( t1.n50 = 5 )  ) ";
  EXPECT_EQ(qi.GetConditionString(groups.Item("C2")), c2);
  EXPECT_EQ(qi.GetConditionString(groups.Item("C3")), "");
  // C5 joins C2 with its own connector (OR), not C1's.
  EXPECT_EQ(qi.GetConditionString(groups.Item("C1")),
            " ( " + c2 + "  OR  " + c5 + "  AND   ( t1.n10 = 1  AND  t1.n12 = 2 )  ) ");

  groups.Add(6, 0, ntall, 1, 6, "C6");
  groups.Item("C6")->ParentGroupId = 6;  // its own parent: a cycle
  EXPECT_THROW(qi.GetConditionString(groups.Item("C6")), Error);
}

TEST(GetSqlPhrase, NamesTheColumnOrTakesTheOneGiven) {
  QueryInterpretor qi;
  auto level = AddLevel(qi, 1, 0);
  level->OutPutTables()->Item("T1")->TableAlias = "a";
  qi.CurrentConditions()->Add(0, 0, ntall, 1, 1, "C1");
  auto p = AddNumber(qi, 1, 10, Variant(7));
  EXPECT_EQ(qi.GetSqlPhrase(p, false, ""), "a.n10 = 7");
  EXPECT_EQ(qi.GetSqlPhrase(p, true, ""), "{a.n10} = 7");
  EXPECT_EQ(qi.GetSqlPhrase(p, false, "x"), "x = 7");
  EXPECT_EQ(qi.GetSqlPhrase(p, true, "x"), "{x} = 7");
  p->Reverse = true;
  p->Operator = cmpGreaterThan;
  EXPECT_EQ(qi.GetSqlPhrase(p, false, "x"), " NOT ( x > 7 ) ");
  // A group or table the parameter names but the model lacks is an error.
  p->QueryDataTableID = 99;
  EXPECT_THROW(qi.GetSqlPhrase(p, false, ""), Error);
}

}  // namespace
}  // namespace kelvary::testing
