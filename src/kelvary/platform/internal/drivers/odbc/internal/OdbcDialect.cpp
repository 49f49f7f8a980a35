#include "kelvary/platform/internal/drivers/odbc/internal/OdbcDialect.h"

#include <optional>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/DesktopDialect.h"

namespace kelvary::odbc {
namespace {

using internal::DesktopCall;
using internal::DesktopFunction;

// ServerWriter: what every server gets; the kinds below change what their
// server reads better in its own words.
class ServerWriter : public internal::DialectWriter {
 public:
  std::string DateLiteral(Date date) const override {
    return HasTime(date) ? "{ts '" + internal::IsoDateText(date) + "'}"
                         : "{d '" + internal::IsoDateText(date) + "'}";
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
        return std::nullopt;
      case DesktopFunction::kUcase:
        return Escape("UCASE", call);
      case DesktopFunction::kLcase:
        return Escape("LCASE", call);
      case DesktopFunction::kMonth:
        return DatePart("MONTH", call);
      case DesktopFunction::kDay:
        return DatePart("DAY", call);
      case DesktopFunction::kYear:
        return DatePart("YEAR", call);
    }
    return std::nullopt;
  }

  bool LikeWildcards() const override { return true; }
  std::optional<std::string> Ampersand() const override { return "||"; }

 protected:
  // Escape: the ODBC scalar-function escape of a one-argument call.
  static std::string Escape(const char* name, const DesktopCall& call) {
    return std::string("{fn ") + name + "(" + call.arguments[0] + ")}";
  }
  // DatePart: MONTH, DAY or YEAR of the call's argument.
  virtual std::optional<std::string> DatePart(const char* part, const DesktopCall& call) const {
    return Escape(std::string_view(part) == "DAY" ? "DAYOFMONTH" : part, call);
  }
};

class PostgresWriter final : public ServerWriter {
 public:
  std::optional<std::string> Call(const DesktopCall& call) const override {
    if (call.function == DesktopFunction::kUcase) return "UPPER(" + call.arguments[0] + ")";
    if (call.function == DesktopFunction::kLcase) return "LOWER(" + call.arguments[0] + ")";
    return ServerWriter::Call(call);
  }
  std::string LikeKeyword(std::string_view written) const override {
    (void)written;
    return "ILIKE";
  }

 private:
  std::optional<std::string> DatePart(const char* part, const DesktopCall& call) const override {
    return std::string("CAST(EXTRACT(") + part + " FROM " + call.arguments[0] + ") AS INTEGER)";
  }
};

class MySqlWriter final : public ServerWriter {
 public:
  std::optional<std::string> Call(const DesktopCall& call) const override {
    if (call.function == DesktopFunction::kUcase) return "UPPER(" + call.arguments[0] + ")";
    if (call.function == DesktopFunction::kLcase) return "LOWER(" + call.arguments[0] + ")";
    return ServerWriter::Call(call);
  }

 private:
  // MONTH, DAY and YEAR are the server's own.
  std::optional<std::string> DatePart(const char*, const DesktopCall&) const override {
    return std::nullopt;
  }
};

class SqlServerWriter final : public ServerWriter {
 public:
  std::optional<std::string> Ampersand() const override { return "+"; }
};

}  // namespace

ServerKind ServerKindOf(std::string_view dbms_name) {
  const std::string lower = LowerCase(dbms_name);
  if (lower.find("postgres") != std::string::npos) return ServerKind::kPostgreSQL;
  if (lower.find("sql server") != std::string::npos) return ServerKind::kSqlServer;
  if (lower.find("mysql") != std::string::npos || lower.find("mariadb") != std::string::npos) {
    return ServerKind::kMySql;
  }
  if (lower.find("sqlite") != std::string::npos) return ServerKind::kSqlite;
  return ServerKind::kOther;
}

std::string TranslateForServer(std::string_view sql, ServerKind kind) {
  switch (kind) {
    case ServerKind::kPostgreSQL:
      return internal::RewriteDesktopDialect(sql, PostgresWriter());
    case ServerKind::kMySql:
      return internal::RewriteDesktopDialect(sql, MySqlWriter());
    case ServerKind::kSqlServer:
      return internal::RewriteDesktopDialect(sql, SqlServerWriter());
    case ServerKind::kSqlite:
    case ServerKind::kOther:
      break;
  }
  return internal::RewriteDesktopDialect(sql, ServerWriter());
}

}  // namespace kelvary::odbc
