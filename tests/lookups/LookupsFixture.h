// LookupsTest: a configuration database and a practice database of the
// backend under test, built from data/ plus a small practice: cities (three
// levels deep), patients, allergies and drugs, the search links over them and
// two multi-selects of patients (3: allergies, 7: drugs). The InfoLink, set
// to the backend's dialect, is connected through ConnectDefault, so the
// caches are loaded and it is the ActiveInfoLink. A test adds its own rows,
// then calls Reload when it changed the configuration. Every statement
// FillRecordSet opens is recorded in Selects().
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"
#include "support/RecordingListControl.h"

namespace kelvary::testing {

class LookupsTest : public BackendTest {
 protected:
  void SetUp() override;

  // Reload: InitLists(True, True) after a change of the configuration.
  void Reload() { link_.InitLists(true, true); }
  // Config, Practice: run SQL on the configuration or the practice database.
  void Config(const std::string& sql) { system_.Run(sql); }
  void Practice(const std::string& sql) { main_.Run(sql); }
  // AddSearchLink: a row of FillNSearchLinks; text arguments are SQL
  // literals ("NULL" or "'text'").
  void AddSearchLink(int id, int table, const std::string& display, const std::string& sql,
                     const std::string& where, const std::string& new_screen = "NULL",
                     const std::string& large = "NULL", const std::string& secondary = "NULL",
                     const std::string& window = "0");

  const std::vector<std::string>& Selects() const { return selects_; }
  // SelectsMentioning: how many recorded statements contain text.
  int SelectsMentioning(const std::string& text) const;
  std::vector<std::string> Messages() const { return messages_.Texts(); }

  BackendDatabase system_;
  BackendDatabase main_;
  MessageRecorder messages_;

 private:
  std::vector<std::string> selects_;  // outlives the link, which records until it ends

 protected:
  InfoLink link_;
};

}  // namespace kelvary::testing
