#!/usr/bin/env bash
# make fuzz: each fuzzer of the sanitizer tree searches for SECONDS, starting
# from its corpus here; what it adds stays in the build tree. A crash, hang,
# leak or undefined behaviour fails the run and names the input kept.
#   run.sh BUILD SECONDS
set -uo pipefail
build=$1 seconds=$2
here=$(cd "$(dirname "$0")" && pwd)
export LSAN_OPTIONS="suppressions=$here/../support/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
failed=()
for fuzzer in "$build"/bin/fuzz_*; do
    name=$(basename "$fuzzer")
    work="$build/fuzz/$name"
    mkdir -p "$work/corpus"
    if "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$work/" "$work/corpus" "$here/corpus/$name" >"$work/log" 2>&1; then
        echo "$name: clean for $seconds s ($(grep -o 'stat::number_of_executed_units: *[0-9]*' "$work/log" | grep -o '[0-9]*$') runs)"
    else
        echo "$name: FAILED; see $work/log and the input in $work/"
        grep -m3 -E '^(==[0-9]+==ERROR|SUMMARY|invariant broken|.*runtime error)' "$work/log"
        failed+=("$name")
    fi
done
[ ${#failed[@]} -eq 0 ] || { echo "fuzzers that failed: ${failed[*]}"; exit 1; }
