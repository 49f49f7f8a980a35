// Loading a stored definition from the demo configuration: the query row,
// the templates, the levels, tables and fields, and the condition groups,
// parameters and sort options.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DemoPractice.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "support/MessageRecorder.h"

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;

using AssignRecordSet = BackendTest;
KELVARY_ON_EVERY_BACKEND(AssignRecordSet);
using InitSettings = BackendTest;
KELVARY_ON_EVERY_BACKEND(InitSettings);
using IsSimpleTemplate = BackendTest;
KELVARY_ON_EVERY_BACKEND(IsSimpleTemplate);
using LoadTemplateConditions = BackendTest;
KELVARY_ON_EVERY_BACKEND(LoadTemplateConditions);

TEST_P(InitSettings, MissingOrUnknownQueryShowsItsMessage) {
  DemoPractice practice(TheBackend());
  MessageRecorder messages;

  // No code: nothing is read, not even the valid template; the parameter
  // string is kept as given.
  QueryInterpretor none;
  none.InitSettings("  a;b='c'  ", 0, 1, true);
  EXPECT_THAT(messages.Texts(), ElementsAre("No Query specified"));
  EXPECT_EQ(none.TemplateDescription, "");
  EXPECT_EQ(none.RepKey, "  a;b='c'  ");

  // Unknown code: the message, then the template is read regardless.
  messages.Clear();
  QueryInterpretor unknown;
  unknown.InitSettings("", 999, 2, false);
  EXPECT_THAT(messages.Texts(), ElementsAre("Query ID 999 not found"));
  EXPECT_EQ(unknown.TemplateDescription, "Visits of patients with a given name");
  EXPECT_EQ(unknown.ShapeNests()->Count(), 0);
}

TEST_P(InitSettings, ReadsTheQueryRowAndNoModelForStoredTexts) {
  DemoPractice practice(TheBackend());
  QueryInterpretor users;
  users.InitSettings("", 9, 0, false);
  EXPECT_EQ(users.NumNestedLevels, 1);
  EXPECT_EQ(users.RawSQL, "");  // NULL text reads as ""

  QueryInterpretor report;
  report.InitSettings("", 8, 0, false);
  EXPECT_EQ(report.DataSupplier, 3);

  // Query 6 has a level row for its marker, and template 1 has groups and
  // parameters: neither is read for a query that is not built.
  QueryInterpretor direct;
  direct.InitSettings("", 6, 1, false);
  EXPECT_EQ(direct.ShapeNests()->Count(), 0);
  EXPECT_EQ(direct.CurrentConditions()->Count(), 0);
  EXPECT_FALSE(direct.AreThereAnyParameters(false));
  EXPECT_EQ(direct.TemplateDescription, "Patients by name, city, insurance and age");
}

TEST_P(InitSettings, ReportTemplatesComeFromTheirOwnTable) {
  DemoPractice practice(TheBackend());
  QueryInterpretor monthly;  // supplier 3, set NULL
  monthly.TemplateSet = 7;
  monthly.InitSettings("", 8, 1, false);
  EXPECT_EQ(monthly.TemplateDescription, "Monthly invoice report");
  EXPECT_EQ(monthly.TemplateSupplier, 3);
  EXPECT_EQ(monthly.TemplateSet, 0);

  QueryInterpretor unpaid;  // supplier NULL, set 4
  unpaid.InitSettings("", 8, 2, false);
  EXPECT_EQ(unpaid.TemplateSupplier, 0);
  EXPECT_EQ(unpaid.TemplateSet, 4);

  // A built query reads its template from QueryTemplates: the report
  // template's fields stay as they were.
  QueryInterpretor built;
  built.TemplateSupplier = 5;
  built.InitSettings("", 1, 1, false);
  EXPECT_EQ(built.TemplateDescription, "Patients by name, city, insurance and age");
  EXPECT_EQ(built.TemplateSupplier, 5);
}

TEST_P(IsSimpleTemplate, OnlyTheMarkerOneCounts) {
  DemoPractice practice(
      TheBackend(),
      "INSERT INTO XQueryTemplates (ID, QueryID, Description, SimpleQueryTemplateID) VALUES "
      "(10, 8, 'zero', 0), (11, 8, 'null', NULL), (12, 8, 'one again', 1)");
  const std::vector<std::pair<int32_t, bool>> expected = {{1, true},   {2, false}, {10, false},
                                                          {11, false}, {12, true}, {99, false}};
  for (const auto& [template_id, simple] : expected) {
    QueryInterpretor qi;
    qi.TemplateId = template_id;
    EXPECT_EQ(qi.IsSimpleTemplate(), simple) << "template " << template_id;
  }
}

// The flag marks the levels that have children, not the children; levels,
// tables and fields are keyed "S", "T" and "F" + ID. (Names, links and the
// order of the columns show in the cases' statements.)
TEST_P(InitSettings, LoadsLevelsTablesAndFieldsUnderTheirKeys) {
  DemoPractice practice(TheBackend());
  QueryInterpretor qi;
  qi.InitSettings("", 5, 0, false);
  std::vector<std::pair<int32_t, bool>> with_children;
  for (const auto& level : *qi.ShapeNests())
    with_children.emplace_back(level->ID, level->bUseParentFieldLink);
  EXPECT_THAT(with_children, ElementsAre(std::pair{50, true}, std::pair{51, false},
                                         std::pair{52, true}, std::pair{53, false}));
  const auto& patients = qi.ShapeNests()->Item("S50")->OutPutTables()->Item("T50");
  EXPECT_EQ(patients->OutputFields()->Item("F500")->Title, "Registration number");
}

// The host's fields of template 1's parameters, and its sort options (the
// condition texts are checked by the cases in cases/).
TEST_P(LoadTemplateConditions, GroupsParametersAndSortOptions) {
  DemoPractice practice(TheBackend());
  QueryInterpretor qi;
  qi.InitSettings("", 1, 1, false);
  const auto& params = qi.CurrentConditions()->Item("C1")->ChildConditions();
  const auto& born = params->Item("R3");
  EXPECT_EQ(born->SUBOperator, drsUserSpecifiedDates);
  EXPECT_EQ(born->Value1, Variant("1950-01-01"));  // as stored: text
  EXPECT_FALSE(born->Essential);
  EXPECT_TRUE(born->Removable);
  EXPECT_EQ(born->CodeChar, "");  // kept for the host, not loaded

  const auto& last_name = params->Item("R1");
  EXPECT_EQ(last_name->SUBOperator, 0);  // NULL leaves the default
  EXPECT_TRUE(last_name->Essential);
  EXPECT_FALSE(last_name->Removable);
  EXPECT_TRUE(params->Item("R2")->Essential);  // NULL keeps the True given at Add

  const auto& city = qi.CurrentConditions()->Item("C2")->ChildConditions()->Item("R4");
  EXPECT_EQ(city->SearchLinkID, 1);
  EXPECT_TRUE(city->Value2.IsEmpty());  // NULL leaves it Empty

  // Rows 1 and 6 are also sort options; their level is their group's.
  const auto& sorts = qi.TemplateSortOptions();
  ASSERT_EQ(sorts->Count(), 2);
  EXPECT_FALSE(sorts->Item("S1")->SortDescending);
  EXPECT_EQ(sorts->Item("S6")->SortOrder, 2);
  EXPECT_TRUE(sorts->Item("S6")->SortDescending);
  EXPECT_EQ(sorts->Item("S6")->ShapeNestBindings, 10);
  EXPECT_EQ(sorts->Item("S6")->ID, 0);
}

// The search and sort orders decide what a row is; a parameter on a field
// whose search link has no row never loads.
TEST_P(LoadTemplateConditions, WhatMakesAParameterOrASortOption) {
  DemoPractice practice(
      TheBackend(),
      "INSERT INTO QueryTemplates (ID, QueryID, Description) VALUES"
      " (100, 3, 'orders'), (101, 3, 'groups only'), (102, 3, 'unlinked');"
      "INSERT INTO QueryConditionGroups (ID, QueryTemplateID, NestedBinding) VALUES"
      " (100, 100, 31), (101, 101, 30), (102, 102, 30);"
      "UPDATE DataTableFields SET SearchLinkID = 77 WHERE ID = 104;"
      "INSERT INTO QueryTemplateParameters (ID, QueryConditionID, QueryDataTableID, DataFieldID,"
      " Operator, Essential, SearchOrder, SortOrder, SortDescending) VALUES"
      " (100, 100, 31, 203, 1, NULL, 0, 2, TRUE),"   // a sort option only
      " (101, 100, 31, 206, 2, NULL, 1, 1, FALSE),"  // both
      " (102, 100, 31, 204, 1, NULL, 0, 0, FALSE),"  // neither
      " (103, 102, 30, 104, 1, TRUE, 1, 0, FALSE)");
  QueryInterpretor orders;
  orders.InitSettings("", 3, 100, false);
  const auto& params = orders.CurrentConditions()->Item("C100")->ChildConditions();
  ASSERT_EQ(params->Count(), 1);
  EXPECT_EQ(params->Item(1)->ID, 101);
  const auto& sorts = orders.TemplateSortOptions();
  ASSERT_EQ(sorts->Count(), 2);
  EXPECT_EQ(sorts->Item("S100")->ShapeNestBindings, 31);
  EXPECT_EQ(sorts->Item("S101")->SortOrder, 1);
  // Rows were there, none of them essential; template 1's row 1 is.
  EXPECT_TRUE(orders.AreThereAnyParameters(false));
  EXPECT_FALSE(orders.AreThereAnyParameters(true));
  QueryInterpretor essential;
  essential.InitSettings("", 1, 1, false);
  EXPECT_TRUE(essential.AreThereAnyParameters(true));

  QueryInterpretor groups_only;
  groups_only.InitSettings("", 3, 101, false);
  EXPECT_EQ(groups_only.CurrentConditions()->Count(), 1);
  EXPECT_FALSE(groups_only.AreThereAnyParameters(false));

  QueryInterpretor unlinked;
  unlinked.InitSettings("", 3, 102, false);
  EXPECT_EQ(unlinked.CurrentConditions()->Item("C102")->ChildConditions()->Count(), 0);
  EXPECT_FALSE(unlinked.AreThereAnyParameters(false));
}

TEST_P(AssignRecordSet, OpensOnlyStoredTextAndBuiltQueries) {
  DemoPractice practice(TheBackend(),
                        "INSERT INTO Queries (ID, Description, QueryBuildMethod, SqlStmt) VALUES"
                        " (120, 'standard', 7, 'Select ID From patients'),"
                        " (121, 'direct', 1, 'Select ID From patients Where ID > 1000')");
  MessageRecorder messages;

  QueryInterpretor standard;
  standard.InitSettings("", 120, 0, false);
  auto untouched = std::make_shared<Recordset>();
  auto rs = untouched;
  EXPECT_FALSE(standard.AssignRecordSet(rs));
  EXPECT_EQ(rs, untouched);
  EXPECT_EQ(rs->State(), adStateClosed);

  // No rows: False, yet the recordset is open and empty.
  QueryInterpretor direct;
  direct.InitSettings("", 121, 0, false);
  std::shared_ptr<Recordset> empty;
  EXPECT_FALSE(direct.AssignRecordSet(empty));
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->State(), adStateOpen);
  EXPECT_EQ(empty->RecordCount(), 0);
  EXPECT_TRUE(messages.Texts().empty());
}

}  // namespace
}  // namespace kelvary::testing
