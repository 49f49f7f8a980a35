// The whole stack over ODBC: a Connection opened with the application's own
// connection string naming the data source, recordsets navigated, searched,
// filtered and written back to PostgreSQL.
#include "OdbcTestDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"

namespace kelvary::testing {
namespace {

#ifdef KELVARY_HAVE_ODBC

using ::testing::HasSubstr;

Error ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e;
  }
  return Error(0, "");
}

std::string ShapingString(const std::string& dsn) {
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + dsn +
         ";Data Provider=MSDASQL";
}

// The IDs of the visible rows, first to last.
std::string Ids(Recordset& rs) {
  std::string ids;
  if (rs.RecordCount() == 0) return ids;
  rs.MoveFirst();
  while (!rs.Eof()) {
    ids += (ids.empty() ? "" : ",") + CStr(rs.Fields("id").Value());
    rs.MoveNext();
  }
  return ids;
}

class OdbcRecordset : public OdbcTest {
 protected:
  void SetUp() override {
    OdbcTest::SetUp();
    if (IsSkipped()) return;
    patients_ = Table("patients");
    Exec("CREATE TABLE " + patients_ +
         " (id serial PRIMARY KEY, last_name varchar(30) NOT NULL, first_name varchar(30),"
         " dob date, balance numeric(10,2), visits integer, active boolean DEFAULT true,"
         " note text)");
    Exec("INSERT INTO " + patients_ +
         " (last_name, first_name, dob, balance, visits, active, note) VALUES"
         " ('Smith', 'John', '1980-03-05', 10.50, 3, true, 'first'),"
         " ('O''Brien', 'Mary', '1975-12-31', 0, NULL, true, NULL),"
         " ('smithers', 'Paul', '2001-07-14', -3.25, 1, false, 'Zoë'),"
         " ('Jones', NULL, NULL, 120, 7, true, NULL),"
         " ('Åström', 'Eva', '1990-01-01', 99.99, 2, false, 'x')");
    connection_ = std::make_shared<Connection>();
    connection_->CursorLocation(adUseClient);
    connection_->Open(ShapingString(Dsn()), "", "", adCmdUnspecified);
  }

  std::shared_ptr<Recordset> Open(const std::string& sql, LockTypeEnum lock = adLockReadOnly) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(sql, connection_, adOpenStatic, lock, adCmdUnspecified);
    return rs;
  }
  // What the server holds now, read on a connection of its own.
  Variant Stored(const std::string& sql) {
    auto other = OpenSecond();
    const StatementResult r = other->Run(sql, {}, 0);
    return r.rows.RowCount() == 0 ? Variant() : r.rows.Cell(0, 0);
  }

  std::string patients_;
  std::shared_ptr<Connection> connection_;
};

TEST_F(OdbcRecordset, OpensOverTheDataSourceAndNavigates) {
  EXPECT_EQ(connection_->State(), adStateOpen);
  auto rs = Open("SELECT * FROM " + patients_ + " ORDER BY id");
  EXPECT_EQ(rs->RecordCount(), 5);
  EXPECT_EQ(rs->Fields("ID").Type(), adInteger);
  EXPECT_EQ(rs->Fields("last_name").Type(), adVarWChar);
  EXPECT_EQ(rs->Fields("dob").Type(), adDate);
  EXPECT_EQ(rs->Fields("balance").Type(), adNumeric);
  EXPECT_EQ(rs->Fields("active").Type(), adBoolean);
  EXPECT_EQ(rs->Fields("note").Type(), adLongVarWChar);
  EXPECT_EQ(rs->Fields("last_name").Value(), Variant("Smith"));
  rs->MoveLast();
  EXPECT_EQ(rs->Fields("last_name").Value(), Variant("Åström"));
  EXPECT_EQ(CDbl(rs->Fields("balance").Value()), 99.99);
  rs->MovePrevious();
  EXPECT_EQ(rs->Fields("first_name").Value(), Variant::Null());
  EXPECT_EQ(rs->Fields("dob").Value(), Variant::Null());
  rs->MoveNext();
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());

  // Statements through the connection report what they changed.
  int32_t affected = 0;
  connection_->Execute("UPDATE " + patients_ + " SET visits = 0 WHERE visits IS NULL", affected);
  EXPECT_EQ(affected, 1);

  // A data source that does not exist fails with the driver manager's word.
  auto nowhere = std::make_shared<Connection>();
  const Error e = ErrorOf([&] { nowhere->Open(ShapingString("kelvary_no_such_source")); });
  EXPECT_EQ(e.SqlState(), "IM002");
  EXPECT_EQ(nowhere->State(), adStateClosed);
}

TEST_F(OdbcRecordset, FindAndFilterReadThePostgresValues) {
  auto rs = Open("SELECT * FROM " + patients_ + " ORDER BY id");
  rs->Find("last_name = 'O''Brien'");
  EXPECT_EQ(CLng(rs->Fields("id").Value()), 2);
  rs->Find("dob > #1/1/1985#");
  EXPECT_EQ(CLng(rs->Fields("id").Value()), 3);
  rs->Find("last_name LIKE 'Z*'");
  EXPECT_TRUE(rs->Eof());

  rs->Filter("balance > 50 AND active = True");
  EXPECT_EQ(Ids(*rs), "4");
  rs->Filter("last_name LIKE 'smith*' OR note = 'Zoë'");
  EXPECT_EQ(Ids(*rs), "1,3");
  rs->Filter("first_name = Null");
  EXPECT_EQ(Ids(*rs), "4");
  rs->Filter("");
  EXPECT_EQ(rs->RecordCount(), 5);
}

TEST_F(OdbcRecordset, ChangesAreWrittenBackToTheServer) {
  auto rs = Open("SELECT * FROM " + patients_ + " ORDER BY id", adLockOptimistic);
  rs->Find("id = 3");
  rs->Fields("balance").Value(12.5);
  rs->Fields("note").Value("Łódź");
  rs->Fields("dob").Value(DateSerial(2002, 8, 15));
  rs->Update();
  EXPECT_EQ(
      Stored("SELECT balance || '|' || note || '|' || dob FROM " + patients_ + " WHERE id = 3"),
      Variant("12.50|Łódź|2002-08-15"));

  // A new row gets the key the server generated and the server's defaults.
  rs->AddNew();
  rs->Fields("last_name").Value("Nguyen");
  rs->Fields("visits").Value(int32_t{4});
  rs->Update();
  EXPECT_EQ(CLng(rs->Fields("id").Value()), 6);
  EXPECT_EQ(rs->Fields("active").Value(), Variant(true));
  EXPECT_EQ(Stored("SELECT last_name FROM " + patients_ + " WHERE id = 6"), Variant("Nguyen"));
  rs->Fields("first_name").Value("Lan");  // located by the key read back
  rs->Update();
  EXPECT_EQ(Stored("SELECT first_name FROM " + patients_ + " WHERE id = 6"), Variant("Lan"));

  rs->Find("id = 2", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  rs->Delete();
  EXPECT_EQ(rs->RecordCount(), 5);
  EXPECT_EQ(CLng(Stored("SELECT count(*) FROM " + patients_ + " WHERE id = 2")), 0);

  // A row changed on the server behind the recordset's back is a conflict.
  rs->Find("id = 4", 0, adSearchForward, Variant(int32_t{adBookmarkFirst}));
  Exec("UPDATE " + patients_ + " SET balance = 1 WHERE id = 4");
  rs->Fields("balance").Value(2.0);
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }).Number(), kErrRowChanged);
  rs->CancelUpdate();
  EXPECT_EQ(CDbl(Stored("SELECT balance FROM " + patients_ + " WHERE id = 4")), 1.0);
}

TEST_F(OdbcRecordset, CommandTimeoutIsTheServersLockWait) {
  const auto lock_timeout = [](Connection& c) {
    auto rs = c.Execute("SHOW lock_timeout");
    return rs->Fields(0).Value();
  };
  EXPECT_EQ(lock_timeout(*connection_), Variant("30s"));  // the default, set at open
  connection_->CommandTimeout(0);
  EXPECT_EQ(lock_timeout(*connection_), Variant("0"));  // wait as long as it takes
  auto early = std::make_shared<Connection>();
  early->CommandTimeout(5);
  early->Open(ShapingString(Dsn()));
  EXPECT_EQ(lock_timeout(*early), Variant("5s"));
}

TEST_F(OdbcRecordset, TheApplicationSchemasLoadAndServeTheSystemsFieldNames) {
  const std::string schema = Schema("app");
  connection_->Execute("CREATE SCHEMA " + schema);
  connection_->Execute("SET search_path TO " + schema);
  for (const char* file : {"main_schema.sql", "system_schema.sql"}) {
    std::ifstream in(std::string(KELVARY_DATA_DIR) + "/" + file);
    ASSERT_TRUE(in) << file;
    std::stringstream sql;
    sql << in.rdbuf();
    ExecuteScript(*connection_, sql.str());
  }
  // The server folds the system's mixed-case names to lower case; fields are
  // found by name without regard to case, so the system's names still work.
  auto rs = Open("SELECT * FROM patients WHERE ID = 0", adLockOptimistic);
  EXPECT_EQ(rs->Fields("ID").Name(), "id");
  rs->AddNew();
  rs->Fields("ID").Value(int32_t{1});
  rs->Fields("LastName").Value("Müller");
  rs->Fields("DOB").Value(DateSerial(1970, 1, 31));
  rs->Update();
  EXPECT_EQ(rs->Fields("RecordStatus").Value(), Variant(int32_t{0}));  // the default, read back
  EXPECT_EQ(rs->Fields("Insured").Value(), Variant(false));
  auto check = Open("SELECT LastName, DOB FROM patients WHERE ID = 1");
  EXPECT_EQ(check->Fields("LastName").Value(), Variant("Müller"));
  EXPECT_EQ(check->Fields("DOB").Value(), Variant(DateSerial(1970, 1, 31)));
}

TEST_F(OdbcRecordset, ConnectionTransactionsReachTheServer) {
  connection_->BeginTrans();
  connection_->Execute("DELETE FROM " + patients_);
  EXPECT_EQ(CLng(Stored("SELECT count(*) FROM " + patients_)), 5);
  connection_->RollbackTrans();
  EXPECT_EQ(CLng(Stored("SELECT count(*) FROM " + patients_)), 5);
  connection_->BeginTrans();
  connection_->Execute("DELETE FROM " + patients_ + " WHERE id = 1");
  connection_->CommitTrans();
  EXPECT_EQ(CLng(Stored("SELECT count(*) FROM " + patients_)), 4);
}

#else

TEST(OdbcRecordset, NotBuilt) {
  GTEST_SKIP() << "this build has no ODBC driver (unixODBC was not found)";
}

#endif

}  // namespace
}  // namespace kelvary::testing
