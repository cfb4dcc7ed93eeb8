#!/usr/bin/env bash
# Runs real jobs on the bundled samples against a local MariaDB, then shows
# what they wrote. Installs what is missing, builds, starts the server (left
# running; stop it with scripts/db.sh stop).
#
#   scripts/demo.sh          every sample job
#   scripts/demo.sh kwrc     only one organisation's jobs (kwrc, dswc, glfh, uprc, repairs)
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"

scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target CorvanaDataImporter
scripts/db.sh start

importer=$repo/build/CorvanaDataImporter
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Copies samples/<org> to a scratch folder with a fresh database named
# demo_<org>, so the samples stay clean and each demo starts empty.
prepare() {
  local org=$1
  mkdir -p "$work/$org"
  cp -r "samples/$org/." "$work/$org/"
  scripts/db.sh create "demo_$org" "$work/$org" >/dev/null
}

run() {
  local org=$1; shift
  echo
  echo "\$ CorvanaDataImporter $*"
  (cd "$work/$org" && "$importer" "$@")
}

show() {
  local org=$1
  echo
  echo "== Rows in demo_$org"
  scripts/db.sh sql "demo_$org" -t <<'SQL'
select 'patient' as `table`, count(*) as `rows` from patient
union all select 'record_entry', count(*) from record_entry
union all select 'problems', count(*) from problems
union all select 'attributes', count(*) from attributes
union all select 'releases', count(*) from releases
union all select 'transfers', count(*) from transfers
union all select 'species', count(*) from species
union all select 'addressBook', count(*) from addressBook
union all select 'enrichment', count(*) from enrichment
union all select 'cbc', count(*) from cbc
union all select 'pcv', count(*) from pcv;
SQL
}

demo_kwrc() {
  prepare kwrc
  scripts/db.sh sql demo_kwrc < "$work/kwrc/settings.sql"
  run kwrc -org KWRC -type patient -year 2012
  show kwrc
  scripts/db.sh sql demo_kwrc -t <<'SQL'
select patient_id, species, admission_date, final_date, status, found_district, found_state from patient limit 8;
SQL
}

demo_dswc() {
  prepare dswc
  run dswc -org DsWC -type species -year 2011
  run dswc -org DsWC -type patient -year 2011
  run dswc -org DsWC -type patient -year 2014
  run dswc -org DsWC -type address_book -year 2011
  show dswc
}

demo_csaq_pks() {
  prepare csaq_pks
  scripts/db.sh sql demo_csaq_pks < "$work/csaq_pks/species.sql"
  for type in habitats patient taxonomy; do
    run csaq_pks -org CSAQ_PKS -type "$type" -year 2015
  done
  show csaq_pks
  scripts/db.sh sql demo_csaq_pks -t <<'SQL'
select 'location' as `table`, count(*) as `rows` from location
union all select 'biometric', count(*) from biometric;
select patient_id, name, species, status, location, admission_date, final_date from patient limit 12;
SQL
}

demo_glfh() {
  prepare glfh
  run glfh -org GLFH -type patient -year 2012
  show glfh
}

demo_uprc() {
  prepare uprc
  run uprc -org UPRC -type patient -year 2012
  show uprc
}

demo_repairs() {
  prepare repairs
  scripts/db.sh sql demo_repairs < "$work/repairs/seed.sql"
  for type in fixTransfers fix180DayReports fixEnrichmentRecords fix_CBC_PCV_Records fixLineLengthsTest fixLineLengths; do
    run repairs -org REPAIR -type "$type" -year 0
  done
  show repairs
}

orgs=("$@")
[ $# -eq 0 ] && orgs=(kwrc dswc csaq_pks glfh uprc repairs)
for org in "${orgs[@]}"; do
  declare -F "demo_$org" >/dev/null || { echo "demo.sh: no demo for '$org'" >&2; exit 1; }
  "demo_$org"
done
