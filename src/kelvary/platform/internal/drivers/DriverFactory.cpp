#include "kelvary/platform/internal/drivers/DriverFactory.h"

#include <mutex>
#include <utility>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/drivers/sqlite/SqliteDriver.h"

#ifdef KELVARY_HAVE_ODBC
#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"
#endif
#ifdef KELVARY_HAVE_LIBPQ
#include "kelvary/platform/internal/ConnectionString.h"
#include "kelvary/platform/internal/drivers/postgres/PostgresDriver.h"
#endif

namespace kelvary::internal {
namespace {

constexpr const char* kSource = "Connection";

struct Registry {
  std::mutex mutex;
  uint64_t next_id = 1;
  std::vector<std::pair<uint64_t, DriverOpener>> openers;  // oldest first
};

Registry& Openers() {
  static Registry registry;
  return registry;
}

}  // namespace

DriverRegistration::DriverRegistration(DriverOpener opener) {
  Registry& registry = Openers();
  std::lock_guard lock(registry.mutex);
  id_ = registry.next_id++;
  registry.openers.emplace_back(id_, std::move(opener));
}

DriverRegistration::~DriverRegistration() {
  Registry& registry = Openers();
  std::lock_guard lock(registry.mutex);
  std::erase_if(registry.openers, [this](const auto& entry) { return entry.first == id_; });
}

std::unique_ptr<DriverConnection> OpenBuiltInDriver(const DriverTarget& target) {
  const DriverChoice& choice = target.choice;
  switch (choice.kind) {
    case DriverChoice::kSqlite: {
      if (choice.sqlite_path.empty()) {
        throw Error(kErrProviderNotFound,
                    "The connection string names no SQLite database file (Data Source=...)",
                    kSource);
      }
      sqlite::OpenMode mode = sqlite::OpenMode::kReadWrite;
      if (choice.mode == DriverChoice::kReadOnly) mode = sqlite::OpenMode::kReadOnly;
      if (choice.mode == DriverChoice::kReadWriteCreate) mode = sqlite::OpenMode::kReadWriteCreate;
      return sqlite::OpenSqliteConnection(choice.sqlite_path, mode, target.busy_seconds);
    }
    case DriverChoice::kOdbc: {
#ifdef KELVARY_HAVE_ODBC
      auto odbc = OpenOdbcConnection(choice.odbc_string, std::string(target.user_id),
                                     std::string(target.password));
      odbc->SetBusyTimeout(target.busy_seconds);  // the server's lock wait, as SQLite gets it
      return odbc;
#else
      throw Error(kErrProviderNotFound,
                  "The data source \"" + choice.data_source +
                      "\" is reached through ODBC, and ODBC support is not built into this "
                      "library",
                  kSource);
#endif
    }
    case DriverChoice::kPostgres: {
#ifdef KELVARY_HAVE_LIBPQ
      // The whole string a URI: libpq reads it alone. Otherwise the
      // string's keys name the server, after the Data Source's URI if any.
      const std::vector<postgres::ConnectSetting> settings =
          IsPostgresUri(target.connection_string) ? std::vector<postgres::ConnectSetting>{}
                                                  : postgres::SettingsFromItems(target.items.items);
      auto pg = postgres::OpenPostgresConnection(
          choice.postgres_uri, settings, std::string(target.user_id), std::string(target.password));
      pg->SetBusyTimeout(target.busy_seconds);
      return pg;
#else
      throw Error(kErrProviderNotFound,
                  "The database \"" + choice.data_source +
                      "\" is a PostgreSQL server, and PostgreSQL support is not built into this "
                      "library",
                  kSource);
#endif
    }
    case DriverChoice::kUnknown:
    default:
      throw Error(kErrProviderNotFound,
                  "Provider cannot be found. It may not be properly installed. (No driver fits "
                  "the connection string \"" +
                      std::string(target.connection_string) + "\")",
                  kSource);
  }
}

std::unique_ptr<DriverConnection> OpenDriver(const std::string& connection_string,
                                             const std::string& user_id,
                                             const std::string& password, int32_t busy_seconds) {
  const ConnectionStringItems items = ParseConnectionString(connection_string);
  const DriverChoice choice = ChooseDriver(connection_string);
  const DriverTarget target{connection_string,
                            items,
                            choice,
                            user_id.empty() ? std::string_view(choice.user) : user_id,
                            password.empty() ? std::string_view(choice.password) : password,
                            busy_seconds};
  std::vector<DriverOpener> openers;
  {
    Registry& registry = Openers();
    std::lock_guard lock(registry.mutex);
    for (auto it = registry.openers.rbegin(); it != registry.openers.rend(); ++it)
      openers.push_back(it->second);
  }
  for (const DriverOpener& opener : openers) {
    if (auto driver = opener(target)) return driver;
  }
  return OpenBuiltInDriver(target);
}

}  // namespace kelvary::internal
