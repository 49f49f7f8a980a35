// Connection: connection strings, statements, transactions and scripts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/Command.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/Text.h"
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

TEST(ConnectionString, OdbcKeysAreHandedOnWithTheirValuesWhole) {
  struct Case {
    const char* given;
    const char* handed_on;
  };
  for (const Case& c : {
           Case{"DSN=practice;UID=kelvary;PWD={x;y}", "DSN=practice;UID=kelvary;PWD={x;y};"},
           Case{"Provider=MSDASQL;DSN=practice;UID=kelvary;PWD={x;UID=admin}",
                "DSN=practice;UID=kelvary;PWD={x;UID=admin};"},
           Case{"DSN=practice;PWD=\" secret \"", "DSN=practice;PWD={ secret };"},
           Case{"DSN=practice;PWD={a}}b=c}", "DSN=practice;PWD={a}}b=c};"},
           Case{"Data Source={a=b}", "DSN={a=b}"},
       }) {
    const internal::DriverChoice choice = internal::ChooseDriver(c.given);
    EXPECT_EQ(choice.kind, internal::DriverChoice::kOdbc) << c.given;
    EXPECT_EQ(choice.odbc_string, c.handed_on) << c.given;
    // What is handed on reads back as the same items (the provider's keys aside).
    auto original = internal::ParseConnectionString(c.given).items;
    std::erase_if(original, [](const auto& item) { return item.first == "Provider"; });
    if (original.front().first != "Data Source") {
      EXPECT_EQ(internal::ParseConnectionString(choice.odbc_string).items, original) << c.given;
    }
  }
  EXPECT_EQ(
      internal::ParseConnectionString("PWD=\"say \"\"hi\"\"\";UID=u").items,
      (std::vector<std::pair<std::string, std::string>>{{"PWD", "say \"hi\""}, {"UID", "u"}}));
  EXPECT_EQ(internal::ParseConnectionString("PWD={open;UID=u").items.size(), 1u);
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

// Folder: the names of the files in a folder, sorted, joined by blanks.
std::string Folder(const std::filesystem::path& dir) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  std::string out;
  for (const auto& name : names)
    out += (out.empty() ? "" : " ") + name;
  return out;
}

std::string Bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(SqliteConnection, OpeningRefusesWhatIsNoDatabaseWithSqlitesReasonAndChangesNothing) {
  TestDatabase source;
  source.Run("CREATE TABLE t (n INTEGER, s TEXT)");
  for (int i = 0; i < 40; ++i)
    source.Run("CREATE TABLE x" + std::to_string(i) + " (a, b, c); INSERT INTO t VALUES (" +
               std::to_string(i) + ", 'some text to fill the pages of the file')");
  source.Connection()->Close();
  const std::string good = Bytes(source.Path());
  ASSERT_GT(good.size(), 3 * 4096u);

  TempDir dir;
  struct Case {
    const char* file;
    std::string content;
    const char* mode;
    const char* reason;
  };
  const Case cases[] = {
      {"empty.db", "", "", "the file is empty, which is no database"},
      {"empty-ro.db", "", ";Mode=ReadOnly", "the file is empty"},
      {"text.db", "hello, this is not a database\n", "", "file is not a database"},
      {"text-ro.db", "hello, this is not a database\n", ";Mode=ReadOnly", "file is not a database"},
      {"zeroed.db", std::string(8192, '\0'), "", "file is not a database"},
      {"truncated.db", good.substr(0, 3 * 4096), "", "database disk image is malformed"},
  };
  for (const Case& c : cases) {
    const std::string path = dir.File(c.file);
    std::ofstream(path, std::ios::binary) << c.content;
    auto connection = std::make_shared<Connection>();
    const Error e =
        ErrorOf([&] { connection->Open("Provider=SQLite;Data Source=" + path + c.mode); });
    EXPECT_EQ(e.Number(), kErrProviderFailure) << c.file;
    EXPECT_THAT(e.Description(), ::testing::StartsWith("Cannot open the SQLite database \"" + path))
        << c.file;
    EXPECT_THAT(e.Description(), ::testing::HasSubstr(c.reason)) << c.file;
    EXPECT_EQ(connection->State(), adStateClosed);
    ASSERT_EQ(connection->Errors().size(), 1u);
    EXPECT_EQ(connection->Errors()[0].Description(), e.Description());
    EXPECT_EQ(Bytes(path), c.content) << c.file;
    std::filesystem::remove(path);
  }
  EXPECT_EQ(Folder(dir.Path()), "");  // no journal, log or index left behind

  // Asked for, an empty file is made a database.
  const std::string empty = dir.File("new.db");
  std::ofstream(empty, std::ios::binary).close();
  Connection().Open("Provider=SQLite;Data Source=" + empty + ";Mode=ReadWriteCreate");
  EXPECT_GT(std::filesystem::file_size(empty), 0u);
}

TEST(SqliteConnection, AFileMarkedReadOnlyIsReadWithoutWritingToItOrBesideIt) {
  namespace fs = std::filesystem;
  TempDir dir;
  const std::string path = dir.File("clinic.db");
  {
    Connection c;
    c.Open("Provider=SQLite;Data Source=" + path + ";Mode=ReadWriteCreate");
    ExecuteScript(c, "CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (1), (2);");
  }
  ASSERT_EQ(Folder(dir.Path()), "clinic.db");
  const std::string before = Bytes(path);
  fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  for (const char* mode : {"", ";Mode=ReadOnly"}) {
    auto c = std::make_shared<Connection>();
    c->Open("Provider=SQLite;Data Source=" + path + mode);
    EXPECT_EQ(Rows(c, "SELECT n FROM t ORDER BY n"), "1,2") << mode;
    EXPECT_THAT(ErrorOf([&] { c->Execute("INSERT INTO t VALUES (3)"); }).Description(),
                ::testing::HasSubstr("readonly"))
        << mode;
    EXPECT_EQ(Folder(dir.Path()), "clinic.db") << mode;
    c->Close();
  }
  EXPECT_EQ(Folder(dir.Path()), "clinic.db");
  EXPECT_EQ(Bytes(path), before);
  fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
}

TEST(SqliteConnection, AFileHeldExclusivelyElsewhereIsReportedLocked) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER)");
  db.Connection()->Close();
  auto holder = db.Connect();
  holder->Execute("PRAGMA locking_mode=EXCLUSIVE");
  holder->Execute("BEGIN EXCLUSIVE");
  holder->Execute("INSERT INTO t VALUES (1)");
  auto other = std::make_shared<Connection>();
  const Error e = ErrorOf([&] { other->Open(db.ConnectionString()); });
  EXPECT_THAT(e.Description(), ::testing::StartsWith("Cannot open the SQLite database \"" +
                                                     db.Path() + "\": database is locked"));
  EXPECT_EQ(other->State(), adStateClosed);
  holder->Execute("COMMIT");
  holder->Close();
  other->Open(db.ConnectionString());
  EXPECT_EQ(Rows(other, "SELECT n FROM t"), "1");
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

TEST_P(Connections, ClosingClosesTheRecordsetsButNotInsideATransaction) {
  db_.Run(PatientsSql(Traits()));
  auto c = db_.Connect();
  auto opened = OpenRecordset(c, "SELECT * FROM patients", adLockOptimistic);
  auto executed = c->Execute("SELECT * FROM patients");
  auto closed_before = OpenRecordset(c, "SELECT * FROM patients");
  closed_before->Close();
  opened->Fields("FirstName").Value("Changed");  // a pending change is dropped
  c->BeginTrans();
  const Error in_transaction = ErrorOf([&] { c->Close(); });
  EXPECT_EQ(in_transaction.Number(), 3246);
  EXPECT_EQ(in_transaction.Description(),
            "Connection object cannot be explicitly closed while in a transaction.");
  EXPECT_EQ(c->State(), adStateOpen);
  EXPECT_EQ(opened->State(), adStateOpen);
  c->RollbackTrans();
  c->Close();
  for (const auto& rs : {opened, executed, closed_before})
    EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(CLng(db_.Connection()
                     ->Execute("SELECT COUNT(*) FROM patients WHERE FirstName = "
                               "'Changed'")
                     ->Fields(0)
                     .Value()),
            0);
  opened.reset();  // a recordset outliving its connection's close goes quietly
  c->Open(db_.ConnectionString());
  auto again = OpenRecordset(c, "SELECT * FROM patients");
  again->Close();
  c->Close();  // and one closed before does not come back
  EXPECT_EQ(again->State(), adStateClosed);
}

TEST_P(Connections, CommandsBindTheirValuesApartFromTheText) {
  db_.Run(PatientsSql(Traits()));
  auto cmd = std::make_shared<Command>();
  EXPECT_EQ(ErrorOf([&] { cmd->Execute(); }).Number(), 3709);  // no connection yet
  cmd->ActiveConnection(db_.Connection());
  EXPECT_EQ(ErrorOf([&] { cmd->Execute(); }).Number(), kErrInvalidArgument);  // no text yet
  cmd->CommandText("SELECT ID FROM patients WHERE LastName = ? AND ID > ? ORDER BY ID");
  cmd->Parameters().Append(cmd->CreateParameter("name", adVarChar, adParamInput, 30, "Smith"));
  cmd->Parameters().Append(Command::CreateParameter("above", adInteger, adParamInput, 0, 1));
  EXPECT_EQ(Ids(*cmd->Execute()), "6");
  cmd->Parameters().Item("ABOVE")->Value(0);
  EXPECT_EQ(Ids(*cmd->Execute()), "1,6");
  int32_t affected = 0;
  EXPECT_EQ(Ids(*cmd->Execute(affected, {Variant("O'Brien"), Variant(0)})), "2");
  EXPECT_EQ(affected, -1);
  EXPECT_EQ(ErrorOf([&] { cmd->Parameters().Item("nope"); }).Number(), kErrItemNotFound);
  EXPECT_EQ(ErrorOf([&] { cmd->Parameters().Item(2); }).Number(), kErrItemNotFound);
  cmd->Parameters().Delete("name");
  EXPECT_EQ(cmd->Parameters().Count(), 1);

  // A value with quotes and SQL in it is a value.
  auto insert = std::make_shared<Command>();
  insert->ActiveConnection(db_.Connection());
  insert->CommandText("INSERT INTO patients (ID, LastName) VALUES (?, ?)");
  insert->Execute(affected, {Variant(7), Variant("x'); DELETE FROM patients; --")});
  EXPECT_EQ(affected, 1);
  auto table = std::make_shared<Command>();
  table->ActiveConnection(db_.Connection());
  table->CommandText("patients");
  table->CommandType(adCmdTable);
  EXPECT_EQ(table->Execute()->RecordCount(), 7);
  EXPECT_EQ(ErrorOf([&] { table->CommandType(adCmdStoredProc); }).Number(), kErrInvalidArgument);
}

TEST(SqliteConnection, PropertiesReadBackAndGiveTheStringItsProvider) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER)");
  auto c = std::make_shared<Connection>();
  EXPECT_EQ(Connection::Version(), "2.8");
  EXPECT_EQ(c->Provider(), "MSDASQL");
  EXPECT_EQ(c->Mode(), adModeUnknown);
  c->Provider("SQLite");
  c->ConnectionString("Data Source=" + db.Path());
  c->Mode(adModeRead);
  c->Open();
  EXPECT_EQ(c->Provider(), "SQLite");
  EXPECT_EQ(c->ConnectionString(), "Provider=SQLite;Data Source=" + db.Path());
  EXPECT_THAT(ErrorOf([&] { c->Execute("INSERT INTO t VALUES (1)"); }).Description(),
              ::testing::HasSubstr("readonly"));
  for (const auto& set : std::vector<std::function<void()>>{[&] { c->Mode(adModeReadWrite); },
                                                            [&] { c->Provider("x"); },
                                                            [&] { c->ConnectionString("x"); }}) {
    EXPECT_EQ(ErrorOf(set).Number(), kErrObjectOpen);
  }
  c->Close();
  auto shaped = std::make_shared<Connection>();
  shaped->ConnectionString(db.ShapeConnectionString());
  EXPECT_EQ(shaped->Provider(), "MSDataShape.1");
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

TEST(SqlScript, ATriggerEndsOnlyAtTheEndOfItsBody) {
  struct Case {
    const char* script;
    std::vector<std::string> statements;
  };
  const Case cases[] = {
      // CASE ... END inside the body is not the trigger's end.
      {"CREATE TABLE a (n INTEGER, k TEXT);\n"
       "CREATE TRIGGER tr AFTER INSERT ON a BEGIN\n"
       "  UPDATE a SET k = CASE WHEN new.n > 0 THEN 'pos' ELSE 'neg' END;\n"
       "END;\n"
       "INSERT INTO a (n) VALUES (1);",
       {"CREATE TABLE a (n INTEGER, k TEXT)",
        "CREATE TRIGGER tr AFTER INSERT ON a BEGIN\n"
        "  UPDATE a SET k = CASE WHEN new.n > 0 THEN 'pos' ELSE 'neg' END;\n"
        "END",
        "INSERT INTO a (n) VALUES (1)"}},
      // Quoted words are names, not keywords: no trigger here.
      {"\"CREATE\" TRIGGER; SELECT 1;", {"\"CREATE\" TRIGGER", "SELECT 1"}},
      {"CREATE \"TRIGGER\" x; SELECT 1", {"CREATE \"TRIGGER\" x", "SELECT 1"}},
      // TEMP triggers, EXPLAIN in front, a comment between END and ';'.
      {"create temp trigger t after delete on a begin select 1; end /* done */; select 2",
       {"create temp trigger t after delete on a begin select 1; end  ", "select 2"}},
      {"EXPLAIN CREATE TRIGGER t AFTER DELETE ON a BEGIN SELECT 1; END; SELECT 2",
       {"EXPLAIN CREATE TRIGGER t AFTER DELETE ON a BEGIN SELECT 1; END", "SELECT 2"}},
      // A word that only holds END is not END.
      {"CREATE TRIGGER t AFTER DELETE ON a BEGIN SELECT 1 AS legend; SELECT 2 AS x_end; END; "
       "SELECT 3",
       {"CREATE TRIGGER t AFTER DELETE ON a BEGIN SELECT 1 AS legend; SELECT 2 AS x_end; END",
        "SELECT 3"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> trimmed;
    for (const std::string& s : SplitSqlScript(c.script))
      trimmed.emplace_back(TrimSpace(s));
    std::vector<std::string> expected;
    for (const std::string& s : c.statements)
      expected.emplace_back(TrimSpace(s));
    EXPECT_EQ(trimmed, expected) << c.script;
  }
  // The trigger of the first case runs: the script is valid as a whole.
  TestDatabase db;
  db.Run(cases[0].script);
  EXPECT_EQ(Rows(db.Connection(), "SELECT k FROM a"), "pos");
}

TEST_P(Connections, TextOfEveryScriptReadsBackExactlyThroughALargeResult) {
  // Drivers may hand text over in a character set of their own choosing, and
  // a value longer than what a driver is first asked for is read again: what
  // comes back must be the text stored, in a result long enough to be
  // fetched in many blocks, with a run where most values are not ASCII and
  // stretches where a few are.
  static const char* const kSamples[] = {"Zoë", "Łódź", "日本語", "😀x", "Ελλάς", "ß?", "ÅÄÖåäöÆØ"};
  const auto name = [](int n) -> std::optional<std::string> {
    if (n > 1000 && n <= 2200) return kSamples[n % 7];
    switch (n % 20) {
      case 0:
        return kSamples[n / 20 % 7];
      case 1:
        return "a?" + std::to_string(n);  // a '?' of its own
      case 2:
        return "";
      case 3:
        return std::nullopt;
      case 4:
        return "abcdefg?";  // fills the column
      default:
        return "n" + std::to_string(n);
    }
  };
  // A longer column: now and then a value far longer than the others.
  const auto note = [&](int n) -> std::optional<std::string> {
    std::string text = name(n).value_or("");
    if (n % 20 == 7 || n % 20 == 8) {
      const std::string piece = n % 20 == 7 ? "long note " : "längere Notiz ";
      while (text.size() < 300)
        text += piece;
    }
    return n % 20 == 3 ? std::nullopt : std::optional<std::string>(text);
  };
  const auto literal = [](const std::optional<std::string>& text) {
    return text ? "'" + *text + "'" : std::string("NULL");
  };
  constexpr int kRows = 3000;
  std::string sql = "CREATE TABLE texts (id INTEGER PRIMARY KEY, name VARCHAR(8), note TEXT);";
  for (int n = 1; n <= kRows; ++n) {
    sql += (n % 100 == 1 ? "\nINSERT INTO texts VALUES (" : ", (") + std::to_string(n) + ", " +
           literal(name(n)) + ", " + literal(note(n)) + ")";
    if (n % 100 == 0) sql += ";";
  }
  db_.Run(sql);

  auto rs = db_.Connection()->Execute("SELECT id, name, note FROM texts ORDER BY id");
  ASSERT_EQ(rs->RecordCount(), kRows);
  int wrong = 0;
  for (; !rs->Eof(); rs->MoveNext()) {
    const int n = CLng(rs->Fields(0).Value());
    for (const auto& [column, text] : {std::pair(1, name(n)), std::pair(2, note(n))}) {
      const Variant& got = rs->Fields(column).Value();
      if (got == (text ? Variant(*text) : Variant::Null())) continue;
      if (++wrong <= 5) ADD_FAILURE() << "id " << n << " column " << column << ": " << TextOf(got);
    }
  }
  EXPECT_EQ(wrong, 0);
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
