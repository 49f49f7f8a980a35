// Fault injection on every write path: each operation runs once without a
// fault, to count its driver calls (statements run, transactions begun and
// committed) and to see the state it leaves, then once for each of those
// calls with that one call failing, as a full disk, a lost lock or a failed
// COMMIT would fail it. After every run each table must be wholly as before
// or wholly as after the fault-free run, nothing half-written; and a
// failure must reach the caller, as the library's Error or a message of the
// system's, never pass in silence. ROLLBACK is never failed: every recovery
// relies on it.
#include <gtest/gtest.h>

#include <map>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"
#include "records/RecordsFixture.h"

namespace kelvary::testing {
namespace {

using Strings = std::vector<std::string>;

// The fault plan shared by every connection opened during a test: driver
// calls are counted from Arm on, and call number fail_at (1-based) fails.
struct FaultPlan {
  bool armed = false;
  int fail_at = 0;
  int seen = 0;
  bool fired = false;
};
FaultPlan plan;

void Arm(int fail_at) {
  plan = FaultPlan{true, fail_at, 0, false};
}
// Disarm: stops counting; returns the calls seen.
int Disarm() {
  plan.armed = false;
  return plan.seen;
}

// The real driver below, but for the call the plan picks.
class FailingDriver : public internal::ForwardingDriver {
 public:
  using ForwardingDriver::ForwardingDriver;
  StatementResult Run(const std::string& sql, const std::vector<Variant>& params,
                      int32_t max_rows) override {
    Call(sql);
    return ForwardingDriver::Run(sql, params, max_rows);
  }
  void BeginTransaction() override {
    Call("BEGIN");
    ForwardingDriver::BeginTransaction();
  }
  void CommitTransaction() override {
    Call("COMMIT");
    ForwardingDriver::CommitTransaction();
  }

 private:
  static void Call(const std::string& what) {
    if (!plan.armed || ++plan.seen != plan.fail_at) return;
    plan.fired = true;
    throw Error(kErrProviderFailure, "disk I/O error", "SQLite").WithStatement(what);
  }
};

// Tables: every table of a database, each as its rows in a fixed order.
std::map<std::string, std::string> Tables(const BackendDatabase& db) {
  std::map<std::string, std::string> tables;
  auto names = std::make_shared<Recordset>();
  names->Open("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name", db.Connect(),
              adOpenStatic, adLockReadOnly);
  for (; !names->Eof(); names->MoveNext()) {
    const std::string name = CStr(names->Fields(0).Value());
    tables[name] = Rows(db.Connection(), "SELECT * FROM \"" + name + "\" ORDER BY rowid");
  }
  return tables;
}

class WriteFaults : public RecordsTest {
 protected:
  void TearDown() override {
    Disarm();
    messages_.Clear();
    RecordsTest::TearDown();
  }

  // Both databases, table by table.
  std::map<std::string, std::string> State() {
    auto state = Tables(main_db_);
    for (auto& [name, rows] : Tables(system_db_))
      state["system." + name] = rows;
    return state;
  }

  // Loop runs `prepare` (fresh databases and a service object, without
  // faults) and then `operation` once without a fault and once per
  // statement of that run with the statement failing; after each, checks
  // the tables and that the failure was reported. `operation` returns false
  // when it reports a failure through its result. `then`, when given, runs
  // after each run's checks, without faults.
  void Loop(const std::function<void()>& prepare, const std::function<bool()>& operation,
            const std::function<void()>& then = nullptr) {
    Fresh();
    prepare();
    const auto before = State();
    Arm(0);
    ASSERT_TRUE(operation()) << "the operation fails without a fault";
    const int statements = Disarm();
    const auto after = State();
    ASSERT_EQ(messages_.Texts(), Strings{}) << "the operation reports a failure without a fault";
    ASSERT_GT(statements, 0);
    for (int n = 1; n <= statements; ++n) {
      Fresh();
      prepare();
      Arm(n);
      bool reported = false;
      try {
        reported = !operation();
      } catch (const Error&) {
        reported = true;
      }
      Disarm();
      reported = reported || !messages_.Texts().empty();
      messages_.Clear();
      const auto now = State();
      for (const auto& [table, rows] : now) {
        const bool as_before = before.count(table) && before.at(table) == rows;
        const bool as_after = after.count(table) && after.at(table) == rows;
        EXPECT_TRUE(as_before || as_after)
            << "statement " << n << " of " << statements << " failing leaves " << table
            << " half-written: " << rows
            << "\nbefore: " << (before.count(table) ? before.at(table) : "(none)")
            << "\nafter: " << (after.count(table) ? after.at(table) : "(none)");
      }
      if (plan.fired) {
        EXPECT_TRUE(reported || now == after)
            << "statement " << n << " of " << statements
            << " failed and nothing said so, with the work not done";
      }
      if (then) then();
    }
  }

  // Fresh: new, empty databases laid out as the fixture's.
  void Fresh() {
    link_.reset();
    RecordsTest::SetUp();
    messages_.Clear();
    events_->lines.clear();
  }

  std::unique_ptr<InfoLink> link_;
  internal::DriverRegistration failing_{[](const internal::DriverTarget& target) {
    return std::make_unique<FailingDriver>(internal::OpenBuiltInDriver(target));
  }};
};
INSTANTIATE_TEST_SUITE_P(, WriteFaults, ::testing::Values(::kelvary::testing::Backends().front()),
                         ::kelvary::testing::BackendName);

TEST_P(WriteFaults, SafeDeleteRecord) {
  for (const bool safe : {true, false}) {
    Loop(
        [&] {
          main_db_.Run("INSERT INTO patients (ID, LastName) VALUES (7, 'a'), (8, 'b')");
          link_ = Connect(cgmDefault);
          link_->UseSafeDelete = safe;
        },
        [&] {
          std::shared_ptr<Recordset> none;
          link_->SafeDeleteRecord(pdsmaindata, 5, "patients", 12, 7, 0, "ID", "", none);
          return true;
        });
  }
}

TEST_P(WriteFaults, RecordsetUpdateAddNewAndDelete) {
  std::shared_ptr<Recordset> rs;
  const auto open = [&] {
    main_db_.Run("INSERT INTO patients (ID, LastName) VALUES (7, 'a'), (8, 'b'), (9, 'c')");
    rs = std::make_shared<Recordset>();
    rs->Open("SELECT ID, LastName FROM patients ORDER BY ID", main_db_.Connect(), adOpenStatic,
             adLockOptimistic);
  };
  Loop(open, [&] {
    rs->Fields("LastName").Value("changed");
    rs->Update();
    return true;
  });
  Loop(open, [&] {
    rs->AddNew();
    rs->Fields("ID").Value(int32_t{20});
    rs->Fields("LastName").Value("new");
    rs->Update();
    return true;
  });
  Loop(open, [&] {
    rs->MoveLast();
    rs->Delete();
    return true;
  });
}

TEST_P(WriteFaults, ExecuteScript) {
  std::shared_ptr<Connection> connection;
  Loop([&] { connection = main_db_.Connect(); },
       [&] {
         ExecuteScript(*connection,
                       "INSERT INTO patients (ID, LastName) VALUES (1, 'a');"
                       "UPDATE patients SET LastName = 'b' WHERE ID = 1;"
                       "INSERT INTO visits (ID, PatientID) VALUES (1, 1);"
                       "DELETE FROM patients WHERE ID = 1;");
         return true;
       });
}

}  // namespace
}  // namespace kelvary::testing
