#include "kelvary/platform/Connection.h"

#include <limits>

#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/CursorEngine.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"
#include "kelvary/platform/internal/shape/ShapeProvider.h"

namespace kelvary {
namespace {

constexpr const char* kSource = "Connection";

[[noreturn]] void ThrowClosed() {
  throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
}

}  // namespace

Connection::Connection() = default;

Connection::~Connection() {
  if (!driver_) return;
  try {
    driver_->Close();
  } catch (...) {
    // A destructor never throws; the handle goes with the driver object.
  }
}

void Connection::Open(const std::string& connection_string, const std::string& user_id,
                      const std::string& password, int32_t) {
  if (driver_) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
  errors_.clear();
  try {
    driver_ = internal::OpenDriver(connection_string, user_id, password, command_timeout_);
  } catch (const Error& e) {
    errors_.assign(1, e);
    throw;
  }
  connection_string_ = connection_string;
}

void Connection::Close() {
  if (!driver_) ThrowClosed();
  std::unique_ptr<DriverConnection> driver = std::move(driver_);
  in_transaction_ = false;
  driver->Close();
}

ObjectStateEnum Connection::State() const {
  return driver_ ? adStateOpen : adStateClosed;
}

void Connection::CommandTimeout(int32_t seconds) {
  command_timeout_ = seconds;
  if (driver_) driver_->SetBusyTimeout(seconds);
}

DriverConnection& Connection::Driver() {
  if (!driver_) ThrowClosed();
  return *driver_;
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               int32_t& records_affected, int32_t options) {
  if (!driver_) ThrowClosed();
  errors_.clear();
  records_affected = -1;
  auto recordset = std::make_shared<Recordset>();
  std::shared_ptr<Connection> self = weak_from_this().lock();
  if (shape::IsShapeCommand(command_text)) {
    recordset->Open(command_text, self, adOpenStatic, adLockReadOnly, options);
    return recordset;
  }
  StatementResult result;
  try {
    result = driver_->Run(command_text, {}, 0);
  } catch (const Error& e) {
    errors_.assign(1, e);
    throw;
  }
  if (!result.has_rows) {
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    records_affected = static_cast<int32_t>(std::min(result.records_affected, kMax));
    return recordset;  // closed, as for any statement that returns no rows
  }
  recordset->Engine().Load(std::move(result.rows),
                           internal::LoadOptions{command_text, std::move(self), adLockReadOnly,
                                                 internal::WriteMode::kReadOnly});
  return recordset;
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               const int32_t& options) {
  int32_t ignored = 0;
  return Execute(command_text, ignored, options);
}

int32_t Connection::BeginTrans() {
  if (!driver_) ThrowClosed();
  errors_.clear();
  if (in_transaction_) {
    throw Error(kErrOperationNotSupported,
                "A transaction is already running on this connection; nested transactions are "
                "not supported",
                kSource);
  }
  try {
    driver_->BeginTransaction();
  } catch (const Error& e) {
    errors_.assign(1, e);
    throw;
  }
  in_transaction_ = true;
  return 1;
}

void Connection::CommitTrans() {
  if (!driver_) ThrowClosed();
  errors_.clear();
  if (!in_transaction_) {
    throw Error(kErrOperationNotSupported, "No transaction is active.", kSource);
  }
  try {
    driver_->CommitTransaction();
  } catch (const Error& e) {
    errors_.assign(1, e);
    throw;
  }
  in_transaction_ = false;
}

void Connection::RollbackTrans() {
  if (!driver_) ThrowClosed();
  errors_.clear();
  if (!in_transaction_) {
    throw Error(kErrOperationNotSupported, "No transaction is active.", kSource);
  }
  in_transaction_ = false;
  try {
    driver_->RollbackTransaction();
  } catch (const Error& e) {
    errors_.assign(1, e);
    throw;
  }
}

}  // namespace kelvary
