// The PostgreSQL driver against the test server, at the level the cursor
// engine uses it (DriverConnection), for what the shared suites do not
// reach: the connection-string forms, every server type and parameter type
// in their binary form, the server's errors, and what the catalog tells.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/ConnectionString.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"
#include "support/Backend.h"

#ifdef KELVARY_HAVE_LIBPQ
#include "kelvary/platform/internal/drivers/postgres/PostgresDriver.h"
#include "kelvary/platform/internal/drivers/postgres/internal/PostgresDialect.h"
#endif

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(PostgresChoice, EveryFormOfTheStringChoosesTheServersOwnClient) {
  struct Case {
    std::string given;
    internal::DriverChoice::Kind kind;
    std::string uri;
  };
  const std::vector<Case> cases = {
      {"postgresql://me:pw@db.example:5433/practice", internal::DriverChoice::kPostgres,
       "postgresql://me:pw@db.example:5433/practice"},
      {"  postgres://db.example/practice  ", internal::DriverChoice::kPostgres,
       "postgres://db.example/practice"},
      {"Provider=PostgreSQL;Host=db;Port=5433;Database=practice;User ID=me;Password=pw",
       internal::DriverChoice::kPostgres, ""},
      {"Provider=postgres;Host=db", internal::DriverChoice::kPostgres, ""},
      // The shaping form the service object builds from a data source.
      {"Provider=MSDataShape.1;Persist Security Info=False;Data Source=postgresql://db/practice;"
       "Data Provider=MSDASQL",
       internal::DriverChoice::kPostgres, "postgresql://db/practice"},
      // Not a URI: a path, a data-source name.
      {"Data Source=/srv/postgresql/practice.db", internal::DriverChoice::kSqlite, ""},
      {"Data Source=postgresql", internal::DriverChoice::kOdbc, ""},
  };
  for (const Case& c : cases) {
    const internal::DriverChoice choice = internal::ChooseDriver(c.given);
    EXPECT_EQ(choice.kind, c.kind) << c.given;
    EXPECT_EQ(choice.postgres_uri, c.uri) << c.given;
  }
  EXPECT_FALSE(internal::IsSqliteFileName("postgresql://db/practice"));
  Connection by_uri;
  by_uri.ConnectionString("postgresql://db/practice");
  EXPECT_EQ(by_uri.Provider(), "PostgreSQL");
  EXPECT_EQ(internal::ChooseDriver("Provider=MSDataShape;Data Source=postgresql://db/p;"
                                   "User ID=me;Password=pw")
                .user,
            "me");
}

#ifdef KELVARY_HAVE_LIBPQ

TEST(PostgresChoice, TheStringsKeysBecomeTheClientsSettings) {
  const std::vector<std::pair<std::string, std::string>> items = {
      {"Provider", "PostgreSQL"},
      {"Server", "db"},
      {"Port", "5433"},
      {"Initial Catalog", "practice"},
      {"UID", "me"},
      {"PWD", "p;w"},
      {"sslmode", "disable"},
      {"Persist Security Info", "False"},
      {"Connect_Timeout", "5"},
      {"dbname", "ignored"}};
  EXPECT_THAT(postgres::SettingsFromItems(items),
              ElementsAre(std::pair<std::string, std::string>{"host", "db"},
                          std::pair<std::string, std::string>{"port", "5433"},
                          std::pair<std::string, std::string>{"dbname", "practice"},
                          std::pair<std::string, std::string>{"user", "me"},
                          std::pair<std::string, std::string>{"password", "p;w"},
                          std::pair<std::string, std::string>{"sslmode", "disable"},
                          std::pair<std::string, std::string>{"connect_timeout", "5"}));
}

TEST(PostgresDialect, MarkersOutsideQuotesAndCommentsAreNumbered) {
  EXPECT_EQ(postgres::NumberParameters(
                "SELECT '?', \"a?\" FROM t -- why?\nWHERE a = ? /* ? */ AND b IN (?, ?)"),
            "SELECT '?', \"a?\" FROM t -- why?\nWHERE a = $1 /* ? */ AND b IN ($2, $3)");
  EXPECT_EQ(postgres::NumberParameters("SELECT 'it''s ?' || ?"), "SELECT 'it''s ?' || $1");
  EXPECT_EQ(postgres::TranslateForPostgres(
                "SELECT Ucase$(name) & 'x' FROM p WHERE name LIKE 'J*' AND born < #3/5/2024#"),
            "SELECT UPPER(name) || 'x' FROM p WHERE name ILIKE 'J%' AND born < DATE '2024-03-05'");
  EXPECT_EQ(postgres::TranslateForPostgres("SELECT Month(d) FROM p WHERE d = #3/5/2024 10:20:30#"),
            "SELECT CAST(EXTRACT(MONTH FROM d) AS INTEGER) FROM p WHERE d = TIMESTAMP "
            "'2024-03-05 10:20:30'");
}

// A database of the test server's pool, reached through this driver.
class PostgresDriverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const Backend* backend : Backends()) {
      if (backend->Traits().name == "PostgreSQL_libpq") backend_ = backend;
    }
    ASSERT_NE(backend_, nullptr);
    if (const std::string why = backend_->SkipReason(); !why.empty()) GTEST_SKIP() << why;
    db_ = backend_->NewDatabase("pg");
    driver_ = internal::OpenDriver(db_.ConnectionString(), "", "", 30);
  }

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params = {}) {
    return driver_->Run(sql, params, 0);
  }
  Error ErrorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const Error& e) {
      return e;
    }
    ADD_FAILURE() << "no error";
    return Error(0, "");
  }

  const Backend* backend_ = nullptr;
  BackendDatabase db_;
  std::unique_ptr<DriverConnection> driver_;
};

TEST_F(PostgresDriverTest, EveryFormOfTheStringOpensTheSameDatabase) {
  const std::string name = CStr(Run("SELECT current_database()").rows.Cell(0, 0));
  const std::string uri = db_.DataSource();
  std::string without_password = db_.ConnectionString();
  without_password.erase(without_password.find(";Password="));
  struct Form {
    std::string text;
    std::string user, password;
  };
  for (const Form& form :
       {Form{db_.ConnectionString(), "", ""}, Form{uri, "", ""},
        Form{"Provider=MSDataShape.1;Data Source=" + uri + ";Data Provider=MSDASQL", "", ""},
        Form{without_password, "kelvary", "kelvary"}}) {
    Connection c;
    c.Open(form.text, form.user, form.password);
    EXPECT_EQ(CStr(c.Execute("SELECT current_database()")->Fields(0).Value()), name) << form.text;
  }
  const Error refused =
      ErrorOf([&] { internal::OpenDriver(without_password + ";Password=wrong", "", "", 30); });
  EXPECT_EQ(refused.SqlState(), "08001");
  EXPECT_THAT(refused.Description(), HasSubstr("password authentication failed"));
}

TEST_F(PostgresDriverTest, EachServerTypeReadsAsTheSameColumnThroughOdbc) {
  struct Case {
    std::string expression;
    DataTypeEnum type;
    Variant value;
  };
  const Date fraction = Date(DateTimeOf(2024, 3, 5, 10, 20, 30).Serial() + 0.25 / 86400);
  const std::vector<Case> cases = {
      {"true", adBoolean, Variant(true)},
      {"7::int2", adSmallInt, Variant(int16_t{7})},
      {"-7::int4", adInteger, Variant(int32_t{-7})},
      {"5000000000::int8", adBigInt, Variant(int64_t{5000000000})},
      {"(SELECT count(*) FROM generate_series(1, 3))", adInteger, Variant(int32_t{3})},
      {"1.5::float4", adSingle, Variant(1.5f)},
      {"-2.25::float8", adDouble, Variant(-2.25)},
      {"12345.6789::numeric(19,4)", adNumeric, Variant(Currency{123456789})},
      {"(-0.0001)::numeric(10,4)", adNumeric, Variant(Currency{-1})},
      {"1.23456::numeric(12,5)", adNumeric, Variant(1.23456)},
      {"1000000000000000.5::numeric(19,1)", adNumeric, Variant(1000000000000000.5)},
      {"123.5::numeric", adNumeric, Variant(123.5)},
      {"'NaN'::numeric", adNumeric, Variant("NaN")},
      {"12.34::money", adCurrency, Variant(Currency{123400})},
      {"DATE '2024-03-05'", adDate, Variant(DateSerial(2024, 3, 5))},
      {"DATE '1899-12-29'", adDate, Variant(DateSerial(1899, 12, 29))},
      {"DATE '0050-01-01'", adDate, Variant("0050-01-01")},
      {"TIMESTAMP '2024-03-05 10:20:30.25'", adDBTimeStamp, Variant(fraction)},
      {"TIMESTAMP '1899-12-29 06:00:00'", adDBTimeStamp,
       Variant(DateTimeOf(1899, 12, 29, 6, 0, 0))},
      {"'infinity'::timestamp", adDBTimeStamp, Variant("infinity")},
      {"TIME '10:20:30'", adDBTime, Variant(TimeSerial(10, 20, 30))},
      {"'abc'::varchar(20)", adVarWChar, Variant("abc")},
      {"'ab '::char(3)", adVarWChar, Variant("ab ")},
      {"'é€'::text", adLongVarWChar, Variant("é€")},
      {"'\\x00ff'::bytea", adLongVarBinary, Variant(std::string("\0\xff", 2))},
      {"'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11'::uuid", adVarWChar,
       Variant("a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11")},
      {"'{\"a\": 1}'::jsonb", adLongVarWChar, Variant("{\"a\": 1}")},
      {"NULL::int4", adInteger, Variant::Null()},
  };
  for (const Case& c : cases) {
    const StatementResult r = Run("SELECT " + c.expression + " AS v");
    ASSERT_EQ(r.rows.RowCount(), 1u) << c.expression;
    EXPECT_EQ(r.rows.columns[0].type, c.type) << c.expression;
    EXPECT_EQ(r.rows.Cell(0, 0), c.value) << c.expression;
  }
}

TEST_F(PostgresDriverTest, EachParameterTypeIsBoundAndReadsBackAsWritten) {
  Run("CREATE TABLE p (b boolean, s smallint, i integer, l bigint, f real, d double precision, "
      "c numeric(19,4), t timestamp, day date, x text, n integer)");
  const Date moment = Date(DateTimeOf(2024, 3, 5, 10, 20, 30).Serial() + 0.5 / 86400);
  const std::vector<Variant> values = {Variant(true),
                                       Variant(int16_t{-3}),
                                       Variant(int32_t{2000000000}),
                                       Variant(int64_t{-9000000000}),
                                       Variant(0.5f),
                                       Variant(1e-300),
                                       Variant(Currency{-922337203685477580}),
                                       Variant(moment),
                                       Variant(DateTimeOf(1899, 12, 29, 6, 0, 0)),
                                       Variant("it's a ? and a $1"),
                                       Variant::Null()};
  EXPECT_EQ(Run("INSERT INTO p VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", values).records_affected,
            1);
  const StatementResult r = Run("SELECT * FROM p WHERE x = ? AND t = ?", {values[9], values[7]});
  ASSERT_EQ(r.rows.RowCount(), 1u);
  for (size_t c = 0; c < values.size(); ++c) {
    // A date column keeps the day of the moment it was given.
    const Variant expected = c == 8 ? Variant(DateSerial(1899, 12, 29)) : values[c];
    EXPECT_EQ(r.rows.Cell(0, c), expected) << r.rows.columns[c].name;
  }
  // Untyped text is read as a literal in its place would be: a number here.
  EXPECT_EQ(Run("SELECT i FROM p WHERE i = ?", {Variant("2000000000")}).rows.RowCount(), 1u);
}

TEST_F(PostgresDriverTest, AServerRefusalCarriesItsWordsSqlStateAndStatement) {
  const std::string missing = "SELECT Ucase$(name) FROM nothing_here";
  const Error error = ErrorOf([&] { Run(missing); });
  EXPECT_EQ(error.Number(), kErrProviderFailure);
  EXPECT_EQ(error.SqlState(), "42P01");
  EXPECT_EQ(error.Statement(), missing);  // the system's text, not the one sent
  EXPECT_THAT(error.Description(), StartsWith("relation \"nothing_here\" does not exist"));
  EXPECT_THAT(error.Description(),
              HasSubstr("sent to the server as: SELECT UPPER(name) FROM nothing_here"));

  Run("CREATE TABLE u (a integer, b integer, UNIQUE (a, b))");
  Run("INSERT INTO u VALUES (1, 2)");
  const Error duplicate = ErrorOf([&] { Run("INSERT INTO u VALUES (?, ?)", {1, 2}); });
  EXPECT_EQ(duplicate.SqlState(), "23505");
  EXPECT_TRUE(driver_->IsConstraintViolation(duplicate));
  EXPECT_THAT(driver_->ConstraintColumns(duplicate), ElementsAre("a", "b"));
  EXPECT_EQ(ErrorOf([&] { Run("SELECT 1/0"); }).SqlState(), "22012");
}

TEST_F(PostgresDriverTest, ARefusedStatementInATransactionIsUndoneAlone) {
  Run("CREATE TABLE t (id integer PRIMARY KEY)");
  driver_->BeginTransaction();
  Run("INSERT INTO t VALUES (1)");
  EXPECT_EQ(ErrorOf([&] { Run("INSERT INTO t VALUES (1)"); }).SqlState(), "23505");
  Run("INSERT INTO t VALUES (2)");
  driver_->CommitTransaction();
  EXPECT_EQ(CLng(Run("SELECT count(*) FROM t").rows.Cell(0, 0)), 2);

  driver_->BeginTransaction();
  Run("INSERT INTO t VALUES (3)");
  driver_->RollbackTransaction();
  EXPECT_EQ(CLng(Run("SELECT count(*) FROM t").rows.Cell(0, 0)), 2);
  EXPECT_EQ(ErrorOf([&] { driver_->CommitTransaction(); }).Number(), kErrProviderFailure);
}

TEST_F(PostgresDriverTest, TheCatalogTellsKeysBaseColumnsAndGeneratedKeys) {
  Run("CREATE TABLE \"Visits\" (\"Day\" date, room integer, note text, PRIMARY KEY (room, "
      "\"Day\"))");
  Run("CREATE TABLE orders (id serial PRIMARY KEY, item text NOT NULL)");
  // Quoted names as stored; unquoted ones folded as the server folds them.
  EXPECT_THAT(driver_->KeyColumns("\"Visits\""), ElementsAre("room", "Day"));
  EXPECT_THAT(driver_->KeyColumns("Orders"), ElementsAre("id"));
  EXPECT_THAT(driver_->KeyColumns("public.orders"), ElementsAre("id"));
  EXPECT_THAT(driver_->KeyColumns("no_such_table"), ::testing::IsEmpty());

  EXPECT_TRUE(driver_->LastInsertedKey("orders", "id").IsEmpty());  // none drawn yet
  Run("INSERT INTO orders (item) VALUES ('a'), ('b')");
  EXPECT_EQ(CLng(driver_->LastInsertedKey("orders", "ID")), 2);

  const StatementResult r = Run("SELECT o.id, o.item, upper(o.item) AS shout FROM orders o");
  const auto& columns = r.rows.columns;
  EXPECT_EQ(columns[0].base_table, "orders");
  EXPECT_EQ(columns[0].base_column, "id");
  EXPECT_TRUE(columns[0].key);
  EXPECT_TRUE(columns[0].auto_increment);
  EXPECT_FALSE(columns[1].key);
  EXPECT_FALSE(columns[1].nullable);
  EXPECT_TRUE(columns[2].base_table.empty());  // an expression

  // A table changed through the connection is read again.
  Run("ALTER TABLE orders ADD COLUMN code integer NOT NULL DEFAULT 0");
  EXPECT_FALSE(Run("SELECT code FROM orders").rows.columns[0].nullable);
}

#endif

}  // namespace
}  // namespace kelvary::testing
