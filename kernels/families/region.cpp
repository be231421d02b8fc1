// Tests of whole spans, and the count of colourful pixels.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Pixels that are tested before a failure among them counts: enough for vectors, few enough to stop early.
constexpr size_t kBlock = 64;

// Calculations on two channels at once, one in each half of a word.
constexpr uint32_t kBoth = 0x00010001;
constexpr uint32_t kSigns = 0x80008000;

uint32_t redAndBlue(uint32_t pixel) { return pixel & 0x00FF00FF; }
uint32_t greenTwice(uint32_t pixel) { return (pixel >> 8 & 0xFF) * kBoth; }
uint32_t blueAndRed(uint32_t redBlue) { return redBlue << 16 | redBlue >> 16; }

// Whether `failure` is 0 for every pixel.
template <typename Failure>
bool allPass(const Pixel* in, size_t count, const Failure& failure) {
  for (; count >= kBlock; count -= kBlock, in += kBlock) {
    uint32_t failed = 0;
    for (size_t i = 0; i < kBlock; ++i) failed |= failure(in[i]);
    if (failed != 0) return false;
  }
  uint32_t failed = 0;
  for (size_t i = 0; i < count; ++i) failed |= failure(in[i]);
  return failed == 0;
}

}  // namespace

bool isAllColor(const Pixel* in, size_t count, int32_t color) {
  const auto wanted = static_cast<uint32_t>(color);
  return allPass(in, count, [=](uint32_t pixel) { return (pixel ^ wanted) & 0xFFFFFF; });
}

bool isAllGray(const Pixel* in, size_t count, int32_t tolerance) {
  if (tolerance == 0) {
    return allPass(in, count, [](uint32_t pixel) { return (pixel ^ pixel >> 8) & 0xFFFF; });
  }
  // A half's top bit stays set as long as what is added to it is at least -tolerance.
  const uint32_t limit = kSigns + static_cast<uint32_t>(tolerance) * kBoth;
  return allPass(in, count, [=](uint32_t pixel) {
    const uint32_t redBlue = redAndBlue(pixel), green = greenTwice(pixel);
    return ~((limit + redBlue - green) & (limit + green - redBlue) &
             (limit + redBlue - blueAndRed(redBlue))) &
           kSigns;
  });
}

uint32_t countColorful(const Pixel* in, size_t count, int32_t threshold) {
  constexpr uint32_t kNotDark = 30;
  const uint32_t limit = kSigns + static_cast<uint32_t>(threshold) * kBoth;
  uint32_t colorful = 0;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t redBlue = redAndBlue(in[i]), green = greenTwice(in[i]);
    const uint32_t light =
        ((redBlue + kSigns - kNotDark * kBoth) | (green + kSigns - kNotDark * kBoth)) & kSigns;
    // Red and blue are compared only with green, on purpose.
    const uint32_t gray = (limit + redBlue - green) & (limit + green - redBlue) & kSigns;
    colorful += light != 0 && gray != kSigns ? 1U : 0U;
  }
  return colorful;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
