#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <set>

#include "kelvary/platform/Error.h"
#include "records/RecordsFixture.h"
#include "support/TempDir.h"

namespace kelvary {
namespace {

using testing::RecordsTest;
using Strings = std::vector<std::string>;
KELVARY_ON_EVERY_BACKEND(RecordsTest);

TEST_P(RecordsTest, MaximumPlusOneModesAndTheirLimitThreshold) {
  for (CodeGenMethods mode : {cgmDefault, cgmRawGenerate, cgmDCOM, cgmStoredProcedure}) {
    SCOPED_TRACE(mode);
    main_db_.Run("DELETE FROM patients");
    auto link = Connect(mode, lfetSelectSQL);
    EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 1);
    main_db_.Run("INSERT INTO patients (ID) VALUES (5), (41)");
    statements_.clear();
    // Five characters or fewer are no limit; six are.
    EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID", "ID<10"), 42);
    EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID", "ID<=10"), 6.0);
    EXPECT_EQ(statements_, (Strings{"Select Max(ID)  As Max_Value From patients",
                                    "Select Max(ID)  As Max_Value From patients Where ID<=10"}));
    EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "", "ID"), 0);
    ExpectMessages({"No Table mentioned"});
  }
}

TEST_P(RecordsTest, MaxCollectionModeCountsInTheCollection) {
  main_db_.Run("INSERT INTO patients (ID) VALUES (5)");
  auto link = Connect(cgmMaxCollection);
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID"), 6.0);
  main_db_.Run("INSERT INTO patients (ID) VALUES (50)");  // not read again
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID"), 7.0);
  link->UpdateTableMaxID("patients", 100);
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "PATIENTS", "ID"), 101.0);

  // The Long form reads the table's name as its last key: a name that is
  // not a number is a type mismatch, a numeric one always gives name + 1
  // and leaves that in the collection.
  try {
    link->GenerateNumericCode(pdsmaindata, "patients", "ID");
    ADD_FAILURE() << "a type mismatch was expected";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), kErrTypeMismatch);
  }
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "12", "ID"), 13);
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "12", "ID"), 13);
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "12", "ID"), 14.0);
}

TEST_P(RecordsTest, DynamicTablesModeKeepsTheCounterInDataTables) {
  main_db_.Run("INSERT INTO patients (ID) VALUES (7)");
  auto link = Connect(cgmDynamicTables);
  const auto stored = [&] { return Rows(system_db_, "SELECT MaxID FROM DataTables WHERE ID = 5"); };
  // First call: the row is found by name and the counter starts at the
  // table's maximum; then the catalogue's counter goes on alone.
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 8);
  EXPECT_EQ(stored(), "8");
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 9);
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID"), 10.0);
  link->UpdateTableMaxID("patients", 50);
  EXPECT_EQ(stored(), "50");
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 51);
  // UpdateTableMaxID before any key: found by name too.
  link->UpdateTableMaxID("visits", 20);
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "visits", "ID"), 21);
}

TEST_P(RecordsTest, NetworkServerModeAsksTheHost) {
  auto link = Connect(cgmNetworkServer);
  link->Unadvise(events_);
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 0);
  link->Advise(events_);
  events_->remote_id = 77;
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID", "x"), 77);
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdssystem, "visits", "Code"), 77.5);
  EXPECT_EQ(events_->lines, (Strings{"Request 1 patients ID x", "RequestAsDouble 2 visits Code "}));
  link->UpdateTableMaxID("patients", 3);
  ExpectMessages({"Not Handled !"});
}

TEST_P(RecordsTest, LocationWiseModeCountsPerLocationBehindThePrefix) {
  auto link = Connect(cgmPhysicalLocationWise, lfetUpdateSQL | lfetInsertStmts);
  link->CurrentPhysicalLocationID = 4;
  link->CurrPhysLocIDPrefix = 3;
  // A new location row holds 1 and needs no update; the next call does.
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 31);
  EXPECT_EQ(Rows(main_db_, "SELECT DataTableID, LocationID, CurrentMaxID FROM LocationTableKeys"),
            "5|4|1");
  EXPECT_TRUE(statements_.empty());
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 32);
  EXPECT_EQ(statements_, Strings{"Update LocationTableKeys set CurrentMaxID = CurrentMaxID + 1 "
                                 "where (DataTableID = 5 )  and ( LocationID = 4 ) "});
  // The Double form has its own counter column.
  main_db_.Run("UPDATE LocationTableKeys SET CurrentMaxIDDouble = 8");
  EXPECT_EQ(link->GenerateNumericCodeAsDouble(pdsmaindata, "patients", "ID"), 39.0);
  EXPECT_EQ(Rows(main_db_, "SELECT CurrentMaxIDDouble FROM LocationTableKeys"), "9");
  // A stored 0 gives 1 and stays 0.
  main_db_.Run("UPDATE LocationTableKeys SET CurrentMaxID = 0");
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 31);
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "patients", "ID"), 31);
  ExpectMessages({});

  // System data takes the maximum; a limit is reported and dropped; no
  // prefix is reported and leaves the counter alone.
  EXPECT_EQ(link->GenerateNumericCode(pdssystem, "DataTables", "ID"), 8);
  link->CurrPhysLocIDPrefix = 0;
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "visits", "ID", "VisitDate > 0"), 1);
  EXPECT_EQ(link->GenerateNumericCode(pdsmaindata, "visits", "ID"), 2);
  ExpectMessages({"Limit String : VisitDate > 0 not supported for Table Name :visits",
                  "CurrPhysLocIDPrefix = 0 ", "CurrPhysLocIDPrefix = 0 "});
}

TEST_P(RecordsTest, RegistrationNumbers) {
  auto link = Connect(cgmDefault);
  EXPECT_EQ(link->GetRegNo("john", "", "smith"), "JS000001");
  EXPECT_EQ(link->GetRegNo("john", "  ", "smith"), "JS000001");
  EXPECT_EQ(link->GetRegNo("john", " paul", "smith"), "JPS0001");
  main_db_.Run(
      "INSERT INTO patients (ID, regnno) VALUES (1, 'JPS0041'), (2, 'JS000007'), "
      "(3, 'JPX0100')");
  // The system looks the highest number up with LIKE 'JPS*', on every engine.
  EXPECT_EQ(link->GetRegNo("john", "paul", "smith"), "JPS0042");
  EXPECT_EQ(link->GetRegNo("jane", "", "Soames"), "JS000008");
}

// Four processes generate location-wise keys on one database at the same
// time; each key must be issued once.
constexpr int kProcesses = 4;
constexpr int kKeysEach = 500;

// In a child: its own service object and connections, one key per line.
int GenerateKeys(const std::string& main, const std::string& system, const std::string& out) {
  try {
    InfoLink link;
    link.GenCodeMethod = cgmPhysicalLocationWise;
    link.CurrentPhysicalLocationID = 1;
    link.CurrPhysLocIDPrefix = 9;
    std::shared_ptr<Connection> none_main, none_system;
    if (!link.ConnectDefault(none_main, none_system, "", system, main)) return 2;
    std::ofstream file(out);
    for (int i = 0; i < kKeysEach; ++i)
      file << link.GenerateNumericCode(pdsmaindata, "patients", "ID") << '\n';
    return file.good() ? 0 : 3;
  } catch (const Error& e) {
    std::cerr << "key process " << getpid() << ": " << e.Description() << "\n";
    return 4;
  } catch (...) {
    return 4;
  }
}

TEST_P(RecordsTest, FourProcessesNeverReceiveTheSameLocationKey) {
  const testing::TempDir out_dir;
  main_db_.Connection()->Close();  // no connection is carried across fork()
  system_db_.Connection()->Close();
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {
    const std::string out = out_dir.File("keys" + std::to_string(p));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(GenerateKeys(main_db_.ConnectionString(), system_db_.DataSource(), out));
    children.push_back(child);
  }
  std::set<int64_t> keys;
  for (size_t p = 0; p < children.size(); ++p) {
    int status = 0;
    ASSERT_EQ(waitpid(children[p], &status, 0), children[p]);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    std::ifstream in(out_dir.File("keys" + std::to_string(p)));
    for (int64_t key; in >> key;)
      EXPECT_TRUE(keys.insert(key).second) << "issued twice: " << key;
  }
  // Prefix 9, then the counters 1 to 2000, none skipped.
  ASSERT_EQ(keys.size(), static_cast<size_t>(kProcesses * kKeysEach));
  EXPECT_EQ(*keys.begin(), 91);
  EXPECT_EQ(*keys.rbegin(), 92000);
}

}  // namespace
}  // namespace kelvary
