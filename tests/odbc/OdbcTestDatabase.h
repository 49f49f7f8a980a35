// OdbcTestDatabase: the ODBC data source the tests of this folder run
// against, named by environment variables (scripts/pg-test-server.sh prints
// them):
//   KELVARY_TEST_ODBC_DSN       the data source name (the tests skip without it)
//   KELVARY_TEST_ODBC_CONNECT   the same database as a Driver={...} string
//   KELVARY_TEST_ODBC_USER, KELVARY_TEST_ODBC_PASSWORD   for that string
//
// Test processes may run in parallel against one database, so every table a
// test makes is named after the test and the process (Table("t"), Schema),
// and is dropped when the fixture goes.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/drivers/Driver.h"

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
  void SetUp() override;
  void TearDown() override;

  const std::string& Dsn() const { return dsn_; }
  DriverConnection& Db() { return *db_; }
  // Table: a name for a table of this test, registered to be dropped.
  std::string Table(const std::string& stem);
  // Schema: a name for a schema of this test, registered to be dropped with
  // everything in it.
  std::string Schema(const std::string& stem);
  // Exec runs a statement without parameters and returns its result.
  StatementResult Exec(const std::string& sql, const std::vector<Variant>& params = {});
  std::unique_ptr<DriverConnection> OpenSecond();

 private:
  std::string dsn_;
  std::unique_ptr<DriverConnection> db_;
  std::vector<std::string> tables_;
  std::vector<std::string> schemas_;
};

#endif

}  // namespace kelvary::testing
