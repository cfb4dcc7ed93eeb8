#!/usr/bin/env bash
# Builds the libFuzzer targets of tests/fuzz with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer on) in build-fuzz/, seeds each from samples/ and
# runs each for SECONDS seconds (default 30), one per core at a time. Prints
# the executions of every target; exits 1 when any target crashed, leaked,
# hung or ran out of memory (the input that did it is kept under
# build-fuzz/artifacts/).
#   scripts/fuzz.sh [SECONDS] [TARGET...]
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"
seconds=${1:-30}
shift || true

scripts/install-deps.sh
build=build-fuzz
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++-14 \
  -DCORVANA_FUZZ=ON -DCORVANA_TESTS=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" >/dev/null

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in tests/fuzz/*_fuzz.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi

# Seeds: the sample files whole for the file readers, the sample lines with
# their tabs as the NUL bytes that separate a target's texts for the
# conversions, and a few hand-made inputs where no sample fits.
seeds=$build/seeds
rm -rf "$seeds"
seed_files() {  # DIR FILE...
  local dir=$1 n=0
  shift
  mkdir -p "$dir"
  for f in "$@"; do cp "$f" "$dir/file_$((n++))"; done
}
seed_lines() {  # DIR FILE...: every line of the files (at most 300 per file)
  local dir=$1 f n=0 line
  shift
  mkdir -p "$dir"
  for f in "$@"; do
    while IFS= read -r line; do
      printf '%s' "$line" | tr '\t' '\0' >"$dir/line_$((n++))"
    done < <(head -n 300 "$f")
  done
}
seed_texts() {  # DIR TEXT...: each TEXT as one seed, printf escapes allowed
  local dir=$1 n=0 text
  shift
  mkdir -p "$dir"
  for text in "$@"; do printf -- "$text" >"$dir/text_$((n++))"; done
}
mapfile -t xml < <(ls samples/*/*.xml)
mapfile -t txt < <(ls samples/*/*.txt samples/sbr/BandSightings/*.txt)
seed_files "$seeds/xml_reader_fuzz" "${xml[@]}"
seed_texts "$seeds/ini_file_fuzz" '[MYSQL]\r\nServer=127.0.0.1\r\nPort=3399\r\nDatabase=corvana\r\nUsername=u\r\nPassword=p\r\nSslMode=verify\r\nReconnectSeconds=60\r\n'
seed_texts "$seeds/command_line_fuzz" '-org\x00KWRC\x00-type\x00patient\x00-year\x002012' '-f\x00-n\x00-12\x00-d\x001.5e3\x00-s\x00abcdefgh\x00-org\x00x' \
  '-org\x00SBR_LA\x00-type\x00patient\x00-year\x002016\x00-region\x00LA'
mkdir -p "$seeds/line_reader_fuzz" "$seeds/text_source_fuzz"
for f in "${txt[@]}"; do
  name=$(basename "$f" .txt | tr ' ' _)
  { printf '\x03'; cat "$f"; } >"$seeds/line_reader_fuzz/$name"
  { printf '\xc8'; cat "$f"; } >"$seeds/line_reader_fuzz/${name}_long"
  { printf '\x04\xff\xfe'; iconv -f latin1 -t UTF-16LE "$f"; } >"$seeds/text_source_fuzz/${name}_le"
  { printf '\x05\xfe\xff'; iconv -f latin1 -t UTF-16BE "$f"; } >"$seeds/text_source_fuzz/${name}_be"
  { printf '\x06\xef\xbb\xbf'; cat "$f"; } >"$seeds/text_source_fuzz/${name}_mark"
done
seed_texts "$seeds/dates_fuzz" '3/4/2011\x00\x0b' '25/12/2010 10:15\x00\x0b' '3/4/11\x00\x05' '2014-05-12T00:00:00\x00\x0b' \
  '12-31-99\x00\x0b' '100/3/2011\x00\x0b'
seed_lines "$seeds/strings_fuzz" samples/csaq_pks/MissingTaxonomy.txt samples/dswc/AddressBook.txt
seed_lines "$seeds/kwrc_fuzz" samples/kwrc/KWRC_2012.txt
seed_files "$seeds/glfh_fuzz" samples/glfh/GLFH_Patients.txt
seed_lines "$seeds/glfh_fuzz" samples/glfh/GLFH_Patients.txt
seed_lines "$seeds/dswc_fuzz" samples/dswc/2011Admissions.txt samples/dswc/AddressBook.txt
seed_lines "$seeds/uprc_fuzz" "samples/uprc/UPRC 2012.txt"
seed_lines "$seeds/sbr_fuzz" samples/sbr/SBR_LA.txt samples/sbr/Necropsy.txt samples/sbr/species.txt
seed_texts "$seeds/csaq_pks_fuzz" \
  '~ before 2012-05-01\x00&lt;p&gt;Moved to &lt;span style=x&gt;A&lt;/span&gt;\x00&lt;span\x00\x00United States/North Carolina/Bogue Sound\x00United States/North Carolina/Fort Macon, beach\x00L1\x002015-01-01\x00Actual\x00\x003\x00-1\x00Live weight\x00kg\x00Exhibit\x00Aquatic\x00Salt\x00Loggerhead sea turtle\x00Reptile\x00Caretta caretta/Loggerhead sea turtle\x00Label\x00Value\x00Band'
seed_lines "$seeds/csaq_ff_fuzz" samples/csaq_ff/InvertebrateSpecies.txt
seed_texts "$seeds/csaq_ff_fuzz" \
  '2.3 kg\x0034 41 10/76 40 20\x00Carteret County, NC &quot;Shelly&quot;; notes, Transfered to NC Zoo\x00Died\x002014-05-12T00:00:00\x00Loggerhead 12\x00Corn snake\x00Kemp&apos;s ridley\x00NC Zoo\x00Bluefin tuna\x00Salt\x00Chordata\x00Reptilia\x00Loggerhead\x00LOGGER\x002012-03-04'

# One target per core at a time: each runs single-threaded for its full time.
run_target() {  # TARGET: runs it and writes its outcome line to build-fuzz/TARGET.outcome
  local target=$1 corpus=$build/corpus/$1 log=$build/$1.log outcome runs
  mkdir -p "$corpus" "$seeds/$target"
  if "$build/tests/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=20000 \
      -close_fd_mask=2 -print_final_stats=1 -artifact_prefix="$build/artifacts/$target-" \
      "$corpus" "$seeds/$target" >"$log" 2>&1; then
    outcome=ok
  else
    outcome="FAILED (see $log)"
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  printf '%-22s %12s %s\n' "$target" "${runs:-?}" "$outcome" >"$build/$target.outcome"
}
mkdir -p "$build/corpus" "$build/artifacts"
for target in "${targets[@]}"; do
  while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do wait -n || true; done
  run_target "$target" &
done
wait

failed=0
printf '%-22s %12s %s\n' target executions outcome
for target in "${targets[@]}"; do
  cat "$build/$target.outcome"
  grep -q ' ok$' "$build/$target.outcome" || failed=$((failed + 1))
done
echo "Fuzzing: $((${#targets[@]} - failed)) passed, $failed failed"
[ $failed -eq 0 ]
