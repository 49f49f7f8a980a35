#include "kelvary/platform/Transaction.h"

namespace kelvary {

Transaction::Transaction(Connection& connection) : connection_(connection) {
  connection_.BeginTrans();
  active_ = true;
}

Transaction::~Transaction() {
  if (!active_) return;
  try {
    connection_.RollbackTrans();
  } catch (...) {
    // Whatever made the caller leave without committing is the error that
    // counts; the connection drops the transaction when it closes.
  }
}

void Transaction::Commit() {
  if (!active_) return;
  connection_.CommitTrans();
  active_ = false;
}

void Transaction::Rollback() {
  if (!active_) return;
  active_ = false;
  connection_.RollbackTrans();
}

void Transaction::Restart() {
  Rollback();
  connection_.BeginTrans();
  active_ = true;
}

}  // namespace kelvary
