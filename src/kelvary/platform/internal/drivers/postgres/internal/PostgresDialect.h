// PostgresDialect: the system's SQL as PostgreSQL reads it through its own
// client. The desktop pieces (platform/internal/DesktopDialect.h) are written
// in the server's words:
//   #m/d/yyyy#          DATE 'yyyy-mm-dd', TIMESTAMP '... hh:mm:ss' with a time
//   Isnull(x)           ((x) IS NULL)
//   Ucase$, Lcase$      UPPER(x), LOWER(x)
//   Month, Day, Year    CAST(EXTRACT(.. FROM x) AS INTEGER)
//   Now(), Date()       the platform clock's moment or day as a literal
//   TO_Date('t','p')    the date it reads as, as a literal (other calls kept)
//   x LIKE 'J*?'        x ILIKE 'J%_' (the desktop's LIKE ignores case)
//   a & b               a || b
// and the "?" parameter markers outside quotes and comments become $1, $2 ...
// Pure functions; thread-safe.
#pragma once

#include <string>
#include <string_view>

namespace kelvary::postgres {

// TranslateForPostgres: sql as the server reads it.
std::string TranslateForPostgres(std::string_view sql);

// NumberParameters: sql with its n-th "?" marker (outside literals, quoted
// names and comments) written $n.
std::string NumberParameters(std::string_view sql);

}  // namespace kelvary::postgres
