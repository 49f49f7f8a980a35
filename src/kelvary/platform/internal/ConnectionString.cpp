#include "kelvary/platform/internal/ConnectionString.h"

#include <cctype>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::internal {
namespace {

bool EndsWithNoCase(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && LowerCase(s.substr(s.size() - suffix.size())) == suffix;
}

}  // namespace

std::optional<std::string> ConnectionStringItems::Get(std::string_view key) const {
  const std::string wanted = LowerCase(key);
  for (const auto& [k, v] : items) {
    if (LowerCase(k) == wanted) return v;
  }
  return std::nullopt;
}

ConnectionStringItems ParseConnectionString(std::string_view text) {
  ConnectionStringItems result;
  size_t i = 0;
  while (i < text.size()) {
    const size_t eq = text.find('=', i);
    const size_t semi = text.find(';', i);
    if (eq == std::string_view::npos || (semi != std::string_view::npos && semi < eq)) {
      // A piece without '=': skip it (an empty piece between two ';').
      if (semi == std::string_view::npos) break;
      i = semi + 1;
      continue;
    }
    std::string key(TrimSpace(text.substr(i, eq - i)));
    size_t v = eq + 1;
    while (v < text.size() && text[v] == ' ')
      ++v;
    std::string value;
    if (v < text.size() && (text[v] == '{' || text[v] == '"')) {
      // A doubled closing character stands for itself: "}}" inside braces.
      const char close = text[v] == '{' ? '}' : '"';
      size_t stop = v + 1;
      for (;;) {
        const size_t end = text.find(close, stop);
        if (end == std::string_view::npos) {  // unclosed: the rest of the text
          value.append(text.substr(stop));
          stop = text.size();
          break;
        }
        value.append(text.substr(stop, end - stop));
        if (end + 1 < text.size() && text[end + 1] == close) {
          value += close;
          stop = end + 2;
          continue;
        }
        stop = end;
        break;
      }
      i = stop == text.size() ? stop : stop + 1;
      const size_t next = text.find(';', i);
      i = next == std::string_view::npos ? text.size() : next + 1;
    } else {
      const size_t end = text.find(';', v);
      const size_t stop = end == std::string_view::npos ? text.size() : end;
      value = std::string(TrimSpace(text.substr(v, stop - v)));
      i = stop == text.size() ? stop : stop + 1;
    }
    if (!key.empty()) result.items.emplace_back(std::move(key), std::move(value));
  }
  return result;
}

std::string QuoteConnectionValue(std::string_view value) {
  const bool plain = !value.empty() && value.find_first_of(";{}=") == std::string_view::npos &&
                     !std::isspace(static_cast<unsigned char>(value.front())) &&
                     !std::isspace(static_cast<unsigned char>(value.back())) &&
                     value.front() != '"';
  if (plain) return std::string(value);
  std::string out = "{";
  for (const char c : value) {
    out += c;
    if (c == '}') out += '}';
  }
  out += '}';
  return out;
}

bool IsPostgresUri(std::string_view text) {
  text = TrimSpace(text);
  return StartsWithNoCase(text, "postgresql://") || StartsWithNoCase(text, "postgres://");
}

bool IsSqliteFileName(std::string_view name) {
  name = TrimSpace(name);
  if (name == ":memory:") return true;
  if (IsPostgresUri(name)) return false;
  if (name.find('/') != std::string_view::npos || name.find('\\') != std::string_view::npos) {
    return true;
  }
  return EndsWithNoCase(name, ".db") || EndsWithNoCase(name, ".sqlite") ||
         EndsWithNoCase(name, ".sqlite3");
}

DriverChoice ChooseDriver(std::string_view connection_string) {
  DriverChoice choice;
  if (IsPostgresUri(connection_string)) {  // libpq's own form, as it stands
    choice.kind = DriverChoice::kPostgres;
    choice.postgres_uri = std::string(TrimSpace(connection_string));
    choice.data_source = choice.postgres_uri;
    return choice;
  }
  const ConnectionStringItems items = ParseConnectionString(connection_string);
  const std::string provider = LowerCase(items.Get("Provider").value_or(""));
  const std::string data_source = items.Get("Data Source").value_or("");
  choice.data_source = data_source;

  if (const auto mode = items.Get("Mode")) {
    const std::string m = LowerCase(*mode);
    if (m == "readonly" || m == "read") {
      choice.mode = DriverChoice::kReadOnly;
    } else if (m == "readwrite" || m == "share deny none" || m.empty()) {
      choice.mode = DriverChoice::kReadWrite;
    } else if (m == "readwritecreate") {
      choice.mode = DriverChoice::kReadWriteCreate;
    } else {
      throw Error(kErrProviderNotFound,
                  "The connection string's Mode \"" + *mode +
                      "\" is not one of ReadOnly, ReadWrite, ReadWriteCreate",
                  "Connection");
    }
  }

  if (items.Get("Driver")) {  // an ODBC string, as it stands
    choice.kind = DriverChoice::kOdbc;
    choice.odbc_string = std::string(connection_string);
    choice.data_source = items.Get("DSN").value_or(*items.Get("Driver"));
    return choice;
  }
  if (provider.rfind("postgresql", 0) == 0 || provider == "postgres") {
    // The server's settings are the string's own keys (Host, Port,
    // Database, User ID, Password), read by the driver.
    choice.kind = DriverChoice::kPostgres;
    choice.data_source = items.Get("Database").value_or(data_source);
    return choice;
  }
  if (provider.rfind("sqlite", 0) == 0) {  // SQLite, SQLite3, SQLite.1 ...
    choice.kind = DriverChoice::kSqlite;
    choice.sqlite_path = data_source;
    return choice;
  }
  if (provider.empty() || provider.rfind("msdatashape", 0) == 0 || provider == "msdasql" ||
      provider.rfind("msdasql.", 0) == 0) {
    if (!data_source.empty()) {
      if (IsPostgresUri(data_source)) {
        choice.kind = DriverChoice::kPostgres;
        choice.postgres_uri = std::string(TrimSpace(data_source));
        choice.user = items.Get("User ID").value_or("");
        choice.password = items.Get("Password").value_or("");
      } else if (IsSqliteFileName(data_source)) {
        choice.kind = DriverChoice::kSqlite;
        choice.sqlite_path = data_source;
      } else {
        // The provider's own keys for the credentials go to ODBC as UID and PWD.
        choice.kind = DriverChoice::kOdbc;
        choice.odbc_string = "DSN=" + QuoteConnectionValue(data_source);
        choice.user = items.Get("User ID").value_or("");
        choice.password = items.Get("Password").value_or("");
      }
      return choice;
    }
    if (const auto dsn = items.Get("DSN")) {
      // The ODBC keys as they stand; the provider keys are ours.
      choice.kind = DriverChoice::kOdbc;
      for (const auto& [key, value] : items.items) {
        const std::string k = LowerCase(key);
        if (k == "provider" || k == "data provider") continue;
        choice.odbc_string += key + "=" + QuoteConnectionValue(value) + ";";
      }
      choice.data_source = *dsn;
      return choice;
    }
  }
  return choice;  // kUnknown
}

}  // namespace kelvary::internal
