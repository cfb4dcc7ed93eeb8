#!/usr/bin/env bash
# The whole test suite: a normal build and an AddressSanitizer +
# UndefinedBehaviorSanitizer build, each run against the local MariaDB
# (started here when it is not running, and stopped again afterwards).
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$repo"

scripts/install-deps.sh
jobs=$(nproc)

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$jobs"
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DCORVANA_SANITIZE=ON >/dev/null
cmake --build build-asan -j"$jobs"

if ! scripts/db.sh status >/dev/null 2>&1; then
  scripts/db.sh start
  trap 'scripts/db.sh stop' EXIT
fi

status=0
echo "== Tests (build)"
(cd build && ctest --output-on-failure -j"$jobs") || status=1
echo "== Tests (build-asan: AddressSanitizer, UndefinedBehaviorSanitizer)"
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --output-on-failure -j"$jobs") || status=1
exit $status
