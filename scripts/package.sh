#!/usr/bin/env bash
# Builds the Debian package (build/package/corvana-data-importer_<version>_<arch>.deb).
#
#   scripts/package.sh            build the package
#   scripts/package.sh --try      also install it on this machine with apt and run a
#                                 sample job with the installed program against the
#                                 local MariaDB (what CI does on its fresh machine)
#   scripts/package.sh --windows  instead, the operators' download for Windows:
#                                 build-windows/package/corvana-data-importer-<version>-windows-x64.zip
#                                 (CorvanaDataImporter.exe, schema.sql, README.txt, samples\)
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"

if [[ ${1:-} == --windows ]]; then
  scripts/build-windows.sh
  out=$(realpath -m "${CORVANA_WINDOWS_DIR:-$repo/build-windows}")
  version=$(sed -n 's/^project(CorvanaDataImporter VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  name=corvana-data-importer-$version-windows-x64
  stage=$out/package/$name
  rm -rf "$stage" "$stage.zip"
  mkdir -p "$stage"
  cp "$out/CorvanaDataImporter.exe" db/schema.sql "$stage/"
  # Text files as Notepad expects them.
  sed 's/$/\r/' README.md >"$stage/README.txt"
  cp -r samples "$stage/samples"
  find "$stage/samples" \( -name CorvanaDataImporter.ini -o -name GroupTempFile.txt \) -delete
  (cd "$out/package" && zip -qr -X "$name.zip" "$name")
  rm -rf "$stage"
  echo "Built $out/package/$name.zip"
  exit 0
fi

scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target CorvanaDataImporter
(cd build && cpack -G DEB -B "$repo/build/package" >/dev/null)
deb=$(ls "$repo"/build/package/corvana-data-importer_*.deb)
echo "Built $deb"
[[ ${1:-} == --try ]] || exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "$deb" >/dev/null
echo "Installed: $(command -v CorvanaDataImporter)"

started=0
if ! scripts/db.sh status >/dev/null 2>&1; then
  scripts/db.sh start >/dev/null
  started=1
fi
work=$(mktemp -d)
cleanup() {
  echo "drop database package_try" | scripts/db.sh sql package_try 2>/dev/null || true
  [ $started -eq 0 ] || scripts/db.sh stop >/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cp -r /usr/share/corvana-data-importer/samples/kwrc/. "$work/"
echo "create database package_try default character set latin1" | scripts/db.sh sql mysql
scripts/db.sh sql package_try </usr/share/corvana-data-importer/schema.sql
scripts/db.sh ini package_try "$work"
scripts/db.sh sql package_try <"$work/settings.sql"
(cd "$work" && CorvanaDataImporter -org KWRC -type patient -year 2012) >"$work/log" 2>/dev/null
tail -n 1 "$work/log"
# The count the end-to-end test expects of the same sample.
expected=$(grep '^Imported [0-9]* records$' tests/jobs/kwrc/expected/kwrc_2012.log)
grep -qx "$expected" "$work/log" || { echo "package.sh: the installed program did not import the sample ($expected)" >&2; exit 1; }
echo "The installed package ran the KWRC sample job."
