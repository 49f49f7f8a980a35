#include "LookupsFixture.h"

namespace kelvary::testing {
namespace {

using ListFillingTest = LookupsTest;
KELVARY_ON_EVERY_BACKEND(ListFillingTest);

TEST_P(ListFillingTest, OptionsOfALinkGoInTheFormTheControlTakes) {
  RecordingListControl standard(true);
  standard.Tag("ready");
  link_.FillComboWithOptions(standard, 31);
  ASSERT_FALSE(Selects().empty());
  EXPECT_EQ(Selects().back(), "Select  Description , ID from Drugs  Order by  Description");
  EXPECT_THAT(standard.Calls(),
              ElementsAre("Tag=ready", "Tag=P", "Clear", "AddItem(Aspirin)", "ItemData(0)=12",
                          "AddItem(Ibuprofen)", "ItemData(1)=15", "Tag=ready"));
  RecordingListControl other;
  link_.FillComboWithOptions(other, 31);
  EXPECT_THAT(other.Calls(), ElementsAre("Tag=P", "Clear", "AddItem(Aspirin,12)",
                                         "AddItem(Ibuprofen,15)", "Tag="));

  // A multi-select value lists the parents that hold it.
  Config(
      "INSERT INTO DataTables (ID, ValuesTable) VALUES (8, 'CityAlerts');"
      "INSERT INTO MultiSelects VALUES (5, 10, 30, 8)");
  Practice(
      "CREATE TABLE CityAlerts (ID INTEGER PRIMARY KEY, SourceID INTEGER, ValueID INTEGER);"
      "INSERT INTO CityAlerts VALUES (1, 1, 12), (2, 5, 12), (3, 2, 13)");
  Reload();
  link_.FillComboWithOptions(other, -5000012);
  EXPECT_THAT(other.ItemTexts(), UnorderedElementsAre("Westfield", "Eastbank"));
}

TEST_P(ListFillingTest, AnUnresolvableLinkIsReportedAndLeavesTheTagAtP) {
  AddSearchLink(60, 0, "Description", "NULL", "NULL");  // neither table nor statement
  AddSearchLink(61, 0, "Description", "'Select Description, ID from Wards'", "NULL");
  Reload();
  RecordingListControl list(false, "Allergy box");
  list.AddItem("stale", Variant(1));
  list.Tag("ready");
  link_.FillComboWithOptions(list, 60);
  EXPECT_EQ(list.Tag(), "P");
  EXPECT_EQ(list.ListCount(), 0);
  link_.FillComboWithOptions(list, 99);
  EXPECT_EQ(list.Tag(), "P");
  ExpectMessages({"Error in search Link 60 for control Allergy box", "Problem in FillID 99",
                  "Error in search Link 99 for control Allergy box"});
  // A statement that fails to open: empty list, Tag restored, only the
  // loading error is shown.
  list.Tag("ready");
  link_.FillComboWithOptions(list, 61);
  EXPECT_EQ(list.Tag(), "ready");
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_THAT(Messages()[0], HasSubstr(":  with sql Select Description, ID from Wards"));
  messages_.Clear();
}

TEST_P(ListFillingTest, StatementsCanBeAppendedToOneListAndTheFirstSelected) {
  RecordingListControl list(true);
  list.Tag("t");
  link_.FillComboWithSQL(list, pdsmaindata, "Select Description, ID from Allergies order by ID",
                         "Description", "ID", false);
  link_.FillComboWithSQL(list, pdsmaindata, "Select Description, ID from Drugs order by ID",
                         "Description", "ID", true, true);
  EXPECT_THAT(list.ItemTexts(),
              ElementsAre("Penicillin", "Latex", "Pollen", "Aspirin", "Ibuprofen"));
  EXPECT_EQ(list.ItemData(4), 15);
  EXPECT_EQ(list.SelectedIndex(), 0);
  EXPECT_EQ(list.Tag(), "t");
  // Without bDontClear the list starts again; no rows, no selection.
  link_.FillComboWithSQL(list, pdsmaindata, "Select Description, ID from Drugs where ID > 99",
                         "Description", "ID", true, false);
  EXPECT_EQ(list.ListCount(), 0);
  EXPECT_EQ(list.SelectedIndex(), -1);
}

TEST_P(ListFillingTest, RecordsFromTheCallerAlwaysLeaveTheTagEmpty) {
  std::shared_ptr<Recordset> rs;
  link_.FillRecordSet(pdsmaindata, rs, "Select * from Drugs order by ID", adOpenStatic,
                      adLockReadOnly);
  rs->MoveLast();
  RecordingListControl list(true);
  list.Tag("keep me");
  link_.AddRecsToCombo(rs, "Description", "ID", list);
  EXPECT_THAT(list.Calls(), ElementsAre("Tag=keep me", "Tag=P", "Clear", "AddItem(Aspirin,12)",
                                        "AddItem(Ibuprofen,15)", "Tag="));
  EXPECT_TRUE(rs->Eof());  // still open, at its end
}

TEST_P(ListFillingTest, HierarchyShowsTwoLevelsAndLeavesGrandchildrenOut) {
  RecordingListControl list(true);
  link_.RefreshHierarchicalList(pdsmaindata, list, "Description", "ID", "Cities", "x");
  ASSERT_GE(Selects().size(), 2u);
  EXPECT_EQ(Selects()[Selects().size() - 2],
            "Select Description ,ID  from Cities where ( ID > 0 ) and ( ParentID = 0)   order by "
            "description ");
  EXPECT_EQ(Selects().back(),
            "Select Description ,ID ,ParentID from Cities where ( ID > 0 ) and ( ParentID > 0)  "
            "order by description ");
  // Old Town sits under North Westfield: a grandchild.
  EXPECT_THAT(list.ItemTexts(),
              ElementsAre("Harbour", "--- > Eastbank", "Westfield", "--- > North Westfield"));
  EXPECT_EQ(list.Items()[1].value, Variant(int32_t{5}));

  link_.RefreshHierarchicalList(pdsmaindata, list, "Description", "ID", "Cities",
                                "Description <> 'Eastbank'");
  ASSERT_FALSE(Selects().empty());
  EXPECT_THAT(Selects().back(), HasSubstr("( ParentID > 0)  and ( Description <> 'Eastbank' )  "
                                          "order by description "));
  EXPECT_THAT(list.ItemTexts(), ElementsAre("Harbour", "Westfield", "--- > North Westfield"));
}

TEST_P(ListFillingTest, DataFormatsOfAUsageIncludeThoseForEveryUsage) {
  Config(
      "INSERT INTO DataFormats VALUES (1, 'Text'), (2, 'Number'), (3, 'Date'), (4, 'Unused');"
      "INSERT INTO DataFormatUsages VALUES (1, 1, 0), (2, 2, 5), (3, 3, 6), (4, 2, 5), (5, 0, 0)");
  RecordingListControl list(true);
  link_.FillComboWithValidDataTypes(list, 5);
  ASSERT_FALSE(Selects().empty());
  EXPECT_EQ(Selects().back(),
            "Select Distinct DataFormats.Description ,DataFormatUsages.DataFormatID from "
            "DataFormats , DataFormatUsages  Where ( DataFormatUsages.DataFormatID = "
            "DataFormats.ID) and (DataFormatUsages.DataFormatID > 0 )  and (( "
            "DataFormatUsages.DataFormatUsageTypeID = 5 ) or ( "
            "DataFormatUsages.DataFormatUsageTypeID =0) )");
  EXPECT_THAT(list.ItemTexts(), UnorderedElementsAre("Text", "Number"));
  link_.FillComboWithValidDataTypes(list, 6);
  EXPECT_THAT(list.ItemTexts(), UnorderedElementsAre("Text", "Date"));
}

}  // namespace
}  // namespace kelvary::testing
