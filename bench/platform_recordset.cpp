// How fast the client-side cursor reads: a 100,000-row table opened into a
// Recordset and walked field by field, beside the same rows copied out
// through SQLite's own C API (the floor any cursor pays), and Find on an ID
// column of a 10,000-row recordset. Prints the walk's ratio to the raw copy.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"

namespace {

using kelvary::Connection;
using kelvary::Recordset;
using kelvary::Variant;

constexpr int kWalkRows = 100000;
constexpr int kFindRows = 10000;

// The database: one file in a temporary folder, built once per run.
struct BenchDatabase {
  std::filesystem::path folder;
  std::string path;

  BenchDatabase() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "kelvary-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder = pattern;
    path = (folder / "bench.db").string();
    auto connection = Open("Provider=SQLite;Data Source=" + path + ";Mode=ReadWriteCreate");
    kelvary::ExecuteScript(*connection,
                           "CREATE TABLE Visits (ID INTEGER PRIMARY KEY, FirstName TEXT, "
                           "Address TEXT, VisitDate DATE, Amount DOUBLE, Rank INTEGER);"
                           "CREATE TABLE Small (ID INTEGER PRIMARY KEY, Name TEXT);");
    connection->BeginTrans();
    for (int i = 1; i <= kWalkRows; ++i) {
      const std::string rank = i % 3 == 0 ? "NULL" : std::to_string(i % 97);
      char date[16];
      std::snprintf(date, sizeof date, "20%02d-%02d-%02d", i % 25, i % 12 + 1, i % 28 + 1);
      connection->Execute("INSERT INTO Visits VALUES (" + std::to_string(i) + ", 'Name" +
                          std::to_string(i % 5000) + "', '" + std::to_string(i) +
                          " Harbour Street, Westfield', '" + date + "', " +
                          std::to_string(i * 0.25) + ", " + rank + ")");
      if (i <= kFindRows) {
        connection->Execute("INSERT INTO Small VALUES (" + std::to_string(i) + ", 'Name" +
                            std::to_string(i) + "')");
      }
    }
    connection->CommitTrans();
  }
  ~BenchDatabase() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  static std::shared_ptr<Connection> Open(const std::string& connection_string) {
    auto connection = std::make_shared<Connection>();
    connection->Open(connection_string);
    return connection;
  }
  std::shared_ptr<Connection> Connect() const {
    return Open("Provider=SQLite;Data Source=" + path);
  }
};

BenchDatabase& Database() {
  static BenchDatabase database;
  return database;
}

void BM_RecordsetWalk(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state) {
    auto rs = std::make_shared<Recordset>();
    rs->Open("SELECT * FROM Visits", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    const int32_t width = rs->FieldCount();
    while (!rs->Eof()) {
      for (int32_t i = 0; i < width; ++i) {
        const Variant& v = rs->Fields(i).Value();
        benchmark::DoNotOptimize(v);
      }
      rs->MoveNext();
    }
    rs->Close();
  }
  state.SetItemsProcessed(state.iterations() * kWalkRows);
}
BENCHMARK(BM_RecordsetWalk)->Unit(benchmark::kMillisecond);

// The same walk on a fresh connection each time: the statement is prepared
// anew and the driver cannot size the rows from an earlier run.
void BM_RecordsetWalkFirstRun(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto connection = Database().Connect();
    state.ResumeTiming();
    auto rs = std::make_shared<Recordset>();
    rs->Open("SELECT * FROM Visits", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    const int32_t width = rs->FieldCount();
    while (!rs->Eof()) {
      for (int32_t i = 0; i < width; ++i) {
        const Variant& v = rs->Fields(i).Value();
        benchmark::DoNotOptimize(v);
      }
      rs->MoveNext();
    }
    rs->Close();
  }
  state.SetItemsProcessed(state.iterations() * kWalkRows);
}
BENCHMARK(BM_RecordsetWalkFirstRun)->Unit(benchmark::kMillisecond);

void BM_RecordsetWalkByName(benchmark::State& state) {
  auto connection = Database().Connect();
  const char* names[] = {"ID", "FirstName", "Address", "VisitDate", "Amount", "Rank"};
  for (auto _ : state) {
    auto rs = std::make_shared<Recordset>();
    rs->Open("SELECT * FROM Visits", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    while (!rs->Eof()) {
      for (const char* name : names) {
        const Variant& v = rs->Fields(name).Value();
        benchmark::DoNotOptimize(v);
      }
      rs->MoveNext();
    }
    rs->Close();
  }
  state.SetItemsProcessed(state.iterations() * kWalkRows);
}
BENCHMARK(BM_RecordsetWalkByName)->Unit(benchmark::kMillisecond);

struct RawRow {
  int64_t id;
  std::string first_name;
  std::string address;
  std::string visit_date;
  double amount;
  std::optional<int64_t> rank;
};

void BM_RawSqliteCopy(benchmark::State& state) {
  sqlite3* db = nullptr;
  sqlite3_open_v2(Database().path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                  nullptr);
  auto text = [](sqlite3_stmt* s, int c) {
    const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s, c));
    return std::string(p ? p : "", static_cast<size_t>(sqlite3_column_bytes(s, c)));
  };
  for (auto _ : state) {
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, "SELECT * FROM Visits", -1, &stmt, nullptr);
    std::vector<RawRow> rows;
    rows.reserve(kWalkRows);
    while (sqlite3_step(stmt) == SQLITE_ROW) {
      RawRow row;
      row.id = sqlite3_column_int64(stmt, 0);
      row.first_name = text(stmt, 1);
      row.address = text(stmt, 2);
      row.visit_date = text(stmt, 3);
      row.amount = sqlite3_column_double(stmt, 4);
      if (sqlite3_column_type(stmt, 5) != SQLITE_NULL) row.rank = sqlite3_column_int64(stmt, 5);
      rows.push_back(std::move(row));
    }
    sqlite3_finalize(stmt);
    benchmark::DoNotOptimize(rows.data());
  }
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations() * kWalkRows);
}
BENCHMARK(BM_RawSqliteCopy)->Unit(benchmark::kMillisecond);

// The look-up pattern of the metadata cache: MoveFirst, then Find "ID = n".
void BM_FindById(benchmark::State& state) {
  auto connection = Database().Connect();
  auto rs = std::make_shared<Recordset>();
  rs->Open("SELECT * FROM Small", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, kFindRows);
  for (auto _ : state) {
    rs->MoveFirst();
    rs->Find("ID = " + std::to_string(id(random)), 0, kelvary::adSearchForward,
             Variant(int32_t{kelvary::adBookmarkFirst}));
    benchmark::DoNotOptimize(rs->Eof());
  }
}
BENCHMARK(BM_FindById)->Unit(benchmark::kMicrosecond);

// The first Find on a column after a change scans (the index is built by the
// second): what a one-off look-up costs.
void BM_FindByIdFirstTime(benchmark::State& state) {
  auto connection = Database().Connect();
  auto rs = std::make_shared<Recordset>();
  rs->Open("SELECT * FROM Small", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, kFindRows);
  for (auto _ : state) {
    state.PauseTiming();
    rs->Filter("");  // drops the index
    state.ResumeTiming();
    rs->Find("ID = " + std::to_string(id(random)), 0, kelvary::adSearchForward,
             Variant(int32_t{kelvary::adBookmarkFirst}));
    benchmark::DoNotOptimize(rs->Eof());
  }
}
BENCHMARK(BM_FindByIdFirstTime)->Unit(benchmark::kMicrosecond);

// A Find that no index answers: a text column, scanned row by row.
void BM_FindByTextScan(benchmark::State& state) {
  auto connection = Database().Connect();
  auto rs = std::make_shared<Recordset>();
  rs->Open("SELECT * FROM Small", connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, kFindRows);
  for (auto _ : state) {
    rs->MoveFirst();
    rs->Find("Name = 'Name" + std::to_string(id(random)) + "'", 0, kelvary::adSearchForward,
             Variant(int32_t{kelvary::adBookmarkFirst}));
    benchmark::DoNotOptimize(rs->Eof());
  }
}
BENCHMARK(BM_FindByTextScan)->Unit(benchmark::kMicrosecond);

// A look-up as the system makes them: the statement text built per call, a
// recordset opened on it, one field read. The text repeats for the same ID,
// so the driver's statement cache serves the repeats.
void BM_PointLookup(benchmark::State& state) {
  auto connection = Database().Connect();
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, 100);
  for (auto _ : state) {
    auto rs = std::make_shared<Recordset>();
    rs->Open("Select  Name , ID from Small  where  ID = " + std::to_string(id(random)), connection,
             kelvary::adOpenForwardOnly, kelvary::adLockReadOnly);
    benchmark::DoNotOptimize(kelvary::TextOf(rs->Fields("Name").Value()));
    rs->Close();
  }
}
BENCHMARK(BM_PointLookup)->Unit(benchmark::kMicrosecond);

// Keeps each benchmark's time per iteration for the ratio printed at the end.
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
  const auto raw = reporter.times.find("BM_RawSqliteCopy");
  if (raw != reporter.times.end() && raw->second > 0) {
    std::printf("\nRaw SQLite copy of %d rows: %.1f ms\n", kWalkRows, raw->second);
    for (const char* name :
         {"BM_RecordsetWalk", "BM_RecordsetWalkFirstRun", "BM_RecordsetWalkByName"}) {
      const auto walk = reporter.times.find(name);
      if (walk == reporter.times.end()) continue;
      std::printf("%-26s %6.1f ms: ratio %.2f to the raw copy (aim: within 2)\n", name + 3,
                  walk->second, walk->second / raw->second);
    }
  }
  benchmark::Shutdown();
  return 0;
}
