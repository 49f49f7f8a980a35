// Four processes generate location-wise keys on one SQLite file at the same
// time; each key must be issued once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/service/InfoLink.h"
#include "support/TempDir.h"

namespace kelvary {
namespace {

constexpr int kProcesses = 4;
constexpr int kKeysEach = 500;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Runs in a child: its own service object and connections; writes one key
// per line. Exit status 0 when every call returned a key.
int GenerateKeys(const std::string& main_path, const std::string& system_path,
                 const std::string& out_path) {
  try {
    InfoLink link;
    link.GenCodeMethod = cgmPhysicalLocationWise;
    link.CurrentPhysicalLocationID = 1;
    link.CurrPhysLocIDPrefix = 9;
    std::shared_ptr<Connection> none_main, none_system;
    if (!link.ConnectDefault(none_main, none_system, "", system_path,
                             "Provider=SQLite;Data Source=" + main_path)) {
      return 2;
    }
    std::ofstream out(out_path);
    for (int i = 0; i < kKeysEach; ++i)
      out << link.GenerateNumericCode(pdsmaindata, "patients", "ID") << '\n';
    return out.good() ? 0 : 3;
  } catch (...) {
    return 4;
  }
}

TEST(ConcurrentKeys, FourProcessesNeverReceiveTheSameLocationKey) {
  testing::TempDir dir;
  const std::string main_path = dir.File("main.db");
  const std::string system_path = dir.File("system.db");
  {
    Connection main_db;
    main_db.Open("Provider=SQLite;Data Source=" + main_path + ";Mode=ReadWriteCreate");
    ExecuteScript(main_db, ReadFile(KELVARY_DATA_DIR "/main_schema.sql"));
    Connection system_db;
    system_db.Open("Provider=SQLite;Data Source=" + system_path + ";Mode=ReadWriteCreate");
    ExecuteScript(system_db, ReadFile(KELVARY_DATA_DIR "/system_schema.sql"));
    system_db.Execute("INSERT INTO DataTables (ID, ValuesTable) VALUES (5, 'patients')");
  }  // no connection is open across fork()

  pid_t children[kProcesses];
  for (int p = 0; p < kProcesses; ++p) {
    const std::string out_path = dir.File("keys" + std::to_string(p) + ".txt");
    children[p] = fork();
    ASSERT_GE(children[p], 0);
    if (children[p] == 0) _exit(GenerateKeys(main_path, system_path, out_path));
  }
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }

  std::set<int64_t> keys;
  int issued = 0;
  for (int p = 0; p < kProcesses; ++p) {
    std::ifstream in(dir.File("keys" + std::to_string(p) + ".txt"));
    for (int64_t key; in >> key; ++issued)
      keys.insert(key);
  }
  EXPECT_EQ(issued, kProcesses * kKeysEach);
  EXPECT_EQ(keys.size(), static_cast<size_t>(kProcesses * kKeysEach));
  // Prefix 9 then the counters 1 to 2000, none skipped.
  EXPECT_EQ(*keys.begin(), 91);
  EXPECT_EQ(*keys.rbegin(), 92000);
}

}  // namespace
}  // namespace kelvary
