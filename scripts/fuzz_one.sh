#!/usr/bin/env bash
# fuzz_one.sh SECONDS TARGET: runs one fuzz target of build/asan for that long.
set -euo pipefail
seconds=$1
target=$2
folder=build/asan
log=$folder/fuzz-$target.log
kept=$folder/fuzz/corpus/$target
found=$folder/fuzz/found

executedInputs() { sed -nE 's/^stat::number_of_executed_units: *([0-9]+)$/\1/p' "$log"; }

mkdir -p "$kept" "$found"
# Leaks are looked for at the end: the host's own caches would have every input checked, a hundred times slower.
if ASAN_OPTIONS=quarantine_size_mb=32${ASAN_OPTIONS:+:$ASAN_OPTIONS} "$folder/fuzz_$target" -detect_leaks=0 \
  -max_total_time="$seconds" -timeout=20 -rss_limit_mb=1800 -print_final_stats=1 \
  -artifact_prefix="$found/$target-" "$kept" "fuzz/corpus/$target" > "$log" 2>&1; then
  echo "fuzz $target: no fault in $(executedInputs) inputs in $seconds s"
else
  grep -aE -m 1 -A 20 'ERROR:|runtime error' "$log" >&2 || tail -n 20 "$log" >&2
  echo "fuzz $target: a fault after $(executedInputs) inputs. All that was printed: $log. The input, if one is to blame:" \
    "$(grep -aoE "$found/[^ ]+" "$log" | tail -n 1)" >&2
  exit 1
fi
