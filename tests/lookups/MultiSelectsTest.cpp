#include "LookupsFixture.h"

namespace kelvary::testing {
namespace {

using MultiSelectsTest = LookupsTest;
KELVARY_ON_EVERY_BACKEND(MultiSelectsTest);

TEST_P(MultiSelectsTest, DefinitionsNameTheirTablesLinksAndWindowsOrAreReported) {
  std::string descriptions, sql, display, value, store, parent;
  int32_t link = 0;
  EXPECT_EQ(link_.SupplyMultiListdata(3, descriptions, sql, display, value, &link),
            "PatientAllergies");
  EXPECT_EQ(descriptions + "|" + display + "|" + value, "Allergies|Description|ID");
  EXPECT_EQ(link, 30);
  EXPECT_EQ(sql, "Select  Description , ID from Allergies  Order by  Description");
  EXPECT_EQ(link_.GetMultiListParentWnd(7, &link), 120);
  EXPECT_EQ(link, 20);
  EXPECT_EQ(link_.GetMultiSettings(7, store, &parent), 120);
  EXPECT_EQ(store + "|" + parent, "PatientDrugs|patients");

  // A store table without a name, a parent link without a window: nothing
  // is answered and the out-arguments keep what they held.
  AddSearchLink(21, 2, "%X", "NULL", "NULL", "NULL", "NULL", "NULL", "NULL");
  Config("INSERT INTO MultiSelects VALUES (8, 20, 30, 0), (9, 21, 30, 4)");
  Reload();
  descriptions = store = "-";
  EXPECT_EQ(link_.SupplyMultiListdata(8, descriptions, sql, display, value), "");
  EXPECT_EQ(link_.GetMultiSettings(9, store), 0);
  EXPECT_EQ(descriptions + store, "--");
  // Missing definitions are reported, each in its own words.
  EXPECT_EQ(link_.SupplyMultiListdata(99, descriptions, sql, display, value), "");
  EXPECT_EQ(link_.GetMultiListParentWnd(99), 0);
  EXPECT_EQ(link_.GetMultiSettings(99, store), 0);  // silently
  EXPECT_EQ(store, "-");
  ExpectMessages({"Multi Select Data not found for 99", "Could not Locate MultiListID = 99"});
  Config("DELETE FROM MultiSelects");
  Reload();
  EXPECT_EQ(link_.SupplyMultiListdata(3, descriptions, sql, display, value), "");
  EXPECT_EQ(link_.GetMultiSettings(3, store), 0);
  ExpectMessages({"Data for MultiList 3 not found !", "No Multiselect entries !"});
}

TEST_P(MultiSelectsTest, OptionsOfEveryMultiSelectOfAParentCarryTheirEncodedValues) {
  RecordingListControl list(true);
  list.Tag("before");
  link_.FillWithMultiListOptions(20, list);
  // Multi-select 3 (allergies), then 7 (drugs), each list in its own order,
  // in the two-argument form even for a standard control.
  ASSERT_THAT(list.ItemTexts(),
              ElementsAre("Latex", "Penicillin", "Pollen", "Aspirin", "Ibuprofen"));
  EXPECT_EQ(list.Items()[1].value, Variant(int32_t{-3000012}));
  EXPECT_EQ(list.Items()[3].value, Variant(int32_t{-7000012}));
  EXPECT_EQ(list.Items()[4].value, Variant(int32_t{-7000015}));
  EXPECT_EQ(list.Calls()[1] + list.Calls()[2], "Tag=PClear");
  EXPECT_EQ(list.Tag(), "before");
  EXPECT_TRUE(list.IsVisible());

  link_.FillWithMultiListOptions(10, list);  // no multi-select hangs off link 10
  EXPECT_EQ(list.ListCount(), 0);
  EXPECT_FALSE(list.IsVisible());
}

TEST_P(MultiSelectsTest, MultiSelectStatementListsTheParentsHoldingAnOption) {
  Config("INSERT INTO MultiSelects VALUES (2, 10, 30, 4), (4, 10, 31, 6)");
  Reload();
  std::string display, value;
  ProjectDataSources source = pdsRawData;
  EXPECT_EQ(link_.GetMultiSelectSQL(-3000012, display, value, source),
            "Select patients.Description , patients.ID from patients, PatientAllergies Where ( "
            "patients.ID = PatientAllergies.SourceID )  And ( patients.ID  > 0 )  And ( "
            "PatientAllergies.ValueID  = 12 )");
  EXPECT_EQ(display + "|" + value, "Description|ID");
  EXPECT_EQ(source, pdsmaindata);
  // Halves go to the even multi-select; the option is the remainder.
  EXPECT_THAT(link_.GetMultiSelectSQL(-2500000, display, value, source),
              HasSubstr("from Cities, PatientAllergies Where ( Cities.ID = "
                        "PatientAllergies.SourceID )  And ( Cities.ID  > 0 )  And ( "
                        "PatientAllergies.ValueID  = 500000 )"));
  EXPECT_THAT(link_.GetMultiSelectSQL(-3500000, display, value, source),
              HasSubstr("from Cities, PatientDrugs Where"));
  EXPECT_THAT(link_.GetMultiSelectSQL(-4500000, display, value, source),
              HasSubstr("from Cities, PatientDrugs Where"));
}

TEST_P(MultiSelectsTest, MultiStringJoinsTheChosenValuesInTheDatabasesOrder) {
  const std::string sql =
      "Select Allergies.Description from Allergies , PatientAllergies where "
      "(PatientAllergies.ValueID = Allergies.ID)  and ( PatientAllergies.SourceID = 1) ";
  // Rows joins the rows with ",", the system with " , ".
  std::string expected = Rows(main_.Connection(), sql);
  for (size_t at = 0; (at = expected.find(',', at)) != std::string::npos; at += 3)
    expected.replace(at, 1, " , ");
  EXPECT_EQ(link_.GetMultiString(3, 1), expected);
  EXPECT_EQ(Selects().back(), sql);
  EXPECT_EQ(link_.GetMultiString(7, 1), "Aspirin");
  EXPECT_EQ(link_.GetMultiString(7, 2), "");
  const size_t before = Selects().size();
  EXPECT_EQ(link_.GetMultiString(0, 1), "");
  EXPECT_EQ(Selects().size(), before);
}

}  // namespace
}  // namespace kelvary::testing
