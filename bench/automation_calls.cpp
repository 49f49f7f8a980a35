// What a late-bound call costs: a host that has looked a member's dispatch
// ID up once and calls by it, a host that looks the name up on every call
// (as a script does), and the same member called directly in C++ for the
// ratio. Two members: a property read of a number, and a method taking and
// returning text.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/service/InfoLink.h"

namespace {

using namespace kelvary;
using namespace kelvary::automation;

void Rate(benchmark::State& state) {
  state.counters["calls/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_PropertyRead_Direct(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  InfoLink& native = *NativeOf<InfoLink>(link.get());
  native.CurrentUserID = 7;
  for (auto _ : state) {
    Variant v(native.CurrentUserID);
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

void BM_PropertyRead_CachedId(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  Let(*link, "CurrentUserID", 7);
  const DispId id = link->GetIdOfName("CurrentUserID");
  Args none;
  for (auto _ : state) {
    Variant v = link->Invoke(id, kInvokePropertyGet | kInvokeMethod, none);
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

void BM_PropertyRead_ByName(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  Let(*link, "CurrentUserID", 7);
  Args none;
  for (auto _ : state) {
    Variant v = CallByName(*link, "currentuserid", kInvokePropertyGet | kInvokeMethod, none);
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

void BM_TextMethod_Direct(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  InfoLink& native = *NativeOf<InfoLink>(link.get());
  const std::string text = "O'Neil";
  for (auto _ : state) {
    Variant v(native.GetInvertedCommaSafeString(text));
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

void BM_TextMethod_CachedId(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  const DispId id = link->GetIdOfName("GetInvertedCommaSafeString");
  Args args{Arg{"O'Neil"}};
  for (auto _ : state) {
    Variant v = link->Invoke(id, kInvokeMethod, args);
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

void BM_TextMethod_ByName(benchmark::State& state) {
  auto link = CreateObject("Kelvary.InfoLink");
  Args args{Arg{"O'Neil"}};
  for (auto _ : state) {
    Variant v = CallByName(*link, "GetInvertedCommaSafeString", kInvokeMethod, args);
    benchmark::DoNotOptimize(v);
  }
  Rate(state);
}

BENCHMARK(BM_PropertyRead_Direct);
BENCHMARK(BM_PropertyRead_CachedId);
BENCHMARK(BM_PropertyRead_ByName);
BENCHMARK(BM_TextMethod_Direct);
BENCHMARK(BM_TextMethod_CachedId);
BENCHMARK(BM_TextMethod_ByName);

}  // namespace

BENCHMARK_MAIN();
