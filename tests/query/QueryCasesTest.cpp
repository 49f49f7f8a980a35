// Runs every case of tests/query/cases/ (the format is in cases/README.md) on
// every backend: a stored definition in a real database becomes its exact
// statement, condition texts and, for one-level queries, the demo practice's
// rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "DemoPractice.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary::testing {
namespace {

using Table = std::vector<std::vector<std::string>>;

struct QueryCase {
  std::string name, purpose, definition;
  std::vector<std::string> host, messages;
  std::optional<std::string> statement;
  std::optional<std::vector<std::string>> conditions;  // one per root group
  std::optional<Table> rows;                           // the header line first
};

std::string Trim(const std::string& s) {
  const size_t first = s.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return s.substr(first, s.find_last_not_of(" \t\r") - first + 1);
}

// A quoted line: "text" with "" standing for one quote. The quotes keep
// leading and trailing blanks visible.
std::string Unquote(const std::string& line, const std::string& where) {
  const std::string t = Trim(line);
  if (t.size() < 2 || t.front() != '"' || t.back() != '"')
    throw std::runtime_error(where + ": expected a quoted line");
  std::string out;
  for (size_t i = 1; i + 1 < t.size(); ++i) {
    if (t[i] == '"' && i + 2 < t.size() && t[i + 1] == '"') ++i;
    out += t[i];
  }
  return out;
}

std::vector<std::string> SplitCells(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, '|');)
    cells.push_back(Trim(cell));
  if (!line.empty() && line.back() == '|') cells.push_back("");  // an empty last cell
  return cells;
}

// ReadQueryCase reads a case as it reads in a dialect: for the Oracle dialect
// a section's variant ([statement oracle]) stands in for the section, for any
// other the variants are passed over.
QueryCase ReadQueryCase(const std::string& path, StdDBTypes dialect) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot read " + path);
  QueryCase c;
  c.name = std::filesystem::path(path).stem().string();
  std::string section, line;
  for (int number = 1; std::getline(in, line); ++number) {
    const std::string where = path + ":" + std::to_string(number), t = Trim(line);
    if (t.size() > 1 && t.front() == '[' && t.back() == ']') {
      section = t.substr(1, t.size() - 2);
      if (const size_t blank = section.find(' '); blank != std::string::npos) {
        if (section.substr(blank + 1) != "oracle")
          throw std::runtime_error(where + ": no such variant");
        section = dialect == sdbOracle ? section.substr(0, blank) : "other dialect";
      }
      // A section, or its variant, replaces what came before it.
      if (section == "host") c.host.clear();
      if (section == "statement") c.statement.emplace();
      if (section == "conditions") c.conditions.emplace();
      if (section == "rows") c.rows.emplace();
    } else if (section == "definition") {
      c.definition += line + "\n";
    } else if (t.empty() || section == "other dialect") {
    } else if (t.front() == '#') {
      if (t.rfind("# purpose:", 0) == 0) c.purpose = Trim(t.substr(10));
    } else if (section == "host") {
      c.host.push_back(t);
    } else if (section == "statement") {
      *c.statement += Unquote(t, where);
    } else if (section == "conditions" && t.front() == '+' && !c.conditions->empty()) {
      c.conditions->back() += Unquote(t.substr(1), where);  // continues the line before
    } else if (section == "conditions") {
      c.conditions->push_back(Unquote(t, where));
    } else if (section == "messages") {
      c.messages.push_back(Unquote(t, where));
    } else if (section == "rows") {
      c.rows->push_back(SplitCells(t));
    } else {
      throw std::runtime_error(where + ": text outside a section");
    }
  }
  return c;
}

std::vector<std::string> QueryCaseFiles() {
  std::vector<std::string> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(KELVARY_SOURCE_DIR "/tests/query/cases"))
    if (entry.path().extension() == ".case") files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

// Apply carries out one host directive.
void Apply(QueryInterpretor& qi, const std::string& directive) {
  std::istringstream in(directive);
  std::string verb, word;
  in >> verb;
  if (verb == "load") {
    int32_t query = 0, template_id = 0;
    bool xtal = false;
    std::string rep_key;
    in >> query;
    while (in >> word) {
      if (word == "xtal") {
        xtal = true;
      } else if (word == "repkey") {
        in >> rep_key;
      } else {
        template_id = std::stoi(word);
      }
    }
    qi.InitSettings(rep_key, query, template_id, xtal);
  } else if (verb == "level") {
    std::string id;
    in >> id >> word;
    qi.ShapeNests()->Add(0, 1, word == "preexisting", std::stoi(id), "", "", "S" + id);
  } else if (verb == "where" || verb == "having" || verb == "sort") {
    in >> word;
    auto level = qi.ShapeNests()->Item("S" + word);
    std::getline(in, word);
    (verb == "where"    ? level->AssignedWhereClause
     : verb == "having" ? level->HavingList
                        : level->AssignedSortClause) = Unquote(word, directive);
  } else if (verb == "record") {
    int32_t table = 0, entry = 0, field = 0;
    in >> table >> entry >> field >> word;
    qi.AssignIDBasedWhereClause(table, entry, field, word);
  } else if (verb == "conditions") {
    // What a host does with the condition tree: each root group restricts
    // the level it is bound to.
    for (const auto& group : *qi.CurrentConditions()) {
      const std::string text = group->ParentGroupId == 0 ? qi.GetConditionString(group) : "";
      if (text.empty()) continue;
      auto level = qi.ShapeNests()->Item("S" + std::to_string(group->NestedBinding));
      std::string& where = level->AssignedWhereClause;
      where = where.empty() ? text : where + " AND " + text;
    }
  } else {
    FAIL() << "unknown directive " << verb;
  }
}

// AsTypedDate: a cell that SQLite gave as a date's stored ISO text (a MIN
// or MAX of a date column), as the date's own text; any other cell as it is.
std::string AsTypedDate(const std::string& cell) {
  static const std::regex iso(R"(\d{4}-\d{2}-\d{2}( \d{2}:\d{2}:\d{2})?)");
  return std::regex_match(cell, iso) ? TextOf(Variant(CDate(Variant(cell)))) : cell;
}

std::string Show(const Table& rows) {
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

  if (c.conditions) {
    std::vector<std::string> texts;
    for (const auto& group : *qi.CurrentConditions())
      if (group->ParentGroupId == 0) texts.push_back(qi.GetConditionString(group));
    EXPECT_EQ(texts, *c.conditions);
  }
  if (c.statement) {
    qi.EncodeSQLStmt();
    EXPECT_EQ(qi.FinalSQLStmt, *c.statement);
  }
  if (c.rows) {
    std::shared_ptr<Recordset> rs;
    EXPECT_EQ(qi.AssignRecordSet(rs), c.rows->size() > 1);
    ASSERT_TRUE(rs && rs->State() == adStateOpen) << "statement: " << qi.FinalSQLStmt;
    Table rows(1), expected = *c.rows;
    for (int32_t i = 0; i < rs->FieldCount(); ++i)
      rows[0].push_back(rs->Fields(i).Name());
    for (std::string& name : expected[0])
      name = Traits().Name(name);
    for (; !rs->Eof(); rs->MoveNext()) {
      rows.emplace_back();
      for (int32_t i = 0; i < rs->FieldCount(); ++i) {
        const Variant v = rs->Fields(i).Value();
        rows.back().push_back(v.IsNull() ? "Null" : TextOf(v));
      }
    }
    // The cases' rows are written as SQLite reads them.
    for (auto row = expected.begin() + 1; Traits().typed_aggregates && row != expected.end(); ++row)
      for (std::string& cell : *row)
        cell = AsTypedDate(cell);
    static const std::regex order_by("order\\s+by", std::regex::icase);
    if (!Traits().keeps_table_order && !std::regex_search(qi.FinalSQLStmt, order_by)) {
      std::sort(rows.begin() + 1, rows.end());
      std::sort(expected.begin() + 1, expected.end());
    }
    EXPECT_EQ(Show(rows), Show(expected)) << "statement: " << qi.FinalSQLStmt;
  }
  EXPECT_EQ(messages.Texts(), c.messages);
}

// CaseName: the backend, then the file's stem ("PostgreSQL_conditions_tree").
std::string CaseName(const ::testing::TestParamInfo<QueryCaseTest::ParamType>& info) {
  std::string name = std::filesystem::path(std::get<1>(info.param)).stem().string();
  for (char& ch : name)
    if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
  return std::get<0>(info.param)->Traits().name + "_" + name;
}

INSTANTIATE_TEST_SUITE_P(Cases, QueryCaseTest,
                         ::testing::Combine(::testing::ValuesIn(Backends()),
                                            ::testing::ValuesIn(QueryCaseFiles())),
                         CaseName);

}  // namespace
}  // namespace kelvary::testing
