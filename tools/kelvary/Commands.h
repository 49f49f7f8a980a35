// The table of kelvary's commands: each command's name, usage, options and
// handler in one entry. The help texts and the argument parsing both read
// this table, so what a command accepts and what its help says cannot part.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

using Handler = int (*)(const Arguments& args, Output& out);

struct Command {
  std::string_view name;
  std::string_view synopsis;  // the usage line after "kelvary <name> "
  std::string_view brief;     // one line for the overview
  std::string_view summary;   // what the command does, as a few lines
  std::vector<OptionDef> options;
  size_t positional = 0;     // words that are not options, at most
  bool prints_rows = false;  // takes --format and --output
  Handler handler = nullptr;
};

// CommandTable: every command, in the order the overview lists them.
const std::vector<Command>& CommandTable();
const Command* FindCommand(std::string_view name);

void PrintOverview(std::ostream& out);
void PrintCommandHelp(std::ostream& out, const Command& command);

// RunCommandLine: the whole program (argv after the program's name);
// returns the exit status: 0 done, 1 a problem, 2 a usage error.
int RunCommandLine(const std::vector<std::string>& words, std::ostream& out, std::ostream& err);

}  // namespace kelvary::cli
