// The driver seam: a driver registered with the factory sits under a real
// connection for as long as its registration lives, and what differs
// between databases is asked of the driver, never decided above it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RecordsetTestSupport.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/ConstraintMessages.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"

namespace kelvary::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Keeps the text of every statement the real driver below runs; a
// statement that contains fail_on fails instead, as a constraint violation
// naming fail_column.
class RecordingDriver : public internal::ForwardingDriver {
 public:
  RecordingDriver(std::unique_ptr<DriverConnection> inner, std::vector<std::string>& log,
                  std::string fail_on, std::string fail_column)
      : ForwardingDriver(std::move(inner)),
        log_(log),
        fail_on_(std::move(fail_on)),
        fail_column_(std::move(fail_column)) {}

  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override {
    log_.push_back(sql);
    if (!fail_on_.empty() && sql.find(fail_on_) != std::string::npos) {
      throw Error(kErrProviderFailure, "injected refusal", "Test")
          .WithSqlState("23505")
          .WithStatement(sql);
    }
    return ForwardingDriver::Run(sql, params, max_rows);
  }
  std::vector<std::string> ConstraintColumns(const Error&) const override { return {fail_column_}; }

 private:
  std::vector<std::string>& log_;
  std::string fail_on_;
  std::string fail_column_;
};

TEST(DriverFactory, ARegisteredDriverSitsUnderRealConnectionsWhileItsRegistrationLives) {
  TestDatabase db;
  db.Run("CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (42);");
  std::vector<std::string> log;
  {
    internal::DriverRegistration passes([](const internal::DriverTarget&) { return nullptr; });
    internal::DriverRegistration recording([&](const internal::DriverTarget& target) {
      return std::make_unique<RecordingDriver>(internal::OpenBuiltInDriver(target), log, "", "");
    });
    for (const std::string& s : {db.ConnectionString(), db.ShapeConnectionString()}) {
      auto c = std::make_shared<Connection>();
      c->Open(s);
      EXPECT_EQ(c->Execute("SELECT n FROM t")->Fields(0).Value(), Variant(int32_t{42})) << s;
    }
    EXPECT_THAT(log, ElementsAre("SELECT n FROM t", "SELECT n FROM t"));

    // An opener keyed on a provider of its own answers for it alone.
    internal::DriverRegistration refusing(
        [](const internal::DriverTarget& target) -> std::unique_ptr<DriverConnection> {
          if (!EqualsNoCase(target.items.Get("Provider").value_or(""), "Refusing")) return nullptr;
          throw Error(kErrProviderFailure, "the refusing driver refuses", "Test");
        });
    auto c = std::make_shared<Connection>();
    EXPECT_EQ(ErrorOf([&] { c->Open("Provider=Refusing;Data Source=x"); }).Description(),
              "the refusing driver refuses");
    ASSERT_EQ(c->Errors().size(), 1u);
    c->Open(db.ConnectionString());
    EXPECT_EQ(log.size(), 2u);
  }
  auto plain = std::make_shared<Connection>();
  plain->Open(db.ConnectionString());
  plain->Execute("SELECT n FROM t");
  EXPECT_EQ(log.size(), 2u);  // the registrations are gone
  EXPECT_EQ(ErrorOf([&] { plain->Close(), plain->Open("Provider=Refusing"); }).Number(),
            kErrProviderNotFound);
}

TEST(DriverFactory, WriteBackMarksTheFieldsTheDriverSaysAConstraintNames) {
  TestDatabase db;
  db.Run(
      "CREATE TABLE t (ID INTEGER PRIMARY KEY, Name TEXT, Note TEXT);"
      "INSERT INTO t VALUES (1, 'a', 'x');");
  std::vector<std::string> log;
  internal::DriverRegistration failing([&](const internal::DriverTarget& target) {
    return std::make_unique<RecordingDriver>(internal::OpenBuiltInDriver(target), log, "UPDATE",
                                             "Note");
  });
  auto c = std::make_shared<Connection>();
  c->Open(db.ConnectionString());
  auto rs = OpenRecordset(c, "SELECT ID, Name, Note FROM t", adLockOptimistic);
  rs->Fields("Name").Value(Variant("b"));
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }).Description(), "injected refusal");
  EXPECT_EQ(rs->Fields("Note").Status(), adFieldSchemaViolation);  // named, though unchanged
  EXPECT_EQ(rs->Fields("Name").Status(), adFieldOK);
  EXPECT_EQ(rs->EditMode(), adEditInProgress);  // the change stays pending
  ASSERT_EQ(c->Errors().size(), 1u);
  EXPECT_EQ(c->Errors()[0].SqlState(), "23505");
}

TEST(DriverQuirks, TheSqliteDriverLocksAtBeginAndNamesConstraintColumns) {
  TestDatabase db;
  DriverConnection& driver = db.Connection()->Driver();
  EXPECT_TRUE(driver.BeginLocksForWriting());
  db.Run(
      "CREATE TABLE t (a INTEGER NOT NULL, b INTEGER, UNIQUE (a, b));"
      "INSERT INTO t VALUES (1, 2);");
  for (const char* sql : {"INSERT INTO t VALUES (1, 2)", "INSERT INTO t VALUES (NULL, 1)"}) {
    try {
      driver.Run(sql, {}, 0);
      ADD_FAILURE() << sql << " was accepted";
    } catch (const Error& e) {
      EXPECT_TRUE(driver.IsConstraintViolation(e)) << e.what();
      EXPECT_FALSE(driver.ConstraintColumns(e).empty()) << e.what();
    }
  }
  try {
    driver.Run("INSERT INTO missing VALUES (1)", {}, 0);
  } catch (const Error& e) {
    EXPECT_FALSE(driver.IsConstraintViolation(e)) << e.what();
  }
}

TEST(DriverQuirks, ConstraintMessagesNameTheirColumnsWithoutTables) {
  using internal::ServerConstraintColumns;
  using internal::SqliteConstraintColumns;
  EXPECT_THAT(SqliteConstraintColumns("NOT NULL constraint failed: patients.LastName"),
              ElementsAre("LastName"));
  EXPECT_THAT(SqliteConstraintColumns("UNIQUE constraint failed: t.a, t.b"), ElementsAre("a", "b"));
  EXPECT_THAT(SqliteConstraintColumns("FOREIGN KEY constraint failed"), IsEmpty());
  EXPECT_THAT(SqliteConstraintColumns("no such table: t"), IsEmpty());
  EXPECT_THAT(ServerConstraintColumns("ERROR: null value in column \"lastname\" of relation "
                                      "\"patients\" violates not-null constraint"),
              ElementsAre("lastname"));
  EXPECT_THAT(ServerConstraintColumns("ERROR: duplicate key value violates unique constraint "
                                      "\"t_a_b_key\";\nDETAIL:  Key (a, b)=(1, 2) already "
                                      "exists."),
              ElementsAre("a", "b"));
  EXPECT_THAT(ServerConstraintColumns("ERROR: new row violates check constraint \"positive\""),
              IsEmpty());
}

}  // namespace
}  // namespace kelvary::testing
