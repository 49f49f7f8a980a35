// Small helpers shared by the platform tests that work on real databases.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "support/Backend.h"
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

// A small practice: six patients, some related to a parent. DOB holds a
// time of day for patient 5.
inline std::string PatientsSql(const BackendTraits& traits = {}) {
  return "CREATE TABLE patients (ID " + traits.auto_key +
         ", LastName TEXT NOT NULL, FirstName VARCHAR(30), DOB " + traits.datetime_type +
         ", Balance DOUBLE PRECISION, ParentID INTEGER, Active BOOLEAN DEFAULT TRUE);" + R"sql(
    INSERT INTO patients VALUES (1, 'Smith', 'John', '1980-03-05', 10.5, NULL, TRUE);
    INSERT INTO patients VALUES (2, 'O''Brien', 'Mary', '1975-12-31', 0, 1, TRUE);
    INSERT INTO patients VALUES (3, 'smithers', 'Paul', '2001-07-14', -3.25, 1, FALSE);
    INSERT INTO patients VALUES (4, 'Jones', NULL, NULL, NULL, 3, TRUE);
    INSERT INTO patients VALUES (5, 'Brown', 'Ann', '1990-01-01 08:30:00', 99, 3, FALSE);
    INSERT INTO patients VALUES (6, 'Smith', 'Jane', '2010-10-10', 7, NULL, TRUE);)sql" +
         traits.SyncAutoKey("patients", "ID");
}

}  // namespace kelvary::testing
