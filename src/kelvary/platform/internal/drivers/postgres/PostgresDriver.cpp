#include "kelvary/platform/internal/drivers/postgres/PostgresDriver.h"

#include <libpq-fe.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/ConstraintMessages.h"
#include "kelvary/platform/internal/drivers/ServerResults.h"
#include "kelvary/platform/internal/drivers/postgres/internal/PostgresDialect.h"
#include "kelvary/platform/internal/drivers/postgres/internal/PostgresValues.h"

namespace kelvary::postgres {
namespace {

constexpr const char* kSource = "PostgreSQL";

// Result: owns one PGresult.
class Result {
 public:
  explicit Result(PGresult* result = nullptr) : result_(result) {}
  ~Result() { PQclear(result_); }
  Result(Result&& other) noexcept : result_(other.result_) { other.result_ = nullptr; }
  Result& operator=(Result&& other) noexcept {
    std::swap(result_, other.result_);
    return *this;
  }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;

  PGresult* Get() const { return result_; }
  ExecStatusType Status() const { return PQresultStatus(result_); }
  bool Failed() const {
    const ExecStatusType status = Status();
    return status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK && status != PGRES_EMPTY_QUERY;
  }

 private:
  PGresult* result_;
};

// What the catalog says of one column of a table.
struct ColumnFacts {
  std::string name;
  bool not_null = false;
  bool key = false;
  bool auto_increment = false;
};

struct TableFacts {
  std::string name;
  std::unordered_map<int, ColumnFacts> columns;  // by column number
};

// The SQL a failed result's error is read from, with the server's words.
Error ServerError(const PGresult* result, PGconn* conn, const std::string& statement,
                  const std::string& sent) {
  std::string description;
  std::string state;
  if (result != nullptr) {
    if (const char* primary = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY)) {
      description = primary;
    }
    if (const char* detail = PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL)) {
      description += std::string("\nDETAIL:  ") + detail;
    }
    if (const char* code = PQresultErrorField(result, PG_DIAG_SQLSTATE)) state = code;
  }
  if (description.empty()) {
    // No result, or one without fields: the connection itself failed.
    description = PQerrorMessage(conn);
    while (!description.empty() && (description.back() == '\n' || description.back() == ' '))
      description.pop_back();
    if (description.empty()) description = "The server did not answer";
  }
  if (state.empty() && PQstatus(conn) != CONNECTION_OK) state = "08006";
  if (!statement.empty()) {
    if (!state.empty()) description += "\nSQLSTATE " + state;
    if (!sent.empty() && sent != statement) description += "; sent to the server as: " + sent;
  }
  Error error(kErrProviderFailure, description, kSource);
  if (!state.empty()) error.WithSqlState(state);
  if (!statement.empty()) error.WithStatement(statement);
  return error;
}

class PostgresConnection final : public DriverConnection {
 public:
  explicit PostgresConnection(PGconn* conn) : conn_(conn) {}
  ~PostgresConnection() override { Close(); }

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override;
  void BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  std::vector<std::string> KeyColumns(const std::string& table) override;
  Variant LastInsertedKey(const std::string& table, const std::string& key_column) override;
  std::vector<std::string> ConstraintColumns(const Error& error) const override {
    return internal::ServerConstraintColumns(error.Description());
  }
  void SetBusyTimeout(int32_t seconds) override;
  void Close() override;
  std::string Name() const override { return kSource; }

 private:
  PGconn* Conn() const {
    if (conn_ == nullptr)
      throw Error(kErrObjectClosed, "The PostgreSQL connection is closed", kSource);
    return conn_;
  }
  // Execute sends one statement of the system's, parameters bound, and
  // returns its result, or throws the server's refusal.
  Result Execute(const std::string& sql, const std::vector<Variant>& params);
  Result Send(const std::string& sent, const std::vector<Variant>& params,
              const std::string& statement);
  // SendGuarded: Send under a savepoint of the statement's own.
  Result SendGuarded(const std::string& sent, const std::vector<Variant>& params,
                     const std::string& statement);
  // Internal: a statement of the driver's own, in the server's words.
  Result Internal(const std::string& sql, const std::vector<Variant>& params = {});
  void ReadRows(const PGresult* result, int32_t max_rows, RowSet& rows);
  void LearnTables(const std::vector<uint32_t>& tables);

  PGconn* conn_;
  bool in_transaction_ = false;
  std::unordered_map<uint32_t, TableFacts> tables_;                 // by the table's OID
  std::unordered_map<std::string, std::vector<std::string>> keys_;  // by the name as given
};

// Encoded: parameters in the arrays libpq takes.
struct Encoded {
  std::vector<Parameter> parameters;
  std::vector<Oid> types;
  std::vector<const char*> values;
  std::vector<int> lengths;
  std::vector<int> formats;

  int Count() const { return static_cast<int>(parameters.size()); }
};

Encoded Encode(const std::vector<Variant>& params, const std::string& statement) {
  Encoded e;
  e.parameters.resize(params.size());
  for (size_t i = 0; i < params.size(); ++i) {
    if (!WriteParameter(params[i], e.parameters[i])) {
      throw Error(kErrTypeMismatch,
                  "Parameter " + std::to_string(i + 1) + " is an object, not a value", kSource)
          .WithStatement(statement);
    }
  }
  for (const Parameter& parameter : e.parameters) {
    e.types.push_back(parameter.oid);
    e.values.push_back(parameter.null ? nullptr : parameter.bytes.data());
    e.lengths.push_back(static_cast<int>(parameter.bytes.size()));
    e.formats.push_back(parameter.binary ? 1 : 0);
  }
  return e;
}

Result PostgresConnection::Send(const std::string& sent, const std::vector<Variant>& params,
                                const std::string& statement) {
  const Encoded e = Encode(params, statement);
  Result result(PQexecParams(Conn(), sent.c_str(), e.Count(), e.types.data(), e.values.data(),
                             e.lengths.data(), e.formats.data(), 1));
  if (result.Get() == nullptr || result.Failed()) {
    throw ServerError(result.Get(), conn_, statement, sent);
  }
  return result;
}

Result PostgresConnection::Internal(const std::string& sql, const std::vector<Variant>& params) {
  return Send(sql, params, sql);
}

Result PostgresConnection::SendGuarded(const std::string& sent, const std::vector<Variant>& params,
                                       const std::string& statement) {
  const Encoded e = Encode(params, statement);
  PGconn* conn = Conn();
  // The savepoint, the statement and the release go in one exchange with
  // the server: a statement in a transaction costs one round trip, as
  // outside one.
  if (PQenterPipelineMode(conn) != 1) throw ServerError(nullptr, conn, statement, sent);
  const bool queued =
      PQsendQueryParams(conn, "SAVEPOINT kelvary_statement", 0, nullptr, nullptr, nullptr, nullptr,
                        0) == 1 &&
      PQsendQueryParams(conn, sent.c_str(), e.Count(), e.types.data(), e.values.data(),
                        e.lengths.data(), e.formats.data(), 1) == 1 &&
      PQsendQueryParams(conn, "RELEASE SAVEPOINT kelvary_statement", 0, nullptr, nullptr, nullptr,
                        nullptr, 0) == 1 &&
      PQpipelineSync(conn) == 1;
  // Each step's result, then a null; the sync's result ends the exchange.
  // Two nulls in a row mean nothing more is coming (a broken connection).
  Result steps[3];
  size_t step = 0;
  bool after_null = false;
  while (queued) {
    PGresult* r = PQgetResult(conn);
    if (r == nullptr) {
      if (after_null || PQstatus(conn) != CONNECTION_OK) break;
      after_null = true;
      ++step;
      continue;
    }
    after_null = false;
    if (PQresultStatus(r) == PGRES_PIPELINE_SYNC) {
      PQclear(r);
      break;
    }
    if (step < 3 && steps[step].Get() == nullptr) {
      steps[step] = Result(r);
    } else {
      PQclear(r);
    }
  }
  PQexitPipelineMode(conn);
  const auto failed = [](const Result& r) { return r.Get() == nullptr || r.Failed(); };
  if (failed(steps[0])) throw ServerError(steps[0].Get(), conn, statement, "");
  if (failed(steps[1])) {
    if (PQstatus(conn) == CONNECTION_OK) {
      Result undo(PQexec(conn,
                         "ROLLBACK TO SAVEPOINT kelvary_statement; "
                         "RELEASE SAVEPOINT kelvary_statement"));
    }
    throw ServerError(steps[1].Get(), conn, statement, sent);
  }
  if (failed(steps[2])) throw ServerError(steps[2].Get(), conn, statement, "");
  return std::move(steps[1]);
}

Result PostgresConnection::Execute(const std::string& sql, const std::vector<Variant>& params) {
  std::string sent = TranslateForPostgres(sql);
  if (!params.empty()) sent = NumberParameters(sent);
  // Inside a transaction a refused statement is undone alone: the server
  // would otherwise refuse everything after it until the rollback.
  if (in_transaction_) return SendGuarded(sent, params, sql);
  return Send(sent, params, sql);
}

StatementResult PostgresConnection::Run(const std::string& sql, const std::vector<Variant>& params,
                                        int32_t max_rows) {
  Result result = Execute(sql, params);
  StatementResult out;
  if (result.Status() == PGRES_TUPLES_OK) {
    out.has_rows = true;
    ReadRows(result.Get(), max_rows, out.rows);
    internal::NarrowWholeExpressions(out.rows);
    return out;
  }
  // A statement that changes no rows (CREATE, SET) counts none.
  const char* affected = PQcmdTuples(result.Get());
  out.records_affected = (affected == nullptr || *affected == '\0') ? 0 : std::atoll(affected);
  if (internal::ChangesSchema(sql)) {
    tables_.clear();
    keys_.clear();
  }
  return out;
}

void PostgresConnection::ReadRows(const PGresult* result, int32_t max_rows, RowSet& rows) {
  const int width = PQnfields(result);
  int count = PQntuples(result);
  if (max_rows > 0) count = std::min(count, max_rows);
  rows.columns.assign(static_cast<size_t>(width), ColumnInfo{});
  std::vector<uint32_t> oids(static_cast<size_t>(width));
  std::vector<ColumnType> types(static_cast<size_t>(width));
  std::vector<uint32_t> unknown_tables;
  for (int c = 0; c < width; ++c) {
    oids[c] = PQftype(result, c);
    types[c] = TypeOfColumn(oids[c], PQfmod(result, c));
    ColumnInfo& info = rows.columns[c];
    info.name = PQfname(result, c);
    info.type = types[c].type;
    info.defined_size = types[c].defined_size;
    const Oid table = PQftable(result, c);
    if (table != InvalidOid && !tables_.contains(table)) unknown_tables.push_back(table);
  }
  if (!unknown_tables.empty()) LearnTables(unknown_tables);
  for (int c = 0; c < width; ++c) {
    const Oid table = PQftable(result, c);
    if (table == InvalidOid) continue;
    const auto found = tables_.find(table);
    if (found == tables_.end()) continue;
    const auto column = found->second.columns.find(PQftablecol(result, c));
    if (column == found->second.columns.end()) continue;
    ColumnInfo& info = rows.columns[c];
    info.base_table = found->second.name;
    info.base_column = column->second.name;
    info.nullable = !column->second.not_null;
    info.key = column->second.key;
    info.auto_increment = column->second.auto_increment;
  }

  rows.cells = internal::CellStorage(static_cast<size_t>(count) * static_cast<size_t>(width));
  for (int r = 0; r < count; ++r) {
    for (int c = 0; c < width; ++c) {
      // A NULL has no bytes: only an empty value needs asking which it is.
      const int length = PQgetlength(result, r, c);
      if (length == 0 && PQgetisnull(result, r, c)) {
        rows.cells.push_back(Variant::Null());
        continue;
      }
      AppendValue(oids[c], types[c], PQgetvalue(result, r, c), static_cast<size_t>(length),
                  rows.cells);
    }
  }
}

void PostgresConnection::LearnTables(const std::vector<uint32_t>& tables) {
  std::string list = "{";
  for (const uint32_t table : tables) {
    if (list.size() > 1) list += ',';
    list += std::to_string(table);
  }
  list += '}';
  // Every column of each table, with its NOT NULL, primary-key and serial
  // (or identity) flags. Tables the statement read that the catalog does not
  // name (a view's own rows have none) stay unknown.
  const Result result = Internal(
      "SELECT c.oid, c.relname, a.attnum, a.attname, a.attnotnull, "
      "COALESCE(a.attnum = ANY(k.indkey), false), "
      "(a.attidentity <> '' OR COALESCE(pg_get_expr(d.adbin, d.adrelid) LIKE 'nextval(%', false)) "
      "FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid "
      "AND a.attnum > 0 AND NOT a.attisdropped "
      "LEFT JOIN pg_index k ON k.indrelid = c.oid AND k.indisprimary "
      "LEFT JOIN pg_attrdef d ON d.adrelid = c.oid AND d.adnum = a.attnum "
      "WHERE c.oid = ANY($1::oid[])",
      {Variant(list)});
  const PGresult* r = result.Get();
  for (const uint32_t table : tables)
    tables_[table];  // known from now on, even when the catalog has nothing
  for (int row = 0; row < PQntuples(r); ++row) {
    const auto text = [&](int column) {
      return std::string(PQgetvalue(r, row, column),
                         static_cast<size_t>(PQgetlength(r, row, column)));
    };
    const Variant oid = ReadValue(kOidOid, TypeOfColumn(kOidOid, -1), PQgetvalue(r, row, 0), 4);
    TableFacts& facts = tables_[static_cast<uint32_t>(*oid.Get<int64_t>())];
    facts.name = text(1);
    const Variant number =
        ReadValue(kOidInt2, TypeOfColumn(kOidInt2, -1), PQgetvalue(r, row, 2), 2);
    ColumnFacts& column = facts.columns[*number.Get<int16_t>()];
    column.name = text(3);
    column.not_null = PQgetvalue(r, row, 4)[0] != 0;
    column.key = PQgetvalue(r, row, 5)[0] != 0;
    column.auto_increment = !PQgetisnull(r, row, 6) && PQgetvalue(r, row, 6)[0] != 0;
  }
}

void PostgresConnection::BeginTransaction() {
  if (in_transaction_) {
    throw Error(kErrOperationNotSupported, "A transaction is already open on this connection",
                kSource);
  }
  Internal("BEGIN");
  in_transaction_ = true;
}

void PostgresConnection::CommitTransaction() {
  if (!in_transaction_) {
    throw Error(kErrProviderFailure, "No transaction is open on this connection", kSource);
  }
  in_transaction_ = false;
  try {
    Internal("COMMIT");
  } catch (const Error&) {
    // A commit that failed leaves nothing to keep: end the transaction either way.
    if (PQstatus(Conn()) == CONNECTION_OK) Result undo(PQexec(conn_, "ROLLBACK"));
    throw;
  }
}

void PostgresConnection::RollbackTransaction() {
  if (!in_transaction_) {
    throw Error(kErrProviderFailure, "No transaction is open on this connection", kSource);
  }
  in_transaction_ = false;
  Internal("ROLLBACK");
}

std::vector<std::string> PostgresConnection::KeyColumns(const std::string& table) {
  Conn();
  if (const auto found = keys_.find(table); found != keys_.end()) return found->second;
  const internal::TableName name = internal::ParseTableName(table);
  if (name.table.empty()) return {};
  // The name as written, then folded as the server folds an unquoted name.
  const auto quote = [](const std::string& part) {
    std::string out = "\"";
    for (const char c : part) {
      out += c;
      if (c == '"') out += '"';
    }
    return out + "\"";
  };
  const std::string exact =
      (name.schema.empty() ? "" : quote(name.schema) + ".") + quote(name.table);
  const std::string folded = (name.schema.empty() ? "" : quote(LowerCase(name.schema)) + ".") +
                             quote(LowerCase(name.table));
  const Result result = Internal(
      "SELECT a.attname FROM pg_index i JOIN pg_attribute a ON a.attrelid = i.indrelid "
      "AND a.attnum = ANY(i.indkey) "
      "WHERE i.indrelid = COALESCE(to_regclass($1), to_regclass($2)) AND i.indisprimary "
      "ORDER BY array_position(i.indkey::int2[], a.attnum)",
      {Variant(exact), Variant(name.quoted ? exact : folded)});
  std::vector<std::string> keys;
  for (int row = 0; row < PQntuples(result.Get()); ++row)
    keys.emplace_back(PQgetvalue(result.Get(), row, 0));
  return keys_.emplace(table, std::move(keys)).first->second;
}

Variant PostgresConnection::LastInsertedKey(const std::string& table,
                                            const std::string& key_column) {
  Conn();
  // The sequence behind a serial or identity column. pg_get_serial_sequence
  // folds the table name as SQL does but takes the column name literally.
  const internal::TableName column = internal::ParseTableName(key_column);
  const std::vector<Variant> params = {
      Variant(table), Variant(column.quoted ? column.table : LowerCase(column.table))};
  // currval fails when this session never drew from the sequence; inside a
  // transaction the statement's own savepoint keeps that from aborting the
  // caller's work.
  try {
    const StatementResult result = Run("SELECT currval(pg_get_serial_sequence(?, ?))", params, 1);
    if (!result.has_rows || result.rows.RowCount() == 0) return Variant();
    return result.rows.cells.front();
  } catch (const Error& error) {
    if (error.SqlState().rfind("08", 0) == 0) throw;  // the connection itself failed
    return Variant();
  }
}

void PostgresConnection::SetBusyTimeout(int32_t seconds) {
  Internal("SET lock_timeout = " + std::to_string(int64_t{std::max(seconds, 0)} * 1000));
}

void PostgresConnection::Close() {
  tables_.clear();
  keys_.clear();
  in_transaction_ = false;
  if (conn_ != nullptr) {
    PQfinish(conn_);  // an open transaction ends with the session, rolled back
    conn_ = nullptr;
  }
}

// The libpq keywords the client library knows, for passing a connection
// string's own keys through.
const std::unordered_set<std::string>& LibpqKeywords() {
  static const std::unordered_set<std::string> keywords = [] {
    std::unordered_set<std::string> names;
    if (PQconninfoOption* options = PQconndefaults()) {
      for (const PQconninfoOption* o = options; o->keyword != nullptr; ++o)
        names.insert(o->keyword);
      PQconninfoFree(options);
    }
    return names;
  }();
  return keywords;
}

}  // namespace

std::vector<ConnectSetting> SettingsFromItems(
    const std::vector<std::pair<std::string, std::string>>& items) {
  static const std::vector<std::pair<std::string, std::string>> kAliases = {
      {"host", "host"},
      {"server", "host"},
      {"port", "port"},
      {"database", "dbname"},
      {"initial catalog", "dbname"},
      {"user id", "user"},
      {"uid", "user"},
      {"password", "password"},
      {"pwd", "password"}};
  std::vector<ConnectSetting> settings;
  for (const auto& [key, value] : items) {
    const std::string lower = LowerCase(key);
    const auto alias = std::find_if(kAliases.begin(), kAliases.end(),
                                    [&](const auto& entry) { return entry.first == lower; });
    if (alias != kAliases.end()) {
      settings.emplace_back(alias->second, value);
    } else if (lower != "dbname" && LibpqKeywords().contains(lower)) {
      settings.emplace_back(lower, value);
    }
  }
  return settings;
}

std::unique_ptr<DriverConnection> OpenPostgresConnection(
    const std::string& uri, const std::vector<ConnectSetting>& settings, const std::string& user,
    const std::string& password) {
  std::vector<ConnectSetting> all;
  if (!uri.empty()) all.emplace_back("dbname", uri);  // expanded: a URI or key=value text
  all.insert(all.end(), settings.begin(), settings.end());
  if (!user.empty()) all.emplace_back("user", user);
  if (!password.empty()) all.emplace_back("password", password);
  all.emplace_back("client_encoding", "UTF8");  // the library's text is UTF-8
  std::vector<const char*> keywords;
  std::vector<const char*> values;
  for (const auto& [keyword, value] : all) {
    keywords.push_back(keyword.c_str());
    values.push_back(value.c_str());
  }
  keywords.push_back(nullptr);
  values.push_back(nullptr);
  PGconn* conn = PQconnectdbParams(keywords.data(), values.data(), uri.empty() ? 0 : 1);
  if (conn == nullptr) {
    throw Error(kErrProviderFailure, "The PostgreSQL client could not allocate a connection",
                kSource);
  }
  if (PQstatus(conn) != CONNECTION_OK) {
    std::string message = PQerrorMessage(conn);
    PQfinish(conn);
    while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
      message.pop_back();
    throw Error(kErrProviderFailure, message, kSource).WithSqlState("08001");
  }
  // The server's notices (a DROP ... CASCADE naming what it dropped) are not
  // the caller's business; libpq would print them on stderr.
  PQsetNoticeProcessor(
      conn, [](void*, const char*) {}, nullptr);
  return std::make_unique<PostgresConnection>(conn);
}

}  // namespace kelvary::postgres
