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
    int32_t table = -1, window = -1;
    ProjectDataSources source = pdsRawData;
    bool many = true;
    int16_t screen = -1;
  };

  Details Get(int32_t id) {
    Details d;
    d.window = link_.GetSearchLinkDetails(id, d.display, d.value, d.table, d.table_name, d.source,
                                          d.sql, d.caption, &d.many, &d.screen, &d.secondary);
    return d;
  }
};
KELVARY_ON_EVERY_BACKEND(SearchLinksTest);

TEST_P(SearchLinksTest, DetailsComeFromTheLinkAndItsTable) {
  AddSearchLink(11, 7, "LoginName", "NULL", "NULL", "NULL", "NULL", "'LastName'", "111");
  Reload();
  const Details d = Get(10);
  EXPECT_EQ(d.window, 110);
  EXPECT_EQ(d.display + d.value + d.table_name + d.caption, "DescriptionIDCitiesChoose 10");
  EXPECT_EQ(d.table, 1);
  EXPECT_EQ(d.source, pdsmaindata);
  EXPECT_FALSE(d.many);  // Null reads as False
  EXPECT_EQ(d.secondary, "");
  EXPECT_EQ(d.sql, "Select  Description , ID from Cities Order by Description");
  EXPECT_EQ(Get(11).source, pdssystem);  // the table's location
  EXPECT_EQ(Get(11).secondary, "LastName");
  EXPECT_TRUE(Get(20).many);
  EXPECT_TRUE(Messages().empty());
}

TEST_P(SearchLinksTest, TheLinksOwnNewScreenWinsOverItsTables) {
  // Cities (table 1) has new-entry screen 5; patients (table 2) none.
  AddSearchLink(41, 1, "Description", "NULL", "NULL", "0");
  AddSearchLink(42, 1, "Description", "NULL", "NULL", "7");
  AddSearchLink(43, 2, "FirstName", "NULL", "NULL", "NULL");
  AddSearchLink(44, 1, "Description", "NULL", "NULL", "-3");
  Reload();
  EXPECT_EQ(Get(10).screen, 5);  // link's own Null
  EXPECT_EQ(Get(41).screen, 5);  // link's own 0
  EXPECT_EQ(Get(42).screen, 7);
  EXPECT_EQ(Get(43).screen, 0);
  EXPECT_EQ(Get(44).screen, 5);
}

TEST_P(SearchLinksTest, AWhereClauseGetsAnOrderClauseUnlessItEndsInALowerCaseOne) {
  AddSearchLink(41, 1, "Description", "NULL", "'ParentID = 0'");
  AddSearchLink(42, 1, "Description", "NULL", "'ParentID = 0 order by ID'");
  AddSearchLink(43, 1, "Description", "NULL", "'ParentID = 0 ORDER BY ID'");
  Reload();
  const std::string start = "Select  Description , ID from Cities  where  ParentID = 0 ";
  EXPECT_EQ(Get(41).sql, start + "Order by Description");
  EXPECT_EQ(Get(42).sql, start + "order by ID");
  // Capitals are not recognised: two order clauses, an invalid statement.
  EXPECT_EQ(Get(43).sql, start + "ORDER BY ID Order by Description");
}

TEST_P(SearchLinksTest, AHandWrittenStatementServesDetailsButNotDescriptionsOrListsOfATable) {
  // Link 41 has a table and a statement; link 42 only a statement.
  AddSearchLink(41, 1, "Description", "'Select Description, ID from Cities where ID = 2'",
                "'ParentID > 0'");
  AddSearchLink(42, 0, "Description", "'Select Description , ID from Allergies'", "NULL");
  Reload();
  RecordingListControl list;
  EXPECT_EQ(Get(41).sql, "Select Description, ID from Cities where ID = 2");
  EXPECT_EQ(link_.GetDescription(41, 3), "North Westfield");
  EXPECT_EQ(Selects().back(), "Select  Description from Cities where (ID = 3)");
  link_.FillComboWithOptions(list, 41);
  EXPECT_EQ(Selects().back(),
            "Select  Description , ID from Cities  where  ParentID > 0  Order by  Description");

  EXPECT_EQ(Get(42).sql, "Select Description , ID from Allergies");
  EXPECT_EQ(link_.GetDescription(42, 13), "Latex");
  EXPECT_EQ(Selects().back(), "Select Description , ID from Allergies where ( ID = 13 ) ");
  link_.FillComboWithOptions(list, 42);
  EXPECT_EQ(Selects().back(), "Select Description , ID from Allergies");
  EXPECT_TRUE(Messages().empty());
}

TEST_P(SearchLinksTest, DescriptionsOfCodesPersonsAndMultiSelectValues) {
  EXPECT_EQ(link_.GetDescription(10, 5), "Eastbank");
  EXPECT_EQ(link_.GetDescription(10, 99), "");
  // "%X" composes the name; the gaps stay around a missing middle name.
  EXPECT_EQ(link_.GetDescription(20, 1), "John    Smith");
  EXPECT_EQ(link_.GetDescription(20, 2, int16_t{3}), "Anna   Maria   Berg");
  // A multi-select value describes through its parent's link (20).
  EXPECT_EQ(link_.GetDescription(-7000099, 2), "Anna  Maria  Berg");
  EXPECT_TRUE(Messages().empty());
}

TEST_P(SearchLinksTest, AMissingLinkIsReportedAndLeavesTheOutArgumentsAlone) {
  const Details missing = Get(99);
  EXPECT_EQ(missing.window, 0);
  EXPECT_EQ(missing.display + missing.sql, "--");
  EXPECT_TRUE(missing.many);
  EXPECT_EQ(link_.GetDescription(99, 1), "");
  EXPECT_EQ(link_.GetDescription(-9000001, 1), "");
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 99",
                                      "Problem in GetDescription for SearchLinkID 99",
                                      "Could not Locate MultiListID = 9",
                                      "Problem in GetDescription for SearchLinkID -9000001"));
}

TEST_P(SearchLinksTest, ControlTypeFollowsTheSizeOfTheList) {
  Variant many;
  EXPECT_EQ(link_.GetSrchlinkControlType(20, many), ctSearchWindow);
  EXPECT_EQ(many, Variant(true));
  EXPECT_EQ(link_.GetSrchlinkControlType(10, many), ctDropDownList);
  EXPECT_EQ(many, Variant(false));
  // Multi-select values need no look-up: there is no multi-select 5.
  EXPECT_EQ(link_.GetSrchlinkControlType(-5000001, many), ctSearchWindow);
  EXPECT_EQ(many, Variant(true));
  EXPECT_TRUE(Messages().empty());
}

TEST_P(SearchLinksTest, DefinitionTableOfLinksAndMultiSelectValuesRoundingHalvesToEven) {
  Config("INSERT INTO MultiSelects VALUES (2, 10, 30, 4), (4, 30, 31, 6)");
  const size_t before = Selects().size();
  EXPECT_EQ(link_.GetDefinitionTable(0), 0);
  EXPECT_EQ(Selects().size(), before);  // 0 asks nothing
  EXPECT_EQ(link_.GetDefinitionTable(10), 1);
  EXPECT_EQ(link_.GetDefinitionTable(-3000012), 2);  // multi-select 3, parent link 20
  EXPECT_EQ(Selects().back(), "Select ParentSearchLinkID from Multiselects where ID = 3");
  EXPECT_EQ(link_.GetDefinitionTable(-2500000), 1);  // 2.5 -> 2, link 10
  EXPECT_EQ(link_.GetDefinitionTable(-3500000), 3);  // 3.5 -> 4, link 30
  EXPECT_EQ(link_.GetDefinitionTable(-4500000), 3);  // 4.5 -> 4
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(link_.GetDefinitionTable(-9000000), 0);
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 0"));
}

TEST_P(SearchLinksTest, LookUpsAfterInitListsNeverReadTheSearchLinksAgain) {
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);  // the two caches, once each
  RecordingListControl list;
  Variant many;
  for (int round = 0; round < 3; ++round) {
    Get(10);
    link_.GetDescription(-3000012, 1);
    link_.FillComboWithOptions(list, 30);
    link_.FillWithMultiListOptions(20, list);
    link_.GetDefinitionTable(-7000001);
    link_.GetSrchlinkControlType(31, many);
  }
  EXPECT_GT(Selects().size(), 10u);
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);

  // The cache is what InitLists read: a new link is seen after the next one.
  AddSearchLink(50, 3, "Description", "NULL", "NULL");
  EXPECT_EQ(Get(50).window, 0);
  Reload();
  EXPECT_EQ(Get(50).table_name, "Allergies");
  EXPECT_THAT(Messages(), ElementsAre("Problem in SearchLinkID 50"));
}

}  // namespace
}  // namespace kelvary::testing
