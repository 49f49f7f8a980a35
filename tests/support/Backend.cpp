#include "support/Backend.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/Text.h"
#include "support/TestDatabase.h"

#include "kelvary/platform/internal/drivers/DriverFactory.h"

namespace kelvary::testing {
namespace {

std::string EnvOrEmpty(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string ReadSqlFile(const std::string& file) {
  std::ifstream in(file);
  if (!in) in.open(std::string(KELVARY_DATA_DIR) + "/" + file);
  if (!in) throw std::runtime_error("cannot read the SQL file " + file);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Filled: text with every {table} and {column} replaced.
std::string Filled(std::string text, const std::string& table, const std::string& column) {
  for (const auto& [marker, name] :
       {std::pair<std::string, const std::string&>{"{table}", table}, {"{column}", column}}) {
    for (size_t at = text.find(marker); at != std::string::npos;
         at = text.find(marker, at + name.size()))
      text.replace(at, marker.size(), name);
  }
  return text;
}

std::shared_ptr<kelvary::Connection> OpenClient(const std::string& connection_string) {
  auto connection = std::make_shared<kelvary::Connection>();
  connection->CursorLocation(adUseClient);
  connection->Open(connection_string);
  return connection;
}

}  // namespace

// --- traits -------------------------------------------------------------------

std::string BackendTraits::Name(std::string_view written) const {
  return lower_case_names ? LowerCase(written) : std::string(written);
}

Variant BackendTraits::Count(int64_t n) const {
  return Variant(static_cast<int32_t>(n));
}

std::string BackendTraits::MissingTable(const std::string& table) const {
  return Filled(missing_table_text, Name(table), "");
}

std::string BackendTraits::NotNullFailed(const std::string& table,
                                         const std::string& column) const {
  return Filled(not_null_text, Name(table), Name(column));
}

std::string BackendTraits::SyncAutoKey(const std::string& table, const std::string& column) const {
  return Filled(sync_auto_key_sql, Name(table), Name(column));
}

std::string Rows(const std::shared_ptr<kelvary::Connection>& connection, const std::string& sql) {
  auto rs = std::make_shared<Recordset>();
  rs->Open(sql, connection, adOpenStatic, adLockReadOnly);
  std::string text;
  for (bool first_row = true; !rs->Eof(); rs->MoveNext(), first_row = false) {
    if (!first_row) text += ",";
    for (int32_t c = 0; c < rs->FieldCount(); ++c)
      text += (c == 0 ? "" : "|") + TextOf(rs->Fields(c).Value());
  }
  return text;
}

// --- databases ----------------------------------------------------------------

class BackendDatabase::Impl {
 public:
  virtual ~Impl() = default;
  virtual void Run(std::string_view sql) { ExecuteScript(*connection_, sql); }
  std::shared_ptr<kelvary::Connection> Connect() const { return OpenClient(ConnectionString()); }
  virtual std::string ConnectionString() const = 0;

  std::shared_ptr<kelvary::Connection> connection_;
  std::string data_source_;
};

BackendDatabase::BackendDatabase() = default;
BackendDatabase::BackendDatabase(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
BackendDatabase::BackendDatabase(BackendDatabase&&) noexcept = default;
BackendDatabase& BackendDatabase::operator=(BackendDatabase&&) noexcept = default;
BackendDatabase::~BackendDatabase() = default;

void BackendDatabase::Run(std::string_view sql) {
  impl_->Run(sql);
}

void BackendDatabase::RunFile(const std::string& file) {
  impl_->Run(ReadSqlFile(file));
}

const std::shared_ptr<kelvary::Connection>& BackendDatabase::Connection() const {
  return impl_->connection_;
}

std::shared_ptr<kelvary::Connection> BackendDatabase::Connect() const {
  return impl_->Connect();
}

const std::string& BackendDatabase::DataSource() const {
  return impl_->data_source_;
}

std::string BackendDatabase::ConnectionString() const {
  return impl_->ConnectionString();
}

std::string BackendDatabase::ShapeConnectionString() const {
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + DataSource() +
         ";Data Provider=MSDASQL";
}

// --- SQLite -------------------------------------------------------------------

namespace {

class SqliteDatabase : public BackendDatabase::Impl {
 public:
  explicit SqliteDatabase(const std::string& file_name) : db_(file_name) {
    connection_ = db_.Connection();
    data_source_ = db_.Path();
  }
  std::string ConnectionString() const override { return db_.ConnectionString(); }

 private:
  TestDatabase db_;
};

class SqliteBackend : public Backend {
 public:
  const BackendTraits& Traits() const override { return traits_; }
  std::string SkipReason() const override { return ""; }
  BackendDatabase NewDatabase(const std::string& label) const override {
    return BackendDatabase(std::make_unique<SqliteDatabase>(label));
  }
  std::string MissingDataSource() const override {
    return (std::filesystem::temp_directory_path() / "kelvary-no-such-folder" / "absent.db")
        .string();
  }

 private:
  BackendTraits traits_{.name = "SQLite"};
};

// --- Servers through ODBC -----------------------------------------------------

// ServerKind: what differs between the servers in handing out and emptying
// test databases.
struct ServerKind {
  const char* name;        // "PostgreSQL"
  const char* dsn_env;     // the control data source's variable
  const char* pool_env;    // the pool size's variable
  const char* script;      // the script that starts a server
  const char* try_lock;    // SQL taking slot {slot} without waiting: a true/1 row when taken
  const char* unlock;      // SQL giving it back
  const char* current_db;  // SQL naming the connection's database
};

constexpr ServerKind kPostgres{"PostgreSQL",
                               "KELVARY_TEST_ODBC_DSN",
                               "KELVARY_TEST_ODBC_POOL",
                               "scripts/pg-test-server.sh",
                               "SELECT pg_try_advisory_lock(4731, {slot})",
                               "SELECT pg_advisory_unlock(4731, {slot})",
                               "SELECT current_database()"};
constexpr ServerKind kMariaDb{"MariaDB",
                              "KELVARY_TEST_MARIADB_DSN",
                              "KELVARY_TEST_MARIADB_POOL",
                              "scripts/mariadb-test-server.sh",
                              "SELECT GET_LOCK('kelvary_test_slot_{slot}', 0)",
                              "SELECT RELEASE_LOCK('kelvary_test_slot_{slot}')",
                              "SELECT DATABASE()"};

std::string NoServer(const ServerKind& kind) {
  return std::string(kind.dsn_env) + " is not set, so there is no " + kind.name +
         " test server: eval \"$(" + kind.script + " start)\" starts one";
}

// ServerClient: how the library reaches a test database: through ODBC by
// the slot's data source, or (PostgreSQL) through the server's own client,
// by a Provider=PostgreSQL string and, for the service object, by the
// database's postgresql:// URI.
enum class ServerClient { kOdbc, kLibpq };

// PgSetting: one key of the test server's libpq connection string.
std::string PgSetting(const std::string& key) {
  std::istringstream words(EnvOrEmpty("KELVARY_TEST_PG_CONNINFO"));
  std::string word;
  while (words >> word) {
    if (word.rfind(key + "=", 0) == 0) return word.substr(key.size() + 1);
  }
  return "";
}

// PgProvider: the connection string that opens database through
// PostgreSQL's own client on the test server.
std::string PgProvider(const std::string& database) {
  return "Provider=PostgreSQL;Host=" + PgSetting("host") + ";Port=" + PgSetting("port") +
         ";Database=" + database + ";User ID=" + PgSetting("user") +
         ";Password=" + PgSetting("password");
}

#if defined(KELVARY_HAVE_ODBC) || defined(KELVARY_HAVE_LIBPQ)

// ControlString: what the pool's control connection opens. On PostgreSQL,
// the server's own client when the build has it and the server is named, so
// that the libpq backend runs where ODBC is missing; else the kind's control
// data source.
std::string ControlString(const ServerKind& kind) {
#ifdef KELVARY_HAVE_LIBPQ
  if (&kind == &kPostgres && !EnvOrEmpty("KELVARY_TEST_PG_CONNINFO").empty()) {
    return PgProvider(PgSetting("dbname"));
  }
#endif
  return "DSN=" + EnvOrEmpty(kind.dsn_env);
}

std::string WithSlot(const char* sql, int slot) {
  std::string text = sql;
  const size_t at = text.find("{slot}");
  return text.replace(at, 6, std::to_string(slot));
}

// ServerPool: the slots of this process on one server, taken on one control
// connection (ControlString). The connection lives as
// long as the process (never freed on purpose: the server releases its
// locks when the process ends, however it ends).
class ServerPool {
 public:
  static ServerPool& Get(const ServerKind& kind) {
    if (&kind == &kPostgres) {
      static ServerPool* postgres = new ServerPool(kPostgres);
      return *postgres;
    }
    static ServerPool* mariadb = new ServerPool(kMariaDb);
    return *mariadb;
  }

  // Acquire: a free slot, its database there and empty (PostgreSQL empties
  // it on the slot's own connection, see ServerDatabase).
  int Acquire() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    const int first = static_cast<int>(::getpid() % size_);
    while (true) {
      for (int i = 0; i < size_; ++i) {
        const int slot = (first + i) % size_ + 1;
        if (held_.count(slot) != 0) continue;
        const Variant taken = Scalar(WithSlot(kind_.try_lock, slot));
        if (taken.IsNull() || !CBool(taken)) continue;
        held_.insert(slot);
        try {
          const std::string name = DatabaseName(slot);
          if (&kind_ == &kMariaDb) {
            // A database is a folder of tables there: dropping and creating
            // it again is the quickest way to empty it.
            control_->Run("DROP DATABASE IF EXISTS " + name, {}, 0);
            control_->Run("CREATE DATABASE " + name + " CHARACTER SET utf8mb4", {}, 0);
          } else if (CLng(Scalar("SELECT count(*) FROM pg_database WHERE datname = '" + name +
                                 "'")) == 0) {
            control_->Run("CREATE DATABASE " + name + " TEMPLATE template0", {}, 0);
          }
        } catch (...) {
          Release(slot);
          throw;
        }
        return slot;
      }
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("all " + std::to_string(size_) + " " + kind_.name +
                                 " test databases stayed busy for two minutes; raise " +
                                 kind_.pool_env + " or run fewer tests at once");
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }

  void Release(int slot) {
    if (held_.erase(slot) == 0) return;
    Scalar(WithSlot(kind_.unlock, slot));
  }

  std::string Dsn(int slot) const { return dsn_ + "_" + std::to_string(slot); }
  std::string DatabaseName(int slot) const { return database_ + "_" + std::to_string(slot); }

 private:
  explicit ServerPool(const ServerKind& kind) : kind_(kind), dsn_(EnvOrEmpty(kind.dsn_env)) {
    const std::string size = EnvOrEmpty(kind.pool_env);
    size_ = std::atoi(size.c_str());
    if (size_ <= 0) {
      throw std::runtime_error(std::string(kind.pool_env) +
                               " is not set: the shared suites need the pool of test data "
                               "sources " +
                               dsn_ + "_1, " + dsn_ + "_2, ... that " + kind.script +
                               " registers, and its size");
    }
    control_ = internal::OpenDriver(ControlString(kind), "", "", 30);
    database_ = CStr(Scalar(kind.current_db));
  }

  Variant Scalar(const std::string& sql) {
    const StatementResult r = control_->Run(sql, {}, 0);
    if (!r.has_rows || r.rows.RowCount() == 0) throw std::runtime_error("no row from " + sql);
    return r.rows.Cell(0, 0);
  }

  const ServerKind& kind_;
  std::string dsn_;
  std::string database_;
  int size_ = 0;
  std::unique_ptr<DriverConnection> control_;
  std::set<int> held_;
};

class ServerDatabase : public BackendDatabase::Impl {
 public:
  ServerDatabase(const ServerKind& kind, ServerClient client)
      : pool_(ServerPool::Get(kind)), slot_(pool_.Acquire()), client_(client) {
    data_source_ = pool_.Dsn(slot_);
    if (client_ == ServerClient::kLibpq) {
      data_source_ = "postgresql://" + PgSetting("user") + ":" + PgSetting("password") + "@" +
                     PgSetting("host") + ":" + PgSetting("port") + "/" + pool_.DatabaseName(slot_);
    }
    try {
      connection_ = OpenClient(ConnectionString());
      if (&kind == &kPostgres) {
        // Empty: whatever the slot's last test made lives in the public
        // schema. Four times faster than dropping and creating the database.
        connection_->Execute("DROP SCHEMA IF EXISTS public CASCADE");
        connection_->Execute("CREATE SCHEMA public");
      }
      const std::string name = CStr(connection_->Execute(kind.current_db)->Fields(0).Value());
      if (name != pool_.DatabaseName(slot_)) {
        throw std::runtime_error("the data source " + data_source_ + " names the database " + name +
                                 ", not " + pool_.DatabaseName(slot_));
      }
    } catch (...) {
      pool_.Release(slot_);
      throw;
    }
  }
  ~ServerDatabase() override {
    try {
      if (connection_ && connection_->State() == adStateOpen) connection_->Close();
      pool_.Release(slot_);
    } catch (const std::exception& e) {
      ADD_FAILURE() << "giving back " << data_source_ << ": " << e.what();
    }
  }
  std::string ConnectionString() const override {
    if (client_ == ServerClient::kLibpq) return PgProvider(pool_.DatabaseName(slot_));
    return "DSN=" + data_source_;
  }

 private:
  ServerPool& pool_;
  int slot_;
  ServerClient client_;
};

#endif

class ServerBackend : public Backend {
 public:
  ServerBackend(const ServerKind& kind, BackendTraits traits,
                ServerClient client = ServerClient::kOdbc)
      : kind_(kind), traits_(std::move(traits)), client_(client) {}
  const BackendTraits& Traits() const override { return traits_; }
  std::string SkipReason() const override {
    if (client_ == ServerClient::kLibpq) {
#ifndef KELVARY_HAVE_LIBPQ
      return "the library was built without PostgreSQL's client (libpq's headers were not found)";
#else
      if (EnvOrEmpty("KELVARY_TEST_PG_CONNINFO").empty()) {
        return "KELVARY_TEST_PG_CONNINFO is not set: eval \"$(scripts/pg-test-server.sh start)\" "
               "sets it";
      }
      return "";
#endif
    }
    if (EnvOrEmpty(kind_.dsn_env).empty()) return NoServer(kind_);
#ifndef KELVARY_HAVE_ODBC
    return "the library was built without ODBC (unixODBC's headers were not found)";
#else
    return "";
#endif
  }
  BackendDatabase NewDatabase(const std::string&) const override {
#if defined(KELVARY_HAVE_ODBC) || defined(KELVARY_HAVE_LIBPQ)
    return BackendDatabase(std::make_unique<ServerDatabase>(kind_, client_));
#else
    throw std::runtime_error(SkipReason());
#endif
  }
  std::string MissingDataSource() const override {
    if (client_ == ServerClient::kLibpq) {
      return "postgresql://" + PgSetting("user") + ":" + PgSetting("password") + "@" +
             PgSetting("host") + ":" + PgSetting("port") + "/kelvary_no_such_database";
    }
    return "kelvary_no_such_source";
  }

 private:
  const ServerKind& kind_;
  BackendTraits traits_;
  ServerClient client_;
};

}  // namespace

const std::vector<const Backend*>& Backends() {
  static const SqliteBackend sqlite;
  const BackendTraits postgres_traits{
      .name = "PostgreSQL",
      .main_db_type = sdbOracle,
      .lower_case_names = true,
      .bare_messages = false,
      .loose_types = false,
      .auto_key = "SERIAL PRIMARY KEY",
      .datetime_type = "TIMESTAMP",
      .keeps_table_order = false,
      .missing_table_text = "relation \"{table}\" does not exist",
      .not_null_text =
          "null value in column \"{column}\" of relation "
          "\"{table}\" violates not-null constraint",
      .sync_auto_key_sql =
          "SELECT setval(pg_get_serial_sequence('{table}', '{column}'), "
          "(SELECT max({column}) FROM {table}))"};
  static const ServerBackend postgres(kPostgres, postgres_traits);
  static const ServerBackend postgres_libpq(
      kPostgres,
      [&] {
        BackendTraits traits = postgres_traits;
        traits.name = "PostgreSQL_libpq";
        return traits;
      }(),
      ServerClient::kLibpq);
  static const ServerBackend mariadb(kMariaDb, {.name = "MariaDB",
                                                .main_db_type = sdbAccess,
                                                .bare_messages = false,
                                                .loose_types = false,
                                                .auto_key = "INTEGER AUTO_INCREMENT PRIMARY KEY",
                                                .datetime_type = "DATETIME",
                                                .keeps_table_order = false,
                                                .missing_table_text = ".{table}' doesn't exist",
                                                .not_null_text = "'{column}'"});
  static const std::vector<const Backend*> all = {&sqlite, &postgres, &postgres_libpq, &mariadb};
  return all;
}

void BackendTest::SetUp() {
  const std::string why = TheBackend().SkipReason();
  if (!why.empty()) GTEST_SKIP() << why;
}

bool BackendTest::Supports(bool has, std::string_view reason) const {
  if (!has) std::cout << "[  LEFT OUT ] on " << Traits().name << ": " << reason << "\n";
  return has;
}

std::string BackendName(const ::testing::TestParamInfo<const Backend*>& info) {
  return info.param->Traits().name;
}

void PrintTo(const Backend* backend, std::ostream* out) {
  *out << backend->Traits().name;
}

::testing::Matcher<const std::string&> BackendTest::EngineMessage(const std::string& message,
                                                                  const std::string& prefix) const {
  if (Traits().bare_messages) return ::testing::Eq(prefix + message);
  return ::testing::AllOf(::testing::StartsWith(prefix), ::testing::HasSubstr(message));
}

}  // namespace kelvary::testing
