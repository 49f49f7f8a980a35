// Runs every case of tests/query/cases/ on every backend: a stored
// definition in a real database becomes its exact statement, condition
// texts and, for one-level queries, the demo practice's rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "DemoPractice.h"
#include "QueryCase.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary::testing {
namespace {

int32_t Number(const std::string& text) {
  return static_cast<int32_t>(std::stol(text));
}

std::shared_ptr<QueryShapeNest> Level(QueryInterpretor& qi, const std::string& id) {
  return qi.ShapeNests()->Item("S" + id);
}

// Apply carries out one host directive (see cases/README.md).
void Apply(QueryInterpretor& qi, const std::vector<std::string>& d) {
  const std::string& verb = d.at(0);
  if (verb == "load") {
    int32_t template_id = 0;
    bool xtal = false;
    std::string rep_key;
    for (size_t i = 2; i < d.size(); ++i) {
      if (d[i] == "xtal") {
        xtal = true;
      } else if (d[i] == "repkey") {
        rep_key = d.at(++i);
      } else {
        template_id = Number(d[i]);
      }
    }
    qi.InitSettings(rep_key, Number(d.at(1)), template_id, xtal);
  } else if (verb == "level") {
    const bool preexisting = d.size() > 2 && d[2] == "preexisting";
    qi.ShapeNests()->Add(0, 1, preexisting, Number(d.at(1)), "", "", "S" + d.at(1));
  } else if (verb == "where") {
    Level(qi, d.at(1))->AssignedWhereClause = d.at(2);
  } else if (verb == "having") {
    Level(qi, d.at(1))->HavingList = d.at(2);
  } else if (verb == "sort") {
    Level(qi, d.at(1))->AssignedSortClause = d.at(2);
  } else if (verb == "record") {
    qi.AssignIDBasedWhereClause(Number(d.at(1)), Number(d.at(2)), Number(d.at(3)),
                                d.size() > 4 ? d[4] : "");
  } else if (verb == "conditions") {
    // What a host does with the condition tree: each root group restricts
    // the level it is bound to.
    for (const auto& group : *qi.CurrentConditions()) {
      if (group->ParentGroupId != 0) continue;
      const std::string text = qi.GetConditionString(group);
      if (text.empty()) continue;
      auto level = Level(qi, std::to_string(group->NestedBinding));
      level->AssignedWhereClause =
          level->AssignedWhereClause.empty() ? text : level->AssignedWhereClause + " AND " + text;
    }
  } else {
    FAIL() << "unknown directive " << verb;
  }
}

std::string CellText(const Variant& v) {
  return v.IsNull() ? "Null" : TextOf(v);
}

// AsTypedDate: a cell that SQLite gave as a date's stored ISO text (a MIN
// or MAX of a date column), as the date's own text; any other cell as it is.
std::string AsTypedDate(const std::string& cell) {
  static const std::regex iso(R"(\d{4}-\d{2}-\d{2}( \d{2}:\d{2}:\d{2})?)");
  return std::regex_match(cell, iso) ? TextOf(Variant(CDate(Variant(cell)))) : cell;
}

bool HasOrderBy(const std::string& sql) {
  static const std::regex order_by("order\\s+by", std::regex::icase);
  return std::regex_search(sql, order_by);
}

std::string Show(const std::vector<std::vector<std::string>>& rows) {
  std::ostringstream out;
  for (const auto& row : rows) {
    for (size_t i = 0; i < row.size(); ++i)
      out << (i ? " | " : "") << row[i];
    out << "\n";
  }
  return out.str();
}

class QueryCaseTest : public ::testing::TestWithParam<std::tuple<const Backend*, std::string>> {
 protected:
  void SetUp() override {
    const std::string why = TheBackend().SkipReason();
    if (!why.empty()) GTEST_SKIP() << why;
  }
  const Backend& TheBackend() const { return *std::get<0>(GetParam()); }
  const BackendTraits& Traits() const { return TheBackend().Traits(); }
};

TEST_P(QueryCaseTest, ProducesItsStatementAndRows) {
  const QueryCase c = ReadQueryCase(std::get<1>(GetParam()), Traits().main_db_type);
  SCOPED_TRACE(c.name + ": " + c.purpose);
  DemoPractice practice(TheBackend(), c.definition);
  MessageRecorder messages;
  QueryInterpretor qi;
  for (const auto& directive : c.host)
    Apply(qi, directive);

  if (c.has_conditions) {
    std::vector<std::string> texts;
    for (const auto& group : *qi.CurrentConditions()) {
      if (group->ParentGroupId == 0) texts.push_back(qi.GetConditionString(group));
    }
    EXPECT_EQ(texts, c.conditions);
  }
  if (c.has_statement) {
    qi.EncodeSQLStmt();
    EXPECT_EQ(qi.FinalSQLStmt, c.statement);
  }
  if (c.has_rows) {
    std::shared_ptr<Recordset> rs;
    const bool opened = qi.AssignRecordSet(rs);
    EXPECT_EQ(opened, !c.rows.empty());
    ASSERT_TRUE(rs && rs->State() == adStateOpen) << "statement: " << qi.FinalSQLStmt;
    std::vector<std::string> columns;
    for (int32_t i = 0; i < rs->FieldCount(); ++i)
      columns.push_back(rs->Fields(i).Name());
    std::vector<std::string> expected_columns;
    for (const std::string& name : c.columns)
      expected_columns.push_back(Traits().Name(name));
    EXPECT_EQ(columns, expected_columns);
    std::vector<std::vector<std::string>> rows;
    for (; !rs->Eof(); rs->MoveNext()) {
      std::vector<std::string> row;
      for (int32_t i = 0; i < rs->FieldCount(); ++i)
        row.push_back(CellText(rs->Fields(i).Value()));
      rows.push_back(std::move(row));
    }
    // The cases' rows are written as SQLite reads them.
    std::vector<std::vector<std::string>> expected = c.rows;
    if (Traits().typed_aggregates) {
      for (auto& row : expected) {
        for (std::string& cell : row)
          cell = AsTypedDate(cell);
      }
    }
    if (!Traits().keeps_table_order && !HasOrderBy(qi.FinalSQLStmt)) {
      std::sort(rows.begin(), rows.end());
      std::sort(expected.begin(), expected.end());
    }
    EXPECT_EQ(Show(rows), Show(expected)) << "statement: " << qi.FinalSQLStmt;
  }
  EXPECT_EQ(messages.Texts(), c.messages);
}

// CaseName: the backend, then the file's stem ("PostgreSQL_conditions_tree").
std::string CaseName(const ::testing::TestParamInfo<QueryCaseTest::ParamType>& info) {
  std::string name = std::filesystem::path(std::get<1>(info.param)).stem().string();
  for (char& ch : name) {
    if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
  }
  return std::get<0>(info.param)->Traits().name + "_" + name;
}

INSTANTIATE_TEST_SUITE_P(Cases, QueryCaseTest,
                         ::testing::Combine(::testing::ValuesIn(Backends()),
                                            ::testing::ValuesIn(QueryCaseFiles(
                                                KELVARY_SOURCE_DIR "/tests/query/cases"))),
                         CaseName);

}  // namespace
}  // namespace kelvary::testing
