// Small helpers shared by the platform tests that work on real SQLite files.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {

// ErrorOf: the Error that f raises (number 0 and an empty text when none).
inline Error ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e;
  }
  return Error(0, "");
}

inline std::shared_ptr<Recordset> OpenRecordset(const std::shared_ptr<Connection>& connection,
                                                const std::string& sql,
                                                LockTypeEnum lock = adLockReadOnly,
                                                CursorTypeEnum cursor = adOpenStatic) {
  auto rs = std::make_shared<Recordset>();
  rs->Open(sql, connection, cursor, lock, adCmdUnspecified);
  return rs;
}

// The IDs of the visible rows from the first to the last, leaving the
// cursor at EOF.
inline std::string Ids(Recordset& rs, const char* field = "ID") {
  std::string ids;
  if (rs.RecordCount() == 0) return ids;
  rs.MoveFirst();
  while (!rs.Eof()) {
    ids += (ids.empty() ? "" : ",") + CStr(rs.Fields(field).Value());
    rs.MoveNext();
  }
  return ids;
}

// A small practice: six patients, some related to a parent.
inline const char* kPatients = R"sql(
  CREATE TABLE patients (
    ID INTEGER PRIMARY KEY,
    LastName TEXT NOT NULL,
    FirstName VARCHAR(30),
    DOB DATE,
    Balance DOUBLE,
    ParentID INTEGER,
    Active BOOLEAN DEFAULT 1
  );
  INSERT INTO patients VALUES (1, 'Smith', 'John', '1980-03-05', 10.5, NULL, 1);
  INSERT INTO patients VALUES (2, 'O''Brien', 'Mary', '1975-12-31', 0, 1, 1);
  INSERT INTO patients VALUES (3, 'smithers', 'Paul', '2001-07-14', -3.25, 1, 0);
  INSERT INTO patients VALUES (4, 'Jones', NULL, NULL, NULL, 3, 1);
  INSERT INTO patients VALUES (5, 'Brown', 'Ann', '1990-01-01 08:30:00', 99, 3, 0);
  INSERT INTO patients VALUES (6, 'Smith', 'Jane', '2010-10-10', 7, NULL, 1);
)sql";

}  // namespace kelvary::testing
