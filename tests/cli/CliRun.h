// Running the built kelvary program from a test: its exit status and what
// it wrote on each stream; and the demo practice it builds, one per test.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "support/TempDir.h"

namespace kelvary::testing {

struct CliRun {
  int exit_code = -1;
  std::string out;
  std::string err;
};

inline std::string ShellQuote(const std::string& arg) {
  std::string quoted = "'";
  for (char c : arg)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

inline std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline CliRun RunCli(const std::vector<std::string>& args, const TempDir& dir) {
  std::string command = ShellQuote(KELVARY_CLI_PATH);
  for (const auto& a : args)
    command += " " + ShellQuote(a);
  const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
  const int status =
      std::system((command + " >" + ShellQuote(out) + " 2>" + ShellQuote(err)).c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(out), Slurp(err)};
}

// RunSql changes a SQLite database the way a support person's mistake would.
inline void RunSql(const std::string& file, const std::vector<std::string>& statements) {
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + QuoteConnectionValue(file));
  for (const auto& sql : statements)
    connection.Execute(sql);
  connection.Close();
}

// One demo practice per test, built by the command itself.
class DemoPractice : public ::testing::Test {
 protected:
  void SetUp() override {
    demo_ = RunCli({"demo", dir_.File("demo")}, dir_);
    ASSERT_EQ(demo_.exit_code, 0) << demo_.err;
  }
  // With the demo's two databases in front of args, after the command.
  std::vector<std::string> On(const std::string& command, std::vector<std::string> args) const {
    args.insert(args.begin(), {command, "--system", system_, "--main", main_});
    return args;
  }
  CliRun Run(const std::string& command, const std::vector<std::string>& args) const {
    return RunCli(On(command, args), dir_);
  }

  TempDir dir_;
  const std::string system_ = dir_.File("demo/system.db");
  const std::string main_ = dir_.File("demo/main.db");
  CliRun demo_;
};

}  // namespace kelvary::testing
