// OdbcDialect: the system's SQL as each kind of server reads it. The system
// writes the desktop database's dialect (and some of Oracle's) whatever the
// server; the ODBC driver sends every statement through TranslateForServer,
// which finds those pieces with the shared recogniser
// (platform/internal/DesktopDialect.h) and writes them for the server:
//
//   piece              PostgreSQL                   MariaDB / MySQL     other servers
//   #m/d/yyyy#         {d 'yyyy-mm-dd'}, with a time {ts 'yyyy-mm-dd hh:mm:ss'} (all)
//   Isnull(x)          ((x) IS NULL)                (all)
//   Ucase$, Ucase      UPPER(x)                     UPPER(x)            {fn UCASE(x)}
//   Lcase$, Lcase      LOWER(x)                     LOWER(x)            {fn LCASE(x)}
//   Month, Day, Year   CAST(EXTRACT(.. FROM x) AS INTEGER)  kept        {fn MONTH(x)} ...
//   Now(), Date()      the platform clock's moment or day as a literal (all), so
//                      that a fixed clock fixes it on every engine
//   TO_Date('t','p')   the date it reads as, as a literal (all); other
//                      calls are kept (PostgreSQL has the function)
//   x LIKE 'J*?'       x ILIKE 'J%_'                x LIKE 'J%_'        x LIKE 'J%_'
//                      (the desktop's LIKE ignores case, PostgreSQL's does not)
//   a & b              a || b                       a || b (the driver sets PIPES_AS_CONCAT)
//                                                                       a + b (SQL Server)
// Only the copy sent to the server changes: the statement the system shows,
// records and finds in errors is its own text.
#pragma once

#include <string>
#include <string_view>

namespace kelvary::odbc {

enum class ServerKind { kOther, kPostgreSQL, kSqlServer, kMySql, kSqlite };

// ServerKindOf: the kind of server a driver's DBMS name (SQL_DBMS_NAME) names.
ServerKind ServerKindOf(std::string_view dbms_name);

// TranslateForServer: sql as the server of that kind reads it.
std::string TranslateForServer(std::string_view sql, ServerKind kind);

}  // namespace kelvary::odbc
