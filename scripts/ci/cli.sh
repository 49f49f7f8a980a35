#!/usr/bin/env bash
# CI: the kelvary command against the demo practice on SQLite and on
# PostgreSQL (a throw-away server of its own, through ODBC), then the
# installed package: the program finds its demo data, the example host
# builds with CMake and with pkg-config and runs.
#
#   scripts/ci/cli.sh [BUILD_DIR]     (default build; built here if needed)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=${1:-build}

./scripts/install-deps.sh postgresql odbc-postgresql
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELVARY_BUILD_BENCHMARKS=OFF >/dev/null
fi
cmake --build "$build" -j "$(nproc 2>/dev/null || echo 2)" --target kelvary_cli practice_host >/dev/null
kelvary=$PWD/$build/tools/kelvary/kelvary

work=$(mktemp -d)
pg_dir=""
cleanup() {
  [ -n "$pg_dir" ] && ./scripts/pg-test-server.sh stop "$pg_dir" || true
  rm -rf "$work"
}
trap cleanup EXIT

fail() {
  echo "CI cli: $*" >&2
  exit 1
}

# expect STATUS DESCRIPTION COMMAND...: runs a command, keeps its output in
# $work/out, and fails unless it exits with STATUS.
expect() {
  local want=$1 what=$2 status=0
  shift 2
  "$@" >"$work/out" 2>"$work/err" || status=$?
  if [ "$status" != "$want" ]; then
    echo "--- stdout"; head -40 "$work/out"; echo "--- stderr"; head -20 "$work/err"
    fail "$what: exit status $status, expected $want"
  fi
}

# --- the demo practice on both engines --------------------------------------
"$kelvary" demo "$work/demo" >/dev/null
sqlite=(--system "$work/demo/system.db" --main "$work/demo/main.db")

eval "$(./scripts/pg-test-server.sh start)"
pg_dir=$KELVARY_PG_DIR
pg() {  # pg <database> <psql arguments...>
  local db=$1
  shift
  psql "$KELVARY_TEST_PG_CONNINFO dbname=$db" -X -q -v ON_ERROR_STOP=1 "$@"
}
pg kelvary_test -c "CREATE DATABASE kelvary_test_1" -c "CREATE DATABASE kelvary_test_2"
pg kelvary_test_1 -1 -f data/system_schema.sql -f data/demo_system.sql
pg kelvary_test_2 -1 -f data/main_schema.sql -f data/demo_main.sql
postgres=(--system kelvary_pg_1 --main kelvary_pg_2 --dialect oracle)

# Rows compared in any order and letter case: the server folds names and
# returns rows without ORDER BY in an order of its own.
normal() { tr '[:upper:]' '[:lower:]' <"$work/out" | sort; }

for engine in sqlite postgres; do
  declare -n on="$engine"
  start=$SECONDS
  expect 0 "$engine: queries" "$kelvary" queries "${on[@]}" --format csv
  [ "$(grep -c . "$work/out")" = 15 ] || fail "$engine: queries lists $(grep -c . "$work/out") lines, not 15"
  normal >"$work/queries.$engine"
  for query in "1" "9" "1 --template 1" "3 --template 2" "4 --record 1:1" "6 --where 1=Cities.ID=13" "7"; do
    # shellcheck disable=SC2086
    expect 0 "$engine: query $query" "$kelvary" query "${on[@]}" --query $query --format json
    # shellcheck disable=SC2086
    expect 0 "$engine: query $query" "$kelvary" query "${on[@]}" --query $query
    sed -n '/^Rows:$/,$p' "$work/out" | tr '[:upper:]' '[:lower:]' | sort >"$work/query.$engine.${query// /_}"
  done
  expect 0 "$engine: lookup description" "$kelvary" lookup description "${on[@]}" --link 1 --code 7
  grep -q "Dunmore" "$work/out" || fail "$engine: lookup description does not find Dunmore"
  expect 0 "$engine: lookup code" "$kelvary" lookup code "${on[@]}" --table Cities --field Description --code 13
  grep -q "Juniper Bay" "$work/out" || fail "$engine: lookup code does not find Juniper Bay"
  expect 0 "$engine: lookup value" "$kelvary" lookup value "${on[@]}" --table patients --field ID --by LastName --text Martin --format csv
  expect 0 "$engine: lookup multi" "$kelvary" lookup multi "${on[@]}" --multi 1 --parent 19
  grep -q "Pollen , Aspirin" "$work/out" || fail "$engine: lookup multi does not list the allergies"
  expect 0 "$engine: lookup link" "$kelvary" lookup link "${on[@]}" --table patients --format json
  expect 0 "$engine: key" "$kelvary" key "${on[@]}" --table patients --field ID --method all --dry-run
  grep -q "cgmDynamicTables *301" "$work/out" || fail "$engine: key by method 3 is not 301"
  expect 0 "$engine: MaxID" "$kelvary" lookup value "${on[@]}" --table DataTables --field MaxID --code 1 --source system --format csv
  grep -q ",300," "$work/out" || fail "$engine: the dry run left its key behind: $(cat "$work/out")"
  expect 0 "$engine: regno" "$kelvary" key "${on[@]}" --regno --first john --last smith
  expect 0 "$engine: check" "$kelvary" check "${on[@]}"
  grep -q ": no problems$" "$work/out" || fail "$engine: check finds problems in the demo"
  echo "kelvary on $engine: every command ran ($((SECONDS - start)) s)"
done
unset -n on
diff "$work/queries.sqlite" "$work/queries.postgres" || fail "queries differ between the engines"
for f in "$work"/query.sqlite.*; do
  diff "$f" "${f/sqlite/postgres}" >/dev/null || fail "query ${f##*.} prints other rows on PostgreSQL"
done
expect 0 "clause" "$kelvary" clause date-range --field VisitDate --from 2024-03-05 --to 2024-03-07

# Three faults in the server's configuration (the tests break a SQLite copy
# the same way): three findings, exit status 1.
breaks=("UPDATE FillNSearchLinks SET SearchDisplayField = 'Descr' WHERE ID = 1"
        "UPDATE MultiSelects SET StoreTable = 42 WHERE ID = 1"
        "UPDATE Queries SET SqlStmt = REPLACE(SqlStmt, 'patients, Cities', 'patients, Towns') WHERE ID = 6")
for sql in "${breaks[@]}"; do
  pg kelvary_test_1 -c "$sql"
done
expect 1 "postgres: check of the broken copy" "$kelvary" check "${postgres[@]}"
[ "$(grep -c '^search link 1: \|^multi-select 1: \|^query 6 ' "$work/out")" = 3 ] ||
  fail "postgres: check does not report the three faults: $(cat "$work/out")"
echo "kelvary check on postgres: the three faults found"
./scripts/pg-test-server.sh stop "$pg_dir"
pg_dir=""

# --- the installed package ----------------------------------------------------
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
for f in bin/kelvary share/kelvary/data/system_schema.sql share/kelvary/data/demo_main.sql \
         include/kelvary/service/InfoLink.h; do
  [ -f "$prefix/$f" ] || fail "cmake --install did not place $f"
done
pc=$(find "$prefix" -name kelvary.pc | head -1)
[ -n "$pc" ] || fail "cmake --install did not place kelvary.pc"
expect 0 "installed kelvary demo" "$prefix/bin/kelvary" demo "$work/installed-demo"
grep -q "300 patients" "$work/out" || fail "the installed kelvary did not find its demo data"
cmake -S examples -B "$work/examples" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/examples" >/dev/null
expect 0 "example host (CMake)" "$work/examples/practice_host" "$work/demo/system.db" "$work/demo/main.db"
grep -q "city 7 is Dunmore" "$work/out" || fail "the example host did not look city 7 up"
# shellcheck disable=SC2046
g++ examples/practice_host.cpp -o "$work/practice_host_pc" \
  $(PKG_CONFIG_PATH="$(dirname "$pc")" pkg-config --cflags --libs kelvary)
expect 0 "example host (pkg-config)" "$work/practice_host_pc" "$work/demo/system.db" "$work/demo/main.db"
echo "installed package: program, demo data, headers, kelvary.pc; the example host builds both ways"
echo "CI cli: all steps passed"
