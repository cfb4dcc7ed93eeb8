#!/usr/bin/env bash
# A throwaway local MariaDB server for development, tests and the demo.
#
#   scripts/db.sh start                 initialise (first time) and start the server
#   scripts/db.sh stop                  stop it
#   scripts/db.sh status                say whether it runs
#   scripts/db.sh create NAME [DIR]     (re)create database NAME from db/schema.sql and
#                                       write DIR/CorvanaDataImporter.ini (DIR defaults to .)
#   scripts/db.sh ini NAME [DIR]        only write DIR/CorvanaDataImporter.ini for NAME
#   scripts/db.sh sql NAME [ARGS...]    run the mariadb client on NAME (SQL on stdin)
#
# Environment: CORVANA_DB_DIR (default <repo>/build/db), CORVANA_DB_PORT (3399),
# CORVANA_DB_USER (corvana), CORVANA_DB_PASSWORD (corvana), CORVANA_DB_SQL_MODE
# (the server's global sql_mode, default NO_ENGINE_SUBSTITUTION as on the
# Corvana application's server; the tests start a second, strict server with it),
# CORVANA_DB_SERVER_ARGS (further server options, split at blanks, such as the
# TLS certificates of the tests' TLS server).
#
# The server listens on 127.0.0.1 only and keeps everything (data, socket, pid,
# log) inside the db dir, so it runs as root or as an ordinary user alike.
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
dir=${CORVANA_DB_DIR:-$repo/build/db}
port=${CORVANA_DB_PORT:-3399}
user=${CORVANA_DB_USER:-corvana}
password=${CORVANA_DB_PASSWORD:-corvana}
sql_mode=${CORVANA_DB_SQL_MODE-NO_ENGINE_SUBSTITUTION}
read -r -a server_args <<<"${CORVANA_DB_SERVER_ARGS:-}"

die() { echo "db.sh: $*" >&2; exit 1; }

[[ $port =~ ^[0-9]+$ ]] || die "CORVANA_DB_PORT must be a number, not '$port'"
dir=$(realpath -m "$dir")
data=$dir/data
sock=$dir/mariadb.sock
pidfile=$dir/mariadb.pid
log=$dir/mariadb.err
# A unix socket path must fit in 108 bytes.
(( ${#sock} < 108 )) || die "socket path too long: $sock (set CORVANA_DB_DIR shorter)"

# Root over the socket: the administrative account, created without a password.
admin() { mariadb --no-defaults --socket="$sock" --user=root; }

# The program's account over TCP, as the importer connects.
client() {
  MYSQL_PWD=$password mariadb --no-defaults --protocol=TCP --host=127.0.0.1 \
    --port="$port" --user="$user" "$@"
}

# Quote a text as an SQL string literal.
sql_text() { local s=${1//\\/\\\\}; printf "'%s'" "${s//\'/\'\'}"; }

server_pid() {
  [[ -f $pidfile ]] || return 1
  local pid
  pid=$(<"$pidfile")
  [[ -n $pid ]] && kill -0 "$pid" 2>/dev/null && echo "$pid"
}

running() {
  server_pid >/dev/null &&
    mariadb-admin --no-defaults --socket="$sock" --user=root ping >/dev/null 2>&1
}

require_running() {
  running || echo "select 1" | client >/dev/null 2>&1 ||
    die "server not running (start it with scripts/db.sh start)"
}

check_name() {
  [[ $1 =~ ^[A-Za-z0-9_]+$ ]] || die "database name must be letters, digits and _: '$1'"
}

cmd_start() {
  if running; then
    echo "MariaDB already running on 127.0.0.1:$port (pid $(server_pid), dir $dir)"
    return
  fi
  # A server started from another checkout (another CORVANA_DB_DIR) that
  # answers on the port with our account serves as well.
  if echo "select 1" | client >/dev/null 2>&1; then
    echo "MariaDB already answering on 127.0.0.1:$port (not started from $dir)"
    return
  fi
  # mariadbd lives in sbin, which an ordinary user's PATH may lack.
  local server
  server=$(PATH=$PATH:/usr/sbin:/sbin command -v mariadbd) ||
    die "mariadbd not found (install the mariadb-server package)"
  mkdir -p "$dir/tmp"
  if [[ ! -d $data/mysql ]]; then
    echo "Initialising data directory $data"
    mariadb-install-db --no-defaults --datadir="$data" --user="$(id -un)" \
      --auth-root-authentication-method=normal --skip-test-db \
      --skip-name-resolve >"$dir/install.log" 2>&1 ||
      { tail -n 20 "$dir/install.log" >&2; die "mariadb-install-db failed (see $dir/install.log)"; }
  fi

  # The application's server mode: permissive sql_mode (zero and empty dates
  # accepted, over-long texts cut with a warning) and latin1. The rest trades
  # durability for speed, which a throwaway server does not need.
  setsid "$server" --no-defaults \
    --user="$(id -un)" --datadir="$data" --tmpdir="$dir/tmp" \
    --socket="$sock" --pid-file="$pidfile" --log-error="$log" \
    --bind-address=127.0.0.1 --port="$port" --skip-name-resolve \
    --sql-mode="$sql_mode" \
    --character-set-server=latin1 --collation-server=latin1_swedish_ci \
    --skip-log-bin --innodb-flush-log-at-trx-commit=2 --innodb-doublewrite=0 \
    --innodb-buffer-pool-size=64M --innodb-log-file-size=16M \
    "${server_args[@]}" \
    </dev/null >>"$log" 2>&1 &
  local pid=$!

  local waited=0
  until mariadb-admin --no-defaults --socket="$sock" --user=root ping >/dev/null 2>&1; do
    if ! kill -0 "$pid" 2>/dev/null || (( waited >= 300 )); then
      kill "$pid" 2>/dev/null || true
      echo "---- last lines of $log ----" >&2
      tail -n 25 "$log" >&2 || true
      die "MariaDB did not come up on 127.0.0.1:$port"
    fi
    sleep 0.1
    waited=$((waited + 1))
  done

  local u p host
  u=$(sql_text "$user")
  p=$(sql_text "$password")
  for host in 127.0.0.1 localhost; do
    admin <<SQL
CREATE USER IF NOT EXISTS $u@'$host' IDENTIFIED BY $p;
ALTER USER $u@'$host' IDENTIFIED BY $p;
GRANT ALL PRIVILEGES ON *.* TO $u@'$host';
SQL
  done
  echo "MariaDB running on 127.0.0.1:$port (pid $pid, dir $dir, user $user)"
}

cmd_stop() {
  local pid
  if ! pid=$(server_pid); then
    echo "MariaDB not running (dir $dir)"
    rm -f "$pidfile"
    return
  fi
  mariadb-admin --no-defaults --socket="$sock" --user=root shutdown >/dev/null 2>&1 ||
    kill "$pid" 2>/dev/null || true
  local waited=0
  while kill -0 "$pid" 2>/dev/null; do
    (( waited < 300 )) || die "MariaDB (pid $pid) did not stop within 30s"
    sleep 0.1
    waited=$((waited + 1))
  done
  echo "MariaDB stopped (dir $dir)"
}

cmd_status() {
  if running; then
    echo "MariaDB running on 127.0.0.1:$port (pid $(server_pid), dir $dir, user $user)"
  else
    echo "MariaDB not running (dir $dir)"
    return 1
  fi
}

cmd_create() {
  local name=${1:-} out=${2:-.}
  [[ -n $name ]] || die "usage: scripts/db.sh create NAME [DIR]"
  check_name "$name"
  require_running
  client <<SQL
DROP DATABASE IF EXISTS \`$name\`;
CREATE DATABASE \`$name\` DEFAULT CHARACTER SET latin1;
SQL
  client --database="$name" <"$repo/db/schema.sql"
  cmd_ini "$name" "$out"
  echo "Created database $name; wrote $(cd "$out" && pwd)/CorvanaDataImporter.ini"
}

cmd_ini() {
  local name=${1:-} out=${2:-.}
  [[ -n $name ]] || die "usage: scripts/db.sh ini NAME [DIR]"
  check_name "$name"
  mkdir -p "$out"
  cat >"$out/CorvanaDataImporter.ini" <<INI
[MYSQL]
Server=127.0.0.1
Port=$port
Database=$name
Username=$user
Password=$password
INI
}

cmd_sql() {
  local name=${1:-}
  [[ -n $name ]] || die "usage: scripts/db.sh sql NAME [mariadb args...]"
  check_name "$name"
  shift
  require_running
  client --database="$name" "$@"
}

case ${1:-} in
  start) cmd_start ;;
  stop) cmd_stop ;;
  status) cmd_status ;;
  create) shift; cmd_create "$@" ;;
  ini) shift; cmd_ini "$@" ;;
  sql) shift; cmd_sql "$@" ;;
  *) die "usage: scripts/db.sh start|stop|status|create NAME [DIR]|ini NAME [DIR]|sql NAME [mariadb args...]" ;;
esac
