// Transaction: one transaction on a connection, for every write path that
// must be all or nothing. The constructor begins it (an Error from
// BeginTrans reaches the caller and leaves nothing begun); Commit keeps the
// work; an object that goes without a Commit rolls the work back. The
// destructor never throws: a rollback that fails there is dropped, since the
// error that made the caller leave early is the one worth reporting.
//
// Borrows the connection for its lifetime; same thread as the connection.
// Nesting is not supported, as on the connection itself.
#pragma once

#include "kelvary/platform/Connection.h"

namespace kelvary {

class Transaction {
 public:
  // Transaction begins a transaction on connection.
  explicit Transaction(Connection& connection);
  ~Transaction();  // rolls back unless committed or rolled back; never throws
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // Commit keeps the work. A commit that fails leaves the transaction open,
  // so that the destructor rolls it back; its Error reaches the caller.
  void Commit();
  // Rollback drops the work now; an Error reaches the caller and the
  // transaction counts as ended.
  void Rollback();
  // Restart: rolls back and begins again on the same connection, for a
  // caller that wants a clean transaction after a failed statement.
  void Restart();
  // Active: begun and neither committed nor rolled back.
  bool Active() const { return active_; }

 private:
  Connection& connection_;
  bool active_ = false;
};

}  // namespace kelvary
