// The 100,000-row walk against PostgreSQL through its own client: an
// integer key, two texts, a date, a double and a nullable integer, read in
// full and every value touched. Side by side:
//   Recordset   Connection opened with a Provider=PostgreSQL string and a
//               Recordset walked with MoveNext and Fields(i).Value(): what
//               the application does
//   DriverRun   the PostgreSQL driver alone (DriverConnection::Run), values
//               as Variants
//   Libpq       the floor: a bare libpq loop, PQexecParams with binary
//               results, each value decoded from the wire into a C value
// and the ratios against the floor. Needs KELVARY_TEST_PG_CONNINFO, as
// printed by scripts/pg-test-server.sh; skips without it. The table
// kelvary_bench_walk is made on first use and kept (odbc_walk reads the same).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#ifdef KELVARY_HAVE_LIBPQ
#include <libpq-fe.h>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/drivers/DriverFactory.h"
#endif

namespace {

constexpr int kRows = 100000;
const char* const kTable = "kelvary_bench_walk";
const char* const kSelect =
    "SELECT id, first_name, last_name, birth, balance, visits FROM kelvary_bench_walk";

std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

#ifdef KELVARY_HAVE_LIBPQ

// What a walk adds up, so that nothing is optimised away and every path can
// be checked against the others.
struct Totals {
  int64_t ids = 0;
  int64_t text_bytes = 0;
  int64_t years = 0;
  double balance = 0;
  int64_t nulls = 0;
};

void Count(benchmark::State& state, const Totals& totals) {
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
}

// The application's connection string for the server the conninfo names.
std::string ProviderString() {
  static const std::pair<const char*, const char*> kKeys[] = {{"host", "Host"},
                                                              {"port", "Port"},
                                                              {"dbname", "Database"},
                                                              {"user", "User ID"},
                                                              {"password", "Password"}};
  std::istringstream words(Env("KELVARY_TEST_PG_CONNINFO"));
  std::string text = "Provider=PostgreSQL";
  std::string word;
  while (words >> word) {
    const size_t equals = word.find('=');
    for (const auto& [key, name] : kKeys) {
      if (word.compare(0, equals, key) == 0) text += std::string(";") + name + word.substr(equals);
    }
  }
  return text;
}

std::unique_ptr<kelvary::DriverConnection> Connect() {
  return kelvary::internal::OpenDriver(ProviderString(), "", "", 30);
}

void EnsureTable() {
  auto db = Connect();
  const auto count = db->Run("SELECT count(*) FROM information_schema.tables WHERE table_name = ?",
                             {kelvary::Variant(kTable)}, 0);
  if (kelvary::CLng(count.rows.Cell(0, 0)) > 0 &&
      kelvary::CLng(
          db->Run(std::string("SELECT count(*) FROM ") + kTable, {}, 0).rows.Cell(0, 0)) == kRows) {
    return;
  }
  db->Run(std::string("DROP TABLE IF EXISTS ") + kTable, {}, 0);
  db->Run(std::string("CREATE TABLE ") + kTable +
              " (id integer PRIMARY KEY, first_name varchar(40), last_name varchar(40),"
              " birth date, balance double precision, visits integer)",
          {}, 0);
  db->Run(std::string("INSERT INTO ") + kTable +
              " SELECT g, 'First' || g, 'Lastname-' || (g * 7919 % 100000),"
              " DATE '1940-01-01' + (g % 25000), g * 1.25,"
              " CASE WHEN g % 5 = 0 THEN NULL ELSE g % 40 END FROM generate_series(1, " +
              std::to_string(kRows) + ") g",
          {}, 0);
  db->Run(std::string("ANALYZE ") + kTable, {}, 0);
}

// Walk: one row's values, cell(i) the i-th.
template <class Cell>
void Walk(const Cell& cell, Totals& totals) {
  totals.ids += *cell(0).template Get<int32_t>();
  totals.text_bytes += static_cast<int64_t>(cell(1).Text().size() + cell(2).Text().size());
  totals.years += kelvary::Year(*cell(3).template Get<kelvary::Date>());
  totals.balance += *cell(4).template Get<double>();
  const kelvary::Variant& visits = cell(5);
  if (visits.IsNull()) {
    ++totals.nulls;
  } else {
    totals.ids += *visits.Get<int32_t>();
  }
}

void BM_Recordset(benchmark::State& state) {
  auto connection = std::make_shared<kelvary::Connection>();
  connection->CursorLocation(kelvary::adUseClient);
  connection->Open(ProviderString());
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    auto rs = std::make_shared<kelvary::Recordset>();
    rs->Open(kSelect, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    while (!rs->Eof()) {
      Walk([&](int32_t i) -> const kelvary::Variant& { return rs->Fields(i).Value(); }, totals);
      rs->MoveNext();
    }
    rs->Close();
    benchmark::DoNotOptimize(totals);
  }
  Count(state, totals);
}

void BM_DriverRun(benchmark::State& state) {
  auto db = Connect();
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    const kelvary::StatementResult r = db->Run(kSelect, {}, 0);
    for (size_t row = 0; row < r.rows.RowCount(); ++row) {
      Walk([&](size_t i) -> const kelvary::Variant& { return r.rows.Cell(row, i); }, totals);
    }
    benchmark::DoNotOptimize(totals);
  }
  Count(state, totals);
}

uint32_t Word(const char* p) {
  const auto* u = reinterpret_cast<const unsigned char*>(p);
  return (uint32_t{u[0]} << 24) | (uint32_t{u[1]} << 16) | (uint32_t{u[2]} << 8) | u[3];
}

// The year of a day counted from 2000-01-01.
int64_t YearOf(int32_t days) {
  int64_t z = int64_t{days} + 10957 + 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  return int64_t{yoe} + era * 400 + (mp >= 10 ? 1 : 0);
}

void BM_Libpq(benchmark::State& state) {
  PGconn* conn = PQconnectdb(Env("KELVARY_TEST_PG_CONNINFO").c_str());
  if (PQstatus(conn) != CONNECTION_OK) {
    state.SkipWithError(PQerrorMessage(conn));
    PQfinish(conn);
    return;
  }
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    PGresult* result = PQexecParams(conn, kSelect, 0, nullptr, nullptr, nullptr, nullptr, 1);
    const int rows = PQntuples(result);
    for (int r = 0; r < rows; ++r) {
      totals.ids += static_cast<int32_t>(Word(PQgetvalue(result, r, 0)));
      totals.text_bytes += PQgetlength(result, r, 1) + PQgetlength(result, r, 2);
      totals.years += YearOf(static_cast<int32_t>(Word(PQgetvalue(result, r, 3))));
      const char* balance = PQgetvalue(result, r, 4);
      const uint64_t bits = (uint64_t{Word(balance)} << 32) | Word(balance + 4);
      double value;
      std::memcpy(&value, &bits, sizeof value);
      totals.balance += value;
      if (PQgetisnull(result, r, 5)) {
        ++totals.nulls;
      } else {
        totals.ids += static_cast<int32_t>(Word(PQgetvalue(result, r, 5)));
      }
    }
    PQclear(result);
    benchmark::DoNotOptimize(totals);
  }
  Count(state, totals);
  PQfinish(conn);
}

// Keeps each benchmark's best wall-clock and processor time per walk over
// its repetitions (the machine may be shared; the best run is the one least
// disturbed) and prints them with the ratios. Processor time is this
// process's alone: the server's share of the work is in the wall clock only.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.iterations <= 0 || run.error_occurred) continue;
      const auto n = static_cast<double>(run.iterations);
      const Best now{run.real_accumulated_time / n, run.cpu_accumulated_time / n};
      auto [it, inserted] = best_.emplace(run.run_name.function_name, now);
      if (!inserted) {
        it->second.wall = std::min(it->second.wall, now.wall);
        it->second.cpu = std::min(it->second.cpu, now.cpu);
      }
    }
  }

  void PrintRatios() const {
    static constexpr std::pair<const char*, const char*> kShown[] = {
        {"BM_Recordset", "through Recordset"},
        {"BM_DriverRun", "the PostgreSQL driver (Run)"},
        {"BM_Libpq", "bare libpq, binary (the floor)"},
    };
    std::printf("\n%d-row walk, best of the repetitions, seconds per walk:\n", kRows);
    std::printf("  %-40s %8s %8s\n", "", "wall", "cpu");
    for (const auto& [name, title] : kShown) {
      if (const Best* b = Find(name)) std::printf("  %-40s %8.4f %8.4f\n", title, b->wall, b->cpu);
    }
    const auto ratio = [&](const char* title, const char* a, const char* b) {
      const Best* x = Find(a);
      const Best* y = Find(b);
      if (x == nullptr || y == nullptr || y->wall <= 0 || y->cpu <= 0) return;
      std::printf("  %-40s %7.2fx %7.2fx\n", title, x->wall / y->wall, x->cpu / y->cpu);
    };
    ratio("Recordset / bare libpq (aim: 1.3x)", "BM_Recordset", "BM_Libpq");
    ratio("driver / bare libpq", "BM_DriverRun", "BM_Libpq");
  }

 private:
  struct Best {
    double wall;
    double cpu;
  };
  const Best* Find(const char* name) const {
    const auto found = best_.find(name);
    return found == best_.end() ? nullptr : &found->second;
  }
  std::map<std::string, Best> best_;
};

#endif

}  // namespace

int main(int argc, char** argv) {
#ifndef KELVARY_HAVE_LIBPQ
  (void)argc;
  (void)argv;
  std::printf(
      "postgres_walk: this build has no PostgreSQL driver (libpq was not found); skipped\n");
  return 0;
#else
  if (Env("KELVARY_TEST_PG_CONNINFO").empty()) {
    std::printf(
        "postgres_walk: KELVARY_TEST_PG_CONNINFO is not set; skipped "
        "(eval \"$(scripts/pg-test-server.sh start)\" starts a test database)\n");
    return 0;
  }
  try {
    EnsureTable();
  } catch (const kelvary::Error& e) {
    std::fprintf(stderr, "postgres_walk: cannot prepare %s: %s\n", kTable, e.Description().c_str());
    return 1;
  }
  constexpr int kRepetitions = 5;
  using Walker = void (*)(benchmark::State&);
  const std::pair<const char*, Walker> walks[] = {
      {"BM_Recordset", BM_Recordset}, {"BM_DriverRun", BM_DriverRun}, {"BM_Libpq", BM_Libpq}};
  for (const auto& [name, walk] : walks) {
    benchmark::RegisterBenchmark(name, walk)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(kRepetitions);
  }
  // Repetitions of the benchmarks are interleaved, so that a busy spell on a
  // shared machine does not fall on one of them alone.
  std::vector<char*> args(argv, argv + argc);
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  args.insert(args.begin() + 1, interleave.data());
  int arg_count = static_cast<int>(args.size());
  benchmark::Initialize(&arg_count, args.data());
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  benchmark::Shutdown();
  return 0;
#endif
}
