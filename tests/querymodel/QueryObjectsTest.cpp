// The query record classes: child collections created on first read, the
// naming rules, and what an owner does to its child collections when it goes.
#include <gtest/gtest.h>

#include <memory>

#include "kelvary/querymodel/QueryModel.h"

namespace kelvary {
namespace {

TEST(QueryObjects, NamingRules) {
  QueryDataTable table;
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

}  // namespace
}  // namespace kelvary
