#!/usr/bin/env bash
# build-sqlite.sh DIR: SQLite for the Windows build. Debian ships no
# mingw-w64 SQLite, so its own source package is fetched (apt-get source
# through a private deb-src list: the machine's apt set-up is not touched),
# Debian's patches applied, the amalgamation generated (tclsh) and compiled
# once per bitness into DIR/<arch>/{sqlite3.h,libsqlite3.a}. Does nothing when
# both libraries are there already.
set -euo pipefail

dir=$(mkdir -p "$1" && cd "$1" && pwd)
if [ -f "$dir/x86_64/libsqlite3.a" ] && [ -f "$dir/i686/libsqlite3.a" ]; then
  exit 0
fi
cd "$dir"

if [ ! -f sqlite3.c ]; then
  uri=""
  if [ -f /etc/apt/sources.list.d/debian.sources ]; then
    uri=$(awk '/^URIs:/{print $2; exit}' /etc/apt/sources.list.d/debian.sources)
  fi
  if [ -z "$uri" ] && [ -f /etc/apt/sources.list ]; then
    uri=$(awk '$1=="deb"{for(i=2;i<=NF;i++) if($i ~ /^(https?|file):/){print $i; exit}}' /etc/apt/sources.list)
  fi
  uri=${uri:-http://deb.debian.org/debian}
  codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")
  mkdir -p aptsrc/lists/partial
  echo "deb-src $uri $codename main" > aptsrc/sources.list
  apt_opts=(-o APT::Sandbox::User=root -o Dir::Etc::SourceList="$dir/aptsrc/sources.list" -o Dir::Etc::SourceParts=/nonexistent
            -o Dir::State::Lists="$dir/aptsrc/lists")
  apt-get "${apt_opts[@]}" update -qq
  rm -rf src && mkdir src
  (cd src && apt-get "${apt_opts[@]}" source --download-only -qq sqlite3)
  tar xf src/sqlite3_*.orig.tar.* -C src
  tree=$(find src -mindepth 1 -maxdepth 1 -type d -name 'sqlite3-*' | head -1)
  tar xf src/sqlite3_*.debian.tar.* -C "$tree"
  if [ -f "$tree/debian/patches/series" ]; then
    for p in $(grep -v '^#' "$tree/debian/patches/series"); do
      patch -d "$tree" -p1 -s < "$tree/debian/patches/$p"
    done
  fi
  rm -rf gen && mkdir gen
  (cd gen && "../$tree/configure" --disable-tcl >/dev/null && make -j2 sqlite3.c >/dev/null)
  cp gen/sqlite3.c gen/sqlite3.h .
  rm -rf gen src aptsrc
fi

for arch in x86_64 i686; do
  mkdir -p "$arch"
  cp sqlite3.h "$arch/"
  "$arch-w64-mingw32-gcc-posix" -O2 -DSQLITE_THREADSAFE=1 -DSQLITE_OMIT_LOAD_EXTENSION \
    -DSQLITE_ENABLE_COLUMN_METADATA \
    -c sqlite3.c -o "$arch/sqlite3.o"
  rm -f "$arch/libsqlite3.a"
  "$arch-w64-mingw32-gcc-ar-posix" rcs "$arch/libsqlite3.a" "$arch/sqlite3.o"
  rm -f "$arch/sqlite3.o"
done
