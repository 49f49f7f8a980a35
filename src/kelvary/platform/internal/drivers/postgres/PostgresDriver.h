// The PostgreSQL driver: the server reached through its own client library
// (libpq), without ODBC between. It is the only code that calls libpq;
// everything else reaches it as a DriverConnection.
//
// What it does on top of libpq, so that the cursor engine above gets what
// the other drivers give:
// - The system's SQL (the desktop dialect, some of Oracle's) is written for
//   the server in the copy sent only (internal/PostgresDialect.h), and its
//   "?" markers become $1, $2 ...; a refused statement's Error names the
//   system's text as its statement and the text sent in its description.
// - Parameters are bound, typed by their Variant (internal/PostgresValues.h),
//   never written into the text; results come back in binary and each
//   column is typed by its type's OID into the same DataTypeEnum the ODBC
//   driver gives the same column, so that a value reads alike through both.
// - Base table, column, NOT NULL, key and serial flags of each result column
//   come from the catalog, read once per table and connection and forgotten
//   when a CREATE, ALTER or DROP runs through it.
// - Key columns: the primary key, else a unique index over NOT NULL columns.
// - LastInsertedKey: currval of the column's sequence, fenced by a savepoint
//   inside a transaction (a key never drawn must not abort the caller's work).
// - Inside a transaction each statement runs under a savepoint of its own, so
//   that a refused statement is undone alone and the transaction goes on, as
//   it does on the other engines.
// - SetBusyTimeout sets lock_timeout (0: wait as long as it takes).
// - Run's max_rows keeps the first rows of the result; the server still
//   sends the rest (a statement that wants few rows says so in its SQL).
// - A statement is one statement: the server refuses several in one text
//   with parameters or results in binary (the script runner splits them).
//
// A connection is used by one thread at a time.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::postgres {

// ConnectSetting: one libpq keyword and its value ("host", "127.0.0.1").
using ConnectSetting = std::pair<std::string, std::string>;

// SettingsFromItems: libpq's settings for a connection string's keys: Host
// (or Server), Port, Database (or Initial Catalog), User ID (or UID),
// Password (or PWD), and any key libpq itself knows (sslmode,
// connect_timeout, application_name ...) as it stands; other keys (Provider)
// are the system's and are left out.
std::vector<ConnectSetting> SettingsFromItems(
    const std::vector<std::pair<std::string, std::string>>& items);

// OpenPostgresConnection connects with libpq. uri, when not empty, is a
// postgresql:// URI (or a "key=value ..." conninfo) read first; settings
// come after it and override it; user and password, when not empty, last.
// Throws Error 3000 with libpq's message (SQLSTATE 08001) when the
// connection fails.
std::unique_ptr<DriverConnection> OpenPostgresConnection(
    const std::string& uri, const std::vector<ConnectSetting>& settings, const std::string& user,
    const std::string& password);

}  // namespace kelvary::postgres
