// The query record classes: creation values, child collections created on
// first read, the naming rules, what an owner does to its child collections
// when it goes, and a whole query description built and read back the way
// the query interpreter uses it.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "kelvary/querymodel/QueryModel.h"

namespace kelvary {
namespace {

TEST(QueryObjects, CreationValuesAndNamingRules) {
  QueryDataTable table;
  EXPECT_EQ(table.NestedBinding, 1);
  table.TableName = "patients";
  EXPECT_EQ(table.GetSQLName(), "patients");
  table.TableAlias = " ";  // any length counts as an alias, blanks too
  EXPECT_EQ(table.GetSQLName(), " ");

  QueryOutputField field;
  EXPECT_EQ(field.GetEfectiveFieldName(), "");
  field.FieldName = "Surname";
  EXPECT_EQ(field.GetEfectiveFieldName(), "Surname");
  field.FieldAlias = "Name";
  EXPECT_EQ(field.GetEfectiveFieldName(), "Name");

  QueryShapeNest level;
  EXPECT_EQ(level.SpecialRecLayout, srlNone);
  EXPECT_FALSE(level.bUseParentFieldLink);
  RepParam param;
  EXPECT_FALSE(param.Reverse);
  EXPECT_FALSE(param.IsSelectionValid());
  param.Value1 = Variant(5);
  param.Essential = true;
  EXPECT_FALSE(param.IsSelectionValid());  // whatever the values
}

TEST(QueryObjects, ChildCollectionsAreCreatedOnFirstReadAndAfterRelease) {
  QueryShapeNest level;
  QueryDataTable table;
  ConditionNode node;
  const auto tables = level.OutPutTables();
  const auto sorted = level.SortedOPFields();
  const auto fields = table.OutputFields();
  const auto params = node.ChildConditions();
  ASSERT_TRUE(tables && sorted && fields && params);
  EXPECT_EQ(level.OutPutTables(), tables);  // read again: the same one

  level.OutPutTables(nullptr);
  level.SortedOPFields(nullptr);
  table.OutputFields(nullptr);
  node.ChildConditions(nullptr);
  EXPECT_NE(level.OutPutTables(), tables);
  EXPECT_EQ(level.OutPutTables()->Count(), 0);
  EXPECT_NE(level.SortedOPFields(), sorted);
  EXPECT_NE(table.OutputFields(), fields);
  EXPECT_NE(node.ChildConditions(), params);

  auto mine = std::make_shared<RepParams>();
  node.ChildConditions(mine);
  EXPECT_EQ(node.ChildConditions(), mine);
}

TEST(QueryObjects, OwnersEmptyTheirChildCollections) {
  QueryShapeNest cleared;
  cleared.ClearTables();  // unset: created, nothing to clear
  cleared.OutPutTables()->Add(1, "", 1, 1, 0, 0, 0, 1, "", "a", "T1");
  cleared.ClearTables();
  EXPECT_EQ(cleared.OutPutTables()->Count(), 0);

  // When an owner goes, a host that still holds a child collection finds it
  // emptied; SortedOPFields is only released.
  auto level = std::make_shared<QueryShapeNest>();
  auto tables = level->OutPutTables();
  std::weak_ptr<QueryDataTable> table = tables->Add(1, "", 1, 1, 0, 0, 0, 1, "", "a", "T1");
  auto fields = table.lock()->OutputFields();
  fields->Add(1, "", sfnone, afNone, 1, 1, "", "", "a", "F1");
  auto sorted = level->SortedOPFields();
  sorted->Add(std::make_shared<Variant>("F1T1"));
  level.reset();
  EXPECT_EQ(tables->Count(), 0);
  EXPECT_TRUE(table.expired());
  EXPECT_EQ(fields->Count(), 0);  // the table went too, clearing its columns
  EXPECT_EQ(sorted->Count(), 1);

  auto node = std::make_shared<ConditionNode>();
  auto params = node->ChildConditions();
  auto held = params->Add(1, 1, false, true, "R1");
  node.reset();
  EXPECT_EQ(params->Count(), 0);
  EXPECT_EQ(held->ID, 1);  // a member the host holds lives on

  auto level2 = std::make_shared<QueryShapeNest>();
  auto kept = level2->OutPutTables()->Add(1, "", 1, 1, 0, 0, 0, 1, "", "a", "T1");
  kept->OutputFields()->Add(1, "", sfnone, afNone, 1, 1, "", "", "a");
  level2.reset();
  EXPECT_EQ(kept->OutputFields()->Count(), 1);  // a held table keeps its columns
}

TEST(QueryObjects, AWholeQueryIsBuiltAndReadBackByKey) {
  // Two levels (patients and their visits), a condition group with one
  // parameter and a sort option, keyed as the query interpreter keys them.
  QueryShapeNests levels;
  auto patients = levels.Add(3, 1, false, 1, "Patients", "Patients", "S1");
  auto visits = levels.Add(5, 2, false, 2, "Visits", "Visits", "S2");
  visits->ParentShapeId = 1;
  levels.Item("S" + std::to_string(visits->ParentShapeId))->bUseParentFieldLink = true;
  auto pt = patients->OutPutTables()->Add(3, "", 1, 10, 0, 0, 0, 1, "Patients", "patients", "T10");
  pt->OutputFields()->Add(31, "", sfnone, afNone, 100, 10, "", "Surname", "Surname", "F100");
  patients->SortedOPFields()->Add(std::make_shared<Variant>("F100T10"));
  auto vt = visits->OutPutTables()->Add(5, "v", 2, 20, 0, 0, 0, 1, "Visits", "visits", "T20");
  auto count = std::make_shared<QueryOutputField>();
  vt->OutputFields()->Add(51, "", sfRCount, afNone, 200, 20, "Seen", "Visits", "VisitID", "F200");
  visits->SortedOPFields()->Add(std::make_shared<Variant>(count), "object");

  ConditionNodes conditions;
  auto param =
      conditions.Add(0, 1, ntall, 1, 7, "C7")->ChildConditions()->Add(70, 31, false, true, "R70");
  param->Operator = cmpBeginsWith;
  param->DataFormat = fdtText;
  param->Value1 = Variant("Sm");
  QueryTemplateSortOptions sorts;
  sorts.Add(false, 1, conditions.Item("C7")->NestedBinding, "S70");

  EXPECT_TRUE(levels.Item("s1")->bUseParentFieldLink);
  EXPECT_FALSE(levels.Item("S2")->bUseParentFieldLink);
  const auto& table = levels.Item("S2")->OutPutTables()->Item("T20");
  EXPECT_EQ(table->GetSQLName(), "v");
  EXPECT_EQ(table->OutputFields()->Item("F200")->SpecialField, sfRCount);
  EXPECT_EQ(CStr(*levels.Item(1)->SortedOPFields()->Item(1)), "F100T10");
  EXPECT_EQ(visits->SortedOPFields()->Item("OBJECT")->ObjectAs<QueryOutputField>(), count);
  EXPECT_EQ(conditions.Item("C7")->ChildConditions()->Item("R70"), param);
  EXPECT_EQ(param->GetSimpleText(), " Begins with  Sm");
  EXPECT_EQ(sorts.Item("S70")->ShapeNestBindings, 1);
  EXPECT_EQ(Variant(levels.Item(2)).ObjectAs<QueryShapeNest>(), visits);

  std::vector<std::string> names;
  for (const auto& level : levels)
    names.push_back(level->ShapeName);
  EXPECT_EQ(names, (std::vector<std::string>{"Patients", "Visits"}));
}

}  // namespace
}  // namespace kelvary
