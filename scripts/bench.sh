#!/usr/bin/env bash
# Benchmarks every import job on synthetic input against the local MariaDB.
#
#   scripts/bench.sh [--scale F] [--growth] [--no-floor] [--no-xml] [--jobs PATTERN] [--durable | --rtt MS] [--windows]
#
# For each job: generates its input with bench/gen/ (default sizes times F),
# makes a fresh database (scripts/db.sh create), runs the job's prerequisite
# jobs (not measured), then runs the job under /usr/bin/time with the server's
# general log on, and takes rows written and statements sent from the
# program's summary on stderr. The floor: the captured statement stream is
# replayed by bench/replay.c on a second database holding the same
# prerequisite rows (a dump of the first), also with the general log on, and
# the table gives the job's wall time over the replay's. Before each timed run
# the server is left to write back its dirty pages. Then the XML reader's
# benchmark against pugixml.
#
#   --scale F      every input F times its default size (0.05: a smoke run)
#   --growth       each job at 1x, 2x and 4x its input (times F), time and
#                  memory only (no replay), and how they grow per doubling
#   --no-floor     no general log capture and no replay
#   --no-xml       no XML reader benchmark
#   --jobs RE      only the jobs whose name matches the extended regex RE
#   --windows      two more rows: KWRC and the CSAQ_PKS patient import run by
#                  the Windows build under Wine (scripts/build-windows.sh), to
#                  compare the work per statement with the Linux build's rows;
#                  the wall times include what Wine adds to each round trip
#   --durable      each job as a plain run and as an -atomic run, on the local
#                  server and on a second server of the script's own with
#                  production settings (innodb_flush_log_at_trx_commit=1,
#                  doublewrite on, binary log on with sync_binlog=1): wall
#                  times only (no replay, no XML benchmark)
#   --rtt MS       each job as a plain run and as an -atomic run, directly on
#                  the local server and through bench/delay_proxy.cpp, which
#                  adds MS milliseconds to every round trip (the job's ini
#                  file names the proxy's port): the program as against a
#                  distant server; wall times only (no replay, no XML
#                  benchmark)
#
# Starts the server with scripts/db.sh start (a running one is reused and left
# running). Environment as for scripts/db.sh (CORVANA_DB_DIR, CORVANA_DB_PORT,
# ...); CORVANA_BENCH_DIR (default build-bench) holds the build, the inputs
# and each run's logs. Installs what it needs and lacks: python3 and time, and
# for the XML benchmark libbenchmark-dev and libpugixml-dev (the program never
# links pugixml).
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
db="$repo/scripts/db.sh"
tool="$repo/bench/bench_tool.py"

scale=1
growth=0
floor=1
xml=1
only=""
windows=0
durable=0
rtt=""
while [[ $# -gt 0 ]]; do
  case $1 in
    --scale) scale=${2:?--scale needs a factor}; shift 2 ;;
    --growth) growth=1; shift ;;
    --no-floor) floor=0; shift ;;
    --no-xml) xml=0; shift ;;
    --jobs) only=${2:?--jobs needs a pattern}; shift 2 ;;
    --windows) windows=1; shift ;;
    --durable) durable=1; shift ;;
    --rtt) rtt=${2:?--rtt needs milliseconds}; shift 2 ;;
    *) echo "usage: scripts/bench.sh [--scale F] [--growth] [--no-floor] [--no-xml] [--jobs PATTERN] [--durable | --rtt MS] [--windows]" >&2; exit 2 ;;
  esac
done
if [[ -n $rtt ]]; then
  [[ $rtt =~ ^[0-9]+$ ]] || { echo "bench.sh: --rtt must be a whole number of milliseconds" >&2; exit 2; }
  (( durable )) && { echo "bench.sh: --rtt and --durable are separate runs" >&2; exit 2; }
fi
(( durable )) || [[ -n $rtt ]] && { floor=0; growth=0; xml=0; }
[[ $scale =~ ^[0-9]*\.?[0-9]+$ ]] || { echo "bench.sh: --scale must be a positive number" >&2; exit 2; }
(( growth )) && floor=0

work=$(realpath -m "${CORVANA_BENCH_DIR:-$repo/build-bench}")
port=${CORVANA_DB_PORT:-3399}
user=${CORVANA_DB_USER:-corvana}
password=${CORVANA_DB_PASSWORD:-corvana}

# ---------------------------------------------------------------------------
# Families: generator, its count option and default count, what it counts.
declare -A gen_script=([kwrc]=kwrc_gen.py [dswc]=dswc_gen.py [glfh]=glfh_gen.py [uprc]=uprc_gen.py
  [sbr]=sbr_gen.py [csaq_pks]=csaq_pks_gen.py [csaq_ff]=csaq_ff_gen.py)
declare -A gen_counts=([kwrc]="cases=20000" [dswc]="admissions=20000 contacts=5000" [glfh]="lines=20000"
  [uprc]="lines=20000" [sbr]="lines=20000" [csaq_pks]="animals=50000" [csaq_ff]="animals=20000")

# Jobs: name | family | prerequisites ("sql FILE" or "run ORG TYPE YEAR [REGION]",
# separated by ";") | the measured run (ORG TYPE YEAR [REGION]) | its input
# files (separated by ","). Only jobs whose input grows with the organisation's
# records are here: the species, habitat and taxonomy lists and the repairs
# read fixed reference data or no file.
ff_patient="run CSAQ_FF species 2016;run CSAQ_FF habitats 2016;run CSAQ_FF patient 2016"
pks_files="Animals.xml,Notes.xml,Transactions.xml,Identifiers.xml,Measurements.xml,EnclosureMoves.xml,CensusCounts.xml"
jobs=(
  "KWRC patient|kwrc|sql settings.sql|KWRC patient 2012|KWRC_2012.txt"
  "DsWC patient 2011|dswc|run DsWC species 2011|DsWC patient 2011|2011Admissions.txt"
  "DsWC patient 2014|dswc|run DsWC species 2014|DsWC patient 2014|2014Admissions.txt"
  "DsWC address_book|dswc||DsWC address_book 2011|AddressBook.txt"
  "GLFH patient|glfh||GLFH patient 2012|GLFH_Patients.txt"
  "UPRC patient|uprc||UPRC patient 2012|UPRC 2012.txt"
  "SBR_LA patient|sbr|run SBR_LA species 2016|SBR_LA patient 2016 LA|SBR_LA.txt"
  "SBR_LA band_sightings|sbr|run SBR_LA species 2016;run SBR_LA patient 2016 LA|SBR_LA band_sightings 2016|BandSightings/BandSightings.txt"
  "SBR_LA necropsy|sbr|run SBR_LA species 2016;run SBR_LA patient 2016 LA|SBR_LA necropsy 2016|Necropsy.txt"
  "CSAQ_PKS patient|csaq_pks|sql species.sql;run CSAQ_PKS habitats 2015|CSAQ_PKS patient 2015|$pks_files"
  "CSAQ_FF water_chemistry|csaq_ff|run CSAQ_FF habitats 2016|CSAQ_FF water_chemistry 2016|WaterChem.xml,Habitats.xml"
  "CSAQ_FF patient|csaq_ff|run CSAQ_FF species 2016;run CSAQ_FF habitats 2016|CSAQ_FF patient 2016|Groups.xml,Husbandry.xml,Habitats.xml,HabitatCensus.xml,SpeciesAbbreviations.xml"
  "CSAQ_FF rehab|csaq_ff|run CSAQ_FF species 2016|CSAQ_FF rehab 2016|SeaTurtleRehabRecords.xml"
  "CSAQ_FF biometrics|csaq_ff|$ff_patient;run CSAQ_FF rehab 2016|CSAQ_FF biometrics 2016|LoggerHeadDailyLogs.xml,SnakeStatTable.xml"
  "CSAQ_FF vital_stats|csaq_ff|$ff_patient|CSAQ_FF vital_stats 2016|Husbandry.xml"
  "CSAQ_FF invert_species_groups|csaq_ff|$ff_patient|CSAQ_FF invert_species_groups 2016|InvertebrateSpecies.txt"
)

# The Windows build's rows: the same jobs, named with this suffix.
wine_suffix=" (Windows, Wine)"
if (( windows )); then
  jobs+=("KWRC patient$wine_suffix|kwrc|sql settings.sql|KWRC patient 2012|KWRC_2012.txt"
    "CSAQ_PKS patient$wine_suffix|csaq_pks|sql species.sql;run CSAQ_PKS habitats 2015|CSAQ_PKS patient 2015|$pks_files")
fi

log() { echo "bench: $*" >&2; }

# ---------------------------------------------------------------------------
# Build: the program, the replay client and (with --xml) the XML benchmark, in
# a build of their own so the normal build and its tests are left alone.

install_bench_packages() {
  local missing=() p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [[ ${#missing[@]} -eq 0 ]] && return
  log "installing ${missing[*]}"
  local sudo=""
  [[ $(id -u) -eq 0 ]] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
}

"$repo/scripts/install-deps.sh"
# python3 for the generators and the tables, time for /usr/bin/time; the
# benchmark library and pugixml for the XML benchmark only.
bench_packages=(python3 time)
(( xml )) && bench_packages+=(libbenchmark-dev libpugixml-dev)
install_bench_packages "${bench_packages[@]}"
mkdir -p "$work"
log "building in $work"
cmake -S "$repo" -B "$work" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANA_TESTS=OFF -DCORVANA_BENCH=ON \
  -DCORVANA_BENCH_XML=$( (( xml )) && echo ON || echo OFF) >"$work/cmake.log" 2>&1 ||
  { tail -20 "$work/cmake.log" >&2; exit 1; }
cmake --build "$work" -j2 >>"$work/cmake.log" 2>&1 || { tail -30 "$work/cmake.log" >&2; exit 1; }
program="$work/CorvanaDataImporter"
replay="$work/bench/replay"
proxy="$work/delay_proxy"
linux_program=$program
if (( windows )); then
  "$repo/scripts/build-windows.sh" >&2
  windows_dir=$(realpath -m "${CORVANA_WINDOWS_DIR:-$repo/build-windows}")
  export WINEPREFIX=$windows_dir/wine-prefix WINEDEBUG=-all
  [[ -f $WINEPREFIX/system.reg ]] || wine wineboot --init >/dev/null 2>&1 || true
  wine_program=$windows_dir/wine-run
  # One command for /usr/bin/time, as the Linux program is.
  printf '#!/bin/sh\nexec wine %q "$@"\n' "$windows_dir/CorvanaDataImporter.exe" >"$wine_program"
  chmod +x "$wine_program"
fi

"$db" start >&2

# The server the next commands talk to: the local one, or (--durable) the
# production-like one of the script's own.
on_durable=0
durable_env=()
dbcmd() {
  if (( on_durable )); then env "${durable_env[@]}" "$db" "$@"; else "$db" "$@"; fi
}
sql() { dbcmd sql "$@"; }
if (( durable )); then
  durable_dir="$work/durable-db"
  durable_port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
  mkdir -p "$durable_dir"
  durable_env=(CORVANA_DB_DIR="$durable_dir" CORVANA_DB_PORT="$durable_port"
    CORVANA_DB_SERVER_ARGS="--innodb_flush_log_at_trx_commit=1 --innodb_doublewrite=1 --log-bin=$durable_dir/binlog --sync_binlog=1 --server-id=1")
  log "starting the production-like server on port $durable_port"
  env "${durable_env[@]}" "$db" start >&2
fi

# The general log goes to a file of ours for the measured run only; the
# server's own setting comes back afterwards, also when the script is stopped.
saved_log_file=$(echo "select @@global.general_log_file" | sql mysql -N)
restore_log() { echo "set global general_log=0; set global general_log_file='$saved_log_file'" | sql mysql || true; }
# Databases of the run in progress, dropped however the script ends.
run_databases=()
drop_run_databases() {
  local name
  for name in "${run_databases[@]}"; do sql mysql <<<"drop database if exists \`$name\`" || true; done
  run_databases=()
}
stop_durable() { (( durable )) && env "${durable_env[@]}" "$db" stop >&2 || true; }
proxy_pid=""
stop_proxy() { [[ -n $proxy_pid ]] && kill "$proxy_pid" 2>/dev/null || true; }
# Without a capture the general log is not ours to touch: another developer's
# benchmark on the shared server may be capturing.
trap 'if (( floor )); then restore_log; fi; drop_run_databases; stop_durable; stop_proxy' EXIT

# ---------------------------------------------------------------------------
# Inputs

scaled() { python3 -c "import sys; print(max(1, round(int(sys.argv[1]) * float(sys.argv[2]))))" "$1" "$2"; }

# Generates (once) the family's input at the given factor; prints its dir and
# its size in words ("20000 cases").
input_dir() {
  local family=$1 factor=$2 dir="$work/input/$1-x$2" args=() words="" pair name count
  for pair in ${gen_counts[$family]}; do
    name=${pair%%=*}
    count=$(scaled "${pair#*=}" "$factor")
    args+=(--"$name" "$count")
    words+="${words:+ }$count $name"
  done
  if [[ ! -f $dir/.complete ]]; then
    log "generating $family x$factor: ${args[*]}"
    rm -rf "$dir"
    python3 "$repo/bench/gen/${gen_script[$family]}" "${args[@]}" --seed 1 --out "$dir"
    touch "$dir/.complete"
  fi
  echo "$dir|$words"
}

# ---------------------------------------------------------------------------
# One measured run

# Waits (30 s at most) until the server has stopped writing for a second, so
# that a timed run does not share it with the writes left by what came before
# (a database just loaded or dropped, the previous run).
settle() {
  local i writes last=""
  for ((i = 0; i < 30; i++)); do
    writes=$(echo "select variable_value from information_schema.global_status
        where variable_name='INNODB_DATA_WRITES'" | sql mysql -N)
    [[ $writes == "$last" ]] && return
    last=$writes
    sleep 1
  done
}

# Turns the general log on, into FILE.
general_log_to() { echo "set global general_log_file='$1'; set global general_log=1" | sql mysql; }

run_job() {  # DIR ORG TYPE YEAR [REGION]: runs the program in DIR, output to files named by the run
  local dir=$1 out=$2; shift 2
  local args=(-org "$1" -type "$2" -year "$3")
  [[ $# -ge 4 ]] && args+=(-region "$4")
  args+=("${extra_args[@]}")
  (cd "$dir" && /usr/bin/time -f "%U	%S	%e	%M" -o "$out.time" "$program" "${args[@]}" >"$out.log" 2>"$out.err")
}

prepare() {  # DATABASE DIR PREREQUISITES: a fresh database with the prerequisite rows
  local name=$1 dir=$2 steps=$3 step steps_list step_words
  dbcmd create "$name" "$dir" >/dev/null
  local saved_extra=("${extra_args[@]}")
  extra_args=()
  IFS=';' read -r -a steps_list <<<"$steps"
  for step in "${steps_list[@]}"; do
    [[ -z $step ]] && continue
    read -r -a step_words <<<"$step"
    case ${step_words[0]} in
      sql) sql "$name" <"$dir/${step_words[1]}" ;;
      run) run_job "$dir" "$runs/prerequisite" "${step_words[@]:1}" ;;
    esac
  done
  extra_args=("${saved_extra[@]}")
}
extra_args=()

measure() {  # JOB-LINE FACTOR: one measured run, one line to $results
  local name family steps measured files run_words file_list
  IFS='|' read -r name family steps measured files <<<"$1"
  local factor=$2 info dir words
  info=$(input_dir "$family" "$factor")
  dir=${info%%|*}
  words=${info#*|}
  local slug
  slug=$(echo "$name" | tr -c 'A-Za-z0-9\n' '_')
  # Short: the program's ini reader keeps database names of 31 characters.
  run_number=$((run_number + 1))
  local base="bench$$_$run_number"
  run_databases=("${base}_a" "${base}_b")
  local out="$runs/${slug}x$factor"
  log "$name x$factor: preparing"
  prepare "${base}_a" "$dir" "$steps"
  if (( floor )); then
    MYSQL_PWD=$password mariadb-dump --no-defaults --protocol=TCP --host=127.0.0.1 --port="$port" \
      --user="$user" --single-transaction "${base}_a" >"$out.dump"
    "$db" create "${base}_b" "$runs/replay-ini" >/dev/null
    sql "${base}_b" <"$out.dump"
    rm -f "$out.dump"
  fi
  settle
  if (( floor )); then
    rm -f "$out.general"
    general_log_to "$out.general"
  fi
  # The job runs on the first database: DIR's ini file names it (the second
  # one's ini file went elsewhere).
  log "$name x$factor: running"
  read -r -a run_words <<<"$measured"
  [[ $name == *"$wine_suffix" ]] && program=$wine_program
  run_job "$dir" "$out" "${run_words[@]}"
  program=$linux_program
  (( floor )) && restore_log
  local summary bytes=0 f
  summary=$(python3 "$tool" summary "$out.err")
  IFS=',' read -r -a file_list <<<"$files"
  for f in "${file_list[@]}"; do bytes=$((bytes + $(stat -c %s "$dir/$f"))); done
  local replay_fields="-	-	-	-	-"
  if (( floor )); then
    local captured sent
    sent=$(echo "$summary" | cut -d' ' -f2)
    captured=$(python3 "$tool" capture "$out.general" "${base}_a" "$sent" "$out.stream")
    log "$name x$factor: replaying $captured statements"
    # The replay runs with the general log on too, as the job did, so that
    # both pay the server's logging.
    settle
    general_log_to "$out.replay.general"
    /usr/bin/time -f "%U	%S	%e	%M" -o "$out.replay.time" \
      "$replay" 127.0.0.1 "$port" "$user" "$password" "${base}_b" "$out.stream" 2>"$out.replay.err"
    restore_log
    rm -f "$out.replay.general"
    local r_stmts r_failed
    r_stmts=$(sed -n 's/^Replayed \([0-9]*\) statements, \([0-9]*\) failed.*/\1/p' "$out.replay.err")
    r_failed=$(sed -n 's/^Replayed \([0-9]*\) statements, \([0-9]*\) failed.*/\2/p' "$out.replay.err")
    replay_fields="$r_stmts	$r_failed	$(cut -f1-3 "$out.replay.time" | tail -1)"
    rm -f "$out.general" "$out.stream"
  fi
  drop_run_databases
  local t
  t=$(tail -1 "$out.time")
  printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$name" "$factor" "$bytes" "$words" \
    "$(echo "$t" | cut -f1)" "$(echo "$t" | cut -f2)" "$(echo "$t" | cut -f3)" "$(echo "$t" | cut -f4)" \
    "$(echo "$summary" | cut -d' ' -f1)" "$(echo "$summary" | cut -d' ' -f2)" "$(echo "$summary" | cut -d' ' -f3)" \
    "$replay_fields" >>"$results"
}

# --durable: one job as a plain and an atomic run on each server; one line
# "job, statements, four wall times" to $results.
measure_durable() {  # JOB-LINE FACTOR
  local name family steps measured files run_words
  IFS='|' read -r name family steps measured files <<<"$1"
  local factor=$2 info dir
  info=$(input_dir "$family" "$factor")
  dir=${info%%|*}
  read -r -a run_words <<<"$measured"
  local slug line server mode sent=""
  slug=$(echo "$name" | tr -c 'A-Za-z0-9\n' '_')
  line="$name"
  for server in 0 1; do
    on_durable=$server
    for mode in plain atomic; do
      run_number=$((run_number + 1))
      run_databases=("bench$$_$run_number")
      log "$name x$factor: $( ((server)) && echo durable || echo relaxed) server, $mode run"
      prepare "bench$$_$run_number" "$dir" "$steps"
      settle
      extra_args=()
      [[ $mode == atomic ]] && extra_args=(-atomic)
      local out="$runs/${slug}x${factor}_${server}_$mode"
      run_job "$dir" "$out" "${run_words[@]}"
      extra_args=()
      [[ -z $sent ]] && sent=$(python3 "$tool" summary "$out.err" | cut -d' ' -f2)
      line+="	$(tail -1 "$out.time" | cut -f3)"
      drop_run_databases
    done
  done
  on_durable=0
  echo "$line	$sent" >>"$results"
}

# --rtt: one job as a plain and an atomic run, directly and through the
# delaying proxy; one line "job, rows, statements, four wall times" to
# $results. Rows and statements are the direct plain run's.
measure_rtt() {  # JOB-LINE FACTOR
  local name family steps measured files run_words
  IFS='|' read -r name family steps measured files <<<"$1"
  local factor=$2 info dir
  info=$(input_dir "$family" "$factor")
  dir=${info%%|*}
  read -r -a run_words <<<"$measured"
  local slug delay mode counts="" walls=""
  slug=$(echo "$name" | tr -c 'A-Za-z0-9\n' '_')
  for delay in 0 "$rtt"; do
    for mode in plain atomic; do
      run_number=$((run_number + 1))
      local base="bench$$_$run_number"
      run_databases=("$base")
      log "$name x$factor: $delay ms, $mode run"
      # The prerequisites go directly; only the measured run goes through
      # the proxy.
      prepare "$base" "$dir" "$steps"
      (( delay > 0 )) && CORVANA_DB_PORT=$proxy_port "$db" ini "$base" "$dir"
      settle
      extra_args=()
      [[ $mode == atomic ]] && extra_args=(-atomic)
      local out="$runs/${slug}x${factor}_${delay}ms_$mode"
      run_job "$dir" "$out" "${run_words[@]}"
      extra_args=()
      [[ -z $counts ]] && counts=$(python3 "$tool" summary "$out.err" | cut -d' ' -f1-2 | tr ' ' '\t')
      walls+="	$(tail -1 "$out.time" | cut -f3)"
      drop_run_databases
    done
  done
  echo "$name	$counts$walls" >>"$results"
}

# ---------------------------------------------------------------------------

stamp=$(date -u +%Y%m%d-%H%M%S)
runs="$work/runs/$stamp"
mkdir -p "$runs"
results="$runs/results.tsv"
: >"$results"

echo "== Machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) cores, $(free -g | awk '/^Mem:/{print $2}') GiB RAM; load average $(cut -d' ' -f1-3 /proc/loadavg)"
echo "== Server: $(echo "select concat(version(), '; sql_mode=', @@global.sql_mode, '; ', @@character_set_server, '/', @@collation_server, '; innodb_buffer_pool_size=', @@innodb_buffer_pool_size DIV 1048576, 'M; innodb_flush_log_at_trx_commit=', @@innodb_flush_log_at_trx_commit, '; innodb_doublewrite=', @@innodb_doublewrite, '; log_bin=', @@log_bin)" | sql mysql -N) on 127.0.0.1:$port"
echo "== Date: $(date -u '+%Y-%m-%d %H:%M UTC'); scale x$scale$( (( growth )) && echo ', growth 1x 2x 4x')$( (( floor )) || echo ', no replay')"

if (( durable )); then
  on_durable=1
  echo "== Durable server: $(echo "select concat(version(), '; innodb_flush_log_at_trx_commit=', @@innodb_flush_log_at_trx_commit, '; innodb_doublewrite=', @@innodb_doublewrite, '; log_bin=', @@log_bin, '; sync_binlog=', @@sync_binlog)" | sql mysql -N) on 127.0.0.1:$durable_port"
  on_durable=0
fi

# The proxy serves every run at MS; its port comes on its first line.
if [[ -n $rtt ]]; then
  "$proxy" 0 127.0.0.1 "$port" "$rtt" >"$runs/proxy.port" 2>"$runs/proxy.err" &
  proxy_pid=$!
  for ((i = 0; i < 100; i++)); do
    proxy_port=$(head -1 "$runs/proxy.port")
    [[ -n $proxy_port ]] && break
    sleep 0.1
  done
  [[ -n $proxy_port ]] || { cat "$runs/proxy.err" >&2; echo "bench.sh: the delay proxy did not start" >&2; exit 1; }
  echo "== Delay: $rtt ms added to every round trip by bench/delay_proxy on 127.0.0.1:$proxy_port"
fi

run_number=0
# One spelling per factor (1, not 1.0), so each size is generated once.
factor() { python3 -c "import sys; print('%g' % (float(sys.argv[1]) * int(sys.argv[2])))" "$scale" "$1"; }
factors=("$(factor 1)")
(( growth )) && factors=("$(factor 1)" "$(factor 2)" "$(factor 4)")
for line in "${jobs[@]}"; do
  [[ -n $only && ! ${line%%|*} =~ $only ]] && continue
  for factor in "${factors[@]}"; do
    if (( durable )); then
      measure_durable "$line" "$factor"
    elif [[ -n $rtt ]]; then
      measure_rtt "$line" "$factor"
    else
      measure "$line" "$factor"
    fi
  done
done

echo
if (( durable )); then
  printf '%-30s %10s %14s %15s %14s %15s\n' job statements "relaxed plain" "relaxed atomic" "durable plain" \
    "durable atomic"
  while IFS=$'\t' read -r name rp ra dp da sent; do
    printf '%-30s %10s %13ss %14ss %13ss %14ss\n' "$name" "$sent" "$rp" "$ra" "$dp" "$da"
  done <"$results"
elif [[ -n $rtt ]]; then
  python3 "$tool" rtt "$results" "$rtt"
else
  python3 "$tool" table "$results"
fi
if (( growth )); then
  echo
  python3 "$tool" growth "$results"
fi
if (( xml )); then
  # A ~30 MB exported table with CR LF line ends: the zoo-records notes of
  # 41,000 animals (escaped markup in long texts, many short elements).
  xml_dir="$work/input/xml-notes"
  if [[ ! -f $xml_dir/.complete ]]; then
    log "generating the XML reader's input"
    python3 "$repo/bench/gen/csaq_pks_gen.py" --animals 41000 --seed 1 --out "$xml_dir"
    touch "$xml_dir/.complete"
  fi
  echo
  echo "== XML reader: XmlLoadFile and pugixml loading $(stat -c %s "$xml_dir/Notes.xml") bytes (Notes.xml, CR LF), one process each"
  for which in BM_XmlLoadFile BM_PugixmlLoadFile; do
    "$work/bench/xml_reader_bench" --file "$xml_dir/Notes.xml" --benchmark_filter="^$which/" \
      --benchmark_counters_tabular=true 2>/dev/null | sed -n '/^Benchmark\|^BM_\|^---/p'
  done
fi
echo
echo "(runs and logs: $runs)"
