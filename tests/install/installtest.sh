#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the build into a staging folder (DESTDIR), builds a host against it
# with find_package and another with pkg-config, and runs them and the
# installed tool as an ordinary user from folders outside the build tree.
# Arguments: BUILD_DIR SOURCE_DIR QT_MAJOR PREFIX LIBDIR BINDIR TOOL_NAME
set -euo pipefail
build=$1 source=$2 qt=$3 prefix=$4 libdir=$5 bindir=$6 tool=$7

work=$(mktemp -d /tmp/lxdoc-install-test.XXXXXX)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
stage=$work/stage$prefix
DESTDIR=$work/stage cmake --install "$build" >/dev/null

fault() { echo "install test: $*" >&2; exit 1; }

for file in "$libdir/liblxdoc-qt$qt.so" "$libdir/lxdoc-qt$qt/ziplib.so" "$bindir/$tool" \
        "$libdir/pkgconfig/lxdoc-qt$qt.pc" "$libdir/cmake/LXDocQt$qt/LXDocQt${qt}Config.cmake" \
        "include/lxdoc-qt$qt/lxdoc.h" "share/doc/lxdoc-qt$qt/LICENSE"; do
    [ -e "$stage/$file" ] || fault "not installed: $file"
done

# Runs a command as an ordinary user with a clean environment; as root that
# needs runuser or setpriv.
user=$(id -u)
as_user=()
if [ "$user" = 0 ]; then
    user=$(id -u nobody)
    if command -v runuser >/dev/null; then
        as_user=(runuser -u nobody --)
    elif command -v setpriv >/dev/null; then
        as_user=(setpriv --reuid="$user" --regid="$(id -g nobody)" --clear-groups)
    else
        echo "install test skipped: running as root without runuser or setpriv to become an ordinary user"
        exit 77
    fi
fi
home=$work/home
mkdir -p "$home"
chown "$user" "$home"
run() {
    (cd "$home" && "${as_user[@]}" env -i PATH=/usr/bin:/bin HOME="$home" LC_ALL=C.UTF-8 \
        QT_QPA_PLATFORM=offscreen "$@")
}

cmake -S "$source/tests/install/consumer" -B "$work/consumer-build" -G Ninja \
    -DQT_MAJOR_VERSION="$qt" -DCMAKE_PREFIX_PATH="$stage" >/dev/null
cmake --build "$work/consumer-build" >/dev/null

# A packager's build: only what pkg-config reports (Qt wants position-independent code).
mkdir -p "$work/bin"
read -r -a flags <<<"$(PKG_CONFIG_PATH=$stage/$libdir/pkgconfig pkg-config --cflags --libs "lxdoc-qt$qt")"
c++ -std=c++17 -fPIC "$source/tests/install/consumer/main.cpp" -o "$work/bin/consumer-pc" \
    "${flags[@]}" "-Wl,-rpath,$stage/$libdir"
cp "$work/consumer-build/consumer" "$work/bin/consumer-cmake"
chmod 555 "$work/bin"

# A root-owned program folder: no "Temp" beside it, so each user gets a
# private temp root in the cache folder, and the installed plug-in is used.
for consumer in consumer-cmake consumer-pc; do
    out=$(run "$work/bin/$consumer" "$home/lesson.lzn") || fault "$consumer failed: $out"
    grep -q "^temp root $home/.cache/lxdoc/$" <<<"$out" || fault "$consumer: unexpected temp root: $out"
done
[ "$(stat -c %a "$home/.cache/lxdoc")" = 700 ] || fault "the private temp root is not mode 700"
out=$(run env LXDOC_TEMP_ROOT="$home/chosen" "$work/bin/consumer-cmake" --no-app "$home/lesson.lzn") \
    || fault "without an application object: $out"
grep -q "^temp root $home/chosen/$" <<<"$out" || fault "LXDOC_TEMP_ROOT not used: $out"
[ ! -e /Temp ] || fault "/Temp exists"

# A program folder of the user's own, with a name outside ASCII: "Temp" is
# made beside the program, and several processes open archives of one name
# at once, each in a folder of its own.
own="$work/run-ä"
mkdir -p "$own"
cp "$work/bin/consumer-cmake" "$own/consumer"
chown -R "$user" "$own"
out=$(run "$own/consumer" "$home/Übung.lzn") || fault "from $own: $out"
grep -q "^unpacked into $own/Temp/Übung and $own/Temp/Übung0$" <<<"$out" || fault "unexpected unpack folders: $out"
pids=()
for _ in 1 2 3 4 5 6 7 8; do
    run "$own/consumer" --open "$home/Übung.lzn" 6 >/dev/null &
    pids+=($!)
done
for pid in "${pids[@]}"; do
    wait "$pid" || fault "a concurrent open failed"
done

# The installed tool finds its library and plug-in from wherever it lies.
run "$stage/$bindir/$tool" demo "$home/demo.lzn" >/dev/null || fault "$tool demo failed"
# Read whole before it is searched: grep -q would close the pipe early.
info=$(run "$stage/$bindir/$tool" info "$home/demo.lzn") || fault "$tool info failed"
grep -q '3 pages' <<<"$info" || fault "$tool info printed no 3 pages: $info"
run "$stage/$bindir/$tool" render "$home/demo.lzn" "$home/pages" >/dev/null || fault "$tool render failed"
compgen -G "$home/pages/*.png" >/dev/null || fault "$tool render wrote no page"
echo "installed LXDoc (Qt $qt) works for user $user"
