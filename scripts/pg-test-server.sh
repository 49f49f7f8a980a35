#!/usr/bin/env bash
# A throw-away PostgreSQL server for the ODBC tests and benchmarks.
#
#   eval "$(scripts/pg-test-server.sh start)"   # start, and export its settings
#   scripts/pg-test-server.sh stop [folder]     # stop it and remove its folder
#
# start creates a temporary folder, runs initdb there, starts postgres on
# 127.0.0.1 on a free port (its unix socket in the same folder), creates the
# database kelvary_test owned by the user kelvary (password kelvary, allowed
# to create databases) and registers the ODBC data source kelvary_pg in a
# private odbc.ini and odbcinst.ini, with the PostgreSQL ODBC driver's
# logging switched off (the distribution's driver entry switches it on, and
# it is slow). It also registers the pool of data sources the shared test
# suites take one database each from: kelvary_pg_1 .. kelvary_pg_<pool>, the
# n-th naming the database kelvary_test_n (the tests create and drop those
# databases themselves; see tests/support/Backend.h). It prints, as export
# lines, the variables that point unixODBC and the tests at it:
#   KELVARY_PG_DIR             the folder (stop takes it from here)
#   ODBCSYSINI, ODBCINI        the private ODBC configuration
#   KELVARY_TEST_ODBC_DSN      the data source name (kelvary_pg)
#   KELVARY_TEST_ODBC_POOL     how many pool data sources there are
#   KELVARY_TEST_ODBC_CONNECT  the same database as a Driver={...} string
#   KELVARY_TEST_ODBC_USER, KELVARY_TEST_ODBC_PASSWORD
#   KELVARY_TEST_PG_CONNINFO   a libpq connection string (for benchmarks)
# stop stops that server by its own postmaster (pg_ctl, which reads the pid
# file) and removes the folder; it never touches any other postgres.
#
# PostgreSQL refuses to run as root: as root the server runs as the postgres
# system user (created by the distribution's package). Needs the packages
# postgresql and odbc-postgresql.
set -euo pipefail

db_name=kelvary_test
db_user=kelvary
db_password=kelvary
dsn_name=kelvary_pg
pool_size=${KELVARY_TEST_ODBC_POOL:-24}
driver_name="Kelvary PostgreSQL Unicode"

die() {
  echo "pg-test-server: $*" >&2
  exit 1
}

pg_bin_dir() {
  local dir
  if command -v pg_config >/dev/null 2>&1 && [ -x "$(pg_config --bindir)/initdb" ]; then
    pg_config --bindir
    return
  fi
  for dir in $(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V -r); do
    [ -x "$dir/initdb" ] && { echo "$dir"; return; }
  done
  die "no PostgreSQL server binaries (install the package postgresql)"
}

odbc_driver_path() {
  local path
  for path in /usr/lib/x86_64-linux-gnu/odbc/psqlodbcw.so /usr/lib/*/odbc/psqlodbcw.so \
              /usr/lib/odbc/psqlodbcw.so /usr/lib64/psqlodbcw.so /usr/local/lib/psqlodbcw.so; do
    [ -f "$path" ] && { echo "$path"; return; }
  done
  die "no PostgreSQL ODBC driver psqlodbcw.so (install the package odbc-postgresql)"
}

# as_server_user runs a command as the user that owns the server.
as_server_user() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

port_in_use() {
  (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

start() {
  local bin driver dir port tries
  bin=$(pg_bin_dir)
  driver=$(odbc_driver_path)
  if [ "$(id -u)" -eq 0 ]; then
    getent passwd postgres >/dev/null || die "running as root needs the postgres system user"
  fi

  dir=$(mktemp -d "${TMPDIR:-/tmp}/kelvary-pg.XXXXXX")
  chmod 755 "$dir"
  [ "$(id -u)" -eq 0 ] && chown postgres: "$dir"

  as_server_user "$bin/initdb" -D "$dir/data" -U postgres --auth-local=trust \
    --auth-host=scram-sha-256 -E UTF8 --locale=C.UTF-8 >"$dir/initdb.log" 2>&1 ||
    { cat "$dir/initdb.log" >&2; die "initdb failed"; }
  # A test server: durability is not wanted, speed is.
  cat >>"$dir/data/postgresql.conf" <<EOF
listen_addresses = '127.0.0.1'
unix_socket_directories = '$dir'
fsync = off
synchronous_commit = off
full_page_writes = off
max_connections = 120
autovacuum = off
EOF

  tries=0
  port=$((20000 + RANDOM % 20000))
  while :; do
    tries=$((tries + 1))
    [ "$tries" -le 20 ] || die "no free port found"
    port_in_use "$port" && { port=$((port + 1)); continue; }
    if as_server_user "$bin/pg_ctl" -D "$dir/data" -l "$dir/postgres.log" -w -t 60 \
         -o "-p $port" start >/dev/null; then
      break
    fi
    # Another process may have taken the port between the check and the start.
    grep -q "could not bind" "$dir/postgres.log" 2>/dev/null || { cat "$dir/postgres.log" >&2; die "postgres did not start"; }
    port=$((port + 1))
  done

  as_server_user "$bin/psql" -h "$dir" -p "$port" -U postgres -d postgres -v ON_ERROR_STOP=1 -q \
    -c "CREATE ROLE $db_user LOGIN CREATEDB PASSWORD '$db_password'" \
    -c "CREATE DATABASE $db_name OWNER $db_user ENCODING 'UTF8'" >/dev/null

  cat >"$dir/odbcinst.ini" <<EOF
[ODBC]
Trace = No

[$driver_name]
Description = PostgreSQL ODBC driver (Unicode), logging off
Driver = $driver
Debug = 0
CommLog = 0
UsageCount = 1
EOF
  cat >"$dir/odbc.ini" <<EOF
[$dsn_name]
Description = Kelvary test database
Driver = $driver_name
Servername = 127.0.0.1
Port = $port
Database = $db_name
Username = $db_user
Password = $db_password
BoolsAsChar = 0
Debug = 0
CommLog = 0
EOF
  local n
  for n in $(seq 1 "$pool_size"); do
    cat >>"$dir/odbc.ini" <<EOF

[${dsn_name}_$n]
Description = Kelvary test database, pool slot $n
Driver = $driver_name
Servername = 127.0.0.1
Port = $port
Database = ${db_name}_$n
Username = $db_user
Password = $db_password
BoolsAsChar = 0
Debug = 0
CommLog = 0
EOF
  done
  chmod 644 "$dir/odbcinst.ini" "$dir/odbc.ini"

  cat <<EOF
export KELVARY_PG_DIR='$dir'
export ODBCSYSINI='$dir'
export ODBCINI='$dir/odbc.ini'
export KELVARY_TEST_ODBC_DSN='$dsn_name'
export KELVARY_TEST_ODBC_POOL='$pool_size'
export KELVARY_TEST_ODBC_CONNECT='Driver={$driver_name};Servername=127.0.0.1;Port=$port;Database=$db_name;BoolsAsChar=0'
export KELVARY_TEST_ODBC_USER='$db_user'
export KELVARY_TEST_ODBC_PASSWORD='$db_password'
export KELVARY_TEST_PG_CONNINFO='host=127.0.0.1 port=$port dbname=$db_name user=$db_user password=$db_password'
EOF
  echo "pg-test-server: PostgreSQL running on 127.0.0.1:$port, folder $dir" >&2
}

stop() {
  local dir=${1:-${KELVARY_PG_DIR:-}}
  [ -n "$dir" ] || die "stop: which server? (give its folder or set KELVARY_PG_DIR)"
  [ -d "$dir" ] || { echo "pg-test-server: $dir is gone already" >&2; return 0; }
  case "$(basename "$dir")" in kelvary-pg.*) ;; *) die "stop: $dir is not a test-server folder" ;; esac
  if [ -f "$dir/data/postmaster.pid" ]; then
    as_server_user "$(pg_bin_dir)/pg_ctl" -D "$dir/data" -m fast -w -t 60 stop >/dev/null ||
      echo "pg-test-server: pg_ctl stop failed (see $dir/postgres.log)" >&2
  fi
  rm -rf "$dir"
  echo "pg-test-server: stopped and removed $dir" >&2
}

case "${1:-}" in
  start) start ;;
  stop) stop "${2:-}" ;;
  *) echo "usage: $0 start | stop [folder]" >&2; exit 2 ;;
esac
