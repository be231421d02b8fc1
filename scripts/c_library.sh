# 32-bit C libraries other than this machine's own. Sourced by dev.
# shellcheck shell=bash disable=SC2154 # cacheFolder comes from setup.sh

# Older than any that a build needs, the oldest first.
kOlderSuites=(buster bullseye)

# ensureCLibrary NAME SUITE PACKAGE…: leaves in cLibrary a folder of the cache with the C library that these packages of
# the suite hold, and with its symbols if libc6-dbg is among them.
ensureCLibrary() {
  cLibrary=$cacheFolder/$1
  if [[ -d $cLibrary ]]; then return; fi
  mkdir -p "$cacheFolder"
  (
    flock 9
    [[ -d $cLibrary ]] || fetchCLibrary "$cLibrary" "${@:2}"
  ) 9> "$cacheFolder/lock"
}

# fetchCLibrary FOLDER SUITE PACKAGE…: under the cache's lock and in a subshell.
fetchCLibrary() {
  local folder=$1 suite=$2 partial=$1.partial packages=("${@:3}") deb library symbols
  removeOnExit "$partial"
  rm -rf "$partial"
  mkdir -p "$partial/.debug"
  say "Fetching the 32-bit C library of Debian $suite into $folder"
  preparePrivateApt 'The rest works without it.' "$suite"
  # By the suite's name: our apt counts some of them as installed.
  (cd "$partial" && quietly privateApt download "${packages[@]/%//$suite}") || fail "Could not fetch ${packages[*]}."
  for deb in "$partial"/*.deb; do
    dpkg-deb --fsys-tarfile "$deb" | tar -x -C "$partial" --no-same-owner || fail "Could not unpack $deb."
  done
  mv "$partial"/lib/i386-linux-gnu/* "$partial" || fail "No C library is in ${packages[*]} of Debian $suite."
  for library in "$partial"/*.so.*; do
    symbols=$(readelf -p .gnu_debuglink "$library" 2> /dev/null | grep -o '[0-9a-f]*\.debug') || continue
    cp "$partial"/usr/lib/debug/.build-id/??/"$symbols" "$partial/.debug" 2> /dev/null || true
  done
  rm -rf "${partial:?}"/{*.deb,etc,lib,usr}
  mv -T "$partial" "$folder"
}

# findOldCLibrary: leaves in ZVR_OLD_C_LIBRARY, for the test old_c_library, the oldest one that the cache holds, if any.
findOldCLibrary() {
  local suite
  for suite in "${kOlderSuites[@]}"; do
    if [[ -z ${ZVR_OLD_C_LIBRARY:-} && -d $cacheFolder/c-library-$suite ]]; then
      export ZVR_OLD_C_LIBRARY=$cacheFolder/c-library-$suite
    fi
  done
}

# fetchOldCLibrary: the oldest that this machine's mirror still serves; without any the test is skipped.
fetchOldCLibrary() {
  local suite
  for suite in "${kOlderSuites[@]}"; do
    findOldCLibrary
    if [[ -n ${ZVR_OLD_C_LIBRARY:-} || $suite == "$(debianSuite)" ]]; then return; fi
    (ensureCLibrary "c-library-$suite" "$suite" libc6) > /dev/null 2>&1 || true
  done
  findOldCLibrary
  if [[ -z ${ZVR_OLD_C_LIBRARY:-} ]]; then say 'No older C library can be had here: the test with one is skipped.'; fi
}
