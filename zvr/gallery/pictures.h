// Pictures and plots as text for the page.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/calls.h"
#include "zvr/files/images.h"

namespace zvr::gallery {

using Pixel = std::array<uint8_t, 4>;  // red, green, blue, opacity

inline Pixel pixelAt(const Image& image, int x, int y) {
  Pixel pixel;
  std::copy_n(image.row(y) + static_cast<size_t>(x) * 4, 4, pixel.begin());
  return pixel;
}

// A picture, at least a pixel wide and high, of what `pixelOf`(x, y) answers. Throws Failure and
// std::bad_alloc.
template <typename PixelOf>
Image drawn(int width, int height, bool hasAlpha, PixelOf pixelOf) {
  Image image;
  image.allocate(static_cast<unsigned>(std::max(1, width)), static_cast<unsigned>(std::max(1, height)));
  image.hasAlpha = hasAlpha;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const Pixel pixel = pixelOf(x, y);
      std::copy_n(pixel.begin(), 4, image.row(y) + static_cast<size_t>(x) * 4);
    }
  }
  return image;
}

// The picture with its longer side at most `longest` pixels, each the mean of a box of pixels (weighted
// by opacity; boxes of fewer than 66,000 pixels). Throws as drawn does.
Image scaledDown(const Image& image, int longest);

// "data:image/…", with the longer side at most `side` pixels. Drawings become PNG, photographs WebP of this
// quality. Throws Failure.
std::string dataUri(const Image& image, int side, int quality);

// How often each value occurs, of red, green and blue; all empty when that is not known.
using Histogram = std::array<std::vector<uint32_t>, 3>;

// The histograms among the arguments that CountColorsZVR leaves; empty for those of other methods.
Histogram histogramIn(const std::vector<host::Value>& arguments);
// By the plug-in's CountColorsZVR; empty when it has none.
Histogram histogramOf(const Image& image);
uint32_t tallestOf(const Histogram& histogram);
// The height of a bar, from 0 to 1.
double heightOf(uint32_t count, uint32_t tallest);
// Bars that stand on a line at 0 and are at most 80 high, as a path of SVG.
std::string barsPath(const std::vector<uint32_t>& counts, uint32_t tallest);
// A table of 256 values as a path of SVG.
std::string curvePath(const std::vector<uint8_t>& table);

}  // namespace zvr::gallery
