// The look-up subsystems built on their own, over a fake service port: what
// they ask of the service object (reads, on which data source, with which
// text) and what they make of the answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kelvary/lookups/ListFilling.h"
#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/SearchLinks.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/platform/Error.h"
#include "support/FakeServicePort.h"
#include "support/MessageRecorder.h"
#include "support/RecordingListControl.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class LookupsAlone : public ::testing::Test {
 protected:
  void SetUp() override {
    system_.RunFile("system_schema.sql");
    system_.Run(
        "INSERT INTO DataTables (ID, ValuesTable, NewRecordScreenID, TableLocation) VALUES "
        "(1, 'Cities', 5, 1), (2, 'patients', NULL, 1);"
        "INSERT INTO FillNSearchLinks (ID, SearchTable, SearchDisplayField, SearchValueField, "
        "SearchWnd, LargeNumberOFEntries) VALUES (10, 1, 'Description', 'ID', 110, TRUE), "
        "(11, 2, 'LastName', 'ID', NULL, NULL);");
    main_.RunFile("main_schema.sql");
    main_.Run(
        "INSERT INTO Cities (ID, Description, ParentID) VALUES (1, 'Westfield', 0), (2, 'Harbour', "
        "0);"
        "INSERT INTO patients (ID, FirstName, MiddleName, LastName) VALUES "
        "(1, 'John', NULL, 'Smith');");
    port_.databases[pdssystem] = system_.Connection();
    port_.databases[pdsmaindata] = main_.Connection();
  }

  TestDatabase system_{"system.db"};
  TestDatabase main_{"main.db"};
  FakeServicePort port_;
  MessageRecorder messages_;
};

TEST_F(LookupsAlone, SearchLinksReadTheCacheOnceAndRaiseForColumnsThatDoNotConvert) {
  lookups::MetadataCache cache(port_);
  lookups::ValueLookups values(port_);
  lookups::SearchLinks links(port_, cache, values);
  cache.InitLists(true, true);
  ASSERT_THAT(port_.calls, SizeIs(2));  // search links and multi-selects; no data tables
  EXPECT_EQ(cache.DataTables(), nullptr);

  std::string display, value, table_name, sql, caption;
  int32_t table = 0;
  ProjectDataSources source = pdsRawData;
  bool many = false;
  int16_t screen = -1;
  for (int call = 0; call < 2; ++call) {
    EXPECT_EQ(links.GetSearchLinkDetails(10, display, value, table, table_name, source, sql,
                                         caption, &many, &screen, nullptr),
              110);
  }
  EXPECT_EQ(sql, "Select  Description , ID from Cities Order by Description");
  EXPECT_EQ(source, pdsmaindata);
  EXPECT_TRUE(many);
  EXPECT_EQ(screen, 5);  // the table's screen, the link having none
  EXPECT_EQ(links.GetDescription(10, 2, std::nullopt), "Harbour");
  EXPECT_THAT(port_.calls, SizeIs(3));  // only the description's read

  // A Null window is read as the call always read it: the fields before it
  // are filled, then Null raises.
  try {
    links.GetSearchLinkDetails(11, display, value, table, table_name, source, sql, caption, nullptr,
                               nullptr, nullptr);
    ADD_FAILURE() << "Invalid use of Null was expected";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), kErrInvalidUseOfNull);
  }
  EXPECT_EQ(display, "LastName");
  EXPECT_EQ(table_name, "patients");
  EXPECT_EQ(links.GetSearchLinkDetails(12, display, value, table, table_name, source, sql, caption,
                                       nullptr, nullptr, nullptr),
            0);
  EXPECT_EQ(messages_.Texts(), std::vector<std::string>{"Problem in SearchLinkID 12"});
}

TEST_F(LookupsAlone, TheDataTablesAndTableKeysLoadOnlyInTheModesThatUseThem) {
  lookups::MetadataCache cache(port_);
  port_.settings.GenCodeMethod = cgmDynamicTables;
  cache.InitLists(false, false);
  ASSERT_NE(cache.DataTables(), nullptr);
  EXPECT_EQ(CLng(*cache.TableKey("CITIES")), 0);
  EXPECT_FALSE(cache.MoveToDataTableRow("Cities"));  // found by name, its ID remembered
  EXPECT_EQ(CLng(*cache.TableKey("Cities")), 1);
  EXPECT_TRUE(cache.MoveToDataTableRow("Cities"));

  port_.settings.GenCodeMethod = cgmMaxCollection;  // loads the keys, keeps no recordset
  cache.InitLists(false, false);
  EXPECT_EQ(cache.DataTables(), nullptr);
  EXPECT_EQ(cache.FindTableKey("absent"), nullptr);
  EXPECT_THROW(cache.MoveToDataTableRow("Cities"), Error);
}

TEST_F(LookupsAlone, ValueLookUpsSendTheirStatementsToTheSourceTheyAreGiven) {
  lookups::ValueLookups values(port_);
  port_.databases.erase(pdsmaindata);  // nothing found, everything still asked
  EXPECT_TRUE(
      values.GetCorrespondingValue(5, "Cities", "Description", "ID", pdsmaindata, "").IsEmpty());
  EXPECT_TRUE(values
                  .GetCorrespondingValue(5, "", "Description", "ID", pdsmaindata,
                                         "Select Description from Cities where ParentID = 0")
                  .IsEmpty());
  EXPECT_EQ(
      values.GetDescriptionFromCode(5, "", "Description", "ID", pdsmaindata,
                                    "Select Description from Cities", std::nullopt, std::nullopt),
      "");
  EXPECT_THAT(port_.calls,
              ElementsAre("read 1: Select  Description from Cities where (ID = 5)",
                          "read 1: Select Description from Cities where ParentID = 0 AND ( ID "
                          "= 5 ) ",
                          "read 1: Select Description from Cities where ( ID = 5 ) "));

  port_.databases[pdsmaindata] = main_.Connection();
  port_.settings.ORDERFIELD1 = "LastName";
  port_.settings.ORDERFIELD3 = "FirstName";
  EXPECT_EQ(CStr(values.GetCoreName(1, "patients", int16_t{1})), "Smith  John");
  EXPECT_EQ(values.GetTableIDFromName("patients"), 2);
}

TEST_F(LookupsAlone, ListsAreFilledFromTheStatementsTheSearchLinksGive) {
  lookups::MetadataCache cache(port_);
  lookups::ValueLookups values(port_);
  lookups::SearchLinks links(port_, cache, values);
  lookups::ListFilling lists(port_, links);
  cache.InitLists(true, true);
  RecordingListControl list;
  list.Tag("host");
  lists.FillComboWithOptions(list, 10);
  EXPECT_THAT(list.ItemTexts(), ElementsAre("Harbour", "Westfield"));
  EXPECT_EQ(list.Tag(), "host");
  EXPECT_EQ(port_.calls.back(),
            "read 1: Select  Description , ID from Cities  Order by  Description");
}

}  // namespace
}  // namespace kelvary::testing
