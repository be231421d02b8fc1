# Valgrind's memcheck on the release build: values that were never set, which the sanitizers don't see.
# Sourced by dev.
# shellcheck shell=bash disable=SC2154 # cLibrary comes from c_library.sh

# Programs and which of their tests, the longest first. Left out are tests of code that computes in long double, which
# valgrind rounds to double (tint and waveforms), and those that take minutes there.
kMemcheckTests=('test_methods:rectangles*:masks*:channels*:counts*:scrolling*:strings*:hosts*:classes*'
  test_hosts:'*')

runMemcheck() {
  local suite
  takesAtMost 0 "$@"
  ensurePrograms valgrind:valgrind
  buildPreset release --target "${kMemcheckTests[@]%%:*}"
  suite=$(debianSuite)
  [[ -n $suite ]] || fail 'Only on Debian is it known where valgrind finds the symbols of a 32-bit C library.'
  # Valgrind refuses 32-bit programs without them, and no Debian package has those of a 64-bit machine's own.
  ensureCLibrary "symbols-$suite" "$suite" libc6 libc6-dbg
  inParallel scripts/memcheck_one.sh "$cLibrary" -- "${kMemcheckTests[@]/%/@cairo}" "${kMemcheckTests[@]/%/@console}"
}
