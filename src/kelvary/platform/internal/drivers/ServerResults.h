// ServerResults: what the two server drivers (ODBC and PostgreSQL's own
// client) do alike to a statement and its result, so that a server reads
// back what the embedded default gives: a whole-number expression that fits
// reads as Long, a schema change is noticed, a table name is read the way
// the caller wrote it. Pure functions; thread-safe.
#pragma once

#include <string>
#include <string_view>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::internal {

// FirstKeyword: the first word of a statement, upper-cased, past blanks,
// opening parentheses and comments.
std::string FirstKeyword(std::string_view sql);

// ChangesSchema: the statement creates, alters, drops or renames something,
// so that what a driver keeps of the catalog must be read again.
bool ChangesSchema(std::string_view sql);

// TableName: a table name as the caller wrote it: "table", "schema.table" or
// "catalog.schema.table", parts plain or quoted with "", [] or ``.
struct TableName {
  std::string schema;
  std::string table;
  bool quoted = false;
};
TableName ParseTableName(std::string_view text);

// NarrowWholeExpressions: a big-integer column computed by the statement
// (COUNT, SUM of integers: BIGINT on the servers) whose every value fits a
// Long reads as Long, as the same column does on the embedded default and
// the desktop database. Columns of a table keep their declared type.
void NarrowWholeExpressions(RowSet& rows);

// CurrencyText: a Currency as exact decimal text with its four places
// ("-12.3400"), the form a server takes a parameter of that type in.
std::string CurrencyText(Currency value);

}  // namespace kelvary::internal
