// ReadResult: the columns and rows of the result open on a statement, fetched
// in full into a RowSet.
//
// Column types become the classic data-type codes and each cell a Variant:
//   SMALLINT 2 (Integer), INTEGER 3 (Long), BIGINT 20 (LongLong),
//   TINYINT 16 (Integer), unsigned integers 17/18/19/21 (the next wider kind),
//   REAL 4 (Single), FLOAT and DOUBLE 5 (Double),
//   NUMERIC and DECIMAL 131: Currency when the declared scale is 0 to 4 and the
//     precision at most 19 (exact, and what amounts, money types and numeric
//     keys are; a value beyond Currency's range reads as Double), Double
//     otherwise (unconstrained numerics included),
//   BIT 11 (Boolean), DATE 7, TIMESTAMP 135 and TIME 134 (Date; microseconds
//     kept; a date outside the years 100 to 9999 reads as its ISO text),
//   CHAR, VARCHAR and their wide forms 202, LONGVARCHAR forms 203 (String,
//     UTF-8), BINARY and VARBINARY 204, LONGVARBINARY 205 (String holding the
//     bytes), anything else 202 with the driver's text for the value.
// NULL is Variant::Null().
//
// Fetching: when the driver can read a bound column again with SQLGetData,
// columns are bound; when it can also position within a block of rows
// (SQLSetPos; psqlodbc can, on its static cursor), they are bound in arrays
// and fetched a block of rows at a time, else one row at a time. A value
// that does not fit its slot (long text columns are bound with a short
// slot) is read again in full with SQLGetData. Text is bound 8-bit at first
// and taken from the slot only when it is plain ASCII; anything else is read
// again wide, and a column where that is common is bound wide for the rest
// of the result. Other drivers are read row by row with SQLGetData.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcApi.h"

namespace kelvary::odbc {

// FetchCapabilities: what the driver allows while fetching.
struct FetchCapabilities {
  bool bound = false;          // bound columns, read again with SQLGetData when needed
  bool block = false;          // ... a block of rows per fetch, positioned with SQLSetPos
  bool static_cursor = false;  // ... which needs a static cursor (set before executing)
};

FetchCapabilities ProbeFetchCapabilities(SQLHDBC dbc);

// ReadResult describes the result's columns into rows.columns, fetches at
// most max_rows rows (0: all) into rows.cells and returns the schema of each
// column's base table ("" when unknown), for the key look-up.
std::vector<std::string> ReadResult(SQLHSTMT stmt, const FetchCapabilities& capabilities,
                                    int32_t max_rows, const std::string& statement, RowSet& rows);

}  // namespace kelvary::odbc
