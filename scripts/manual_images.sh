#!/usr/bin/env bash
# Makes anew all that follows from the sections of the manual: the rows of its index, and the pictures in
# docs/manual/images, by running zvr on the demo's photograph, scaled to 256 x 128. Comments in the sections say how:
#   <!-- image FILE: zvr WORD… -->
# Words are separated by spaces, without quotes. Files are those that this script prepares.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
# shellcheck source=dev
source ./dev help > /dev/null # for its functions

root=$PWD
setUp libjpeg-turbo-progs:djpeg
buildPreset release --target zvr
PATH=$root/build/release:$PATH
work=$(mktemp -d)
removeOnExit "$work"

# notes KIND: what the comments of a kind hold, each in a line.
notes() { sed -n "s/^<!-- $1 \(.*\) -->\$/\1/p" "$root"/docs/manual/*.md; }

# makes FILE zvr WORD…: JPEG for photographs, PNG for flat colours.
makes() { quietly "${@:2}" -o "$1" --quality 85; }

cd "$work"
"$root/scripts/manual_index.sh" > index.md
cat index.md > "$root/docs/manual/README.md"
fetchPhoto
# shellcheck disable=SC2154 # fetchPhoto leaves it
djpeg -scale 1/8 -ppm "$photo" | cjpeg -quality 88 > photo.jpg
ln -s "$root/docs/manual/looks" looks

# A white page with a part of the map on it, and one with two. Outside InvertZVR's rectangle all is white; inverted
# once more, black, where two parts can be merged.
makes leftOnBlack.png zvr apply photo.jpg InvertZVR 16 16 96 60 + InvertZVR
makes rightOnBlack.png zvr apply photo.jpg InvertZVR 150 44 90 64 + InvertZVR
makes page.png zvr apply photo.jpg InvertZVR + InvertZVR 16 16 150 90
makes two-on-page.png zvr apply leftOnBlack.png MergePictureZVR @ rightOnBlack.png + \
  ReplaceColorZVR '&c000000' '&cFFFFFF'
makes half-turned.jpg zvr apply photo.jpg ScrollHorizontalZVR 128 true false
# The gallery cuts out a part to look for.
quietly zvr gallery page.png -o gallery
cp gallery/files/part.png FindPictureZVR-pic.png
for ((value = 0; value < 256; ++value)); do
  # shellcheck disable=SC2059 # the format is the byte
  printf "\\x$(printf %02x $((255 - value / 2)))"
done > curve.bin
# Some syllables, as signed bytes: a tone under swelling hulls.
LC_ALL=C awk 'BEGIN {
  for (i = 0; i < 12000; ++i) {
    hull = sin(i / 12000 * 3.1416) * (0.25 + 0.75 * sin(i / 900) ^ 2)
    printf "%d\n", 90 * hull * sin(i * 0.7 + 2 * sin(i / 70))
  }
}' | while read -r sample; do printf '\\x%02x' $((sample & 255)); done > samples.txt
printf '%b' "$(< samples.txt)" > samples.raw

mapfile -t images < <(notes image)
for image in "${images[@]}"; do
  read -ra words <<< "${image#*: }"
  makes "${image%%: *}" "${words[@]}"
done

quietly zvr apply photo.jpg PicturetoBinaryStringZVR -o photo.ppic
[[ $(stat -c %s photo.ppic) -eq 98344 && $(head -c 43 photo.ppic | od -An -v -tx1 | tr -d ' \n') == \
  5050494300018028000001000000008000000020000000280000000000000000*fffeff ]] ||
  fail 'The manual tells of other bytes of a binary string.'

# Those that the pages show. Only now that all are made.
mapfile -t shown < <(grep -oh '(images/[^)]*' "$root"/docs/manual/*.md | sort -u)
mkdir images
mv "${shown[@]#(images/}" images
rm -rf "$root/docs/manual/images"
mv images "$root/docs/manual/images"
cd "$root/docs/manual/images"
say "$(find . -type f | wc -l) pictures in $PWD, $(du -bs . | cut -f1) bytes"
