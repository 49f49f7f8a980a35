// Connection: connection strings, statements, transactions and scripts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/internal/ConnectionString.h"

namespace kelvary::testing {
namespace {

TEST(SqliteConnection, ConnectionStringsPickTheDriver) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (42);");
  const std::string strings[] = {
      db.ConnectionString(),
      db.ShapeConnectionString(),  // a data source that is a file path: built-in SQLite
      "Provider=SQLite.1;Data Source=" + db.Path() + ";Mode=ReadOnly",
      "Data Source=\"" + db.Path() + "\"",
  };
  for (const std::string& s : strings) {
    auto c = std::make_shared<Connection>();
    c->Open(s);
    EXPECT_EQ(c->Execute("SELECT n FROM t")->Fields(0).Value(), Variant(int32_t{42})) << s;
    c->Close();
    EXPECT_EQ(ErrorOf([&] { c->Execute("SELECT 1"); }).Number(), kErrObjectClosed);
  }
  auto read_only = std::make_shared<Connection>();
  read_only->Open(strings[2]);
  EXPECT_THAT(ErrorOf([&] { read_only->Execute("INSERT INTO t VALUES (1)"); }).Description(),
              ::testing::HasSubstr("readonly"));

  const auto choice = internal::ChooseDriver(
      "Provider=MSDataShape.1;Persist Security Info=False;Data Source=Main;Data Provider=MSDASQL");
  EXPECT_EQ(choice.kind, internal::DriverChoice::kOdbc);
  EXPECT_EQ(choice.odbc_string, "DSN=Main");
  EXPECT_EQ(internal::ChooseDriver("Driver={PostgreSQL Unicode};Server=x;Database=y").odbc_string,
            "Driver={PostgreSQL Unicode};Server=x;Database=y");
  EXPECT_EQ(internal::ChooseDriver("Provider=MSDASQL;DSN=Main;UID=me").odbc_string,
            "DSN=Main;UID=me;");
  EXPECT_EQ(internal::ChooseDriver("Data Source=practice.sqlite3").kind,
            internal::DriverChoice::kSqlite);
}

TEST(SqliteConnection, MissingFilesAndUnknownProvidersAreErrors) {
  TempDir dir;
  const std::string path = dir.File("absent.db");
  auto c = std::make_shared<Connection>();
  const Error missing = ErrorOf([&] { c->Open("Provider=SQLite;Data Source=" + path); });
  EXPECT_EQ(missing.Number(), kErrProviderFailure);
  EXPECT_THAT(missing.Description(), ::testing::HasSubstr(path));
  EXPECT_FALSE(std::filesystem::exists(path));  // no empty database left behind
  EXPECT_EQ(c->State(), adStateClosed);
  ASSERT_EQ(c->Errors().size(), 1u);

  c->Open("Provider=SQLite;Data Source=" + path + ";Mode=ReadWriteCreate");
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_EQ(ErrorOf([&] { c->Open("Provider=SQLite;Data Source=" + path); }).Number(),
            kErrObjectOpen);
  c->Close();

  EXPECT_EQ(ErrorOf([&] { Connection().Open("Provider=Nonsense;Data Source=x"); }).Number(),
            kErrProviderNotFound);
  EXPECT_EQ(ErrorOf([&] {
              Connection().Open("Provider=SQLite;Data Source=x.db;Mode=Sideways");
            }).Number(),
            kErrProviderNotFound);
#ifndef KELVARY_HAVE_ODBC
  const Error odbc = ErrorOf([&] {
    Connection().Open(
        "Provider=MSDataShape.1;Persist Security Info=False;Data Source=Main;Data "
        "Provider=MSDASQL");
  });
  EXPECT_EQ(odbc.Number(), kErrProviderNotFound);
  EXPECT_EQ(odbc.Description(),
            "The data source \"Main\" is reached through ODBC, and ODBC support is not built "
            "into this library");
#endif
}

// Connections: what a connection does on every backend.
class Connections : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    db_ = NewDatabase();
  }
  BackendDatabase db_;
};
KELVARY_ON_EVERY_BACKEND(Connections);

TEST_P(Connections, ExecuteReportsRecordsAffectedAndReturnsRows) {
  db_.Run(PatientsSql(Traits()));
  const auto& c = db_.Connection();
  int32_t affected = 0;
  auto none = c->Execute("UPDATE patients SET Balance = 0 WHERE ParentID = 1", affected);
  EXPECT_EQ(affected, 2);
  EXPECT_EQ(none->State(), adStateClosed);
  c->Execute("CREATE TABLE x (a INTEGER)", affected);
  EXPECT_EQ(affected, 0);  // not the count of the UPDATE before it
  auto rows = c->Execute("SELECT * FROM patients WHERE ParentID = 1", affected);
  EXPECT_EQ(affected, -1);
  EXPECT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(ErrorOf([&] { rows->Delete(); }).Number(), kErrOperationNotSupported);

  c->Execute("DELETE FROM patients WHERE ID = 6", -1);  // a value in second place: options
  c->Execute("DELETE FROM patients WHERE ID = 5", adExecuteNoRecords);
  const int32_t options = adCmdText;
  c->Execute("DELETE FROM patients WHERE ID = 4", options);
  c->Execute("DELETE FROM patients WHERE ID = 3", affected);  // a variable: the count
  EXPECT_EQ(affected, 1);
  c->Execute("INSERT INTO patients (ID, LastName) VALUES (3, 'Back')");

  auto table = std::make_shared<Recordset>();
  table->Open("patients", c, adOpenStatic, adLockReadOnly, adCmdTable);
  EXPECT_EQ(table->RecordCount(), 3);
}

TEST_P(Connections, TransactionsCommitOrRollBack) {
  db_.Run("CREATE TABLE t (n INTEGER)");
  const auto& c = db_.Connection();
  auto other = db_.Connect();
  EXPECT_EQ(c->BeginTrans(), 1);
  c->Execute("INSERT INTO t VALUES (1)");
  auto rs = OpenRecordset(c, "SELECT * FROM t", adLockOptimistic);
  rs->AddNew();
  rs->Fields("n").Value(int32_t{2});
  rs->Update();  // recordset writes join the transaction
  EXPECT_EQ(ErrorOf([&] { c->BeginTrans(); }).Number(), kErrOperationNotSupported);
  c->RollbackTrans();
  EXPECT_EQ(other->Execute("SELECT COUNT(*) FROM t")->Fields(0).Value(), Traits().Count(0));
  c->BeginTrans();
  c->Execute("INSERT INTO t VALUES (3)");
  c->CommitTrans();
  EXPECT_EQ(other->Execute("SELECT SUM(n) FROM t")->Fields(0).Value(), Traits().Count(3));
  EXPECT_EQ(ErrorOf([&] { c->CommitTrans(); }).Number(), kErrOperationNotSupported);
  EXPECT_EQ(ErrorOf([&] { c->RollbackTrans(); }).Number(), kErrOperationNotSupported);
}

TEST(SqlScript, SplitsOnSemicolonsOutsideQuotesCommentsAndTriggers) {
  const auto statements = SplitSqlScript(R"sql(
    -- a comment; with a semicolon
    CREATE TABLE a (t TEXT);   /* another; comment */
    INSERT INTO a VALUES ('x;y'); INSERT INTO a VALUES ('it''s; fine');;
    CREATE TRIGGER tr AFTER INSERT ON a BEGIN
      INSERT INTO b VALUES (1);
      UPDATE b SET n = n + 1;
    END;
    SELECT "odd;name" FROM [weird;table]
  )sql");
  ASSERT_EQ(statements.size(), 5u);
  EXPECT_EQ(statements[0], "CREATE TABLE a (t TEXT)");
  EXPECT_EQ(statements[1], "INSERT INTO a VALUES ('x;y')");
  EXPECT_EQ(statements[2], "INSERT INTO a VALUES ('it''s; fine')");
  EXPECT_EQ(statements[3].substr(0, 14), "CREATE TRIGGER");
  EXPECT_EQ(statements[3].substr(statements[3].size() - 3), "END");
  EXPECT_EQ(statements[4], "SELECT \"odd;name\" FROM [weird;table]");
}

TEST_P(Connections, AFailingScriptStatementRollsTheScriptBackAndSaysWhichOneFailed) {
  db_.Run(
      "CREATE TABLE t (n INTEGER NOT NULL);"
      "INSERT INTO t VALUES (1);");
  const Error e =
      ErrorOf([&] { db_.Run("INSERT INTO t VALUES (2);\nINSERT INTO t VALUES (NULL);"); });
  EXPECT_THAT(e.Description(),
              EngineMessage(Traits().NotNullFailed("t", "n"), "Statement 2 of the script: "));
  EXPECT_EQ(e.Statement(), "INSERT INTO t VALUES (NULL)");
  EXPECT_EQ(Rows(db_.Connection(), "SELECT n FROM t"), "1");
  // A connection is left usable and outside any transaction.
  db_.Connection()->BeginTrans();
  db_.Connection()->CommitTrans();
}

TEST(SqliteShape, ShapeStatementsGoToTheShapingLayer) {
  TestDatabase db;
  const auto& c = db.Connection();
  // The database alone could not read any of these.
  for (const char* sql : {"SHAPE {SELECT 1} AS a", "  shape{select 1}", "\n\tShape {SELECT 1}"}) {
    EXPECT_EQ(OpenRecordset(c, sql)->RecordCount(), 1) << sql;
    EXPECT_EQ(c->Execute(sql)->RecordCount(), 1) << sql;
  }
  // Only the first word counts.
  EXPECT_EQ(ErrorOf([&] { c->Execute("SELECT 'SHAPE'"); }).Number(), 0);
  EXPECT_EQ(ErrorOf([&] { c->Execute("SHAPES"); }).Description(), "near \"SHAPES\": syntax error");
}

}  // namespace
}  // namespace kelvary::testing
