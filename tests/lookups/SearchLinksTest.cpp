#include "LookupsFixture.h"
#include "kelvary/lookups/internal/MetadataIndex.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

using lookups::MetadataIndex;

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
  // Cities (table 1) has new-entry screen 5, patients (2) none; the link's
  // own screen wins when above 0.
  AddSearchLink(41, 1, "Description", "NULL", "NULL", "0");
  AddSearchLink(42, 1, "Description", "NULL", "NULL", "7");
  AddSearchLink(43, 2, "FirstName", "NULL", "NULL", "NULL");
  AddSearchLink(44, 1, "Description", "NULL", "NULL", "-3");
  Reload();
  const Details d = Get(10);
  EXPECT_EQ(d.window, 110);
  EXPECT_EQ(d.display + d.value + d.table_name + d.caption + d.secondary,
            "DescriptionIDCitiesChoose 10");
  EXPECT_EQ(d.table, 1);
  EXPECT_EQ(d.source, pdsmaindata);
  EXPECT_FALSE(d.many);  // Null reads as False
  EXPECT_EQ(d.sql, "Select  Description , ID from Cities Order by Description");
  EXPECT_EQ(Get(11).source, pdssystem);  // the table's location
  EXPECT_EQ(Get(11).secondary, "LastName");
  EXPECT_TRUE(Get(20).many);
  for (const auto& [id, screen] :
       std::vector<std::pair<int, int>>{{10, 5}, {41, 5}, {42, 7}, {43, 0}, {44, 5}})
    EXPECT_EQ(Get(id).screen, screen) << "link " << id;
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
}

TEST_P(SearchLinksTest, DescriptionsOfCodesPersonsAndMultiSelectValues) {
  EXPECT_EQ(link_.GetDescription(10, 5), "Eastbank");
  EXPECT_EQ(link_.GetDescription(10, 99), "");
  // "%X" composes the name; the gaps stay around a missing middle name.
  EXPECT_EQ(link_.GetDescription(20, 1), "John    Smith");
  EXPECT_EQ(link_.GetDescription(20, 2, int16_t{3}), "Anna   Maria   Berg");
  // A multi-select value describes through its parent's link (20).
  EXPECT_EQ(link_.GetDescription(-7000099, 2), "Anna  Maria  Berg");
  ExpectMessages({});
  // A missing link is reported and leaves the out-arguments alone.
  const Details missing = Get(99);
  EXPECT_EQ(missing.window, 0);
  EXPECT_EQ(missing.display + missing.sql, "--");
  EXPECT_TRUE(missing.many);
  EXPECT_EQ(link_.GetDescription(99, 1), "");
  EXPECT_EQ(link_.GetDescription(-9000001, 1), "");
  ExpectMessages({"Problem in SearchLinkID 99", "Problem in GetDescription for SearchLinkID 99",
                  "Could not Locate MultiListID = 9",
                  "Problem in GetDescription for SearchLinkID -9000001"});
}

TEST_P(SearchLinksTest, ControlTypeFollowsTheSizeOfTheList) {
  // Multi-select values need no look-up: there is no multi-select 5.
  for (const auto& [id, type, large] :
       std::vector<std::tuple<int, ControlTypes, bool>>{{20, ctSearchWindow, true},
                                                        {10, ctDropDownList, false},
                                                        {-5000001, ctSearchWindow, true}}) {
    Variant many;
    EXPECT_EQ(link_.GetSrchlinkControlType(id, many), type) << "link " << id;
    EXPECT_EQ(many, Variant(large)) << "link " << id;
  }
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
  EXPECT_EQ(link_.GetDefinitionTable(-9000000), 0);
  ExpectMessages({"Problem in SearchLinkID 0"});
}

TEST_P(SearchLinksTest, LookUpsAfterInitListsNeverReadTheSearchLinksAgain) {
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);  // the two caches, once each
  RecordingListControl list;
  Variant many;
  const size_t before = Selects().size();
  Get(10);
  link_.GetDescription(-3000012, 1);
  link_.FillComboWithOptions(list, 30);
  link_.FillWithMultiListOptions(20, list);
  link_.GetDefinitionTable(-7000001);
  link_.GetSrchlinkControlType(31, many);
  EXPECT_GT(Selects().size(), before);
  EXPECT_EQ(SelectsMentioning("FillNSearchLinks"), 2);

  // The cache is what InitLists read: a new link is seen after the next one.
  AddSearchLink(50, 3, "Description", "NULL", "NULL");
  EXPECT_EQ(Get(50).window, 0);
  Reload();
  EXPECT_EQ(Get(50).table_name, "Allergies");
  ExpectMessages({"Problem in SearchLinkID 50"});
}

// The index answers as a forward find on the cache from its first row:
// the first row with the ID wins, Null never matches, text that reads as
// the number does. Rows are told apart by their caption.
TEST(MetadataIndexTest, TheFirstRowWithTheIdWinsAndNullNeverMatches) {
  TestDatabase db;
  db.Run(
      "CREATE TABLE Links (ID, SLDefNewScreen, SecondaryDisplayField, SQLStmt, SearchValueField, "
      "SearchDisplayField, SelectCaption, LargeNumberOFEntries, SearchWhereClause, SearchTable, "
      "SearchWnd, ValuesTable, DTDefNewScreenID, TableLocation);"
      "INSERT INTO Links (ID, SelectCaption, SQLStmt) VALUES (5, 'first five', NULL), "
      "(5, 'second five', 'x'), (NULL, 'no id', 'x'), ('7', 'text seven', 'x'), "
      "(2.5, 'a fraction', 'x'), (-3, 'negative', 'x');"
      "CREATE TABLE Multis (ParentSearchLinkID, SearchLinkID, StoreTableID, StoreTableName, ID, "
      "DescriptionTable, ParentTableID, ParentSrchWnd, ParentTableName);"
      "INSERT INTO Multis (ID, DescriptionTable, StoreTableName) VALUES (NULL, 'no id', 'S'), "
      "(3, 'first three', NULL), (3, 'second three', 'S')");
  auto links = std::make_shared<Recordset>();
  links->Open("SELECT * FROM Links ORDER BY rowid", db.Connection());
  auto multis = std::make_shared<Recordset>();
  multis->Open("SELECT * FROM Multis ORDER BY rowid", db.Connection());
  const MetadataIndex index(links, multis);

  EXPECT_EQ(index.SearchLinkCount(), 6);
  ASSERT_NE(index.FindSearchLink(5), nullptr);
  EXPECT_EQ(index.FindSearchLink(5)->SelectCaption, "first five");
  EXPECT_EQ(index.FindSearchLink(5)->SQLStmt, "");  // Null text reads as ""
  ASSERT_NE(index.FindSearchLink(7), nullptr);
  EXPECT_EQ(index.FindSearchLink(7)->SelectCaption, "text seven");
  ASSERT_NE(index.FindSearchLink(-3), nullptr);
  EXPECT_EQ(index.FindSearchLink(2), nullptr);
  EXPECT_EQ(index.FindSearchLink(3), nullptr);
  EXPECT_EQ(index.FindSearchLink(0), nullptr);

  EXPECT_EQ(index.MultiSelectCount(), 3);
  ASSERT_NE(index.FindMultiSelect(3), nullptr);
  EXPECT_EQ(index.FindMultiSelect(3)->DescriptionTable, "first three");
  EXPECT_TRUE(index.FindMultiSelect(3)->StoreTableName.IsNull());  // Null-ness kept
  EXPECT_EQ(index.FindMultiSelect(0), nullptr);
  EXPECT_EQ(index.MultiSelects()[0].DescriptionTable, "no id");  // cache order kept
}

TEST(MetadataIndexTest, CachesNeverLoadedOrClosedHoldNothing) {
  const MetadataIndex never(nullptr, std::make_shared<Recordset>());
  EXPECT_EQ(never.SearchLinkCount(), 0);
  EXPECT_EQ(never.MultiSelectCount(), 0);
  EXPECT_EQ(never.FindSearchLink(1), nullptr);
}

}  // namespace
}  // namespace kelvary::testing
