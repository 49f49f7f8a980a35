// SqlScript: runs SQL text that holds several statements (schema files, demo
// data, test set-up) on a connection, one statement at a time.
//
// Statements are separated by ';' outside quoted text ('...', "...", [...],
// `...`) and comments (-- to the end of the line, /* ... */); a CREATE
// TRIGGER runs up to the "; END" that closes its body, as SQLite itself
// reads it. Comments and empty statements are skipped.
// Same thread rules as the connection.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvary {

class Connection;

// SplitSqlScript: the statements of sql, in order, without their ';' and
// without comments.
std::vector<std::string> SplitSqlScript(std::string_view sql);

// ExecuteScript runs every statement of sql on connection. Unless the script
// manages transactions itself (BEGIN, COMMIT, ROLLBACK, END) or holds
// statements that cannot run inside one (PRAGMA, VACUUM, ATTACH), it runs in
// one transaction, so that a failure leaves the database as it was and a
// long script is written in one go. A failing statement raises its Error
// with "Statement <n> of the script" added in front and the statement text.
// REQUIRES: connection open and not inside a transaction started with
// BeginTrans (the script would then join it).
void ExecuteScript(Connection& connection, std::string_view sql);

}  // namespace kelvary
