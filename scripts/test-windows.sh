#!/usr/bin/env bash
# Tests the Windows build under Wine against the local MariaDB: every sample
# job of every organisation runs once with the Linux build and once with
# CorvanaDataImporter.exe, each on a scratch copy of the samples and a
# database of its own, and the two must agree: the same exit code, the same
# log (the .exe's CR LF line ends turned into LF, and its ".\" in the two
# input names written with the system's separator turned into "./"), the same
# rows, the same files written. Then the failure cases: no INI file, a missing
# input file, a bad option, a wrong password; and the safe-run options: a dry
# run, an atomic run, the journal, the refused second import, -again, -undo.
#
#   scripts/test-windows.sh            builds both programs first
#   scripts/test-windows.sh --no-build uses build/ and build-windows/ as they are
#
# Wine's prefix lives in build-windows/wine-prefix (made on first use). Starts
# the server with scripts/db.sh start when it is not running (and stops it
# again); a running one is used and left alone. Environment as for
# scripts/db.sh, and CORVANA_WINDOWS_DIR as for scripts/build-windows.sh;
# KEEP=1 keeps the scratch folder (logs, rows, diffs) and names it on stderr.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"
out=$(realpath -m "${CORVANA_WINDOWS_DIR:-$repo/build-windows}")

if [[ ${1:-} != --no-build ]]; then
  scripts/build-windows.sh
  scripts/install-deps.sh
  cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build build -j"$(nproc)" --target CorvanaDataImporter >/dev/null
fi
linux_exe=$repo/build/CorvanaDataImporter
windows_exe=$out/CorvanaDataImporter.exe
[[ -x $linux_exe && -f $windows_exe ]] || { echo "test-windows.sh: build both programs first" >&2; exit 1; }

export WINEPREFIX=$out/wine-prefix WINEDEBUG=-all
if [[ ! -f $WINEPREFIX/system.reg ]]; then
  echo "Making Wine's prefix in $WINEPREFIX"
  wine wineboot --init >/dev/null 2>&1 || true
fi

started=0
if ! scripts/db.sh status >/dev/null 2>&1 && ! echo "select 1" | scripts/db.sh sql mysql >/dev/null 2>&1; then
  scripts/db.sh start >/dev/null
  started=1
fi

work=$(mktemp -d)
prefix=wintest_$$
databases=()
cleanup() {
  for name in "${databases[@]}"; do
    echo "drop database if exists $name" | scripts/db.sh sql mysql 2>/dev/null || true
  done
  wineserver -k 2>/dev/null || true  # only this prefix's server
  [ $started -eq 0 ] || scripts/db.sh stop >/dev/null
  if [[ -n ${KEEP:-} ]]; then echo "Kept $work" >&2; else rm -rf "$work"; fi
}
trap cleanup EXIT

failures=0
checks=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Each case's Linux and Windows side: $work/<case>/linux and .../windows,
# with databases <prefix>_<case>_linux and _windows.
side_db() { echo "${prefix}_$1_$2"; }

# setup CASE SAMPLES [SQL_FILE...]: fresh copies of samples/SAMPLES and fresh
# databases for both sides, the SQL files of the samples loaded into them.
setup() {
  local name=$1 samples=$2; shift 2
  local side db
  for side in linux windows; do
    db=$(side_db "$name" "$side")
    databases+=("$db")
    mkdir -p "$work/$name/$side"
    cp -r "samples/$samples/." "$work/$name/$side/"
    rm -f "$work/$name/$side/GroupTempFile.txt"
    scripts/db.sh create "$db" "$work/$name/$side" >/dev/null
    for sql in "$@"; do scripts/db.sh sql "$db" <"$work/$name/$side/$sql"; done
  done
}

# run CASE ARGS...: runs both programs in the case's folders and compares exit
# codes and logs.
run() {
  local name=$1; shift
  local dir=$work/$name step
  step=$(( $(ls "$dir" | grep -c '\.log$' || true) / 2 + 1 ))
  set +e
  (cd "$dir/linux" && "$linux_exe" "$@") >"$dir/$step.linux.log" 2>"$dir/$step.linux.err"
  local linux_code=$?
  (cd "$dir/windows" && wine "$windows_exe" "$@") >"$dir/$step.windows.raw" 2>"$dir/$step.windows.err"
  windows_code=$?
  set -e
  checks=$((checks + 1))
  local what="$name: CorvanaDataImporter $*"
  [[ $linux_code == "$windows_code" ]] || fail "$what: exit code $windows_code on Windows, $linux_code on Linux"
  # Text mode: every line feed of the log comes with its carriage return.
  if [[ $(grep -c $'\r$' "$dir/$step.windows.raw") != $(wc -l <"$dir/$step.windows.raw") ]]; then
    fail "$what: the Windows log has line ends without CR"
  fi
  sed -e 's/\r$//' -e "s/\.\\\\\(UPRC\|SBR_\)/.\/\1/g" -e "s/$(side_db "$name" windows)/DB/g" \
    "$dir/$step.windows.raw" >"$dir/$step.windows.log"
  sed -i "s/$(side_db "$name" linux)/DB/g" "$dir/$step.linux.log"
  diff -u --label linux --label windows "$dir/$step.linux.log" "$dir/$step.windows.log" >"$dir/$step.diff" ||
    { fail "$what: logs differ"; head -n 20 "$dir/$step.diff"; }
}

# dump CASE TAG: both databases' rows into $work/CASE/<side>.TAG.rows (the
# time a row was written aside).
dump() {
  local name=$1 tag=$2 side db
  for side in linux windows; do
    db=$(side_db "$name" "$side")
    MYSQL_PWD=${CORVANA_DB_PASSWORD:-corvana} mariadb-dump --no-defaults --protocol=TCP --host=127.0.0.1 \
      --port="${CORVANA_DB_PORT:-3399}" --user="${CORVANA_DB_USER:-corvana}" --no-create-info \
      --skip-extended-insert --skip-dump-date --order-by-primary --skip-comments "$db" |
      sed -E "s/'$(date +%Y-%m-%d) [0-9:]{8}'/'NOW'/g" >"$work/$name/$side.$tag.rows"
  done
}

# rows CASE: every table of both databases must hold the same rows.
rows() {
  local name=$1
  dump "$name" now
  checks=$((checks + 1))
  diff -u --label linux --label windows "$work/$name/linux.now.rows" "$work/$name/windows.now.rows" \
    >"$work/$name/rows.diff" || { fail "$name: rows differ"; head -n 20 "$work/$name/rows.diff"; }
}

# same_rows CASE TAG WHAT: on both sides, the rows are as they were at `dump CASE TAG`.
same_rows() {
  local name=$1 tag=$2 side
  dump "$name" now
  for side in linux windows; do
    checks=$((checks + 1))
    cmp -s "$work/$name/$side.$tag.rows" "$work/$name/$side.now.rows" || fail "$name ($side): $3"
  done
}

# same_file CASE FILE: a file the job wrote is the same on both sides (line
# ends aside).
same_file() {
  checks=$((checks + 1))
  cmp -s "$work/$1/linux/$2" <(sed 's/\r$//' "$work/$1/windows/$2") || fail "$1: $2 differs"
}

# Every sample job, organisation by organisation, in the order the README gives.
setup kwrc kwrc settings.sql
run kwrc -org KWRC -type patient -year 2012
rows kwrc

setup csaq_ff csaq_ff
for type in species habitats water_chemistry patient rehab biometrics vital_stats invert_species_groups; do
  run csaq_ff -org CSAQ_FF -type "$type" -year 2016
done
rows csaq_ff

setup csaq_pks csaq_pks species.sql
for type in habitats patient taxonomy; do run csaq_pks -org CSAQ_PKS -type "$type" -year 2015; done
rows csaq_pks
same_file csaq_pks GroupTempFile.txt

setup dswc dswc
run dswc -org DsWC -type species -year 2011
run dswc -org DsWC -type patient -year 2011
run dswc -org DsWC -type patient -year 2014
run dswc -org DsWC -type address_book -year 2011
rows dswc

setup glfh glfh
run glfh -org GLFH -type patient -year 2012
rows glfh

setup uprc uprc
run uprc -org UPRC -type patient -year 2012
rows uprc

setup sbr sbr
run sbr -org SBR_LA -type species -year 2016
run sbr -org SBR_LA -type patient -year 2016 -region LA
run sbr -org SBR_LA -type band_sightings -year 2016
run sbr -org SBR_LA -type necropsy -year 2016
rows sbr

setup sbr_sf sbr
run sbr_sf -org SBR_SF -type species -year 2016
run sbr_sf -org SBR_SF -type patient -year 2016 -region SF
rows sbr_sf

setup repairs repairs seed.sql
for type in fixTransfers fix180DayReports fixEnrichmentRecords fix_CBC_PCV_Records fixLineLengthsTest fixLineLengths; do
  run repairs -org REPAIR -type "$type" -year 0
done
rows repairs

# Failures. A missing input file (UPRC's name has a space and the separator).
setup missing uprc
run missing -org UPRC -type patient -year 1999
run missing -org SBR_LA -type patient -year 2016 -region XX
run missing -org KWRC -type patient -year 1999
rows missing

# Bad options: unknown, missing value, no year.
setup options kwrc
run options -org KWRC -type patient -year 2012 -bogus
run options -org KWRC -type patient -year
run options -org KWRC -type patient
rows options

# A wrong password: the log says it could not connect.
setup password kwrc
for side in linux windows; do
  sed -i 's/^Password *=.*/Password=wrong/' "$work/password/$side/CorvanaDataImporter.ini"
done
run password -org KWRC -type patient -year 2012

# No INI file: it is created empty in the current folder, and the run fails
# to connect.
setup no_ini kwrc
rm "$work/no_ini/linux/CorvanaDataImporter.ini" "$work/no_ini/windows/CorvanaDataImporter.ini"
run no_ini -org KWRC -type patient -year 2012
same_file no_ini CorvanaDataImporter.ini

# The safe-run options, on the KWRC sample. A dry run: the plain run's log,
# no rows, no journal. (Its rolled-back inserts still use up keys, so the
# atomic run has a fresh database of its own.)
setup dry kwrc settings.sql
dump dry before
run dry -org KWRC -type patient -year 2012 -dry-run
same_rows dry before "a dry run wrote rows"
for side in linux windows; do
  checks=$((checks + 2))
  cmp -s "$work/kwrc/1.$side.log" "$work/dry/1.$side.log" || fail "dry ($side): the log differs from a plain run's"
  # (The folder holds the dry run's loss report, which is no journal.)
  if ls "$work/dry/$side/CorvanaDataImporter-journal" 2>/dev/null | grep -qv '\.losses\.tsv$'; then
    fail "dry ($side): a dry run kept a journal"
  fi
done

# An atomic run: the log and rows of a plain run.
setup safe kwrc settings.sql
run safe -org KWRC -type patient -year 2012 -atomic
rows safe
for side in linux windows; do
  checks=$((checks + 2))
  cmp -s "$work/kwrc/1.$side.log" "$work/safe/1.$side.log" || fail "safe ($side): the atomic log differs from plain"
  cmp -s "$work/kwrc/$side.now.rows" "$work/safe/$side.now.rows" || fail "safe ($side): atomic rows differ from plain"
done

# journal CASE NAME: the case's one new journal on each side, renamed NAME;
# both must hold the same records apart from the database's name and times.
journal() {
  local name=$1 side file
  for side in linux windows; do
    file=$(cd "$work/$name/$side/CorvanaDataImporter-journal" 2>/dev/null &&
      ls -t | grep -v '^j-' | grep '\.journal$' | head -n 1 || true)
    [[ -n $file ]] || { file=none; continue; }
    mv "$work/$name/$side/CorvanaDataImporter-journal/$file" "$work/$name/$side/CorvanaDataImporter-journal/$2"
    sed -E -e "s/$(side_db "$name" "$side")/DB/g" -e 's/^(start|undone)\t[^\t]*/\1\tTIME/' \
      -e 's/^(end\t[^\t]*)\t.*/\1\tTIME/' "$work/$name/$side/CorvanaDataImporter-journal/$2" \
      >"$work/$name/$side.$2"
  done
  checks=$((checks + 1))
  if [[ $file == none ]]; then
    fail "$name: no journal on the $side side"
  elif ! grep -q $'^+\t' "$work/$name/windows.$2"; then
    fail "$name: the Windows journal lists no inserted rows"
  else
    diff -u --label linux --label windows "$work/$name/linux.$2" "$work/$name/windows.$2" >"$work/$name/$2.diff" ||
      { fail "$name: journals differ"; head -n 20 "$work/$name/$2.diff"; }
  fi
}
journal safe j-atomic.journal
dump safe atomic

# The same import again is refused (exit 2, nothing written); -again runs it.
run safe -org KWRC -type patient -year 2012
checks=$((checks + 1))
[[ $windows_code == 2 ]] || fail "safe: a second import was not refused with exit code 2"
same_rows safe atomic "a refused second import wrote rows"
run safe -org KWRC -type patient -year 2012 -again
rows safe
journal safe j-again.journal

# Undo of the second import: the rows are back to after the first.
run safe -undo CorvanaDataImporter-journal/j-again.journal
same_rows safe atomic "undo did not put the rows back"

echo "test-windows.sh: $checks checks, $failures failed"
[ $failures -eq 0 ]
