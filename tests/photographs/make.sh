#!/usr/bin/env bash
# Made the files of this folder, with ImageMagick 6, ExifTool, heif-enc, cwebp and the profiles of colord-data: programs
# that share no code with zvr's reading. Each shows the same 48 x 32 pixels: flat fields of 8 x 8, all of another colour.
# Only photo.png is another, 23 x 9 pixels that differ in each channel.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
convert -size 6x4 xc: -fx '(i*41 + j*23 + (u.r+1)*17*(i%3)) % 256 / 255' -channel G -fx '(i*13 + j*61) % 256 / 255' \
  -channel B -fx '(i*29 + j*7 + 40*(j%2)) % 256 / 255' +channel -scale 48x32 -depth 8 -strip rgb.png
convert rgb.png -size 48x32 gradient:white-black -alpha off -compose CopyOpacity -composite -define png:color-type=6 rgba.png
convert rgb.png -define png:bit-depth=16 -define png:color-type=2 deep.png
convert rgb.png -type Palette -define png:color-type=3 palette.png
convert rgb.png -colorspace gray gray.png
convert rgb.png -quality 100 -sampling-factor 4:4:4 -density 300 -units PixelsPerInch \
  -profile /usr/share/color/icc/colord/AdobeRGB1998.icc adobe.jpg
convert rgb.png -colorspace CMYK -quality 100 -sampling-factor 4:4:4 cmyk.jpg
turned=(- - TopRight BottomRight BottomLeft LeftTop RightTop RightBottom LeftBottom)
undo=(- - -flop '-rotate 180' -flip -transpose '-rotate 270' -transverse '-rotate 90')
for orientation in 2 3 4 5 6 7 8; do
  # shellcheck disable=SC2086 # several words
  convert rgb.png ${undo[orientation]} -strip -quality 100 -sampling-factor 4:4:4 "turned$orientation.jpg"
  exiftool -q -overwrite_original -n -Orientation="$orientation" -Make="${turned[orientation]}" "turned$orientation.jpg"
done
convert rgb.png -rotate 270 -strip turned.png
exiftool -q -q -overwrite_original -n -Orientation=6 turned.png
convert rgb.png -rotate 270 -depth 8 -compress lzw -orient RightTop turned.tif
convert rgba.png -compress zip rgba.tif
convert rgb.png BMP3:rgb.bmp
convert rgb.png rgb.gif
convert rgb.png rgb.ppm
convert rgb.png -define tga:image-origin=TopLeft -compress none rgb.tga
convert rgba.png icon.ico
cwebp -quiet -lossless -exact rgba.png -o rgba.webp
heif-enc -q 100 -p chroma=444 rgb.png -o rgb.heic > /dev/null
heif-enc -A -q 100 -p chroma=444 rgb.png -o rgb.avif > /dev/null
# Each coefficient in a scan of its own, by a program of the library that zvr reads JPEG files with.
for i in {0..63}; do echo "0: $i-$i, 0, 0;"; done | cjpeg -grayscale -scans /dev/stdin rgb.ppm > scans.jpg
convert -size 23x9 xc: -fx '((i + 23*j)*7) % 256 / 255' -channel G -fx '((i + 23*j)*13 + 5) % 256 / 255' \
  -channel B -fx '((i + 23*j)*3 + 90) % 256 / 255' +channel -depth 8 -strip -define png:color-type=2 photo.png
