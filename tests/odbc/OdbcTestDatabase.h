// OdbcTestDatabase: the ODBC data source the tests of this folder run
// against, named by environment variables (scripts/pg-test-server.sh prints
// them):
//   KELVARY_TEST_ODBC_DSN       the data source name (the tests skip without it)
//   KELVARY_TEST_ODBC_CONNECT   the same database as a Driver={...} string
//   KELVARY_TEST_ODBC_USER, KELVARY_TEST_ODBC_PASSWORD   for that string
//
// Test processes may run in parallel against one database, so every table a
// test makes is named after the test and the process (Table), and is dropped
// when the fixture goes.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/drivers/Driver.h"

#ifdef KELVARY_HAVE_ODBC
#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"
#endif

namespace kelvary::testing {

// ErrorOf runs f and returns the Error it raised (number 0 when none).
template <class F>
Error ErrorOf(F&& f) {
  try {
    f();
  } catch (const Error& e) {
    return e;
  }
  return Error(0, "no error");
}

// EnvOr: an environment variable, or "" when unset.
inline std::string EnvOr(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

inline const char* kNoDataSource =
    "KELVARY_TEST_ODBC_DSN is not set, so there is no ODBC test database: "
    "eval \"$(scripts/pg-test-server.sh start)\" starts one";

#ifdef KELVARY_HAVE_ODBC

class OdbcTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dsn_ = EnvOr("KELVARY_TEST_ODBC_DSN");
    if (dsn_.empty()) GTEST_SKIP() << kNoDataSource;
    db_ = OpenSecond();
  }
  void TearDown() override {
    if (!db_) return;
    for (auto it = tables_.rbegin(); it != tables_.rend(); ++it) {
      try {
        Exec("DROP TABLE IF EXISTS " + *it);
      } catch (const Error& e) {
        ADD_FAILURE() << *it << ": " << e.Description();
      }
    }
    db_->Close();
  }

  const std::string& Dsn() const { return dsn_; }
  DriverConnection& Db() { return *db_; }
  // Table: a name for a table of this test, at most 63 characters (the
  // longest PostgreSQL keeps), dropped now and when the fixture goes.
  std::string Table(const std::string& stem) {
    const std::string pid = std::to_string(::getpid());
    std::string name =
        "kt_" + stem + "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : name)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    name = name.substr(0, 62 - pid.size()) + "_" + pid;
    tables_.push_back(name);
    Exec("DROP TABLE IF EXISTS " + name);
    return name;
  }
  StatementResult Exec(const std::string& sql, const std::vector<Variant>& params = {}) {
    return db_->Run(sql, params, 0);
  }
  std::unique_ptr<DriverConnection> OpenSecond() {
    return OpenOdbcConnection("DSN=" + dsn_, "", "");
  }

 private:
  std::string dsn_;
  std::unique_ptr<DriverConnection> db_;
  std::vector<std::string> tables_;
};

#endif

}  // namespace kelvary::testing
