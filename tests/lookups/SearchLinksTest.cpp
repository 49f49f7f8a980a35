#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LookupsFixture.h"

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;

class SearchLinksTest : public LookupsTest {
 protected:
  struct Details {
    std::string display = "-", value = "-", table_name = "-", sql = "-", caption = "-",
                secondary = "-";
    int32_t table = -1;
    ProjectDataSources source = pdsRawData;
    bool many = true;
    int16_t screen = -1;
    int32_t window = -1;
  };

  Details Get(int32_t id) {
    Details d;
    d.window = link_.GetSearchLinkDetails(id, d.display, d.value, d.table, d.table_name, d.source,
                                          d.sql, d.caption, &d.many, &d.screen, &d.secondary);
    return d;
  }
};

TEST_F(SearchLinksTest, DetailsComeFromTheLinkAndItsTable) {
  AddSearchLink(11, 7, "LoginName", "NULL", "NULL", "NULL", "NULL", "'LastName'", "111");
  Reload();
  const Details cities = Get(10);
  EXPECT_EQ(cities.window, 110);
  EXPECT_EQ(cities.display, "Description");
  EXPECT_EQ(cities.value, "ID");
  EXPECT_EQ(cities.table, 1);
  EXPECT_EQ(cities.table_name, "Cities");
  EXPECT_EQ(cities.source, pdsmaindata);
  EXPECT_EQ(cities.caption, "Choose 10");
  EXPECT_FALSE(cities.many);  // Null reads as False
  EXPECT_EQ(cities.secondary, "");
  EXPECT_EQ(cities.sql, "Select  Description , ID from Cities Order by Description");

  const Details users = Get(11);
  EXPECT_EQ(users.source, pdssystem);  // the table's location
  EXPECT_EQ(users.secondary, "LastName");
  EXPECT_TRUE(Get(20).many);
  EXPECT_FALSE(Get(30).many);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(SearchLinksTest, TheLinksOwnNewScreenWinsOverItsTables) {
  // Cities (table 1) has new-entry screen 5; patients (table 2) none.
  AddSearchLink(41, 1, "Description", "NULL", "NULL", "0");
  AddSearchLink(42, 1, "Description", "NULL", "NULL", "7");
  AddSearchLink(43, 2, "FirstName", "NULL", "NULL", "NULL");
  AddSearchLink(44, 1, "Description", "NULL", "NULL", "-3");
  Reload();
  EXPECT_EQ(Get(10).screen, 5);  // link's own Null
  EXPECT_EQ(Get(41).screen, 5);  // link's own 0
  EXPECT_EQ(Get(42).screen, 7);
  EXPECT_EQ(Get(43).screen, 0);  // neither
  EXPECT_EQ(Get(44).screen, 5);  // a negative screen is no screen
}

TEST_F(SearchLinksTest, AWhereClauseGetsAnOrderClauseUnlessItEndsInALowerCaseOne) {
  AddSearchLink(41, 1, "Description", "NULL", "'ParentID = 0'");
  AddSearchLink(42, 1, "Description", "NULL", "'ParentID = 0 order by ID'");
  AddSearchLink(43, 1, "Description", "NULL", "'ParentID = 0 ORDER BY ID'");
  Reload();
  EXPECT_EQ(Get(41).sql,
            "Select  Description , ID from Cities  where  ParentID = 0 Order by Description");
  EXPECT_EQ(Get(42).sql, "Select  Description , ID from Cities  where  ParentID = 0 order by ID");
  // Capitals are not recognised: the second order clause makes the
  // statement invalid, as stored clauses have always had to allow for.
  EXPECT_EQ(Get(43).sql,
            "Select  Description , ID from Cities  where  ParentID = 0 ORDER BY ID Order by "
            "Description");
}

TEST_F(SearchLinksTest, AHandWrittenStatementServesDetailsButNotDescriptionsOrListsOfATable) {
  // Link 41 has a table and a statement of its own; link 42 only a
  // statement (DataTables row 0).
  AddSearchLink(41, 1, "Description", "'Select Description, ID from Cities where ID = 2'",
                "'ParentID > 0'");
  AddSearchLink(42, 0, "Description", "'Select Description , ID from Allergies'", "NULL");
  Reload();
  EXPECT_EQ(Get(41).sql, "Select Description, ID from Cities where ID = 2");
  EXPECT_EQ(link_.GetDescription(41, 3), "North Westfield");
  EXPECT_EQ(Selects().back(), "Select  Description from Cities where (ID = 3)");

  RecordingListControl list;
  link_.FillComboWithOptions(list, 41);
  EXPECT_EQ(Selects().back(),
            "Select  Description , ID from Cities  where  ParentID > 0  Order by  Description");
  EXPECT_THAT(list.ItemTexts(), ElementsAre("Eastbank", "North Westfield", "Old Town"));

  // Without a table the statement is the link's own, for every member.
  EXPECT_EQ(Get(42).sql, "Select Description , ID from Allergies");
  EXPECT_EQ(link_.GetDescription(42, 13), "Latex");
  EXPECT_EQ(Selects().back(), "Select Description , ID from Allergies where ( ID = 13 ) ");
  link_.FillComboWithOptions(list, 42);
  EXPECT_EQ(Selects().back(), "Select Description , ID from Allergies");
  EXPECT_TRUE(Messages().empty());
}

TEST_F(SearchLinksTest, DescriptionsOfCodesPersonsAndMultiSelectValues) {
  EXPECT_EQ(link_.GetDescription(10, 5), "Eastbank");
  EXPECT_EQ(link_.GetDescription(10, 99), "");
  // "%X" composes the person's name, with the gaps kept around a missing part.
  EXPECT_EQ(link_.GetDescription(20, 1), "John    Smith");
  EXPECT_EQ(link_.GetDescription(20, 2, int16_t{3}), "Anna   Maria   Berg");
  // A multi-select link value describes through its parent's link (20).
  EXPECT_EQ(link_.GetDescription(-3000012, 2), "Anna  Maria  Berg");
  EXPECT_EQ(link_.GetDescription(-7000099, 2), "Anna  Maria  Berg");
  EXPECT_TRUE(Messages().empty());
}

TEST_F(SearchLinksTest, AMissingLinkIsReportedAndLeavesTheOutArgumentsAlone) {
  const Details missing = Get(99);
  EXPECT_EQ(missing.window, 0);
  EXPECT_EQ(missing.display, "-");
  EXPECT_EQ(missing.sql, "-");
  EXPECT_EQ(missing.table, -1);
  EXPECT_TRUE(missing.many);
  EXPECT_EQ(link_.GetDescription(99, 1), "");
  EXPECT_EQ(link_.GetDescription(-9000001, 1), "");
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 99",
                                      "Problem in GetDescription for SearchLinkID 99",
                                      "Could not Locate MultiListID = 9",
                                      "Problem in GetDescription for SearchLinkID -9000001"));
}

TEST_F(SearchLinksTest, ControlTypeFollowsTheSizeOfTheList) {
  Variant many;
  EXPECT_EQ(link_.GetSrchlinkControlType(20, many), ctSearchWindow);
  EXPECT_EQ(many, Variant(true));
  EXPECT_EQ(link_.GetSrchlinkControlType(10, many), ctDropDownList);
  EXPECT_EQ(many, Variant(false));
  // Multi-select values always get a search window, without a look-up:
  // there is no multi-select 5 and nothing is reported.
  EXPECT_EQ(link_.GetSrchlinkControlType(-5000001, many), ctSearchWindow);
  EXPECT_EQ(many, Variant(true));
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(link_.GetSrchlinkControlType(99, many), ctDropDownList);
  EXPECT_EQ(many, Variant(false));
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 99"));
}

TEST_F(SearchLinksTest, DefinitionTableOfLinksAndMultiSelectValuesRoundingHalvesToEven) {
  Config(
      "INSERT INTO MultiSelects (ID, ParentSearchLinkID, SearchLinkID, StoreTable) VALUES "
      "(2, 10, 30, 4), (4, 30, 31, 6)");
  const size_t before = Selects().size();
  EXPECT_EQ(link_.GetDefinitionTable(0), 0);
  EXPECT_EQ(Selects().size(), before);  // 0 asks nothing
  EXPECT_EQ(link_.GetDefinitionTable(10), 1);
  EXPECT_EQ(link_.GetDefinitionTable(-3000012), 2);  // multi-select 3, parent link 20
  EXPECT_EQ(Selects().back(), "Select ParentSearchLinkID from Multiselects where ID = 3");
  EXPECT_EQ(link_.GetDefinitionTable(-2500000), 1);  // 2.5 -> multi-select 2, link 10
  EXPECT_EQ(Selects().back(), "Select ParentSearchLinkID from Multiselects where ID = 2");
  EXPECT_EQ(link_.GetDefinitionTable(-3500000), 3);  // 3.5 -> multi-select 4, link 30
  EXPECT_EQ(Selects().back(), "Select ParentSearchLinkID from Multiselects where ID = 4");
  EXPECT_EQ(link_.GetDefinitionTable(-4500000), 3);  // 4.5 -> 4 as well
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(link_.GetDefinitionTable(-9000000), 0);
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 0"));
}

TEST_F(SearchLinksTest, LookUpsAfterInitListsNeverReadTheSearchLinksAgain) {
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);  // the two caches, once each
  RecordingListControl list;
  for (int round = 0; round < 3; ++round) {
    Get(10);
    link_.GetDescription(10, 1);
    link_.GetDescription(-3000012, 1);
    link_.FillComboWithOptions(list, 30);
    link_.FillWithMultiListOptions(20, list);
    link_.GetDefinitionTable(-7000001);
    Variant many;
    link_.GetSrchlinkControlType(31, many);
  }
  EXPECT_GT(Selects().size(), 10u);
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);

  // The cache is what InitLists read: a new link is seen after the next one.
  AddSearchLink(50, 3, "Description", "NULL", "NULL");
  EXPECT_EQ(Get(50).window, 0);
  Reload();
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 4);
  EXPECT_EQ(Get(50).table_name, "Allergies");
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 50"));
}

}  // namespace
}  // namespace kelvary::testing
