// What the record-lifecycle tests share: a main and a system database of the
// backend under test, built from data/, a service object set to the
// backend's dialect and connected to them in a chosen key mode (the main
// connection opened from the direct string, so that the location-wise mode
// has its sequence-generator connection), a recorder of the messages, of the
// statements that reach the history hook and of the events.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"

namespace kelvary::testing {

// EventLog: a host sink that writes each event as one line, e.g.
// "Before 1 3 5 patients -1 7 0 ID  continue" and "After 1 3 5 patients -1 7 0 ID ".
// A check, when set, runs inside every Before event (to look at the
// database at that moment); clear_continue makes Before clear bContinue.
class EventLog : public InfoLinkEvents {
 public:
  std::vector<std::string> lines;
  bool clear_continue = false;
  int32_t remote_id = 0;
  std::function<std::string()> check;

  void RequestRemoteNextID(int32_t& value, ProjectDataSources source, const std::string& table,
                           const std::string& field, const std::string& limit) override {
    lines.push_back("Request " + Join(source, table, field, limit));
    value = remote_id;
  }
  void RequestRemoteNextIDAsDouble(double& value, ProjectDataSources source,
                                   const std::string& table, const std::string& field,
                                   const std::string& limit) override {
    lines.push_back("RequestAsDouble " + Join(source, table, field, limit));
    value = remote_id + 0.5;
  }
  void BeforePostActionHistory(ProjectDataSources s, DBRecordActionTypes a, int32_t t,
                               const std::string& n, int32_t u, int32_t k1, int32_t k2,
                               const std::string& f1, const std::string& f2, bool& go) override {
    lines.push_back("Before " + Join(s, a, t, n, u, k1, k2, f1, f2) + Continue(go));
  }
  void AfterPostActionHistory(ProjectDataSources s, DBRecordActionTypes a, int32_t t,
                              const std::string& n, int32_t u, int32_t k1, int32_t k2,
                              const std::string& f1, const std::string& f2) override {
    lines.push_back("After " + Join(s, a, t, n, u, k1, k2, f1, f2));
  }
  void BeforePostActionHistoryAsDouble(ProjectDataSources s, DBRecordActionTypes a, int32_t t,
                                       const std::string& n, int32_t u, double k1, double k2,
                                       const std::string& f1, const std::string& f2,
                                       bool& go) override {
    lines.push_back("BeforeAsDouble " + Join(s, a, t, n, u, k1, k2, f1, f2) + Continue(go));
  }
  void AfterPostActionHistoryAsDouble(ProjectDataSources s, DBRecordActionTypes a, int32_t t,
                                      const std::string& n, int32_t u, double k1, double k2,
                                      const std::string& f1, const std::string& f2) override {
    lines.push_back("AfterAsDouble " + Join(s, a, t, n, u, k1, k2, f1, f2));
  }

 private:
  std::string Continue(bool& go) {
    std::string text = go ? " continue" : " stopped";
    if (check) text += " " + check();
    if (clear_continue) go = false;
    return text;
  }
  template <class... T>
  static std::string Join(const T&... parts) {
    std::string text;
    ((text += (text.empty() ? "" : " ") + Text(parts)), ...);
    return text;
  }
  static std::string Text(const std::string& s) { return s; }
  static std::string Text(double d) { return CStr(Variant(d)); }
  template <class T>
  static std::string Text(T n) {
    return std::to_string(static_cast<int64_t>(n));
  }
};

class RecordsTest : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    main_db_ = NewDatabase("main.db");
    system_db_ = NewDatabase("system.db");
    main_db_.RunFile("main_schema.sql");
    system_db_.RunFile("system_schema.sql");
    system_db_.Run(
        "INSERT INTO DataTables (ID, ValuesTable, MaxID) VALUES (5, 'patients', 0), "
        "(6, 'visits', 0), (7, 'Cities', 0)");
  }

  // Connect: a new service object in key mode `mode`, connected, with the
  // event log subscribed and every statement of the kinds in `history`
  // (LogFileEntryTypes bits) recorded in statements_.
  std::unique_ptr<InfoLink> Connect(CodeGenMethods mode, int32_t history = lfetNone) {
    auto link = std::make_unique<InfoLink>();
    link->MainDBType = Traits().main_db_type;
    link->GenCodeMethod = mode;
    link->LogFileEntrySetting = history;
    link->SetSQLHistoryObserver(
        [this](LogFileEntryTypes, const std::string& sql) { statements_.push_back(sql); });
    std::shared_ptr<Connection> none_main, none_system;
    EXPECT_TRUE(link->ConnectDefault(none_main, none_system, "", system_db_.DataSource(),
                                     main_db_.ConnectionString()));
    link->Advise(events_);
    return link;
  }

  // Rows: every row sql reads on db, as text ("" for Null): "1|a,2|b".
  static std::string Rows(const BackendDatabase& db, const std::string& sql) {
    return testing::Rows(db.Connection(), sql);
  }
  // ExpectMessages: the messages shown so far are texts; they are then
  // forgotten. Every test ends with none left unchecked.
  void ExpectMessages(const std::vector<std::string>& texts) {
    EXPECT_EQ(messages_.Texts(), texts);
    messages_.Clear();
  }
  void TearDown() override {
    EXPECT_EQ(messages_.Texts(), std::vector<std::string>{});
    BackendTest::TearDown();
  }

  BackendDatabase main_db_;
  BackendDatabase system_db_;
  MessageRecorder messages_;
  std::shared_ptr<EventLog> events_ = std::make_shared<EventLog>();
  std::vector<std::string> statements_;
};

}  // namespace kelvary::testing
