# Fuzzing: runs the targets of fuzz/. Sourced by dev.
# shellcheck shell=bash

# runFuzz [TARGET] [SECONDS]: runs the inputs in fuzz/corpus/TARGET, then for that long new ones, mutated from those and
# from the finds of earlier runs in build/fuzz/corpus.
runFuzz() {
  local targets=(fuzz/corpus/*/) target seconds=60
  targets=("${targets[@]%/}")
  targets=("${targets[@]##*/}")
  takesAtMost 2 "$@"
  if [[ ${1:-} == [a-z]* ]]; then
    [[ -d fuzz/corpus/$1 ]] || misuse "No target \"$1\"; there are: ${targets[*]}"
    targets=("$1")
    shift
  fi
  takesAtMost 1 "$@"
  seconds=${1:-60}
  [[ $seconds =~ ^[1-9][0-9]*$ ]] || misuse "\"$seconds\" is not a number of seconds; fuzz takes [TARGET] [SECONDS]."
  buildPreset fuzz --target fuzz_targets
  for target in "${targets[@]}"; do fuzzOne "$target" "$seconds"; done
}

fuzzOne() {
  local target=$1 seconds=$2 folder=build/fuzz log=build/fuzz/$1.log status=0
  mkdir -p "$folder/corpus/$target" "$folder/found"
  # Leaks are checked only at exit: the host's caches would trigger a check after every input, a hundred times slower.
  ASAN_OPTIONS=quarantine_size_mb=32${ASAN_OPTIONS:+:$ASAN_OPTIONS} "$folder/fuzz_$target" -detect_leaks=0 \
    -max_total_time="$seconds" -timeout=20 -rss_limit_mb=1800 -print_final_stats=1 \
    -artifact_prefix="$folder/found/$target-" "$folder/corpus/$target" "fuzz/corpus/$target" \
    > "$log" 2>&1 || status=$?
  if [[ $status -ne 0 ]]; then
    grep -aE -m 1 -A 20 'ERROR:|runtime error' "$log" >&2 || tail -n 20 "$log" >&2
    fail "fuzz $target: a fault after $(fuzzedInputs "$log") inputs." \
      "All that was printed: $log. The input, if one is to blame: $(grep -aoE "$folder/found/[^ ]+" "$log" | tail -n 1)"
  fi
  say "fuzz $target: no fault in $(fuzzedInputs "$log") inputs in $seconds s"
}

fuzzedInputs() { sed -nE 's/^stat::number_of_executed_units: *([0-9]+)$/\1/p' "$1"; }

# ensureFuzzer: installs libFuzzer's runtime for 32-bit programs, which Clang's package only recommends.
ensureFuzzer() {
  local version
  has32BitFuzzer && return
  version=$(clang++ -dumpversion)
  installPackages "libclang-rt-${version%%.*}-dev"
  has32BitFuzzer || fail "This Clang ($(command -v clang++), $version) has no libFuzzer for 32-bit programs."
}

has32BitFuzzer() {
  clang++ -m32 -fsanitize=fuzzer,address -x c++ -o /dev/null - 2> /dev/null << 'END'
#include <fuzzer/FuzzedDataProvider.h>
extern "C" int LLVMFuzzerTestOneInput(const uint8_t*, size_t) { return 0; }
END
}
