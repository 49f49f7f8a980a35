#include "kelvary/platform/internal/drivers/postgres/internal/PostgresDialect.h"

#include <optional>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/internal/DesktopDialect.h"
#include "kelvary/platform/internal/SqlLexing.h"

namespace kelvary::postgres {
namespace {

using internal::DesktopCall;
using internal::DesktopFunction;

class PostgresWriter final : public internal::DialectWriter {
 public:
  std::string DateLiteral(Date date) const override {
    return (HasTime(date) ? "TIMESTAMP '" : "DATE '") + internal::IsoDateText(date) + "'";
  }

  std::optional<std::string> Call(const DesktopCall& call) const override {
    switch (call.function) {
      case DesktopFunction::kIsnull:
        return "((" + call.arguments[0] + ") IS NULL)";
      case DesktopFunction::kNow:
        return DateLiteral(Now());
      case DesktopFunction::kDate:
        return DateLiteral(Today());
      case DesktopFunction::kToDate:
        if (call.literal_date) return DateLiteral(*call.literal_date);
        return std::nullopt;  // the server has the function
      case DesktopFunction::kUcase:
        return "UPPER(" + call.arguments[0] + ")";
      case DesktopFunction::kLcase:
        return "LOWER(" + call.arguments[0] + ")";
      case DesktopFunction::kMonth:
        return DatePart("MONTH", call);
      case DesktopFunction::kDay:
        return DatePart("DAY", call);
      case DesktopFunction::kYear:
        return DatePart("YEAR", call);
    }
    return std::nullopt;
  }

  std::string LikeKeyword(std::string_view) const override { return "ILIKE"; }
  bool LikeWildcards() const override { return true; }
  std::optional<std::string> Ampersand() const override { return "||"; }

 private:
  static std::string DatePart(const char* part, const DesktopCall& call) {
    return std::string("CAST(EXTRACT(") + part + " FROM " + call.arguments[0] + ") AS INTEGER)";
  }
};

}  // namespace

std::string TranslateForPostgres(std::string_view sql) {
  return internal::RewriteDesktopDialect(sql, PostgresWriter());
}

std::string NumberParameters(std::string_view sql) {
  std::string out;
  out.reserve(sql.size() + 8);
  int number = 0;
  size_t i = 0;
  while (i < sql.size()) {
    const char c = sql[i];
    if (internal::OpensQuoted(c) && c != '[') {
      // Brackets are not quotes to PostgreSQL (an array subscript), and the
      // system never writes them for it.
      const size_t end = internal::EndOfQuoted(sql, i);
      out.append(sql.substr(i, end - i));
      i = end;
      continue;
    }
    if (const size_t end = internal::EndOfComment(sql, i); end != i) {
      out.append(sql.substr(i, end - i));
      i = end;
      continue;
    }
    if (c == '?') {
      out += '$';
      out += std::to_string(++number);
    } else {
      out += c;
    }
    ++i;
  }
  return out;
}

}  // namespace kelvary::postgres
