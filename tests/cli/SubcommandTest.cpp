// kelvary's commands over the service object (queries, lookup, clause, key,
// check) and the machine-readable forms of their output, read back with a
// standard JSON parser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "CliRun.h"

namespace kelvary::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Json = nlohmann::json;

class Subcommand : public DemoPractice {
 protected:
  // The command's JSON, parsed; a failed run or bad JSON fails the test.
  Json RunJson(const std::string& command, std::vector<std::string> args) const {
    args.insert(args.end(), {"--format", "json"});
    const CliRun run = Run(command, args);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    try {
      return Json::parse(run.out);
    } catch (const Json::exception& e) {
      ADD_FAILURE() << e.what() << "\n" << run.out;
      return Json();
    }
  }
};

TEST_F(Subcommand, QueriesListsEachQueryWithItsTemplates) {
  const Json rows = RunJson("queries", {})["queries"];
  ASSERT_EQ(rows.size(), 14u);  // 9 queries, 5 templates
  EXPECT_EQ(rows[0], Json::parse(R"({"Query": 1, "Template": null, "Name": "Patient list",
      "BuildMethod": 9, "Method": "built from its definition", "Levels": 1})"));
  EXPECT_EQ(rows[1]["Template"], 1);
  EXPECT_EQ(rows[1]["Name"], "Patients by name, city, insurance and age");
  // A report query's templates come from its own table.
  int report_templates = 0;
  for (const auto& row : rows)
    report_templates += row["Query"] == 8 && !row["Template"].is_null();
  EXPECT_EQ(report_templates, 2);

  const CliRun csv = Run("queries", {"--format", "csv"});
  EXPECT_THAT(csv.out, HasSubstr("Query,Template,Name,BuildMethod,Method,Levels\r\n"
                                 "1,,Patient list,9,built from its definition,1\r\n"
                                 "1,1,\"Patients by name, city, insurance and age\",,,\r\n"));
}

TEST_F(Subcommand, LookupPrintsTheValueAndTheStatementItRan) {
  struct Case {
    std::vector<std::string> args;
    Json value;
    std::string statement;
  };
  const std::vector<Case> cases = {
      {{"description", "--link", "1", "--code", "7"},
       "Dunmore",
       "Select  Description from Cities where (ID = 7)"},
      {{"code", "--table", "Cities", "--field", "Description", "--code", "13"},
       "Juniper Bay",
       "Select  Description from Cities where (ID = 13)"},
      {{"value", "--table", "patients", "--field", "DOB", "--code", "3"},
       "1942-05-16",
       "Select  DOB from patients where (ID = 3)"},
      {{"value", "--table", "patients", "--field", "ID", "--by", "LastName", "--text", "Martin"},
       2,
       "Select  ID from patients where LastName Like  'Martin'"},
      {{"value", "--table", "Users", "--field", "LoginName", "--code", "2", "--source", "system"},
       "hmorgan",
       "Select  LoginName from Users where (ID = 2)"},
      {{"multi", "--multi", "1", "--parent", "19"},
       "Pollen , Aspirin",
       "Select Allergies.Description from Allergies , PatientAllergies where "
       "(PatientAllergies.ValueID = Allergies.ID)  and ( PatientAllergies.SourceID = 19) "},
  };
  for (const auto& c : cases) {
    const Json result = RunJson("lookup", c.args)["lookup"];
    EXPECT_EQ(result["value"], c.value) << c.args[0];
    EXPECT_EQ(result["statement"], c.statement) << c.args[0];
  }

  const Json link = RunJson("lookup", {"link", "--link", "2"})["link"];
  EXPECT_EQ(link["SQLStmt"],
            "Select  LastName , ID from patients  where  RecordStatus = 0 Order by LastName");
  EXPECT_EQ(link["HasManyEntries"], true);
  EXPECT_EQ(link["DefNewScreenID"], 101);
  const Json by_table = RunJson("lookup", {"link", "--table", "cities"})["links"];
  ASSERT_EQ(by_table.size(), 1u);
  EXPECT_EQ(by_table[0]["Link"], 1);

  const CliRun missing = Run("lookup", {"description", "--link", "99", "--code", "7"});
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.err, "kelvary: Problem in GetDescription for SearchLinkID 99\n");
}

TEST_F(Subcommand, ClauseWritesEachDialectAndTheFormula) {
  auto clauses = [&](std::vector<std::string> args) {
    args.insert(args.end(), {"--format", "json"});
    args.insert(args.begin(), "clause");
    const CliRun run = RunCli(args, dir_);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    std::map<std::string, std::string> by_dialect;
    const Json result = Json::parse(run.out);
    for (const auto& row : result["clauses"])
      by_dialect[row["Dialect"]] = row["Clause"];
    return by_dialect;
  };
  using Map = std::map<std::string, std::string>;
  EXPECT_EQ(clauses({"comparison", "--field", "LastName", "--type", "3", "--compare", "contains",
                     "--value", "O'Ne"}),
            (Map{{"access", "LastName Like '%O''Ne%'"},
                 {"oracle", "LastName Like '%O''Ne%'"},
                 {"sqlserver", "LastName Like '%O''Ne%'"},
                 {"formula", "{LastName} Like '*O''Ne*'"}}));
  EXPECT_EQ(
      clauses({"date-range", "--field", "VisitDate", "--from", "2024-03-05", "--to", "2024-03-07"}),
      (Map{{"access", " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
           {"oracle",
            " ( VisitDate Between TO_Date('05-Mar-2024','DD-Mon-YYYY')  And "
            "TO_Date('08-Mar-2024','DD-Mon-YYYY') )"},
           {"sqlserver", " ( VisitDate Between #03/05/2024#  And #03/08/2024# )"},
           {"formula", " ( {VisitDate} in CDate(2024 , 3 , 5)  to CDate(2024 , 3 , 7) )"}}));
  EXPECT_EQ(clauses({"alpha", "--field", "LastName", "--tab", "3", "--dialect", "access"}),
            (Map{{"access", " ( Ucase$(LastName) Like 'C%' )"}}));
  EXPECT_EQ(clauses({"name", "--alias", "PName", "--dialect", "oracle"}),
            (Map{{"oracle", "FirstName ||  ' '  || MiddleName ||  '  '  || LastName As PName"}}));

  // The builder's own refusal is the command's error.
  const CliRun unhandled = RunCli({"clause", "comparison", "--field", "X", "--type", "0"}, dir_);
  EXPECT_EQ(unhandled.exit_code, 1);
  EXPECT_EQ(unhandled.err, "kelvary: Unhandled\n");
  EXPECT_EQ(RunCli({"clause", "date", "--value", "31/31/2024"}, dir_).exit_code, 2);
}

TEST_F(Subcommand, KeyMakesTheNextKeyAndADryRunLeavesNoTrace) {
  auto max_id = [&] {
    return RunJson("lookup", {"value", "--table", "DataTables", "--field", "MaxID", "--code", "1",
                              "--source", "system"})["lookup"]["value"];
  };
  auto key = [&](std::vector<std::string> args) {
    args.insert(args.begin(), {"--table", "patients", "--field", "ID"});
    return RunJson("key", args)["keys"];
  };
  const Json all = key({"--method", "all", "--dry-run"});
  ASSERT_EQ(all.size(), 8u);
  for (const int method : {0, 2, 3, 4, 5})
    EXPECT_EQ(all[method]["Key"], 301) << method;
  EXPECT_EQ(all[6]["Key"], 0);           // the host answers method 6; nobody did
  EXPECT_TRUE(all[7]["Key"].is_null());  // method 7's counter cannot be rolled back
  EXPECT_EQ(max_id(), 300);

  // Method 3 keeps its counter in DataTables; method 7 per location.
  EXPECT_EQ(key({"--method", "3"})[0]["Key"], 301);
  EXPECT_EQ(max_id(), 301);
  // A location with no counter yet starts at 1, behind the prefix.
  EXPECT_EQ(key({"--method", "7", "--location", "9", "--prefix", "3"})[0]["Key"], 31);
  EXPECT_EQ(key({"--method", "7", "--location", "9", "--prefix", "3"})[0]["Key"], 32);
  EXPECT_EQ(
      Run("key", {"--table", "patients", "--field", "ID", "--method", "7", "--dry-run"}).exit_code,
      1);

  EXPECT_EQ(RunJson("key", {"--regno", "--first", "john", "--middle", "paul", "--last",
                            "smith"})["key"]["value"],
            "JPS0001");
}

TEST_F(Subcommand, CheckReportsACleanPracticeAndEachFaultOnce) {
  const CliRun clean = Run("check", {});
  EXPECT_EQ(clean.exit_code, 0) << clean.out;
  EXPECT_EQ(clean.out,
            "5 search links, 1 multi-select, 9 stored queries with 5 templates, 10 data tables "
            "checked in the access dialect: no problems\n");
  EXPECT_EQ(clean.err, "");
  EXPECT_EQ(Run("check", {"--dialect", "oracle"}).exit_code, 0);

  // A search link naming a column that is not there, a multi-select storing
  // into a table that is not defined, a stored query reading a table that
  // does not exist.
  RunSql(system_, {"UPDATE FillNSearchLinks SET SearchDisplayField = 'Descr' WHERE ID = 1",
                   "UPDATE MultiSelects SET StoreTable = 42 WHERE ID = 1",
                   "UPDATE Queries SET SqlStmt = REPLACE(SqlStmt, 'patients, Cities', "
                   "'patients, Towns') WHERE ID = 6"});
  const CliRun broken = Run("check", {"--progress"});
  EXPECT_EQ(broken.exit_code, 1);
  EXPECT_EQ(broken.out,
            "search link 1: its table Cities or columns do not open: no such column: Descr\n"
            "multi-select 1: its links or tables are not defined (parent link, values link or "
            "store table missing from the configuration)\n"
            "query 6 (Patients of a city): does not open: no such table: Towns\n"
            "5 search links, 1 multi-select, 9 stored queries with 5 templates, 10 data tables "
            "checked in the access dialect: 3 problems\n");
  EXPECT_THAT(broken.err, HasSubstr("kelvary check: stored queries 9 of 9\n"));

  const CliRun json = Run("check", {"--format", "json"});
  EXPECT_EQ(json.exit_code, 1);
  const Json report = Json::parse(json.out);
  EXPECT_EQ(report["problems"], 3);
  ASSERT_EQ(report["findings"].size(), 3u);
  EXPECT_EQ(report["findings"][2]["Where"], "query 6 (Patients of a city)");
}

// JSON keeps a SHAPE result's shape and its values' kinds; csv holds one
// level; --output writes the file and nothing on standard output.
TEST_F(Subcommand, RowsAsJsonAndCsv) {
  RunSql(main_, {"UPDATE patients SET DOB = NULL WHERE ID = 2"});
  const Json tree = RunJson("query", {"--query", "4", "--record", "1:1"});
  EXPECT_EQ(tree["row_count"], 1);
  const Json& patient = tree["rows"][0];
  EXPECT_EQ(patient["LastName"], "Dubois");
  EXPECT_EQ(patient["ID"], 1);
  const Json& visit = patient["Visits"][0];
  EXPECT_EQ(visit["VisitDate"], "2023-11-09T12:30:00");
  EXPECT_EQ(visit["Invoices"][0]["InvoiceDate"], "2023-11-09");
  EXPECT_TRUE(visit["Invoices"][0]["Amount"].is_number());
  EXPECT_EQ(visit["Invoices"][0]["Amount"], 60);
  EXPECT_EQ(visit["Invoices"][0]["Paid"], true);

  const Json nulls = RunJson("query", {"--query", "1", "--record", "1:2"});
  EXPECT_TRUE(nulls["rows"][0]["DOB"].is_null());
  EXPECT_EQ(RunJson("query", {"--query", "9", "--max-rows", "2"})["rows"].size(), 2u);

  const CliRun csv = Run("query", {"--query", "9", "--format", "csv"});
  EXPECT_EQ(csv.out.substr(0, csv.out.find("\r\n", csv.out.find("\r\n") + 2) + 2),
            "LoginName,FirstName,LastName\r\nadmin,Practice,Administrator\r\n");
  const CliRun levels = Run("query", {"--query", "4", "--format", "csv"});
  EXPECT_EQ(levels.exit_code, 1);
  EXPECT_THAT(levels.err, HasSubstr("csv cannot hold"));

  const std::string file = dir_.File("out.json");
  const CliRun to_file = Run("queries", {"--format", "json", "--output", file});
  EXPECT_EQ(to_file.exit_code, 0);
  EXPECT_EQ(to_file.out, "");
  EXPECT_EQ(Json::parse(Slurp(file))["queries"].size(), 14u);
}

}  // namespace
}  // namespace kelvary::testing
