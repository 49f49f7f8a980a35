#include "LookupsFixture.h"

namespace kelvary::testing {

void LookupsTest::SetUp() {
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
      "CREATE TABLE PatientAllergies (ID INTEGER PRIMARY KEY, SourceID INTEGER, ValueID INTEGER);"
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

void LookupsTest::AddSearchLink(int id, int table, const std::string& display,
                                const std::string& sql, const std::string& where,
                                const std::string& new_screen, const std::string& large,
                                const std::string& secondary, const std::string& window) {
  Config(
      "INSERT INTO FillNSearchLinks (ID, NewRecordScreenID, SecondaryDisplayField, SQLStmt, "
      "SearchValueField, SearchDisplayField, SelectCaption, LargeNumberOFEntries, "
      "SearchWhereClause, SearchTable, SearchWnd) VALUES (" +
      std::to_string(id) + ", " + new_screen + ", " + secondary + ", " + sql + ", 'ID', '" +
      display + "', 'Choose " + std::to_string(id) + "', " + large + ", " + where + ", " +
      std::to_string(table) + ", " + window + ")");
}

int LookupsTest::SelectsMentioning(const std::string& text) const {
  int count = 0;
  for (const auto& sql : selects_)
    count += sql.find(text) != std::string::npos ? 1 : 0;
  return count;
}

}  // namespace kelvary::testing
