#include "Arguments.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace kelvary::cli {

namespace {

const OptionDef* FindOption(const std::vector<OptionDef>& known, std::string_view name) {
  for (const auto& option : known) {
    if (option.name == name) return &option;
  }
  return nullptr;
}

}  // namespace

int64_t ParseInteger(std::string_view text, std::string_view what, int64_t min, int64_t max) {
  int64_t value = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  // from_chars takes no leading '+'; one is allowed as a user may write it.
  if (first != last && *first == '+') ++first;
  const auto [end, error] = std::from_chars(first, last, value);
  if (text.empty() || first == last || error == std::errc::invalid_argument || end != last) {
    throw UsageError(std::string(what) + " is not a whole number: " + std::string(text));
  }
  if (error == std::errc::result_out_of_range || value < min || value > max) {
    throw UsageError(std::string(what) + " must be between " + std::to_string(min) + " and " +
                     std::to_string(max) + ", not " + std::string(text));
  }
  return value;
}

Arguments::Arguments(std::string command, const std::vector<std::string>& args,
                     const std::vector<OptionDef>& known, size_t max_positional)
    : command_(std::move(command)) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& word = args[i];
    if (word.rfind("--", 0) != 0) {
      if (positional_.size() >= max_positional) {
        throw UsageError("unexpected argument '" + word + "' (see kelvary help " + command_ + ")");
      }
      positional_.push_back(word);
      continue;
    }
    const OptionDef* option = FindOption(known, word);
    if (option == nullptr) {
      throw UsageError("unknown option " + word + " (see kelvary help " + command_ + ")");
    }
    if (option->value.empty()) {
      given_.emplace_back(word, "");
      continue;
    }
    if (i + 1 >= args.size()) {
      throw UsageError(word + " needs a value (" + std::string(option->value) + ")");
    }
    given_.emplace_back(word, args[++i]);
  }
}

bool Arguments::Has(std::string_view name) const {
  return std::any_of(given_.begin(), given_.end(), [&](const auto& g) { return g.first == name; });
}

std::optional<std::string> Arguments::Get(std::string_view name) const {
  for (auto it = given_.rbegin(); it != given_.rend(); ++it) {
    if (it->first == name) return it->second;
  }
  return std::nullopt;
}

std::vector<std::string> Arguments::All(std::string_view name) const {
  std::vector<std::string> values;
  for (const auto& [given, value] : given_) {
    if (given == name) values.push_back(value);
  }
  return values;
}

std::string Arguments::Required(std::string_view name) const {
  if (auto value = Get(name)) return *value;
  throw UsageError("kelvary " + command_ + " needs " + std::string(name) + " (see kelvary help " +
                   command_ + ")");
}

std::optional<int64_t> Arguments::Integer(std::string_view name, int64_t min, int64_t max) const {
  const auto text = Get(name);
  if (!text) return std::nullopt;
  return ParseInteger(*text, name, min, max);
}

std::optional<int32_t> Arguments::Id(std::string_view name) const {
  const auto value =
      Integer(name, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
  if (!value) return std::nullopt;
  return static_cast<int32_t>(*value);
}

}  // namespace kelvary::cli
