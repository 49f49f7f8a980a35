#include "kelvary/platform/internal/drivers/sqlite/LiteralParameters.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/SqlLexing.h"

namespace kelvary::sqlite {
namespace {

bool IsWordChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

bool IsSpace(char c) {
  return std::isspace(static_cast<unsigned char>(c));
}

// NumberEnd: the end of the number that starts at sql[i] (a digit), or i
// when what starts there is not a plain decimal number (hex, or digits
// running into a name).
size_t NumberEnd(std::string_view sql, size_t i) {
  size_t j = i;
  while (j < sql.size() && std::isdigit(static_cast<unsigned char>(sql[j])))
    ++j;
  if (j < sql.size() && sql[j] == '.') {
    ++j;
    while (j < sql.size() && std::isdigit(static_cast<unsigned char>(sql[j])))
      ++j;
  }
  if (j < sql.size() && (sql[j] == 'e' || sql[j] == 'E')) {
    size_t k = j + 1;
    if (k < sql.size() && (sql[k] == '+' || sql[k] == '-')) ++k;
    if (k < sql.size() && std::isdigit(static_cast<unsigned char>(sql[k]))) {
      while (k < sql.size() && std::isdigit(static_cast<unsigned char>(sql[k])))
        ++k;
      j = k;
    }
  }
  if (j < sql.size() && (IsWordChar(sql[j]) || sql[j] == '.')) return i;
  return j;
}

std::optional<Variant> NumberValue(std::string_view digits) {
  if (digits.find_first_of(".eE") == std::string_view::npos) {
    int64_t n = 0;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
    if (ec != std::errc() || end != digits.data() + digits.size()) return std::nullopt;  // too big
    if (n <= INT32_MAX) return Variant(static_cast<int32_t>(n));
    return Variant(n);
  }
  // A decimal reads as SQLite reads it: a double, whatever its digits.
  double d = 0;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), d);
  if (ec != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return Variant(d);
}

// TextEnd: the end of the '...' literal that opens at sql[i]; npos when it
// is not closed.
size_t TextEnd(std::string_view sql, size_t i) {
  for (size_t j = sql.find('\'', i + 1); j != std::string_view::npos; j = sql.find('\'', j + 2)) {
    if (j + 1 >= sql.size() || sql[j + 1] != '\'') return j + 1;
  }
  return std::string_view::npos;
}

// TextValue: a '...' literal's text, doubled apostrophes undone.
std::string TextValue(std::string_view quoted) {
  std::string text;
  text.reserve(quoted.size());
  for (size_t i = 1; i + 1 < quoted.size(); ++i) {
    text += quoted[i];
    if (quoted[i] == '\'') ++i;
  }
  return text;
}

}  // namespace

std::optional<ParameterizedText> ParameterizeLiterals(std::string_view sql) {
  ParameterizedText out;
  size_t copied = 0;  // sql[copied..] is not yet in out.text
  int depth = 0;
  bool first_word = true;
  bool after_where = false;
  bool after_comparison = false;
  size_t i = 0;
  while (i < sql.size()) {
    const char c = sql[i];
    if (IsSpace(c)) {
      ++i;
      continue;
    }
    if (const size_t end = internal::EndOfComment(sql, i); end != i) {
      i = end;
      continue;
    }
    const bool take = after_where && after_comparison;
    after_comparison = false;
    if (c == '\'') {
      const size_t end = TextEnd(sql, i);
      if (end == std::string_view::npos) return std::nullopt;  // unclosed: the driver says so
      if (take) {
        out.text.append(sql.substr(copied, i - copied)).append("?");
        out.values.emplace_back(TextValue(sql.substr(i, end - i)));
        copied = end;
      }
      i = end;
      continue;
    }
    if (internal::OpensQuoted(c)) {
      i = internal::EndOfQuoted(sql, i);
      continue;
    }
    if (std::isdigit(static_cast<unsigned char>(c))) {
      const size_t end = NumberEnd(sql, i);
      if (end == i) {  // not a plain number: step over the whole word
        while (i < sql.size() && (IsWordChar(sql[i]) || sql[i] == '.'))
          ++i;
        continue;
      }
      if (take) {
        if (const auto value = NumberValue(sql.substr(i, end - i))) {
          out.text.append(sql.substr(copied, i - copied)).append("?");
          out.values.push_back(*value);
          copied = end;
        }
      }
      i = end;
      continue;
    }
    if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
      size_t end = i;
      while (end < sql.size() && IsWordChar(sql[end]))
        ++end;
      const std::string_view word = sql.substr(i, end - i);
      if (first_word && !EqualsNoCase(word, "SELECT")) return std::nullopt;
      first_word = false;
      if (depth == 0 && EqualsNoCase(word, "WHERE")) after_where = true;
      i = end;
      continue;
    }
    first_word = false;
    switch (c) {
      case '?':
      case ':':
      case '@':
      case '$':
        return std::nullopt;  // parameters of its own
      case '#': {
        // A #date# the dialect rewrites stays as it stands.
        const size_t close = sql.find('#', i + 1);
        i = close == std::string_view::npos ? sql.size() : close + 1;
        continue;
      }
      case '(':
        ++depth;
        break;
      case ')':
        --depth;
        break;
      case '=':
        after_comparison = true;
        if (i + 1 < sql.size() && sql[i + 1] == '=') ++i;
        break;
      case '<':
      case '>':
      case '!':
        if (i + 1 < sql.size() && (sql[i + 1] == '=' || sql[i + 1] == '>')) ++i;
        after_comparison = c != '!' || sql[i] == '=';
        break;
      default:
        break;
    }
    ++i;
  }
  if (out.values.empty()) return std::nullopt;
  out.text.append(sql.substr(copied));
  return out;
}

}  // namespace kelvary::sqlite
