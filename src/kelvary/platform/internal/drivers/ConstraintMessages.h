// ConstraintMessages: the columns a database's constraint-failure message
// names, read from the message text in each database's own wording. Drivers
// answer DriverConnection::ConstraintColumns with these; write-back then
// marks the fields concerned. Pure functions; thread-safe.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvary::internal {

// SqliteConstraintColumns: "NOT NULL constraint failed: t.col" or "UNIQUE
// constraint failed: t.a, t.b" name their columns after the colon, each
// qualified by its table; a CHECK or FOREIGN KEY failure names none.
std::vector<std::string> SqliteConstraintColumns(std::string_view message);

// ServerConstraintColumns: PostgreSQL's wording, as it reaches a client
// directly or through ODBC: a column as column "col" (not null), a key as
// Key (a, b)=(...) in the detail line (unique, foreign key); MariaDB's:
// Column 'col' cannot be null, Field 'col' doesn't have a default value.
std::vector<std::string> ServerConstraintColumns(std::string_view message);

}  // namespace kelvary::internal
