// The kelvary command, run as the built program: the demo, the query
// command's output, its one-line errors and exit statuses, its help, and
// the promise to touch no file it was not asked to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CliRun.h"

namespace kelvary::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

using Command = DemoPractice;

TEST_F(Command, DemoBuildsThePracticeAndWalksThroughIt) {
  EXPECT_THAT(demo_.out, HasSubstr("300 patients"));
  // A statement and its rows.
  EXPECT_THAT(demo_.out, HasSubstr("Select DoctorID AS Doctor,Count(ID) AS NumVisits"));
  EXPECT_THAT(demo_.out, HasSubstr("(4 rows)"));
  EXPECT_THAT(demo_.out, HasSubstr("GetDescription(1, 7) -> \"Dunmore\""));  // a look-up
  EXPECT_EQ(demo_.err, "");

  // Run again over the same folder: rebuilt, not added to.
  const CliRun again = RunCli({"demo", dir_.File("demo")}, dir_);
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_THAT(again.out, HasSubstr("300 patients"));
}

TEST_F(Command, QueryPrintsTheStatementAndItsRows) {
  const CliRun users = Run("query", {"--query", "9"});
  ASSERT_EQ(users.exit_code, 0) << users.err;
  EXPECT_THAT(users.out, HasSubstr("Query 9: Users (built from its definition, 1 level)"));
  EXPECT_THAT(users.out, HasSubstr("  Select LoginName,FirstName,LastName From Users \n"));
  EXPECT_THAT(users.out, HasSubstr("  LoginName   FirstName  LastName\n"
                                   "  ----------  ---------  -------------\n"
                                   "  admin       Practice   Administrator\n"));
  EXPECT_THAT(users.out, HasSubstr("(5 rows)"));

  const CliRun sql = Run("query", {"--query", "9", "--sql-only"});
  EXPECT_EQ(sql.out, "Select LoginName,FirstName,LastName From Users \n");

  const CliRun limited = Run("query", {"--query", "1", "--template", "1", "--max-rows", "0"});
  ASSERT_EQ(limited.exit_code, 0) << limited.err;
  EXPECT_THAT(limited.out, HasSubstr("(first 0 of 1 rows)"));

  // In the Oracle dialect the template's dates are TO_Date calls, and the
  // same row comes back.
  const CliRun oracle = Run("query", {"--query", "1", "--template", "1", "--dialect", "oracle"});
  ASSERT_EQ(oracle.exit_code, 0) << oracle.err;
  EXPECT_THAT(oracle.out, HasSubstr("patients.DOB Between TO_Date('01-Jan-1950','DD-Mon-YYYY')  "
                                    "And TO_Date('01-Jan-1980','DD-Mon-YYYY')"));
  EXPECT_THAT(oracle.out, HasSubstr("(1 row)"));

  // More than one level prints as a tree; a record by a named field.
  const CliRun tree = Run("query", {"--query", "4", "--record", "1:1:ID"});
  ASSERT_EQ(tree.exit_code, 0) << tree.err;
  EXPECT_THAT(tree.out, HasSubstr("( patients.ID = 1 )"));
  EXPECT_THAT(tree.out, HasSubstr("\n      Visits:\n"));
  EXPECT_THAT(tree.out, HasSubstr("\n          Invoices:\n"));
  EXPECT_THAT(tree.out, HasSubstr("(1 row)"));
}

// Every problem is one line on standard error: exit 1 for what the
// databases say, exit 2 for a command line that is wrong in itself.
// Numbers are never cut to fit, and text from the command line reaches no
// statement unless it is a clause the user writes on purpose (--where).
TEST_F(Command, ProblemsAreOneLineWithTheirExitStatus) {
  const std::string junk = dir_.File("junk.db");
  std::ofstream(junk) << "this is no database\n";
  struct Case {
    std::vector<std::string> args;
    int exit_code;
    std::string error;
  };
  const std::vector<Case> cases = {
      {On("query", {"--query", "99"}), 1, "Query ID 99 not found"},
      {On("query", {"--query", "0"}), 1, "No Query specified"},
      {On("query", {"--query", "1", "--where", "7=x"}), 1, "query 1 has no level 7"},
      {On("query", {"--query", "1", "--template", "999"}), 1, "template 999 not found"},
      {On("query", {"--query", "1", "--template", "2"}), 1,
       "template 2 belongs to query 3, not to query 1"},
      {On("query", {"--query", "4", "--record", "1:1:Nope"}), 1, "data table 1 has no field Nope"},
      {On("query", {"--query", "4", "--record", "1:1:9999"}), 1, "data table 1 has no field 9999"},
      {{"query", "--system", dir_.File("none.db"), "--main", main_, "--query", "1"},
       1,
       "system database file not found: " + dir_.File("none.db")},
      {{"query", "--system", main_, "--main", system_, "--query", "1"},
       1,
       "cannot read the configuration of the system database " + main_ +
           ": no such table: DataTables"},
      {{"query", "--system", system_, "--main", system_, "--query", "1"},
       1,
       "the main database " + system_ +
           " does not hold the practice's patients table: no such table: patients"},
      {{"query", "--system", junk, "--main", main_, "--query", "1"},
       1,
       "cannot open the system database " + junk},
      {{"demo", dir_.File("d2"), "--data", dir_.File("nowhere")},
       1,
       "data folder not found: " + dir_.File("nowhere")},
      {On("query", {}), 2, "kelvary query needs --query ID (see kelvary help query)"},
      {On("query", {"--query", "x"}), 2, "--query is not a whole number: x"},
      {On("query", {"--query", "4294967297"}), 2,
       "--query must be between -2147483648 and 2147483647, not 4294967297"},
      {On("query", {"--query", "1", "--max-rows", "4294967296"}), 2,
       "--max-rows must be between 0 and 2147483647, not 4294967296"},
      {On("query", {"--query", "1", "--max-rows", "-5"}), 2,
       "--max-rows must be between 0 and 2147483647, not -5"},
      {On("query", {"--query", "1", "--template", "-1"}), 2,
       "--template must be between 0 and 2147483647, not -1"},
      {On("query", {"--query", "4", "--record", "1:1:ID=0 OR 1"}), 2,
       "--record's field is a field ID or a field name (letters, digits, _), not 'ID=0 OR 1'"},
      {On("query", {"--query", "4", "--record", "1:4294967297"}), 2,
       "--record's entry must be between -2147483648 and 2147483647, not 4294967297"},
      {On("query", {"--query", "1", "--dialect", "dbase"}), 2,
       "--dialect is access, oracle or sqlserver, not dbase"},
      {On("query", {"--query", "1", "--frobnicate"}), 2,
       "unknown option --frobnicate (see kelvary help query)"},
      {On("query", {"--query"}), 2, "--query needs a value (ID)"},
      {On("query", {"--query", "1", "--format", "xml"}), 2,
       "--format is table, csv or json, not xml"},
      {{"frobnicate"}, 2, "unknown command 'frobnicate' (see kelvary help)"},
      {{"help", "frobnicate"}, 2, "unknown command 'frobnicate'"},
  };
  for (const auto& c : cases) {
    const CliRun run = RunCli(c.args, dir_);
    EXPECT_EQ(run.exit_code, c.exit_code) << c.error;
    EXPECT_THAT(run.err, StartsWith("kelvary: " + c.error)) << c.error;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  }

  // A statement that fails to open: the statement first, then the reason.
  const CliRun broken = Run("query", {"--query", "1", "--where", "10=NoSuchColumn = 1"});
  EXPECT_EQ(broken.exit_code, 1);
  EXPECT_THAT(broken.out, HasSubstr("AND NoSuchColumn = 1"));
  EXPECT_EQ(std::count(broken.err.begin(), broken.err.end(), '\n'), 1);
  EXPECT_THAT(broken.err, HasSubstr("kelvary: cannot open the statement: "));
}

// The help texts come from the same table as the parsing: every command the
// overview lists answers "help COMMAND" and "COMMAND --help" alike, and
// every option its help names is one it accepts (none is refused as
// unknown).
TEST_F(Command, HelpAndVersionComeFromTheCommandTable) {
  const CliRun version = RunCli({"--version"}, dir_);
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_THAT(version.out, StartsWith("kelvary "));

  const CliRun overview = RunCli({"help"}, dir_);
  ASSERT_EQ(overview.exit_code, 0);
  EXPECT_EQ(RunCli({"--help"}, dir_).out, overview.out);
  for (const std::string name :
       {"demo", "query", "queries", "lookup", "clause", "key", "check", "help"}) {
    EXPECT_THAT(overview.out, HasSubstr("\n  " + name + " ")) << name;
    const CliRun help = RunCli({"help", name}, dir_);
    EXPECT_EQ(help.exit_code, 0) << name;
    EXPECT_THAT(help.out, StartsWith("usage: kelvary " + name + " ")) << name;
    EXPECT_EQ(RunCli({name, "--help"}, dir_).out, help.out) << name;
    // Each documented option is known to the parser.
    std::istringstream lines(help.out);
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind("  --", 0) != 0) continue;
      const std::string option = line.substr(2, line.find(' ', 2) - 2);
      const CliRun run = RunCli({name, option}, dir_);
      EXPECT_THAT(run.err, Not(HasSubstr("unknown option"))) << name << " " << option;
    }
  }
}

// cli-1: a path is one value, whatever it holds; the file it names is the
// one opened, never the path cut at a ';'.
TEST_F(Command, APathIsOpenedWholeWhateverItHolds) {
  for (const std::string folder :
       {"clinic;2024", "a}b;Mode=ReadWriteCreate", "x y=z;\"q\"", "{b}}\"c;d"}) {
    fs::create_directories(dir_.Path() / folder);
    const std::string real = (dir_.Path() / folder / "main.db").string();
    fs::copy_file(main_, real);
    // Another database where the path would end if cut at its first ';'.
    const std::string decoy = dir_.File(folder.substr(0, folder.find(';')));
    if (!fs::exists(decoy)) {
      const std::string changed = dir_.File("changed.db");
      fs::copy_file(main_, changed, fs::copy_options::overwrite_existing);
      RunSql(changed, {"UPDATE patients SET LastName = 'WRONG-DATABASE' WHERE ID = 1"});
      fs::rename(changed, decoy);
    }
    const CliRun run = RunCli(
        {"query", "--system", system_, "--main", real, "--query", "1", "--record", "1:1"}, dir_);
    EXPECT_EQ(run.exit_code, 0) << folder << ": " << run.err;
    EXPECT_THAT(run.out, HasSubstr("Dubois")) << folder;
    EXPECT_THAT(run.out, Not(HasSubstr("WRONG-DATABASE"))) << folder;
  }
}

// Reading commands create no file and change none: a missing database is
// not created, an empty file stays empty, the databases keep their bytes.
TEST_F(Command, ReadingTouchesNoFile) {
  const std::string missing = dir_.File("missing.db");
  const std::string empty = dir_.File("empty.db");
  std::ofstream(empty).close();
  const std::string main_before = Slurp(main_), system_before = Slurp(system_);

  EXPECT_EQ(
      RunCli({"query", "--system", system_, "--main", missing, "--query", "1"}, dir_).exit_code, 1);
  EXPECT_FALSE(fs::exists(missing));
  EXPECT_EQ(RunCli({"query", "--system", system_, "--main", empty, "--query", "1"}, dir_).exit_code,
            1);
  EXPECT_EQ(fs::file_size(empty), 0u);
  EXPECT_EQ(RunCli({"queries", "--system", empty, "--main", main_}, dir_).exit_code, 1);
  EXPECT_EQ(fs::file_size(empty), 0u);

  for (const auto& args :
       {On("query", {"--query", "4"}), On("queries", {}), On("check", {}),
        On("lookup", {"multi", "--multi", "1", "--parent", "19"}),
        On("key", {"--table", "patients", "--field", "ID", "--method", "3", "--dry-run"})}) {
    EXPECT_EQ(RunCli(args, dir_).exit_code, 0) << args[0];
  }
  EXPECT_TRUE(Slurp(main_) == main_before);
  EXPECT_TRUE(Slurp(system_) == system_before);
}

// demo builds aside: when a step fails, the databases already in the
// folder are kept as they were, and a folder it was to create is not left
// half-made.
TEST_F(Command, DemoReplacesTheDatabasesOnlyWhenEveryStepSucceeded) {
  RunSql(main_, {"UPDATE patients SET LastName = 'Kept' WHERE ID = 1"});
  const std::string main_before = Slurp(main_), system_before = Slurp(system_);

  const fs::path empty_data = dir_.Path() / "empty-data";
  fs::create_directories(empty_data);
  const fs::path broken_data = dir_.Path() / "broken-data";
  fs::copy(KELVARY_DATA_DIR, broken_data);
  std::ofstream(broken_data / "demo_main.sql", std::ios::app)
      << "\nINSERT INTO nowhere VALUES (1);\n";
  const fs::path empty_script = dir_.Path() / "empty-script";
  fs::copy(KELVARY_DATA_DIR, empty_script);
  std::ofstream(empty_script / "main_schema.sql", std::ios::trunc).close();

  for (const fs::path& data : {empty_data, broken_data, empty_script}) {
    const CliRun run = RunCli({"demo", dir_.File("demo"), "--data", data.string()}, dir_);
    EXPECT_EQ(run.exit_code, 1) << data;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_TRUE(Slurp(main_) == main_before) << data;
    EXPECT_TRUE(Slurp(system_) == system_before) << data;

    const CliRun fresh = RunCli({"demo", dir_.File("fresh"), "--data", data.string()}, dir_);
    EXPECT_EQ(fresh.exit_code, 1) << data;
    EXPECT_FALSE(fs::exists(dir_.File("fresh"))) << data;
  }
  for (const auto& entry : fs::directory_iterator(dir_.Path())) {
    EXPECT_EQ(entry.path().filename().string().find(".building"), std::string::npos)
        << entry.path();
  }
  const CliRun rebuilt = RunCli({"demo", dir_.File("demo")}, dir_);
  EXPECT_EQ(rebuilt.exit_code, 0) << rebuilt.err;
  EXPECT_THAT(Run("query", {"--query", "1", "--record", "1:1"}).out, Not(HasSubstr("Kept")));
}

}  // namespace
}  // namespace kelvary::testing
