#include "kelvary/platform/Connection.h"

#include <algorithm>
#include <limits>

#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/ConnectionString.h"
#include "kelvary/platform/internal/Session.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"

namespace kelvary {
namespace {

constexpr const char* kSource = "Connection";

[[noreturn]] void ThrowClosed() {
  throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.", kSource);
}

// ProviderOf: the value of Provider= in a connection string; empty when
// there is none.
std::string ProviderOf(const std::string& connection_string) {
  return internal::ParseConnectionString(connection_string).Get("Provider").value_or("");
}

// WithMode: the string to open with: adModeRead asks a SQLite file that the
// string opens for writing to open read-only.
std::string WithMode(const std::string& connection_string, ConnectModeEnum mode) {
  if (mode != adModeRead) return connection_string;
  const internal::DriverChoice choice = internal::ChooseDriver(connection_string);
  if (choice.kind != internal::DriverChoice::kSqlite ||
      choice.mode != internal::DriverChoice::kReadWrite) {
    return connection_string;
  }
  return connection_string + ";Mode=ReadOnly";
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
  std::string full = connection_string;
  if (!provider_.empty() && ProviderOf(full).empty()) full = "Provider=" + provider_ + ";" + full;
  session_->Run([&] {
    session_->Attach(
        internal::OpenDriver(WithMode(full, mode_), user_id, password, command_timeout_));
  });
  connection_string_ = full;
}

void Connection::Close() {
  if (!session_->IsOpen()) ThrowClosed();
  if (in_transaction_) {
    throw Error(3246, "Connection object cannot be explicitly closed while in a transaction.",
                kSource);
  }
  // The recordsets opened here close with it, dropping their pending changes.
  const std::vector<Recordset*> open = std::move(recordsets_);
  recordsets_.clear();
  for (Recordset* recordset : open)
    recordset->ClosedWithConnection();
  std::unique_ptr<DriverConnection> driver = session_->Detach();
  driver->Close();
}

void Connection::Attach(Recordset* recordset) {
  if (std::find(recordsets_.begin(), recordsets_.end(), recordset) == recordsets_.end()) {
    recordsets_.push_back(recordset);
  }
}

void Connection::Detach(Recordset* recordset) {
  recordsets_.erase(std::remove(recordsets_.begin(), recordsets_.end(), recordset),
                    recordsets_.end());
}

void Connection::RequireClosedToSet() const {
  if (session_->IsOpen()) {
    throw Error(kErrObjectOpen, "Operation is not allowed when the object is open.", kSource);
  }
}

void Connection::ConnectionString(const std::string& connection_string) {
  RequireClosedToSet();
  connection_string_ = connection_string;
}

std::string Connection::Provider() const {
  if (!provider_.empty()) return provider_;
  std::string named = ProviderOf(connection_string_);
  if (!named.empty()) return named;
  if (connection_string_.empty()) return "MSDASQL";
  try {
    switch (internal::ChooseDriver(connection_string_).kind) {
      case internal::DriverChoice::kSqlite:
        return "SQLite";
      case internal::DriverChoice::kPostgres:
        return "PostgreSQL";
      default:
        return "MSDASQL";
    }
  } catch (const Error&) {
    return "MSDASQL";
  }
}

void Connection::Provider(const std::string& provider) {
  RequireClosedToSet();
  provider_ = provider;
}

void Connection::Mode(ConnectModeEnum mode) {
  RequireClosedToSet();
  mode_ = mode;
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
