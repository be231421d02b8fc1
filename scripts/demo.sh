# A photograph, inverted on each of the three roads that a host's pictures can take. Sourced by dev.
# shellcheck shell=bash

kOwnPhoto='Any picture of yours does as well: ./dev demo PHOTO'

# fetchPhoto: leaves the path of the demo's photograph in `photo`; fetched once, then kept in the cache.
fetchPhoto() {
  photo=$cacheFolder/photos/earth.jpg
  if [[ -f $photo ]]; then return; fi
  [[ -n $(debianSuite) ]] ||
    fail "The demo's photograph is in a Debian package, which can't be had here. $kOwnPhoto"
  say "Fetching a photograph from Debian's package xplanet-images"
  mkdir -p "${photo%/*}"
  (
    flock 9
    work=$cacheFolder/photos/.partial
    removeOnExit "$work"
    rm -rf "$work"
    mkdir "$work"
    cd "$work"
    preparePrivateApt "$kOwnPhoto"
    quietly privateApt download xplanet-images || fail "Could not fetch it. $kOwnPhoto"
    dpkg-deb -x xplanet-images_*.deb .
    mv usr/share/xplanet/images/earth.jpg "$photo"
  ) 9> "$cacheFolder/lock"
}

# invertOn HOST: runs InvertZVR on `photo` in a host of that kind.
# Leaves in `took` how long the whole run of zvr took, in milliseconds.
invertOn() {
  local display=() started=${EPOCHREALTIME/[.,]/}
  if [[ $1 == gdk ]]; then display=(xvfb-run -a -s "$kScreen"); fi
  "${display[@]}" build/release/zvr apply "$photo" InvertZVR -o "out/demo/invert-$1.png" --host "$1" > /dev/null
  took=$(((${EPOCHREALTIME/[.,]/} - started) / 1000))
}

runDemo() {
  local took same=''
  rm -rf out/demo
  mkdir -p out/demo
  cp -- "$photo" "out/demo/photo.${photo##*.}"
  say "InvertZVR on $photo, in $PWD/out/demo:"
  printf '  %-20s             the photograph as it was\n' "photo.${photo##*.}"
  invertOn cairo
  printf '  %-20s %6d ms   a desktop picture on a cairo surface\n' invert-cairo.png "$took"
  invertOn gdk
  printf "  %-20s %6d ms   an older desktop's picture on a GDK drawable: row 0 stays black on purpose\n" \
    invert-gdk.png "$took"
  invertOn console
  if cmp -s out/demo/invert-{cairo,console}.png; then same=": the same file as cairo's, byte for byte"; fi
  printf '  %-20s %6d ms   a console picture in plain memory%s\n' invert-console.png "$took" "$same"
  say "The times are of whole runs of zvr, reading and writing the pictures included; GDK's includes starting Xvfb."
}
