#!/usr/bin/env bash
# run-wine-tests.sh BUILD_DIR DEMO_DIR ARCH: the Windows server of BUILD_DIR
# (kelvary.dll and the test client, from build.sh) tested under Wine against
# the demo databases in DEMO_DIR (from `kelvary demo`, which this script
# copies: the tests change rows):
#   - regsvr32 registers it per machine;
#   - the VBScript host (tests/wine/host.vbs) runs in cscript;
#   - the C++ client subscribes an event sink (tests/wine/EventClient.cpp);
#   - the C++ client bound early calls the interfaces' vtables
#     (tests/wine/EarlyClient.cpp);
#   - regsvr32 /u removes it again;
#   - regsvr32 /n /i:user registers it per user (DllInstall) and removes it.
# Each test prints "N passed, M failed" last; a missing line is a failure
# (a script that dies says nothing). ARCH is x86_64 or i686.
# WINEPREFIX must name a prefix already made, with a wineserver kept up.
set -uo pipefail
build=$1
demo=$2
arch=$3
root=$(cd "$(dirname "$0")/../.." && pwd)
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}

if [ "$arch" = x86_64 ]; then
  wine=/usr/lib/wine/wine64
  [ -x "$wine" ] || wine=$(command -v wine64)
else
  wine=/usr/lib/wine/wine
  [ -x "$wine" ] || wine=$(command -v wine)
fi
failures=0
fail() {
  echo "wine tests ($arch): $*" >&2
  failures=$((failures + 1))
}

work=$(mktemp -d)
cp "$build/src/kelvary/automation/com/kelvary.dll" "$work/" || { fail "no kelvary.dll in $build"; exit 1; }
cp "$build/tests/wine/kelvary_event_client.exe" "$build/tests/wine/kelvary_early_client.exe" "$work/" ||
  fail "no test clients in $build"
cp "$root/tests/wine/host.vbs" "$work/"
winpath() { "$wine" winepath -w "$1" 2>/dev/null | tr -d '\r'; }
dll=$(winpath "$work/kelvary.dll")

# summary NAME LOG: the test's last line must say it all passed.
summary() {
  local line
  line=$(tr -d '\r' < "$2" | grep -E '^[0-9]+ passed, [0-9]+ failed$' | tail -1)
  if [ -z "$line" ]; then
    fail "$1 ended without its summary line"
    tail -5 "$2" >&2
  elif ! echo "$line" | grep -qE '^[1-9][0-9]* passed, 0 failed$'; then
    fail "$1: $line"
    grep -E '^FAILED' "$2" >&2
  fi
  echo "$1 ($arch): ${line:-no summary}"
}

fresh_demo() {
  rm -rf "$work/demo" && cp -r "$demo" "$work/demo"
}

run_hosts() {  # run_hosts LABEL
  fresh_demo
  local main system
  main=$(winpath "$work/demo/main.db")
  system=$(winpath "$work/demo/system.db")
  (cd "$work" && timeout 300 "$wine" cscript //nologo host.vbs "$main" "$system") > "$work/vbs.log" 2>&1
  summary "VBScript host, $1" "$work/vbs.log"
  fresh_demo
  (cd "$work" && timeout 300 "$wine" kelvary_event_client.exe "$main" "$system") > "$work/client.log" 2>&1
  summary "C++ event client, $1" "$work/client.log"
  fresh_demo
  (cd "$work" && timeout 300 "$wine" kelvary_early_client.exe "$main" "$system") > "$work/early.log" 2>&1
  summary "C++ early-bound client, $1" "$work/early.log"
}

progid_registered() {  # progid_registered HIVE
  "$wine" reg query "$1\\Software\\Classes\\Kelvary.InfoLink\\CLSID" >/dev/null 2>&1
}

"$wine" regsvr32 /s "$dll" || fail "regsvr32 failed"
progid_registered HKLM || fail "regsvr32 did not register Kelvary.InfoLink for the machine"
run_hosts "registered per machine"
"$wine" regsvr32 /s /u "$dll" || fail "regsvr32 /u failed"
progid_registered HKLM && fail "regsvr32 /u left Kelvary.InfoLink registered"

# Per user: the keys are checked, not used. Wine's component runtime looks
# classes up in the machine's registry only.
"$wine" regsvr32 /s /n /i:user "$dll" || fail "regsvr32 /n /i:user failed"
progid_registered HKCU || fail "DllInstall(user) did not register Kelvary.InfoLink for the user"
progid_registered HKLM && fail "DllInstall(user) registered for the machine"
"$wine" regsvr32 /s /u /n /i:user "$dll" || fail "regsvr32 /u /n /i:user failed"
progid_registered HKCU && fail "DllInstall(user) uninstall left Kelvary.InfoLink registered"

rm -rf "$work"
[ $failures -eq 0 ]
