// SHAPE statements over an ODBC data source (PostgreSQL in CI, which reports
// unquoted names in lower case). Skips unless KELVARY_TEST_ODBC_DSN names a
// data source (scripts/pg-test-server.sh starts one).
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "ShapeTree.h"
#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"

namespace kelvary::testing {
namespace {

class ShapeOverOdbc : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef KELVARY_HAVE_ODBC
    GTEST_SKIP() << "built without ODBC";
#endif
    const char* dsn = std::getenv("KELVARY_TEST_ODBC_DSN");
    if (dsn == nullptr || *dsn == '\0') GTEST_SKIP() << "KELVARY_TEST_ODBC_DSN is not set";
    connection_ = std::make_shared<Connection>();
    connection_->Open(
        std::string("Provider=MSDataShape.1;Persist Security Info=False;Data Source=") + dsn +
        ";Data Provider=MSDASQL");
    // Names no other test or process uses at the same time.
    const std::string suffix = "_" + std::to_string(::getpid());
    patients_ = "ks_patients" + suffix;
    visits_ = "ks_visits" + suffix;
    TearDown();
    connection_->Execute("CREATE TABLE " + patients_ +
                         " (ID INTEGER PRIMARY KEY, Name VARCHAR(30))");
    connection_->Execute("CREATE TABLE " + visits_ +
                         " (ID INTEGER PRIMARY KEY, PatientID BIGINT, Reason VARCHAR(30))");
    connection_->Execute("INSERT INTO " + patients_ +
                         " VALUES (1, 'Smith'), (2, 'Jones'), (3, 'Brown')");
    connection_->Execute("INSERT INTO " + visits_ +
                         " VALUES (10, 1, 'checkup'), (11, 3, 'flu'), (12, 1, 'x-ray'), "
                         "(13, 99, 'orphan'), (14, NULL, 'walk-in')");
  }
  void TearDown() override {
    if (!connection_) return;
    connection_->Execute("DROP TABLE IF EXISTS " + visits_);
    connection_->Execute("DROP TABLE IF EXISTS " + patients_);
  }

  std::shared_ptr<Connection> connection_;
  std::string patients_;
  std::string visits_;
};

TEST_F(ShapeOverOdbc, RelatesByTheNamesAsWrittenWhateverCaseTheServerReports) {
  auto rs = std::make_shared<Recordset>();
  rs->Open(" SHAPE { Select ID,Name From " + patients_ +
               " Order By ID  } as Patients APPEND ({Select ID,PatientID,Reason From " + visits_ +
               " Order By ID  }   as Visits RELATE 'ID' TO  'PatientID' ) AS Visits",
           connection_, adOpenKeyset, adLockReadOnly);
  EXPECT_EQ(rs->Fields(0).Name(), "id");
  EXPECT_EQ(rs->Fields(2).Name(), "Visits");
  // INTEGER parents meet BIGINT children; Null and unknown parents meet nobody.
  EXPECT_EQ(ShapeTree(*rs), "1[10,12],2[],3[11]");
  rs->MoveFirst();
  auto visits = rs->Fields("Visits").Value().ObjectAs<Recordset>();
  visits->MoveFirst();
  visits->Find("Reason = 'x-ray'");
  EXPECT_EQ(CLng(visits->Fields("ID").Value()), 12);
}

}  // namespace
}  // namespace kelvary::testing
