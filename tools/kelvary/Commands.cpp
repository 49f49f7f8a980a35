#include "Commands.h"

#include <fstream>
#include <iostream>
#include <sstream>

#include "CheckCommand.h"
#include "ClauseCommand.h"
#include "Demo.h"
#include "KeyCommand.h"
#include "LookupCommand.h"
#include "QueriesCommand.h"
#include "QueryCommand.h"
#include "Session.h"
#include "kelvary/platform/Error.h"

#ifndef KELVARY_VERSION
#define KELVARY_VERSION "unknown"
#endif

namespace kelvary::cli {

namespace {

const OptionDef kFormatOption{"--format", "table|csv|json",
                              "how rows are printed: aligned text (default), CSV or JSON"};
const OptionDef kOutputOption{"--output", "FILE", "write to FILE instead of standard output"};

int HelpCommand(const Arguments& args, Output& out);

std::vector<Command> MakeTable() {
  std::vector<Command> table = {
      {"demo",
       "[DIR] [--data DIR]",
       "build the demo practice's databases and walk through them",
       "build the demo practice's databases in DIR (default kelvary-demo) from the SQL in\n"
       "--data, and walk through stored queries, look-ups, a template's conditions, a new\n"
       "key and a safe delete. The databases are built aside and moved into DIR only when\n"
       "every script ran.",
       {{"--data", "DIR", "the folder of the demo's SQL scripts (default: the installed data)"}},
       1,
       false,
       DemoCommand},
      {"query",
       "--system FILE|DSN --main FILE|DSN --query ID [options]",
       "print a stored query's statement and rows",
       "print the statement of stored query ID and its rows (an indented tree, or nested\n"
       "arrays in JSON, for a query of several levels).",
       {kSystemOption,
        kMainOption,
        kDialectOption,
        {"--query", "ID", "the stored query"},
        {"--template", "ID", "apply the template's conditions (one of the query's templates)"},
        {"--xtal", "", "conditions in report-formula syntax"},
        {"--sql-only", "", "print the statement alone"},
        {"--parameters", "", "list the template's parameters in words"},
        {"--where", "LEVEL=TEXT", "restrict a level (or fill a stored text's marker); repeatable"},
        {"--record", "T:E[:F]",
         "restrict the level reading data table T to entry E of field F (a field ID or\n"
         "name of the table; default ID)"},
        {"--max-rows", "N", "print at most N rows of the top level"}},
       0,
       true,
       QueryCommand},
      {"queries",
       "--system FILE|DSN --main FILE|DSN",
       "list the stored queries and their templates",
       "list the stored queries and their templates: ID, name, build method, levels.",
       {kSystemOption, kMainOption, kDialectOption},
       0,
       true,
       QueriesCommand},
      {"lookup",
       "MEMBER --system FILE|DSN --main FILE|DSN [options]",
       "run a look-up: a description, a value, a multi-select, a search link",
       "run one of the service object's look-ups and print its value and the statement it\n"
       "ran. MEMBER is one of:\n"
       "  description --link ID --code N          GetDescription\n"
       "  code --table T --field F [--by F] --code N [--source S] [--sql S] [--secondary F]\n"
       "                                           GetDescriptionFromCode\n"
       "  value --table T --field F --by F --code N|--text TEXT [--source S] [--sql S]\n"
       "                                           GetCorrespondingValue(FromText)\n"
       "  multi --multi ID --parent N             GetMultiString\n"
       "  link --link ID | --table NAME           GetSearchLinkDetails (by link, or every\n"
       "                                           link of a table)",
       {kSystemOption,
        kMainOption,
        kDialectOption,
        {"--link", "ID", "a search link (negative: a multi-select link value)"},
        {"--code", "N", "the stored value looked up"},
        {"--text", "TEXT", "the text looked up (value)"},
        {"--table", "NAME", "the table read"},
        {"--field", "NAME", "the field returned"},
        {"--by", "NAME", "the field searched (default ID)"},
        {"--source", "main|system", "the database the table is in (default main)"},
        {"--sql", "STATEMENT", "the statement to read when no --table is given"},
        {"--secondary", "NAME", "the field shown when the description is empty (code)"},
        {"--width", "N", "NumCharSpace: blanks between name parts (description, code)"},
        {"--multi", "ID", "a multi-select"},
        {"--parent", "N", "the record whose chosen values are listed (multi)"}},
       1,
       true,
       LookupCommand},
      {"clause",
       "BUILDER [options]",
       "print what a clause builder writes, in each dialect",
       "print the clause a builder makes for the given arguments in each dialect (access,\n"
       "oracle, sqlserver) and, where the builder has one, in report-formula syntax.\n"
       "BUILDER is one of:\n"
       "  comparison --field F --type N --compare OP [--value V] [--value2 V] [--sub N]\n"
       "             [--reverse]                  GetComparisionClause\n"
       "  boolean --field F --compare OP --value true|false\n"
       "                                          GetBooleanCompareClause\n"
       "  equal --field F --general text|number|date --value V\n"
       "                                          GetComparisionClauseForDefEqual\n"
       "  date-range --field F [--range N] [--from DATE] [--to DATE]\n"
       "                                          GetDateSqlFromValues\n"
       "  name [--table T] [--prefix F] --alias A  GetNameClause\n"
       "  alpha --field F --tab N                 CreateAlphaClause\n"
       "  date --value DATE                       FormatDateToDBStr\n"
       "OP is a CompareTypes number (1 to 8) or equals, greater, less, between, begins,\n"
       "ends, contains, sounds. DATE is yyyy-mm-dd (or m/d/yyyy, d-Mon-yyyy).",
       {kDialectOption,
        {"--field", "NAME", "the field compared"},
        {"--type", "N", "the field's FieldDataTypes value (comparison)"},
        {"--compare", "OP", "the comparison"},
        {"--sub", "N", "SUBOperator: for a date field, the DateRangeSpecs value"},
        {"--value", "V", "the (first) value"},
        {"--value2", "V", "the second value (between)"},
        {"--reverse", "", "bReverse: the negated condition"},
        {"--general", "KIND", "text, number or date (equal)"},
        {"--range", "N", "the DateRangeSpecs value (date-range; default 1001)"},
        {"--from", "DATE", "the range's first day (date-range)"},
        {"--to", "DATE", "the range's last day (date-range)"},
        {"--table", "NAME", "the table qualifying the name fields (name)"},
        {"--prefix", "FIELD", "a field put before the name (name)"},
        {"--alias", "NAME", "the name of the composed column (name)"},
        {"--tab", "N", "the alphabet tab: 1 for A .. 26 for Z, 27 for all (alpha)"}},
       1,
       true,
       ClauseCommand},
      {"key",
       "--system FILE|DSN --main FILE|DSN (--table T --field F | --regno) [options]",
       "make a new key (or registration number), optionally rolled back",
       "make a new key for a table and field by a GenCodeMethod (or every one), or a new\n"
       "registration number from a patient's names. With --dry-run every change that\n"
       "making the key writes is rolled back.",
       {kSystemOption,
        kMainOption,
        kDialectOption,
        {"--table", "NAME", "the table the key is for"},
        {"--field", "NAME", "its key field"},
        {"--source", "main|system", "the database the table is in (default main)"},
        {"--method", "M", "GenCodeMethod: 0 to 7, or all (default 0)"},
        {"--limit", "TEXT", "LimitString: a condition on the rows the maximum is taken over"},
        {"--location", "N", "CurrentPhysicalLocationID (method 7)"},
        {"--prefix", "N", "CurrPhysLocIDPrefix (method 7)"},
        {"--dry-run", "", "roll back what making the key wrote"},
        {"--regno", "", "GetRegNo: a registration number instead of a key"},
        {"--first", "NAME", "the first name (regno)"},
        {"--middle", "NAME", "the middle name (regno)"},
        {"--last", "NAME", "the last name (regno)"}},
       0,
       true,
       KeyCommand},
      {"check",
       "--system FILE|DSN --main FILE|DSN [--dialect NAME]",
       "walk the configuration and report what is broken",
       "walk the practice's configuration: every search link's table, columns and own\n"
       "statement; every multi-select's tables; every stored query built and opened, alone\n"
       "and with each of its templates, in the chosen dialect; every data table's location,\n"
       "fields and sample-data mark. One line per problem, then a summary; exit status 1\n"
       "when anything is wrong. A long walk shows its progress on standard error.",
       {kSystemOption,
        kMainOption,
        kDialectOption,
        {"--progress", "", "show progress on standard error however short the walk"}},
       0,
       true,
       CheckCommand},
      {"help",
       "[COMMAND]",
       "show the commands, or one command's usage",
       "show the commands, or one command's usage and options.",
       {},
       1,
       false,
       HelpCommand},
  };
  for (auto& command : table) {
    if (!command.prints_rows) continue;
    command.options.push_back(kFormatOption);
    command.options.push_back(kOutputOption);
  }
  return table;
}

int HelpCommand(const Arguments& args, Output& out) {
  if (args.Positional().empty()) {
    PrintOverview(out.stream());
    return 0;
  }
  const Command* command = FindCommand(args.Positional()[0]);
  if (command == nullptr) throw UsageError("unknown command '" + args.Positional()[0] + "'");
  PrintCommandHelp(out.stream(), *command);
  return 0;
}

// Where the command's text goes: standard output as it comes, or gathered
// and written to --output FILE once the command has printed its result.
int RunCommand(const Command& command, const std::vector<std::string>& args, std::ostream& out) {
  const Arguments arguments(std::string(command.name), args, command.options, command.positional);
  const Format format = ParseFormat(arguments.Get("--format").value_or("table"));
  const auto file = arguments.Get("--output");
  if (!file) {
    Output output(format, out);
    return command.handler(arguments, output);
  }
  if (file->empty()) throw UsageError("--output needs a file name");
  std::ostringstream gathered;
  Output output(format, gathered);
  const int status = command.handler(arguments, output);
  std::ofstream stream(*file, std::ios::binary | std::ios::trunc);
  stream << gathered.str();
  stream.close();
  if (!stream) throw CommandError("cannot write " + *file);
  return status;
}

}  // namespace

const std::vector<Command>& CommandTable() {
  static const std::vector<Command> table = MakeTable();
  return table;
}

const Command* FindCommand(std::string_view name) {
  for (const auto& command : CommandTable()) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

void PrintOverview(std::ostream& out) {
  out << "usage: kelvary <command> [arguments]\n"
         "       kelvary help <command>     kelvary <command> --help     kelvary --version\n"
         "\n"
         "commands:\n";
  for (const auto& command : CommandTable()) {
    out << "  " << command.name << std::string(10 - std::min<size_t>(command.name.size(), 9), ' ')
        << command.brief << "\n";
  }
  out << "\nThe databases are a SQLite file or an ODBC data-source name each. A problem is one\n"
         "line on standard error and exit status 1; a wrong command line, exit status 2.\n";
}

void PrintCommandHelp(std::ostream& out, const Command& command) {
  out << "usage: kelvary " << command.name << " " << command.synopsis << "\n\n"
      << command.summary << "\n";
  if (command.options.empty()) return;
  out << "\noptions:\n";
  for (const auto& option : command.options) {
    std::string left = "  " + std::string(option.name);
    if (!option.value.empty()) left += " " + std::string(option.value);
    std::string_view help = option.help;
    const size_t column = 28;
    out << left
        << (left.size() < column ? std::string(column - left.size(), ' ')
                                 : "\n" + std::string(column, ' '));
    for (size_t start = 0;;) {
      const size_t end = help.find('\n', start);
      out << help.substr(start, end - start) << "\n";
      if (end == std::string_view::npos) break;
      out << std::string(column, ' ');
      start = end + 1;
    }
  }
}

int RunCommandLine(const std::vector<std::string>& words, std::ostream& out, std::ostream& err) {
  const std::string name = words.empty() ? "help" : words[0];
  const std::vector<std::string> args(words.empty() ? words.end() : words.begin() + 1, words.end());
  try {
    if (name == "--version" || name == "version") {
      out << "kelvary " << KELVARY_VERSION << "\n";
      return 0;
    }
    if (name == "--help" || name == "-h") {
      PrintOverview(out);
      return 0;
    }
    const Command* command = FindCommand(name);
    if (command == nullptr) throw UsageError("unknown command '" + name + "' (see kelvary help)");
    for (const auto& arg : args) {
      if (arg == "--help" || arg == "-h") {
        PrintCommandHelp(out, *command);
        return 0;
      }
    }
    // Messages that no command step caught (the service object's own
    // closing, for one) are told after the result, never in its middle; when
    // the command fails, its error line says what matters.
    MessageCatcher stray;
    const int status = RunCommand(*command, args, out);
    for (const auto& message : stray.Take())
      err << "kelvary: " << OneLine(message) << "\n";
    return status;
  } catch (const UsageError& e) {
    out.flush();
    err << "kelvary: " << e.what() << "\n";
    return 2;
  } catch (const CommandError& e) {
    out.flush();
    err << "kelvary: " << e.what() << "\n";
  } catch (const Error& e) {
    out.flush();
    err << "kelvary: " << OneLine(e.Description()) << "\n";
  } catch (const std::exception& e) {
    out.flush();
    err << "kelvary: " << OneLine(e.what()) << "\n";
  }
  return 1;
}

}  // namespace kelvary::cli
