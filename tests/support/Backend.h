// Backend: the database engines the shared suites run on, each with a small
// traits object for what it does differently. A suite whose fixture derives
// from BackendTest and is instantiated with KELVARY_ON_EVERY_BACKEND runs
// every test body once per backend, the backend's name ending the test's
// name ("RecordsetNavigation.WalksEveryRow/PostgreSQL"):
//   SQLite      always: a database file in its own temporary folder;
//   PostgreSQL  through ODBC, when KELVARY_TEST_ODBC_DSN names a data source
//               (scripts/pg-test-server.sh starts a throw-away server and
//               exports the settings);
//   PostgreSQL_libpq  the same server and pool through PostgreSQL's own
//               client, when KELVARY_TEST_PG_CONNINFO is set too: opened by
//               a Provider=PostgreSQL string, and by the database's
//               postgresql:// URI as the service object's data source;
//   MariaDB     through ODBC, when KELVARY_TEST_MARIADB_DSN names one
//               (scripts/mariadb-test-server.sh);
// without its server a backend's instances skip with one line saying how to
// get one.
//
// Isolation on a server: the library opens its own connections, by a
// data-source name or an ODBC string, so every test database is a database
// of its own with a data-source name of its own. The server scripts register
// a pool of them, <DSN>_1 .. <DSN>_<pool size>, the n-th naming the database
// <control database>_n. A test takes free slots (a session lock held on one
// control connection per process: PostgreSQL's advisory locks, MariaDB's
// named locks; a crashed process frees its slots), empties each slot's
// database (PostgreSQL: drops and creates again its public schema, where
// everything a test makes lives; MariaDB: drops and creates the database)
// and runs its SQL there; the slot is given back when the database object
// goes. Processes running in parallel never share a slot.
//
// BackendDatabase and the backends are used by one thread.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/Enums.h"

namespace kelvary::testing {

// BackendTraits: what a backend does differently from the embedded default,
// for the suites to consult instead of naming a backend. Every entry is a
// difference in the engine itself (its SQL or its messages); where the
// system's own text cannot run on a backend the suites skip that case with
// the reason below.
struct BackendTraits {
  // Name: "SQLite", "PostgreSQL", "PostgreSQL_libpq" or "MariaDB"; the
  // suffix of the tests' names.
  std::string name;
  // MainDBType: the dialect the service object is set to. Every engine runs
  // every dialect (the drivers translate); the servers take one each, so
  // that both are exercised on a server: PostgreSQL the Oracle one (TO_Date,
  // ||), MariaDB the Access one (#m/d/yyyy# dates, Ucase$).
  StdDBTypes main_db_type = sdbAccess;
  // LowerCaseNames: unquoted names are folded to lower case, so column and
  // table names come back in lower case whatever case the SQL used.
  bool lower_case_names = false;
  // BareMessages: an error's description is the engine's message as it
  // stands; through ODBC the driver adds its own words around it.
  bool bare_messages = true;
  // LooseTypes: a column takes a value of any type and keeps it (text in an
  // integer column, 0 and 1 for booleans); a column may be declared without
  // a type.
  bool loose_types = true;
  // AutoKey: the column type of an integer key the database numbers itself
  // when an INSERT leaves it out.
  std::string auto_key = "INTEGER PRIMARY KEY";
  // DateTimeType: the column type that keeps a date with its time of day
  // (the desktop database's Date/Time); PostgreSQL's DATE drops the time.
  std::string datetime_type = "DATE";
  // KeepsTableOrder: a statement without ORDER BY returns the rows in the
  // order they were inserted (SQLite); PostgreSQL's hash joins and hash
  // aggregates return another order.
  bool keeps_table_order = true;
  // Texts with {table} and {column} standing for names as the database
  // reports them (Name): the error of a missing table, that of a NULL
  // written to a NOT NULL column, and the statement that moves an AutoKey
  // column's generator past the keys inserted by hand ("" when the database
  // does so itself).
  std::string missing_table_text = "no such table: {table}";
  std::string not_null_text = "NOT NULL constraint failed: {table}.{column}";
  std::string sync_auto_key_sql = "";

  // Name: a column or table name as the database reports it back.
  std::string Name(std::string_view written) const;
  // Count: n as COUNT(*) reads back: a Long on every engine (the servers'
  // BIGINT counts are narrowed by the ODBC driver when they fit).
  Variant Count(int64_t n) const;
  // MissingTable, NotNullFailed, SyncAutoKey: the texts above for a table
  // and column.
  std::string MissingTable(const std::string& table) const;
  std::string NotNullFailed(const std::string& table, const std::string& column) const;
  std::string SyncAutoKey(const std::string& table, const std::string& column) const;
};

// BackendDatabase: one empty database of a backend, for one test. Run and
// RunFile fill it (ExecuteScript, in one transaction); Connection is the
// connection it was created with; Connect opens another. DataSource is the
// name the service object's ConnectDefault takes for it (a file path, or an
// ODBC data-source name), ConnectionString a string Connection::Open and
// ConnectDefault's direct string take. A default-constructed object holds
// nothing until a database is moved into it.
class BackendDatabase {
 public:
  class Impl;
  BackendDatabase();
  explicit BackendDatabase(std::unique_ptr<Impl> impl);
  BackendDatabase(BackendDatabase&&) noexcept;
  BackendDatabase& operator=(BackendDatabase&&) noexcept;
  ~BackendDatabase();

  void Run(std::string_view sql);
  // RunFile runs a SQL file: a path, or a name relative to data/.
  void RunFile(const std::string& file);
  const std::shared_ptr<kelvary::Connection>& Connection() const;
  std::shared_ptr<kelvary::Connection> Connect() const;
  const std::string& DataSource() const;
  std::string ConnectionString() const;
  // ShapeConnectionString: the string ConnectDefault builds from DataSource.
  std::string ShapeConnectionString() const;

 private:
  std::unique_ptr<Impl> impl_;
};

class Backend {
 public:
  virtual ~Backend() = default;
  virtual const BackendTraits& Traits() const = 0;
  // SkipReason: why this backend cannot run here ("" when it can).
  virtual std::string SkipReason() const = 0;
  // NewDatabase: a fresh, empty database; label names the SQLite file.
  virtual BackendDatabase NewDatabase(const std::string& label) const = 0;
  // MissingDataSource: a data-source name that opens nothing.
  virtual std::string MissingDataSource() const = 0;
};

// Rows: every row sql reads on connection, its values as text (TextOf,
// so Null is "") joined by '|', the rows joined by ','.
std::string Rows(const std::shared_ptr<kelvary::Connection>& connection, const std::string& sql);

// Backends: every backend, the embedded default first.
const std::vector<const Backend*>& Backends();

// BackendTest: the fixture of a shared suite. SetUp skips the test when the
// backend is not available; a fixture's own SetUp calls it first and returns
// when IsSkipped().
class BackendTest : public ::testing::TestWithParam<const Backend*> {
 protected:
  void SetUp() override;

  const kelvary::testing::Backend& TheBackend() const { return *GetParam(); }
  const BackendTraits& Traits() const { return GetParam()->Traits(); }
  BackendDatabase NewDatabase(const std::string& label = "test.db") const {
    return GetParam()->NewDatabase(label);
  }
  // Supports: whether the backend has what one case of a test checks
  // (a BackendTraits flag); when it has not, says so in one line naming the
  // reason, so that the case is seen to be left out, not silently passed.
  //   if (Supports(Traits().loose_types, "text in an integer column")) { ... }
  bool Supports(bool has, std::string_view reason) const;
  // EngineMessage: matches an error description that is the engine's
  // message (after prefix): the whole of it where the backend's messages are
  // bare, else a description that starts with prefix and contains it.
  ::testing::Matcher<const std::string&> EngineMessage(const std::string& message,
                                                       const std::string& prefix = "") const;
};

// BackendName: the test-name suffix of a backend parameter.
std::string BackendName(const ::testing::TestParamInfo<const Backend*>& info);
// PrintTo: a backend parameter in GoogleTest's messages, by name.
void PrintTo(const Backend* backend, std::ostream* out);

}  // namespace kelvary::testing

// KELVARY_ON_EVERY_BACKEND(Fixture): runs the TEST_P tests of Fixture on
// every backend.
#define KELVARY_ON_EVERY_BACKEND(Fixture)                                                  \
  INSTANTIATE_TEST_SUITE_P(, Fixture, ::testing::ValuesIn(::kelvary::testing::Backends()), \
                           ::kelvary::testing::BackendName)
