// LookupsTest: a configuration database and a practice database of the
// backend under test, built from data/ plus a small practice: cities (three
// levels deep), patients, allergies and drugs, the search links over them and
// two multi-selects of patients (3: allergies, 7: drugs). The InfoLink, set
// to the backend's dialect, is connected through ConnectDefault, so the
// caches are loaded and it is the ActiveInfoLink. A test adds its own rows,
// then calls Reload when it changed the configuration. Every statement
// FillRecordSet opens is recorded in Selects(); a message a test does not
// expect fails it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/MessageRecorder.h"
#include "support/RecordingListControl.h"

namespace kelvary::testing {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

class LookupsTest : public BackendTest {
 protected:
  void SetUp() override {
    BackendTest::SetUp();
    if (IsSkipped()) return;
    system_ = NewDatabase("system.db");
    main_ = NewDatabase("main.db");
    system_.RunFile("system_schema.sql");
    main_.RunFile("main_schema.sql");
    // DataTables row 0 carries the search links that bring their own
    // statement; it names no table.
    Config(
        "INSERT INTO DataTables (ID, ValuesTable, NewRecordScreenID, TableLocation) VALUES "
        "(0, NULL, NULL, 1), (1, 'Cities', 5, 1), (2, 'patients', NULL, 1), "
        "(3, 'Allergies', NULL, 1), (4, 'PatientAllergies', NULL, 1), (5, 'Drugs', NULL, 1), "
        "(6, 'PatientDrugs', NULL, 1), (7, 'Users', NULL, 2);"
        "INSERT INTO MultiSelects (ID, ParentSearchLinkID, SearchLinkID, StoreTable) VALUES "
        "(3, 20, 30, 4), (7, 20, 31, 6);");
    AddSearchLink(10, 1, "Description", "NULL", "NULL", "NULL", "NULL", "NULL", "110");
    AddSearchLink(20, 2, "%X", "NULL", "NULL", "0", "TRUE", "NULL", "120");
    AddSearchLink(30, 3, "Description", "NULL", "NULL", "NULL", "FALSE", "NULL", "130");
    AddSearchLink(31, 5, "Description", "NULL", "NULL", "NULL", "NULL", "NULL", "131");
    Practice(
        "INSERT INTO Cities (ID, Description, ParentID) VALUES (1, 'Westfield', 0), "
        "(2, 'Harbour', 0), (3, 'North Westfield', 1), (4, 'Old Town', 3), (5, 'Eastbank', 2);"
        "INSERT INTO patients (ID, FirstName, MiddleName, LastName) VALUES "
        "(1, 'John', NULL, 'Smith'), (2, 'Anna', 'Maria', 'Berg');"
        "CREATE TABLE Allergies (ID INTEGER PRIMARY KEY, Description VARCHAR(100));"
        "CREATE TABLE Drugs (ID INTEGER PRIMARY KEY, Description VARCHAR(100));"
        "CREATE TABLE PatientAllergies (ID INTEGER PRIMARY KEY, SourceID INTEGER, "
        "ValueID INTEGER);"
        "CREATE TABLE PatientDrugs (ID INTEGER PRIMARY KEY, SourceID INTEGER, ValueID INTEGER);"
        "INSERT INTO Allergies VALUES (12, 'Penicillin'), (13, 'Latex'), (14, 'Pollen');"
        "INSERT INTO Drugs VALUES (12, 'Aspirin'), (15, 'Ibuprofen');"
        "INSERT INTO PatientAllergies VALUES (1, 1, 12), (2, 1, 13), (3, 2, 12), (4, 1, 14);"
        "INSERT INTO PatientDrugs VALUES (1, 1, 12);");
    link_.MainDBType = Traits().main_db_type;
    link_.LogFileEntrySetting = lfetSelectSQL;
    link_.SetSQLHistoryObserver(
        [this](LogFileEntryTypes, const std::string& sql) { selects_.push_back(sql); });
    auto main = main_.Connection();
    auto system = system_.Connection();
    if (!link_.ConnectDefault(main, system, "", "")) ADD_FAILURE() << "ConnectDefault failed";
  }
  void TearDown() override {
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    BackendTest::TearDown();
  }

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
                     const std::string& window = "0") {
    Config(
        "INSERT INTO FillNSearchLinks (ID, NewRecordScreenID, SecondaryDisplayField, SQLStmt, "
        "SearchValueField, SearchDisplayField, SelectCaption, LargeNumberOFEntries, "
        "SearchWhereClause, SearchTable, SearchWnd) VALUES (" +
        std::to_string(id) + ", " + new_screen + ", " + secondary + ", " + sql + ", 'ID', '" +
        display + "', 'Choose " + std::to_string(id) + "', " + large + ", " + where + ", " +
        std::to_string(table) + ", " + window + ")");
  }

  const std::vector<std::string>& Selects() const { return selects_; }
  // SelectsMentioning: how many recorded statements contain text.
  int SelectsMentioning(const std::string& text) const {
    int count = 0;
    for (const auto& sql : selects_)
      count += sql.find(text) != std::string::npos ? 1 : 0;
    return count;
  }
  std::vector<std::string> Messages() const { return messages_.Texts(); }
  // ExpectMessages: the messages shown so far are texts; they are then
  // forgotten.
  void ExpectMessages(const std::vector<std::string>& texts) {
    EXPECT_EQ(Messages(), texts);
    messages_.Clear();
  }

  BackendDatabase system_;
  BackendDatabase main_;
  MessageRecorder messages_;

 private:
  std::vector<std::string> selects_;  // outlives the link, which records until it ends

 protected:
  InfoLink link_;
};

}  // namespace kelvary::testing
