#!/usr/bin/env bash
# install-toolchain.sh [--wine32]: what the Windows build and its tests under
# Wine need on Debian 12, as root: the mingw-w64 cross compilers for x86_64
# and i686, widl and the standard interface files, tclsh (SQLite's
# amalgamation is generated from its source), and 64-bit Wine.
#
# 32-bit Wine is optional: with --wine32 the i386 architecture is added and
# wine32 tried; when the mirror cannot serve it the script says so and goes
# on, and the 32-bit server is then only built, not run. Adding i386 is left
# opt-in because a stale i386 index makes every later `apt-get update` on the
# machine fail.
set -euo pipefail

want32=0
[ "${1:-}" = "--wine32" ] && want32=1

packages=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools
          libwine-dev tcl dpkg-dev xz-utils patch make wine wine64)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "$(id -u)" -eq 0 ]; then sudo=""; else sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -qq || echo "apt-get update failed (exit $?): going on with the indexes there are"
  $sudo apt-get -o DPkg::Lock::Timeout=900 install -y -qq --no-install-recommends "${missing[@]}"
fi

if [ $want32 -eq 1 ] && ! dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed"; then
  $sudo dpkg --add-architecture i386
  $sudo apt-get update -qq || true
  if ! $sudo apt-get -o DPkg::Lock::Timeout=900 install -y -qq --no-install-recommends wine32:i386; then
    echo "wine32:i386 does not install from this mirror: the 32-bit server is built but not run"
  fi
fi
