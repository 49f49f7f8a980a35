// The ODBC driver: client/server databases (PostgreSQL, SQL Server, Oracle,
// MariaDB, ...) through the platform's driver manager (unixODBC on Linux).
// It is the only code that calls the ODBC API; everything else reaches it as
// a DriverConnection.
//
// What it does on top of plain ODBC, so that the cursor engine above gets
// the same behaviour as from the SQLite driver:
// - The system's SQL (the desktop dialect, some of Oracle's) is translated
//   for the server, known from the driver's DBMS name, in the copy sent
//   only (internal/OdbcDialect.h); a refused statement's Error names the
//   system's text as its statement and the text sent in its description.
//   On MariaDB and MySQL the session takes PIPES_AS_CONCAT and
//   NO_BACKSLASH_ESCAPES.
// - Text crosses ODBC as UTF-16 and reaches the library as UTF-8; result
//   text is fetched 8-bit first and kept so only when it is plain ASCII,
//   which reads the same in any character set the driver may use.
// - Rows are fetched with bound column arrays a block at a time (see
//   internal/OdbcResult.h for the types and values each column gets); on
//   MariaDB and MySQL one row at a time, their driver's positioning within
//   a block being unreliable.
// - Key columns come from SQLPrimaryKeys, or from SQLSpecialColumns (the
//   row identifier, real columns only) for a table without a primary key;
//   they are cached per table for the life of the connection and forgotten
//   when a CREATE, ALTER or DROP runs through it.
// - LastInsertedKey asks the server in its own words: PostgreSQL the
//   column's sequence (currval, inside a savepoint when a transaction is
//   open, so that a key that was never generated does not abort the
//   transaction), SQL Server @@IDENTITY, MySQL and MariaDB LAST_INSERT_ID(),
//   SQLite last_insert_rowid(); Empty elsewhere.
// - SetBusyTimeout sets the server's lock wait where it has one (PostgreSQL
//   lock_timeout, SQL Server LOCK_TIMEOUT, MySQL/MariaDB
//   innodb_lock_wait_timeout), 0 meaning wait as long as it takes; for other
//   servers it becomes each statement's query timeout.
// - Transactions switch autocommit off until the commit or rollback;
//   nesting is refused.
//
// - Yes/no columns read as Boolean everywhere: MariaDB's and MySQL's
//   BOOLEAN (a TINYINT(1), which their driver reports as any tinyint) is
//   found in the catalog, once per table.
//
// For PostgreSQL through psqlodbc, configure the data source with
// BoolsAsChar=0 (so that booleans read as Boolean, not text) and with Debug=0
// and CommLog=0 (the driver's logs slow every call). For MariaDB, with
// Option=2 (an UPDATE counts the rows it matched, as write-back expects).
//
// A connection is used by one thread at a time.
#pragma once

#include <memory>
#include <string>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary {

// OpenOdbcConnection connects through ODBC. connection_string is "DSN=<name>"
// (a bare name is taken as a data-source name too) or a driver connection
// string such as "Driver={PostgreSQL Unicode};Server=...;Database=...",
// passed as it stands. user and password, when not empty, are added as UID
// and PWD. Throws Error with the driver manager's or driver's message and
// SQLSTATE when the connection fails.
std::unique_ptr<DriverConnection> OpenOdbcConnection(const std::string& connection_string,
                                                     const std::string& user,
                                                     const std::string& password);

}  // namespace kelvary
