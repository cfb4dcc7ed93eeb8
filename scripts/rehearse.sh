#!/usr/bin/env bash
# Rehearses a migration on the operator's own files before the real server
# sees them: copies the input folder, creates a throwaway database with the
# Corvana schema on the local MariaDB, runs the job there, keeps the log next
# to the copy, and shows the rows written per table and a few rows of each.
#
#   scripts/rehearse.sh DIR -org X -type Y -year Z [-region R]
#   scripts/rehearse.sh --database NAME DIR -org X -type Y ...
#
# DIR is never changed, and its CorvanaDataImporter.ini (which may name the
# real server) is not used: the copy gets one for the local server. Without
# --database every rehearsal gets a fresh database; with it, the named
# rehearsal database is created the first time and kept, so that jobs that
# build on each other (species, then patients) can be rehearsed in order.
#
# Environment: CORVANA_REHEARSALS (where the copies go, default
# <repo>/build/rehearsals), and those of scripts/db.sh.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

die() { echo "rehearse.sh: $*" >&2; exit 1; }
usage() { die "usage: scripts/rehearse.sh [--database NAME] DIR -org X -type Y -year Z [-region R]"; }

database=""
if [[ ${1:-} == --database ]]; then
  [[ $# -ge 2 ]] || usage
  database=$2
  shift 2
fi
[[ $# -ge 1 ]] || usage
input=$1
shift
[[ -d $input ]] || die "no such folder: $input"
[[ $# -ge 6 ]] || usage
job_args=("$@")

importer=$repo/build/CorvanaDataImporter
if [[ ! -x $importer ]]; then
  "$repo/scripts/install-deps.sh"
  cmake -S "$repo" -B "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$repo/build" -j"$(nproc)" --target CorvanaDataImporter >/dev/null
fi
"$repo/scripts/db.sh" start >/dev/null

stamp=$(date +%Y%m%d-%H%M%S)
base=$(basename "$(cd "$input" && pwd)")
rehearsals=${CORVANA_REHEARSALS:-$repo/build/rehearsals}
place=$rehearsals/$base-$stamp-$$
copy=$place/input
mkdir -p "$copy"
cp -r "$input/." "$copy/"
rm -f "$copy/CorvanaDataImporter.ini"

fresh=1
if [[ -z $database ]]; then
  database=rehearsal_$(date +%Y%m%d%H%M%S)_$$
elif [[ $(echo "select count(*) from information_schema.schemata where schema_name='$database'" |
  "$repo/scripts/db.sh" sql mysql --skip-column-names) -gt 0 ]]; then
  fresh=0
fi
if [[ $fresh -eq 1 ]]; then
  "$repo/scripts/db.sh" create "$database" "$copy" >/dev/null
else
  "$repo/scripts/db.sh" ini "$database" "$copy"
fi

log=$place/CorvanaDataImporter.log
echo "Rehearsing: CorvanaDataImporter ${job_args[*]}"
echo "  input copied to  $copy"
echo "  database         $database on the local server ($([[ $fresh -eq 1 ]] && echo new || echo kept))"
set +e
(cd "$copy" && "$importer" "${job_args[@]}") >"$log"
status=$?
set -e
echo "  log saved as     $log (exit code $status)"
echo

# Every table of the schema that holds rows, with its count and a few rows.
tables=$(echo "select table_name from information_schema.tables where table_schema=database() order by table_name" |
  "$repo/scripts/db.sh" sql "$database" --skip-column-names)
echo "== Rows per table in $database"
for table in $tables; do
  rows=$(echo "select count(*) from \`$table\`" | "$repo/scripts/db.sh" sql "$database" --skip-column-names)
  [[ $rows -gt 0 ]] && printf '  %-24s %8d\n' "$table" "$rows"
done
for table in $tables; do
  rows=$(echo "select count(*) from \`$table\`" | "$repo/scripts/db.sh" sql "$database" --skip-column-names)
  [[ $rows -gt 0 ]] || continue
  echo
  echo "== First rows of $table (columns left empty, 0 or 0000-00-00 not shown)"
  echo "select * from \`$table\` order by 1 limit 3" | "$repo/scripts/db.sh" sql "$database" --vertical |
    awk -F': ' '/^\*+ [0-9]+\. row/ { print; next }
                { value = substr($0, index($0, ": ") + 2) }
                value != "" && value != "0" && value != "NULL" && value !~ /^0000-00-00/ { print }'
done
echo
echo "The rehearsal database stays on the local server: drop it with"
echo "  echo 'drop database $database' | scripts/db.sh sql $database"
exit "$status"
