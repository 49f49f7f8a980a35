// The ODBC driver against a real server (PostgreSQL through psqlodbc in CI),
// at the level the cursor engine uses it: DriverConnection.
#include "OdbcTestDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "kelvary/platform/Error.h"

#ifdef KELVARY_HAVE_ODBC
#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcApi.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcConnection.h"
#endif

namespace kelvary::testing {
namespace {

#ifdef KELVARY_HAVE_ODBC

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(OdbcText, OnlyAsciiWithoutAQuestionMarkIsTakenAsItCame) {
  // 8-bit text is taken as the driver gave it only when no character set
  // could have changed it; a byte above 0x7F or a '?' at any place, inside
  // or after the first eight bytes, sends it to be read again.
  EXPECT_TRUE(odbc::IsPlainAscii(""));
  for (size_t length = 1; length <= 20; ++length) {
    const std::string plain(length, 'a');
    EXPECT_TRUE(odbc::IsPlainAscii(plain)) << length;
    for (size_t at = 0; at < length; ++at) {
      for (const char odd : {'?', '\x80', '\xc3', '\xff'}) {
        std::string text = plain;
        text[at] = odd;
        EXPECT_FALSE(odbc::IsPlainAscii(text))
            << "length " << length << ", byte " << static_cast<int>(odd) << " at " << at;
      }
    }
  }
  // Every other ASCII byte passes, next to '?' (0x3F) and the high bit alike.
  std::string ascii;
  for (int c = 0; c < 0x80; ++c) {
    if (c != '?') ascii.push_back(static_cast<char>(c));
  }
  EXPECT_TRUE(odbc::IsPlainAscii(ascii));
}

TEST(OdbcConnect, ByDataSourceNameAndByDriverString) {
  const std::string dsn = EnvOr("KELVARY_TEST_ODBC_DSN");
  if (dsn.empty()) GTEST_SKIP() << kNoDataSource;

  for (const std::string& how : {"DSN=" + dsn, dsn}) {
    auto db = OpenOdbcConnection(how, "", "");
    const StatementResult r = db->Run("SELECT 41 + 1 AS answer", {}, 0);
    ASSERT_TRUE(r.has_rows) << how;
    EXPECT_EQ(r.rows.columns[0].name, "answer");
    EXPECT_EQ(r.rows.Cell(0, 0), Variant(int32_t{42}));
    db->Close();
    db->Close();  // closing twice is harmless
    EXPECT_EQ(ErrorOf([&] { db->Run("SELECT 1", {}, 0); }).Number(), kErrObjectClosed);
  }

  const std::string driver_string = EnvOr("KELVARY_TEST_ODBC_CONNECT");
  if (driver_string.empty()) return;
  // User and password go to the driver as UID and PWD.
  for (const std::string& how : {driver_string, driver_string + ";"}) {
    auto db = OpenOdbcConnection(how, EnvOr("KELVARY_TEST_ODBC_USER"),
                                 EnvOr("KELVARY_TEST_ODBC_PASSWORD"));
    EXPECT_EQ(db->Run("SELECT current_user", {}, 0).rows.Cell(0, 0),
              Variant(EnvOr("KELVARY_TEST_ODBC_USER")));
  }
  const Error refused = ErrorOf([&] {
    OpenOdbcConnection(driver_string, EnvOr("KELVARY_TEST_ODBC_USER"), "not-the-password");
  });
  EXPECT_EQ(refused.Number(), kErrProviderFailure);
  EXPECT_FALSE(refused.SqlState().empty());
  EXPECT_THAT(refused.Description(), HasSubstr("password"));
}

TEST(OdbcConnect, UnknownDataSourceIsAnErrorWithSqlState) {
  const Error e = ErrorOf([] { OpenOdbcConnection("DSN=kelvary_no_such_source", "", ""); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_EQ(e.SqlState(), "IM002");
  EXPECT_THAT(e.Description(), HasSubstr("Data source name not found"));
}

using OdbcRun = OdbcTest;

TEST_F(OdbcRun, FailuresCarryTheServersMessageSqlStateAndStatement) {
  const std::string bad_table = "SELECT * FROM kelvary_no_such_table";
  Error e = ErrorOf([&] { Exec(bad_table); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_EQ(e.SqlState(), "42P01");
  EXPECT_THAT(e.Description(), HasSubstr("kelvary_no_such_table"));
  EXPECT_EQ(e.Statement(), bad_table);

  e = ErrorOf([&] { Exec("SELEKT 1"); });
  EXPECT_EQ(e.SqlState(), "42601");
  EXPECT_EQ(e.Statement(), "SELEKT 1");

  const std::string t = Table("unique");
  Exec("CREATE TABLE " + t + " (id integer PRIMARY KEY)");
  Exec("INSERT INTO " + t + " VALUES (1)");
  e = ErrorOf([&] { Exec("INSERT INTO " + t + " VALUES (?)", {Variant(int32_t{1})}); });
  EXPECT_EQ(e.SqlState(), "23505");
  // The connection stays usable after a failure.
  EXPECT_EQ(Exec("SELECT count(*) FROM " + t).rows.Cell(0, 0), Variant(int32_t{1}));
}

TEST_F(OdbcRun, ColumnTypesAndValuesMapToTheClassicCodes) {
  // Each column's type on the server, a value written as a literal, and the
  // type code and value read back; a second row holds only Nulls.
  const struct {
    const char* type;
    const char* literal;
    DataTypeEnum code;
    Variant value;
  } columns[] = {
      {"integer", "-7", adInteger, Variant(int32_t{-7})},
      {"smallint", "300", adSmallInt, Variant(int16_t{300})},
      {"bigint", "9000000000", adBigInt, Variant(int64_t{9000000000})},
      {"real", "1.5", adSingle, Variant(1.5f)},
      {"double precision", "2.25", adDouble, Variant(2.25)},
      {"numeric(10,2)", "-1234.56", adNumeric, Variant(Currency{-12345600})},
      {"numeric", "0.1234567", adNumeric, Variant(0.1234567)},
      {"boolean", "true", adBoolean, Variant(true)},
      {"date", "'2024-03-05'", adDate, Variant(DateSerial(2024, 3, 5))},
      {"timestamp", "'2024-03-05 10:11:12.5'", adDBTimeStamp,
       Variant(Date(DateTimeOf(2024, 3, 5, 10, 11, 12).Serial() + 0.5 / 86400))},
      {"time", "'23:59:58'", adDBTime, Variant(TimeSerial(23, 59, 58))},
      {"varchar(20)", "'Smith'", adVarWChar, Variant("Smith")},
      {"text", "'a note'", adLongVarWChar, Variant("a note")},
      {"char(3)", "'ab'", adVarWChar, Variant("ab ")},  // char(n) keeps its padding
      {"bytea", "'\\x00ff41'", adLongVarBinary, Variant(std::string("\x00\xff\x41", 3))},
  };
  const std::string t = Table("types");
  std::string create = "CREATE TABLE " + t + " (id serial PRIMARY KEY";
  std::string names, literals;
  for (size_t c = 0; c < std::size(columns); ++c) {
    const std::string name = "c" + std::to_string(c);
    create += ", " + name + " " + columns[c].type;
    names += (c == 0 ? "" : ", ") + name;
    literals += (c == 0 ? "" : ", ") + std::string(columns[c].literal);
  }
  Exec(create + ")");
  Exec("INSERT INTO " + t + " (" + names + ") VALUES (" + literals + ")");
  Exec("INSERT INTO " + t + " (id) VALUES (DEFAULT)");
  const StatementResult r = Exec("SELECT " + names + " FROM " + t + " ORDER BY id");
  ASSERT_EQ(r.rows.RowCount(), 2u);
  ASSERT_EQ(r.rows.columns.size(), std::size(columns));
  for (size_t c = 0; c < std::size(columns); ++c) {
    SCOPED_TRACE(columns[c].type);
    EXPECT_EQ(r.rows.columns[c].type, columns[c].code);
    EXPECT_EQ(r.rows.Cell(0, c), columns[c].value);
    EXPECT_EQ(r.rows.Cell(1, c), Variant::Null());
  }
  EXPECT_EQ(r.rows.columns[11].defined_size, 20);  // varchar(20)
}

TEST_F(OdbcRun, ColumnsNameTheirBaseTableKeyAndGeneratedValues) {
  const std::string t = Table("meta");
  Exec("CREATE TABLE " + t +
       " (id integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY, name varchar(30) NOT NULL, n "
       "integer)");
  const StatementResult r =
      Exec("SELECT id, name AS patient, n + 1 AS next FROM " + t + " WHERE id > 0");
  // name base_table.base_column, then key and auto when set
  const auto describe = [](const ColumnInfo& c) {
    return c.name + " " + c.base_table + "." + c.base_column + (c.key ? " key" : "") +
           (c.auto_increment ? " auto" : "");
  };
  const auto& c = r.rows.columns;
  ASSERT_EQ(c.size(), 3u);
  EXPECT_EQ(describe(c[0]), "id " + t + ".id key auto");
  EXPECT_EQ(describe(c[1]), "patient " + t + ".name");
  EXPECT_EQ(describe(c[2]), "next .");  // an expression
  EXPECT_FALSE(c[0].nullable);
}

TEST_F(OdbcRun, UnicodeTextRoundTripsAsUtf8) {
  const std::string t = Table("utf8");
  Exec("CREATE TABLE " + t + " (id integer, short_text varchar(6), long_text text)");
  const std::string names = "Zoë Ångström, Łódź, 日本語, Ελληνικά, 😀";
  const int32_t names_length = 36;  // characters, not bytes
  std::string long_text;
  int32_t long_length = 0;
  while (long_text.size() < 40000) {
    long_text += names + " | ";
    long_length += names_length + 3;
  }
  // Literal text, parameters, and text longer than a bound slot (read again
  // in pieces) all arrive unchanged; astral characters take two UTF-16 units
  // and overflow a slot sized by characters.
  Exec("INSERT INTO " + t + " VALUES (1, '😀😀😀😀😀😀', '" + names + "')");
  Exec("INSERT INTO " + t + " VALUES (?, ?, ?)",
       {Variant(int32_t{2}), Variant("ÄÖÜäöß"), Variant(long_text)});
  const StatementResult r =
      Exec("SELECT short_text, long_text, length(long_text) FROM " + t + " ORDER BY id");
  ASSERT_EQ(r.rows.RowCount(), 2u);
  EXPECT_EQ(r.rows.Cell(0, 0), Variant("😀😀😀😀😀😀"));
  EXPECT_EQ(r.rows.Cell(0, 1), Variant(names));
  EXPECT_EQ(r.rows.Cell(1, 0), Variant("ÄÖÜäöß"));
  EXPECT_EQ(r.rows.Cell(1, 1), Variant(long_text));
  // The server counts characters, so it saw the text as UTF-8 too.
  EXPECT_EQ(r.rows.Cell(0, 2), Variant(names_length));
  EXPECT_EQ(r.rows.Cell(1, 2), Variant(long_length));
  EXPECT_EQ(
      Exec("SELECT id FROM " + t + " WHERE short_text = ?", {Variant("ÄÖÜäöß")}).rows.Cell(0, 0),
      Variant(int32_t{2}));
}

TEST_F(OdbcRun, ParametersOfEveryKindReachTheServer) {
  const std::string t = Table("params");
  Exec("CREATE TABLE " + t +
       " (id integer, s smallint, b bigint, r real, d double precision, amount numeric(19,4),"
       " flag boolean, day date, stamp timestamp, name varchar(40))");
  const Date stamp(DateTimeOf(1999, 12, 31, 23, 59, 59).Serial() + 0.25 / 86400);
  const std::vector<Variant> row = {Variant(int32_t{1}),
                                    Variant(int16_t{-2}),
                                    Variant(int64_t{1} << 40),
                                    Variant(0.5f),
                                    Variant(-1e-3),
                                    Variant(Currency{922337203685477LL * 10000 + 5807}),
                                    Variant(false),
                                    Variant(DateSerial(1900, 2, 28)),
                                    Variant(stamp),
                                    Variant("O'Brien; DROP")};
  std::string markers = "?";
  for (size_t i = 1; i < row.size(); ++i)
    markers += ", ?";
  EXPECT_EQ(Exec("INSERT INTO " + t + " VALUES (" + markers + ")", row).records_affected, 1);
  // Empty and Null both write NULL, whatever the column's type.
  std::vector<Variant> nulls(row.size(), Variant::Null());
  nulls[0] = Variant(int32_t{2});
  nulls[1] = Variant();
  Exec("INSERT INTO " + t + " VALUES (" + markers + ")", nulls);

  const StatementResult r = Exec("SELECT * FROM " + t + " ORDER BY id");
  ASSERT_EQ(r.rows.RowCount(), 2u);
  for (size_t c = 0; c < row.size(); ++c) {
    EXPECT_EQ(r.rows.Cell(0, c), row[c]) << r.rows.columns[c].name;
    EXPECT_EQ(r.rows.Cell(1, c), c == 0 ? nulls[0] : Variant::Null()) << r.rows.columns[c].name;
  }
  // Parameters in a WHERE clause, compared by the server with its own types.
  const StatementResult found = Exec("SELECT id FROM " + t + " WHERE day = ? AND name LIKE ?",
                                     {Variant(DateSerial(1900, 2, 28)), Variant("O'B%")});
  ASSERT_EQ(found.rows.RowCount(), 1u);
  EXPECT_EQ(found.rows.Cell(0, 0), Variant(int32_t{1}));

  struct Opaque : Object {};
  const Error e = ErrorOf([&] { Exec("SELECT ?", {Variant(std::make_shared<Opaque>())}); });
  EXPECT_EQ(e.Number(), kErrTypeMismatch);
}

TEST_F(OdbcRun, KeyColumnsComeFromTheCatalogInKeyOrder) {
  const std::string with_key = Table("keyed");
  const std::string without_key = Table("keyless");
  Exec("CREATE TABLE " + with_key + " (a integer, b varchar(5), c integer, PRIMARY KEY (b, a))");
  Exec("CREATE TABLE " + without_key + " (a integer, b integer)");
  EXPECT_THAT(Db().KeyColumns(with_key), ElementsAre("b", "a"));
  // Unquoted names are folded as the server folds them; a schema may be named.
  std::string upper = with_key;
  for (char& ch : upper)
    ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
  EXPECT_THAT(Db().KeyColumns(upper), ElementsAre("b", "a"));
  EXPECT_THAT(Db().KeyColumns("public." + with_key), ElementsAre("b", "a"));
  EXPECT_TRUE(Db().KeyColumns(without_key).empty());
  EXPECT_TRUE(Db().KeyColumns("kelvary_no_such_table").empty());

  // A key added later is seen: schema changes through the connection
  // forget what was cached.
  Exec("ALTER TABLE " + without_key + " ADD PRIMARY KEY (b)");
  EXPECT_THAT(Db().KeyColumns(without_key), ElementsAre("b"));
  const StatementResult r = Exec("SELECT a, b FROM " + without_key);
  EXPECT_FALSE(r.rows.columns[0].key);
  EXPECT_TRUE(r.rows.columns[1].key);
}

TEST_F(OdbcRun, LastInsertedKeyIsTheGeneratedKeyOfThisSession) {
  const std::string serial = Table("serial");
  const std::string identity = Table("identity");
  Exec("CREATE TABLE " + serial + " (id serial PRIMARY KEY, name text)");
  Exec("CREATE TABLE " + identity +
       " (id bigint GENERATED BY DEFAULT AS IDENTITY (START WITH 500)"
       " PRIMARY KEY, name text)");
  // Nothing generated yet in this session: unknown.
  EXPECT_EQ(Db().LastInsertedKey(serial, "id"), Variant());

  Exec("INSERT INTO " + serial + " (name) VALUES ('a'), ('b')");
  EXPECT_EQ(CLng(Db().LastInsertedKey(serial, "id")), 2);
  Exec("INSERT INTO " + identity + " (name) VALUES ('a')");
  EXPECT_EQ(CLng(Db().LastInsertedKey(identity, "ID")), 500);
  EXPECT_EQ(CLng(Db().LastInsertedKey(serial, "id")), 2);
  // Another session's inserts do not change this session's answer.
  auto other = OpenSecond();
  other->Run("INSERT INTO " + serial + " (name) VALUES ('c')", {}, 0);
  EXPECT_EQ(CLng(Db().LastInsertedKey(serial, "id")), 2);
  // A column without a generator has no last key.
  EXPECT_EQ(Db().LastInsertedKey(serial, "name"), Variant());

  // Inside a transaction an unanswerable question leaves the transaction usable.
  const std::string fresh = Table("fresh");
  Exec("CREATE TABLE " + fresh + " (id serial PRIMARY KEY, name text)");
  Db().BeginTransaction();
  EXPECT_EQ(Db().LastInsertedKey(fresh, "id"), Variant());
  Exec("INSERT INTO " + fresh + " (name) VALUES ('x')");
  EXPECT_EQ(CLng(Db().LastInsertedKey(fresh, "id")), 1);
  Db().CommitTransaction();
  EXPECT_EQ(Exec("SELECT count(*) FROM " + fresh).rows.Cell(0, 0), Variant(int32_t{1}));
}

TEST_F(OdbcRun, TransactionsCommitOrRollBack) {
  const std::string t = Table("tx");
  Exec("CREATE TABLE " + t + " (id integer PRIMARY KEY)");
  auto other = OpenSecond();
  const auto count_seen_by_other = [&] {
    return CLng(other->Run("SELECT count(*) FROM " + t, {}, 0).rows.Cell(0, 0));
  };

  Db().BeginTransaction();
  Exec("INSERT INTO " + t + " VALUES (1)");
  EXPECT_EQ(count_seen_by_other(), 0);  // not yet committed
  Db().CommitTransaction();
  EXPECT_EQ(count_seen_by_other(), 1);

  Db().BeginTransaction();
  Exec("INSERT INTO " + t + " VALUES (2)");
  Exec("DELETE FROM " + t + " WHERE id = 1");
  Db().RollbackTransaction();
  EXPECT_EQ(CLng(Exec("SELECT count(*) FROM " + t).rows.Cell(0, 0)), 1);

  // Back in autocommit: each statement is visible at once.
  Exec("INSERT INTO " + t + " VALUES (3)");
  EXPECT_EQ(count_seen_by_other(), 2);

  EXPECT_EQ(ErrorOf([&] { Db().CommitTransaction(); }).Number(), kErrProviderFailure);
  Db().BeginTransaction();
  EXPECT_EQ(ErrorOf([&] { Db().BeginTransaction(); }).Number(), kErrOperationNotSupported);
  Db().RollbackTransaction();

  // Closing with a transaction open rolls it back.
  auto third = OpenSecond();
  third->BeginTransaction();
  third->Run("INSERT INTO " + t + " VALUES (4)", {}, 0);
  third->Close();
  EXPECT_EQ(count_seen_by_other(), 2);
}

TEST_F(OdbcRun, LargeResultsArriveWholeAcrossManyBlocks) {
  const std::string t = Table("large");
  Exec("CREATE TABLE " + t +
       " (id integer PRIMARY KEY, name varchar(40), note text, amount float8)");
  Exec("INSERT INTO " + t +
       " SELECT g, 'name ' || g, CASE WHEN g % 1000 = 0 THEN repeat('x', 3000) ELSE 'n' || g END,"
       " CASE WHEN g % 7 = 0 THEN NULL ELSE g / 4.0 END FROM generate_series(1, 5000) g");
  const StatementResult r = Exec("SELECT id, name, note, amount FROM " + t + " ORDER BY id");
  ASSERT_EQ(r.rows.RowCount(), 5000u);
  for (size_t row = 0; row < 5000; ++row) {
    const int32_t id = static_cast<int32_t>(row + 1);
    ASSERT_EQ(r.rows.Cell(row, 0), Variant(id));
    ASSERT_EQ(r.rows.Cell(row, 1), Variant("name " + std::to_string(id)));
    ASSERT_EQ(r.rows.Cell(row, 2),
              Variant(id % 1000 == 0 ? std::string(3000, 'x') : "n" + std::to_string(id)));
    ASSERT_EQ(r.rows.Cell(row, 3), id % 7 == 0 ? Variant::Null() : Variant(id / 4.0));
  }
  // max_rows stops the fetch.
  const StatementResult first = Db().Run("SELECT id FROM " + t + " ORDER BY id", {}, 10);
  ASSERT_EQ(first.rows.RowCount(), 10u);
  EXPECT_EQ(first.rows.Cell(9, 0), Variant(int32_t{10}));
}

TEST_F(OdbcRun, RowByRowReadingGivesWhatBlockReadingGives) {
  // Values longer than a bound slot (long text, bytes, a 60-digit numeric)
  // are read again in pieces on the block path and in pieces only on the
  // row-by-row path that drivers without block positioning take.
  const std::string t = Table("paths");
  Exec("CREATE TABLE " + t +
       " (id integer PRIMARY KEY, n numeric, amount numeric(12,4), flag boolean, day date,"
       " stamp timestamp, name varchar(10), note text, bytes bytea)");
  Exec("INSERT INTO " + t +
       " SELECT g, CASE WHEN g % 3 = 0 THEN 10::numeric ^ 59 + g ELSE g / 8.0 END, g * 1.0001,"
       " g % 2 = 0, DATE '2000-02-28' + g, TIMESTAMP '1899-12-30 06:00' + g * interval '1 day 1 s',"
       " 'ñ' || g, repeat('ü', g * 97 % 20000), decode(repeat('00ff', g * 31 % 700), 'hex')"
       " FROM generate_series(1, 300) g");
  Exec("INSERT INTO " + t + " (id) VALUES (0)");
  const std::string select = "SELECT * FROM " + t + " ORDER BY id";
  const StatementResult block = Exec(select);
  auto row_by_row = odbc::OpenConnection("DSN=" + Dsn(), "", "", odbc::FetchStrategy::kRowByRow);
  const StatementResult single = row_by_row->Run(select, {}, 0);

  ASSERT_EQ(block.rows.RowCount(), 301u);
  ASSERT_EQ(single.rows.columns.size(), block.rows.columns.size());
  for (size_t c = 0; c < block.rows.columns.size(); ++c) {
    EXPECT_EQ(single.rows.columns[c].type, block.rows.columns[c].type);
    EXPECT_EQ(single.rows.columns[c].key, block.rows.columns[c].key);
  }
  EXPECT_EQ(single.rows.cells, block.rows.cells);
  const size_t row = 150;  // id 150: every long value is long here
  EXPECT_EQ(block.rows.Cell(row, 1), Variant(1e59));
  EXPECT_EQ(block.rows.Cell(row, 2), Variant(Currency{150 * 10001}));
  EXPECT_EQ(block.rows.Cell(row, 5), Variant(Date(DateTimeOf(1900, 5, 29, 6, 2, 30).Serial())));
  std::string umlauts;
  for (int i = 0; i < 150 * 97 % 20000; ++i)
    umlauts += "ü";
  EXPECT_EQ(block.rows.Cell(row, 7), Variant(umlauts));
  std::string bytes;
  for (int i = 0; i < 150 * 31 % 700; ++i)
    bytes += std::string("\x00\xff", 2);
  EXPECT_EQ(block.rows.Cell(row, 8), Variant(bytes));
}

TEST_F(OdbcRun, BusyTimeoutBoundsTheWaitForALockedRow) {
  const std::string t = Table("busy");
  Exec("CREATE TABLE " + t + " (id integer PRIMARY KEY, v integer)");
  Exec("INSERT INTO " + t + " VALUES (1, 0)");
  auto holder = OpenSecond();
  holder->BeginTransaction();
  holder->Run("UPDATE " + t + " SET v = 1 WHERE id = 1", {}, 0);

  Db().SetBusyTimeout(1);
  const auto start = std::chrono::steady_clock::now();
  const Error e = ErrorOf([&] { Exec("UPDATE " + t + " SET v = 2 WHERE id = 1"); });
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(e.SqlState(), "55P03");  // lock not available
  EXPECT_GE(waited, std::chrono::milliseconds(900));
  holder->RollbackTransaction();
  Db().SetBusyTimeout(0);
  EXPECT_EQ(Exec("UPDATE " + t + " SET v = 2 WHERE id = 1").records_affected, 1);
}

#else

TEST(OdbcDriver, NotBuilt) {
  GTEST_SKIP() << "this build has no ODBC driver (unixODBC was not found)";
}

#endif

}  // namespace
}  // namespace kelvary::testing
