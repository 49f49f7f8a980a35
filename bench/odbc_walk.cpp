// The 100,000-row walk against a client/server database through ODBC: an
// integer key, two texts, a date, a double and a nullable integer, read in
// full and every value touched. Side by side:
//   DriverRun   our ODBC driver (DriverConnection::Run), values as Variants
//   Recordset   the same through Connection (the application's connection
//               string naming the data source) and a Recordset walked with
//               MoveNext and Fields(i).Value()
//   PlainOdbc   a plain ODBC loop over the same driver: bound columns, block
//               fetch of 1,000 rows, typed C values
//   Libpq       PostgreSQL's own client library (PQexec, text values parsed),
//               when the build found it
//   LibpqVariants  libpq's rows turned into the same Variant cells as ours:
//               what a native PostgreSQL driver would cost
// and the ratios. Needs KELVARY_TEST_ODBC_DSN (and KELVARY_TEST_PG_CONNINFO
// for libpq), as printed by scripts/pg-test-server.sh; skips without them.
// The table kelvary_bench_walk is made on first use and kept.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#ifdef KELVARY_HAVE_ODBC
#include <sql.h>
#include <sqlext.h>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/drivers/odbc/OdbcDriver.h"
#endif
#ifdef KELVARY_HAVE_LIBPQ
#include <libpq-fe.h>
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

#ifdef KELVARY_HAVE_ODBC

// What a walk adds up, so that nothing is optimised away and every path can
// be checked against the others.
struct Totals {
  int64_t ids = 0;
  int64_t text_bytes = 0;
  int64_t years = 0;
  double balance = 0;
  int64_t nulls = 0;
};

std::unique_ptr<kelvary::DriverConnection> Connect() {
  return kelvary::OpenOdbcConnection("DSN=" + Env("KELVARY_TEST_ODBC_DSN"), "", "");
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

void BM_DriverRun(benchmark::State& state) {
  auto db = Connect();
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    const kelvary::StatementResult r = db->Run(kSelect, {}, 0);
    const size_t rows = r.rows.RowCount();
    for (size_t row = 0; row < rows; ++row) {
      totals.ids += *r.rows.Cell(row, 0).Get<int32_t>();
      totals.text_bytes += static_cast<int64_t>(r.rows.Cell(row, 1).Text().size() +
                                                r.rows.Cell(row, 2).Text().size());
      totals.years += kelvary::Year(*r.rows.Cell(row, 3).Get<kelvary::Date>());
      totals.balance += *r.rows.Cell(row, 4).Get<double>();
      const kelvary::Variant& visits = r.rows.Cell(row, 5);
      if (visits.IsNull()) {
        ++totals.nulls;
      } else {
        totals.ids += *visits.Get<int32_t>();
      }
    }
    benchmark::DoNotOptimize(totals);
  }
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
}

void BM_Recordset(benchmark::State& state) {
  auto connection = std::make_shared<kelvary::Connection>();
  connection->CursorLocation(kelvary::adUseClient);
  connection->Open("Provider=MSDataShape.1;Persist Security Info=False;Data Source=" +
                   Env("KELVARY_TEST_ODBC_DSN") + ";Data Provider=MSDASQL");
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    auto rs = std::make_shared<kelvary::Recordset>();
    rs->Open(kSelect, connection, kelvary::adOpenStatic, kelvary::adLockReadOnly);
    while (!rs->Eof()) {
      totals.ids += *rs->Fields(0).Value().Get<int32_t>();
      totals.text_bytes += static_cast<int64_t>(rs->Fields(1).Value().Text().size() +
                                                rs->Fields(2).Value().Text().size());
      totals.years += kelvary::Year(*rs->Fields(3).Value().Get<kelvary::Date>());
      totals.balance += *rs->Fields(4).Value().Get<double>();
      const kelvary::Variant& visits = rs->Fields(5).Value();
      if (visits.IsNull()) {
        ++totals.nulls;
      } else {
        totals.ids += *visits.Get<int32_t>();
      }
      rs->MoveNext();
    }
    rs->Close();
    benchmark::DoNotOptimize(totals);
  }
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
}

void Must(SQLRETURN rc, const char* what) {
  if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA) {
    std::fprintf(stderr, "%s failed (%d)\n", what, rc);
    std::exit(1);
  }
}

void BM_PlainOdbc(benchmark::State& state) {
  SQLHENV env;
  SQLHDBC dbc;
  Must(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env), "env");
  Must(SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0),
       "version");
  Must(SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc), "dbc");
  std::string dsn = "DSN=" + Env("KELVARY_TEST_ODBC_DSN");
  Must(SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR*>(dsn.data()), SQL_NTS, nullptr, 0,
                        nullptr, SQL_DRIVER_NOPROMPT),
       "connect");

  constexpr SQLULEN kBlock = 1000;
  std::vector<SQLINTEGER> id(kBlock), visits(kBlock);
  std::vector<char> first(kBlock * 41), last(kBlock * 41);
  std::vector<SQL_DATE_STRUCT> birth(kBlock);
  std::vector<double> balance(kBlock);
  std::vector<SQLLEN> ind[6];
  for (auto& i : ind)
    i.resize(kBlock);
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    SQLHSTMT stmt;
    Must(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt), "stmt");
    SQLULEN fetched = 0;
    SQLSetStmtAttr(stmt, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kBlock), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    Must(SQLExecDirect(stmt, reinterpret_cast<SQLCHAR*>(const_cast<char*>(kSelect)), SQL_NTS),
         "execute");
    SQLBindCol(stmt, 1, SQL_C_SLONG, id.data(), 0, ind[0].data());
    SQLBindCol(stmt, 2, SQL_C_CHAR, first.data(), 41, ind[1].data());
    SQLBindCol(stmt, 3, SQL_C_CHAR, last.data(), 41, ind[2].data());
    SQLBindCol(stmt, 4, SQL_C_TYPE_DATE, birth.data(), 0, ind[3].data());
    SQLBindCol(stmt, 5, SQL_C_DOUBLE, balance.data(), 0, ind[4].data());
    SQLBindCol(stmt, 6, SQL_C_SLONG, visits.data(), 0, ind[5].data());
    SQLRETURN rc;
    while ((rc = SQLFetch(stmt)) != SQL_NO_DATA) {
      Must(rc, "fetch");
      for (SQLULEN r = 0; r < fetched; ++r) {
        totals.ids += id[r];
        totals.text_bytes += ind[1][r] + ind[2][r];
        totals.years += birth[r].year;
        totals.balance += balance[r];
        if (ind[5][r] == SQL_NULL_DATA) {
          ++totals.nulls;
        } else {
          totals.ids += visits[r];
        }
      }
    }
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    benchmark::DoNotOptimize(totals);
  }
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
  SQLDisconnect(dbc);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc);
  SQLFreeHandle(SQL_HANDLE_ENV, env);
}

#ifdef KELVARY_HAVE_LIBPQ
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
    PGresult* result = PQexec(conn, kSelect);
    const int rows = PQntuples(result);
    for (int r = 0; r < rows; ++r) {
      totals.ids += std::strtol(PQgetvalue(result, r, 0), nullptr, 10);
      totals.text_bytes += PQgetlength(result, r, 1) + PQgetlength(result, r, 2);
      totals.years += std::strtol(PQgetvalue(result, r, 3), nullptr, 10);
      totals.balance += std::strtod(PQgetvalue(result, r, 4), nullptr);
      if (PQgetisnull(result, r, 5)) {
        ++totals.nulls;
      } else {
        totals.ids += std::strtol(PQgetvalue(result, r, 5), nullptr, 10);
      }
    }
    PQclear(result);
    benchmark::DoNotOptimize(totals);
  }
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
  PQfinish(conn);
}

// What a native PostgreSQL driver would cost: libpq's result turned into the
// same Variant cells our driver hands the cursor engine, then the same walk.
void BM_LibpqVariants(benchmark::State& state) {
  PGconn* conn = PQconnectdb(Env("KELVARY_TEST_PG_CONNINFO").c_str());
  if (PQstatus(conn) != CONNECTION_OK) {
    state.SkipWithError(PQerrorMessage(conn));
    PQfinish(conn);
    return;
  }
  Totals totals;
  for (auto _ : state) {
    totals = Totals{};
    PGresult* result = PQexec(conn, kSelect);
    const int rows = PQntuples(result);
    std::vector<kelvary::Variant> cells;
    cells.reserve(static_cast<size_t>(rows) * 6);
    for (int r = 0; r < rows; ++r) {
      for (int c = 0; c < 6; ++c) {
        if (PQgetisnull(result, r, c)) {
          cells.push_back(kelvary::Variant::Null());
          continue;
        }
        const char* text = PQgetvalue(result, r, c);
        switch (c) {
          case 0:
          case 5:
            cells.emplace_back(static_cast<int32_t>(std::strtol(text, nullptr, 10)));
            break;
          case 3: {
            const int year = static_cast<int>(std::strtol(text, nullptr, 10));
            const int month = static_cast<int>(std::strtol(text + 5, nullptr, 10));
            const int day = static_cast<int>(std::strtol(text + 8, nullptr, 10));
            cells.emplace_back(kelvary::DateSerial(year, month, day));
            break;
          }
          case 4:
            cells.emplace_back(std::strtod(text, nullptr));
            break;
          default:
            cells.emplace_back(std::string(text, static_cast<size_t>(PQgetlength(result, r, c))));
        }
      }
    }
    PQclear(result);
    for (size_t row = 0; row < static_cast<size_t>(rows); ++row) {
      const kelvary::Variant* cell = &cells[row * 6];
      totals.ids += *cell[0].Get<int32_t>();
      totals.text_bytes += static_cast<int64_t>(cell[1].Text().size() + cell[2].Text().size());
      totals.years += kelvary::Year(*cell[3].Get<kelvary::Date>());
      totals.balance += *cell[4].Get<double>();
      if (cell[5].IsNull()) {
        ++totals.nulls;
      } else {
        totals.ids += *cell[5].Get<int32_t>();
      }
    }
    benchmark::DoNotOptimize(totals);
  }
  state.counters["rows"] = static_cast<double>(kRows);
  state.counters["check"] = static_cast<double>(totals.ids + totals.text_bytes + totals.years);
  PQfinish(conn);
}
#endif

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
        {"BM_DriverRun", "our ODBC driver (Run)"},
        {"BM_Recordset", "through Recordset"},
        {"BM_PlainOdbc", "plain ODBC loop"},
        {"BM_Libpq", "libpq"},
        {"BM_LibpqVariants", "libpq into Variants (a native driver)"},
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
    ratio("ours / plain ODBC", "BM_DriverRun", "BM_PlainOdbc");
    ratio("Recordset / plain ODBC", "BM_Recordset", "BM_PlainOdbc");
    ratio("plain ODBC / libpq", "BM_PlainOdbc", "BM_Libpq");
    ratio("ours / libpq", "BM_DriverRun", "BM_Libpq");
    ratio("ours / native driver", "BM_DriverRun", "BM_LibpqVariants");
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
#ifndef KELVARY_HAVE_ODBC
  (void)argc;
  (void)argv;
  std::printf("odbc_walk: this build has no ODBC driver (unixODBC was not found); skipped\n");
  return 0;
#else
  if (Env("KELVARY_TEST_ODBC_DSN").empty()) {
    std::printf(
        "odbc_walk: KELVARY_TEST_ODBC_DSN is not set; skipped "
        "(eval \"$(scripts/pg-test-server.sh start)\" starts a test database)\n");
    return 0;
  }
  try {
    EnsureTable();
  } catch (const kelvary::Error& e) {
    std::fprintf(stderr, "odbc_walk: cannot prepare %s: %s\n", kTable, e.Description().c_str());
    return 1;
  }
  constexpr int kRepetitions = 5;
  benchmark::RegisterBenchmark("BM_DriverRun", BM_DriverRun)
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(kRepetitions);
  benchmark::RegisterBenchmark("BM_Recordset", BM_Recordset)
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(kRepetitions);
  benchmark::RegisterBenchmark("BM_PlainOdbc", BM_PlainOdbc)
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(kRepetitions);
#ifdef KELVARY_HAVE_LIBPQ
  if (!Env("KELVARY_TEST_PG_CONNINFO").empty()) {
    benchmark::RegisterBenchmark("BM_Libpq", BM_Libpq)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(kRepetitions);
    benchmark::RegisterBenchmark("BM_LibpqVariants", BM_LibpqVariants)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(kRepetitions);
  }
#endif
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
