# Runs valgrind's memcheck on the release build: finds uninitialised values, which the sanitizers don't detect.
# Sourced by dev.
# shellcheck shell=bash disable=SC2154 # cacheFolder comes from setup.sh

# Programs and test filters. Excluded are tests of long double arithmetic (tint and waveforms), which valgrind rounds to
# double, and tests that take minutes under it.
kMemcheckTests=(test_{invert,merge,scroll,search,binary_string,count,region,masks,color_mask}:'*'
  'test_toning:Toning.LinearBrightness*'
  'test_classes:Classes/*:Lut3D.ANewTable*:Lut3D.TableBounds:Sepia.Factors*')

# ensureSymbols: sets symbolFolder to a folder with a C library and its debug symbols, without which valgrind refuses 32-bit
# programs. No Debian package has the symbols of a 64-bit machine's own 32-bit C library.
ensureSymbols() {
  local suite
  suite=$(debianSuite)
  [[ -n $suite ]] || fail 'Only on Debian is it known where valgrind finds the symbols of a 32-bit C library.'
  symbolFolder=$cacheFolder/symbols-$suite
  if [[ -d $symbolFolder ]]; then return; fi
  mkdir -p "$cacheFolder"
  (
    flock 9
    [[ -d $symbolFolder ]] || fetchSymbols "$suite" "$symbolFolder"
  ) 9> "$cacheFolder/lock"
}

# fetchSymbols SUITE FOLDER: runs under the cache's lock, in a subshell.
fetchSymbols() {
  local folder=$2 partial=$2.partial deb library symbols
  removeOnExit "$partial"
  rm -rf "$partial"
  mkdir -p "$partial/.debug"
  say "Fetching a 32-bit C library with symbols for valgrind into $folder"
  preparePrivateApt 'Without it valgrind can not run.'
  (cd "$partial" && quietly privateApt download "libc6/$1" "libc6-dbg/$1") ||
    fail 'Could not fetch libc6 and libc6-dbg.'
  for deb in "$partial"/*.deb; do
    dpkg-deb --fsys-tarfile "$deb" | tar -x -C "$partial" --no-same-owner
  done
  mv "$partial"/lib/i386-linux-gnu/* "$partial"
  for library in "$partial"/*.so.*; do
    symbols=$(readelf -p .gnu_debuglink "$library" | grep -o '[0-9a-f]*\.debug') || continue
    cp "$partial"/usr/lib/debug/.build-id/??/"$symbols" "$partial/.debug"
  done
  rm -rf "${partial:?}"/{*.deb,etc,lib,usr}
  mv -T "$partial" "$folder"
}

runMemcheck() {
  local entry road failed=0 log
  takesAtMost 0 "$@"
  ensurePrograms valgrind:valgrind
  buildPreset release --target "${kMemcheckTests[@]%%:*}"
  ensureSymbols
  log=$(mktemp)
  for entry in "${kMemcheckTests[@]}"; do
    for road in cairo console; do
      if valgrind -q --error-exitcode=99 "$symbolFolder/ld-linux.so.2" --library-path "$symbolFolder" \
        "build/release/${entry%%:*}" "--road=$road" "--gtest_filter=${entry#*:}" > "$log" 2>&1 &&
        ! grep -q 'Running 0 tests' "$log"; then
        say "memcheck: ${entry%%:*}, $road: nothing found"
      else
        say "memcheck: ${entry%%:*}, $road: failed"
        tail -n 40 "$log"
        failed=1
      fi
    done
  done
  rm -f "$log"
  return "$failed"
}
