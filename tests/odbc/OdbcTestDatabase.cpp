#include "OdbcTestDatabase.h"

#ifdef KELVARY_HAVE_ODBC

#include <unistd.h>

#include <cctype>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/drivers/odbc/OdbcDriver.h"

namespace kelvary::testing {
namespace {

// A name of at most 63 characters (the longest PostgreSQL keeps) that no
// other test or process uses.
std::string UniqueName(const std::string& stem) {
  const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
  const std::string pid = std::to_string(::getpid());
  std::string name = "kt_" + stem + "_" + info->name();
  for (char& c : name)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return name.substr(0, 62 - pid.size()) + "_" + pid;
}

}  // namespace

void OdbcTest::SetUp() {
  dsn_ = EnvOr("KELVARY_TEST_ODBC_DSN");
  if (dsn_.empty()) GTEST_SKIP() << kNoDataSource;
  db_ = OpenOdbcConnection("DSN=" + dsn_, "", "");
}

void OdbcTest::TearDown() {
  if (!db_) return;
  const auto drop = [&](const std::string& sql) {
    try {
      db_->Run(sql, {}, 0);
    } catch (const Error& e) {
      ADD_FAILURE() << sql << ": " << e.Description();
    }
  };
  for (auto it = tables_.rbegin(); it != tables_.rend(); ++it)
    drop("DROP TABLE IF EXISTS " + *it);
  for (const std::string& schema : schemas_)
    drop("DROP SCHEMA IF EXISTS " + schema + " CASCADE");
  db_->Close();
}

std::string OdbcTest::Table(const std::string& stem) {
  std::string name = UniqueName(stem);
  tables_.push_back(name);
  db_->Run("DROP TABLE IF EXISTS " + name, {}, 0);
  return name;
}

std::string OdbcTest::Schema(const std::string& stem) {
  std::string name = UniqueName(stem);
  schemas_.push_back(name);
  db_->Run("DROP SCHEMA IF EXISTS " + name + " CASCADE", {}, 0);
  return name;
}

StatementResult OdbcTest::Exec(const std::string& sql, const std::vector<Variant>& params) {
  return db_->Run(sql, params, 0);
}

std::unique_ptr<DriverConnection> OdbcTest::OpenSecond() {
  return OpenOdbcConnection("DSN=" + dsn_, "", "");
}

}  // namespace kelvary::testing

#endif
