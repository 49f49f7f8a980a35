#include "kelvary/platform/Connection.h"

#include <limits>

#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/ConnectionString.h"
#include "kelvary/platform/internal/Session.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"

namespace kelvary {
namespace {

constexpr const char* kSource = "Connection";

[[noreturn]] void ThrowClosed() {
  throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
}

}  // namespace

namespace internal {

std::shared_ptr<Session> SessionOf(const Connection& connection) {
  return connection.session_;
}

}  // namespace internal

bool IsSqliteFileName(std::string_view data_source) {
  return internal::IsSqliteFileName(data_source);
}

std::string QuoteConnectionValue(std::string_view value) {
  return internal::QuoteConnectionValue(value);
}

Connection::Connection() : session_(std::make_shared<internal::Session>()) {}

Connection::~Connection() {
  std::unique_ptr<DriverConnection> driver = session_->Detach();
  if (!driver) return;
  try {
    driver->Close();
  } catch (...) {
    // A destructor never throws; the handle goes with the driver object.
  }
}

void Connection::Open(const std::string& connection_string, const std::string& user_id,
                      const std::string& password, int32_t) {
  if (session_->IsOpen()) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
  session_->Run([&] {
    session_->Attach(internal::OpenDriver(connection_string, user_id, password, command_timeout_));
  });
  connection_string_ = connection_string;
}

void Connection::Close() {
  std::unique_ptr<DriverConnection> driver = session_->Detach();
  if (!driver) ThrowClosed();
  in_transaction_ = false;
  driver->Close();
}

ObjectStateEnum Connection::State() const {
  return session_->IsOpen() ? adStateOpen : adStateClosed;
}

const std::vector<Error>& Connection::Errors() const {
  return session_->Errors();
}

void Connection::CommandTimeout(int32_t seconds) {
  command_timeout_ = seconds;
  if (session_->IsOpen()) session_->Driver().SetBusyTimeout(seconds);
}

DriverConnection& Connection::Driver() {
  if (!session_->IsOpen()) ThrowClosed();
  return session_->Driver();
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               int32_t& records_affected, int32_t) {
  if (!session_->IsOpen()) ThrowClosed();
  records_affected = -1;
  auto recordset = std::make_shared<Recordset>();
  const int64_t affected =
      internal::OpenRecordset(*recordset, command_text, session_, weak_from_this().lock(),
                              adLockReadOnly, adCmdUnspecified);
  if (recordset->State() == adStateClosed) {  // a statement that returns no rows
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    records_affected = static_cast<int32_t>(std::min(affected, kMax));
  }
  return recordset;
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               const int32_t& options) {
  int32_t ignored = 0;
  return Execute(command_text, ignored, options);
}

int32_t Connection::BeginTrans() {
  if (!session_->IsOpen()) ThrowClosed();
  session_->Run([&] {
    if (in_transaction_) {
      throw Error(kErrOperationNotSupported,
                  "A transaction is already running on this connection; nested transactions "
                  "are not supported",
                  kSource);
    }
    session_->Driver().BeginTransaction();
  });
  in_transaction_ = true;
  return 1;
}

void Connection::CommitTrans() {
  if (!session_->IsOpen()) ThrowClosed();
  session_->Run([&] {
    if (!in_transaction_)
      throw Error(kErrOperationNotSupported, "No transaction is active.", kSource);
    session_->Driver().CommitTransaction();
  });
  in_transaction_ = false;
}

void Connection::RollbackTrans() {
  if (!session_->IsOpen()) ThrowClosed();
  session_->Run([&] {
    if (!in_transaction_)
      throw Error(kErrOperationNotSupported, "No transaction is active.", kSource);
    in_transaction_ = false;
    session_->Driver().RollbackTransaction();
  });
}

}  // namespace kelvary
