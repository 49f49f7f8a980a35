// Four processes generate location-wise keys on one database at the same
// time; each key must be issued once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <set>

#include "kelvary/platform/Error.h"
#include "kelvary/service/InfoLink.h"
#include "support/Backend.h"
#include "support/TempDir.h"

namespace kelvary {
namespace {

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

using ConcurrentKeys = testing::BackendTest;
KELVARY_ON_EVERY_BACKEND(ConcurrentKeys);

TEST_P(ConcurrentKeys, FourProcessesNeverReceiveTheSameLocationKey) {
  testing::BackendDatabase main_db = NewDatabase("main.db");
  testing::BackendDatabase system_db = NewDatabase("system.db");
  const testing::TempDir out_dir;
  main_db.RunFile("main_schema.sql");
  system_db.RunFile("system_schema.sql");
  system_db.Run("INSERT INTO DataTables (ID, ValuesTable) VALUES (5, 'patients')");
  main_db.Connection()->Close();  // no connection is carried across fork()
  system_db.Connection()->Close();

  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {
    const std::string out = out_dir.File("keys" + std::to_string(p));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(GenerateKeys(main_db.ConnectionString(), system_db.DataSource(), out));
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
