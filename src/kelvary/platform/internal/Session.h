// Session: an open connection below its public handle: the driver, and the
// errors of the last operation that failed. Connection owns one; every
// recordset read through the connection shares it, so that write-back
// reaches the driver and its failures land where Connection::Errors reads
// them. Closing the connection takes the driver away: the recordsets keep
// their rows but can no longer write.
//
// Run and Recorded are the one place where a failure of a database
// operation is recorded: the Error the operation raises becomes the
// session's errors on its way to the caller.
//
// One thread uses a session at a time, as it uses the connection.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary {
class Connection;
}  // namespace kelvary

namespace kelvary::internal {

class Session {
 public:
  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  bool IsOpen() const { return driver_ != nullptr; }
  // Driver: the driver of the open session (Error 3704 when closed).
  DriverConnection& Driver();
  void Attach(std::unique_ptr<DriverConnection> driver) { driver_ = std::move(driver); }
  // Detach: the driver, which the session no longer has; null when closed.
  std::unique_ptr<DriverConnection> Detach() { return std::move(driver_); }

  const std::vector<Error>& Errors() const { return errors_; }

  // Run starts an operation: the errors of the last one go, and an Error
  // that operation raises is recorded.
  template <class Operation>
  decltype(auto) Run(Operation&& operation) {
    errors_.clear();
    return Recorded(std::forward<Operation>(operation));
  }
  // Recorded: the same within an operation already started.
  template <class Operation>
  decltype(auto) Recorded(Operation&& operation) {
    try {
      return std::forward<Operation>(operation)();
    } catch (const Error& e) {
      errors_.assign(1, e);
      throw;
    }
  }

 private:
  std::unique_ptr<DriverConnection> driver_;
  std::vector<Error> errors_;
};

// SessionOf: the session behind connection (defined with Connection, whose
// friend it is).
std::shared_ptr<Session> SessionOf(const Connection& connection);

}  // namespace kelvary::internal
