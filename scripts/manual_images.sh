#!/usr/bin/env bash
# Recreates the manual's pictures in docs/manual/images by running zvr on the demo's photograph, scaled to 256 x 128.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
# shellcheck source=dev
source ./dev help > /dev/null # for its functions

root=$PWD
setUp libjpeg-turbo-progs:djpeg
buildPreset release
fetchPhoto
PATH=$root/build/release:$PATH
work=$(mktemp -d)
removeOnExit "$work"
images=$work/images
mkdir "$images"
cd "$work"

# shows NAME.EXTENSION INPUT WORD…: saves the methods' result as a picture of the manual. JPEG for photographs, PNG for flat
# colours.
shows() {
  local output=$images/$1
  quietly zvr apply "${@:2}" -o "$output" --quality 85
}

# answers LINES INPUT WORD…: fails unless zvr prints exactly these lines, which the manual quotes.
answers() {
  local printed
  printed=$(zvr apply "${@:2}" | grep -v '^wrote ')
  [[ $printed == "$1" ]] || fail "The manual says \"$1\" where ${*:3} answers \"$printed\"."
}

# shellcheck disable=SC2154 # fetchPhoto leaves it
djpeg -scale 1/8 -ppm "$photo" | cjpeg -quality 88 > "$images/photo.jpg"
cp "$images/photo.jpg" photo.jpg

# A white page with one part of the map, and one with two. InvertZVR leaves the area outside its rectangle white; inverted
# again it is black, so that two parts can be merged.
quietly zvr apply photo.jpg InvertZVR 16 16 96 60 + InvertZVR -o leftOnBlack.png
quietly zvr apply photo.jpg InvertZVR 150 44 90 64 + InvertZVR -o rightOnBlack.png
shows page.png photo.jpg InvertZVR + InvertZVR 16 16 150 90
shows two-on-page.png leftOnBlack.png MergePictureZVR @ rightOnBlack.png + ReplaceColorZVR '&c000000' '&cFFFFFF'
shows half-turned.jpg photo.jpg ScrollHorizontalZVR 128 true false

shows InvertZVR.jpg photo.jpg InvertZVR
shows InvertZVR-part.png photo.jpg InvertZVR 40 20 120 60
shows InvertGrayZVR.png "$images/page.png" InvertGrayZVR
shows ScrollHorizontalZVR.jpg photo.jpg ScrollHorizontalZVR 100 true false
shows ScrollHorizontalZVR-fill.jpg photo.jpg ScrollHorizontalZVR 100 false false
shows ScrollVerticalZVR.jpg photo.jpg ScrollVerticalZVR 40 true false
shows ScrollZVR.jpg photo.jpg ScrollZVR 60 30 false false
shows MergePictureZVR.jpg photo.jpg MergePictureZVR @ "$images/half-turned.jpg"
shows CombinePicturesZVR.jpg photo.jpg CombinePicturesZVR @ "$images/half-turned.jpg" @
for channel in Red Green Blue; do
  shows "Replace${channel}ChannelZVR.jpg" photo.jpg "Replace${channel}ChannelZVR" "$images/half-turned.jpg"
done
for ((value = 0; value < 256; ++value)); do
  # shellcheck disable=SC2059 # the format is the byte
  printf "\\x$(printf %02x $((255 - value / 2)))"
done > curve.bin
shows TransformColorsZVR.jpg photo.jpg TransformColorsZVR curve.bin curve.bin curve.bin
shows ReplaceColorZVR.png "$images/page.png" ReplaceColorZVR '&cFFFFFF' '&cF4C542'
shows ExtractColorZVR.png "$images/page.png" ExtractColorZVR '&cFFFFFF' '&c203F4E' '&c88B5C4'
shows ChangeBrightnessLinearZVR.jpg photo.jpg ChangeBrightnessLinearZVR 80
shows ChangeBrightnessAbsoluteZVR.jpg photo.jpg ChangeBrightnessAbsoluteZVR 80
shows ChangeContrastZVR.jpg photo.jpg ChangeContrastZVR 0.5
shows ChangeContrastBrightnessLinearZVR.jpg photo.jpg ChangeContrastBrightnessLinearZVR 0.3 40
shows ChangeContrastBrightnessAbsoluteZVR.jpg photo.jpg ChangeContrastBrightnessAbsoluteZVR 0.3 40
shows ChangeCustomZVR.jpg photo.jpg ChangeCustomZVR 0.5 60
shows ChangeSaturationZVR.jpg photo.jpg ChangeSaturationZVR 120
shows ChangeSaturationZVR-gray.jpg photo.jpg ChangeSaturationZVR -255
shows TintPictureZVR.jpg photo.jpg TintPictureZVR @ '&c555555' '&cFFD08C'
shows ExtractColorRectangleMaskZVR.png "$images/two-on-page.png" ExtractColorRectangleMaskZVR
shows EmbeddedMaskZVR.jpg photo.jpg EmbeddedMaskZVR false = "$images/half-turned.jpg"

# The gallery cuts out the part to search for.
quietly zvr gallery "$images/page.png" -o gallery
cp gallery/files/part.png "$images/FindPictureZVR-pic.png"
answers $'FindPictureZVR = true\nx = 102\ny = 38' "$images/page.png" FindPictureZVR "$images/FindPictureZVR-pic.png"
answers 'CountColorZVR = 19269' "$images/page.png" CountColorZVR '&cFFFFFF'
answers $'red = MemoryBlock of 1024 bytes: 256 of 256 entries are not 0, sum 32768, largest 9793 (entry 0)
blue = MemoryBlock of 1024 bytes: 256 of 256 entries are not 0, sum 32768, largest 4890 (entry 0)
green = MemoryBlock of 1024 bytes: 256 of 256 entries are not 0, sum 32768, largest 3631 (entry 50)
count = 32768' photo.jpg CountColorsZVR
answers 'isWhiteZVR = false' "$images/page.png" isWhiteZVR
answers 'isWhiteZVR = true' "$images/page.png" isWhiteZVR 166 0 -1 -1
answers 'isBlackZVR = false' "$images/InvertGrayZVR.png" isBlackZVR
answers 'isBlackZVR = true' "$images/InvertGrayZVR.png" isBlackZVR 166 0 -1 -1
answers 'isGrayZVR = false' photo.jpg isGrayZVR 5
answers 'isGrayZVR = true' "$images/ChangeSaturationZVR-gray.jpg" isGrayZVR 5
answers 'ColornessZVR = 0.758148193359375' photo.jpg ColornessZVR
answers 'ColornessZVR = 0' "$images/ChangeSaturationZVR-gray.jpg" ColornessZVR
quietly zvr apply photo.jpg PicturetoBinaryStringZVR -o photo.ppic
[[ $(stat -c %s photo.ppic) -eq 98344 && $(head -c 43 photo.ppic | od -An -v -tx1 | tr -d ' \n') == \
  5050494300018028000001000000008000000020000000280000000000000000*fffeff ]] ||
  fail 'The manual tells of other bytes of a binary string.'

# Some syllables as signed bytes: a tone with swelling envelopes.
LC_ALL=C awk 'BEGIN {
  for (i = 0; i < 12000; ++i) {
    hull = sin(i / 12000 * 3.1416) * (0.25 + 0.75 * sin(i / 900) ^ 2)
    printf "%d\n", 90 * hull * sin(i * 0.7 + 2 * sin(i / 70))
  }
}' | while read -r sample; do printf '\\x%02x' $((sample & 255)); done > samples.txt
printf '%b' "$(< samples.txt)" > samples.raw
shows RenderSamplesZVR.png samples.raw RenderSamplesZVR @ 0 1 320 100 0 '&c88B5C4' '&c274C5A' '&c203F4E' 7
shows RenderSamplesZVR-smooth.png samples.raw RenderSamplesZVR @ 0 8 320 100 1 '&c88B5C4' '&c274C5A' '&cFFF0C0' 7 true

quietly zvr lut photo.jpg "$root/docs/manual/looks/sunset.cube" -o "$images/PictureLut3DZVR.jpg" --quality 85
quietly zvr run PictureSepiaZVR photo.jpg SepiaRed=40 SepiaGreen=20 -o "$images/PictureSepiaZVR.jpg" --quality 85

# Replaces the old pictures only after all were created.
rm -rf "$root/docs/manual/images"
mv "$images" "$root/docs/manual/images"
cd "$root/docs/manual/images"
say "$(find . -type f | wc -l) pictures in $PWD, $(du -bs . | cut -f1) bytes"
