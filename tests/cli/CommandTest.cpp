// The kelvary command, run as the built program: the demo, the query
// command's output, and its one-line errors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "support/TempDir.h"

namespace kelvary::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct CliRun {
  int exit_code = -1;
  std::string out;
  std::string err;
};

std::string Quote(const std::string& arg) {
  std::string quoted = "'";
  for (char c : arg)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string Slurp(const std::string& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

CliRun RunCli(const std::vector<std::string>& args, const TempDir& dir) {
  std::string command = Quote(KELVARY_CLI_PATH);
  for (const auto& a : args)
    command += " " + Quote(a);
  const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
  const int status = std::system((command + " >" + Quote(out) + " 2>" + Quote(err)).c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(out), Slurp(err)};
}

// One demo per test: built by the command itself.
class Command : public ::testing::Test {
 protected:
  void SetUp() override { demo_ = RunCli({"demo", dir_.File("demo")}, dir_); }
  std::vector<std::string> QueryArgs(std::vector<std::string> args) const {
    args.insert(args.begin(), {"query", "--system", system_, "--main", main_});
    return args;
  }
  CliRun Query(const std::vector<std::string>& args) { return RunCli(QueryArgs(args), dir_); }
  TempDir dir_;
  const std::string system_ = dir_.File("demo/system.db");
  const std::string main_ = dir_.File("demo/main.db");
  CliRun demo_;
};

TEST_F(Command, DemoBuildsThePracticeAndWalksThroughIt) {
  EXPECT_EQ(demo_.exit_code, 0) << demo_.err;
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
  const CliRun users = Query({"--query", "9"});
  ASSERT_EQ(users.exit_code, 0) << users.err;
  EXPECT_THAT(users.out, HasSubstr("Query 9: Users (built from its definition, 1 level)"));
  EXPECT_THAT(users.out, HasSubstr("  Select LoginName,FirstName,LastName From Users \n"));
  EXPECT_THAT(users.out, HasSubstr("  LoginName   FirstName  LastName\n"
                                   "  ----------  ---------  -------------\n"
                                   "  admin       Practice   Administrator\n"));
  EXPECT_THAT(users.out, HasSubstr("(5 rows)"));

  const CliRun sql = Query({"--query", "9", "--sql-only"});
  EXPECT_EQ(sql.out, "Select LoginName,FirstName,LastName From Users \n");

  const CliRun limited = Query({"--query", "1", "--template", "1", "--max-rows", "0"});
  ASSERT_EQ(limited.exit_code, 0) << limited.err;
  EXPECT_THAT(limited.out, HasSubstr("(first 0 of 1 rows)"));

  // In the Oracle dialect the template's dates are TO_Date calls, and the
  // same row comes back.
  const CliRun oracle = Query({"--query", "1", "--template", "1", "--dialect", "oracle"});
  ASSERT_EQ(oracle.exit_code, 0) << oracle.err;
  EXPECT_THAT(oracle.out, HasSubstr("patients.DOB Between TO_Date('01-Jan-1950','DD-Mon-YYYY')  "
                                    "And TO_Date('01-Jan-1980','DD-Mon-YYYY')"));
  EXPECT_THAT(oracle.out, HasSubstr("(1 row)"));

  // More than one level prints as a tree.
  const CliRun tree = Query({"--query", "4", "--record", "1:1"});
  ASSERT_EQ(tree.exit_code, 0) << tree.err;
  EXPECT_THAT(tree.out, HasSubstr("\n      Visits:\n"));
  EXPECT_THAT(tree.out, HasSubstr("\n          Invoices:\n"));
  EXPECT_THAT(tree.out, HasSubstr("(1 row)"));
}

TEST_F(Command, ProblemsAreOneLineAndANonZeroExit) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {QueryArgs({"--query", "99"}), "kelvary: Query ID 99 not found\n"},
      {QueryArgs({"--query", "0"}), "kelvary: No Query specified\n"},
      {{"query", "--system", dir_.File("none.db"), "--main", main_, "--query", "1"},
       "kelvary: system database file not found: " + dir_.File("none.db") + "\n"},
      {QueryArgs({}), "kelvary: --query ID is required\n"},
      {QueryArgs({"--query", "1", "--where", "7=x"}), "kelvary: query 1 has no level 7\n"},
      {QueryArgs({"--query", "x"}), "kelvary: --query is not a number: x\n"},
      {QueryArgs({"--query", "1", "--dialect", "dbase"}),
       "kelvary: --dialect is access, oracle or sqlserver, not dbase\n"},
      {{"demo", dir_.File("d2"), "--data", dir_.File("nowhere")},
       "kelvary: data folder not found: " + dir_.File("nowhere") + "\n"},
  };
  for (const auto& [args, error] : cases) {
    const CliRun run = RunCli(args, dir_);
    EXPECT_EQ(run.exit_code, 1) << error;
    EXPECT_EQ(run.err, error);
  }

  // A statement that fails to open: the statement first, then the reason.
  const CliRun broken = Query({"--query", "1", "--where", "10=NoSuchColumn = 1"});
  EXPECT_EQ(broken.exit_code, 1);
  EXPECT_THAT(broken.out, HasSubstr("AND NoSuchColumn = 1"));
  EXPECT_EQ(std::count(broken.err.begin(), broken.err.end(), '\n'), 1);
  EXPECT_THAT(broken.err, HasSubstr("kelvary: cannot open the statement: "));

  const CliRun unknown = RunCli({"frobnicate"}, dir_);
  EXPECT_EQ(unknown.exit_code, 2);
  EXPECT_THAT(unknown.err, HasSubstr("unknown command 'frobnicate'"));
  const CliRun help = RunCli({"help"}, dir_);
  EXPECT_EQ(help.exit_code, 0);
  EXPECT_THAT(help.out, HasSubstr("query --system FILE|DSN --main FILE|DSN --query ID"));
  EXPECT_THAT(help.out, Not(HasSubstr("error")));
}

}  // namespace
}  // namespace kelvary::testing
