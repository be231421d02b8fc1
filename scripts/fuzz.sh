# Fuzzing with the target in fuzz/. Sourced by dev.
# shellcheck shell=bash

# runFuzz [SECONDS]: the inputs in fuzz/corpus first, then new ones for that long, grown from those and from the ones that
# earlier runs left in build/asan/fuzz/corpus.
runFuzz() {
  local seconds=${1:-60} folder=build/asan log=build/asan/fuzz.log kept=build/asan/fuzz/corpus found=build/asan/fuzz/found
  takesAtMost 1 "$@"
  [[ $seconds =~ ^[1-9][0-9]*$ ]] || misuse "\"$seconds\" is no number of seconds; fuzz takes [SECONDS]."
  buildPreset asan --target fuzz_methods
  mkdir -p "$kept" "$found"
  # Leaks are looked for at the end: the host's own caches would have every input checked, a hundred times slower.
  if ASAN_OPTIONS=quarantine_size_mb=32${ASAN_OPTIONS:+:$ASAN_OPTIONS} "$folder/fuzz_methods" -detect_leaks=0 \
    -max_total_time="$seconds" -timeout=20 -rss_limit_mb=1800 -print_final_stats=1 \
    -artifact_prefix="$found/" "$kept" fuzz/corpus > "$log" 2>&1; then
    say "Fuzzing: no fault in $(executedInputs "$log") inputs in $seconds s"
    return
  fi
  grep -aE -m 1 -A 20 'ERROR:|runtime error' "$log" >&2 || tail -n 20 "$log" >&2
  fail "Fuzzing: a fault after $(executedInputs "$log") inputs. All that was printed: $log. The input, if one is to blame:" \
    "$(grep -aoE "$found/[^ ]+" "$log" | tail -n 1)"
}

executedInputs() { sed -nE 's/^stat::number_of_executed_units: *([0-9]+)$/\1/p' "$1"; }

# ensureSanitizers: the run time of Clang's sanitizers and fuzzer for 32-bit programs, which Clang's own package only
# recommends.
ensureSanitizers() {
  local version
  has32BitSanitizers && return
  version=$(clang++ -dumpversion)
  installPackages "libclang-rt-${version%%.*}-dev"
  has32BitSanitizers || fail "This Clang ($(command -v clang++), $version) has no sanitizers for 32-bit programs."
}

has32BitSanitizers() {
  clang++ -m32 -fsanitize=fuzzer,address,undefined -x c++ -o /dev/null - 2> /dev/null << 'END'
#include <fuzzer/FuzzedDataProvider.h>
extern "C" int LLVMFuzzerTestOneInput(const uint8_t*, size_t) { return 0; }
END
}
