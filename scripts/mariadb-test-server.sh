#!/usr/bin/env bash
# A throw-away MariaDB server for the ODBC tests.
#
#   eval "$(scripts/mariadb-test-server.sh start)"   # start, and export its settings
#   scripts/mariadb-test-server.sh stop [folder]     # stop it and remove its folder
#
# start creates a temporary folder, runs mariadb-install-db there, starts
# mariadbd on 127.0.0.1 on a free port (its socket in the same folder),
# creates the database kelvary_test and the user kelvary (password kelvary,
# allowed everything, so that it can create and drop the test databases)
# and registers the ODBC data source kelvary_mariadb and the pool
# kelvary_mariadb_1 .. kelvary_mariadb_<pool>, the n-th naming the database
# kelvary_test_n (the tests create and empty those databases themselves; see
# tests/support/Backend.h).
#
# The data sources go into a private odbc.ini and odbcinst.ini. When
# ODBCSYSINI and ODBCINI already point at a private configuration (the
# PostgreSQL test server's), its entries are copied first, so that both
# servers' data sources are reachable at once.
#
# The server names tables without regard to case (lower_case_table_names=1),
# as the desktop database does, and the data sources ask the ODBC driver
# for the rows an UPDATE matched rather than those it changed (OPTION=2),
# which is what the write-back of an unchanged row counts on.
#
# It prints, as export lines:
#   KELVARY_MARIADB_DIR             the folder (stop takes it from here)
#   ODBCSYSINI, ODBCINI             the private ODBC configuration
#   KELVARY_TEST_MARIADB_DSN        the data source name (kelvary_mariadb)
#   KELVARY_TEST_MARIADB_POOL       how many pool data sources there are
#   KELVARY_TEST_MARIADB_CONNECT    the same database as a Driver={...} string
#   KELVARY_TEST_MARIADB_USER, KELVARY_TEST_MARIADB_PASSWORD
#   KELVARY_TEST_MARIADB_CLIENT     the command-line client's arguments
# stop stops that server by its own pid file and removes the folder; it
# never touches any other server. Needs the packages mariadb-server and
# odbc-mariadb. As root the server runs as the mysql system user.
set -euo pipefail

db_name=kelvary_test
db_user=kelvary
db_password=kelvary
dsn_name=kelvary_mariadb
pool_size=${KELVARY_TEST_MARIADB_POOL:-24}
driver_name="Kelvary MariaDB Unicode"

die() {
  echo "mariadb-test-server: $*" >&2
  exit 1
}

odbc_driver_path() {
  local path
  for path in /usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so /usr/lib/*/odbc/libmaodbc.so \
              /usr/lib/odbc/libmaodbc.so /usr/lib64/libmaodbc.so /usr/local/lib/libmaodbc.so; do
    [ -f "$path" ] && { echo "$path"; return; }
  done
  die "no MariaDB ODBC driver libmaodbc.so (install the package odbc-mariadb)"
}

server_binary() {
  local path
  for path in /usr/sbin/mariadbd /usr/bin/mariadbd /usr/sbin/mysqld; do
    [ -x "$path" ] && { echo "$path"; return; }
  done
  die "no MariaDB server binary (install the package mariadb-server)"
}

port_in_use() {
  (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

client() {  # client <socket> <arguments...>
  local socket=$1
  shift
  mariadb --no-defaults --protocol=socket --socket="$socket" -u root "$@"
}

start() {
  local server driver dir port tries run_as=() pid
  server=$(server_binary)
  driver=$(odbc_driver_path)
  command -v mariadb-install-db >/dev/null || die "no mariadb-install-db (install mariadb-server)"

  dir=$(mktemp -d "${TMPDIR:-/tmp}/kelvary-mariadb.XXXXXX")
  chmod 755 "$dir"
  if [ "$(id -u)" -eq 0 ]; then
    getent passwd mysql >/dev/null || die "running as root needs the mysql system user"
    chown mysql: "$dir"
    run_as=(--user=mysql)
  fi

  mariadb-install-db --no-defaults "${run_as[@]}" --datadir="$dir/data" \
    --auth-root-authentication-method=socket --skip-test-db >"$dir/install.log" 2>&1 ||
    { cat "$dir/install.log" >&2; die "mariadb-install-db failed"; }

  tries=0
  port=$((20000 + RANDOM % 20000))
  while :; do
    tries=$((tries + 1))
    [ "$tries" -le 20 ] || die "no free port found"
    port_in_use "$port" && { port=$((port + 1)); continue; }
    # A test server: durability is not wanted, speed is.
    "$server" --no-defaults "${run_as[@]}" --datadir="$dir/data" --socket="$dir/mysqld.sock" \
      --pid-file="$dir/mysqld.pid" --log-error="$dir/mysqld.log" --bind-address=127.0.0.1 \
      --port="$port" --lower-case-table-names=1 --character-set-server=utf8mb4 \
      --collation-server=utf8mb4_general_ci --explicit-defaults-for-timestamp=ON \
      --skip-log-bin --innodb-flush-log-at-trx-commit=0 --sync-binlog=0 \
      --innodb-buffer-pool-size=64M --innodb-log-file-size=16M --max-connections=300 \
      --skip-name-resolve >/dev/null 2>&1 &
    pid=$!
    # Ready when the socket answers; gone when the process ended.
    for _ in $(seq 1 600); do
      client "$dir/mysqld.sock" -e "SELECT 1" >/dev/null 2>&1 && break
      kill -0 "$pid" 2>/dev/null || break
      sleep 0.1
    done
    client "$dir/mysqld.sock" -e "SELECT 1" >/dev/null 2>&1 && break
    kill -0 "$pid" 2>/dev/null && { kill "$pid"; wait "$pid" 2>/dev/null || true; }
    # Another process may have taken the port between the check and the start.
    grep -q -i "bind on TCP/IP port\|address already in use" "$dir/mysqld.log" 2>/dev/null ||
      { cat "$dir/mysqld.log" >&2; die "mariadbd did not start"; }
    port=$((port + 1))
  done

  client "$dir/mysqld.sock" -e "
    CREATE USER '$db_user'@'127.0.0.1' IDENTIFIED BY '$db_password';
    CREATE USER '$db_user'@'localhost' IDENTIFIED BY '$db_password';
    GRANT ALL PRIVILEGES ON *.* TO '$db_user'@'127.0.0.1';
    GRANT ALL PRIVILEGES ON *.* TO '$db_user'@'localhost';
    CREATE DATABASE $db_name CHARACTER SET utf8mb4;"

  : >"$dir/odbcinst.ini"
  : >"$dir/odbc.ini"
  if [ -n "${ODBCSYSINI:-}" ] && [ -f "$ODBCSYSINI/odbcinst.ini" ]; then
    cat "$ODBCSYSINI/odbcinst.ini" >>"$dir/odbcinst.ini"
    echo >>"$dir/odbcinst.ini"
  else
    printf '[ODBC]\nTrace = No\n\n' >>"$dir/odbcinst.ini"
  fi
  if [ -n "${ODBCINI:-}" ] && [ -f "$ODBCINI" ]; then
    cat "$ODBCINI" >>"$dir/odbc.ini"
    echo >>"$dir/odbc.ini"
  fi
  cat >>"$dir/odbcinst.ini" <<EOF
[$driver_name]
Description = MariaDB ODBC driver (Unicode)
Driver = $driver
Threading = 0
UsageCount = 1
EOF
  local n
  for n in "" $(seq 1 "$pool_size"); do
    cat >>"$dir/odbc.ini" <<EOF
[${dsn_name}${n:+_$n}]
Description = Kelvary test database${n:+, pool slot $n}
Driver = $driver_name
Server = 127.0.0.1
Port = $port
Database = ${db_name}${n:+_$n}
User = $db_user
Password = $db_password
Option = 2

EOF
  done
  chmod 644 "$dir/odbcinst.ini" "$dir/odbc.ini"

  cat <<EOF
export KELVARY_MARIADB_DIR='$dir'
export ODBCSYSINI='$dir'
export ODBCINI='$dir/odbc.ini'
export KELVARY_TEST_MARIADB_DSN='$dsn_name'
export KELVARY_TEST_MARIADB_POOL='$pool_size'
export KELVARY_TEST_MARIADB_CONNECT='Driver={$driver_name};Server=127.0.0.1;Port=$port;Database=$db_name;Option=2'
export KELVARY_TEST_MARIADB_USER='$db_user'
export KELVARY_TEST_MARIADB_PASSWORD='$db_password'
export KELVARY_TEST_MARIADB_CLIENT='--no-defaults --protocol=tcp --host=127.0.0.1 --port=$port --user=$db_user --password=$db_password'
EOF
  echo "mariadb-test-server: MariaDB running on 127.0.0.1:$port, folder $dir" >&2
}

stop() {
  local dir=${1:-${KELVARY_MARIADB_DIR:-}} pid
  [ -n "$dir" ] || die "stop: which server? (give its folder or set KELVARY_MARIADB_DIR)"
  [ -d "$dir" ] || { echo "mariadb-test-server: $dir is gone already" >&2; return 0; }
  case "$(basename "$dir")" in kelvary-mariadb.*) ;; *) die "stop: $dir is not a test-server folder" ;; esac
  if [ -f "$dir/mysqld.pid" ]; then
    pid=$(cat "$dir/mysqld.pid")
    if kill "$pid" 2>/dev/null; then
      for _ in $(seq 1 600); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
      done
      kill -0 "$pid" 2>/dev/null && echo "mariadb-test-server: mariadbd $pid did not stop" >&2
    fi
  fi
  rm -rf "$dir"
  echo "mariadb-test-server: stopped and removed $dir" >&2
}

case "${1:-}" in
  start) start ;;
  stop) stop "${2:-}" ;;
  *) echo "usage: $0 start | stop [folder]" >&2; exit 2 ;;
esac
