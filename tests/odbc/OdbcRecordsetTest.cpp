// Connections opened with the application's own connection string naming an
// ODBC data source: what only such a connection does (the lock wait it sets
// on the server, SHAPE over names the server folds). Navigation, Find,
// Filter, write-back and transactions on PostgreSQL are checked by the shared
// suites (tests/platform), which run on it too.
#include "OdbcTestDatabase.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "shape/ShapeTree.h"

namespace kelvary::testing {
namespace {

#ifdef KELVARY_HAVE_ODBC

class OdbcRecordset : public OdbcTest {
 protected:
  // Connect: a connection by the application's string for the data source,
  // the command timeout set before it opens when one is given.
  std::shared_ptr<Connection> Connect(int32_t command_timeout = -1) {
    auto connection = std::make_shared<Connection>();
    if (command_timeout >= 0) connection->CommandTimeout(command_timeout);
    connection->Open("Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + Dsn() +
                     ";Data Provider=MSDASQL");
    return connection;
  }
};

TEST_F(OdbcRecordset, ShapeRelatesByTheNamesAsWrittenWhateverCaseTheServerReports) {
  const std::string patients = Table("patients");
  const std::string visits = Table("visits");
  Exec("CREATE TABLE " + patients + " (ID INTEGER PRIMARY KEY, Name VARCHAR(30))");
  Exec("CREATE TABLE " + visits + " (ID INTEGER PRIMARY KEY, PatientID BIGINT, Reason text)");
  Exec("INSERT INTO " + patients + " VALUES (1, 'Smith'), (2, 'Jones'), (3, 'Brown')");
  Exec("INSERT INTO " + visits +
       " VALUES (10, 1, 'checkup'), (11, 3, 'flu'), (12, 1, 'x-ray'), (13, 99, 'orphan'),"
       " (14, NULL, 'walk-in')");
  auto connection = Connect();
  auto rs = std::make_shared<Recordset>();
  rs->Open(" SHAPE { Select ID,Name From " + patients +
               " Order By ID  } as Patients APPEND ({Select ID,PatientID,Reason From " + visits +
               " Order By ID  }   as Visits RELATE 'ID' TO  'PatientID' ) AS Visits",
           connection, adOpenKeyset, adLockReadOnly);
  EXPECT_EQ(rs->Fields(0).Name(), "id");
  EXPECT_EQ(rs->Fields(2).Name(), "Visits");
  // INTEGER parents meet BIGINT children; Null and unknown parents meet nobody.
  EXPECT_EQ(ShapeTree(*rs), "1[10,12],2[],3[11]");
  rs->MoveFirst();
  auto chapter = rs->Fields("Visits").Value().ObjectAs<Recordset>();
  chapter->MoveFirst();  // the walk above left the chapter at its end
  chapter->Find("Reason = 'x-ray'");
  EXPECT_EQ(CLng(chapter->Fields("ID").Value()), 12);
}

// A past fault: the command timeout reached the server only when set after
// the connection was open.
TEST_F(OdbcRecordset, CommandTimeoutIsTheServersLockWait) {
  const auto lock_timeout = [](Connection& c) {
    return c.Execute("SHOW lock_timeout")->Fields(0).Value();
  };
  auto connection = Connect();
  EXPECT_EQ(lock_timeout(*connection), Variant("30s"));  // the default, set at open
  connection->CommandTimeout(0);
  EXPECT_EQ(lock_timeout(*connection), Variant("0"));  // wait as long as it takes
  EXPECT_EQ(lock_timeout(*Connect(5)), Variant("5s"));
}

#else

TEST(OdbcRecordset, NotBuilt) {
  GTEST_SKIP() << "this build has no ODBC driver (unixODBC was not found)";
}

#endif

}  // namespace
}  // namespace kelvary::testing
