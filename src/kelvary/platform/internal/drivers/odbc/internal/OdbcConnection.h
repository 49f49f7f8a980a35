// OpenConnection: OpenOdbcConnection with a choice of how rows are fetched.
// A driver that cannot position within a block of rows is read row by row;
// tests ask for that path on a driver that could do better, so that it is
// checked against a real server too.
#pragma once

#include <memory>
#include <string>

#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::odbc {

enum class FetchStrategy {
  kBest,      // block fetch where the driver allows it
  kRowByRow,  // SQLFetch and SQLGetData, one row at a time
};

std::unique_ptr<DriverConnection> OpenConnection(const std::string& connection_string,
                                                 const std::string& user,
                                                 const std::string& password,
                                                 FetchStrategy strategy);

}  // namespace kelvary::odbc
