# Fuzzing with the targets in fuzz/. Sourced by dev.
# shellcheck shell=bash

# runFuzz [TARGET] [SECONDS]: the inputs in fuzz/corpus/TARGET first, then new ones for that long, grown from those and
# from the ones that earlier runs left in build/asan/fuzz/corpus.
runFuzz() {
  local targets=(fuzz/corpus/*/) seconds=60
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
  [[ $seconds =~ ^[1-9][0-9]*$ ]] || misuse "\"$seconds\" is no number of seconds; fuzz takes [TARGET] [SECONDS]."
  buildPreset asan --target fuzz_targets
  inParallel scripts/fuzz_one.sh "$seconds" -- "${targets[@]}"
}

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
