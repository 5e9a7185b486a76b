#!/usr/bin/env bash
# Runs each fuzz target of a libFuzzer build for a bounded time, on a copy of its
# seed corpus, and fails if any target finds something.
#   fuzz/run-smoke.sh <build-dir> <seconds-per-target> [target ...]
# The build directory is one configured with the "fuzz" preset. Reproducers
# (crash-*, leak-*, timeout-*, oom-* files) are kept in <build-dir>/fuzz-findings/<target>/;
# replay one with: <build-dir>/fuzz/<target> <file>
set -uo pipefail

if [ $# -lt 2 ]; then
    echo "usage: $0 <build-dir> <seconds-per-target> [target ...]" >&2
    exit 2
fi
build="$(cd "$1" && pwd)"
seconds="$2"
shift 2
here="$(cd "$(dirname "$0")" && pwd)"
if [ $# -gt 0 ]; then
    targets=("$@")
else
    targets=()
    for dir in "$here"/corpus/*/; do
        targets+=("$(basename "$dir")")
    done
fi

findings="$build/fuzz-findings"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failed=()
printf '%-28s %12s %10s  %s\n' target executions exec/s result
for target in "${targets[@]}"; do
    exe="$build/fuzz/$target"
    if [ ! -x "$exe" ]; then
        echo "$target: no fuzzer at $exe (configure with --preset fuzz)" >&2
        failed+=("$target")
        continue
    fi
    corpus="$work/$target"
    mkdir -p "$corpus" "$findings/$target"
    cp "$here/corpus/$target"/* "$corpus"/
    log="$findings/$target/fuzz.log"
    ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}" \
    UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}" \
        "$exe" "$corpus" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$findings/$target/" >"$log" 2>&1
    status=$?
    runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)"
    rate="$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)"
    if [ $status -eq 0 ]; then
        result=ok
    else
        result="FAILED (status $status, see $log)"
        failed+=("$target")
    fi
    printf '%-28s %12s %10s  %s\n' "$target" "${runs:-?}" "${rate:-?}" "$result"
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing found problems in: ${failed[*]}; reproducers in $findings" >&2
    ls -1 "$findings"/*/crash-* "$findings"/*/leak-* "$findings"/*/timeout-* "$findings"/*/oom-* 2>/dev/null >&2
    exit 1
fi
echo "all ${#targets[@]} fuzz targets ran ${seconds}s each without a finding"
