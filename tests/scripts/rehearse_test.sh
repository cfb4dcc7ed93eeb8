#!/usr/bin/env bash
# A rehearsal on a sample folder: the folder stays as it was, the job runs
# against a throwaway database, the log is saved next to the copy, and the
# rows per table are shown.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cp -r "$repo/samples/glfh" "$work/operator"
printf '[MYSQL]\nServer=the.real.server\nDatabase=corvana\n' >"$work/operator/CorvanaDataImporter.ini"
before=$(cd "$work/operator" && find . -type f -exec md5sum {} + | sort)

CORVANA_REHEARSALS=$work/rehearsals "$repo/scripts/rehearse.sh" "$work/operator" -org GLFH -type patient -year 2012 \
  >"$work/output" 2>&1 || fail "exit code $? $(cat "$work/output")"
after=$(cd "$work/operator" && find . -type f -exec md5sum {} + | sort)
[[ $before == "$after" ]] || fail "the operator's folder changed"

grep -q '^  patient  *16$' "$work/output" || fail "no patient count: $(cat "$work/output")"
grep -q '^  record_entry  *16$' "$work/output" || fail "no record_entry count"
grep -q '^== First rows of patient' "$work/output" || fail "no rows shown"
grep -q 'species: Saker' "$work/output" || fail "no row content shown"
grep -q '^== Summary of GLFH - patient - 2012' "$work/output" || fail "no summary"

log=$(ls "$work"/rehearsals/*/CorvanaDataImporter.log)
[[ -f $log ]] || fail "no log saved"
diff <(sed -n '/^GLFH - patient - 2012$/,$p' "$log") "$repo/tests/jobs/glfh/expected/glfh_patients.log" ||
  fail "the saved log differs from the job's log"

database=$(sed -n 's/^  database  *\([a-z0-9_]*\) .*/\1/p' "$work/output")
[[ $database == rehearsal_* ]] || fail "no database named"
echo "drop database $database" | "$repo/scripts/db.sh" sql "$database"
echo "rehearsal test passed"
