#include "kelvary/lookups/MetadataIndex.h"

#include <gtest/gtest.h>

#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

using lookups::MetadataIndex;

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
