#include "kelvary/platform/internal/drivers/sqlite/SqliteDialect.h"

#include <sqlite3.h>

#include <cctype>
#include <string>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/LikePattern.h"
#include "kelvary/platform/internal/SqlLexing.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteTypes.h"

namespace kelvary::sqlite {
namespace {

constexpr const char* kIsnullFunction = "kelvary_isnull";

bool ContainsIsnull(std::string_view sql) {
  for (size_t i = 0; i + 6 <= sql.size(); ++i) {
    if ((sql[i] == 'i' || sql[i] == 'I') && StartsWithNoCase(sql, i, "ISNULL")) return true;
  }
  return false;
}

// ---- The functions --------------------------------------------------------------

void ResultText(sqlite3_context* context, const std::string& text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

// ValueAsDate: a SQL value read as a date: ISO or other text ParseDate
// reads, or a number taken as an automation date.
std::optional<Date> ValueAsDate(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return Date(sqlite3_value_double(value));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      return ParseDate(std::string_view(text, static_cast<size_t>(sqlite3_value_bytes(value))));
    }
    default:
      return std::nullopt;
  }
}

void IsnullFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  sqlite3_result_int(context, sqlite3_value_type(argv[0]) == SQLITE_NULL ? 1 : 0);
}

template <bool kUpper>
void CaseFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
  const std::string_view in(text, static_cast<size_t>(sqlite3_value_bytes(argv[0])));
  ResultText(context, kUpper ? UpperCase(in) : LowerCase(in));
}

template <int (*kPart)(Date)>
void DatePartFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  const auto date = ValueAsDate(argv[0]);
  if (!date) {
    sqlite3_result_null(context);
    return;
  }
  sqlite3_result_int(context, kPart(*date));
}

void NowFunction(sqlite3_context* context, int, sqlite3_value**) {
  ResultText(context, Format(Now(), "yyyy-mm-dd hh:nn:ss"));
}

void TodayFunction(sqlite3_context* context, int, sqlite3_value**) {
  ResultText(context, Format(Today(), "yyyy-mm-dd"));
}

void ToDateFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  const auto* raw = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
  const std::string text(raw, static_cast<size_t>(sqlite3_value_bytes(argv[0])));
  std::string picture;
  if (argc > 1 && sqlite3_value_type(argv[1]) != SQLITE_NULL) {
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    picture.assign(p, static_cast<size_t>(sqlite3_value_bytes(argv[1])));
  }
  const auto date = picture.empty() ? ParseDate(text) : ParseOracleDate(text, picture);
  if (!date) {
    const std::string message =
        "TO_Date cannot read '" + text + "' with the picture '" + picture + "'";
    sqlite3_result_error(context, message.c_str(), -1);
    return;
  }
  ResultText(context, IsoDateText(*date));
}

// LIKE: SQLite calls like(pattern, text[, escape]) for "text LIKE pattern".
void LikeFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  int escape = -1;
  if (argc == 3) {
    const auto* e = reinterpret_cast<const char*>(sqlite3_value_text(argv[2]));
    if (e == nullptr || sqlite3_value_bytes(argv[2]) != 1) {
      sqlite3_result_error(context, "ESCAPE expression must be a single character", -1);
      return;
    }
    escape = static_cast<unsigned char>(e[0]);
  }
  const auto* pattern = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
  const size_t pattern_size = static_cast<size_t>(sqlite3_value_bytes(argv[0]));
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
  const size_t text_size = static_cast<size_t>(sqlite3_value_bytes(argv[1]));
  sqlite3_result_int(context, internal::LikeMatches(std::string_view(pattern, pattern_size),
                                                    std::string_view(text, text_size), escape)
                                  ? 1
                                  : 0);
}

}  // namespace

std::string RewriteDialect(std::string_view sql) {
  if (sql.find('#') == std::string_view::npos && !ContainsIsnull(sql)) return std::string(sql);
  std::string out;
  out.reserve(sql.size() + 8);
  size_t i = 0;
  auto copy_until = [&](size_t end) {
    out.append(sql.substr(i, end - i));
    i = end;
  };
  while (i < sql.size()) {
    const char c = sql[i];
    if (internal::OpensQuoted(c)) {
      copy_until(internal::EndOfQuoted(sql, i));
      continue;
    }
    if (const size_t comment_end = internal::EndOfComment(sql, i); comment_end != i) {
      copy_until(comment_end);
      continue;
    }
    if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
      size_t end = i;
      while (end < sql.size() && (std::isalnum(static_cast<unsigned char>(sql[end])) ||
                                  sql[end] == '_' || sql[end] == '$')) {
        ++end;
      }
      const std::string_view word = sql.substr(i, end - i);
      size_t after = end;
      while (after < sql.size() && std::isspace(static_cast<unsigned char>(sql[after])))
        ++after;
      const bool qualified = i > 0 && sql[i - 1] == '.';
      if (word.size() == 6 && StartsWithNoCase(word, 0, "ISNULL") && !qualified &&
          after < sql.size() && sql[after] == '(') {
        out += kIsnullFunction;
      } else {
        out.append(word);
      }
      i = end;
      continue;
    }
    if (c == '#') {
      const size_t close = sql.find('#', i + 1);
      if (close != std::string_view::npos) {
        const std::string_view inside = sql.substr(i + 1, close - i - 1);
        if (inside.find('\n') == std::string_view::npos) {
          if (const auto date = ParseDate(inside)) {
            out += '\'';
            out += IsoDateText(*date);
            out += '\'';
            i = close + 1;
            continue;
          }
        }
      }
    }
    out += c;
    ++i;
  }
  return out;
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
      std::string word = read_word();
      word = UpperCase(word);
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

int RegisterDialectFunctions(sqlite3* db) {
  constexpr int kPure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  struct Entry {
    const char* name;
    int args;
    int flags;
    void (*function)(sqlite3_context*, int, sqlite3_value**);
  };
  const Entry entries[] = {
      {kIsnullFunction, 1, kPure, IsnullFunction},
      {"Ucase$", 1, kPure, CaseFunction<true>},
      {"Ucase", 1, kPure, CaseFunction<true>},
      {"Lcase$", 1, kPure, CaseFunction<false>},
      {"Lcase", 1, kPure, CaseFunction<false>},
      {"Month", 1, kPure, DatePartFunction<Month>},
      {"Day", 1, kPure, DatePartFunction<Day>},
      {"Year", 1, kPure, DatePartFunction<Year>},
      {"Now", 0, SQLITE_UTF8, NowFunction},
      {"Date", 0, SQLITE_UTF8, TodayFunction},  // date(x, ...) stays SQLite's own
      {"TO_Date", 1, kPure, ToDateFunction},
      {"TO_Date", 2, kPure, ToDateFunction},
      {"like", 2, kPure, LikeFunction},
      {"like", 3, kPure, LikeFunction},
  };
  for (const Entry& e : entries) {
    const int rc = sqlite3_create_function_v2(db, e.name, e.args, e.flags, nullptr, e.function,
                                              nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) return rc;
  }
  return SQLITE_OK;
}

}  // namespace kelvary::sqlite
