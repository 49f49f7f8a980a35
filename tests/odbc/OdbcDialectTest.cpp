// The system's desktop-dialect SQL as each server is sent it: the
// translation itself (no server needed), then the same statements run on
// every server whose test data source is set, giving what they give on the
// embedded default.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "OdbcTestDatabase.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"

#ifdef KELVARY_HAVE_ODBC
#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"
#include "kelvary/platform/internal/drivers/odbc/internal/OdbcDialect.h"
#endif

namespace kelvary::testing {
namespace {

#ifdef KELVARY_HAVE_ODBC

using odbc::ServerKind;
using odbc::TranslateForServer;
using ::testing::AnyOf;
using ::testing::Eq;
using ::testing::HasSubstr;

struct Translation {
  const char* system;
  const char* postgres;
  const char* mariadb;
  const char* other;  // a server the driver knows nothing of: ODBC escapes
};

void ExpectTranslations(const std::vector<Translation>& cases) {
  for (const Translation& c : cases) {
    SCOPED_TRACE(c.system);
    EXPECT_EQ(TranslateForServer(c.system, ServerKind::kPostgreSQL), c.postgres);
    EXPECT_EQ(TranslateForServer(c.system, ServerKind::kMySql), c.mariadb);
    EXPECT_EQ(TranslateForServer(c.system, ServerKind::kOther), c.other);
  }
}

TEST(OdbcDialect, DateLiteralsBecomeDateEscapes) {
  const char* both = "WHERE d >= {d '2024-03-05'} AND d < {ts '2024-03-06 10:30:00'}";
  ExpectTranslations({
      {"WHERE d >= #03/05/2024# AND d < #3/6/2024 10:30:00#", both, both, both},
      {"WHERE TO_Date('05-Mar-2024','DD-Mon-YYYY') = TO_Date( '31/12/1999 23:15' , 'DD/MM/YYYY "
       "HH24:MI' )",
       "WHERE {d '2024-03-05'} = {ts '1999-12-31 23:15:00'}",
       "WHERE {d '2024-03-05'} = {ts '1999-12-31 23:15:00'}",
       "WHERE {d '2024-03-05'} = {ts '1999-12-31 23:15:00'}"},
      // Not a date, or not literals: left to the server.
      {"WHERE a = #x# AND TO_Date(c, 'DD') = 1", "WHERE a = #x# AND TO_Date(c, 'DD') = 1",
       "WHERE a = #x# AND TO_Date(c, 'DD') = 1", "WHERE a = #x# AND TO_Date(c, 'DD') = 1"},
  });
}

TEST(OdbcDialect, QuotedTextCommentsAndQualifiedNamesAreLeftAlone) {
  const char* kept =
      "SELECT 'it''s #1/2/2024# & Ucase$(x)', [a#1/2/2024#], \"Isnull(b)\", t.Month(1) "
      "-- #1/2/2024# & Now()\n /* LIKE 'a*' */ FROM t";
  ExpectTranslations({{kept, kept, kept, kept}});
}

TEST(OdbcDialect, DesktopFunctionsBecomeTheServersOwnOrEscapes) {
  ExpectTranslations({
      {"WHERE (Isnull(a.b) = true ) AND ISNULL (f(c, d))",
       "WHERE (((a.b) IS NULL) = true ) AND ((f(c, d)) IS NULL)",
       "WHERE (((a.b) IS NULL) = true ) AND ((f(c, d)) IS NULL)",
       "WHERE (((a.b) IS NULL) = true ) AND ((f(c, d)) IS NULL)"},
      {"SELECT Ucase$(n), ucase(n), Lcase$(Ucase(n)), LCase(n)",
       "SELECT UPPER(n), UPPER(n), LOWER(UPPER(n)), LOWER(n)",
       "SELECT UPPER(n), UPPER(n), LOWER(UPPER(n)), LOWER(n)",
       "SELECT {fn UCASE(n)}, {fn UCASE(n)}, {fn LCASE({fn UCASE(n)})}, {fn LCASE(n)}"},
      {"WHERE (Month(d)  = 3) And (Day(d) =  5 ) And (Year(#1/2/2024#) = 2024)",
       "WHERE (CAST(EXTRACT(MONTH FROM d) AS INTEGER)  = 3) And (CAST(EXTRACT(DAY FROM d) AS "
       "INTEGER) =  5 ) And (CAST(EXTRACT(YEAR FROM {d '2024-01-02'}) AS INTEGER) = 2024)",
       "WHERE (Month(d)  = 3) And (Day(d) =  5 ) And (Year({d '2024-01-02'}) = 2024)",
       "WHERE ({fn MONTH(d)}  = 3) And ({fn DAYOFMONTH(d)} =  5 ) And ({fn YEAR({d "
       "'2024-01-02'})} = 2024)"},
      // A name that is no call, or a call with another number of arguments.
      {"SELECT Month, Day(a, b), Date(x) FROM t", "SELECT Month, Day(a, b), Date(x) FROM t",
       "SELECT Month, Day(a, b), Date(x) FROM t", "SELECT Month, Day(a, b), Date(x) FROM t"},
  });
}

TEST(OdbcDialect, NowAndDateAreThePlatformClocksMomentAndDay) {
  const Clock previous = SetClock([] { return DateTimeOf(2024, 3, 5, 14, 7, 9); });
  const char* sent = "VALUES ({ts '2024-03-05 14:07:09'}, {d '2024-03-05'})";
  ExpectTranslations({{"VALUES (Now(), Date( ))", sent, sent, sent}});
  SetClock(previous);
}

TEST(OdbcDialect, LikePatternsTakeTheStandardWildcardsAndTextJoinsWithPipes) {
  ExpectTranslations({
      {"WHERE regnno like 'JPS*' AND n Like  'a?b%' AND n LIKE x AND '*' = '?'",
       "WHERE regnno ILIKE 'JPS%' AND n ILIKE  'a_b%' AND n ILIKE x AND '*' = '?'",
       "WHERE regnno like 'JPS%' AND n Like  'a_b%' AND n LIKE x AND '*' = '?'",
       "WHERE regnno like 'JPS%' AND n Like  'a_b%' AND n LIKE x AND '*' = '?'"},
      {"SELECT a & ' ' & b, c && d", "SELECT a || ' ' || b, c && d", "SELECT a || ' ' || b, c && d",
       "SELECT a || ' ' || b, c && d"},
  });
  EXPECT_EQ(TranslateForServer("SELECT a & b", ServerKind::kSqlServer), "SELECT a + b");
}

TEST(OdbcDialect, ServerKindComesFromTheDbmsName) {
  const std::pair<const char*, ServerKind> cases[] = {
      {"PostgreSQL", ServerKind::kPostgreSQL}, {"MariaDB", ServerKind::kMySql},
      {"MySQL", ServerKind::kMySql},           {"Microsoft SQL Server", ServerKind::kSqlServer},
      {"SQLite", ServerKind::kSqlite},         {"Oracle", ServerKind::kOther},
  };
  for (const auto& [name, kind] : cases)
    EXPECT_EQ(odbc::ServerKindOf(name), kind) << name;
}

// --- on the servers -------------------------------------------------------------

// ServerDsn: a test server's data source; the suite runs once per server.
struct ServerDsn {
  const char* name;
  const char* dsn_env;
};

void PrintTo(const ServerDsn& server, std::ostream* out) {
  *out << server.name;
}

class OdbcDialectOnServer : public ::testing::TestWithParam<ServerDsn> {
 protected:
  void SetUp() override {
    const std::string dsn = EnvOr(GetParam().dsn_env);
    if (dsn.empty()) {
      GTEST_SKIP() << GetParam().dsn_env << " is not set, so there is no " << GetParam().name
                   << " test server";
    }
    db_ = OpenOdbcConnection("DSN=" + dsn, "", "");
    table_ = "kt_dialect_" + std::to_string(::getpid());
    Exec("DROP TABLE IF EXISTS " + table_);
    Exec("CREATE TABLE " + table_ +
         " (id INTEGER PRIMARY KEY, regnno VARCHAR(16), name VARCHAR(30), born DATE, "
         "seen TIMESTAMP NULL, insured BOOLEAN)");
    Exec("INSERT INTO " + table_ +
         " VALUES (1, 'JPS0041', 'Smith', {d '1950-01-01'}, {ts '2024-03-05 10:30:00'}, TRUE), "
         "(2, 'JPS0007', 'smithson', {d '1979-12-31'}, NULL, FALSE), "
         "(3, 'JS000001', 'Brown', NULL, {ts '2024-03-06 00:00:00'}, FALSE)");
  }
  void TearDown() override {
    if (db_) Exec("DROP TABLE IF EXISTS " + table_);
  }
  StatementResult Exec(const std::string& sql) { return db_->Run(sql, {}, 0); }
  // Ids: the ids of the rows where the condition holds, in order.
  std::string Ids(const std::string& where) {
    const StatementResult r = Exec("SELECT id FROM " + table_ + " WHERE " + where + " ORDER BY id");
    std::string ids;
    for (size_t row = 0; row < r.rows.RowCount(); ++row)
      ids += (ids.empty() ? "" : ",") + TextOf(r.rows.Cell(row, 0));
    return ids;
  }

  std::unique_ptr<DriverConnection> db_;
  std::string table_;
};

TEST_P(OdbcDialectOnServer, TheSystemsConditionsFindWhatTheyFindOnTheEmbeddedDefault) {
  const Clock previous = SetClock([] { return DateTimeOf(2024, 3, 6, 12, 0, 0); });
  const std::pair<const char*, const char*> cases[] = {
      {"regnno like 'JPS*'", "1,2"},
      {"regnno Like 'JS00000?'", "3"},
      {"name Like 'SMITH*'", "1,2"},  // without regard to case
      {"Ucase$(name) = 'SMITHSON' OR Lcase(name) = 'brown'", "2,3"},
      {" (Isnull(born) = true ) ", "3"},
      {"born Between #01/01/1950#  And #12/31/1979#", "1,2"},
      {"born >= TO_Date('01-Jan-1960','DD-Mon-YYYY')", "2"},
      {" ( (Month(seen)  = 3)  And (Day(seen) =  5 )  And (Year(seen) =  2024 )  )", "1"},
      {"seen < Now() AND born < Date()", "1"},
      {"name & '/' & regnno = 'Brown/JS000001'", "3"},
      {"insured = True", "1"},
  };
  for (const auto& [where, ids] : cases)
    EXPECT_EQ(Ids(where), ids) << where;
  SetClock(previous);
}

TEST_P(OdbcDialectOnServer, ARejectedStatementKeepsTheServersMessageAndBothTexts) {
  const std::string system = "SELECT nope FROM " + table_ + " WHERE born > #01/01/2000#";
  const Error e = ErrorOf([&] { Exec(system); });
  EXPECT_EQ(e.Number(), kErrProviderFailure);
  EXPECT_THAT(e.SqlState(), AnyOf(Eq("42S22"), Eq("42703")));  // MariaDB's, PostgreSQL's
  EXPECT_EQ(e.Statement(), system);
  EXPECT_THAT(e.Description(), HasSubstr("nope"));
  EXPECT_THAT(e.Description(), HasSubstr("SQLSTATE " + e.SqlState()));
  EXPECT_THAT(e.Description(), HasSubstr("sent to the server as: SELECT nope FROM " + table_ +
                                         " WHERE born > {d '2000-01-01'}"));
}

// Yes/no as Boolean, dates as Date, counts and sums of integers as Long
// when they fit (as on the embedded default), else as LongLong.
TEST_P(OdbcDialectOnServer, ValuesReadAsOnTheEmbeddedDefault) {
  const StatementResult r =
      Exec("SELECT insured, born, Min(seen), COUNT(*), SUM(id), SUM(id) * 3000000000 FROM " +
           table_ + " WHERE id = 1 GROUP BY insured, born");
  ASSERT_EQ(r.rows.RowCount(), 1u);
  const std::pair<DataTypeEnum, Variant> expected[] = {
      {adBoolean, Variant(true)},
      {adDate, Variant(DateSerial(1950, 1, 1))},
      {adDBTimeStamp, Variant(DateTimeOf(2024, 3, 5, 10, 30, 0))},
      {adInteger, Variant(int32_t{1})},
      {adInteger, Variant(int32_t{1})},
      {adBigInt, Variant(int64_t{3000000000})},
  };
  for (size_t c = 0; c < std::size(expected); ++c) {
    EXPECT_EQ(r.rows.columns[c].type, expected[c].first) << c;
    EXPECT_EQ(r.rows.Cell(0, c), expected[c].second) << c;
  }
}

INSTANTIATE_TEST_SUITE_P(, OdbcDialectOnServer,
                         ::testing::Values(ServerDsn{"PostgreSQL", "KELVARY_TEST_ODBC_DSN"},
                                           ServerDsn{"MariaDB", "KELVARY_TEST_MARIADB_DSN"}),
                         [](const ::testing::TestParamInfo<ServerDsn>& info) {
                           return std::string(info.param.name);
                         });

#else

TEST(OdbcDialect, NotBuilt) {
  GTEST_SKIP() << "the library was built without ODBC";
}

#endif

}  // namespace
}  // namespace kelvary::testing
