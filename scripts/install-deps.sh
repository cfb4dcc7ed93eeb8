#!/usr/bin/env bash
# Installs what building, testing and the demo need, from Debian's packages.
# Does nothing when everything is there already.
set -euo pipefail

packages=(g++ cmake make libgtest-dev libmariadb-dev mariadb-server mariadb-client)
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
