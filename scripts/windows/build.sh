#!/usr/bin/env bash
# build.sh [x86_64|i686 ...]: the Windows in-process server, cross-built with
# mingw-w64 into build-win/<arch>/ (default: both bitnesses). SQLite comes
# from build-sqlite.sh and is linked in; ODBC goes through the system's
# odbc32. Needs the tools of install-toolchain.sh.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
out=${KELVARY_WIN_BUILD_DIR:-$root/build-win}
archs=("$@")
[ ${#archs[@]} -eq 0 ] && archs=(x86_64 i686)

"$root/scripts/windows/build-sqlite.sh" "$out/sqlite"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
for arch in "${archs[@]}"; do
  cmake -S "$root" -B "$out/$arch" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/mingw-w64-$arch.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" -DKELVARY_BUILD_TESTS=OFF -DKELVARY_BUILD_BENCHMARKS=OFF \
    -DSQLite3_INCLUDE_DIR="$out/sqlite/$arch" -DSQLite3_LIBRARY="$out/sqlite/$arch/libsqlite3.a" \
    "${launcher[@]}" >/dev/null
  cmake --build "$out/$arch" -j "${KELVARY_JOBS:-$(nproc 2>/dev/null || echo 2)}" \
    --target kelvary_com kelvary_event_client kelvary_early_client
done
