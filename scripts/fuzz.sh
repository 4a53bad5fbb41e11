#!/usr/bin/env bash
# Builds the reader fuzz targets, and those of the platform's decoder and of
# the metafile path, with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs each for SECONDS seconds on a fresh
# copy of its seed corpus and of the hostile files of the test data. Ends
# with a summary of the inputs each target ran, and how many a second. Exits
# non-zero when any target reports a finding (crash, sanitizer report,
# uncaught exception, leak, timeout, memory limit).
#
# usage: scripts/fuzz.sh [SECONDS]     (default 20)
#   FUZZ_BUILD_DIR  build folder (default build-fuzz)
#   FUZZ_TARGETS    targets to run (default "bmp pcx ppm tga pcd platform metafile")
set -euo pipefail

seconds=${1:-20}
if ! [[ $seconds =~ ^[0-9]+$ ]] || [ "$seconds" -eq 0 ]; then
    echo "usage: $0 SECONDS (a whole number above 0)" >&2
    exit 2
fi

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}
runs=$root/fuzz/corpus-run
targets=${FUZZ_TARGETS:-bmp pcx ppm tga pcd platform metafile}
hostile=$root/tests/data/hostile

# The generated seeds a target starts from, and which hostile files join them.
seed_folder() {
    case $1 in
    platform) echo "$root/fuzz/corpus/bmp" ;;
    metafile) echo "$hostile" ;;
    *) echo "$root/fuzz/corpus/$1" ;;
    esac
}
hostile_seeds() {
    case $1 in
    platform) ls "$hostile"/* ;;
    metafile) ls "$hostile"/*.wmf "$hostile"/*.emf ;;
    *) ls "$hostile"/*."$1" 2>/dev/null || true ;;
    esac
}

if command -v clang++-14 >/dev/null && command -v clang-14 >/dev/null; then
    export CC=clang-14 CXX=clang++-14
elif command -v clang++ >/dev/null && command -v clang >/dev/null; then
    export CC=clang CXX=clang++
else
    echo "fuzz.sh: clang is not installed (Debian: clang-14 libclang-rt-14-dev)" >&2
    exit 2
fi

cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)"

export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export ASAN_OPTIONS=${ASAN_OPTIONS:-abort_on_error=0:detect_leaks=1}

failed=()
summary=()
for format in $targets; do
    seeds=$(seed_folder "$format")
    work=$runs/$format
    if [ ! -d "$seeds" ]; then
        echo "fuzz.sh: no seed corpus for $format in $seeds" >&2
        failed+=("$format")
        summary+=("$(printf '%-10s %10s %8s %8s  %s' "$format" - - - "no seeds")")
        continue
    fi
    rm -rf "$work"
    mkdir -p "$work/corpus" "$work/findings"
    cp -R "$seeds/." "$work/corpus/"
    for seed in $(hostile_seeds "$format"); do cp "$seed" "$work/corpus/"; done
    log=$work/fuzz.log
    echo "== $format: fuzzing for $seconds s"
    status=0
    started=$(date +%s)
    "$build/${format}_fuzzer" "$work/corpus" \
        -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 \
        -artifact_prefix="$work/findings/" -print_final_stats=1 >"$log" 2>&1 || status=$?
    elapsed=$(($(date +%s) - started))
    [ "$elapsed" -gt 0 ] || elapsed=1
    runs_done=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    coverage=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 || true)
    edges=${coverage#cov: }
    rate=?
    [ -n "$runs_done" ] && rate=$((runs_done / elapsed))
    outcome="no finding"
    if [ "$status" -ne 0 ] || [ -n "$(ls -A "$work/findings")" ]; then
        echo "!! $format: finding (exit $status); log $log"
        grep -E -A 30 '^==[0-9]+==ERROR|runtime error|deadly signal|uncaught|terminate called|Test unit written' "$log" | head -n 60 || tail -n 40 "$log"
        for artifact in "$work/findings"/*; do
            [ -e "$artifact" ] && echo "   reproduce: $build/${format}_fuzzer $artifact"
        done
        failed+=("$format")
        outcome=FINDING
    else
        echo "   $format: no finding (${runs_done:-?} inputs, ${coverage:-cov: ?})"
    fi
    summary+=("$(printf '%-10s %10s %8s %8s  %s' "$format" "${runs_done:-?}" "$rate" \
        "${edges:-?}" "$outcome")")
done

echo "== summary ($seconds s a target)"
printf '%-10s %10s %8s %8s  %s\n' target inputs inputs/s edges result
for line in "${summary[@]}"; do echo "$line"; done

if [ ${#failed[@]} -ne 0 ]; then
    echo "fuzz.sh: findings in: ${failed[*]}" >&2
    exit 1
fi
echo "fuzz.sh: no findings"
