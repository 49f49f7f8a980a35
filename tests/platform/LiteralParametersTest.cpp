// Comparison values taken out of a SELECT's text as parameters: which are
// taken, which are left, and that the rows do not change.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/internal/drivers/sqlite/LiteralParameters.h"

namespace kelvary::testing {
namespace {

using sqlite::ParameterizeLiterals;

TEST(LiteralParameters, TakesComparisonValuesAfterWhereAndLeavesTheRest) {
  struct Case {
    const char* sql;
    const char* text;  // "" when nothing is taken
    std::vector<Variant> values;
  };
  const Case cases[] = {
      {"Select Name, ID from Small where ID = 42",
       "Select Name, ID from Small where ID = ?",
       {Variant(int32_t{42})}},
      {"SELECT a FROM t WHERE b='O''Brien' AND c<>2.5 AND d>=5000000000",
       "SELECT a FROM t WHERE b=? AND c<>? AND d>=?",
       {Variant("O'Brien"), Variant(2.5), Variant(int64_t{5000000000})}},
      {"SELECT a FROM t WHERE a IN (SELECT b FROM u WHERE c != 'x') AND d == 1e3",
       "SELECT a FROM t WHERE a IN (SELECT b FROM u WHERE c != ?) AND d == ?",
       {Variant("x"), Variant(1000.0)}},
      // The select list names columns; LIMIT, ORDER BY, LIKE, negative
      // numbers, #dates#, names and text in comments stay as written.
      {"SELECT a = 1, (SELECT 2 WHERE 3 = 3) FROM t", "", {}},
      {"SELECT a FROM t WHERE b LIKE 'x*' AND c = -1 AND d = #03/05/2024# ORDER BY 1 LIMIT 5",
       "",
       {}},
      {"SELECT a FROM t WHERE b = [c] AND d = \"e\" -- AND f = 1\n", "", {}},
      {"SELECT a FROM t WHERE b = 0x10 OR c = 1abc", "", {}},
      // Not a SELECT, parameters of its own, or a literal not closed.
      {"UPDATE t SET a = 1 WHERE b = 2", "", {}},
      {"SELECT a FROM t WHERE b = ? AND c = 1", "", {}},
      {"SELECT a FROM t WHERE b = :b AND c = 1", "", {}},
      {"SELECT a FROM t WHERE b = 'open", "", {}},
  };
  for (const Case& c : cases) {
    const auto taken = ParameterizeLiterals(c.sql);
    if (std::string(c.text).empty()) {
      EXPECT_FALSE(taken) << c.sql << " became " << taken->text;
      continue;
    }
    ASSERT_TRUE(taken) << c.sql;
    EXPECT_EQ(taken->text, c.text);
    ASSERT_EQ(taken->values.size(), c.values.size()) << c.sql;
    for (size_t i = 0; i < c.values.size(); ++i) {
      EXPECT_EQ(taken->values[i].Type(), c.values[i].Type()) << c.sql << " value " << i;
      EXPECT_EQ(taken->values[i], c.values[i]) << c.sql << " value " << i;
    }
  }
}

TEST(LiteralParameters, StatementsThatDifferInTheirValuesReadTheRowsTheirTextsName) {
  TestDatabase db;
  db.Run(
      "CREATE TABLE t (ID INTEGER PRIMARY KEY, Code TEXT, Amount DOUBLE, Born DATE);"
      "INSERT INTO t VALUES (1, 'a', 1.5, '2020-01-02'), (2, '2', 2, '2021-03-04'),"
      " (3, 'O''Brien', NULL, NULL);");
  auto c = db.Connection();
  const std::pair<const char*, const char*> cases[] = {
      {"SELECT ID FROM t WHERE ID = 2", "2"},
      {"SELECT ID FROM t WHERE ID = 3", "3"},
      {"SELECT ID FROM t WHERE ID = '1'", "1"},  // text compared with a number column
      {"SELECT ID FROM t WHERE Code = 2", "2"},  // a number compared with a text column
      {"SELECT ID FROM t WHERE Code = 'O''Brien'", "3"},
      {"SELECT ID FROM t WHERE Amount >= 1.75", "2"},
      {"SELECT ID FROM t WHERE Born = #03/04/2021#", "2"},
      {"SELECT ID FROM t WHERE Amount = 2 AND Code = 'a'", ""},
  };
  for (const auto& [sql, ids] : cases) {
    auto rs = OpenRecordset(c, sql);
    EXPECT_EQ(Ids(*rs), ids) << sql;
  }
}

}  // namespace
}  // namespace kelvary::testing
