#include "kelvary/platform/internal/drivers/sqlite/SqliteDialect.h"

#include <sqlite3.h>

#include <cctype>
#include <string>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/DesktopDialect.h"
#include "kelvary/platform/internal/LikePattern.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteTypes.h"

namespace kelvary::sqlite {
namespace {

constexpr const char* kIsnullFunction = "kelvary_isnull";

bool ContainsIsnull(std::string_view sql) {
  for (size_t i = 0; i + 6 <= sql.size(); ++i) {
    if ((sql[i] == 'i' || sql[i] == 'I') && EqualsNoCase(sql.substr(i, 6), "ISNULL")) return true;
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
  const auto date = picture.empty() ? ParseDate(text) : internal::ParseOracleDate(text, picture);
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

// The SQLite engine's half of the desktop dialect: dates as ISO text (the
// form dates are stored in), Isnull renamed; every other function is
// registered under its own name and LIKE is replaced, so they stay.
class SqliteWriter final : public internal::DialectWriter {
 public:
  std::string DateLiteral(Date date) const override { return "'" + IsoDateText(date) + "'"; }
  std::optional<std::string> FunctionName(internal::DesktopFunction function) const override {
    if (function == internal::DesktopFunction::kIsnull) return kIsnullFunction;
    return std::nullopt;
  }
};

}  // namespace

std::string RewriteDialect(std::string_view sql) {
  if (sql.find('#') == std::string_view::npos && !ContainsIsnull(sql)) return std::string(sql);
  return internal::RewriteDesktopDialect(sql, SqliteWriter());
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
