#include "OdbcTestDatabase.h"

#ifdef KELVARY_HAVE_ODBC

#include <unistd.h>

#include <cctype>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/drivers/odbc/OdbcDriver.h"

namespace kelvary::testing {

void OdbcTest::SetUp() {
  dsn_ = EnvOr("KELVARY_TEST_ODBC_DSN");
  if (dsn_.empty()) GTEST_SKIP() << kNoDataSource;
  db_ = OpenOdbcConnection("DSN=" + dsn_, "", "");
}

void OdbcTest::TearDown() {
  if (!db_) return;
  for (auto it = tables_.rbegin(); it != tables_.rend(); ++it) {
    try {
      db_->Run("DROP TABLE IF EXISTS " + *it, {}, 0);
    } catch (const Error& e) {
      ADD_FAILURE() << "could not drop " << *it << ": " << e.Description();
    }
  }
  db_->Close();
}

std::string OdbcTest::Table(const std::string& stem) {
  const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = "kt_" + stem + "_" + info->name() + "_" + std::to_string(::getpid());
  for (char& c : name)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (name.size() > 60) name = name.substr(0, 45) + "_" + std::to_string(::getpid());
  tables_.push_back(name);
  db_->Run("DROP TABLE IF EXISTS " + name, {}, 0);
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
