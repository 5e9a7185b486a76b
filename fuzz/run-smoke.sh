#!/usr/bin/env bash
# Runs each fuzz target of a libFuzzer build (the "fuzz" preset) for a bounded time
# on a copy of its seed corpus; fails if any target finds something.
#   fuzz/run-smoke.sh <build-dir> <seconds-per-target> [target ...]
# Reproducers (crash-*, leak-*, timeout-*, oom-*) and logs are kept in
# <build-dir>/fuzz-findings/<target>/; replay one with: <build-dir>/fuzz/<target> <file>
set -uo pipefail

if [ $# -lt 2 ]; then
    echo "usage: $0 <build-dir> <seconds-per-target> [target ...]" >&2
    exit 2
fi
build="$(cd "$1" && pwd)"
seconds="$2"
shift 2
here="$(cd "$(dirname "$0")" && pwd)"
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for dir in "$here"/corpus/*/; do targets+=("$(basename "$dir")"); done
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failed=()
printf '%-28s %12s %10s  %s\n' target executions exec/s result
for target in "${targets[@]}"; do
    exe="$build/fuzz/$target"
    out="$build/fuzz-findings/$target"
    mkdir -p "$work/$target" "$out"
    cp "$here/corpus/$target"/* "$work/$target"/ 2>/dev/null
    ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}" \
    UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}" \
        "$exe" "$work/$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$out/" >"$out/fuzz.log" 2>&1
    status=$?
    result=ok
    if [ $status -ne 0 ]; then
        result="FAILED (status $status, see $out/fuzz.log)"
        failed+=("$target")
    fi
    runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$out/fuzz.log" | tail -1)"
    rate="$(sed -n 's/^stat::average_exec_per_sec: *//p' "$out/fuzz.log" | tail -1)"
    printf '%-28s %12s %10s  %s\n' "$target" "${runs:-?}" "${rate:-?}" "$result"
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing found problems in: ${failed[*]}; reproducers in $build/fuzz-findings" >&2
    exit 1
fi
echo "all ${#targets[@]} fuzz targets ran ${seconds}s each without a finding"
