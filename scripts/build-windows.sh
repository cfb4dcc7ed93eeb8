#!/usr/bin/env bash
# Cross-builds the program for Windows x64: build-windows/CorvanaDataImporter.exe,
# one static .exe (the C++ runtime, winpthread and the MariaDB client library
# inside) that needs only Windows' own DLLs.
#
# The client library is MariaDB Connector/C, the one the Linux build links,
# built for Windows with its Schannel TLS from Debian's source package
# `mariadb` (its libmariadb/ folder). The source and the built library are kept
# under build-windows/, so only the first build downloads and compiles them.
#
#   scripts/build-windows.sh
#
# Environment: CORVANA_WINDOWS_DIR (default <repo>/build-windows).
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
out=$(realpath -m "${CORVANA_WINDOWS_DIR:-$repo/build-windows}")
toolchain=$repo/scripts/windows/mingw-w64.cmake
jobs=$(nproc)
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"

"$repo/scripts/install-deps.sh" --windows
mkdir -p "$out"

# Adds deb-src entries beside the system's deb ones for Debian's main archive
# (same mirror and suites; the security archive's sources are not needed), so
# apt-get source finds the package.
enable_sources() {
  if [[ -f /etc/apt/sources.list.d/debian.sources ]]; then
    awk -v RS= -v ORS='\n\n' '/(^|\n)Types:[^\n]*deb/ && !/-security/' /etc/apt/sources.list.d/debian.sources |
      sed 's/^Types:.*/Types: deb-src/' | $sudo tee /etc/apt/sources.list.d/corvana-deb-src.sources >/dev/null
  fi
  if [[ -f /etc/apt/sources.list ]]; then
    grep -E '^deb ' /etc/apt/sources.list | grep -v -- -security | sed 's/^deb /deb-src /' |
      $sudo tee /etc/apt/sources.list.d/corvana-deb-src.list >/dev/null
  fi
  $sudo apt-get update -qq
}

# 1. The client library's source, from Debian's source package.
source_dir=$out/mariadb-source
if ! ls "$source_dir"/mariadb_*.orig.tar.* >/dev/null 2>&1; then
  apt-cache showsrc mariadb 2>/dev/null | grep -q '^Package: mariadb' || enable_sources
  mkdir -p "$source_dir.part"
  (cd "$source_dir.part" && apt-get source -qq --download-only -o APT::Sandbox::User=root mariadb)
  rm -rf "$source_dir"
  mv "$source_dir.part" "$source_dir"
fi

# 2. The client library for Windows, static, with the login plugins inside.
lib_dir=$out/mariadb-lib
if [[ ! -f $lib_dir/lib/libmariadbclient.a ]]; then
  echo "Building the MariaDB client library for Windows"
  tarball=$(ls "$source_dir"/mariadb_*.orig.tar.* | head -n 1)
  rm -rf "$out/mariadb-unpacked" "$out/mariadb-build" "$lib_dir"
  mkdir -p "$out/mariadb-unpacked"
  tar -xf "$tarball" -C "$out/mariadb-unpacked" --strip-components=1 --wildcards '*/libmariadb/*'
  plugins=()
  for p in DIALOG CLIENT_ED25519 CACHING_SHA2_PASSWORD SHA256_PASSWORD MYSQL_CLEAR_PASSWORD AUTH_GSSAPI_CLIENT; do
    plugins+=("-DCLIENT_PLUGIN_$p=STATIC")
  done
  cmake -S "$out/mariadb-unpacked/libmariadb" -B "$out/mariadb-build" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DWITH_SSL=SCHANNEL -DWITH_UNIT_TESTS=OFF -DWITH_CURL=OFF \
    "${plugins[@]}" >"$out/mariadb-configure.log" 2>&1 || { tail -n 30 "$out/mariadb-configure.log"; exit 1; }
  cmake --build "$out/mariadb-build" -j"$jobs" --target mariadbclient >"$out/mariadb-build.log" 2>&1 ||
    { tail -n 30 "$out/mariadb-build.log"; exit 1; }
  mkdir -p "$lib_dir/lib" "$lib_dir/include"
  cp "$out/mariadb-unpacked/libmariadb/include/"*.h "$lib_dir/include/"
  cp "$out/mariadb-build/include/"*.h "$lib_dir/include/"
  cp "$(find "$out/mariadb-build" -name libmariadbclient.a | head -n 1)" "$lib_dir/lib/"
fi

# 3. The program itself.
cmake -S "$repo" -B "$out/program" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release \
  -DCORVANA_TESTS=OFF -DMARIADB_INCLUDE_DIR="$lib_dir/include" \
  -DMARIADB_LIBRARY="$lib_dir/lib/libmariadbclient.a" >/dev/null
cmake --build "$out/program" -j"$jobs" --target CorvanaDataImporter
cp "$out/program/CorvanaDataImporter.exe" "$out/CorvanaDataImporter.exe"

# Only Windows' own DLLs, so the .exe runs on its own.
imports=$(x86_64-w64-mingw32-objdump -p "$out/CorvanaDataImporter.exe" | sed -n 's/^\s*DLL Name: //p' | sort -fu)
allowed='^(ADVAPI32|bcrypt|CRYPT32|KERNEL32|msvcrt|Secur32|SHLWAPI|WS2_32|USER32|ntdll)\.dll$'
if grep -viE "$allowed" <<<"$imports"; then
  echo "build-windows.sh: the .exe needs DLLs that Windows does not have (above)" >&2
  exit 1
fi
echo "Built $out/CorvanaDataImporter.exe ($(du -k "$out/CorvanaDataImporter.exe" | cut -f1) kB; imports" \
  "$(tr '\n' ' ' <<<"$imports"| sed 's/ $//'))"
