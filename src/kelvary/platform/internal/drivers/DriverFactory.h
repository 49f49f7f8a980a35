// DriverFactory: which driver opens a connection string. Connection asks
// OpenDriver; the built-in drivers (SQLite, and ODBC and PostgreSQL when they
// are built) are always there, and code that needs another one under a real connection (a
// test's recording or failing driver, most often one that wraps a built-in
// driver) puts its opener first in line for as long as a DriverRegistration
// lives. Openers are asked newest first; the first that returns a driver
// wins, and the built-in drivers answer when none does.
//
// Registrations may be made and dropped from any thread; an opener runs on
// the thread that opens the connection.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/internal/ConnectionString.h"
#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::internal {

// DriverTarget: a connection string as read, with what Open was given.
struct DriverTarget {
  std::string_view connection_string;
  const ConnectionStringItems& items;  // every key=value of the string
  const DriverChoice& choice;          // what the built-in drivers make of it
  std::string_view user_id;            // Open's user, else the string's User ID
  std::string_view password;           // likewise
  int32_t busy_seconds = 30;           // the connection's CommandTimeout
};

// DriverOpener: a driver for target, or null to leave target to the next
// opener. An opener may throw Error like any driver that cannot open.
using DriverOpener = std::function<std::unique_ptr<DriverConnection>(const DriverTarget&)>;

// DriverRegistration: keeps opener first in line until it is destroyed.
class DriverRegistration {
 public:
  explicit DriverRegistration(DriverOpener opener);
  ~DriverRegistration();
  DriverRegistration(const DriverRegistration&) = delete;
  DriverRegistration& operator=(const DriverRegistration&) = delete;

 private:
  uint64_t id_;
};

// OpenDriver: the driver for connection_string, from the registered openers
// or else the built-in drivers. Raises Error 3706 when no driver fits the
// string, or the driver's Error when it cannot open the database.
std::unique_ptr<DriverConnection> OpenDriver(const std::string& connection_string,
                                             const std::string& user_id,
                                             const std::string& password, int32_t busy_seconds);

// OpenBuiltInDriver: what the built-in drivers open for target, for an
// opener that wraps one of them.
std::unique_ptr<DriverConnection> OpenBuiltInDriver(const DriverTarget& target);

// ForwardingDriver: a driver that hands every call to another one; derive
// from it to watch or change a few calls of a real driver.
class ForwardingDriver : public DriverConnection {
 public:
  explicit ForwardingDriver(std::unique_ptr<DriverConnection> inner) : inner_(std::move(inner)) {}

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override {
    return inner_->Run(sql, params, max_rows);
  }
  void BeginTransaction() override { inner_->BeginTransaction(); }
  void CommitTransaction() override { inner_->CommitTransaction(); }
  void RollbackTransaction() override { inner_->RollbackTransaction(); }
  std::vector<std::string> KeyColumns(const std::string& table) override {
    return inner_->KeyColumns(table);
  }
  Variant LastInsertedKey(const std::string& table, const std::string& key_column) override {
    return inner_->LastInsertedKey(table, key_column);
  }
  std::string EqualsParameter(const std::string& column, DataTypeEnum type) const override {
    return inner_->EqualsParameter(column, type);
  }
  bool BeginLocksForWriting() const override { return inner_->BeginLocksForWriting(); }
  bool IsConstraintViolation(const Error& error) const override {
    return inner_->IsConstraintViolation(error);
  }
  std::vector<std::string> ConstraintColumns(const Error& error) const override {
    return inner_->ConstraintColumns(error);
  }
  void SetBusyTimeout(int32_t seconds) override { inner_->SetBusyTimeout(seconds); }
  void Close() override { inner_->Close(); }
  std::string Name() const override { return inner_->Name(); }

 protected:
  DriverConnection& Inner() { return *inner_; }

 private:
  std::unique_ptr<DriverConnection> inner_;
};

}  // namespace kelvary::internal
