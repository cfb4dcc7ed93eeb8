#!/usr/bin/env bash
# Runs real jobs on the bundled samples against a local MariaDB, then shows
# what they wrote. Installs what is missing, builds, starts the server (left
# running; stop it with scripts/db.sh stop).
#
#   scripts/demo.sh          every sample job
#   scripts/demo.sh kwrc     only one organisation's jobs (kwrc, csaq_ff, csaq_pks, dswc, glfh, uprc, sbr, repairs)
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

demo_csaq_ff() {
  prepare csaq_ff
  for type in species habitats water_chemistry patient rehab biometrics vital_stats invert_species_groups; do
    run csaq_ff -org CSAQ_FF -type "$type" -year 2016
  done
  show csaq_ff
  scripts/db.sh sql demo_csaq_ff -t <<'SQL'
select 'location' as `table`, count(*) as `rows` from location
union all select 'settings', count(*) from settings
union all select 'location_record_entry', count(*) from location_record_entry
union all select 'water_quality', count(*) from water_quality
union all select 'biometric', count(*) from biometric;
select patient_id, name, species, status, location, admission_date, final_date from patient limit 12;
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

# Each SBR centre has its own database: Los Angeles gets every job, San
# Francisco its species and patients from the same samples.
demo_sbr() {
  prepare sbr
  run sbr -org SBR_LA -type species -year 2016
  run sbr -org SBR_LA -type patient -year 2016 -region LA
  run sbr -org SBR_LA -type band_sightings -year 2016
  echo
  run sbr -org SBR_LA -type necropsy -year 2016
  show sbr
  scripts/db.sh sql demo_sbr -t <<'SQL'
select 'band_report' as `table`, count(*) as `rows` from band_report
union all select 'biometric', count(*) from biometric;
select patient_id, species, status, admission_date, final_date, band, aux_marker from patient limit 8;
SQL
  mkdir -p "$work/sbr_sf"
  cp -r samples/sbr/. "$work/sbr_sf/"
  scripts/db.sh create demo_sbr_sf "$work/sbr_sf" >/dev/null
  run sbr_sf -org SBR_SF -type species -year 2016
  run sbr_sf -org SBR_SF -type patient -year 2016 -region SF
  show sbr_sf
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
[ $# -eq 0 ] && orgs=(kwrc csaq_ff csaq_pks dswc glfh uprc sbr repairs)
for org in "${orgs[@]}"; do
  declare -F "demo_$org" >/dev/null || { echo "demo.sh: no demo for '$org'" >&2; exit 1; }
  "demo_$org"
done
