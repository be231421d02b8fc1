# The plug-in at work on a real photograph and on real speech. Sourced by dev.
# shellcheck shell=bash disable=SC2154 # cacheFolder comes from setup.sh

kOwnPhoto='Any picture of yours does as well: ./dev demo PHOTO'

# fetchFile PACKAGE FILE AS: leaves a file of a Debian package in the cache's folder photos, under the name AS.
# Fetched once, then kept; the package is not installed.
fetchFile() {
  local kept=$cacheFolder/photos/$3
  if [[ -f $kept ]]; then return; fi
  [[ -n $(debianSuite) ]] ||
    fail "The demo's $3 is in a Debian package, which can't be had here. $kOwnPhoto"
  say "Fetching $3 from Debian's package $1"
  mkdir -p "${kept%/*}"
  (
    flock 9
    work=$cacheFolder/photos/.partial
    removeOnExit "$work"
    rm -rf "$work"
    mkdir "$work"
    cd "$work" || exit
    preparePrivateApt "$kOwnPhoto"
    quietly privateApt download "$1" || fail "Could not fetch it. $kOwnPhoto"
    dpkg-deb -x "$1"_*.deb .
    mv "$2" "$kept"
  ) 9> "$cacheFolder/lock"
}

# fetchPhoto: leaves the path of the demo's photograph in `photo`.
fetchPhoto() {
  fetchFile xplanet-images usr/share/xplanet/images/earth.jpg earth.jpg
  photo=$cacheFolder/photos/earth.jpg
}

# Somebody saying "front center", 48 kHz, 16 bits.
fetchSpeech() {
  fetchFile alsa-utils usr/share/sounds/alsa/Front_Center.wav speech.wav
  speech=$cacheFolder/photos/speech.wav
}

# show FILE WORDS…: runs zvr with the words and has it write out/demo/FILE; prints how long it took, and the words without
# the input.
show() {
  local file=$1 started=${EPOCHREALTIME/[.,]/} took word words=''
  shift
  build/release/zvr "$@" --quiet -o "out/demo/$file" > /dev/null
  took=$(((${EPOCHREALTIME/[.,]/} - started) / 1000))
  for word in "$@"; do
    case $word in apply | "$photo" | "${speech:-}") ;; *) words+=" $word" ;; esac
  done
  printf '  %-20s %6d ms  %s\n' "$file" "$took" "$words"
}

# invertOn HOST: runs InvertZVR on `photo` in a host of that kind.
# Leaves in `took` how long the whole run of zvr took, in milliseconds.
invertOn() {
  local display=() started=${EPOCHREALTIME/[.,]/}
  if [[ $1 == gdk ]]; then display=(withDisplay); fi
  "${display[@]}" build/release/zvr apply "$photo" InvertZVR --quiet -o "out/demo/invert-$1.png" --host "$1"
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
  say 'Other effects, each by one method or one after another:'
  show tint.jpg apply "$photo" TintPictureZVR @ '&c6A6A6A' '&cFFCF98'
  show saturation.jpg apply "$photo" ChangeSaturationZVR 160
  show contrast.jpg apply "$photo" ChangeContrastZVR 0.5 + ChangeBrightnessLinearZVR 20
  show night.jpg apply "$photo" ChangeContrastBrightnessLinearZVR 0.2 0.2 0.4 -120 -100 -40
  show scrolled.jpg apply "$photo" ScrollZVR 700 0 true false
  say 'The two filter classes, one as sepia and one with a film look:'
  show sepia.jpg run "$photo" PictureSepiaZVR SepiaRed=40 SepiaGreen=20
  show look.jpg lut "$photo" docs/manual/looks/sunset.cube
  if [[ -n ${speech:-} ]]; then
    say "RenderSamplesZVR on $speech:"
    show wave.png wave "$speech" Smooth=3 outlinewidth=1 AutoScale=true
  fi
  build/release/zvr gallery "$photo" ${speech:+--sound "$speech"} -o out/demo/gallery
  say 'Every effect on one page, for a browser: gallery/index.html'
  say "The times are of whole runs of zvr, reading and writing the pictures included; GDK's includes starting Xvfb."
}
