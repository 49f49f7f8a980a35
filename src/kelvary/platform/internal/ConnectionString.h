// ConnectionString: reads "key=value;key=value" connection strings and
// decides which driver one names. Keys compare without regard to case;
// a value may be wrapped in {braces} or "quotes" to hold a ';', and a doubled
// closing character inside stands for itself ("{a}}b}" is a}b).
// Pure functions; thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvary::internal {

struct ConnectionStringItems {
  std::vector<std::pair<std::string, std::string>> items;  // in order, values unwrapped

  // Get: the value of the first item with that key.
  std::optional<std::string> Get(std::string_view key) const;
};

ConnectionStringItems ParseConnectionString(std::string_view text);

// QuoteConnectionValue: value as it may stand after "key=" so that the
// string reads it back whole: wrapped in braces (a '}' inside doubled) when
// it holds ';', '=', a brace, starts with a quote, or starts or ends with
// white space; as it stands otherwise.
std::string QuoteConnectionValue(std::string_view value);

// IsSqliteFileName: whether a data-source name names a SQLite database file
// rather than an ODBC data source: it holds a path separator or ends in
// .db, .sqlite or .sqlite3 (or is ":memory:"); a PostgreSQL URI is neither.
bool IsSqliteFileName(std::string_view name);

// IsPostgresUri: whether text is a PostgreSQL server's address in libpq's
// URI form (postgresql://user@host:port/database?...).
bool IsPostgresUri(std::string_view text);

// DriverChoice: what a connection string asks for.
struct DriverChoice {
  // kPostgres: PostgreSQL's own client, for the whole string in its URI
  // form, a Data Source in that form (the shaping form), or
  // Provider=PostgreSQL with the server's settings as keys.
  enum Kind { kSqlite, kOdbc, kPostgres, kUnknown } kind = kUnknown;
  std::string sqlite_path;  // kSqlite
  enum Mode { kReadOnly, kReadWrite, kReadWriteCreate } mode = kReadWrite;
  std::string odbc_string;   // kOdbc: what to hand the ODBC driver manager
  std::string postgres_uri;  // kPostgres: the URI, when the string gave one
  std::string data_source;   // the name the string gave, for messages
  std::string user;          // the shaping form's User ID, if any
  std::string password;      // the shaping form's Password, if any
};

// ChooseDriver reads connection_string. Throws Error 3706 (provider not
// found) for a Mode it cannot read.
DriverChoice ChooseDriver(std::string_view connection_string);

}  // namespace kelvary::internal
