// Transaction: all or nothing on one connection, and a destructor that
// never throws.
#include <gtest/gtest.h>

#include <stdexcept>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/Transaction.h"

namespace kelvary::testing {
namespace {

int32_t Rows(Connection& c) {
  return CLng(c.Execute("SELECT COUNT(*) FROM t")->Fields(0).Value());
}

TEST(TransactionTest, KeepsWorkOnlyWhenCommitted) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER)");
  Connection& c = *db.Connection();
  {
    Transaction kept(c);
    c.Execute("INSERT INTO t VALUES (1)");
    kept.Commit();
    EXPECT_FALSE(kept.Active());
  }
  try {
    Transaction dropped(c);
    c.Execute("INSERT INTO t VALUES (2)");
    throw std::runtime_error("the caller leaves early");
  } catch (const std::runtime_error&) {
  }
  {
    Transaction restarted(c);
    c.Execute("INSERT INTO t VALUES (3)");
    restarted.Restart();  // the insert goes, the transaction stays open
    EXPECT_TRUE(restarted.Active());
    c.Execute("INSERT INTO t VALUES (4)");
    restarted.Commit();
  }
  EXPECT_EQ(Rows(c), 2);
  EXPECT_EQ(CLng(c.Execute("SELECT SUM(n) FROM t")->Fields(0).Value()), 5);
}

TEST(TransactionTest, FailuresReachTheCallerButNeverLeaveTheDestructor) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER)");
  Connection& c = *db.Connection();
  {
    Transaction outer(c);
    // Nesting is refused by the connection; the outer transaction is left
    // as it was.
    EXPECT_EQ(ErrorOf([&] { Transaction inner(c); }).Number(), kErrOperationNotSupported);
    EXPECT_TRUE(outer.Active());
    c.Execute("INSERT INTO t VALUES (1)");
    outer.Commit();
  }
  auto closing = db.Connect();
  {
    Transaction orphan(*closing);
    // Ended behind its back (a connection refuses to close inside one): the
    // rollback in the destructor fails, silently.
    closing->RollbackTrans();
  }
  EXPECT_EQ(Rows(c), 1);
}

}  // namespace
}  // namespace kelvary::testing
