#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds LXDoc and runs the demo host: a sample lesson is built through the
# library, packed, reopened, summarised and rendered.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build/qt6 -G Ninja -DQT_MAJOR_VERSION=6
cmake --build build/qt6 -j "$(nproc)" --target lxdoc_tool ziplib
mkdir -p sample
cd sample
../build/qt6/bin/lxdoc demo sample.lzn
echo
echo "Sample lesson: $(pwd)/sample.lzn"
echo "Page images:   $(pwd)/sample-pages/"
