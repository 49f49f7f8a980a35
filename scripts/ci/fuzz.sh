#!/usr/bin/env bash
# CI: every fuzz target of tests/fuzz for a short while (FUZZ_SECONDS each,
# 60 by default), one after the other, with AddressSanitizer and
# UndefinedBehaviorSanitizer, starting from its seed corpus. Any finding (a
# crash, a sanitizer report, a broken check, an input slower than 10 s, or
# more than 2 GB of memory) fails the step; the input is kept under
# $FUZZ_ARTIFACTS (a temporary folder by default) and its path and the
# target's last lines are printed. Seeds stay as they are: new inputs go to
# a scratch copy of the corpus.
#   FUZZ_SECONDS=600 scripts/ci/fuzz.sh            # ten minutes per target
#   FUZZ_SECONDS=60 scripts/ci/fuzz.sh script dialect   # some targets only
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${FUZZ_SECONDS:-60}
# A fixed seed, so that a run in CI repeats the mutations tried before it
# landed (FUZZ_SEED=0 lets libFuzzer pick a new seed each run).
seed=${FUZZ_SEED:-1}
./scripts/install-deps.sh clang libclang-rt-14-dev
clangxx=$(command -v clang++ || true)
if [ -z "$clangxx" ]; then
  echo "fuzz: clang++ is not installed; the fuzz targets need clang's libFuzzer" >&2
  exit 1
fi

build=${FUZZ_BUILD_DIR:-build-fuzz}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER="$clangxx" \
      -DKELVARY_FUZZ=ON -DKELVARY_BUILD_TESTS=OFF -DKELVARY_BUILD_BENCHMARKS=OFF >/dev/null
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in tests/fuzz/fuzz_*.cpp; do
    name=$(basename "$source" .cpp)
    targets+=("${name#fuzz_}")
  done
fi
cmake --build "$build" -j "$(nproc 2>/dev/null || echo 2)" \
      --target "${targets[@]/#/fuzz_}" >/dev/null

artifacts=${FUZZ_ARTIFACTS:-$(mktemp -d)}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
for target in "${targets[@]}"; do
  corpus="$scratch/$target"
  mkdir -p "$corpus" "$artifacts/$target"
  log="$artifacts/$target.log"
  started=$(date +%s)
  status=0
  "$build/tests/fuzz/fuzz_$target" -seed="$seed" -max_total_time="$seconds" -max_len=4096 -timeout=10 \
      -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$artifacts/$target/" \
      "$corpus" "tests/fuzz/corpus/$target" >"$log" 2>&1 || status=$?
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' | tail -1 || echo "?")
  echo "fuzz $target: $runs executions in $(( $(date +%s) - started )) s, exit $status"
  if [ "$status" -ne 0 ]; then
    failed+=("$target")
    echo "---- fuzz $target found a fault; the input: $(ls "$artifacts/$target"/* 2>/dev/null | head -1)" >&2
    grep -E 'CHECK FAILED|^input:|ERROR:|SUMMARY:|runtime error|#[0-9]+ 0x' "$log" | head -40 >&2
    echo "---- full output: $log" >&2
  fi
done
if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzz: findings in ${failed[*]} (inputs under $artifacts)" >&2
  exit 1
fi
echo "fuzz: ${#targets[@]} targets, ${seconds} s each, nothing found"
