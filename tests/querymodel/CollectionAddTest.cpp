// What each collection's Add stores where: distinct argument values catch a
// swapped pair, the fields Add leaves alone keep their creation values, and
// a failing step leaves the collection as the system leaves it.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "kelvary/querymodel/QueryModel.h"
#include "support/ErrorNumber.h"

namespace kelvary {
namespace {

using std::string;

using testing::ErrorNumberOf;

struct HostObject : Object {};

TEST(CollectionAdd, QueryRecordsGetEachArgumentInItsField) {
  auto t = QueryDataTables().Add(31, "v", 2, 17, 205, 16, 301, 4, "Visits", "visits");
  EXPECT_EQ(std::tuple(t->DataTableId, t->TableAlias, t->NestedBinding, t->ID, t->ParentDataField,
                       t->ParentDataTable, t->SourceDataField, t->Depth, t->Title, t->TableName,
                       t->ParentDataFieldName, t->SourceDataFieldName),
            std::tuple(31, string("v"), 2, 17, 205, 16, 301, 4, string("Visits"), string("visits"),
                       string(), string()));

  auto f = QueryOutputFields().Add(205, "Total", sfSum, afLongMonth, 12, 7, "Sum1", "Amt", "amt");
  EXPECT_EQ(std::tuple(f->DataFieldID, f->FieldAlias, f->SpecialField, f->AdvancedFormatting, f->ID,
                       f->QueryDataTableID, f->SpecialFieldAlias, f->Title, f->FieldName,
                       f->DisplayOrder),
            std::tuple(205, string("Total"), sfSum, afLongMonth, 12, 7, string("Sum1"),
                       string("Amt"), string("amt"), 0));

  auto s = QueryShapeNests().Add(31, 2, true, 8, "Visits", "Patient visits");
  EXPECT_EQ(std::tuple(s->BaseTableID, s->Depth, s->PreExistingWhereClause, s->ID, s->ShapeName,
                       s->Title, s->ShapeIndex, s->ParentShapeId, s->SpecialRecLayout),
            std::tuple(31, 2, true, 8, string("Visits"), string("Patient visits"), 0, 0, srlNone));

  auto o = QueryTemplateSortOptions().Add(true, 3, 8);
  EXPECT_EQ(std::tuple(o->SortDescending, o->SortOrder, o->ShapeNestBindings, o->ID),
            std::tuple(true, 3, 8, 0));

  auto p = RepParams().Add(40, 205, true, false);
  EXPECT_EQ(std::tuple(p->ID, p->DataFieldID, p->Hidden, p->Essential, p->Reverse),
            std::tuple(40, 205, true, false, false));

  auto n = ConditionNodes().Add(3, 2, ntAny, 8, 5);
  EXPECT_EQ(std::tuple(n->ParentGroupId, n->NodeLevel, n->NodeType, n->NestedBinding, n->ID),
            std::tuple(3, 2, ntAny, 8, 5));
}

TEST(CollectionAdd, QueryDataTablesRefusesANestedBindingBeyondSixteenBits) {
  QueryDataTables tables;
  EXPECT_EQ(ErrorNumberOf([&] { tables.Add(1, "", 40000, 1, 0, 0, 0, 1, "", "t", "T1"); }),
            kErrOverflow);
  EXPECT_EQ(tables.Count(), 0);
  EXPECT_EQ(tables.Add(1, "", -32768, 1, 0, 0, 0, 1, "", "t", "T1")->NestedBinding, -32768);
}

TEST(CollectionAdd, FieldLinksTakesTheDefaultAsAValueAndRefusesAnObject) {
  FieldLinks links;
  auto l = links.Add(205, naEnforceEntry, ctSearchWindow, 3, "txtName", Variant("Smith"), fdtText,
                     "Surname");
  EXPECT_EQ(std::tuple(l->FieldID, l->NullAction, l->ControlType, l->ControlIndex, l->ControlName,
                       l->DefaultValue, l->DataType, l->Caption, l->FieldName),
            std::tuple(205, naEnforceEntry, ctSearchWindow, 3, string("txtName"), Variant("Smith"),
                       fdtText, string("Surname"), string()));
  // The assignment fails before insertion, so nothing is added.
  const Variant object(std::make_shared<HostObject>());
  EXPECT_EQ(ErrorNumberOf([&] {
              links.Add(206, naIgnore, ctDropDownList, 0, "x", object, fdtText, "", "L2");
            }),
            kErrObjectDoesntSupportMember);
  EXPECT_EQ(links.Count(), 1);
}

TEST(CollectionAdd, ValueSetsKeepsObjectValuesAndAssignsTheRestAfterInsertion) {
  ValueSets sets;
  const Variant object(std::make_shared<HostObject>());
  auto v = sets.Add(object, 4);
  EXPECT_EQ(std::tuple(v->Value, v->ID, v->ValDataType, v->DefaultValue, v->Scope),
            std::tuple(object, 4, 0, Variant(), 0));
  auto w = sets.Add(Variant(2.5), 5, "", fdtDate, Variant::Null(), int16_t{3});
  EXPECT_EQ(std::tuple(w->Value, w->ValDataType, w->DefaultValue, w->Scope),
            std::tuple(Variant(2.5), fdtDate, Variant::Null(), 3));

  // A default that cannot be taken as a value fails once the member is in:
  // it stays, with its data type assigned and its scope not yet.
  EXPECT_EQ(ErrorNumberOf([&] { sets.Add(Variant(1), 6, "V6", fdtLong, object, int16_t{9}); }),
            kErrObjectDoesntSupportMember);
  ASSERT_EQ(sets.Count(), 3);
  EXPECT_EQ(std::tuple(sets.Item("V6")->ValDataType, sets.Item("V6")->Scope),
            std::tuple(fdtLong, 0));
}

}  // namespace
}  // namespace kelvary
