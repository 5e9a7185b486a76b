#!/usr/bin/env bash
# fuzz/run-smoke.sh <build-dir> <seconds-per-target> [target ...]: runs each target of a libFuzzer build
# (the "fuzz" preset) on a copy of its seed corpus; fails on any finding. Reproducers and logs are kept in
# <build-dir>/fuzz-findings/<target>/; replay one with: <build-dir>/fuzz/<target> <file>
set -uo pipefail
[ $# -ge 2 ] || { echo "usage: $0 <build-dir> <seconds-per-target> [target ...]" >&2; exit 2; }
build="$(cd "$1" && pwd)" seconds="$2" here="$(cd "$(dirname "$0")" && pwd)"
shift 2
targets=("$@")
[ ${#targets[@]} -gt 0 ] || for dir in "$here"/corpus/*/; do targets+=("$(basename "$dir")"); done
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failed=()
printf '%-28s %s\n' target result
for target in "${targets[@]}"; do
    out="$build/fuzz-findings/$target"
    mkdir -p "$work/$target" "$out"
    cp "$here/corpus/$target"/* "$work/$target"/ 2>/dev/null
    ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}" \
    UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}" \
        "$build/fuzz/$target" "$work/$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$out/" >"$out/fuzz.log" 2>&1
    status=$? result=ok
    [ $status -eq 0 ] || { result="FAILED (status $status, see $out/fuzz.log)"; failed+=("$target"); }
    printf '%-28s %s\n' "$target" "$result"
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing found problems in: ${failed[*]}; reproducers in $build/fuzz-findings" >&2
    exit 1
fi
echo "all ${#targets[@]} fuzz targets ran ${seconds}s each without a finding"
