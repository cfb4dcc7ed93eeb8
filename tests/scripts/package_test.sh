#!/usr/bin/env bash
# The install tree and the Debian package of a build: the program, the
# schema, the README and the samples land where an operator looks for them,
# and the installed program runs a sample job against the local server.
#   tests/scripts/package_test.sh BUILD_DIR
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "${1:?usage: package_test.sh BUILD_DIR}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$work/root" >/dev/null
for file in bin/CorvanaDataImporter share/corvana-data-importer/schema.sql \
  share/doc/corvana-data-importer/README.md share/corvana-data-importer/samples/glfh/GLFH_Patients.txt \
  share/corvana-data-importer/samples/csaq_pks/Animals.xml; do
  [[ -f $work/root/$file ]] || fail "not installed: $file"
done
[[ -x $work/root/bin/CorvanaDataImporter ]] || fail "the program is not executable"

(cd "$work" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/package" >/dev/null)
deb=$(ls "$work"/package/corvana-data-importer_*_*.deb)
dpkg-deb -f "$deb" Depends | grep -q libmariadb3 || fail "the package does not depend on libmariadb3"
diff <(cd "$work/root" && find . -type f | sed 's|^\./||' | sort) \
  <(dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { $1 = $2 = $3 = $4 = $5 = ""; sub(/^ +/, ""); print }' |
    sed 's|^\./usr/||' | sort) ||
  fail "the package and the install tree hold different files"

# The installed program on an installed sample, in a database made from the installed schema.
database=package_test_$$
dpkg-deb -x "$deb" "$work/unpacked"
mkdir "$work/run"
cp -r "$work/unpacked/usr/share/corvana-data-importer/samples/glfh/." "$work/run/"
echo "create database $database default character set latin1" | "$repo/scripts/db.sh" sql mysql
"$repo/scripts/db.sh" sql "$database" <"$work/unpacked/usr/share/corvana-data-importer/schema.sql"
"$repo/scripts/db.sh" ini "$database" "$work/run"
(cd "$work/run" && "$work/unpacked/usr/bin/CorvanaDataImporter" -org GLFH -type patient -year 2012) \
  >"$work/log" 2>/dev/null || fail "the packaged program failed"
echo "drop database $database" | "$repo/scripts/db.sh" sql "$database"
diff <(sed -n '/^GLFH - patient - 2012$/,$p' "$work/log") "$repo/tests/jobs/glfh/expected/glfh_patients.log" ||
  fail "the packaged program's log differs"
echo "package test passed"
