// Arguments: a subcommand's command line read against the options that the
// command table declares for it. The same declarations print the command's
// help, so an option cannot be accepted without being documented or
// documented without being accepted. Anything the declarations do not allow
// (an unknown option, a missing value, a number out of range) is a
// UsageError: one line, exit status 2.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvary::cli {

// UsageError: the command line itself is wrong.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// OptionDef: one option a command takes. value is the placeholder of its
// value in the help ("ID", "FILE"), or empty for a switch.
struct OptionDef {
  std::string_view name;  // with its dashes: "--query"
  std::string_view value;
  std::string_view help;
};

class Arguments {
 public:
  // Reads args (the words after the command's name). At most max_positional
  // words that do not start with "--" are taken as positional arguments.
  // REQUIRES: no "--help" among args (the caller answers that first).
  Arguments(std::string command, const std::vector<std::string>& args,
            const std::vector<OptionDef>& known, size_t max_positional);

  const std::string& Command() const { return command_; }
  bool Has(std::string_view name) const;
  // Get: the value given last for the option, if any.
  std::optional<std::string> Get(std::string_view name) const;
  // All: every value given for the option, in order.
  std::vector<std::string> All(std::string_view name) const;
  // Required: the value, or a UsageError naming the option.
  std::string Required(std::string_view name) const;
  // Integer: the option's value as a whole number within [min, max];
  // nullopt when the option was not given.
  std::optional<int64_t> Integer(std::string_view name, int64_t min, int64_t max) const;
  // Id: a 32-bit identifier (any value a 32-bit field can hold).
  std::optional<int32_t> Id(std::string_view name) const;
  const std::vector<std::string>& Positional() const { return positional_; }

 private:
  std::string command_;
  std::vector<std::pair<std::string, std::string>> given_;  // name, value ("" for a switch)
  std::vector<std::string> positional_;
};

// ParseInteger reads text as a whole decimal number within [min, max]; what
// names it in the error. Blanks, signs on their own, fractions, and numbers
// beyond the range are refused, never cut or wrapped.
int64_t ParseInteger(std::string_view text, std::string_view what, int64_t min, int64_t max);

}  // namespace kelvary::cli
