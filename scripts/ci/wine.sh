#!/usr/bin/env bash
# CI: the Windows in-process server, cross-built for x86_64 and i686 and
# tested under Wine by a VBScript host and a C++ client with an event sink.
# 64-bit must pass; 32-bit is always built and run only when 32-bit Wine is
# installed. Needs the native build's `kelvary` program (for the demo
# databases); builds it when it is not there.
set -euo pipefail
cd "$(dirname "$0")/../.."
start=$(date +%s)

./scripts/windows/install-toolchain.sh
./scripts/windows/build.sh x86_64 i686

if [ ! -x build/tools/kelvary/kelvary ]; then
  cmake -S . -B build -DKELVARY_BUILD_BENCHMARKS=OFF >/dev/null
  cmake --build build -j "$(nproc 2>/dev/null || echo 2)" --target kelvary_cli
fi
demo=$(mktemp -d)
build/tools/kelvary/kelvary demo "$demo/db" >/dev/null

export WINEPREFIX
WINEPREFIX=$(mktemp -d)
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# One wineserver for the whole run: starting and stopping one per program
# races now and then.
cleanup() {
  wineserver -k 2>/dev/null || true
  rm -rf "$WINEPREFIX" "$demo"
}
trap cleanup EXIT
/usr/lib/wine/wine64 wineboot -i >/dev/null 2>&1
wineserver -w
wineserver -p

status=0
./scripts/windows/run-wine-tests.sh build-win/x86_64 "$demo/db" x86_64 || status=1
if [ -x /usr/lib/wine/wine ] && dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed"; then
  ./scripts/windows/run-wine-tests.sh build-win/i686 "$demo/db" i686 || status=1
else
  echo "CI: 32-bit Wine is not installed: the i686 server was built, not run"
fi
echo "CI: Windows server block took $(( $(date +%s) - start )) s"
exit $status
