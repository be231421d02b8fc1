#include "host/zvr/scaling.h"

#include <algorithm>
#include <cstring>

namespace zvr {
namespace {

// The first of `total` pixels in the box that becomes pixel `index` of `count`.
int boxStart(int index, int count, int total) {
  return static_cast<int>(static_cast<int64_t>(index) * total / count);
}

struct Box {
  int left, top, right, bottom;  // right and bottom lie outside
};

void writeMean(const Image& image, const Box& box, uint8_t* target) {
  uint64_t sums[3] = {}, opacity = 0;
  for (int y = box.top; y < box.bottom; ++y) {
    const uint8_t* pixel = image.row(y) + static_cast<size_t>(box.left) * 4;
    for (int x = box.left; x < box.right; ++x, pixel += 4) {
      for (size_t i = 0; i < 3; ++i) sums[i] += uint64_t{pixel[i]} * pixel[3];
      opacity += pixel[3];
    }
  }
  const auto count =
      static_cast<uint64_t>(box.right - box.left) * static_cast<uint64_t>(box.bottom - box.top);
  for (size_t i = 0; i < 3; ++i) {
    target[i] = opacity == 0 ? uint8_t{0} : static_cast<uint8_t>((sums[i] + opacity / 2) / opacity);
  }
  target[3] = static_cast<uint8_t>((opacity + count / 2) / count);
}

}  // namespace

Image scaledDown(const Image& image, int longest) {
  const int side = std::max(image.width, image.height);
  const auto scaled = [&](int length) {
    return side <= longest ? length : std::max(1, boxStart(length, side, longest));
  };
  Image result;
  result.allocate(static_cast<unsigned>(scaled(image.width)), static_cast<unsigned>(scaled(image.height)));
  result.hasAlpha = image.hasAlpha;
  if (side <= longest) {
    std::memcpy(result.pixels.get(), image.pixels.get(), image.byteCount());
    return result;
  }
  for (int y = 0; y < result.height; ++y) {
    uint8_t* target = result.row(y);
    const int top = boxStart(y, result.height, image.height),
              bottom = boxStart(y + 1, result.height, image.height);
    for (int x = 0; x < result.width; ++x, target += 4) {
      writeMean(
          image,
          {boxStart(x, result.width, image.width), top, boxStart(x + 1, result.width, image.width), bottom},
          target);
    }
  }
  return result;
}

}  // namespace zvr
