// What a two-level SHAPE costs: 10,000 parents and 1,000,000 children opened
// as one hierarchical recordset, beside the same two SELECTs opened alone
// through the Recordset (the floor: the shape runs exactly these two), the
// hash relating on its own, and the way without a shaping layer: a child
// query per parent row. Prints the shape's ratio to the two plain SELECTs.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/shape/RelateIndex.h"

namespace {

using kelvary::Connection;
using kelvary::Recordset;

constexpr int kParents = 10000;
constexpr int kChildren = 1000000;

constexpr const char* kParentSelect = "SELECT ID, Name, Opened FROM Parents";
constexpr const char* kChildSelect = "SELECT ID, ParentID, Note, Amount FROM Children";
constexpr const char* kShape =
    " SHAPE { SELECT ID, Name, Opened FROM Parents  } as Parents APPEND ({SELECT ID, ParentID, "
    "Note, Amount FROM Children  }   as Children RELATE 'ID' TO  'ParentID' ) AS Children";

// The database: one file in a temporary folder, built once per run. The
// children are spread over the parents out of order, as real visits are.
struct BenchDatabase {
  std::filesystem::path folder;
  std::string path;

  BenchDatabase() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "kelvary-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder = pattern;
    path = (folder / "shape.db").string();
    auto connection = std::make_shared<Connection>();
    connection->Open("Provider=SQLite;Data Source=" + path + ";Mode=ReadWriteCreate");
    kelvary::ExecuteScript(
        *connection,
        "CREATE TABLE Parents (ID INTEGER PRIMARY KEY, Name TEXT, Opened DATE);"
        "CREATE TABLE Children (ID INTEGER PRIMARY KEY, ParentID INTEGER, Note TEXT, "
        "Amount DOUBLE);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
            std::to_string(kParents) +
            ") INSERT INTO Parents SELECT i, 'Parent ' || i, '2024-01-01' FROM n;"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
            std::to_string(kChildren) + ") INSERT INTO Children SELECT i, (i * 7919) % " +
            std::to_string(kParents) +
            " + 1, 'Visit note ' || i, i * 0.25 FROM n;"
            // The per-parent loop needs it; the shape and the plain SELECTs do not use it.
            "CREATE INDEX ChildrenByParent ON Children (ParentID);");
  }
  ~BenchDatabase() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  std::shared_ptr<Connection> Connect() const {
    auto connection = std::make_shared<Connection>();
    connection->Open("Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + path +
                     ";Data Provider=MSDASQL");
    return connection;
  }
};

BenchDatabase& Database() {
  static BenchDatabase database;
  return database;
}

std::shared_ptr<Recordset> OpenRecordset(const std::string& source,
                                         const std::shared_ptr<Connection>& connection) {
  auto rs = std::make_shared<Recordset>();
  rs->Open(source, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
  return rs;
}

void BM_TwoPlainSelects(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state) {
    auto parents = OpenRecordset(kParentSelect, connection);
    auto children = OpenRecordset(kChildSelect, connection);
    benchmark::DoNotOptimize(parents->RecordCount() + children->RecordCount());
  }
}
BENCHMARK(BM_TwoPlainSelects)->Unit(benchmark::kMillisecond)->MinTime(3.0);

void BM_Shape(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state) {
    auto shaped = OpenRecordset(kShape, connection);
    benchmark::DoNotOptimize(shaped->RecordCount());
  }
}
BENCHMARK(BM_Shape)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The grouping alone, on rows already fetched.
void BM_RelateOnly(benchmark::State& state) {
  auto connection = Database().Connect();
  const kelvary::RowSet parents = connection->Driver().Run(kParentSelect, {}, 0).rows;
  const kelvary::RowSet children = connection->Driver().Run(kChildSelect, {}, 0).rows;
  for (auto _ : state) {
    kelvary::shape::RelateGroups groups = kelvary::shape::Relate(parents, {0}, children, {1});
    benchmark::DoNotOptimize(groups.group_rows.data());
  }
}
BENCHMARK(BM_RelateOnly)->Unit(benchmark::kMillisecond);

// Without a shaping layer: the parents, then one child query per parent.
void BM_PerParentQueries(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state) {
    auto parents = OpenRecordset(kParentSelect, connection);
    int64_t rows = 0;
    while (!parents->Eof()) {
      auto children = OpenRecordset(std::string(kChildSelect) + " WHERE ParentID = " +
                                        kelvary::CStr(parents->Fields("ID").Value()),
                                    connection);
      rows += children->RecordCount();
      parents->MoveNext();
    }
    benchmark::DoNotOptimize(rows);
  }
}
BENCHMARK(BM_PerParentQueries)->Unit(benchmark::kMillisecond);

// Keeps each benchmark's time per iteration for the ratios printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration)
        times[run.benchmark_name()] = run.GetAdjustedRealTime();
    }
  }
  std::map<std::string, double> times;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Database();
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  auto time = [&](const char* name) {
    const auto found = reporter.times.find(std::string(name) + "/min_time:3.000");
    if (found != reporter.times.end()) return found->second;
    const auto plain = reporter.times.find(name);
    return plain == reporter.times.end() ? 0.0 : plain->second;
  };
  const double plain = time("BM_TwoPlainSelects");
  if (plain > 0) {
    std::printf("\n%d parents, %d children\n", kParents, kChildren);
    std::printf("two plain SELECTs        %8.1f ms\n", plain);
    if (const double shape = time("BM_Shape"); shape > 0) {
      std::printf(
          "SHAPE of the two         %8.1f ms: ratio %.2f to the plain SELECTs (aim: "
          "within 1.3)\n",
          shape, shape / plain);
    }
    if (const double relate = time("BM_RelateOnly"); relate > 0) {
      std::printf("hash relating alone      %8.1f ms\n", relate);
    }
    if (const double loop = time("BM_PerParentQueries"); loop > 0) {
      std::printf("a query per parent       %8.1f ms: ratio %.2f to the plain SELECTs\n", loop,
                  loop / plain);
    }
  }
  benchmark::Shutdown();
  return 0;
}
