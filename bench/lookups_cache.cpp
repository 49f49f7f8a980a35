// How fast search links resolve from the metadata cache: one million
// GetSearchLinkDetails calls over a cache of 2,000 search links (a fifth of
// them with a where clause, a tenth with a statement of their own), and,
// for scale, loading the caches with InitLists and the first look-up that
// builds the index. Prints calls per second and how many statements the
// million calls sent to the database (aim: above one million per second,
// and none).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/service/InfoLink.h"

namespace {

using kelvary::InfoLink;

constexpr int kLinks = 2000;
constexpr int kTables = 200;
constexpr int kCalls = 1000000;

// The configuration database: the schema of data/ and the links, in a
// temporary folder, built once per run.
struct BenchDatabase {
  std::filesystem::path folder;
  std::shared_ptr<kelvary::Connection> connection;

  BenchDatabase() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "kelvary-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder = pattern;
    connection = std::make_shared<kelvary::Connection>();
    connection->Open("Provider=SQLite;Data Source=" + (folder / "system.db").string() +
                     ";Mode=ReadWriteCreate");
    std::ifstream schema(std::string(KELVARY_DATA_DIR) + "/system_schema.sql");
    std::stringstream text;
    text << schema.rdbuf();
    std::string sql = text.str();
    for (int t = 1; t <= kTables; ++t) {
      sql += "INSERT INTO DataTables (ID, ValuesTable, NewRecordScreenID, TableLocation) VALUES (" +
             std::to_string(t) + ", 'Values" + std::to_string(t) + "', " +
             (t % 3 == 0 ? "NULL" : std::to_string(t)) + ", 1);";
    }
    for (int id = 1; id <= kLinks; ++id) {
      const std::string where = id % 5 == 0 ? "'ParentID = 0'" : "NULL";
      const std::string own = id % 10 == 3 ? "'Select Code, ID from Codes'" : "NULL";
      sql +=
          "INSERT INTO FillNSearchLinks (ID, NewRecordScreenID, SecondaryDisplayField, SQLStmt, "
          "SearchValueField, SearchDisplayField, SelectCaption, LargeNumberOFEntries, "
          "SearchWhereClause, SearchTable, SearchWnd) VALUES (" +
          std::to_string(id) + ", NULL, 'Code', " + own + ", 'ID', 'Description', 'Choose " +
          std::to_string(id) + "', " + (id % 2 == 0 ? "TRUE" : "NULL") + ", " + where + ", " +
          std::to_string(id % kTables + 1) + ", " + std::to_string(1000 + id) + ");";
    }
    kelvary::ExecuteScript(*connection, sql);
  }
  ~BenchDatabase() {
    connection->Close();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
};

BenchDatabase& Database() {
  static BenchDatabase database;
  return database;
}

double calls_per_second = 0;
long statements_sent = -1;

// Resolves links 1..2000 in turn, with every optional argument passed.
int64_t Resolve(InfoLink& link, int calls) {
  std::string display, value, table_name, sql, caption, secondary;
  int32_t table = 0;
  kelvary::ProjectDataSources source = kelvary::pdsRawData;
  bool many = false;
  int16_t screen = 0;
  int64_t total = 0;
  for (int i = 0; i < calls; ++i) {
    total += link.GetSearchLinkDetails(i % kLinks + 1, display, value, table, table_name, source,
                                       sql, caption, &many, &screen, &secondary);
    total += static_cast<int64_t>(sql.size());
  }
  return total;
}

void BM_GetSearchLinkDetails(benchmark::State& state) {
  InfoLink link;
  link.ConfigsXion(Database().connection);
  link.InitLists(true, true);
  benchmark::DoNotOptimize(Resolve(link, 1));  // the first look-up builds the index
  long statements = 0;
  link.LogFileEntrySetting = kelvary::lfetSelectSQL;
  link.SetSQLHistoryObserver([&](kelvary::LogFileEntryTypes, const std::string&) { ++statements; });
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(Resolve(link, kCalls));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    calls_per_second = kCalls / seconds.count();
  }
  statements_sent = statements;
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_GetSearchLinkDetails)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_InitListsAndFirstLookUp(benchmark::State& state) {
  InfoLink link;
  link.ConfigsXion(Database().connection);
  for (auto _ : state) {
    link.InitLists(true, true);
    benchmark::DoNotOptimize(Resolve(link, 1));
  }
}
BENCHMARK(BM_InitListsAndFirstLookUp)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Database();
  benchmark::RunSpecifiedBenchmarks();
  if (calls_per_second > 0) {
    std::printf(
        "\nGetSearchLinkDetails on a cache of %d search links: %.2f million calls per "
        "second (aim: above 1); statements sent during %d calls: %ld (aim: 0)\n",
        kLinks, calls_per_second / 1e6, kCalls, statements_sent);
  }
  benchmark::Shutdown();
  return 0;
}
