#!/usr/bin/env bash
# Installs what building, testing and the demo need, from Debian's packages.
# Does nothing when everything is there already.
#
#   scripts/install-deps.sh             the Linux build, its tests and the demo
#   scripts/install-deps.sh --windows   the Windows cross-build and its tests
#                                       under Wine (scripts/build-windows.sh)
set -euo pipefail

# clang-14 and its runtime (libFuzzer, the sanitizers) build scripts/fuzz.sh's
# targets; iconv (libc-bin) makes their UTF-16 seeds.
packages=(g++ cmake make libgtest-dev libmariadb-dev mariadb-server mariadb-client clang-14 libclang-rt-14-dev)
if [[ ${1:-} == --windows ]]; then
  # mingw-w64 with POSIX threads (std::thread, std::mutex), Wine to run the
  # .exe, zip for the operators' download.
  packages=(g++-mingw-w64-x86-64-posix cmake make wine wine64 zip)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
