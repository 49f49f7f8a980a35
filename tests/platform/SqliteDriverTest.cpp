// The SQLite driver: type mapping, the desktop dialect, errors, and sharing a
// file between connections.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteDialect.h"

namespace kelvary::testing {
namespace {

Variant First(const std::shared_ptr<Connection>& connection, const std::string& sql) {
  return connection->Execute(sql)->Fields(0).Value();
}

TEST(SqliteDriver, DeclaredTypesMapToFieldTypesAndNullsStayNull) {
  TestDatabase db;
  db.Run(R"sql(
    CREATE TABLE typed (i INTEGER, n INT, s SMALLINT, b BIGINT, r REAL, c CURRENCY,
      num NUMERIC(10,2), yes BOOLEAN, yn YESNO, dt DATE, ts TIMESTAMP, t TEXT, v VARCHAR(40),
      ch CHAR(3), memo MEMO, bl BLOB);
    INSERT INTO typed VALUES (5, 3000000000, 7, 9, 1.5, 12.3456, 1.25, 1, -1, '2024-03-05',
      '2024-03-05T10:30', 'text', 'var', 'abc', 'long', X'00FF');
    INSERT INTO typed DEFAULT VALUES;
  )sql");
  struct Expected {
    const char* name;
    DataTypeEnum type;
    Variant value;
  };
  const Expected expected[] = {
      {"i", adInteger, Variant(int32_t{5})},
      {"n", adInteger, Variant(int64_t{3000000000})},  // too big for a Long
      {"s", adSmallInt, Variant(int16_t{7})},
      {"b", adBigInt, Variant(int64_t{9})},
      {"r", adDouble, Variant(1.5)},
      {"c", adCurrency, Variant(Currency{123456})},
      {"num", adNumeric, Variant(1.25)},
      {"yes", adBoolean, Variant(true)},
      {"yn", adBoolean, Variant(true)},
      {"dt", adDate, Variant(DateSerial(2024, 3, 5))},
      {"ts", adDate, Variant(DateTimeOf(2024, 3, 5, 10, 30, 0))},
      {"t", adVarWChar, Variant("text")},
      {"v", adVarWChar, Variant("var")},
      {"ch", adWChar, Variant("abc")},
      {"memo", adLongVarWChar, Variant("long")},
      {"bl", adLongVarBinary, Variant(std::string("\0\xff", 2))},
  };
  auto rs = OpenRecordset(db.Connection(), "SELECT * FROM typed");
  for (const Expected& e : expected) {
    EXPECT_EQ(rs->Fields(e.name).Type(), e.type) << e.name;
    EXPECT_EQ(rs->Fields(e.name).Value(), e.value) << e.name;
  }
  EXPECT_EQ(rs->Fields("v").DefinedSize(), 40);
  rs->MoveNext();
  for (const Expected& e : expected) {
    EXPECT_TRUE(rs->Fields(e.name).Value().IsNull()) << e.name;
  }
  // Expressions take their type from their values.
  auto ex = OpenRecordset(db.Connection(),
                          "SELECT COUNT(*) AS k, MAX(r) AS top, 'x' || t AS joined, "
                          "MAX(n) AS big, NULL AS empty FROM typed");
  EXPECT_EQ(ex->Fields("k").Type(), adInteger);
  EXPECT_EQ(ex->Fields("k").Value(), Variant(int32_t{2}));
  EXPECT_EQ(ex->Fields("top").Type(), adDouble);
  EXPECT_EQ(ex->Fields("joined").Type(), adVarWChar);
  EXPECT_EQ(ex->Fields("big").Type(), adBigInt);
  EXPECT_TRUE(ex->Fields("empty").Value().IsNull());
}

TEST(SqliteDriver, ValuesBeyondACurrencyOrDateColumnsRangeReadAsStored) {
  TestDatabase db;
  db.Run(R"sql(
    CREATE TABLE t (ID INTEGER PRIMARY KEY, Balance CURRENCY, Seen DATE);
    INSERT INTO t VALUES (1, 10, 45356), (2, 1000000000000000, 1e19),
      (3, 922337203685477.5807, -1e9), (4, -922337203685477, 2958465.5), (5, 1e300, NULL);
  )sql");
  auto rs = OpenRecordset(db.Connection(), "SELECT * FROM t ORDER BY ID");
  std::string read;
  for (; !rs->Eof(); rs->MoveNext())
    read += TextOf(rs->Fields("Balance").Value()) + " " + TextOf(rs->Fields("Seen").Value()) + "|";
  EXPECT_EQ(read,
            "10 03/05/2024|1000000000000000 1E+19|922337203685478 -1000000000|"
            "-922337203685477 12/31/9999 12:00:00|1E+300 |");
  EXPECT_EQ(First(db.Connection(), "SELECT Balance FROM t WHERE ID = 2"),
            Variant(int64_t{1000000000000000}));
}

TEST(SqliteDriver, DatesAndBooleansAreWrittenAsTheyAreStored) {
  TestDatabase db;
  db.Run("CREATE TABLE t (ID INTEGER PRIMARY KEY, d DATE, flag YESNO, c CURRENCY)");
  auto rs = OpenRecordset(db.Connection(), "SELECT * FROM t", adLockOptimistic);
  rs->AddNew();
  rs->Fields("d").Value(DateSerial(2024, 2, 29));
  rs->Fields("flag").Value(int32_t{-1});
  rs->Fields("c").Value(12.3456);
  rs->Update();
  rs->AddNew();
  rs->Fields("d").Value(DateTimeOf(1999, 12, 31, 23, 59, 58));
  rs->Fields("flag").Value(false);
  rs->Update();
  EXPECT_EQ(First(db.Connection(), "SELECT group_concat(d || '/' || flag, ';') FROM t"),
            Variant("2024-02-29/1;1999-12-31 23:59:58/0"));
  EXPECT_EQ(First(db.Connection(), "SELECT c FROM t WHERE ID = 1"), Variant(Currency{123456}));
  // Changing a stored date locates the row by the instant, not the spelling.
  db.Run("UPDATE t SET d = '2024-02-29 00:00' WHERE ID = 1");
  auto again = OpenRecordset(db.Connection(), "SELECT * FROM t ORDER BY ID", adLockOptimistic);
  again->Fields("d").Value(DateSerial(2024, 3, 1));
  again->Fields("flag").Value(false);
  again->Update();
  EXPECT_EQ(First(db.Connection(), "SELECT d || flag FROM t WHERE ID = 1"), Variant("2024-03-010"));
}

// A column without a declared type whose every value is a date's stored text
// (Min or Max of a DATE column) reads as dates, as on a server; one other
// text among them keeps the column text.
TEST(SqliteDriver, ColumnsComputedFromDatesReadAsDates) {
  TestDatabase db;
  db.Run(R"sql(
    CREATE TABLE v (d DATE, t TEXT);
    INSERT INTO v VALUES ('2024-03-05 10:30:00', '2024-03-05'), ('2023-01-29', 'later'),
                         (NULL, NULL);
  )sql");
  auto rs = OpenRecordset(db.Connection(), "SELECT Min(d), Max(d), Max(t), Min(d) || 'x' FROM v");
  const std::pair<DataTypeEnum, Variant> expected[] = {
      {adDate, Variant(DateSerial(2023, 1, 29))},
      {adDate, Variant(DateTimeOf(2024, 3, 5, 10, 30, 0))},
      {adVarWChar, Variant("later")},
      {adVarWChar, Variant("2023-01-29x")},
  };
  for (int32_t c = 0; c < rs->FieldCount(); ++c) {
    EXPECT_EQ(rs->Fields(c).Type(), expected[c].first) << c;
    EXPECT_EQ(rs->Fields(c).Value(), expected[c].second) << c;
  }
}

TEST(SqliteDriver, DateLiteralsAndIsnullCallsAreRewrittenOutsideQuotedText) {
  using sqlite::RewriteDialect;
  EXPECT_EQ(RewriteDialect("SELECT * FROM v WHERE d >= #03/05/2024# AND d < #3/6/2024#"),
            "SELECT * FROM v WHERE d >= '2024-03-05' AND d < '2024-03-06'");
  EXPECT_EQ(RewriteDialect("WHERE d = #2024-03-05 10:30#"), "WHERE d = '2024-03-05 10:30:00'");
  EXPECT_EQ(RewriteDialect("WHERE x = '#1/2/2024#' AND [a#1/2/2024#] = \"#1/1/2000#\""),
            "WHERE x = '#1/2/2024#' AND [a#1/2/2024#] = \"#1/1/2000#\"");
  EXPECT_EQ(RewriteDialect("WHERE n = 'it''s #1/2/2024#' -- #1/2/2024#\n AND #x#"),
            "WHERE n = 'it''s #1/2/2024#' -- #1/2/2024#\n AND #x#");
  EXPECT_EQ(RewriteDialect("/* #1/2/2024# */ #1/2/2024#"), "/* #1/2/2024# */ '2024-01-02'");
  // ISNULL is a word of SQLite's own (x ISNULL): a call is renamed, the operator kept.
  EXPECT_EQ(RewriteDialect("WHERE IsNull (a) = true AND b ISNULL AND 'Isnull(c)' = x.isnull"),
            "WHERE kelvary_isnull (a) = true AND b ISNULL AND 'Isnull(c)' = x.isnull");
}

TEST(SqliteDriver, DialectFunctionsRunOnSqlite) {
  TestDatabase db;
  db.Run(PatientsSql());
  const Clock previous = SetClock([] { return DateTimeOf(2024, 3, 5, 14, 7, 9); });
  const auto& c = db.Connection();
  const std::pair<const char*, Variant> cases[] = {
      {"SELECT COUNT(*) FROM patients WHERE Isnull(FirstName) = true", Variant(int32_t{1})},
      {"SELECT COUNT(*) FROM patients WHERE Isnull(DOB) = false", Variant(int32_t{5})},
      {"SELECT Ucase$(LastName) || Ucase(FirstName) FROM patients WHERE ID = 2",
       Variant("O'BRIENMARY")},
      {"SELECT Lcase$(LastName) || Lcase('ÀB') FROM patients WHERE ID = 1", Variant("smithÀb")},
      {"SELECT Month(DOB) * 10000 + Day(DOB) * 100 + Year(DOB) % 100 FROM patients WHERE ID = 2",
       Variant(int32_t{123175})},
      {"SELECT Month(NULL) IS NULL", Variant(int32_t{1})},
      {"SELECT Now()", Variant(DateTimeOf(2024, 3, 5, 14, 7, 9))},
      {"SELECT Date()", Variant(DateSerial(2024, 3, 5))},
      {"SELECT date('2024-01-31', '+1 day')", Variant(DateSerial(2024, 2, 1))},  // SQLite's own
      {"SELECT TO_Date('05-Mar-2024','DD-Mon-YYYY')", Variant(DateSerial(2024, 3, 5))},
      {"SELECT TO_Date('31/12/1999 23:15','DD/MM/YYYY HH24:MI')",
       Variant(DateTimeOf(1999, 12, 31, 23, 15, 0))},
      {"SELECT TO_Date('2024-03-05')", Variant(DateSerial(2024, 3, 5))},
      {"SELECT COUNT(*) FROM patients WHERE DOB >= #1/1/1990# AND DOB < #12/31/2010#",
       Variant(int32_t{3})},
      {"SELECT COUNT(*) FROM patients WHERE DOB < TO_Date('01-JAN-1985','DD-MON-YYYY')",
       Variant(int32_t{2})},
      {"SELECT group_concat(ID) FROM patients WHERE LastName Like 'SMITH*'", Variant("1,3,6")},
      {"SELECT group_concat(ID) FROM patients WHERE LastName || '*' LIKE '%!*' ESCAPE '!'",
       Variant("1,2,3,4,5,6")},
  };
  for (const auto& [sql, value] : cases) {
    EXPECT_EQ(First(c, sql), value) << sql;
  }
  const Error bad = ErrorOf([&] { First(c, "SELECT TO_Date('31-Foo-2024','DD-Mon-YYYY')"); });
  EXPECT_THAT(bad.Description(), ::testing::HasSubstr("TO_Date cannot read '31-Foo-2024'"));
  SetClock(previous);
}

TEST(SqliteDriver, ARejectedStatementCarriesSqlitesMessageAndTheStatement) {
  TestDatabase db;
  const Error e = ErrorOf([&] { db.Connection()->Execute("SELECT * FROM nowhere"); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_EQ(e.Description(), "no such table: nowhere");
  EXPECT_EQ(e.Statement(), "SELECT * FROM nowhere");
  EXPECT_EQ(e.Source(), "SQLite");
  ASSERT_EQ(db.Connection()->Errors().size(), 1u);
  // The recordset path reports the same, and the connection's errors follow.
  const Error rs = ErrorOf([&] { OpenRecordset(db.Connection(), "SELEC 1"); });
  EXPECT_EQ(rs.Description(), "near \"SELEC\": syntax error");
  EXPECT_EQ(db.Connection()->Errors()[0].Description(), "near \"SELEC\": syntax error");
  db.Connection()->Execute("SELECT 1");
  EXPECT_TRUE(db.Connection()->Errors().empty());
  const Error two = ErrorOf([&] { db.Connection()->Execute("SELECT 1; SELECT 2"); });
  EXPECT_THAT(two.Description(), ::testing::HasSubstr("more than one statement"));
  db.Connection()->Execute("SELECT 1; -- a trailing comment is fine");
}

TEST(SqliteDriver, RepeatedStatementsSurviveSchemaChanges) {
  TestDatabase db;
  db.Run("CREATE TABLE t (a INTEGER); INSERT INTO t VALUES (1);");
  const auto& c = db.Connection();
  EXPECT_EQ(c->Execute("SELECT * FROM t")->FieldCount(), 1);
  db.Run("ALTER TABLE t ADD COLUMN b DATE; UPDATE t SET b = '2024-01-02';");
  auto rs = c->Execute("SELECT * FROM t");  // the same text, prepared before the change
  ASSERT_EQ(rs->FieldCount(), 2);
  EXPECT_EQ(rs->Fields("b").Type(), adDate);
  EXPECT_EQ(rs->Fields("b").Value(), Variant(DateSerial(2024, 1, 2)));
  // Many distinct statements: the cache keeps a bounded number, all still run.
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(CLng(First(c, "SELECT a + " + std::to_string(i) + " FROM t")), 1 + i);
  }
}

TEST(SqliteDriver, AWriterWaitsForAnotherConnectionsTransactionWithinItsTimeout) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER)");
  auto holder = db.Connect();
  auto waiter = db.Connect();
  // Readers are not blocked by a writer in WAL mode.
  holder->BeginTrans();
  holder->Execute("INSERT INTO t VALUES (1)");
  EXPECT_EQ(First(waiter, "SELECT COUNT(*) FROM t"), Variant(int32_t{0}));
  // A writer waits; the holder commits a moment later and the write goes through.
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    holder->CommitTrans();
  });
  const auto started = std::chrono::steady_clock::now();
  int32_t affected = 0;
  waiter->Execute("INSERT INTO t VALUES (2)", affected);
  const auto waited = std::chrono::steady_clock::now() - started;
  release.join();
  EXPECT_EQ(affected, 1);
  EXPECT_GE(waited, std::chrono::milliseconds(200));
  EXPECT_EQ(First(waiter, "SELECT COUNT(*) FROM t"), Variant(int32_t{2}));
  // With a short timeout and a holder that does not let go, the writer gives up.
  waiter->CommandTimeout(1);
  holder->BeginTrans();
  const Error e = ErrorOf([&] { waiter->Execute("INSERT INTO t VALUES (3)"); });
  EXPECT_EQ(e.Description(), "database is locked");
  holder->RollbackTrans();
}

TEST(SqliteDriver, FilesAreOpenedInWalModeWithForeignKeysOn) {
  TestDatabase db;
  EXPECT_EQ(First(db.Connection(), "PRAGMA journal_mode"), Variant("wal"));
  EXPECT_EQ(First(db.Connection(), "PRAGMA synchronous"), Variant(int32_t{2}));  // FULL
  db.Run("CREATE TABLE p (ID INTEGER PRIMARY KEY); CREATE TABLE c (P INTEGER REFERENCES p(ID));");
  EXPECT_THAT(ErrorOf([&] { db.Connection()->Execute("INSERT INTO c VALUES (5)"); }).Description(),
              ::testing::HasSubstr("FOREIGN KEY constraint failed"));
}

}  // namespace
}  // namespace kelvary::testing
