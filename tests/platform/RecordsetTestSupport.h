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

// PatientsTest: each test on a new database of the backend under test
// holding the six patients, with a second connection (made when first asked
// for) to read what was stored.
class PatientsTest : public BackendTest {
 protected:
  static constexpr const char* kAllPatients = "SELECT * FROM patients ORDER BY ID";

  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    db_ = NewDatabase();
    db_.Run(PatientsSql(Traits()));
  }
  std::shared_ptr<Recordset> Open(const std::string& sql = kAllPatients,
                                  LockTypeEnum lock = adLockReadOnly) {
    return OpenRecordset(db_.Connection(), sql, lock);
  }
  const std::shared_ptr<Connection>& Other() {
    if (!other_) other_ = db_.Connect();
    return other_;
  }
  // The rows of sql as the database holds them now, read on the second
  // connection.
  std::string StoredRows(const std::string& sql) { return Rows(Other(), sql); }
  static std::string Names(Recordset& rs) { return Ids(rs, "LastName"); }
  // Go: to the first row matching criteria (a number: that ID).
  static void Go(Recordset& rs, int32_t id) { Go(rs, "ID = " + std::to_string(id)); }
  static void Go(Recordset& rs, const std::string& criteria) {
    rs.Find(criteria, 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  }

  BackendDatabase db_;

 private:
  std::shared_ptr<Connection> other_;
};

}  // namespace kelvary::testing
