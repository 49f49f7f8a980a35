// A stored definition in the demo practice's real databases, on every
// backend: what InitSettings loads from it, and (the cases in cases/, whose
// format is in cases/README.md) the exact statement, condition texts and,
// for one-level queries, rows it becomes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary::testing {
namespace {

// DemoPractice: the demo practice in two fresh databases of a backend (data/
// schema and demo rows, plus a test's own definition rows run on the system
// database), and a service object set to the backend's dialect, connected to
// them by their data-source names (the files' paths for SQLite) and made the
// active one. One per test.
class DemoPractice {
 public:
  explicit DemoPractice(const Backend& backend, const std::string& extra_system_sql = "")
      : system_(backend.NewDatabase("system.db")), main_(backend.NewDatabase("main.db")) {
    system_.RunFile("system_schema.sql");
    system_.RunFile("demo_system.sql");
    if (!extra_system_sql.empty()) system_.Run(extra_system_sql);
    main_.RunFile("main_schema.sql");
    main_.RunFile("demo_main.sql");
    link_.MainDBType = backend.Traits().main_db_type;
    std::shared_ptr<Connection> main_xion, system_xion;
    if (!link_.ConnectDefault(main_xion, system_xion, main_.DataSource(), system_.DataSource()))
      throw std::runtime_error("cannot connect to the demo practice");
  }

 private:
  BackendDatabase system_, main_;
  InfoLink link_;
};

using ::testing::ElementsAre;

using AssignRecordSet = BackendTest;
KELVARY_ON_EVERY_BACKEND(AssignRecordSet);
using InitSettings = BackendTest;
KELVARY_ON_EVERY_BACKEND(InitSettings);
using IsSimpleTemplate = BackendTest;
KELVARY_ON_EVERY_BACKEND(IsSimpleTemplate);
using LoadTemplateConditions = BackendTest;
KELVARY_ON_EVERY_BACKEND(LoadTemplateConditions);

TEST_P(InitSettings, MissingOrUnknownQueryShowsItsMessage) {
  DemoPractice practice(TheBackend());
  MessageRecorder messages;

  // No code: nothing is read, not even the valid template; the parameter
  // string is kept as given.
  QueryInterpretor none;
  none.InitSettings("  a;b='c'  ", 0, 1, true);
  EXPECT_THAT(messages.Texts(), ElementsAre("No Query specified"));
  EXPECT_EQ(none.TemplateDescription, "");
  EXPECT_EQ(none.RepKey, "  a;b='c'  ");

  // Unknown code: the message, then the template is read regardless.
  messages.Clear();
  QueryInterpretor unknown;
  unknown.InitSettings("", 999, 2, false);
  EXPECT_THAT(messages.Texts(), ElementsAre("Query ID 999 not found"));
  EXPECT_EQ(unknown.TemplateDescription, "Visits of patients with a given name");
  EXPECT_EQ(unknown.ShapeNests()->Count(), 0);
}

// A report query takes its template from XQueryTemplates (NULLs read as 0),
// any other from QueryTemplates, leaving the report template's fields as
// they were; a query that is not built reads no levels or conditions.
TEST_P(InitSettings, ReadsTheQueryRowAndItsTemplate) {
  DemoPractice practice(TheBackend());
  QueryInterpretor users;
  users.InitSettings("", 9, 0, false);
  EXPECT_EQ(users.RawSQL, "");  // NULL text reads as ""

  QueryInterpretor monthly;  // supplier 3, set NULL
  monthly.TemplateSet = 7;
  monthly.InitSettings("", 8, 1, false);
  EXPECT_EQ(monthly.TemplateDescription, "Monthly invoice report");
  EXPECT_EQ(monthly.TemplateSupplier, 3);
  EXPECT_EQ(monthly.TemplateSet, 0);
  QueryInterpretor unpaid;  // supplier NULL, set 4
  unpaid.InitSettings("", 8, 2, false);
  EXPECT_EQ(unpaid.TemplateSupplier, 0);
  EXPECT_EQ(unpaid.TemplateSet, 4);

  QueryInterpretor built;
  built.TemplateSupplier = 5;
  built.InitSettings("", 1, 1, false);
  EXPECT_EQ(built.TemplateDescription, "Patients by name, city, insurance and age");
  EXPECT_EQ(built.TemplateSupplier, 5);

  // Query 6 has a level row for its marker, and template 1 has groups and
  // parameters.
  QueryInterpretor direct;
  direct.InitSettings("", 6, 1, false);
  EXPECT_EQ(direct.TemplateDescription, "Patients by name, city, insurance and age");
  EXPECT_EQ(direct.ShapeNests()->Count(), 0);
  EXPECT_EQ(direct.CurrentConditions()->Count(), 0);
  EXPECT_FALSE(direct.AreThereAnyParameters(false));
}

TEST_P(IsSimpleTemplate, OnlyTheMarkerOneCounts) {
  DemoPractice practice(
      TheBackend(),
      "INSERT INTO XQueryTemplates (ID, QueryID, Description, SimpleQueryTemplateID) VALUES "
      "(10, 8, 'zero', 0), (11, 8, 'null', NULL), (12, 8, 'one again', 1)");
  const std::vector<std::pair<int32_t, bool>> expected = {{1, true},   {2, false}, {10, false},
                                                          {11, false}, {12, true}, {99, false}};
  for (const auto& [template_id, simple] : expected) {
    QueryInterpretor qi;
    qi.TemplateId = template_id;
    EXPECT_EQ(qi.IsSimpleTemplate(), simple) << "template " << template_id;
  }
}

// The host's fields of template 1's parameters, and its sort options (the
// condition texts are checked by the cases in cases/).
TEST_P(LoadTemplateConditions, GroupsParametersAndSortOptions) {
  DemoPractice practice(TheBackend());
  QueryInterpretor qi;
  qi.InitSettings("", 1, 1, false);
  const auto& params = qi.CurrentConditions()->Item("C1")->ChildConditions();
  const auto& born = params->Item("R3");
  EXPECT_EQ(born->SUBOperator, drsUserSpecifiedDates);
  EXPECT_EQ(born->Value1, Variant("1950-01-01"));  // as stored: text
  EXPECT_FALSE(born->Essential);
  EXPECT_TRUE(born->Removable);
  EXPECT_EQ(born->CodeChar, "");  // kept for the host, not loaded

  EXPECT_EQ(params->Item("R1")->SUBOperator, 0);  // NULL leaves the default
  EXPECT_TRUE(params->Item("R2")->Essential);     // NULL keeps the True given at Add

  const auto& city = qi.CurrentConditions()->Item("C2")->ChildConditions()->Item("R4");
  EXPECT_EQ(city->SearchLinkID, 1);
  EXPECT_TRUE(city->Value2.IsEmpty());  // NULL leaves it Empty

  // Rows 1 and 6 are also sort options; their level is their group's.
  const auto& sorts = qi.TemplateSortOptions();
  ASSERT_EQ(sorts->Count(), 2);
  EXPECT_EQ(sorts->Item("S6")->SortOrder, 2);
  EXPECT_TRUE(sorts->Item("S6")->SortDescending);
  EXPECT_EQ(sorts->Item("S6")->ShapeNestBindings, 10);
  EXPECT_EQ(sorts->Item("S6")->ID, 0);
}

// The search and sort orders decide what a row is; a parameter on a field
// whose search link has no row never loads.
TEST_P(LoadTemplateConditions, WhatMakesAParameterOrASortOption) {
  DemoPractice practice(
      TheBackend(),
      "INSERT INTO QueryTemplates (ID, QueryID, Description) VALUES"
      " (100, 3, 'orders'), (101, 3, 'groups only'), (102, 3, 'unlinked');"
      "INSERT INTO QueryConditionGroups (ID, QueryTemplateID, NestedBinding) VALUES"
      " (100, 100, 31), (101, 101, 30), (102, 102, 30);"
      "UPDATE DataTableFields SET SearchLinkID = 77 WHERE ID = 104;"
      "INSERT INTO QueryTemplateParameters (ID, QueryConditionID, QueryDataTableID, DataFieldID,"
      " Operator, Essential, SearchOrder, SortOrder, SortDescending) VALUES"
      " (100, 100, 31, 203, 1, NULL, 0, 2, TRUE),"   // a sort option only
      " (101, 100, 31, 206, 2, NULL, 1, 1, FALSE),"  // both
      " (102, 100, 31, 204, 1, NULL, 0, 0, FALSE),"  // neither
      " (103, 102, 30, 104, 1, TRUE, 1, 0, FALSE)");
  QueryInterpretor orders;
  orders.InitSettings("", 3, 100, false);
  const auto& params = orders.CurrentConditions()->Item("C100")->ChildConditions();
  ASSERT_EQ(params->Count(), 1);
  EXPECT_EQ(params->Item(1)->ID, 101);
  const auto& sorts = orders.TemplateSortOptions();
  ASSERT_EQ(sorts->Count(), 2);
  EXPECT_EQ(sorts->Item("S100")->ShapeNestBindings, 31);
  EXPECT_EQ(sorts->Item("S101")->SortOrder, 1);
  // Rows were there, none of them essential; template 1's row 1 is.
  EXPECT_TRUE(orders.AreThereAnyParameters(false));
  EXPECT_FALSE(orders.AreThereAnyParameters(true));
  QueryInterpretor essential;
  essential.InitSettings("", 1, 1, false);
  EXPECT_TRUE(essential.AreThereAnyParameters(true));

  QueryInterpretor groups_only;
  groups_only.InitSettings("", 3, 101, false);
  EXPECT_EQ(groups_only.CurrentConditions()->Count(), 1);
  EXPECT_FALSE(groups_only.AreThereAnyParameters(false));

  QueryInterpretor unlinked;
  unlinked.InitSettings("", 3, 102, false);
  EXPECT_EQ(unlinked.CurrentConditions()->Item("C102")->ChildConditions()->Count(), 0);
  EXPECT_FALSE(unlinked.AreThereAnyParameters(false));
}

// Any other build method leaves the recordset as it was (a stored text
// without rows: cases/stored_text_without_rows.case).
TEST_P(AssignRecordSet, OpensOnlyStoredTextAndBuiltQueries) {
  DemoPractice practice(TheBackend(),
                        "INSERT INTO Queries (ID, Description, QueryBuildMethod, SqlStmt) VALUES"
                        " (120, 'standard', 7, 'Select ID From patients')");
  QueryInterpretor standard;
  standard.InitSettings("", 120, 0, false);
  auto untouched = std::make_shared<Recordset>();
  auto rs = untouched;
  EXPECT_FALSE(standard.AssignRecordSet(rs));
  EXPECT_EQ(rs, untouched);
  EXPECT_EQ(rs->State(), adStateClosed);
}

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
    static const std::regex order_by("order\\s+by", std::regex::icase);
    if (!Traits().keeps_table_order && !std::regex_search(qi.FinalSQLStmt, order_by)) {
      std::sort(rows.begin() + 1, rows.end());
      std::sort(expected.begin() + 1, expected.end());
    }
    EXPECT_EQ(rows, expected) << "statement: " << qi.FinalSQLStmt;
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
