#!/usr/bin/env bash
# CI: every test again on the two servers, and the demo's stored queries on
# each server against the embedded default.
#
#   scripts/ci/engines.sh            install, start both servers, run the
#                                    tests in build and build-sanitize, then
#                                    compare; stops the servers on exit
#   scripts/ci/engines.sh compare    the comparison alone, on servers already
#                                    started (their settings in the
#                                    environment, as the two server scripts
#                                    export them)
#
# With the servers there the tests that skip without them run too: the ODBC
# driver's tests, the shaping layer's over ODBC, the PostgreSQL driver's own
# tests, and the /PostgreSQL (ODBC), /PostgreSQL_libpq (PostgreSQL's own
# client) and /MariaDB instances of each test of the shared suites. No test
# may skip.
#
# The comparison loads the demo practice into two databases on each server
# (the ones behind the data sources <dsn>_1 and <dsn>_2 of the pool), then
# prints with `kelvary query` every stored query, alone and with each of its
# templates, in each of the three dialect settings, from the SQLite demo and
# from each server (PostgreSQL twice: through ODBC by data-source name, and
# through the PostgreSQL driver by the databases' postgresql:// URIs); the rows must be the same, in any order and with the
# header in lower case (PostgreSQL folds names, and a server returns rows
# without ORDER BY in an order of its own).
set -euo pipefail
cd "$(dirname "$0")/../.."

kelvary=build/tools/kelvary/kelvary

pg() {  # pg <database> <psql arguments...>
  local db=$1
  shift
  psql "$KELVARY_TEST_PG_CONNINFO dbname=$db" -X -q -v ON_ERROR_STOP=1 "$@"
}

maria() {  # maria <database> <mariadb arguments...>
  local db=$1
  shift
  # shellcheck disable=SC2086
  mariadb $KELVARY_TEST_MARIADB_CLIENT --database="$db" "$@"
}

load_demo() {
  pg kelvary_test -c "DROP DATABASE IF EXISTS kelvary_test_1" \
    -c "DROP DATABASE IF EXISTS kelvary_test_2" \
    -c "CREATE DATABASE kelvary_test_1" -c "CREATE DATABASE kelvary_test_2"
  pg kelvary_test_1 -1 -f data/system_schema.sql -f data/demo_system.sql
  pg kelvary_test_2 -1 -f data/main_schema.sql -f data/demo_main.sql
  maria kelvary_test -e "DROP DATABASE IF EXISTS kelvary_test_1; DROP DATABASE IF EXISTS kelvary_test_2;
                         CREATE DATABASE kelvary_test_1; CREATE DATABASE kelvary_test_2;"
  cat data/system_schema.sql data/demo_system.sql | maria kelvary_test_1
  cat data/main_schema.sql data/demo_main.sql | maria kelvary_test_2
}

# The runs: every stored query alone and with each of its templates, each
# in the three dialect settings. Read from the demo itself, so that a query
# or template added to the demo is compared too.
runs() {
  local system_db=$1 query template dialect
  for query in $(sqlite3 "$system_db" "SELECT ID FROM Queries ORDER BY ID"); do
    for dialect in access oracle sqlserver; do
      echo "$query --dialect $dialect"
      for template in $(sqlite3 "$system_db" \
                          "SELECT ID FROM QueryTemplates WHERE QueryID = $query ORDER BY ID"); do
        echo "$query --template $template --dialect $dialect"
      done
    done
  done
}

# pg_uri: the test server's control database as a postgresql:// URI; its
# pool databases are the same with _<n> appended.
pg_uri() {
  local word host="" port="" user="" password=""
  for word in $KELVARY_TEST_PG_CONNINFO; do
    case $word in
      host=*) host=${word#host=} ;;
      port=*) port=${word#port=} ;;
      user=*) user=${word#user=} ;;
      password=*) password=${word#password=} ;;
    esac
  done
  echo "postgresql://$user:$password@$host:$port/kelvary_test"
}

compare() {
  local demo_dir run on_sqlite on_server server system main failed=0 runs_file
  local servers=(PostgreSQL PostgreSQL_libpq MariaDB)
  local -A matching=([PostgreSQL]=0 [PostgreSQL_libpq]=0 [MariaDB]=0)
  local -A sources=([PostgreSQL]="${KELVARY_TEST_ODBC_DSN}" [PostgreSQL_libpq]="$(pg_uri)"
                    [MariaDB]="${KELVARY_TEST_MARIADB_DSN}")
  load_demo
  demo_dir=$(mktemp -d)
  "$kelvary" demo "$demo_dir" >/dev/null
  # The rows, or the whole output of a query the host runs (no rows printed).
  rows_of() {
    local out
    out=$(cat)
    if grep -q '^Rows:$' <<<"$out"; then
      sed -n '/^Rows:$/,$p' <<<"$out" | tr '[:upper:]' '[:lower:]' | sort
    else
      tr '[:upper:]' '[:lower:]' <<<"$out" | sort
    fi
  }
  runs_file=$(mktemp)
  runs "$demo_dir/system.db" >"$runs_file"
  while read -r run; do
    # shellcheck disable=SC2086
    on_sqlite=$("$kelvary" query --system "$demo_dir/system.db" --main "$demo_dir/main.db" \
                  --query $run 2>&1 | rows_of)
    if [ -z "$on_sqlite" ]; then
      echo "CI: kelvary query --query $run prints nothing on SQLite" >&2
      failed=1
      continue
    fi
    for server in "${servers[@]}"; do
      system="${sources[$server]}_1"
      main="${sources[$server]}_2"
      # shellcheck disable=SC2086
      on_server=$("$kelvary" query --system "$system" --main "$main" --query $run 2>&1 | rows_of)
      if [ "$on_server" != "$on_sqlite" ]; then
        echo "CI: kelvary query --query $run on $server does not print the demo's rows" >&2
        diff <(echo "$on_sqlite") <(echo "$on_server") | head -20 >&2 || true
        failed=1
      else
        matching[$server]=$((matching[$server] + 1))
      fi
    done
  done <"$runs_file"
  local total
  total=$(grep -c . "$runs_file")
  rm -rf "$demo_dir" "$runs_file"
  for server in "${servers[@]}"; do
    echo "kelvary query on $server: ${matching[$server]} of $total runs print SQLite's rows"
  done
  return "$failed"
}

run_tests() {
  local build_dir log jobs
  jobs=$(nproc 2>/dev/null || echo 2)
  for build_dir in build build-sanitize; do
    log=$(mktemp)
    (cd "$build_dir" && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
       ctest --output-on-failure --no-tests=error -j "$jobs") | tee "$log"
    if grep -q "(Skipped)" "$log"; then
      echo "CI: tests skipped in $build_dir although both servers are running" >&2
      exit 1
    fi
    grep -q "PostgreSQL.*Passed" "$log" || { echo "CI: no PostgreSQL test ran" >&2; exit 1; }
    grep -q "PostgreSQL_libpq.*Passed" "$log" ||
      { echo "CI: no test ran through the PostgreSQL driver" >&2; exit 1; }
    grep -q "MariaDB.*Passed" "$log" || { echo "CI: no MariaDB test ran" >&2; exit 1; }
    rm -f "$log"
  done
}

if [ "${1:-}" = compare ]; then
  compare
  exit
fi

started=$(date +%s)
./scripts/install-deps.sh postgresql odbc-postgresql mariadb-server odbc-mariadb sqlite3
pg_dir=""
mariadb_dir=""
stop_servers() {
  [ -z "$mariadb_dir" ] || ./scripts/mariadb-test-server.sh stop "$mariadb_dir"
  [ -z "$pg_dir" ] || ./scripts/pg-test-server.sh stop "$pg_dir"
}
trap stop_servers EXIT
pg_env=$(./scripts/pg-test-server.sh start)
eval "$pg_env"
pg_dir=$KELVARY_PG_DIR
mariadb_env=$(./scripts/mariadb-test-server.sh start)
eval "$mariadb_env"
mariadb_dir=$KELVARY_MARIADB_DIR

run_tests
compare
echo "CI: the engines block took $(($(date +%s) - started)) s"
