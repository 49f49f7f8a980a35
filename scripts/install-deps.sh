#!/usr/bin/env bash
# Installs, through apt-get, the Debian packages that building and testing
# need and that this machine lacks. Needs root (or sudo) only when something
# is missing. Extra package names may be passed as arguments.
set -euo pipefail

packages=(cmake make g++ pkg-config libsqlite3-dev libgtest-dev libgmock-dev
          libbenchmark-dev unixodbc-dev libpq-dev nlohmann-json3-dev "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then sudo=""; else sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
