#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs every test: against Qt 6, against Qt 5.15, and once more
# under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
jobs=$(nproc)

build_and_test() {
    local dir=$1; shift
    cmake -S . -B "$dir" -G Ninja -DLXDOC_WERROR=ON "$@"
    cmake --build "$dir" -j "$jobs"
    ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

build_and_test build/qt6 -DQT_MAJOR_VERSION=6
LXDOC_PLAIN_BUILD=build/qt6 scripts/sanitize.sh
build_and_test build/qt5 -DQT_MAJOR_VERSION=5
