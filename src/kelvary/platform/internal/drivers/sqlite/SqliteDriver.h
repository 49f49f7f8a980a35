// The built-in SQLite driver: the only code of the library that calls the
// SQLite C API (with SqliteDialect.cpp). Connection opens it for a SQLite
// file named in the connection string.
//
// A file is opened in WAL journal mode with full synchronous writes and
// foreign keys on, so that several connections and processes can share it
// (readers never wait for the writer). A connection waits for a writer of
// another connection for up to its busy timeout before it fails with
// "database is locked". The handle is opened without SQLite's own per-call
// locking (SQLITE_OPEN_NOMUTEX): like every connection of this library it
// is used by one thread at a time.
//
// Statements are prepared once per connection and kept (the most recently
// used 128), so a statement text that repeats, as the look-ups' do, skips
// SQLite's parser. Transactions begin IMMEDIATE: the write lock is taken at
// BeginTrans, so a transaction never fails halfway for a lock it could not
// upgrade.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::sqlite {

enum class OpenMode {
  kReadOnly,
  kReadWrite,        // the file must exist
  kReadWriteCreate,  // an absent file is created empty
};

// OpenSqliteConnection opens the database file at path (":memory:" for a
// private in-memory database). Raises Error 3000 naming the file and the
// reason when it is absent or empty (and mode does not create it), is no
// database or a damaged one ("file is not a database", "database disk image
// is malformed"), or is locked by another program ("database is locked",
// after a wait of two seconds at most). A file marked read-only is opened
// for reading whatever the mode, and nothing is written to it or created
// beside it.
std::unique_ptr<DriverConnection> OpenSqliteConnection(const std::string& path, OpenMode mode,
                                                       int32_t busy_timeout_seconds);

}  // namespace kelvary::sqlite
