#include "kelvary/platform/internal/DesktopDialect.h"

#include <cctype>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/SqlLexing.h"

namespace kelvary::internal {
namespace {

bool IsWordChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

bool IsBlank(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

struct FunctionEntry {
  std::string_view name;  // upper case
  DesktopFunction function;
  size_t min_arguments;
  size_t max_arguments;
};

constexpr FunctionEntry kFunctions[] = {
    {"ISNULL", DesktopFunction::kIsnull, 1, 1},  {"UCASE$", DesktopFunction::kUcase, 1, 1},
    {"UCASE", DesktopFunction::kUcase, 1, 1},    {"LCASE$", DesktopFunction::kLcase, 1, 1},
    {"LCASE", DesktopFunction::kLcase, 1, 1},    {"MONTH", DesktopFunction::kMonth, 1, 1},
    {"DAY", DesktopFunction::kDay, 1, 1},        {"YEAR", DesktopFunction::kYear, 1, 1},
    {"NOW", DesktopFunction::kNow, 0, 0},        {"DATE", DesktopFunction::kDate, 0, 0},
    {"TO_DATE", DesktopFunction::kToDate, 1, 2},
};

const FunctionEntry* FindFunction(std::string_view word) {
  for (const FunctionEntry& entry : kFunctions) {
    if (entry.name.size() == word.size() && StartsWithNoCase(word, 0, entry.name)) return &entry;
  }
  return nullptr;
}

// CallArguments: the arguments of the call whose "(" is at sql[open], as
// written between the commas, and the position just past its ")"; nullopt
// when the parenthesis is never closed.
struct Arguments {
  std::vector<std::string_view> texts;
  size_t end = 0;
};

std::optional<Arguments> CallArguments(std::string_view sql, size_t open) {
  Arguments result;
  int depth = 0;
  size_t start = open + 1;
  size_t i = open;
  while (i < sql.size()) {
    const char c = sql[i];
    if (OpensQuoted(c)) {
      i = EndOfQuoted(sql, i);
      continue;
    }
    if (const size_t comment_end = EndOfComment(sql, i); comment_end != i) {
      i = comment_end;
      continue;
    }
    if (c == '(') {
      ++depth;
    } else if (c == ')') {
      if (--depth == 0) {
        result.texts.push_back(sql.substr(start, i - start));
        result.end = i + 1;
        // "f()" has no argument, not one empty one.
        if (result.texts.size() == 1 && TrimSpace(result.texts[0]).empty()) {
          result.texts.clear();
        }
        return result;
      }
    } else if (c == ',' && depth == 1) {
      result.texts.push_back(sql.substr(start, i - start));
      start = i + 1;
    }
    ++i;
  }
  return std::nullopt;
}

// QuotedLiteral: the text of a '...' literal standing alone in an argument
// (blanks around it allowed), its doubled apostrophes undone.
std::optional<std::string> QuotedLiteral(std::string_view argument) {
  const std::string_view trimmed = TrimSpace(argument);
  if (trimmed.size() < 2 || trimmed.front() != '\'' || EndOfQuoted(trimmed, 0) != trimmed.size() ||
      trimmed.back() != '\'') {
    return std::nullopt;
  }
  std::string text;
  for (size_t i = 1; i + 1 < trimmed.size(); ++i) {
    text += trimmed[i];
    if (trimmed[i] == '\'') ++i;
  }
  return text;
}

std::optional<Date> LiteralDate(const std::vector<std::string_view>& arguments) {
  const std::optional<std::string> text = QuotedLiteral(arguments[0]);
  if (!text) return std::nullopt;
  if (arguments.size() == 1) return ParseDate(*text);
  const std::optional<std::string> picture = QuotedLiteral(arguments[1]);
  if (!picture) return std::nullopt;
  return ParseOracleDate(*text, *picture);
}

class Rewriter {
 public:
  Rewriter(std::string_view sql, const DialectWriter& writer) : sql_(sql), writer_(writer) {}

  std::string Run() {
    out_.reserve(sql_.size() + 16);
    while (i_ < sql_.size()) {
      const char c = sql_[i_];
      if (OpensQuoted(c)) {
        CopyUntil(EndOfQuoted(sql_, i_));
      } else if (const size_t comment_end = EndOfComment(sql_, i_); comment_end != i_) {
        CopyUntil(comment_end);
      } else if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
        Word();
      } else if (c == '#') {
        Hash();
      } else if (c == '&') {
        Ampersand();
      } else {
        out_ += c;
        ++i_;
      }
    }
    return std::move(out_);
  }

 private:
  void CopyUntil(size_t end) {
    out_.append(sql_.substr(i_, end - i_));
    i_ = end;
  }

  size_t SkipBlanks(size_t from) const {
    while (from < sql_.size() && IsBlank(sql_[from]))
      ++from;
    return from;
  }

  void Word() {
    size_t end = i_;
    while (end < sql_.size() && IsWordChar(sql_[end]))
      ++end;
    const std::string_view word = sql_.substr(i_, end - i_);
    const size_t after = SkipBlanks(end);
    const bool qualified = i_ > 0 && sql_[i_ - 1] == '.';
    if (!qualified && after < sql_.size() && sql_[after] == '(') {
      if (const FunctionEntry* entry = FindFunction(word)) {
        if (Function(*entry, word, after)) return;
      }
    }
    if (word.size() == 4 && StartsWithNoCase(word, 0, "LIKE") && !qualified) {
      Like(word, end);
      return;
    }
    out_.append(word);
    i_ = end;
  }

  // Function: a call of a desktop function whose name ends where its "("
  // (at open) begins; false leaves it to be copied as a plain word.
  bool Function(const FunctionEntry& entry, std::string_view word, size_t open) {
    const std::optional<Arguments> arguments = CallArguments(sql_, open);
    if (!arguments || arguments->texts.size() < entry.min_arguments ||
        arguments->texts.size() > entry.max_arguments) {
      return false;
    }
    DesktopCall call{entry.function, {}, std::nullopt};
    for (const std::string_view argument : arguments->texts)
      call.arguments.push_back(RewriteDesktopDialect(argument, writer_));
    if (entry.function == DesktopFunction::kToDate)
      call.literal_date = LiteralDate(arguments->texts);
    if (std::optional<std::string> text = writer_.Call(call)) {
      out_ += *text;
      i_ = arguments->end;
      return true;
    }
    const std::optional<std::string> name = writer_.FunctionName(entry.function);
    out_.append(name ? std::string_view(*name) : word);
    i_ += word.size();
    return true;
  }

  // Like: the word LIKE (ending at end), and the pattern after it when it is
  // a quoted literal.
  void Like(std::string_view word, size_t end) {
    out_ += writer_.LikeKeyword(word);
    i_ = end;
    const size_t at = SkipBlanks(end);
    if (at >= sql_.size() || sql_[at] != '\'' || !writer_.LikeWildcards()) return;
    CopyUntil(at);
    const size_t close = EndOfQuoted(sql_, at);
    for (size_t k = at; k < close; ++k) {
      const char c = sql_[k];
      out_ += c == '*' ? '%' : c == '?' ? '_' : c;
    }
    i_ = close;
  }

  void Hash() {
    const size_t close = sql_.find('#', i_ + 1);
    if (close != std::string_view::npos) {
      const std::string_view inside = sql_.substr(i_ + 1, close - i_ - 1);
      if (inside.find('\n') == std::string_view::npos) {
        if (const auto date = ParseDate(inside)) {
          out_ += writer_.DateLiteral(*date);
          i_ = close + 1;
          return;
        }
      }
    }
    out_ += '#';
    ++i_;
  }

  void Ampersand() {
    const bool lone =
        (i_ == 0 || sql_[i_ - 1] != '&') && (i_ + 1 >= sql_.size() || sql_[i_ + 1] != '&');
    const std::optional<std::string> text = lone ? writer_.Ampersand() : std::nullopt;
    if (text) {
      out_ += *text;
    } else {
      out_ += '&';
    }
    ++i_;
  }

  std::string_view sql_;
  const DialectWriter& writer_;
  std::string out_;
  size_t i_ = 0;
};

}  // namespace

std::string RewriteDesktopDialect(std::string_view sql, const DialectWriter& writer) {
  return Rewriter(sql, writer).Run();
}

std::string IsoDateText(Date d) {
  return HasTime(d) ? Format(d, "yyyy-mm-dd hh:nn:ss") : Format(d, "yyyy-mm-dd");
}

std::optional<Date> ParseOracleDate(std::string_view text, std::string_view picture) {
  int year = -1, day = -1, hour = 0, minute = 0, second = 0;
  int month = -1;
  size_t year_digits = 4;
  std::string month_name;
  bool pm = false, twelve_hour = false;
  size_t t = 0;
  auto skip_blanks = [&] {
    while (t < text.size() && text[t] == ' ')
      ++t;
  };
  auto read_number = [&](size_t max_digits, int& into, size_t* digits = nullptr) {
    skip_blanks();
    size_t n = 0;
    int value = 0;
    while (t < text.size() && n < max_digits && std::isdigit(static_cast<unsigned char>(text[t]))) {
      value = value * 10 + (text[t] - '0');
      ++t;
      ++n;
    }
    if (digits) *digits = n;
    into = value;
    return n > 0;
  };
  auto read_word = [&] {
    skip_blanks();
    std::string word;
    while (t < text.size() && std::isalpha(static_cast<unsigned char>(text[t])))
      word += text[t++];
    return word;
  };
  size_t p = 0;
  while (p < picture.size()) {
    if (StartsWithNoCase(picture, p, "YYYY") || StartsWithNoCase(picture, p, "RRRR")) {
      if (!read_number(4, year, &year_digits)) return std::nullopt;
      p += 4;
    } else if (StartsWithNoCase(picture, p, "YY") || StartsWithNoCase(picture, p, "RR")) {
      if (!read_number(2, year, &year_digits)) return std::nullopt;
      p += 2;
    } else if (StartsWithNoCase(picture, p, "MONTH") || StartsWithNoCase(picture, p, "MON")) {
      month_name = read_word();
      if (month_name.empty()) return std::nullopt;
      p += StartsWithNoCase(picture, p, "MONTH") ? 5 : 3;
    } else if (StartsWithNoCase(picture, p, "MM")) {
      if (!read_number(2, month)) return std::nullopt;
      p += 2;
    } else if (StartsWithNoCase(picture, p, "MI")) {
      if (!read_number(2, minute)) return std::nullopt;
      p += 2;
    } else if (StartsWithNoCase(picture, p, "DD")) {
      if (!read_number(2, day)) return std::nullopt;
      p += 2;
    } else if (StartsWithNoCase(picture, p, "HH24") || StartsWithNoCase(picture, p, "HH12") ||
               StartsWithNoCase(picture, p, "HH")) {
      if (!read_number(2, hour)) return std::nullopt;
      twelve_hour = !StartsWithNoCase(picture, p, "HH24");
      p += StartsWithNoCase(picture, p, "HH24") || StartsWithNoCase(picture, p, "HH12") ? 4 : 2;
    } else if (StartsWithNoCase(picture, p, "SS")) {
      if (!read_number(2, second)) return std::nullopt;
      p += 2;
    } else if (StartsWithNoCase(picture, p, "AM") || StartsWithNoCase(picture, p, "PM")) {
      const std::string word = UpperCase(read_word());
      if (word != "AM" && word != "PM") return std::nullopt;
      pm = word == "PM";
      p += 2;
    } else {
      // Punctuation in the picture matches any punctuation (or blanks) in the text.
      ++p;
      skip_blanks();
      if (t < text.size() && !std::isalnum(static_cast<unsigned char>(text[t]))) ++t;
    }
  }
  skip_blanks();
  if (t != text.size() || year < 0 || day < 0 || (month < 0 && month_name.empty())) {
    return std::nullopt;
  }
  if (twelve_hour && hour <= 12) {
    if (pm && hour != 12) hour += 12;
    if (!pm && hour == 12) hour = 0;
  }
  if (year_digits <= 2) year += year < 50 ? 2000 : 1900;  // the RR window
  // ParseDate knows the month names and checks the calendar.
  const std::string time =
      " " + std::to_string(hour) + ":" + std::to_string(minute) + ":" + std::to_string(second);
  const std::string composed =
      month_name.empty()
          ? std::to_string(month) + "/" + std::to_string(day) + "/" + std::to_string(year) + time
          : std::to_string(day) + "-" + month_name + "-" + std::to_string(year) + time;
  return ParseDate(composed);
}

}  // namespace kelvary::internal
