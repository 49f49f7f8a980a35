// SqliteDialect: the desktop database's SQL made to run on SQLite. The system
// writes that dialect on purpose (#03/05/2024# dates, Isnull(x) = true,
// Ucase$(x), Month(x), Like 'JS0*') and some of the Oracle one
// (TO_Date('05-Mar-2024','DD-Mon-YYYY'), ||), so the SQLite driver:
//   - rewrites #date# literals outside quoted text and comments to ISO text
//     ('2024-03-05', or '2024-03-05 10:30:00' with a time), and the calls
//     of Isnull, which SQLite's parser would take for its ISNULL operator;
//   - registers Isnull, Ucase$, Ucase, Lcase$, Lcase, Month, Day, Year, Now,
//     Date (without arguments: today), TO_Date;
//   - replaces LIKE so that * and ? work beside % and _ (still without
//     regard to case, as SQLite's own LIKE).
// Now and Date read the platform clock (SetClock), so tests can fix today.
// Dates come back from Now, Date and TO_Date as ISO text, the form the
// driver stores dates in, so they compare with stored dates as text.
#pragma once

#include <string>
#include <string_view>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/internal/DesktopDialect.h"

struct sqlite3;

namespace kelvary::sqlite {

// RewriteDialect: sql as SQLite reads it: every #date# that reads as a date
// (see ParseDate) replaced by its ISO text in apostrophes, and every call
// Isnull(...) renamed kelvary_isnull(...) (ISNULL is a word of SQLite's
// own: "x ISNULL"). Text in '...', "...", [...] and `...`, and comments,
// is left alone, as is a #...# that is no date. The recognition is the one
// every driver shares (internal/DesktopDialect.h).
std::string RewriteDialect(std::string_view sql);

// ParseOracleDate reads TO_Date's text with its picture, here and in the
// ODBC driver alike.
using internal::ParseOracleDate;

// RegisterDialectFunctions: the functions and LIKE above, on db. Returns
// SQLite's result code.
int RegisterDialectFunctions(sqlite3* db);

}  // namespace kelvary::sqlite
