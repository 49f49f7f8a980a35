// The definition loaders on their own, over a fake service port: each reads
// its table through the port it is given and leaves the interpreter as it
// was when the row is missing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kelvary/query/internal/DefinitionLoading.h"
#include "support/FakeServicePort.h"
#include "support/MessageRecorder.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

using namespace query_internal;
using ::testing::ElementsAre;
using ::testing::StartsWith;

TEST(DefinitionLoading, EachLoaderReadsItsTableThroughThePort) {
  TestDatabase system("system.db");
  system.RunFile("system_schema.sql");
  system.Run(
      "INSERT INTO Queries (ID, QueryBuildMethod, SqlStmt, DataSupplier, IsSystemData, "
      "NumNestedLevels) VALUES (4, 11, 'Select 1', 2, TRUE, 2);"
      "INSERT INTO XQueryTemplates (ID, Description, TemplateSupplier, TemplateSet) VALUES "
      "(6, 'Monthly', 3, NULL);"
      "INSERT INTO QueryShapeNests (ID, QueryId, BaseTableID, Depth, ParentShapeId, ShapeName) "
      "VALUES (21, 4, 1, 1, 0, 'top'), (22, 4, 2, 2, 21, 'child');");
  FakeServicePort port;
  MessageRecorder messages;

  QueryInterpretor query;
  query.QueryID = 5;
  EXPECT_FALSE(LoadQueryRow(port, query));  // no database: nothing found, nothing changed
  EXPECT_EQ(query.QueryBuildMethod, qbmAppDefined);
  EXPECT_THAT(port.calls, ElementsAre("read 2: Select * from Queries where ID = 5"));

  port.databases[pdssystem] = system.Connection();
  query.QueryID = 4;
  query.TemplateId = 6;
  ASSERT_TRUE(LoadQueryRow(port, query));
  EXPECT_EQ(query.QueryBuildMethod, qbmXtalReportQuery);
  EXPECT_EQ(query.RawSQL, "Select 1");
  EXPECT_EQ(query.DataSupplier, 2);
  EXPECT_TRUE(query.IsSystemData);
  EXPECT_EQ(query.NumNestedLevels, 2);

  // A report template: description from XQueryTemplates, its supplier, and
  // a Null set read as 0.
  query.TemplateSet = 9;
  LoadTemplateHeader(port, query, 6);
  EXPECT_EQ(query.TemplateDescription, "Monthly");
  EXPECT_EQ(query.TemplateSupplier, 3);
  EXPECT_EQ(query.TemplateSet, 0);

  LoadLevels(port, query);
  ASSERT_EQ(query.ShapeNests()->Count(), 2);
  EXPECT_TRUE(query.ShapeNests()->Item("S21")->bUseParentFieldLink);  // the parent is marked
  EXPECT_FALSE(query.ShapeNests()->Item("S22")->bUseParentFieldLink);
  EXPECT_THAT(port.calls.back(),
              StartsWith("read 2: Select * from QueryShapeNests where QueryId = 4"));
  EXPECT_EQ(messages.Texts(), std::vector<std::string>{});
}

}  // namespace
}  // namespace kelvary::testing
