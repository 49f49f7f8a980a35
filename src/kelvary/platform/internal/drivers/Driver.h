// DriverConnection: what the cursor engine needs of a database. A driver
// prepares and runs one statement, reports the columns of its result (name,
// type, base table and column, key flag) and hands over the rows; it knows
// nothing of recordset semantics (cursor, filter, edit modes), which live in
// the cursor engine above it.
//
// Drivers are the only code that calls a database's client API: the SQLite
// driver (drivers/sqlite), the ODBC driver (drivers/odbc) and the PostgreSQL
// driver (drivers/postgres). The driver
// factory (DriverFactory.h) picks one from the connection string. What
// differs between databases and matters above the seam (locking, constraint
// failures, comparing a stored value) is asked of the driver here, each with
// the common behaviour as its default, so that no code above names a driver.
//
// A driver connection is used by one thread at a time. Every failure is an
// Error carrying the driver's message, SQLSTATE and native code where there
// are any, and the statement text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/platform/internal/CellBuffers.h"

namespace kelvary {

// ColumnInfo: one column of a result.
struct ColumnInfo {
  std::string name;
  DataTypeEnum type = adVariant;
  int32_t defined_size = 0;
  bool nullable = true;
  // The table and column the value comes from; empty for an expression.
  std::string base_table;
  std::string base_column;
  // Part of the base table's key (primary key, or the driver's row
  // identifier when the table has none).
  bool key = false;
  bool auto_increment = false;
};

// RowSet: a result fetched in full, cells row by row. Its cells' storage
// goes to the thread's spare when it is destroyed (CellBuffers.h).
struct RowSet {
  std::vector<ColumnInfo> columns;
  std::vector<Variant> cells;  // row r, column c at r * columns.size() + c

  RowSet() = default;
  RowSet(const RowSet&) = default;
  RowSet(RowSet&&) noexcept = default;
  RowSet& operator=(const RowSet&) = default;
  RowSet& operator=(RowSet&&) noexcept = default;
  ~RowSet() { internal::RecycleCells(cells); }

  size_t RowCount() const { return columns.empty() ? 0 : cells.size() / columns.size(); }
  const Variant& Cell(size_t row, size_t column) const {
    return cells[row * columns.size() + column];
  }
};

// StatementResult: what one statement produced.
struct StatementResult {
  bool has_rows = false;          // the statement returns rows (perhaps none)
  RowSet rows;                    // filled when has_rows
  int64_t records_affected = -1;  // rows changed by INSERT, UPDATE or DELETE
};

class DriverConnection {
 public:
  virtual ~DriverConnection() = default;

  // Run executes one statement with positional parameters ("?" markers),
  // fetching at most max_rows rows (0: all of them).
  virtual StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                              int32_t max_rows) = 0;

  virtual void BeginTransaction() = 0;
  virtual void CommitTransaction() = 0;
  virtual void RollbackTransaction() = 0;

  // KeyColumns: the columns that identify a row of a base table, for
  // write-back; empty when the driver cannot tell.
  virtual std::vector<std::string> KeyColumns(const std::string& table) = 0;
  // LastInsertedKey: the key the database generated for the last INSERT on
  // this connection into table (column key_column); Empty when unknown.
  virtual Variant LastInsertedKey(const std::string& table, const std::string& key_column) = 0;

  // EqualsParameter: SQL text that is true when column (already quoted)
  // holds the value of one "?" parameter of the given type, for locating a
  // row by the values it was read with. Drivers that store a type in a form
  // of their own (SQLite's dates as text) compare by meaning here.
  virtual std::string EqualsParameter(const std::string& column, DataTypeEnum type) const {
    (void)type;
    return column + " = ?";
  }

  // BeginLocksForWriting: whether BeginTransaction takes the database's write
  // lock, so that nothing another connection writes can come between a read
  // in the transaction and a write based on it. Servers lock rows, and only
  // when they are written: the caller must lock what it reads first.
  virtual bool BeginLocksForWriting() const { return false; }

  // IsConstraintViolation: whether error is the database refusing a write for
  // a constraint (not null, unique or primary key, check, foreign key):
  // SQLSTATE class 23.
  virtual bool IsConstraintViolation(const Error& error) const {
    return error.SqlState().rfind("23", 0) == 0;
  }
  // ConstraintColumns: the columns a constraint violation names, without
  // their table; empty when the message names none (or cannot be read).
  virtual std::vector<std::string> ConstraintColumns(const Error& error) const {
    (void)error;
    return {};
  }

  // SetBusyTimeout: how long to wait for a database that another connection
  // or process is writing before failing.
  virtual void SetBusyTimeout(int32_t seconds) = 0;

  virtual void Close() = 0;
  // Name: the driver's name for messages ("SQLite", "ODBC").
  virtual std::string Name() const = 0;
};

}  // namespace kelvary
