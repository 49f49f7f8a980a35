#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/ConstraintMessages.h"
#include "kelvary/platform/internal/drivers/ServerResults.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcApi.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcConnection.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcDialect.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcParameters.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcResult.h"

namespace kelvary {
namespace {

using odbc::Check;
using odbc::ServerKind;

using internal::ChangesSchema;
using internal::NarrowWholeExpressions;
using internal::ParseTableName;
using internal::TableName;

class OdbcConnection final : public DriverConnection {
 public:
  OdbcConnection(const std::string& connection_string, const std::string& user,
                 const std::string& password, odbc::FetchStrategy strategy);
  ~OdbcConnection() override;

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override;
  void BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  std::vector<std::string> KeyColumns(const std::string& table) override;
  Variant LastInsertedKey(const std::string& table, const std::string& key_column) override;
  // A constraint failure is SQLSTATE class 23; the SQLite ODBC driver says
  // so in its message only, in SQLite's words, and MariaDB reports a NOT
  // NULL column an INSERT left out under HY000 (its error 1364).
  bool IsConstraintViolation(const Error& error) const override {
    return DriverConnection::IsConstraintViolation(error) ||
           error.Description().find("constraint failed") != std::string::npos ||
           (server_ == ServerKind::kMySql && error.NativeError() == 1364);
  }
  std::vector<std::string> ConstraintColumns(const Error& error) const override {
    if (error.Description().find("constraint failed") != std::string::npos) {
      return internal::SqliteConstraintColumns(error.Description());
    }
    return internal::ServerConstraintColumns(error.Description());
  }
  void SetBusyTimeout(int32_t seconds) override;
  void Close() override;
  std::string Name() const override { return "ODBC"; }

 private:
  SQLHDBC Dbc() const;
  void EndTransaction(SQLSMALLINT completion);
  // The key columns of schema.table, as the catalog names them (cached).
  const std::vector<std::string>& KeysOf(const std::string& schema, const std::string& table,
                                         bool quoted);
  std::vector<std::string> CatalogKeys(const std::string& schema, const std::string& table);
  void MarkKeyColumns(RowSet& rows, const std::vector<std::string>& schemas);
  // ReadYesNoColumns: MariaDB and MySQL keep BOOLEAN as TINYINT(1), and
  // their ODBC driver reports it as any tinyint; the catalog's column type
  // tells, and such a column reads as Boolean, as it does elsewhere.
  void ReadYesNoColumns(RowSet& rows);
  const std::vector<std::string>& YesNoColumnsOf(const std::string& table);
  Variant FirstValue(const std::string& sql, const std::vector<Variant>& params);

  odbc::EnvHandle env_;
  odbc::DbcHandle dbc_;
  bool connected_ = false;
  ServerKind server_ = ServerKind::kOther;
  odbc::FetchCapabilities capabilities_;
  bool in_transaction_ = false;
  int32_t query_timeout_ = 0;  // seconds, for servers without a lock wait setting
  std::unordered_map<std::string, std::vector<std::string>> keys_;    // by lower-case schema.table
  std::unordered_map<std::string, std::vector<std::string>> yes_no_;  // by lower-case table
};

OdbcConnection::OdbcConnection(const std::string& connection_string, const std::string& user,
                               const std::string& password, odbc::FetchStrategy strategy) {
  SQLHANDLE env = SQL_NULL_HANDLE;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) {
    throw Error(kErrProviderNotFound, "The ODBC driver manager could not be initialised", "ODBC");
  }
  env_ = odbc::EnvHandle(env);
  Check(SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0),
        SQL_HANDLE_ENV, env, "SQLSetEnvAttr");
  SQLHANDLE dbc = SQL_NULL_HANDLE;
  Check(SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc), SQL_HANDLE_ENV, env, "SQLAllocHandle");
  dbc_ = odbc::DbcHandle(dbc);

  std::string full = connection_string;
  if (full.find('=') == std::string::npos) full = "DSN=" + odbc::ConnectionValue(full);
  const auto add = [&full](const char* key, const std::string& value) {
    if (value.empty()) return;
    if (!full.empty() && full.back() != ';') full += ';';
    full += key + odbc::ConnectionValue(value);
  };
  add("UID=", user);
  add("PWD=", password);
  std::u16string wide = odbc::Widen(full);
  const SQLRETURN rc =
      SQLDriverConnectW(dbc, nullptr, odbc::WidePtr(wide), static_cast<SQLSMALLINT>(wide.size()),
                        nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(rc)) odbc::ThrowDiagnostics(SQL_HANDLE_DBC, dbc, "SQLDriverConnect");
  connected_ = true;
  server_ = odbc::ServerKindOf(odbc::InfoText(dbc, SQL_DBMS_NAME));
  if (server_ == ServerKind::kMySql) {
    // The Oracle dialect joins text with ||, the system doubles only
    // apostrophes in the literals it writes (a backslash is a character),
    // and names are quoted with "" as elsewhere. Reads see what others
    // committed, as on PostgreSQL: without gap locks, two sessions that both
    // find no row and both insert one meet on the key, not in a deadlock.
    Run("SET SESSION sql_mode = CONCAT(@@SESSION.sql_mode, "
        "',PIPES_AS_CONCAT,NO_BACKSLASH_ESCAPES,ANSI_QUOTES')",
        {}, 0);
    Run("SET SESSION TRANSACTION ISOLATION LEVEL READ COMMITTED", {}, 0);
  }
  if (strategy == odbc::FetchStrategy::kBest) capabilities_ = odbc::ProbeFetchCapabilities(dbc);
  if (server_ == ServerKind::kMySql) {
    // MariaDB's driver says it positions within a block, but SQLGetData
    // then reads the block's first row whatever row was asked for, and the
    // rows after the block are lost: one row per fetch there.
    capabilities_.block = false;
    capabilities_.static_cursor = false;
  }
}

OdbcConnection::~OdbcConnection() {
  try {
    Close();
  } catch (...) {  // a destructor never throws; the handles are freed below regardless
  }
}

SQLHDBC OdbcConnection::Dbc() const {
  if (!connected_) throw Error(kErrObjectClosed, "The ODBC connection is closed", "ODBC");
  return dbc_.Get();
}

StatementResult OdbcConnection::Run(const std::string& sql, const std::vector<Variant>& params,
                                    int32_t max_rows) {
  odbc::StmtHandle stmt = odbc::AllocateStatement(Dbc());
  const SQLHSTMT h = stmt.Get();
  // Limits the driver may not honour are also applied while fetching.
  if (max_rows > 0) {
    SQLSetStmtAttr(h, SQL_ATTR_MAX_ROWS,
                   reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(max_rows)), 0);
  }
  if (capabilities_.static_cursor) {
    SQLSetStmtAttr(h, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_STATIC), 0);
  }
  if (query_timeout_ > 0) {
    SQLSetStmtAttr(h, SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(query_timeout_)), 0);
  }

  // The server gets the system's text in its own dialect; errors name both.
  const std::string sent = odbc::TranslateForServer(sql, server_);
  // Passed NUL-terminated, not with its length: MariaDB's driver reads
  // past the length it is given of a long statement with text outside
  // ASCII in it (and then its heap is seen damaged).
  std::u16string wide = odbc::Widen(sent);
  SQLRETURN rc;
  std::optional<odbc::ParameterBinder> binder;
  if (params.empty()) {
    rc = SQLExecDirectW(h, odbc::WidePtr(wide), SQL_NTS);
  } else {
    Check(SQLPrepareW(h, odbc::WidePtr(wide), SQL_NTS), SQL_HANDLE_STMT, h, "SQLPrepare", sql,
          sent);
    binder.emplace(h, params, sql);
    rc = SQLExecute(h);
  }
  Check(rc, SQL_HANDLE_STMT, h, "SQLExecute", sql, sent);

  StatementResult result;
  SQLSMALLINT columns = 0;
  if (rc != SQL_NO_DATA) {
    Check(SQLNumResultCols(h, &columns), SQL_HANDLE_STMT, h, "SQLNumResultCols", sql);
  }
  if (columns > 0) {
    result.has_rows = true;
    const std::vector<std::string> schemas =
        odbc::ReadResult(h, capabilities_, max_rows, sql, result.rows);
    stmt.Reset();  // the catalog look-ups below run on statements of their own
    MarkKeyColumns(result.rows, schemas);
    if (server_ == ServerKind::kMySql) ReadYesNoColumns(result.rows);
    NarrowWholeExpressions(result.rows);
    return result;
  }
  SQLLEN affected = 0;
  if (rc != SQL_NO_DATA && !SQL_SUCCEEDED(SQLRowCount(h, &affected))) affected = -1;
  result.records_affected = affected;
  if (ChangesSchema(sql)) {
    keys_.clear();
    yes_no_.clear();
  }
  return result;
}

void OdbcConnection::BeginTransaction() {
  const SQLHDBC dbc = Dbc();
  if (in_transaction_) {
    throw Error(kErrOperationNotSupported, "A transaction is already open on this connection",
                "ODBC");
  }
  Check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT,
                          reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER),
        SQL_HANDLE_DBC, dbc, "SQLSetConnectAttr (autocommit off)");
  in_transaction_ = true;
}

void OdbcConnection::CommitTransaction() {
  EndTransaction(SQL_COMMIT);
}

void OdbcConnection::RollbackTransaction() {
  EndTransaction(SQL_ROLLBACK);
}

void OdbcConnection::EndTransaction(SQLSMALLINT completion) {
  const SQLHDBC dbc = Dbc();
  if (!in_transaction_) {
    throw Error(kErrProviderFailure, "No transaction is open on this connection", "ODBC");
  }
  const SQLRETURN rc = SQLEndTran(SQL_HANDLE_DBC, dbc, completion);
  std::optional<Error> failure;
  try {
    Check(rc, SQL_HANDLE_DBC, dbc,
          completion == SQL_COMMIT ? "SQLEndTran (commit)" : "SQLEndTran (rollback)");
  } catch (const Error& error) {
    failure = error;
    // A commit that failed leaves nothing to keep: end the transaction either way.
    SQLEndTran(SQL_HANDLE_DBC, dbc, SQL_ROLLBACK);
  }
  in_transaction_ = false;
  Check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON),
                          SQL_IS_UINTEGER),
        SQL_HANDLE_DBC, dbc, "SQLSetConnectAttr (autocommit on)");
  if (failure) throw *failure;
}

std::vector<std::string> OdbcConnection::KeyColumns(const std::string& table) {
  Dbc();
  const TableName name = ParseTableName(table);
  if (name.table.empty()) return {};
  return KeysOf(name.schema, name.table, name.quoted);
}

const std::vector<std::string>& OdbcConnection::KeysOf(const std::string& schema,
                                                       const std::string& table, bool quoted) {
  const std::string cache_key = LowerCase(schema) + "." + LowerCase(table);
  if (const auto found = keys_.find(cache_key); found != keys_.end()) return found->second;

  std::vector<std::string> keys = CatalogKeys(schema, table);
  // Servers fold unquoted names (PostgreSQL to lower case, Oracle to upper):
  // a name written in another case is looked for as the server stores it.
  if (keys.empty() && !quoted) {
    for (const auto& fold : {LowerCase, UpperCase}) {
      const std::string folded_schema = fold(schema);
      const std::string folded_table = fold(table);
      if (folded_schema == schema && folded_table == table) continue;
      keys = CatalogKeys(folded_schema, folded_table);
      if (!keys.empty()) break;
    }
  }
  return keys_.emplace(cache_key, std::move(keys)).first->second;
}

std::vector<std::string> OdbcConnection::CatalogKeys(const std::string& schema,
                                                     const std::string& table) {
  std::u16string wide_schema = odbc::Widen(schema);
  std::u16string wide_table = odbc::Widen(table);
  SQLWCHAR* schema_ptr = schema.empty() ? nullptr : odbc::WidePtr(wide_schema);
  const auto schema_length = static_cast<SQLSMALLINT>(schema.empty() ? 0 : wide_schema.size());
  const auto table_length = static_cast<SQLSMALLINT>(wide_table.size());

  // Primary key: TABLE_SCHEM (2), COLUMN_NAME (4), KEY_SEQ (5).
  {
    odbc::StmtHandle stmt = odbc::AllocateStatement(Dbc());
    Check(SQLPrimaryKeysW(stmt.Get(), nullptr, 0, schema_ptr, schema_length,
                          odbc::WidePtr(wide_table), table_length),
          SQL_HANDLE_STMT, stmt.Get(), "SQLPrimaryKeys");
    RowSet rows;
    odbc::ReadResult(stmt.Get(), odbc::FetchCapabilities{}, 0, "", rows);
    std::vector<std::pair<int32_t, std::string>> keys;
    for (size_t r = 0; r < rows.RowCount(); ++r) {
      // Without a schema the catalog may answer for several; keep the first.
      if (TextOf(rows.Cell(r, 1)) != TextOf(rows.Cell(0, 1))) continue;
      keys.emplace_back(CLng(rows.Cell(r, 4)), TextOf(rows.Cell(r, 3)));
    }
    if (!keys.empty()) {
      std::stable_sort(keys.begin(), keys.end());
      std::vector<std::string> names;
      for (auto& key : keys)
        names.push_back(std::move(key.second));
      return names;
    }
  }
  // No primary key: the driver's best row identifier, when it is made of
  // real columns (a pseudo column such as a physical row address is not in
  // any select list). COLUMN_NAME (2), PSEUDO_COLUMN (8).
  odbc::StmtHandle stmt = odbc::AllocateStatement(Dbc());
  const SQLRETURN rc =
      SQLSpecialColumnsW(stmt.Get(), SQL_BEST_ROWID, nullptr, 0, schema_ptr, schema_length,
                         odbc::WidePtr(wide_table), table_length, SQL_SCOPE_CURROW, SQL_NULLABLE);
  if (!SQL_SUCCEEDED(rc)) return {};
  RowSet rows;
  odbc::ReadResult(stmt.Get(), odbc::FetchCapabilities{}, 0, "", rows);
  std::vector<std::string> names;
  for (size_t r = 0; r < rows.RowCount(); ++r) {
    const Variant& pseudo = rows.Cell(r, 7);
    if (!pseudo.IsNull() && CLng(pseudo) == SQL_PC_PSEUDO) return {};
    names.push_back(TextOf(rows.Cell(r, 1)));
  }
  return names;
}

void OdbcConnection::MarkKeyColumns(RowSet& rows, const std::vector<std::string>& schemas) {
  for (size_t c = 0; c < rows.columns.size(); ++c) {
    ColumnInfo& column = rows.columns[c];
    if (column.base_table.empty()) continue;
    for (const std::string& key : KeysOf(schemas[c], column.base_table, false)) {
      if (EqualsNoCase(key, column.base_column)) column.key = true;
    }
  }
}

void OdbcConnection::ReadYesNoColumns(RowSet& rows) {
  const size_t width = rows.columns.size();
  for (size_t c = 0; c < width; ++c) {
    ColumnInfo& column = rows.columns[c];
    if ((column.type != adTinyInt && column.type != adUnsignedTinyInt) ||
        column.base_table.empty()) {
      continue;
    }
    const std::vector<std::string>& yes_no = YesNoColumnsOf(column.base_table);
    if (std::none_of(yes_no.begin(), yes_no.end(), [&](const std::string& name) {
          return EqualsNoCase(name, column.base_column);
        })) {
      continue;
    }
    column.type = adBoolean;
    column.defined_size = 2;
    for (size_t i = c; i < rows.cells.size(); i += width) {
      Variant& cell = rows.cells[i];
      if (!cell.IsNull()) cell = Variant(CLng(cell) != 0);
    }
  }
}

const std::vector<std::string>& OdbcConnection::YesNoColumnsOf(const std::string& table) {
  const std::string cache_key = LowerCase(table);
  if (const auto found = yes_no_.find(cache_key); found != yes_no_.end()) return found->second;
  std::vector<std::string> names;
  const StatementResult r = Run(
      "SELECT COLUMN_NAME FROM information_schema.COLUMNS WHERE TABLE_SCHEMA = DATABASE() "
      "AND TABLE_NAME = ? AND (COLUMN_TYPE = 'tinyint(1)' OR COLUMN_TYPE = 'tinyint(1) unsigned')",
      {Variant(table)}, 0);
  for (size_t row = 0; row < r.rows.RowCount(); ++row)
    names.push_back(TextOf(r.rows.Cell(row, 0)));
  return yes_no_.emplace(cache_key, std::move(names)).first->second;
}

Variant OdbcConnection::FirstValue(const std::string& sql, const std::vector<Variant>& params) {
  const StatementResult result = Run(sql, params, 1);
  if (!result.has_rows || result.rows.RowCount() == 0 || result.rows.cells.front().IsNull()) {
    return Variant();
  }
  return result.rows.cells.front();
}

Variant OdbcConnection::LastInsertedKey(const std::string& table, const std::string& key_column) {
  Dbc();
  switch (server_) {
    case ServerKind::kSqlServer:
      return FirstValue("SELECT @@IDENTITY", {});
    case ServerKind::kMySql:
      return FirstValue("SELECT LAST_INSERT_ID()", {});
    case ServerKind::kSqlite:
      return FirstValue("SELECT last_insert_rowid()", {});
    case ServerKind::kOther:
      return Variant();
    case ServerKind::kPostgreSQL:
      break;
  }
  // The sequence behind a serial or identity column. pg_get_serial_sequence
  // folds the table name as SQL does but takes the column name literally.
  const TableName column = ParseTableName(key_column);
  const std::vector<Variant> params = {
      Variant(table), Variant(column.quoted ? column.table : LowerCase(column.table))};
  const std::string sql = "SELECT currval(pg_get_serial_sequence(?, ?))";
  // currval fails when this session never drew from the sequence; inside a
  // transaction that failure would abort the caller's work, so it is fenced.
  if (in_transaction_) Run("SAVEPOINT kelvary_last_key", {}, 0);
  try {
    Variant value = FirstValue(sql, params);
    if (in_transaction_) Run("RELEASE SAVEPOINT kelvary_last_key", {}, 0);
    return value;
  } catch (const Error& error) {
    if (error.SqlState().rfind("08", 0) == 0) throw;  // the connection itself failed
    if (in_transaction_) {
      Run("ROLLBACK TO SAVEPOINT kelvary_last_key", {}, 0);
      Run("RELEASE SAVEPOINT kelvary_last_key", {}, 0);
    }
    return Variant();
  }
}

void OdbcConnection::SetBusyTimeout(int32_t seconds) {
  Dbc();
  seconds = std::max(seconds, 0);
  switch (server_) {
    case ServerKind::kPostgreSQL:
      Run("SET lock_timeout = " + std::to_string(int64_t{seconds} * 1000), {}, 0);
      return;
    case ServerKind::kSqlServer:
      Run("SET LOCK_TIMEOUT " + std::to_string(seconds == 0 ? -1 : int64_t{seconds} * 1000), {}, 0);
      return;
    case ServerKind::kMySql:
      // One year is the longest wait the server accepts.
      Run("SET SESSION innodb_lock_wait_timeout = " +
              std::to_string(seconds == 0 ? 31536000 : seconds),
          {}, 0);
      return;
    case ServerKind::kSqlite:
    case ServerKind::kOther:
      query_timeout_ = seconds;
      return;
  }
}

void OdbcConnection::Close() {
  keys_.clear();
  yes_no_.clear();
  if (connected_) {
    connected_ = false;
    if (in_transaction_) {
      in_transaction_ = false;
      SQLEndTran(SQL_HANDLE_DBC, dbc_.Get(), SQL_ROLLBACK);
    }
    SQLDisconnect(dbc_.Get());
  }
  dbc_.Reset();
  env_.Reset();
}

}  // namespace

namespace odbc {
std::unique_ptr<DriverConnection> OpenConnection(const std::string& connection_string,
                                                 const std::string& user,
                                                 const std::string& password,
                                                 FetchStrategy strategy) {
  return std::make_unique<OdbcConnection>(connection_string, user, password, strategy);
}
}  // namespace odbc

std::unique_ptr<DriverConnection> OpenOdbcConnection(const std::string& connection_string,
                                                     const std::string& user,
                                                     const std::string& password) {
  return odbc::OpenConnection(connection_string, user, password, odbc::FetchStrategy::kBest);
}

}  // namespace kelvary
