// What a new key costs in the key modes that reach the database: the
// maximum-plus-one query on a 10,000-row table (mode 0), the catalogue's
// counter in the data-tables recordset (mode 3, one UPDATE of DataTables),
// and the location counter read and advanced in one transaction on the
// sequence-generator connection (mode 7, one committed write per key).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/service/InfoLink.h"

namespace {

using namespace kelvary;

std::string ReadData(const std::string& name) {
  std::ifstream in(std::string(KELVARY_DATA_DIR) + "/" + name);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// A main and a system database in a temporary folder, built once per run.
struct BenchDatabases {
  std::filesystem::path folder;
  std::string main_path, system_path;

  BenchDatabases() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvary-keys-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder = pattern;
    main_path = (folder / "main.db").string();
    system_path = (folder / "system.db").string();
    Connection main_db, system_db;
    main_db.Open("Provider=SQLite;Data Source=" + main_path + ";Mode=ReadWriteCreate");
    system_db.Open("Provider=SQLite;Data Source=" + system_path + ";Mode=ReadWriteCreate");
    ExecuteScript(main_db, ReadData("main_schema.sql") +
                               ";WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                               "WHERE i < 10000) INSERT INTO patients (ID) SELECT i FROM n");
    ExecuteScript(system_db,
                  ReadData("system_schema.sql") +
                      ";INSERT INTO DataTables (ID, ValuesTable) VALUES (5, 'patients')");
  }
  ~BenchDatabases() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
};

BenchDatabases& Databases() {
  static BenchDatabases databases;
  return databases;
}

void BM_NewKey(benchmark::State& state) {
  InfoLink link;
  link.GenCodeMethod = static_cast<CodeGenMethods>(state.range(0));
  link.CurrPhysLocIDPrefix = 1;
  std::shared_ptr<Connection> none_main, none_system;
  if (!link.ConnectDefault(none_main, none_system, "", Databases().system_path,
                           "Provider=SQLite;Data Source=" + Databases().main_path)) {
    state.SkipWithError("cannot connect");
    return;
  }
  for (auto _ : state)
    benchmark::DoNotOptimize(link.GenerateNumericCode(pdsmaindata, "patients", "ID"));
  state.SetLabel(state.range(0) == cgmDefault         ? "maximum query"
                 : state.range(0) == cgmDynamicTables ? "catalogue counter"
                                                      : "location counter, one transaction");
}
BENCHMARK(BM_NewKey)
    ->Arg(cgmDefault)
    ->Arg(cgmDynamicTables)
    ->Arg(cgmPhysicalLocationWise)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
