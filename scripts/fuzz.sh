#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the libFuzzer targets with clang and runs each for a fixed time.
#   scripts/fuzz.sh [SECONDS] [TARGET...]     (default 60 s; all four targets)
# The growing corpus lives in build/fuzz/corpus/<target>, seeded from
# fuzz/corpus/<target>; a crashing input is written to build/fuzz/crashes/<target>/.
# Keep every crash as tests/data/fuzz/<target>/crash-<name>: tst_fuzzregressions
# replays them all.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(xmlstream loaders textparsers unpack)
build=${LXDOC_FUZZ_BUILD:-build/fuzz}
# The loaders and the plug-in write and sync files on every run; in memory
# that costs a tenth of the time.
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi

CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DLXDOC_BUILD_FUZZERS=ON \
    -DLXDOC_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/fuzz_}"

declare -A options=(
    [xmlstream]="-dict=fuzz/xml.dict -max_len=8192"
    [loaders]="-dict=fuzz/xml.dict -max_len=8192"
    [textparsers]="-max_len=1024"
    [unpack]="-dict=fuzz/zip.dict -max_len=32768"
)
status=0
summary=()
for t in "${targets[@]}"; do
    corpus=$build/corpus/$t
    crashes=$build/crashes/$t
    log=$build/fuzz-$t.log
    mkdir -p "$corpus" "$crashes"
    echo "== fuzz_$t for ${seconds}s"
    # shellcheck disable=SC2086
    if ! "$build/bin/fuzz_$t" -max_total_time="$seconds" -timeout=20 -print_final_stats=1 \
            -artifact_prefix="$crashes/" ${options[$t]} "$corpus" "fuzz/corpus/$t" >"$log" 2>&1; then
        status=1
        echo "fuzz_$t FOUND A CRASH (see $log and $crashes/)"
        grep -m5 -E "ERROR|runtime error|lxfuzz:" "$log" || true
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
    summary+=("$(printf '%-12s %6ss %12s executions %8s/s  corpus %s' "$t" "$seconds" "${runs:-?}" "${rate:-?}" \
        "$(find "$corpus" -type f | wc -l)")")
done
printf '%s\n' "${summary[@]}"
exit $status
