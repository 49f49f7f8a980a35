#include "kelvary/platform/internal/drivers/sqlite/SqliteDriver.h"

#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <filesystem>
#include <list>
#include <unordered_map>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/ConstraintMessages.h"
#include "kelvary/platform/internal/drivers/sqlite/LiteralParameters.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteDialect.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteTypes.h"

namespace kelvary::sqlite {
namespace {

constexpr const char* kSource = "SQLite";
constexpr size_t kCachedStatements = 128;
// How long opening waits for a lock held by another connection before it
// reports the file locked.
constexpr int kOpeningWaitMs = 2000;

// RestIsEmpty: only blanks and comments follow the first statement.
bool RestIsEmpty(const char* tail) {
  std::string_view rest(tail);
  size_t i = 0;
  while (i < rest.size()) {
    if (std::isspace(static_cast<unsigned char>(rest[i])) || rest[i] == ';') {
      ++i;
    } else if (rest.compare(i, 2, "--") == 0) {
      const size_t end = rest.find('\n', i);
      i = end == std::string_view::npos ? rest.size() : end + 1;
    } else if (rest.compare(i, 2, "/*") == 0) {
      const size_t end = rest.find("*/", i + 2);
      i = end == std::string_view::npos ? rest.size() : end + 2;
    } else {
      return false;
    }
  }
  return true;
}

// ChangesSchema: the statement creates, alters or drops something, so that
// a table's key may be another now.
bool ChangesSchema(std::string_view sql) {
  size_t i = 0;
  while (i < sql.size() && (std::isspace(static_cast<unsigned char>(sql[i])) || sql[i] == '('))
    ++i;
  const std::string_view rest = sql.substr(i);
  return StartsWithNoCase(rest, "CREATE") || StartsWithNoCase(rest, "ALTER") ||
         StartsWithNoCase(rest, "DROP");
}

// A prepared statement with what the driver learnt about its columns.
struct Prepared {
  sqlite3_stmt* stmt = nullptr;
  std::vector<ColumnInfo> columns;
  std::vector<ValueKind> kinds;
  int reprepares = 0;           // SQLite re-prepares after a schema change; columns are read again
  bool changes_schema = false;  // CREATE, ALTER or DROP: the keys read so far may be stale
  size_t last_rows = 0;         // rows of the last run: the next run reserves room for as many
  std::list<std::string>::iterator lru;
};

// Leaves a statement ready for its next use, whatever happened to this one.
// Every run binds each parameter afresh, so the bindings are only let go
// when one of them points into the caller's values, which may not outlive
// the run.
class ResetOnExit {
 public:
  explicit ResetOnExit(sqlite3_stmt* stmt) : stmt_(stmt) {}
  ~ResetOnExit() {
    sqlite3_reset(stmt_);
    if (borrowed) sqlite3_clear_bindings(stmt_);
  }
  ResetOnExit(const ResetOnExit&) = delete;
  ResetOnExit& operator=(const ResetOnExit&) = delete;

  bool borrowed = false;  // a text is bound without a copy

 private:
  sqlite3_stmt* stmt_;
};

// AppendValue reads one cell through the column's value object: each
// sqlite3_column_* call looks the column up and checks the connection's
// state again, three times for a text; the value calls do neither. (Its
// value calls are safe here because a connection is used by one thread.)
inline void AppendValue(std::vector<Variant>& cells, sqlite3_value* value, ValueKind kind) {
  const int storage = sqlite3_value_type(value);
  if (storage == SQLITE_NULL) {
    cells.push_back(Variant::Null());
    return;
  }
  // The usual cells first, each stored as its column says: a whole number
  // in an integer column, a text in a text column.
  if (storage == SQLITE_INTEGER && (kind == ValueKind::kInt32 || kind == ValueKind::kDynamic)) {
    const int64_t v = sqlite3_value_int64(value);
    if (v >= INT32_MIN && v <= INT32_MAX) {
      cells.emplace_back(static_cast<int32_t>(v));
    } else {
      cells.emplace_back(v);
    }
    return;
  }
  if (storage == SQLITE_TEXT && kind == ValueKind::kText) {
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(value));
    cells.emplace_back(std::string_view(p, static_cast<size_t>(sqlite3_value_bytes(value))));
    return;
  }
  auto text = [&]() {
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return std::string_view(p, static_cast<size_t>(sqlite3_value_bytes(value)));
  };
  auto blob = [&]() {
    const auto* p = static_cast<const char*>(sqlite3_value_blob(value));
    return std::string_view(p ? p : "", static_cast<size_t>(sqlite3_value_bytes(value)));
  };
  auto whole = [&](int64_t v) {
    if (v >= INT32_MIN && v <= INT32_MAX) {
      cells.emplace_back(static_cast<int32_t>(v));
    } else {
      cells.emplace_back(v);
    }
  };
  // A value stored otherwise than its column's type reads back as stored.
  auto as_stored = [&]() {
    switch (storage) {
      case SQLITE_INTEGER:
        whole(sqlite3_value_int64(value));
        break;
      case SQLITE_FLOAT:
        cells.emplace_back(sqlite3_value_double(value));
        break;
      case SQLITE_BLOB:
        cells.emplace_back(blob());
        break;
      default:
        cells.emplace_back(text());
    }
  };
  switch (kind) {
    case ValueKind::kInt16:
      if (storage == SQLITE_INTEGER) {
        const int64_t v = sqlite3_value_int64(value);
        if (v >= INT16_MIN && v <= INT16_MAX) {
          cells.emplace_back(static_cast<int16_t>(v));
          return;
        }
      }
      return as_stored();
    case ValueKind::kInt64:
      if (storage == SQLITE_INTEGER) {
        cells.emplace_back(static_cast<int64_t>(sqlite3_value_int64(value)));
        return;
      }
      return as_stored();
    case ValueKind::kDouble:
      if (storage == SQLITE_INTEGER || storage == SQLITE_FLOAT) {
        cells.emplace_back(sqlite3_value_double(value));
        return;
      }
      return as_stored();
    case ValueKind::kCurrency:
      // A value beyond the currency's range (about 9.2 x 10^14) is read as
      // stored rather than wrapped round or failing the whole statement.
      if (storage == SQLITE_INTEGER) {
        constexpr int64_t kLargest = INT64_MAX / 10000;
        const int64_t v = sqlite3_value_int64(value);
        if (v >= -kLargest && v <= kLargest) {
          cells.emplace_back(Currency{v * 10000});
          return;
        }
      } else if (storage == SQLITE_FLOAT) {
        const double v = sqlite3_value_double(value);
        if (v > -922337203685477.0 && v < 922337203685477.0) {
          cells.emplace_back(Currency::FromDouble(v));
          return;
        }
      }
      return as_stored();
    case ValueKind::kBoolean:
      if (storage == SQLITE_INTEGER || storage == SQLITE_FLOAT) {
        cells.emplace_back(sqlite3_value_double(value) != 0.0);
        return;
      }
      if (storage == SQLITE_TEXT) {
        const std::string_view t = text();
        if (EqualsNoCase(t, "true") || EqualsNoCase(t, "false")) {
          cells.emplace_back(EqualsNoCase(t, "true"));
          return;
        }
      }
      return as_stored();
    case ValueKind::kDate:
      if (storage == SQLITE_TEXT) {
        if (const auto d = ParseDate(text())) {
          cells.emplace_back(*d);
          return;
        }
      } else if (storage == SQLITE_INTEGER || storage == SQLITE_FLOAT) {
        const double serial = sqlite3_value_double(value);
        if (serial > -657435.0 && serial < 2958466.0) {  // the years 100 to 9999
          cells.emplace_back(Date(serial));
          return;
        }
      }
      return as_stored();
    case ValueKind::kText:
      cells.emplace_back(storage == SQLITE_BLOB ? blob() : text());
      return;
    case ValueKind::kBlob:
      cells.emplace_back(storage == SQLITE_BLOB ? blob() : text());
      return;
    case ValueKind::kInt32:
    case ValueKind::kDynamic:
    default:
      return as_stored();
  }
}

// SettleDates turns the texts of column c into Dates when every one of
// them is a date's ISO text (an aggregate or function of dates); false,
// changing nothing, when one is not.
bool SettleDates(RowSet& rows, size_t c) {
  const size_t width = rows.columns.size();
  for (size_t i = c; i < rows.cells.size(); i += width) {
    const Variant& cell = rows.cells[i];
    if (cell.Type() == vbString && !IsoDateValue(cell.Text())) return false;
  }
  for (size_t i = c; i < rows.cells.size(); i += width) {
    Variant& cell = rows.cells[i];
    if (cell.Type() == vbString) cell = Variant(*IsoDateValue(cell.Text()));
  }
  return true;
}

// SettleDynamicTypes gives a column without a declared type the type its
// values have.
void SettleDynamicTypes(RowSet& rows, const std::vector<ValueKind>& kinds) {
  const size_t width = rows.columns.size();
  for (size_t c = 0; c < width; ++c) {
    if (kinds[c] != ValueKind::kDynamic) continue;
    bool whole = false, big = false, fraction = false, text = false;
    for (size_t i = c; i < rows.cells.size(); i += width) {
      switch (rows.cells[i].Type()) {
        case vbLong:
          whole = true;
          break;
        case vbLongLong:
          big = true;
          break;
        case vbDouble:
          fraction = true;
          break;
        case vbString:
          text = true;
          break;
        default:
          break;
      }
    }
    DataTypeEnum type = adVarWChar;
    if (text && !whole && !big && !fraction && SettleDates(rows, c)) {
      type = adDate;
    } else if (!text) {
      if (fraction) {
        type = adDouble;
      } else if (big) {
        type = adBigInt;
      } else if (whole) {
        type = adInteger;
      }
    }
    rows.columns[c].type = type;
  }
}

class SqliteConnection final : public DriverConnection {
 public:
  SqliteConnection(sqlite3* db, std::string path) : db_(db), path_(std::move(path)) {}
  ~SqliteConnection() override { Close(); }
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;

  // Configure readies a newly opened file. The schema is read at once, so a
  // file that is no database, a damaged one or one that another program
  // holds locked is refused here, with SQLite's reason, rather than at the
  // first statement; and a lock held elsewhere is reported after a short
  // wait, not after the whole command timeout.
  void Configure(bool writable, int32_t busy_timeout_seconds) {
    sqlite3_extended_result_codes(db_, 1);
    if (RegisterDialectFunctions(db_) != SQLITE_OK) Fail("registering the dialect functions");
    sqlite3_busy_timeout(db_, kOpeningWaitMs);
    Exec("SELECT count(*) FROM sqlite_master");
    if (writable) Exec("PRAGMA journal_mode=WAL");
    Exec("PRAGMA synchronous=FULL");
    Exec("PRAGMA foreign_keys=ON");
    SetBusyTimeout(busy_timeout_seconds);
  }

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override {
    RequireOpen();
    // The values a SELECT's text compares with become parameters, so that
    // look-ups that differ only in them share one prepared statement.
    const std::optional<ParameterizedText> literals =
        params.empty() ? ParameterizeLiterals(sql) : std::nullopt;
    Prepared& prepared = Prepare(literals ? literals->text : sql, sql);
    sqlite3_stmt* stmt = prepared.stmt;
    ResetOnExit reset(stmt);
    Bind(stmt, literals ? literals->values : params, sql, reset.borrowed);

    StatementResult result;
    int width = sqlite3_column_count(stmt);
    if (width == 0) {
      const int64_t before = sqlite3_total_changes64(db_);
      int rc;
      while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
      }
      if (rc != SQLITE_DONE) Fail(sql);
      result.records_affected = sqlite3_total_changes64(db_) != before ? sqlite3_changes64(db_) : 0;
      if (prepared.changes_schema) keys_.clear();
      return result;
    }
    result.has_rows = true;
    int rc = sqlite3_step(stmt);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) Fail(sql);
    if (sqlite3_stmt_status(stmt, SQLITE_STMTSTATUS_REPREPARE, 0) != prepared.reprepares) {
      // The schema changed since the statement was prepared: SELECT * may
      // have other columns now, and tables other keys.
      keys_.clear();
      Describe(prepared);
      width = sqlite3_column_count(stmt);
    }
    RowSet& rows = result.rows;
    rows.columns = prepared.columns;
    size_t expected = std::max<size_t>(prepared.last_rows, 16);
    if (max_rows > 0) expected = std::min<size_t>(expected, static_cast<size_t>(max_rows));
    rows.cells = internal::CellStorage(expected * static_cast<size_t>(width));
    const std::vector<ValueKind>& kinds = prepared.kinds;
    int64_t count = 0;
    while (rc == SQLITE_ROW) {
      for (int c = 0; c < width; ++c)
        AppendValue(rows.cells, sqlite3_column_value(stmt, c), kinds[static_cast<size_t>(c)]);
      if (max_rows > 0 && ++count >= max_rows) break;
      rc = sqlite3_step(stmt);
    }
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) Fail(sql);
    prepared.last_rows = rows.cells.size() / static_cast<size_t>(width);
    SettleDynamicTypes(rows, kinds);
    return result;
  }

  void BeginTransaction() override { Run("BEGIN IMMEDIATE", {}, 0); }
  void CommitTransaction() override { Run("COMMIT", {}, 0); }
  void RollbackTransaction() override { Run("ROLLBACK", {}, 0); }

  std::vector<std::string> KeyColumns(const std::string& table) override {
    RequireOpen();
    if (auto it = keys_.find(table); it != keys_.end()) return it->second;
    std::vector<std::string> keys = ReadKeyColumns(table);
    keys_.emplace(table, keys);
    return keys;
  }

  // ReadKeyColumns asks the schema; KeyColumns keeps the answer per table
  // until the schema changes.
  std::vector<std::string> ReadKeyColumns(const std::string& table) {
    std::vector<std::string> keys;
    bool exists = false;
    sqlite3_stmt* stmt = nullptr;
    const char* sql = "SELECT name, pk FROM pragma_table_info(?) ORDER BY pk";
    if (sqlite3_prepare_v2(db_, sql, -1, &stmt, nullptr) != SQLITE_OK) Fail(sql);
    sqlite3_bind_text(stmt, 1, table.c_str(), static_cast<int>(table.size()), SQLITE_TRANSIENT);
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
      exists = true;
      if (sqlite3_column_int(stmt, 1) > 0) {
        keys.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)));
      }
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE) Fail(sql);
    if (exists && keys.empty()) keys.emplace_back("rowid");  // every table without a key has one
    return keys;
  }

  Variant LastInsertedKey(const std::string& table, const std::string& key_column) override {
    RequireOpen();
    // Only the row id is generated by SQLite: the "rowid" itself or the
    // INTEGER PRIMARY KEY that stands for it.
    bool is_rowid = EqualsNoCase(key_column, "rowid");
    if (!is_rowid) {
      const std::vector<std::string> keys = KeyColumns(table);
      if (keys.size() == 1 && EqualsNoCase(keys[0], key_column)) {
        const char* declared = nullptr;
        int primary = 0;
        if (sqlite3_table_column_metadata(db_, nullptr, table.c_str(), key_column.c_str(),
                                          &declared, nullptr, nullptr, &primary,
                                          nullptr) == SQLITE_OK) {
          is_rowid = primary && declared && EqualsNoCase(declared, "INTEGER");
        }
      }
    }
    if (!is_rowid) return Variant();
    const int64_t id = sqlite3_last_insert_rowid(db_);
    if (id >= INT32_MIN && id <= INT32_MAX) return Variant(static_cast<int32_t>(id));
    return Variant(id);
  }

  std::string EqualsParameter(const std::string& column, DataTypeEnum type) const override {
    // Dates are text here: compare the instants, not the spelling.
    if (type == adDate) return "julianday(" + column + ") = julianday(?)";
    if (type == adBoolean) return "(" + column + " <> 0) = (? <> 0)";
    return column + " = ?";
  }

  // Transactions begin IMMEDIATE: the write lock is taken at once.
  bool BeginLocksForWriting() const override { return true; }

  std::vector<std::string> ConstraintColumns(const Error& error) const override {
    return internal::SqliteConstraintColumns(error.Description());
  }

  void SetBusyTimeout(int32_t seconds) override {
    RequireOpen();
    // 0 waits without limit, as a command timeout of 0 does.
    const int64_t ms = seconds <= 0 ? INT_MAX : static_cast<int64_t>(seconds) * 1000;
    sqlite3_busy_timeout(db_, static_cast<int>(std::min<int64_t>(ms, INT_MAX)));
  }

  void Close() override {
    if (!db_) return;
    for (auto& [text, prepared] : cache_)
      sqlite3_finalize(prepared.stmt);
    cache_.clear();
    lru_.clear();
    last_ = nullptr;
    sqlite3_close_v2(db_);
    db_ = nullptr;
  }

  std::string Name() const override { return "SQLite"; }

 private:
  void RequireOpen() const {
    if (!db_) {
      throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
    }
  }

  [[noreturn]] void Fail(const std::string& statement) const {
    const int code = sqlite3_extended_errcode(db_);
    Error error(kErrProviderFailure, sqlite3_errmsg(db_), kSource);
    error.WithNativeError(code).WithStatement(statement);
    if ((code & 0xFF) == SQLITE_CONSTRAINT) error.WithSqlState("23000");
    throw error;
  }

  void Exec(const char* sql) {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql, nullptr, nullptr, &message) != SQLITE_OK) {
      std::string text = message ? message : sqlite3_errmsg(db_);
      sqlite3_free(message);
      const int code = sqlite3_extended_errcode(db_);
      if ((code & 0xFF) == SQLITE_BUSY || (code & 0xFF) == SQLITE_LOCKED) {
        text += " (another program holds it)";
      }
      throw Error(kErrProviderFailure, "Cannot open the SQLite database \"" + path_ + "\": " + text,
                  kSource)
          .WithNativeError(code)
          .WithStatement(sql);
    }
  }

  // Prepare: the prepared statement for sql, from the cache when it is
  // there; failures name shown, the statement as the caller wrote it.
  Prepared& Prepare(const std::string& sql, const std::string& shown) {
    // A run of one statement (write-back's edits, a look-up in a loop) is
    // found without hashing its text; it is already the most recent.
    if (last_ != nullptr && last_->first == sql) return last_->second;
    if (auto it = cache_.find(sql); it != cache_.end()) {
      lru_.splice(lru_.begin(), lru_, it->second.lru);
      last_ = &*it;
      return it->second;
    }
    const std::string text = RewriteDialect(sql);
    sqlite3_stmt* stmt = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v3(db_, text.c_str(), static_cast<int>(text.size()) + 1,
                           SQLITE_PREPARE_PERSISTENT, &stmt, &tail) != SQLITE_OK) {
      Fail(shown);
    }
    if (stmt == nullptr) {
      throw Error(kErrProviderFailure, "The statement is empty", kSource).WithStatement(shown);
    }
    if (tail && !RestIsEmpty(tail)) {
      sqlite3_finalize(stmt);
      throw Error(kErrProviderFailure,
                  "The text holds more than one statement; a script runs through ExecuteScript",
                  kSource)
          .WithStatement(shown);
    }
    if (cache_.size() >= kCachedStatements) {
      last_ = nullptr;
      auto oldest = cache_.find(lru_.back());
      sqlite3_finalize(oldest->second.stmt);
      cache_.erase(oldest);
      lru_.pop_back();
    }
    lru_.push_front(sql);
    auto& entry = *cache_.try_emplace(sql).first;
    Prepared& prepared = entry.second;
    prepared.stmt = stmt;
    prepared.changes_schema = ChangesSchema(sql);
    prepared.lru = lru_.begin();
    Describe(prepared);
    last_ = &entry;
    return prepared;
  }

  // Describe reads the columns of a prepared statement: names, declared
  // types, and the table and column each comes from (for write-back).
  void Describe(Prepared& prepared) {
    sqlite3_stmt* stmt = prepared.stmt;
    prepared.reprepares = sqlite3_stmt_status(stmt, SQLITE_STMTSTATUS_REPREPARE, 0);
    const int width = sqlite3_column_count(stmt);
    prepared.columns.assign(static_cast<size_t>(width), ColumnInfo());
    prepared.kinds.assign(static_cast<size_t>(width), ValueKind::kDynamic);
    for (int c = 0; c < width; ++c) {
      ColumnInfo& info = prepared.columns[static_cast<size_t>(c)];
      const char* name = sqlite3_column_name(stmt, c);
      info.name = name ? name : "";
      const char* declared = sqlite3_column_decltype(stmt, c);
      const DeclaredType type = MapDeclaredType(declared ? declared : "");
      info.type = type.type;
      info.defined_size = type.defined_size;
      prepared.kinds[static_cast<size_t>(c)] = type.kind;
      const char* table = sqlite3_column_table_name(stmt, c);
      const char* origin = sqlite3_column_origin_name(stmt, c);
      if (!table || !origin) continue;
      info.base_table = table;
      info.base_column = origin;
      int not_null = 0, primary = 0, autoinc = 0;
      if (sqlite3_table_column_metadata(db_, sqlite3_column_database_name(stmt, c), table, origin,
                                        nullptr, nullptr, &not_null, &primary,
                                        &autoinc) == SQLITE_OK) {
        info.nullable = !not_null;
        info.key = primary != 0;
        if (primary && declared && EqualsNoCase(declared, "INTEGER")) {
          // The INTEGER PRIMARY KEY is the row id when it is the whole key.
          info.auto_increment = KeyColumns(info.base_table).size() == 1;
        }
        info.auto_increment = info.auto_increment || autoinc;
      }
    }
  }

  // Bind sets every parameter of stmt; borrowed turns true once a text is
  // bound without a copy, pointing into params.
  void Bind(sqlite3_stmt* stmt, const std::vector<Variant>& params, const std::string& sql,
            bool& borrowed) {
    const int expected = sqlite3_bind_parameter_count(stmt);
    if (expected != static_cast<int>(params.size())) {
      throw Error(kErrProviderFailure,
                  "The statement takes " + std::to_string(expected) + " parameters, not " +
                      std::to_string(params.size()),
                  kSource)
          .WithStatement(sql);
    }
    for (int i = 0; i < expected; ++i) {
      const Variant& v = params[static_cast<size_t>(i)];
      const int n = i + 1;
      int rc = SQLITE_OK;
      // The numbers are read as held: no conversion can fail or round here.
      switch (v.Type()) {
        case vbEmpty:
        case vbNull:
          rc = sqlite3_bind_null(stmt, n);
          break;
        case vbBoolean:
          rc = sqlite3_bind_int(stmt, n, *v.Get<bool>() ? 1 : 0);
          break;
        case vbInteger:
          rc = sqlite3_bind_int(stmt, n, *v.Get<int16_t>());
          break;
        case vbLong:
          rc = sqlite3_bind_int(stmt, n, *v.Get<int32_t>());
          break;
        case vbLongLong:
          rc = sqlite3_bind_int64(stmt, n, *v.Get<int64_t>());
          break;
        case vbSingle:
          rc = sqlite3_bind_double(stmt, n, *v.Get<float>());
          break;
        case vbDouble:
          rc = sqlite3_bind_double(stmt, n, *v.Get<double>());
          break;
        case vbCurrency:
          rc = sqlite3_bind_double(stmt, n, v.Get<Currency>()->ToDouble());
          break;
        case vbDate: {
          const std::string text = IsoDateText(*v.Get<Date>());
          rc = sqlite3_bind_text(stmt, n, text.data(), static_cast<int>(text.size()),
                                 SQLITE_TRANSIENT);
          break;
        }
        case vbString: {
          const std::string_view text = v.Text();
          rc = sqlite3_bind_text(stmt, n, text.data(), static_cast<int>(text.size()),
                                 SQLITE_STATIC);  // params outlive the statement's run
          borrowed = true;
          break;
        }
        default:
          throw Error(kErrTypeMismatch, "Type mismatch (an object cannot be a parameter)", kSource)
              .WithStatement(sql);
      }
      if (rc != SQLITE_OK) Fail(sql);
    }
  }

  sqlite3* db_;
  std::string path_;
  std::unordered_map<std::string, Prepared> cache_;
  std::list<std::string> lru_;                                      // most recently used first
  std::pair<const std::string, Prepared>* last_ = nullptr;          // the last one Prepare gave
  std::unordered_map<std::string, std::vector<std::string>> keys_;  // KeyColumns, per table
};

}  // namespace

namespace {

// FileUri: path as a "file:" name, for the open options that only a name of
// that form can carry.
std::string FileUri(const std::string& path, const char* query) {
  std::string uri = "file:";
  for (const char c : path) {
    const auto u = static_cast<unsigned char>(c);
    if (std::isalnum(u) || c == '/' || c == '.' || c == '-' || c == '_' || c == '~') {
      uri += c;
    } else {
      static constexpr char kHex[] = "0123456789ABCDEF";
      uri += '%';
      uri += kHex[u >> 4];
      uri += kHex[u & 15];
    }
  }
  return uri + "?" + query;
}

bool MarkedReadOnly(const std::filesystem::path& file) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::perms perms = fs::status(file, error).permissions();
  return !error && (perms & (fs::perms::owner_write | fs::perms::group_write |
                             fs::perms::others_write)) == fs::perms::none;
}

}  // namespace

std::unique_ptr<DriverConnection> OpenSqliteConnection(const std::string& path, OpenMode mode,
                                                       int32_t busy_timeout_seconds) {
  namespace fs = std::filesystem;
  const bool in_memory = path == ":memory:";
  auto refuse = [&path](const std::string& why) {
    return Error(kErrProviderFailure, "Cannot open the SQLite database \"" + path + "\": " + why,
                 kSource);
  };
  // Only Mode=ReadWriteCreate makes a database: an absent file is not
  // created, and an empty one (which SQLite would take for a new database
  // and write to) is not a database.
  bool read_only = mode == OpenMode::kReadOnly;
  bool immutable = false;
  if (!in_memory && mode != OpenMode::kReadWriteCreate) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
      throw Error(kErrProviderFailure,
                  "The SQLite database file \"" + path +
                      "\" does not exist (Mode=ReadWriteCreate in the connection string creates "
                      "it)",
                  kSource);
    }
    if (fs::is_regular_file(status) && fs::file_size(path, error) == 0 && !error) {
      throw refuse(
          "the file is empty, which is no database (Mode=ReadWriteCreate in the connection "
          "string makes one of it)");
    }
    // A file marked read-only is read without writing to it or beside it:
    // no WAL index or log is created next to it, unless a log is there
    // already that holds changes still to be read.
    if (MarkedReadOnly(path)) {
      read_only = true;
      const fs::path wal = path + "-wal";
      immutable = !fs::exists(wal, error) || fs::file_size(wal, error) == 0;
    }
  }
  int flags = SQLITE_OPEN_NOMUTEX;
  if (read_only) {
    flags |= SQLITE_OPEN_READONLY;
  } else if (mode == OpenMode::kReadWriteCreate) {
    flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  } else {
    flags |= SQLITE_OPEN_READWRITE;
  }
  std::string name = path;
  if (immutable) {
    flags |= SQLITE_OPEN_URI;
    name = FileUri(path, "immutable=1");
  }
  sqlite3* db = nullptr;
  const int rc = sqlite3_open_v2(name.c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    const std::string message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    sqlite3_close_v2(db);
    throw refuse(message).WithNativeError(rc);
  }
  auto connection = std::make_unique<SqliteConnection>(db, path);
  // SQLite itself falls back to reading a file it may not write.
  connection->Configure(!read_only && sqlite3_db_readonly(db, "main") != 1, busy_timeout_seconds);
  return connection;
}

}  // namespace kelvary::sqlite
