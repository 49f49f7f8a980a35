// kelvary: the command-line face of the library, for the people who
// configure and support the practice application. Output is plain aligned
// text; a problem is one line on standard error and a non-zero exit.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "Demo.h"
#include "QueryCommand.h"
#include "Session.h"
#include "kelvary/platform/Error.h"

namespace {

constexpr const char* kUsage =
    "usage: kelvary <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  demo [DIR] [--data DIR]\n"
    "      build the demo practice's databases in DIR (default kelvary-demo) from\n"
    "      the SQL in --data (default: the data/ folder of the build) and walk\n"
    "      through stored queries, look-ups and a template's conditions\n"
    "  query --system FILE|DSN --main FILE|DSN --query ID [options]\n"
    "      print the statement of stored query ID and its rows (an indented tree\n"
    "      for a query of several levels)\n"
    "        --template ID        apply the template's conditions\n"
    "        --xtal               conditions in report-formula syntax\n"
    "        --sql-only           print the statement alone\n"
    "        --parameters         list the template's parameters in words\n"
    "        --where LEVEL=TEXT   restrict a level (or fill a stored text's marker)\n"
    "        --record T:E[:F]     restrict the level reading data table T to entry E\n"
    "                             of field F (an ID or a name; default ID)\n"
    "        --max-rows N         print at most N rows of the top level\n"
    "        --dialect NAME       the SQL the conditions are written in: access\n"
    "                             (default), oracle (PostgreSQL runs it), sqlserver\n"
    "  help\n"
    "      show this text\n";

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "help";
  const std::vector<std::string> args(argv + (argc > 1 ? 2 : 1), argv + argc);
  try {
    if (command == "help" || command == "--help" || command == "-h") {
      std::cout << kUsage;
      return 0;
    }
    if (command == "demo") return kelvary::cli::DemoCommand(args, std::cout);
    if (command == "query") return kelvary::cli::QueryCommand(args, std::cout);
    std::cerr << "kelvary: unknown command '" << command << "'\n" << kUsage;
    return 2;
  } catch (const kelvary::cli::CommandError& e) {
    std::cout.flush();
    std::cerr << "kelvary: " << e.what() << "\n";
  } catch (const kelvary::Error& e) {
    std::cout.flush();
    std::cerr << "kelvary: " << kelvary::cli::OneLine(e.Description()) << "\n";
  } catch (const std::exception& e) {
    std::cout.flush();
    std::cerr << "kelvary: " << kelvary::cli::OneLine(e.what()) << "\n";
  }
  return 1;
}
