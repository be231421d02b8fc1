#include "bench/contents.h"

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

constexpr int kTileSide = 1024;

uint32_t hash(uint32_t a, uint32_t b, uint32_t c) {
  uint32_t h = a * 0x9E3779B1 ^ b * 0x85EBCA77 ^ c * 0xC2B2AE3D;
  h = (h ^ h >> 15) * 0x2C1B3C6D;
  h = (h ^ h >> 12) * 0x297A2D39;
  return h ^ h >> 15;
}

// Random values on a grid of `step` pixels with linear interpolation; 0 to 1.
double soft(int x, int y, int step, uint32_t seed) {
  const auto corner = [&](int dx, int dy) {
    return hash(static_cast<uint32_t>(x / step + dx), static_cast<uint32_t>(y / step + dy), seed) /
           4294967296.0;
  };
  const double u = static_cast<double>(x % step) / step, v = static_cast<double>(y % step) / step;
  return (corner(0, 0) * (1 - u) + corner(1, 0) * u) * (1 - v) +
         (corner(0, 1) * (1 - u) + corner(1, 1) * u) * v;
}

uint32_t photoPixel(int x, int y, uint32_t seed) {
  const double light =
      0.6 * soft(x, y, 256, seed) + 0.25 * soft(x, y, 64, seed + 1) + 0.15 * soft(x, y, 9, seed + 2);
  uint32_t word = 0;
  for (uint32_t channel = 0; channel < 3; ++channel) {
    const double tone = 0.75 * light + 0.25 * soft(x, y, 128, seed + 3 + channel);
    const double noise =
        hash(static_cast<uint32_t>(x), static_cast<uint32_t>(y), seed + 6 + channel) % 9 - 4.0;
    const double value = std::clamp((tone - 0.2) * 420 + noise, 0.0, 255.0);
    word = word << 8 | static_cast<uint32_t>(value);
  }
  return word;
}

using Tile = std::vector<uint32_t>;
Tile makeTile(uint32_t seed) {
  Tile tile;
  for (int y = 0; y < kTileSide; ++y) {
    for (int x = 0; x < kTileSide; ++x) tile.push_back(photoPixel(x, y, seed));
  }
  return tile;
}

// Repeats the tile, mirrored alternately.
uint32_t tiled(const Tile& tile, int x, int y) {
  const auto within = [](int i) {
    const int part = i % kTileSide;
    return static_cast<size_t>(i / kTileSide % 2 == 0 ? part : kTileSide - 1 - part);
  };
  return tile[within(y) * kTileSide + within(x)];
}

uint32_t photo(int x, int y) {
  static const Tile tile = makeTile(1);
  return tiled(tile, x, y);
}
uint32_t otherPhoto(int x, int y) {
  static const Tile tile = makeTile(100);
  return tiled(tile, x, y);
}

uint32_t grayOf(uint32_t word) { return (word >> 8 & 255) * 0x010101; }

constexpr uint32_t kWhite = 0xFFFFFF, kBlack = 0, kFlat = 0x3C78B4;

// Text-like lines of short black strokes.
uint32_t pagePixel(int x, int y) {
  const bool onLine = y % 40 >= 8 && y % 40 < 20;
  const bool inStroke = hash(static_cast<uint32_t>(x / 3), static_cast<uint32_t>(y / 5), 7) % 4 == 0;
  return onLine && inStroke ? kBlack : kWhite;
}

// One disc in each square of 240 pixels.
uint32_t blobPixel(int x, int y) {
  constexpr int kSquare = 240;
  const uint32_t random = hash(static_cast<uint32_t>(x / kSquare), static_cast<uint32_t>(y / kSquare), 11);
  const int dx = x % kSquare - 120, dy = y % kSquare - 120, radius = 8 + static_cast<int>(random % 24);
  return dx * dx + dy * dy < radius * radius ? 0xC02020 + random % 0x40 : kWhite;
}

// On the page a white frame around a gray sign, the only distinctive part.
uint32_t needlePixel(Content content, const Size& size, int x, int y) {
  if (content == Content::place) return photoPixel(x + 37, y + 91, 5000);
  const int margin = size.width / 4;
  const bool inside = x >= margin && x < size.width - margin && y >= margin && y < size.height - margin;
  return inside && (x + y) % 3 == 0 ? 0x606060 : kWhite;
}

uint32_t pixel(Content content, int x, int y) {
  switch (content) {
    case Content::photo:
    case Content::place:
      return photo(x, y);
    case Content::otherPhoto:
      return otherPhoto(x, y);
    case Content::grays:
      return grayOf(photo(x, y));
    case Content::flat:
      return kFlat;
    case Content::white:
      return kWhite;
    case Content::black:
      return kBlack;
    case Content::page:
      return pagePixel(x, y);
    case Content::blobs:
      return blobPixel(x, y);
  }
  return kBlack;
}

}  // namespace

std::string nameOf(const Size& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

Size needleSize(const Size& picture) {
  const int side = std::min({kLongestNeedleSide, picture.width / 2, picture.height / 2});
  return {side, side};
}

Place needlePlace(const Size& picture) {
  const Size size = needleSize(picture);
  return {picture.width - size.width - picture.width / 16,
          picture.height - size.height - picture.height / 32};
}

std::vector<uint32_t> needle(Content content, const Size& picture) {
  const Size size = needleSize(picture);
  std::vector<uint32_t> words;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) words.push_back(needlePixel(content, size, x, y));
  }
  return words;
}

void drawRow(Content content, const Size& size, int y, uint32_t* row) {
  for (int x = 0; x < size.width; ++x) row[x] = pixel(content, x, y);
  if (content != Content::page && content != Content::place) return;
  const Size part = needleSize(size);
  const Place at = needlePlace(size);
  if (y < at.y || y >= at.y + part.height) return;
  for (int x = 0; x < part.width; ++x) row[at.x + x] = needlePixel(content, part, x, y - at.y);
}

}  // namespace bench
