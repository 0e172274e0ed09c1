#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every test under AddressSanitizer and UndefinedBehaviorSanitizer (GCC),
# then the end-to-end lesson test under valgrind's memcheck from a plain build.
#   scripts/sanitize.sh
# Build folders: build/asan, and build/qt6 for valgrind (made if missing);
# LXDOC_ASAN_BUILD and LXDOC_PLAIN_BUILD choose others.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=$(nproc)
asan=${LXDOC_ASAN_BUILD:-build/asan}
plain=${LXDOC_PLAIN_BUILD:-build/qt6}

flags="-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined"
CC=gcc CXX=g++ cmake -S . -B "$asan" -G Ninja -DLXDOC_WERROR=ON -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" \
    -DCMAKE_SHARED_LINKER_FLAGS="$flags" -DCMAKE_MODULE_LINKER_FLAGS="$flags"
cmake --build "$asan" -j "$jobs"
# Leaks inside Qt's and fontconfig's own caches are theirs; the suppressions
# name only those libraries, never ours.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1
export LSAN_OPTIONS=suppressions=$root/scripts/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir "$asan" --output-on-failure -j "$jobs" -E '^tst_tool$'
# LeakSanitizer's own tracer crashes at exit of a process that has written a
# PDF through Qt (a thread Qt leaves behind); the tool's test therefore runs
# with address and undefined-behaviour checks but without the leak scan.
ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 ctest --test-dir "$asan" --output-on-failure -R '^tst_tool$'

if [ ! -f "$plain/build.ninja" ]; then
    cmake -S . -B "$plain" -G Ninja -DLXDOC_WERROR=ON
fi
cmake --build "$plain" -j "$jobs" --target tst_lesson
echo "== valgrind memcheck: tst_lesson"
QT_QPA_PLATFORM=offscreen valgrind --tool=memcheck --leak-check=full \
    --errors-for-leak-kinds=definite --error-exitcode=1 --num-callers=30 \
    --suppressions="$root/scripts/valgrind.supp" "$plain/bin/tst_lesson"
echo "sanitizers and memcheck: clean"
