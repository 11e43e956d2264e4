#!/usr/bin/env bash
# Installs the build into a fresh temporary prefix, then builds the consumer program against it
# twice, through find_package(Vesperon) and through pkg-config, and runs both: each must list the
# installed JPEG and PNG plug-ins. The GTK example that shows a folder in a window of its own is
# built the same two ways (find_package(Vesperon COMPONENTS gtk), pkg-config vesperon-gtk) and each
# build shows the sample photos under a virtual X server where one can start. The prefix is moved
# after installing, so every package file must find it from where it is.
# usage: test-consumer.sh BUILD_DIR CONSUMER_SOURCE_DIR GTK_EXAMPLE_SOURCE_DIR SAMPLES_DIR
set -euo pipefail
build=$1
source=$2
gtk_source=$3
samples=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/vesperon-package.XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"
prefix=$work/moved

check() {  # program output, route
  echo "$1"
  grep -q "^plug-in folder: $prefix/" <<<"$1" || { echo "FAIL ($2): the plug-in folder is not under the prefix"; exit 1; }
  for codec in jpeg png; do
    grep -qi "^source: .*$codec" <<<"$1" || { echo "FAIL ($2): no $codec source extension"; exit 1; }
  done
  grep -q "^date: 2021:06:01 12:00:00$" <<<"$1" || { echo "FAIL ($2): the date did not read back"; exit 1; }
}

echo "== find_package(Vesperon)"
cmake -S "$source" -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/cmake-build" >/dev/null
check "$("$work/cmake-build/consumer")" find_package

echo "== pkg-config vesperon"
pcdir=$(dirname "$(find "$prefix" -name vesperon.pc | head -n 1)")
export PKG_CONFIG_PATH="$pcdir${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
grep -q '^prefix=${pcfiledir}/' "$pcdir/vesperon.pc" || { echo "FAIL: vesperon.pc is not relocatable"; exit 1; }
[ "$(pkg-config --variable=libdir vesperon | xargs realpath)" = "$(realpath "$prefix")/$(realpath --relative-to="$prefix" "$(dirname "$pcdir")")" ] \
  || { echo "FAIL: pkg-config's libdir is not the moved prefix's"; exit 1; }
pkg-config --print-requires-private vesperon | grep -q exempi || { echo "FAIL: no private requirements"; exit 1; }
libdir=$(pkg-config --variable=libdir vesperon)
# shellcheck disable=SC2046
c++ -o "$work/consumer-pc" "$source/main.cpp" $(pkg-config --cflags --libs vesperon) -Wl,-rpath,"$libdir"
check "$("$work/consumer-pc")" pkg-config

# The GTK application: only image files of the folder, which it shows in a window of its own.
shown() {  # program route
  local status=0
  bash "$here/show-folder-on-screen.sh" "$1" "$samples" || status=$?
  if [ "$status" = 77 ]; then echo "($2: built; not shown, no X server can start here)"; return 0; fi
  [ "$status" = 0 ] || { echo "FAIL ($2): the GTK example did not show the folder"; exit 1; }
}
echo "== find_package(Vesperon COMPONENTS gtk)"
cmake -S "$gtk_source" -B "$work/gtk-cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/gtk-cmake-build" >/dev/null
shown "$work/gtk-cmake-build/folder-browser" find_package

echo "== pkg-config vesperon-gtk"
grep -q '^prefix=${pcfiledir}/' "$pcdir/vesperon-gtk.pc" || { echo "FAIL: vesperon-gtk.pc is not relocatable"; exit 1; }
[ "$(pkg-config --variable=libdir vesperon-gtk | xargs realpath)" = "$(pkg-config --variable=libdir vesperon | xargs realpath)" ] \
  || { echo "FAIL: vesperon-gtk.pc's libdir is not the moved prefix's"; exit 1; }
# shellcheck disable=SC2046
c++ -std=c++20 -o "$work/folder-browser-pc" "$gtk_source/main.cpp" $(pkg-config --cflags --libs vesperon-gtk) -Wl,-rpath,"$libdir"
shown "$work/folder-browser-pc" pkg-config
# Nothing but the installed tree: no header or library of the build tree may have been used.
if grep -rq "$(realpath "$build")" "$work/gtk-cmake-build/CMakeCache.txt"; then
  echo "FAIL: the GTK example's build saw the build tree"; exit 1
fi
echo "all routes work"
