// The platform's speed and memory against the floor the SQLite C API sets,
// measured in the same run on one 1,000,000-row table (integer key, two
// short texts, an ISO date, a double, a nullable integer):
//   look-up     FillRecordSet with the value written into the statement text,
//               against one prepared statement re-bound per call;
//   write-back  10,000 edits + Update in one transaction, against a prepared
//               UPDATE loop by key, and against the same loop running the
//               statement write-back runs (key and read value in the WHERE);
//   walk        open + read every field (by position, by name, and on a
//               fresh connection), against copying the rows into a vector of
//               plain structs;
//   memory      the bytes a recordset holding every row allocates, against
//               that vector.
// Prints each figure, its floor, the ratio and the aim.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"

namespace {

using kelvary::Connection;
using kelvary::Recordset;
using kelvary::Variant;

constexpr int kRows = 1000000;
constexpr int kEdits = 10000;
constexpr const char* kSelectAll =
    "SELECT ID, FirstName, LastName, VisitDate, Amount, Rank FROM Visits";

// The database: one file in a temporary folder, built once per run with the
// C API (a million rows through the library would only time the library).
struct BenchDatabase {
  std::filesystem::path folder;
  std::string path;

  BenchDatabase() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "kelvary-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder = pattern;
    path = (folder / "targets.db").string();
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_exec(db,
                 "PRAGMA journal_mode=WAL;"
                 "CREATE TABLE Visits (ID INTEGER PRIMARY KEY, FirstName TEXT, LastName TEXT, "
                 "VisitDate DATE, Amount DOUBLE, Rank INTEGER);"
                 "BEGIN",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO Visits VALUES (?, ?, ?, ?, ?, ?)", -1, &insert, nullptr);
    for (int i = 1; i <= kRows; ++i) {
      const std::string first = "Name" + std::to_string(i % 5000);
      const std::string last = "Family" + std::to_string(i % 7919);
      char date[16];
      std::snprintf(date, sizeof date, "20%02d-%02d-%02d", i % 25, i % 12 + 1, i % 28 + 1);
      sqlite3_bind_int64(insert, 1, i);
      sqlite3_bind_text(insert, 2, first.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 3, last.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 4, date, -1, SQLITE_TRANSIENT);
      sqlite3_bind_double(insert, 5, i * 0.25);
      if (i % 3 == 0) {
        sqlite3_bind_null(insert, 6);
      } else {
        sqlite3_bind_int64(insert, 6, i % 97);
      }
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }
  ~BenchDatabase() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  std::shared_ptr<Connection> Connect() const {
    auto connection = std::make_shared<Connection>();
    connection->Open("Provider=SQLite;Data Source=" + path);
    return connection;
  }
  sqlite3* Raw() const {
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    return db;
  }
};

BenchDatabase& Database() {
  static BenchDatabase database;
  return database;
}

std::string Text(sqlite3_stmt* s, int c) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s, c));
  return std::string(p ? p : "", static_cast<size_t>(sqlite3_column_bytes(s, c)));
}

// ---- Look-up ----------------------------------------------------------------

void BM_LookupRawPrepared(benchmark::State& state) {
  sqlite3* db = Database().Raw();
  sqlite3_stmt* stmt = nullptr;
  sqlite3_prepare_v2(db, "SELECT LastName, ID FROM Visits WHERE ID = ?", -1, &stmt, nullptr);
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, kRows);
  for (auto _ : state) {
    sqlite3_bind_int64(stmt, 1, id(random));
    std::string name;
    if (sqlite3_step(stmt) == SQLITE_ROW) name = Text(stmt, 0);
    sqlite3_reset(stmt);
    benchmark::DoNotOptimize(name);
  }
  sqlite3_finalize(stmt);
  sqlite3_close(db);
}
BENCHMARK(BM_LookupRawPrepared)->Unit(benchmark::kMicrosecond);

// As every value look-up of the system: the value written into the text,
// opened through FillRecordSet, one field read.
void BM_LookupFillRecordSet(benchmark::State& state) {
  // The service object's own messages (its session table is not in this
  // database) are not what is timed.
  kelvary::SetMessageHandler(
      [](const std::string&, kelvary::MsgBoxStyle, const std::string&) { return kelvary::vbOK; });
  kelvary::InfoLink link;
  link.AppDataXion(Database().Connect());
  std::shared_ptr<Recordset> rs;
  std::mt19937 random(42);
  std::uniform_int_distribution<int> id(1, kRows);
  for (auto _ : state) {
    std::string name;
    if (link.FillRecordSet(
            kelvary::pdsmaindata, rs,
            "Select LastName, ID from Visits where ID = " + std::to_string(id(random)),
            kelvary::adOpenForwardOnly, kelvary::adLockReadOnly)) {
      name = kelvary::TextOf(rs->Fields("LastName").Value());
    }
    benchmark::DoNotOptimize(name);
  }
}
BENCHMARK(BM_LookupFillRecordSet)->Unit(benchmark::kMicrosecond);

// ---- Write-back ---------------------------------------------------------------

void BM_WriteBackRawPrepared(benchmark::State& state) {
  sqlite3* db = Database().Raw();
  sqlite3_stmt* update = nullptr;
  sqlite3_prepare_v2(db, "UPDATE Visits SET Amount = ? WHERE ID = ?", -1, &update, nullptr);
  double delta = 0;
  for (auto _ : state) {
    delta += 1;
    sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    for (int i = 1; i <= kEdits; ++i) {
      sqlite3_bind_double(update, 1, i * 0.25 + delta);
      sqlite3_bind_int64(update, 2, i);
      sqlite3_step(update);
      sqlite3_reset(update);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
  }
  sqlite3_finalize(update);
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations() * kEdits);
}
BENCHMARK(BM_WriteBackRawPrepared)->Unit(benchmark::kMillisecond);

// The same loop with the statement write-back runs: the row is found by its
// key and by the value it was read with, so that a change made meanwhile by
// someone else is refused rather than overwritten. The values are read
// before the clock runs, as the recordset's are.
void BM_WriteBackRawSameStatement(benchmark::State& state) {
  sqlite3* db = Database().Raw();
  std::vector<double> amounts(kEdits + 1);
  sqlite3_stmt* read = nullptr;
  sqlite3_prepare_v2(db, "SELECT ID, Amount FROM Visits WHERE ID <= ?", -1, &read, nullptr);
  sqlite3_stmt* update = nullptr;
  sqlite3_prepare_v2(db, "UPDATE Visits SET Amount = ? WHERE ID = ? AND Amount = ?", -1, &update,
                     nullptr);
  double delta = 1000;  // apart from the other loops' values
  for (auto _ : state) {
    state.PauseTiming();
    sqlite3_bind_int64(read, 1, kEdits);
    while (sqlite3_step(read) == SQLITE_ROW) {
      amounts[static_cast<size_t>(sqlite3_column_int64(read, 0))] = sqlite3_column_double(read, 1);
    }
    sqlite3_reset(read);
    delta += 1;
    state.ResumeTiming();
    sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    for (int i = 1; i <= kEdits; ++i) {
      sqlite3_bind_double(update, 1, i * 0.25 + delta);
      sqlite3_bind_int64(update, 2, i);
      sqlite3_bind_double(update, 3, amounts[static_cast<size_t>(i)]);
      sqlite3_step(update);
      if (sqlite3_changes(db) != 1) state.SkipWithError("a row was not found by its read value");
      sqlite3_reset(update);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
  }
  sqlite3_finalize(update);
  sqlite3_finalize(read);
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations() * kEdits);
}
BENCHMARK(BM_WriteBackRawSameStatement)->Unit(benchmark::kMillisecond);

// The rows are read before the clock runs: what is timed is the edits.
void BM_WriteBackRecordset(benchmark::State& state) {
  auto connection = Database().Connect();
  double delta = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto rs = std::make_shared<Recordset>();
    rs->Open("SELECT ID, Amount FROM Visits WHERE ID <= " + std::to_string(kEdits), connection,
             kelvary::adOpenStatic, kelvary::adLockOptimistic);
    delta += 1;
    state.ResumeTiming();
    connection->BeginTrans();
    for (int i = 1; i <= kEdits; ++i) {
      rs->Fields(1).Value(Variant(i * 0.25 + delta));
      rs->Update();
      rs->MoveNext();
    }
    connection->CommitTrans();
  }
  state.SetItemsProcessed(state.iterations() * kEdits);
}
BENCHMARK(BM_WriteBackRecordset)->Unit(benchmark::kMillisecond);

// ---- Walks ----------------------------------------------------------------------

struct RawRow {
  int64_t id;
  std::string first_name;
  std::string last_name;
  std::string visit_date;
  double amount;
  std::optional<int64_t> rank;
};

std::vector<RawRow> RawCopy(sqlite3* db) {
  sqlite3_stmt* stmt = nullptr;
  sqlite3_prepare_v2(db, kSelectAll, -1, &stmt, nullptr);
  std::vector<RawRow> rows;
  rows.reserve(kRows);
  while (sqlite3_step(stmt) == SQLITE_ROW) {
    RawRow row;
    row.id = sqlite3_column_int64(stmt, 0);
    row.first_name = Text(stmt, 1);
    row.last_name = Text(stmt, 2);
    row.visit_date = Text(stmt, 3);
    row.amount = sqlite3_column_double(stmt, 4);
    if (sqlite3_column_type(stmt, 5) != SQLITE_NULL) row.rank = sqlite3_column_int64(stmt, 5);
    rows.push_back(std::move(row));
  }
  sqlite3_finalize(stmt);
  return rows;
}

void BM_WalkRawCopy(benchmark::State& state) {
  sqlite3* db = Database().Raw();
  for (auto _ : state) {
    std::vector<RawRow> rows = RawCopy(db);
    benchmark::DoNotOptimize(rows.data());
  }
  sqlite3_close(db);
}
BENCHMARK(BM_WalkRawCopy)->Unit(benchmark::kMillisecond);

void Walk(const std::shared_ptr<Connection>& connection) {
  auto rs = std::make_shared<Recordset>();
  rs->Open(kSelectAll, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
  const int32_t width = rs->FieldCount();
  while (!rs->Eof()) {
    for (int32_t i = 0; i < width; ++i)
      benchmark::DoNotOptimize(rs->Fields(i).Value());
    rs->MoveNext();
  }
}

void BM_WalkByPosition(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state)
    Walk(connection);
}
BENCHMARK(BM_WalkByPosition)->Unit(benchmark::kMillisecond);

void BM_WalkByName(benchmark::State& state) {
  auto connection = Database().Connect();
  const char* names[] = {"ID", "FirstName", "LastName", "VisitDate", "Amount", "Rank"};
  for (auto _ : state) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(kSelectAll, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    while (!rs->Eof()) {
      for (const char* name : names)
        benchmark::DoNotOptimize(rs->Fields(name).Value());
      rs->MoveNext();
    }
  }
}
BENCHMARK(BM_WalkByName)->Unit(benchmark::kMillisecond);

// The first open on a connection: the statement is prepared anew and the
// driver cannot size the rows from an earlier run.
void BM_WalkFirstOpen(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto connection = Database().Connect();
    state.ResumeTiming();
    Walk(connection);
  }
}
BENCHMARK(BM_WalkFirstOpen)->Unit(benchmark::kMillisecond);

// ---- Memory -----------------------------------------------------------------------

// Allocated: the bytes the process holds from malloc (0 where the C library
// cannot tell, and the memory figure is then not printed).
size_t Allocated() {
#if defined(__GLIBC__)
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#else
  return 0;
#endif
}

void Trim() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

double held_bytes_per_row = 0;
double raw_bytes_per_row = 0;

void BM_MemoryHeld(benchmark::State& state) {
  auto connection = Database().Connect();
  for (auto _ : state) {
    {  // once first, so that the driver's statement and caches are in place
      auto warm = std::make_shared<Recordset>();
      warm->Open(kSelectAll + std::string(" WHERE ID < 10"), connection);
    }
    Trim();
    const size_t before = Allocated();
    auto rs = std::make_shared<Recordset>();
    rs->Open(kSelectAll, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    held_bytes_per_row = static_cast<double>(Allocated() - before) / kRows;
    benchmark::DoNotOptimize(rs->RecordCount());
  }
  sqlite3* db = Database().Raw();
  Trim();
  const size_t before = Allocated();
  std::vector<RawRow> rows = RawCopy(db);
  raw_bytes_per_row = static_cast<double>(Allocated() - before) / kRows;
  sqlite3_close(db);
}
BENCHMARK(BM_MemoryHeld)->Iterations(1)->Unit(benchmark::kMillisecond);

// Keeps each benchmark's CPU time per iteration for the ratios printed at
// the end (CPU, not wall time: the machines these run on are shared). With
// --benchmark_repetitions the median of the repetitions is taken.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !times.count(run.run_name.str())) {
        times[run.run_name.str()] = run.GetAdjustedCPUTime();
      } else if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        times[run.run_name.str()] = run.GetAdjustedCPUTime();
      }
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
  const auto& t = reporter.times;
  auto ratio = [&](const char* figure, const char* floor, const char* name, double aim) {
    const auto a = t.find(figure);
    const auto b = t.find(floor);
    if (a == t.end() || b == t.end() || b->second <= 0) return;
    std::printf("%-22s %10.2f against %-28s %10.2f: ratio %.2f", name, a->second, floor + 3,
                b->second, a->second / b->second);
    if (aim > 0) {
      std::printf(" (aim: at most %.2f)\n", aim);
    } else {
      std::printf(" (no aim: what the layer adds)\n");
    }
  };
  std::printf("\nCPU time per iteration (look-ups in us, the rest in ms):\n");
  ratio("BM_LookupFillRecordSet", "BM_LookupRawPrepared", "look-up", 2.0);
  ratio("BM_WriteBackRecordset", "BM_WriteBackRawPrepared", "write-back", 1.3);
  ratio("BM_WriteBackRecordset", "BM_WriteBackRawSameStatement", "write-back, same SQL", 0);
  ratio("BM_WalkByPosition", "BM_WalkRawCopy", "walk by position", 1.15);
  ratio("BM_WalkByName", "BM_WalkRawCopy", "walk by name", 1.25);
  ratio("BM_WalkFirstOpen", "BM_WalkRawCopy", "walk, first open", 1.3);
  if (held_bytes_per_row > 0 && raw_bytes_per_row > 0) {
    std::printf("%-22s %10.1f against %-20s %10.1f: ratio %.2f (aim: at most 1.00)\n",
                "memory, bytes per row", held_bytes_per_row, "a vector of structs",
                raw_bytes_per_row, held_bytes_per_row / raw_bytes_per_row);
  }
  benchmark::Shutdown();
  return 0;
}
